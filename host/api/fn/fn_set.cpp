#include <maya/MDGModifier.h>
#include <maya/MDagPathArray.h>
#include <maya/MFnSet.h>

#include <algorithm>

#include "host/api/core/access.h"
#include "host/nodes/sets.h"
#include "host/scene/selection_algebra.h"

namespace host::api {
namespace {

dg::Node* setIn(const MObject& object, MStatus* status = nullptr) {
  dg::Node* node = nodeOf(object);
  const bool isSet = node && node->isAlive() && nodes::isSet(*node);
  setStatus(status, isSet ? MStatus::kSuccess : MStatus::kFailure);
  return isSet ? node : nullptr;
}

MSelectionList listWith(const MObject& object) {
  MSelectionList list;
  (void)list.add(object);
  return list;
}
MSelectionList listWith(const MDagPath& path, const MObject& component) {
  MSelectionList list;
  (void)list.add(path, component);
  return list;
}
MSelectionList listWith(const MPlug& plug) {
  MSelectionList list;
  (void)list.add(plug);
  return list;
}

MStatus add(const MObject& set, const MSelectionList& items) {
  dg::Node* node = setIn(set);
  if (!node) return MStatus::kFailure;
  return toStatus(nodes::addToSet(document(), *node, listOf(items)));
}
MStatus removeItems(const MObject& set, const MSelectionList& items) {
  dg::Node* node = setIn(set);
  if (!node) return MStatus::kFailure;
  return toStatus(nodes::removeFromSet(document(), *node, listOf(items)));
}
bool hasAll(const MObject& set, const MSelectionList& items, MStatus* status) {
  dg::Node* node = setIn(set, status);
  if (!node || listOf(items).isEmpty()) return false;
  for (const scene::SelectionItem& item : listOf(items).items())
    if (!nodes::isSetMember(*node, item)) return false;
  return true;
}

/// Members with sets among them replaced by theirs; a set met again is not entered twice.
void flattenInto(dg::Node& set, scene::SelectionList& all, std::vector<const dg::Node*>& entered) {
  if (std::find(entered.begin(), entered.end(), &set) != entered.end()) return;
  entered.push_back(&set);
  const scene::SelectionList members = nodes::setMembers(set);
  for (const scene::SelectionItem& item : members.items()) {
    if (item.isObject() && item.node && nodes::isSet(*item.node))
      flattenInto(*item.node, all, entered);
    else
      all.merge(item);
  }
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::listWith;
using api::setIn;
using api::setStatus;

MObject MFnSet::create(const MSelectionList& members, Restriction restriction, MStatus* status) {
  const bool isRenderable = restriction == kRenderableOnly;
  auto made = api::document().createNode(isRenderable ? "shadingEngine" : "objectSet",
                                         isRenderable ? "" : "set#");
  setStatus(status, api::toStatus(made).statusCode());
  if (!made) return object_ = MObject();
  object_ = api::wrap(*made);
  const MStatus added = members.length() > 0 ? addMembers(members) : MStatus(MStatus::kSuccess);
  setStatus(status, added.statusCode());
  return object_;
}
MObject MFnSet::create(const MSelectionList& members, MDGModifier* modifier,
                       Restriction restriction, MStatus* status) {
  if (!modifier) return create(members, restriction, status);
  object_ =
      modifier->createNode(restriction == kRenderableOnly ? "shadingEngine" : "objectSet", status);
  if (object_.isNull()) return object_;
  const MStatus done = modifier->doIt();
  setStatus(status, done ? addMembers(members).statusCode() : done.statusCode());
  return object_;
}
MFnSet::Restriction MFnSet::restriction(MStatus* status) const {
  const dg::Node* node = setIn(object_, status);
  return node && nodes::isShadingGroup(*node) ? kRenderableOnly : kNone;
}
bool MFnSet::hasRestrictions(MStatus* status) const {
  return restriction(status) != kNone;
}
MStatus MFnSet::addMember(const MObject& object) {
  return api::add(object_, listWith(object));
}
MStatus MFnSet::addMember(const MDagPath& path, const MObject& component) {
  return api::add(object_, listWith(path, component));
}
MStatus MFnSet::addMember(const MPlug& plug) {
  return api::add(object_, listWith(plug));
}
MStatus MFnSet::addMembers(const MSelectionList& list) {
  return api::add(object_, list);
}
MStatus MFnSet::removeMember(const MObject& object) {
  return api::removeItems(object_, listWith(object));
}
MStatus MFnSet::removeMember(const MDagPath& path, const MObject& component) {
  return api::removeItems(object_, listWith(path, component));
}
MStatus MFnSet::removeMember(const MPlug& plug) {
  return api::removeItems(object_, listWith(plug));
}
MStatus MFnSet::removeMembers(const MSelectionList& list) {
  return api::removeItems(object_, list);
}
MStatus MFnSet::clear() {
  dg::Node* node = setIn(object_);
  return node ? api::toStatus(nodes::clearSet(api::document(), *node)) : MStatus(MStatus::kFailure);
}
bool MFnSet::isMember(const MObject& object, MStatus* status) const {
  return api::hasAll(object_, listWith(object), status);
}
bool MFnSet::isMember(const MDagPath& path, const MObject& component, MStatus* status) const {
  return api::hasAll(object_, listWith(path, component), status);
}
bool MFnSet::isMember(const MPlug& plug, MStatus* status) const {
  return api::hasAll(object_, listWith(plug), status);
}
MStatus MFnSet::getMembers(MSelectionList& members, bool flatten) const {
  dg::Node* node = setIn(object_);
  if (!node) return MStatus::kFailure;
  scene::SelectionList list;
  std::vector<const dg::Node*> entered;
  if (flatten)
    api::flattenInto(*node, list, entered);
  else
    list = nodes::setMembers(*node);
  members = api::wrap(std::move(list));
  return MStatus::kSuccess;
}
MStatus MFnSet::getMemberPaths(MDagPathArray& members, bool) const {
  members.clear();
  MSelectionList list;
  const MStatus status = getMembers(list, true);
  for (const scene::SelectionItem& item : api::listOf(list).items())
    if (item.isDag()) members.append(api::wrap(item.path));
  return status;
}
MStatus MFnSet::getUnion(const MObject& otherSet, MSelectionList& result) {
  dg::Node *own = setIn(object_), *other = setIn(otherSet);
  if (!own || !other) return MStatus::kInvalidParameter;
  result = api::wrap(scene::unionOf(nodes::setMembers(*own), nodes::setMembers(*other)));
  return MStatus::kSuccess;
}
MStatus MFnSet::getIntersection(const MObject& otherSet, MSelectionList& result) {
  dg::Node *own = setIn(object_), *other = setIn(otherSet);
  if (!own || !other) return MStatus::kInvalidParameter;
  result = api::wrap(scene::intersectionOf(nodes::setMembers(*own), nodes::setMembers(*other)));
  return MStatus::kSuccess;
}
MStatus MFnSet::include(const MObject& otherSet) {
  dg::Node *own = setIn(object_), *other = setIn(otherSet);
  if (!own || !other) return MStatus::kInvalidParameter;
  return api::toStatus(nodes::addToSet(api::document(), *own, nodes::setMembers(*other)));
}
MStatus MFnSet::remove(const MObject& otherSet) {
  dg::Node *own = setIn(object_), *other = setIn(otherSet);
  if (!own || !other) return MStatus::kInvalidParameter;
  return api::toStatus(nodes::removeFromSet(api::document(), *own, nodes::setMembers(*other)));
}
MStatus MFnSet::intersectsWith(const MObject& otherSet, bool& result) {
  MSelectionList common;
  const MStatus status = getIntersection(otherSet, common);
  result = common.length() > 0;
  return status;
}
