#include <maya/MFnDagNode.h>
#include <maya/MTypeId.h>

#include <algorithm>

#include "host/api/core/access.h"
#include "host/cmd/session.h"
#include "host/edits/duplicate.h"
#include "host/scene/dag_paths.h"
#include "host/workspace/edit_hooks.h"

namespace host::api {
namespace {

dg::Node* dagNodeIn(const MObject& object, MStatus* status) {
  dg::Node* node = nodeOf(object);
  const bool isDag = node && scene::isDagNode(*node);
  setStatus(status, isDag ? MStatus::kSuccess : MStatus::kFailure);
  return isDag ? node : nullptr;
}

/// Below a parent; a shape without one gets a transform, which is what is returned then.
MObject createBelow(const dg::NodeType* type, const MString& name, const MObject& parent,
                    MStatus* status) {
  dg::Node* above = parent.isNull() ? nullptr : nodeOf(parent);
  if (!type || !type->isA("dagNode") || (!parent.isNull() && !above)) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  auto made = document().createNode(type->name, name.asChar(), above);
  setStatus(status, toStatus(made).statusCode());
  if (!made) return MObject();
  if (!above && scene::isShape(**made)) return wrap(scene::firstPath(**made).transform().node());
  return wrap(*made);
}

bool isBelow(const dg::Node& child, const dg::Node& ancestor) {
  for (const dg::Node* parent : scene::dagLinks(child).parents)
    if (parent && (parent == &ancestor || isBelow(*parent, ancestor))) return true;
  return false;
}

MStatus setBool(const MObject& object, const char* attribute, bool on) {
  dg::Node* node = nodeOf(object);
  if (!node) return MStatus::kFailure;
  return toStatus(node->graph().set(node->plug(attribute), std::int64_t{on}));
}

bool getBool(const MObject& object, const char* attribute, MStatus* status) {
  dg::Node* node = dagNodeIn(object, status);
  if (!node) return false;
  const auto value = node->graph().get(node->plug(attribute));
  const auto* integer = value ? std::get_if<std::int64_t>(&*value) : nullptr;
  return integer && *integer != 0;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::dagNodeIn;
using api::setStatus;
using api::wrap;

void MFnDagNode::attach(const MDagPath& path, MStatus* status) {
  MDagPath target = path;
  // A set for shapes given a transform works on the shape below it.
  if (type() != MFn::kDagNode && type() != MFn::kTransform && !target.node().hasFn(type()))
    target.extendToShape();
  MFnBase::attach(target.node(), status);
  path_ = object_.isNull() ? MDagPath() : target;
}

MStatus MFnDagNode::setObject(MObject& object) {
  return setObject(static_cast<const MObject&>(object));
}
MStatus MFnDagNode::setObject(const MObject& object) {
  path_ = MDagPath();
  return MFnBase::setObject(object);
}
MStatus MFnDagNode::setObject(const MDagPath& path) {
  MStatus status;
  attach(path, &status);
  return status;
}

MObject MFnDagNode::create(const MTypeId& typeId, const MString& name, const MObject& parent,
                           MStatus* status) {
  return object_ =
             api::createBelow(api::document().types().find(typeId.id()), name, parent, status);
}
MObject MFnDagNode::create(const MTypeId& typeId, MObject& parent, MStatus* status) {
  return create(typeId, MString(), parent, status);
}
MObject MFnDagNode::create(const MString& type, const MString& name, const MObject& parent,
                           MStatus* status) {
  return object_ =
             api::createBelow(api::document().types().find(type.asChar()), name, parent, status);
}
MObject MFnDagNode::create(const MString& type, MObject& parent, MStatus* status) {
  return create(type, MString(), parent, status);
}

unsigned int MFnDagNode::parentCount(MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  return node ? static_cast<unsigned int>(scene::dagLinks(*node).parents.size()) : 0;
}
MObject MFnDagNode::parent(unsigned int i, MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  if (!node) return MObject();
  const auto& parents = scene::dagLinks(*node).parents;
  if (i >= parents.size()) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  return wrap(parents[i]);
}
MStatus MFnDagNode::addChild(MObject& child, unsigned int index, bool keepExistingParents) {
  dg::Node* node = api::nodeOf(object_);
  dg::Node* below = api::nodeOf(child);
  if (!node || !below || !scene::isDagNode(*below)) return MStatus::kInvalidParameter;
  scene::Document& document = api::document();
  const auto done = keepExistingParents ? document.addInstance(*below, node)
                                        : document.reparent(scene::firstPath(*below), node);
  if (!done) return api::toStatus(done);
  if (index == kNextPos) return MStatus::kSuccess;
  return api::toStatus(document.reorder(*below, node, static_cast<int>(index)));
}
MStatus MFnDagNode::removeChild(MObject& child) {
  dg::Node* node = api::nodeOf(object_);
  dg::Node* below = api::nodeOf(child);
  if (!node || !below || !scene::isDagNode(*below)) return MStatus::kInvalidParameter;
  for (const scene::DagPath& path : scene::allPaths(*below)) {
    if (path.parent().node() != node) continue;
    const bool isLast = scene::dagLinks(*below).parents.size() == 1;
    return api::toStatus(isLast ? api::document().reparent(path, nullptr)
                                : api::document().removeInstance(path));
  }
  return MStatus::kInvalidParameter;
}
MStatus MFnDagNode::removeChildAt(unsigned int index) {
  MStatus status;
  MObject below = child(index, &status);
  return status ? removeChild(below) : status;
}
unsigned int MFnDagNode::childCount(MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  return node ? static_cast<unsigned int>(scene::dagLinks(*node).children.size()) : 0;
}
MObject MFnDagNode::child(unsigned int i, MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  if (!node) return MObject();
  const auto& children = scene::dagLinks(*node).children;
  if (i >= children.size()) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  return wrap(children[i]);
}
MObject MFnDagNode::dagRoot(MStatus* status) {
  dg::Node* node = dagNodeIn(object_, status);
  if (!node) return MObject();
  dg::Node* top = nullptr;
  for (dg::Node* each : scene::firstPath(*node).upwards()) top = each;
  return top ? wrap(top) : MObject();
}
bool MFnDagNode::hasParent(const MObject& other, MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  const dg::Node* above = api::nodeOf(other);
  if (!node || !above) return false;
  const auto& parents = scene::dagLinks(*node).parents;
  return std::find(parents.begin(), parents.end(), above) != parents.end();
}
bool MFnDagNode::hasChild(const MObject& other, MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  const dg::Node* below = api::nodeOf(other);
  if (!node || !below) return false;
  const auto& children = scene::dagLinks(*node).children;
  return std::find(children.begin(), children.end(), below) != children.end();
}
bool MFnDagNode::isChildOf(const MObject& other, MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  const dg::Node* above = api::nodeOf(other);
  return node && above && api::isBelow(*node, *above);
}
bool MFnDagNode::isParentOf(const MObject& other, MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  const dg::Node* below = api::nodeOf(other);
  return node && below && scene::isDagNode(*below) && api::isBelow(*below, *node);
}
bool MFnDagNode::inUnderWorld(MStatus* status) const {
  (void)dagNodeIn(object_, status);
  return false;
}
bool MFnDagNode::inModel(MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  return node && node->isAlive();
}
bool MFnDagNode::isInstanceable(MStatus* status) const {
  return dagNodeIn(object_, status) != nullptr;
}
bool MFnDagNode::isInstanced(bool indirect, MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  if (!node) return false;
  return indirect ? !scene::hasOnePath(*node) : scene::dagLinks(*node).parents.size() > 1;
}
bool MFnDagNode::isInstancedAttribute(const MObject& attribute, MStatus* status) const {
  const dg::Attribute* description = api::attributeOf(attribute);
  setStatus(status, description ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return description && description->worldSpace;
}
unsigned int MFnDagNode::instanceCount(bool total, MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  if (!node) return 0;
  return static_cast<unsigned int>(total ? scene::pathCount(*node)
                                         : scene::dagLinks(*node).parents.size());
}

MObject MFnDagNode::duplicate(bool instance, bool, MStatus* status) const {
  dg::Node* node = dagNodeIn(object_, status);
  if (!node) return MObject();
  scene::SelectionList list;
  list.add(api::pathOf(path_).isWorld() ? scene::firstPath(*node) : api::pathOf(path_));
  const edits::DuplicateHooks hooks = workspace::duplicateHooks(cmd::currentSession());
  dg::NodePtr made;
  if (instance) {
    const auto nodes = edits::instance(api::document(), std::move(list), {.hooks = &hooks});
    setStatus(status, api::toStatus(nodes).statusCode());
    if (nodes) made = nodes->front();
  } else {
    const auto copies = edits::duplicate(api::document(), std::move(list), {.hooks = &hooks});
    setStatus(status, api::toStatus(copies).statusCode());
    if (copies) made = copies->front().node;
  }
  return made ? wrap(made) : MObject();
}

MStatus MFnDagNode::getPath(MDagPath& path) {
  MStatus status;
  path = dagPath(&status);
  if (status) return status;
  return MDagPath::getAPathTo(object_, path);
}
MStatus MFnDagNode::getAllPaths(MDagPathArray& paths) {
  return MDagPath::getAllPathsTo(object_, paths);
}
MDagPath MFnDagNode::dagPath(MStatus* status) const {
  setStatus(status, api::pathOf(path_).isWorld() ? MStatus::kFailure : MStatus::kSuccess);
  return path_;
}
MString MFnDagNode::fullPathName(MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  if (!node) return MString();
  const scene::DagPath& path = api::pathOf(path_);
  return api::toMString((path.isWorld() ? scene::firstPath(*node) : path).fullName());
}
MString MFnDagNode::partialPathName(MStatus* status) const {
  const dg::Node* node = dagNodeIn(object_, status);
  if (!node) return MString();
  const scene::DagPath& path = api::pathOf(path_);
  return api::toMString((path.isWorld() ? scene::firstPath(*node) : path).partialName());
}

MMatrix MFnDagNode::transformationMatrix(MStatus* status) const {
  dg::Node* node = dagNodeIn(object_, status);
  if (!node || !scene::isTransform(*node)) return MMatrix();
  return api::toMMatrix(scene::localMatrix(*node));
}
bool MFnDagNode::isIntermediateObject(MStatus* status) const {
  return api::getBool(object_, "intermediateObject", status);
}
MStatus MFnDagNode::setIntermediateObject(bool isIntermediate) {
  return api::setBool(object_, "intermediateObject", isIntermediate);
}
