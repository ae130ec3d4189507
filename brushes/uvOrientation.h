#pragma once

/// Which way round three places lie, exactly: 1 when the third lies to the left of the way from the
/// first to the second (u to the right, v up), -1 to the right, 0 on the line. Places are pairs of
/// finite floats.
///
/// The usual determinant is taken where its rounding can't matter; else the sum is formed without
/// rounding (Shewchuk 1997, "Adaptive Precision Floating-Point Arithmetic").
int orientation(const float* a, const float* b, const float* c);

/// How firmly three places lie the way that `sign` (1 or -1) says.
enum faceFirmness {
  kTurnedOver = 0,  ///< the other way, or on a line
  kThin = 1,        ///< that way, but so thin that rounding each number could turn it over
  kFirm = 2,        ///< that way whatever is rounded
};
faceFirmness firmness(const float* a, const float* b, const float* c, int sign);
