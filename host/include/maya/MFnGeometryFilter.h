#pragma once

#include <maya/MDagPath.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MObjectArray.h>

/// Works on deformers.
class MFnGeometryFilter : public MFnDependencyNode {
 public:
  MFnGeometryFilter() = default;
  MFnGeometryFilter(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kGeometryFilt; }

  MStatus getInputGeometry(MObjectArray& objects) const;
  MStatus getOutputGeometry(MObjectArray& objects) const;
  MObject inputShapeAtIndex(unsigned int index, MStatus* status = nullptr) const;
  MObject outputShapeAtIndex(unsigned int index, MStatus* status = nullptr) const;
  unsigned int indexForOutputShape(const MObject& shape, MStatus* status = nullptr) const;
  unsigned int indexForOutputConnection(unsigned int connectionIndex,
                                        MStatus* status = nullptr) const;
  unsigned int numOutputConnections(MStatus* status = nullptr) const;
  MStatus getPathAtIndex(unsigned int index, MDagPath& path) const;
  float envelope(MStatus* status = nullptr) const;
  MStatus setEnvelope(float envelope);
  MObject deformerSet(MStatus* status = nullptr) const;
};
