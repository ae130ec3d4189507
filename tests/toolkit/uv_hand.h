#pragma once

#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "tests/toolkit/toolkit_session.h"
#include "uv/uvArrays.h"

/// All UVs of a mesh's current set, with their assignment.
inline uvArrays uvsOf(const char* name) {
  uvArrays uvs;
  REQUIRE(uvs.read(MFnMesh(toolkitSession::path(name))));
  return uvs;
}

inline std::pair<float, float> uvOf(const char* name, int uv) {
  float u = -1e9F, v = -1e9F;
  REQUIRE(MFnMesh(toolkitSession::path(name)).getUV(uv, u, v));
  return {u, v};
}

inline bool isNear(const std::pair<float, float>& a, double u, double v, double tolerance = 1e-6) {
  return std::fabs(a.first - u) < tolerance && std::fabs(a.second - v) < tolerance;
}

/// Largest distance, along u or v, between the UVs of two states of a mesh.
inline double largestStep(const uvArrays& a, const uvArrays& b) {
  REQUIRE(a.u.length() == b.u.length());
  double largest = 0;
  for (unsigned int i = 0; i < a.u.length(); ++i) {
    largest = std::fmax(largest, std::fabs(double{a.u[i]} - double{b.u[i]}));
    largest = std::fmax(largest, std::fabs(double{a.v[i]} - double{b.v[i]}));
  }
  return largest;
}
