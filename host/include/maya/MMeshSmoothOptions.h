#pragma once

#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// How a mesh is smoothed.
class MMeshSmoothOptions {
 public:
  enum BoundaryRule { kInvalid = -1, kLegacy = 0, kCreaseAll = 1, kCreaseEdge = 2, kLast = 3 };
  enum OpenSubdivVertexBoundary { kVertexSharpEdges, kVertexSharpEdgesAndCorners };

  MMeshSmoothOptions() = default;

  int divisions(MStatus* status = nullptr) const;
  MStatus setDivisions(int divisions);
  float smoothness(MStatus* status = nullptr) const;
  MStatus setSmoothness(float smoothness);
  bool smoothUVs(MStatus* status = nullptr) const;
  MStatus setSmoothUVs(bool smoothUVs);
  bool propEdgeHardness(MStatus* status = nullptr) const;
  MStatus setPropEdgeHardness(bool propagate);
  bool keepBorderEdge(MStatus* status = nullptr) const;
  MStatus setKeepBorderEdge(bool keep);
  bool keepHardEdge(MStatus* status = nullptr) const;
  MStatus setKeepHardEdge(bool keep);
  BoundaryRule boundaryRule(MStatus* status = nullptr) const;
  MStatus setBoundaryRule(BoundaryRule rule);

 private:
  int divisions_ = 2;
  float smoothness_ = 1.0F;
  bool smoothUVs_ = true;
  bool propEdgeHardness_ = false;
  bool keepBorderEdge_ = true;
  bool keepHardEdge_ = false;
  BoundaryRule boundaryRule_ = kLegacy;
};
