#pragma once

class MPointArray;

/// Which world coordinates of a point a straightening keeps.
enum keepAxesCode {
  kKeepX = 0,
  kKeepY = 1,
  kKeepZ = 2,
  kKeepXY = 3,
  kKeepXZ = 4,
  kKeepYZ = 5,
  kKeepNone = 6
};

/// Lines up one run of points, in place: entries [start, start + count) of `positions` move onto
/// the line through the run's two extreme points (the one farthest from the mean, and the one
/// farthest from that), each by orthogonal projection; then the coordinates that `keepAxes` names
/// go back to what they were. Points that all coincide stay. Linear in `count`; the first of
/// equally far points is taken.
void straightenRun(MPointArray& positions, unsigned int start, unsigned int count, int keepAxes);
