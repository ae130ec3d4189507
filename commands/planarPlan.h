#pragma once

class MPointArray;
class MVector;
class MVectorArray;

/// Flattens a run in place: entries [start, start + count) of `positions` move, by orthogonal
/// projection, onto the plane through their mean that stands on `normal` (any length). A zero
/// normal is replaced by that of the best-fit plane. Linear. @return false, with nothing changed,
/// when there is no plane: a zero normal and points on one line
bool flattenRun(MPointArray& positions, unsigned int start, unsigned int count,
                const MVector& normal);

/// Sum of vectors; zero for none.
MVector sumOf(const MVectorArray& vectors);
/// Their mean; zero for none.
MVector meanVector(const MVectorArray& vectors);
