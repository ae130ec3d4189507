#include "host/api/node/px_node.h"

#include <maya/MPxDeformerNode.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MPxSurfaceShape.h>
#include <maya/MPxTransform.h>

#include "host/api/data/data_handle.h"
#include "host/api/node/plugin_points.h"
#include "host/cmd/session.h"

namespace host::api {
namespace {

PxNodeRep* nodeRepOf(const MPxNode& node) {
  return Access::rep<PxNodeRep>(node);
}
dg::Node* nodeBehind(const MPxNode& node) {
  const PxNodeRep* rep = nodeRepOf(node);
  return rep ? rep->node : nullptr;
}

struct StaticAttribute {
  MObject* object;
  const char* name;
};

void refresh(const dg::NodeType* type, std::initializer_list<StaticAttribute> attributes) {
  if (!type) return;
  for (const StaticAttribute& each : attributes) *each.object = wrap(type->find(each.name));
}

void refreshShapesAndTransforms(dg::TypeRegistry& types) {
  using Shape = MPxSurfaceShape;
  refresh(types.find("surfaceShape"), {{&Shape::nodeBoundingBox, "boundingBox"},
                                       {&Shape::nodeBoundingBoxMin, "boundingBoxMin"},
                                       {&Shape::nodeBoundingBoxMax, "boundingBoxMax"},
                                       {&Shape::center, "center"},
                                       {&Shape::matrix, "matrix"},
                                       {&Shape::inverseMatrix, "inverseMatrix"},
                                       {&Shape::worldMatrix, "worldMatrix"},
                                       {&Shape::worldInverseMatrix, "worldInverseMatrix"},
                                       {&Shape::parentMatrix, "parentMatrix"},
                                       {&Shape::parentInverseMatrix, "parentInverseMatrix"},
                                       {&Shape::visibility, "visibility"},
                                       {&Shape::intermediateObject, "intermediateObject"},
                                       {&Shape::instObjGroups, "instObjGroups"}});
  refresh(types.find(kPluginShapeBase), {{&Shape::mControlPoints, "controlPoints"},
                                         {&Shape::mControlValueX, "xValue"},
                                         {&Shape::mControlValueY, "yValue"},
                                         {&Shape::mControlValueZ, "zValue"}});
  using Transform = MPxTransform;
  refresh(types.find("transform"), {{&Transform::translate, "translate"},
                                    {&Transform::translateX, "translateX"},
                                    {&Transform::translateY, "translateY"},
                                    {&Transform::translateZ, "translateZ"},
                                    {&Transform::rotate, "rotate"},
                                    {&Transform::rotateX, "rotateX"},
                                    {&Transform::rotateY, "rotateY"},
                                    {&Transform::rotateZ, "rotateZ"},
                                    {&Transform::scale, "scale"},
                                    {&Transform::scaleX, "scaleX"},
                                    {&Transform::scaleY, "scaleY"},
                                    {&Transform::scaleZ, "scaleZ"},
                                    {&Transform::shear, "shear"},
                                    {&Transform::shearXY, "shearXY"},
                                    {&Transform::shearXZ, "shearXZ"},
                                    {&Transform::shearYZ, "shearYZ"},
                                    {&Transform::rotateOrder, "rotateOrder"},
                                    {&Transform::rotatePivot, "rotatePivot"},
                                    {&Transform::rotatePivotTranslate, "rotatePivotTranslate"},
                                    {&Transform::scalePivot, "scalePivot"},
                                    {&Transform::scalePivotTranslate, "scalePivotTranslate"},
                                    {&Transform::rotateAxis, "rotateAxis"},
                                    {&Transform::matrix, "matrix"},
                                    {&Transform::inverseMatrix, "inverseMatrix"},
                                    {&Transform::worldMatrix, "worldMatrix"},
                                    {&Transform::worldInverseMatrix, "worldInverseMatrix"},
                                    {&Transform::parentMatrix, "parentMatrix"},
                                    {&Transform::parentInverseMatrix, "parentInverseMatrix"},
                                    {&Transform::visibility, "visibility"}});
}

}  // namespace

void refreshStaticAttributes(dg::TypeRegistry& types) {
  refresh(types.find("dependNode"),
          {{&MPxNode::message, "message"},
           {&MPxNode::isHistoricallyInteresting, "isHistoricallyInteresting"},
           {&MPxNode::caching, "caching"},
           {&MPxNode::state, "nodeState"},
           {&MPxNode::frozen, "frozen"}});
  using Deformer = MPxDeformerNode;
  refresh(types.find("weightGeometryFilter"), {{&Deformer::input, "input"},
                                               {&Deformer::inputGeom, "inputGeometry"},
                                               {&Deformer::groupId, "groupId"},
                                               {&Deformer::outputGeom, "outputGeometry"},
                                               {&Deformer::envelope, "envelope"},
                                               {&Deformer::weightList, "weightList"},
                                               {&Deformer::weights, "weights"}});
  using Locator = MPxLocatorNode;
  refresh(types.find("locator"), {{&Locator::nodeBoundingBox, "boundingBox"},
                                  {&Locator::nodeBoundingBoxMin, "boundingBoxMin"},
                                  {&Locator::nodeBoundingBoxMax, "boundingBoxMax"},
                                  {&Locator::center, "center"},
                                  {&Locator::matrix, "matrix"},
                                  {&Locator::inverseMatrix, "inverseMatrix"},
                                  {&Locator::worldMatrix, "worldMatrix"},
                                  {&Locator::worldInverseMatrix, "worldInverseMatrix"},
                                  {&Locator::parentMatrix, "parentMatrix"},
                                  {&Locator::parentInverseMatrix, "parentInverseMatrix"},
                                  {&Locator::visibility, "visibility"},
                                  {&Locator::intermediateObject, "intermediateObject"},
                                  {&Locator::instObjGroups, "instObjGroups"},
                                  {&Locator::overrideEnabled, "overrideEnabled"},
                                  {&Locator::overrideColor, "overrideColor"},
                                  {&Locator::localPosition, "localPosition"},
                                  {&Locator::localPositionX, "localPositionX"},
                                  {&Locator::localPositionY, "localPositionY"},
                                  {&Locator::localPositionZ, "localPositionZ"},
                                  {&Locator::localScale, "localScale"},
                                  {&Locator::localScaleX, "localScaleX"},
                                  {&Locator::localScaleY, "localScaleY"},
                                  {&Locator::localScaleZ, "localScaleZ"},
                                  {&Locator::worldPosition, "worldPosition"},
                                  {&Locator::worldPositionX, "worldPositionX"},
                                  {&Locator::worldPositionY, "worldPositionY"},
                                  {&Locator::worldPositionZ, "worldPositionZ"}});
  refreshShapesAndTransforms(types);
}

}  // namespace host::api

using namespace host;
using api::nodeBehind;
using api::nodeRepOf;
using api::setStatus;

MObject MPxNode::message, MPxNode::isHistoricallyInteresting, MPxNode::caching, MPxNode::state,
    MPxNode::frozen;

MPxNode::MPxNode() = default;
MPxNode::~MPxNode() = default;
void MPxNode::postConstructor() {}
MStatus MPxNode::compute(const MPlug&, MDataBlock&) {
  return MStatus::kUnknownParameter;
}
bool MPxNode::getInternalValue(const MPlug&, MDataHandle&) {
  return false;
}
bool MPxNode::setInternalValue(const MPlug&, const MDataHandle&) {
  return false;
}
bool MPxNode::getInternalValueInContext(const MPlug& plug, MDataHandle& handle, MDGContext&) {
  return getInternalValue(plug, handle);
}
bool MPxNode::setInternalValueInContext(const MPlug& plug, const MDataHandle& handle, MDGContext&) {
  return setInternalValue(plug, handle);
}
int MPxNode::internalArrayCount(const MPlug& plug, const MDGContext&) const {
  return static_cast<int>(plug.numElements());
}
void MPxNode::copyInternalData(MPxNode*) {}
MStatus MPxNode::legalConnection(const MPlug&, const MPlug&, bool, bool&) const {
  return MStatus::kUnknownParameter;
}
MStatus MPxNode::legalDisconnection(const MPlug&, const MPlug&, bool, bool&) const {
  return MStatus::kUnknownParameter;
}
MStatus MPxNode::connectionMade(const MPlug&, const MPlug&, bool) {
  return MStatus::kUnknownParameter;
}
MStatus MPxNode::connectionBroken(const MPlug&, const MPlug&, bool) {
  return MStatus::kUnknownParameter;
}
MStatus MPxNode::dependsOn(const MPlug&, const MPlug&, bool&) const {
  return MStatus::kUnknownParameter;
}
MStatus MPxNode::setDependentsDirty(const MPlug&, MPlugArray&) {
  return MStatus::kSuccess;
}
MStatus MPxNode::preEvaluation(const MDGContext&, const MEvaluationNode&) {
  return MStatus::kSuccess;
}
MStatus MPxNode::postEvaluation(const MDGContext&, const MEvaluationNode&, PostEvaluationType) {
  return MStatus::kSuccess;
}
MPxNode::SchedulingType MPxNode::schedulingType() const {
  return kDefaultScheduling;
}
bool MPxNode::isAbstractClass() const {
  return false;
}
MStatus MPxNode::shouldSave(const MPlug&, bool&) {
  return MStatus::kUnknownParameter;
}
bool MPxNode::isPassiveOutput(const MPlug&) const {
  return false;
}
MPlug MPxNode::passThroughToOne(const MPlug&) const {
  return MPlug();
}
bool MPxNode::passThroughToMany(const MPlug&, MPlugArray&) const {
  return false;
}
void MPxNode::getCacheSetup(const MEvaluationNode&, MNodeCacheDisablingInfo&, MNodeCacheSetupInfo&,
                            MObjectArray&) const {}

MObject MPxNode::thisMObject() const {
  return api::wrap(nodeBehind(*this));
}
MTypeId MPxNode::typeId() const {
  const dg::Node* node = nodeBehind(*this);
  return node ? MTypeId(node->type().id) : MTypeId();
}
MString MPxNode::typeName() const {
  const dg::Node* node = nodeBehind(*this);
  return node ? api::toMString(node->type().name) : MString();
}
MString MPxNode::name() const {
  const dg::Node* node = nodeBehind(*this);
  return node ? api::toMString(node->name()) : MString();
}
MPxNode::Type MPxNode::type() const {
  const api::PxNodeRep* rep = nodeRepOf(*this);
  return rep && rep->nodeClass ? rep->nodeClass->kind : kDependNode;
}
MStatus MPxNode::setDoNotWrite(bool flag) {
  api::PxNodeRep* rep = nodeRepOf(*this);
  if (!rep) return MStatus::kFailure;
  rep->isNotWritten = flag;
  return MStatus::kSuccess;
}
bool MPxNode::doNotWrite(MStatus* status) const {
  const api::PxNodeRep* rep = nodeRepOf(*this);
  setStatus(status, rep ? MStatus::kSuccess : MStatus::kFailure);
  return rep && rep->isNotWritten;
}
MStatus MPxNode::setExistWithoutInConnections(bool flag) {
  api::PxNodeRep* rep = nodeRepOf(*this);
  if (!rep) return MStatus::kFailure;
  rep->existsWithoutInputs = flag;
  return MStatus::kSuccess;
}
bool MPxNode::existWithoutInConnections(MStatus* status) const {
  const api::PxNodeRep* rep = nodeRepOf(*this);
  setStatus(status, rep ? MStatus::kSuccess : MStatus::kFailure);
  return !rep || rep->existsWithoutInputs;
}
// The graph knows this of types: plug-ins ask it of every node of theirs, in the constructor.
MStatus MPxNode::setExistWithoutOutConnections(bool flag) {
  const api::PxNodeRep* rep = nodeRepOf(*this);
  if (!rep || !rep->nodeClass) return MStatus::kFailure;
  rep->nodeClass->type->existsWithoutOutputs = flag;
  return MStatus::kSuccess;
}
bool MPxNode::existWithoutOutConnections(MStatus* status) const {
  const dg::Node* node = nodeBehind(*this);
  setStatus(status, node ? MStatus::kSuccess : MStatus::kFailure);
  return !node || node->type().existsWithoutOutputs;
}
void MPxNode::setMPSafe(bool) {}  // everything is evaluated on the main thread

MDataBlock MPxNode::forceCache(MDGContext& context) {
  dg::Node* node = nodeBehind(*this);
  if (!node) return {};
  auto* block = new api::BlockRep(node->shared_from_this());
  block->context = context;
  block->isEdit = api::PointEditScope::isOpen();
  return api::Access::make<MDataBlock>(block);
}

#define HOST_STATIC(Class, Name) MObject Class::Name;
HOST_STATIC(MPxLocatorNode, nodeBoundingBox)
HOST_STATIC(MPxLocatorNode, nodeBoundingBoxMin)
HOST_STATIC(MPxLocatorNode, nodeBoundingBoxMax)
HOST_STATIC(MPxLocatorNode, center)
HOST_STATIC(MPxLocatorNode, matrix)
HOST_STATIC(MPxLocatorNode, inverseMatrix)
HOST_STATIC(MPxLocatorNode, worldMatrix)
HOST_STATIC(MPxLocatorNode, worldInverseMatrix)
HOST_STATIC(MPxLocatorNode, parentMatrix)
HOST_STATIC(MPxLocatorNode, parentInverseMatrix)
HOST_STATIC(MPxLocatorNode, visibility)
HOST_STATIC(MPxLocatorNode, intermediateObject)
HOST_STATIC(MPxLocatorNode, instObjGroups)
HOST_STATIC(MPxLocatorNode, overrideEnabled)
HOST_STATIC(MPxLocatorNode, overrideColor)
HOST_STATIC(MPxLocatorNode, localPosition)
HOST_STATIC(MPxLocatorNode, localPositionX)
HOST_STATIC(MPxLocatorNode, localPositionY)
HOST_STATIC(MPxLocatorNode, localPositionZ)
HOST_STATIC(MPxLocatorNode, localScale)
HOST_STATIC(MPxLocatorNode, localScaleX)
HOST_STATIC(MPxLocatorNode, localScaleY)
HOST_STATIC(MPxLocatorNode, localScaleZ)
HOST_STATIC(MPxLocatorNode, worldPosition)
HOST_STATIC(MPxLocatorNode, worldPositionX)
HOST_STATIC(MPxLocatorNode, worldPositionY)
HOST_STATIC(MPxLocatorNode, worldPositionZ)
HOST_STATIC(MPxLocatorNode, underWorldObject)
HOST_STATIC(MPxTransform, translate)
HOST_STATIC(MPxTransform, translateX)
HOST_STATIC(MPxTransform, translateY)
HOST_STATIC(MPxTransform, translateZ)
HOST_STATIC(MPxTransform, rotate)
HOST_STATIC(MPxTransform, rotateX)
HOST_STATIC(MPxTransform, rotateY)
HOST_STATIC(MPxTransform, rotateZ)
HOST_STATIC(MPxTransform, scale)
HOST_STATIC(MPxTransform, scaleX)
HOST_STATIC(MPxTransform, scaleY)
HOST_STATIC(MPxTransform, scaleZ)
HOST_STATIC(MPxTransform, shear)
HOST_STATIC(MPxTransform, shearXY)
HOST_STATIC(MPxTransform, shearXZ)
HOST_STATIC(MPxTransform, shearYZ)
HOST_STATIC(MPxTransform, rotateOrder)
HOST_STATIC(MPxTransform, rotatePivot)
HOST_STATIC(MPxTransform, rotatePivotTranslate)
HOST_STATIC(MPxTransform, scalePivot)
HOST_STATIC(MPxTransform, scalePivotTranslate)
HOST_STATIC(MPxTransform, rotateAxis)
HOST_STATIC(MPxTransform, matrix)
HOST_STATIC(MPxTransform, inverseMatrix)
HOST_STATIC(MPxTransform, worldMatrix)
HOST_STATIC(MPxTransform, worldInverseMatrix)
HOST_STATIC(MPxTransform, parentMatrix)
HOST_STATIC(MPxTransform, parentInverseMatrix)
HOST_STATIC(MPxTransform, visibility)
HOST_STATIC(MPxSurfaceShape, mControlPoints)
HOST_STATIC(MPxSurfaceShape, mControlValueX)
HOST_STATIC(MPxSurfaceShape, mControlValueY)
HOST_STATIC(MPxSurfaceShape, mControlValueZ)
HOST_STATIC(MPxSurfaceShape, nodeBoundingBox)
HOST_STATIC(MPxSurfaceShape, nodeBoundingBoxMin)
HOST_STATIC(MPxSurfaceShape, nodeBoundingBoxMax)
HOST_STATIC(MPxSurfaceShape, center)
HOST_STATIC(MPxSurfaceShape, matrix)
HOST_STATIC(MPxSurfaceShape, inverseMatrix)
HOST_STATIC(MPxSurfaceShape, worldMatrix)
HOST_STATIC(MPxSurfaceShape, worldInverseMatrix)
HOST_STATIC(MPxSurfaceShape, parentMatrix)
HOST_STATIC(MPxSurfaceShape, parentInverseMatrix)
HOST_STATIC(MPxSurfaceShape, visibility)
HOST_STATIC(MPxSurfaceShape, intermediateObject)
HOST_STATIC(MPxSurfaceShape, instObjGroups)
#undef HOST_STATIC
