#pragma once

#include <maya/MDagPath.h>
#include <maya/MMeshIsectAccelParams.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

/// Where a line of sight meets the surface that points are laid on: the sheet in front. The place
/// is computed in double from the triangle that is met, so that it lies on it however far the
/// viewer stands.
/// @param params the accelerator that all rays of one tool share
/// @return false when it meets nothing, with `hit` as it was; what went wrong is told
bool meetSurface(const MDagPath& surface, const MPoint& eye, const MVector& direction,
                 MMeshIsectAccelParams& params, MPoint& hit);
