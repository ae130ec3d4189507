#pragma once

#include <maya/MPxGeometryFilter.h>

/// Base of deformers: geometry filters with a weight for each point.
class MPxDeformerNode : public MPxGeometryFilter {
 public:
  MPxDeformerNode();
  ~MPxDeformerNode() override;

  /// The weight of a point of one of the geometries; 1 where none was set.
  float weightValue(MDataBlock& block, unsigned int multiIndex, unsigned int wtIndex);

  static MObject weightList;
  static MObject weights;
};
