#pragma once

#include <maya/MPointArray.h>

#include <vector>

class polygonGraph;

/// Finds which vertex of one mesh is which of another that has the same faces in other orders,
/// starting from a face of each that are one and the same. The faces are turned against each other
/// until everything that hangs together with them agrees; of several turns that do, the one whose
/// vertices lie nearest to each other is taken.
///
/// @param partner a vertex of `b`, or -1, a vertex of `a`; vertices reached are entered, the others
/// stay
/// @return false, with `partner` unchanged, when the parts differ. Linear in the part, for each
/// turn that agrees.
bool matchOrder(const polygonGraph& a, const MPointArray& pointsA, int faceA, const polygonGraph& b,
                const MPointArray& pointsB, int faceB, std::vector<int>& partner);
