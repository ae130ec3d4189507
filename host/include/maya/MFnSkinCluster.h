#pragma once

#include <maya/MDagPathArray.h>
#include <maya/MDoubleArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFnGeometryFilter.h>
#include <maya/MIntArray.h>

class MSelectionList;

/// Works on skinCluster nodes: geometry that follows joints by weights.
///
/// Influence indices here count the influences from 0 in the order of `influenceObjects`; the
/// number of an influence in the node's attributes is its logical index, as
/// `indexForInfluenceObject` gives it.
class MFnSkinCluster : public MFnGeometryFilter {
 public:
  MFnSkinCluster() = default;
  MFnSkinCluster(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kSkinClusterFilter; }

  unsigned int influenceObjects(MDagPathArray& paths, MStatus* status = nullptr) const;
  unsigned int indexForInfluenceObject(const MDagPath& path, MStatus* status = nullptr) const;
  /// The points that an influence has weight on, one component a geometry, and these weights.
  MStatus getPointsAffectedByInfluence(const MDagPath& path, MSelectionList& result,
                                       MDoubleArray& weights) const;
  MStatus getPathsAffectedByInfluence(const MDagPath& path, MSelectionList& result,
                                      MDoubleArray& weights) const {
    return getPointsAffectedByInfluence(path, result, weights);
  }

  /// The weights of one influence on each point of a component.
  MStatus getWeights(const MDagPath& path, const MObject& components, unsigned int influenceIndex,
                     MDoubleArray& weights) const;
  MStatus getWeights(const MDagPath& path, const MObject& components, unsigned int influenceIndex,
                     MFloatArray& weights) const;
  /// All influences of the first point, then those of the second, and so on.
  MStatus getWeights(const MDagPath& path, const MObject& components, MDoubleArray& weights,
                     unsigned int& influenceCount) const;
  MStatus getWeights(const MDagPath& path, const MObject& components, MFloatArray& weights,
                     unsigned int& influenceCount) const;
  MStatus getWeights(const MDagPath& path, const MObject& components,
                     const MIntArray& influenceIndices, MDoubleArray& weights) const;
  MStatus getWeights(const MDagPath& path, const MObject& components,
                     const MIntArray& influenceIndices, MFloatArray& weights) const;

  /// Sets one influence's weight on all points of a component; the others give way or grow when
  /// `normalize` is on and the node normalizes as weights are edited.
  MStatus setWeights(const MDagPath& path, const MObject& components, unsigned int influenceIndex,
                     double weight, bool normalize = true, MDoubleArray* oldValues = nullptr);
  /// `values` has one number an influence, the same for all points, or these for each point.
  MStatus setWeights(const MDagPath& path, const MObject& components,
                     const MIntArray& influenceIndices, const MDoubleArray& values,
                     bool normalize = true, MDoubleArray* oldValues = nullptr);
  MStatus setWeights(const MDagPath& path, const MObject& components,
                     const MIntArray& influenceIndices, const MFloatArray& values,
                     bool normalize = true, MFloatArray* oldValues = nullptr);

  /// Shares of dual quaternions for the weight blended method.
  MStatus getBlendWeights(const MDagPath& path, const MObject& components,
                          MDoubleArray& weights) const;
  MStatus setBlendWeights(const MDagPath& path, const MObject& components,
                          const MDoubleArray& weights);
};
