#pragma once

#include <maya/MIntArray.h>

#include <vector>

class MDagPath;

/// Splits a mesh along edges: two faces are in one region when a way leads from one to the other
/// across edges that are none of `seams`. Across an edge of three or more faces the way leads to
/// all of them.
/// @param seams edge indices, in any order
/// @return the faces of each region, ascending; regions in the order of their lowest face. Linear.
std::vector<MIntArray> seamRegions(const MDagPath& mesh, const MIntArray& seams);
