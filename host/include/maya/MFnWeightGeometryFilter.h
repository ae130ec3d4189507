#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFnGeometryFilter.h>

class MSelectionList;

/// Works on deformers that have a weight for each point.
class MFnWeightGeometryFilter : public MFnGeometryFilter {
 public:
  MFnWeightGeometryFilter() = default;
  MFnWeightGeometryFilter(const MObject& object, MStatus* status = nullptr) {
    attach(object, status);
  }
  MFn::Type type() const override { return MFn::kWeightGeometryFilt; }

  /// The weights of the points of a component, in its order.
  MStatus getWeights(const MDagPath& path, const MObject& component, MFloatArray& weights) const;
  MStatus getWeights(unsigned int index, const MObject& component, MFloatArray& weights) const;
  MStatus setWeight(const MDagPath& path, const MObject& component, float weight,
                    MFloatArray* oldValues = nullptr);
  MStatus setWeight(const MDagPath& path, const MObject& component, const MFloatArray& weights);
  MStatus setWeight(const MDagPath& path, unsigned int index, const MObject& component,
                    float weight, MFloatArray* oldValues = nullptr);
  MStatus setWeight(const MDagPath& path, unsigned int index, const MObject& component,
                    const MFloatArray& weights);
  MStatus getEnvelopeWeights(MFloatArray& weights) const;
  MString weightPlugStrings(const MSelectionList& list, MStatus* status = nullptr) const;
};
