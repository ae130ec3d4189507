#include <maya/MFnBlendShapeDeformer.h>

#include <algorithm>
#include <cmath>

#include "host/api/core/access.h"
#include "host/nodes/history/blend_shape.h"
#include "host/nodes/history/deformers.h"
#include "host/scene/dag_paths.h"

using namespace host;
using api::setStatus;

namespace {

dg::Node* blendIn(const MObject& object, MStatus* status = nullptr) {
  dg::Node* node = api::nodeOf(object);
  const bool isBlend = node && node->isAlive() && node->type().isA("blendShape");
  setStatus(status, isBlend ? MStatus::kSuccess : MStatus::kFailure);
  return isBlend ? node : nullptr;
}

/// The mesh shape that an object is or has; null for others.
dg::Node* meshOf(const MObject& object) {
  dg::Node* node = api::nodeOf(object);
  if (!node || !node->isAlive() || !scene::isDagNode(*node)) return nullptr;
  const scene::DagPath shape = scene::firstPath(*node).toShape();
  dg::Node* mesh = shape.isWorld() ? node : shape.node();
  return mesh->type().isA("mesh") ? mesh : nullptr;
}

/// The number of a base object's geometry; kNone for what is not deformed.
Index geometryOf(dg::Node& blend, const MObject& baseObject) {
  const dg::Node* base = meshOf(baseObject);
  for (const auto& [geometry, shape] : nodes::deformedShapes(blend))
    if (shape == base) return geometry;
  return kNone;
}

bool hasTarget(dg::Node& blend, unsigned int index) {
  const std::vector<Index> targets = nodes::blendTargets(blend);
  return std::ranges::find(targets, static_cast<Index>(index)) != targets.end();
}

}  // namespace

MObject MFnBlendShapeDeformer::create(MObject baseObject, Origin originSpace, MStatus* status) {
  MObjectArray objects;
  objects.append(baseObject);
  return create(objects, originSpace, kNormal, status);
}

MObject MFnBlendShapeDeformer::create(const MObjectArray& baseObjects, Origin originSpace,
                                      HistoryLocation location, MStatus* status) {
  std::vector<dg::Node*> bases;
  for (unsigned int i = 0; i < baseObjects.length(); ++i) {
    bases.push_back(meshOf(baseObjects[i]));
    if (bases.back()) continue;
    setStatus(status, MStatus::kInvalidParameter);
    return {};
  }
  if (bases.empty()) {
    setStatus(status, MStatus::kInvalidParameter);
    return {};
  }
  const auto made = api::document().createNode("blendShape");
  if (!made) {
    setStatus(status, MStatus::kFailure);
    return {};
  }
  nodes::DeformerPlace place;
  if (location == kFrontOfChain) place.where = nodes::DeformerPlace::Where::First;
  for (dg::Node* base : bases)
    if (!nodes::addDeformedShape(api::document(), **made, *base, {}, place)) {
      setStatus(status, MStatus::kFailure);
      return {};
    }
  MObject object = api::wrap(made->get());
  attach(object, status);
  const MStatus set = setOrigin(originSpace);
  if (status) *status = set;
  return object;
}

MStatus MFnBlendShapeDeformer::addBaseObject(const MObject& object) {
  dg::Node* blend = blendIn(object_);
  dg::Node* base = meshOf(object);
  if (!blend) return MStatus::kFailure;
  if (!base) return MStatus::kInvalidParameter;
  return api::toStatus(nodes::addDeformedShape(api::document(), *blend, *base, {}));
}
MStatus MFnBlendShapeDeformer::getBaseObjects(MObjectArray& objects) const {
  return getOutputGeometry(objects);
}

MStatus MFnBlendShapeDeformer::addTarget(const MObject& baseObject, int weightIndex,
                                         const MObject& newTarget, double fullWeight) {
  dg::Node* blend = blendIn(object_);
  if (!blend) return MStatus::kFailure;
  const Index geometry = geometryOf(*blend, baseObject);
  dg::Node* target = meshOf(newTarget);
  if (geometry == kNone || !target || !nodes::blendMismatch(*meshOf(baseObject), *target).empty())
    return MStatus::kInvalidParameter;
  return api::toStatus(
      nodes::addBlendTarget(api::document(), *blend, geometry, weightIndex, *target, fullWeight));
}
MStatus MFnBlendShapeDeformer::removeTarget(const MObject& baseObject, int weightIndex,
                                            const MObject&, double fullWeight) {
  dg::Node* blend = blendIn(object_);
  if (!blend) return MStatus::kFailure;
  const Index geometry = geometryOf(*blend, baseObject);
  if (geometry == kNone) return MStatus::kInvalidParameter;
  return api::toStatus(
      nodes::removeBlendTarget(api::document(), *blend, geometry, weightIndex, fullWeight));
}

MStatus MFnBlendShapeDeformer::getTargets(MObject baseObject, int weightIndex,
                                          MObjectArray& targets) const {
  targets.clear();
  dg::Node* blend = blendIn(object_);
  if (!blend) return MStatus::kFailure;
  const Index geometry = geometryOf(*blend, baseObject);
  if (geometry == kNone || weightIndex < 0) return MStatus::kInvalidParameter;
  for (const double weight : nodes::blendTargetWeights(*blend, geometry, weightIndex))
    if (const dg::Plug source =
            blend->graph().source(nodes::blendTargetPlug(*blend, geometry, weightIndex, weight)))
      targets.append(api::wrap(source.node()));
  return MStatus::kSuccess;
}
MStatus MFnBlendShapeDeformer::targetItemIndexList(unsigned int weightIndex, MObject baseObject,
                                                   MIntArray& inbetweens) const {
  inbetweens.clear();
  dg::Node* blend = blendIn(object_);
  if (!blend) return MStatus::kFailure;
  const Index geometry = geometryOf(*blend, baseObject);
  if (geometry == kNone) return MStatus::kInvalidParameter;
  for (const double weight :
       nodes::blendTargetWeights(*blend, geometry, static_cast<Index>(weightIndex)))
    inbetweens.append(static_cast<int>(std::lround(5000 + 1000 * weight)));
  return MStatus::kSuccess;
}

unsigned int MFnBlendShapeDeformer::numWeights(MStatus* status) const {
  dg::Node* blend = blendIn(object_, status);
  return blend ? static_cast<unsigned int>(nodes::blendTargets(*blend).size()) : 0;
}
MStatus MFnBlendShapeDeformer::weightIndexList(MIntArray& indexList) const {
  indexList.clear();
  dg::Node* blend = blendIn(object_);
  if (!blend) return MStatus::kFailure;
  for (const Index target : nodes::blendTargets(*blend)) indexList.append(target);
  return MStatus::kSuccess;
}
float MFnBlendShapeDeformer::weight(unsigned int index, MStatus* status) const {
  dg::Node* blend = blendIn(object_, status);
  if (!blend) return 0;
  if (!hasTarget(*blend, index)) {
    setStatus(status, MStatus::kInvalidParameter);
    return 0;
  }
  const auto value = blend->graph().get(blend->plug("weight").element(static_cast<Index>(index)));
  const auto* number = value ? std::get_if<double>(&*value) : nullptr;
  return number ? static_cast<float>(*number) : 0;
}
MStatus MFnBlendShapeDeformer::setWeight(unsigned int index, float weight) {
  dg::Node* blend = blendIn(object_);
  if (!blend) return MStatus::kFailure;
  if (!hasTarget(*blend, index)) return MStatus::kInvalidParameter;
  return api::toStatus(blend->graph().set(blend->plug("weight").element(static_cast<Index>(index)),
                                          static_cast<double>(weight)));
}

MFnBlendShapeDeformer::Origin MFnBlendShapeDeformer::origin(MStatus* status) const {
  dg::Node* blend = blendIn(object_, status);
  const auto value = blend ? blend->graph().get(blend->plug("origin")) : dg::Value(std::int64_t{1});
  return value && dg::equal(*value, std::int64_t{0}) ? kWorldOrigin : kLocalOrigin;
}
MStatus MFnBlendShapeDeformer::setOrigin(Origin space) {
  dg::Node* blend = blendIn(object_);
  if (!blend) return MStatus::kFailure;
  return api::toStatus(
      blend->graph().set(blend->plug("origin"), std::int64_t{space == kLocalOrigin}));
}
