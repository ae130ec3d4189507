#pragma once

#include <maya/MFnGeometryFilter.h>
#include <maya/MIntArray.h>

/// Works on blendShape nodes: geometry that follows targets by their weights.
///
/// A weight index is the number of a target, as in the node's `weight`; base objects are the shapes
/// that are deformed. A target is reached at its full weight, 1 for most; several of one weight
/// index are shapes in between.
class MFnBlendShapeDeformer : public MFnGeometryFilter {
 public:
  enum Origin { kLocalOrigin, kWorldOrigin };
  enum HistoryLocation { kFrontOfChain, kNormal, kPost, kOther };

  MFnBlendShapeDeformer() = default;
  MFnBlendShapeDeformer(const MObject& object, MStatus* status = nullptr) {
    attach(object, status);
  }
  MFn::Type type() const override { return MFn::kBlendShape; }

  /// Makes a node that deforms the object, with no targets yet.
  MObject create(MObject baseObject, Origin originSpace = kLocalOrigin, MStatus* status = nullptr);
  MObject create(const MObjectArray& baseObjects, Origin originSpace, HistoryLocation location,
                 MStatus* status = nullptr);

  MStatus addBaseObject(const MObject& object);
  MStatus getBaseObjects(MObjectArray& objects) const;
  /// Fails for meshes of another number of vertices than the base.
  MStatus addTarget(const MObject& baseObject, int weightIndex, const MObject& newTarget,
                    double fullWeight);
  MStatus removeTarget(const MObject& baseObject, int weightIndex, const MObject& target,
                       double fullWeight);
  /// The meshes that a target has, by their full weights; targets that are offsets have none.
  MStatus getTargets(MObject baseObject, int weightIndex, MObjectArray& targets) const;
  /// 5000 + 1000 times the full weight, for each shape of a target.
  MStatus targetItemIndexList(unsigned int weightIndex, MObject baseObject,
                              MIntArray& inbetweens) const;

  unsigned int numWeights(MStatus* status = nullptr) const;
  MStatus weightIndexList(MIntArray& indexList) const;
  float weight(unsigned int index, MStatus* status = nullptr) const;
  MStatus setWeight(unsigned int index, float weight);

  Origin origin(MStatus* status = nullptr) const;
  MStatus setOrigin(Origin space);
};
