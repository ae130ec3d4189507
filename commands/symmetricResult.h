#pragma once

#include <maya/MPointArray.h>

#include <vector>

/// Makes the places of a symmetric mesh symmetric: vertices that mirror each other across `axis` =
/// 0 before take the mean of their places and each other's mirror images; those on the plane stay
/// on it. A vertex without a place takes the mirror image of its partner's. Vertices without a
/// partner within a thousandth of the mesh's size keep theirs.
///
/// @param before the mesh as it was, one point a vertex
/// @param places where the vertices go, one a vertex
/// @param isPlaced whether a vertex has a place; vertices that get one here are marked
void makeSymmetric(const MPointArray& before, unsigned int axis, MPointArray& places,
                   std::vector<char>& isPlaced);
