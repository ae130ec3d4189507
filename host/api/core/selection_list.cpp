#include <maya/MSelectionList.h>

#include <algorithm>

#include "host/api/core/access.h"

namespace host::api {

MSelectionList wrap(scene::SelectionList list) {
  return Access::make<MSelectionList>(new SelectionRep(std::move(list)));
}

const scene::SelectionList& listOf(const MSelectionList& list) {
  static const scene::SelectionList empty;
  const auto* rep = Access::rep<SelectionRep>(list);
  return rep ? rep->list : empty;
}

scene::SelectionList& writableList(MSelectionList& list) {
  Handle& handle = Access::handle(list);
  if (!handle || handle.isShared()) handle = Handle(new SelectionRep(listOf(list)));
  return static_cast<SelectionRep*>(handle.get())->list;
}

namespace {

/// A component list item of several types hands out the first; the iterators visit each.
MObject componentObject(const scene::SelectionItem& item) {
  return item.components.empty() ? MObject() : wrap(item.components.front());
}

Result<scene::SelectionItem> toItem(const MDagPath& path, const MObject& component) {
  const scene::DagPath& inner = pathOf(path);
  if (inner.isWorld() || !inner.isValid()) return fail("the DAG path is not valid");
  scene::SelectionItem item;
  item.path = inner;
  item.node = inner.node()->shared_from_this();
  if (component.isNull()) return item;
  const scene::Component* set = componentOf(component);
  if (!set) return fail("the object given for {} is no component", inner.partialName());
  item.components.push_back(*set);
  return item;
}

scene::SelectionMerge mergeOf(MSelectionList::MergeStrategy strategy) {
  switch (strategy) {
    case MSelectionList::kXORWithList:
      return scene::SelectionMerge::Toggle;
    case MSelectionList::kRemoveFromList:
      return scene::SelectionMerge::Remove;
    default:
      return scene::SelectionMerge::Add;
  }
}

const scene::SelectionItem* itemAt(const MSelectionList& list, unsigned int index) {
  const auto& items = listOf(list).items();
  return index < items.size() ? &items[index] : nullptr;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::itemAt;
using api::listOf;
using api::setStatus;
using api::wrap;
using api::writableList;

unsigned int MSelectionList::length(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return static_cast<unsigned int>(listOf(*this).length());
}

bool MSelectionList::isEmpty(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return listOf(*this).isEmpty();
}

MStatus MSelectionList::clear() {
  handle_ = api::Handle();
  return MStatus::kSuccess;
}

MStatus MSelectionList::getDependNode(unsigned int index, MObject& node) const {
  const scene::SelectionItem* item = itemAt(*this, index);
  if (!item) return MStatus::kInvalidParameter;
  node = wrap(item->plug.isNull() ? item->node.get() : item->plug.node());
  return node.isNull() ? MStatus::kFailure : MStatus::kSuccess;
}

MStatus MSelectionList::getDagPath(unsigned int index, MDagPath& path, MObject& component) const {
  const scene::SelectionItem* item = itemAt(*this, index);
  if (!item) return MStatus::kInvalidParameter;
  if (!item->isDag()) return MStatus::kInvalidParameter;
  path = wrap(item->path);
  // The default argument is the shared null object, which stays null.
  if (&component != &MObject::kNullObj) component = api::componentObject(*item);
  return MStatus::kSuccess;
}

MStatus MSelectionList::getPlug(unsigned int index, MPlug& plug) const {
  const scene::SelectionItem* item = itemAt(*this, index);
  if (!item || item->plug.isNull()) return MStatus::kInvalidParameter;
  plug = wrap(item->plug);
  return MStatus::kSuccess;
}

MStatus MSelectionList::getSelectionStrings(MStringArray& names) const {
  names = api::toMStringArray(listOf(*this).names());
  return MStatus::kSuccess;
}

MStatus MSelectionList::getSelectionStrings(unsigned int index, MStringArray& names) const {
  const scene::SelectionItem* item = itemAt(*this, index);
  if (!item) return MStatus::kInvalidParameter;
  scene::SelectionList one;
  one.merge(*item);
  names = api::toMStringArray(one.names());
  return MStatus::kSuccess;
}

MStatus MSelectionList::add(const MObject& object, bool) {
  dg::Node* node = api::nodeOf(object);
  if (!node || !node->isAlive()) return MStatus::kInvalidParameter;
  if (scene::isDagNode(*node))
    writableList(*this).add(scene::firstPath(*node));
  else
    writableList(*this).add(node->shared_from_this());
  return MStatus::kSuccess;
}

MStatus MSelectionList::add(const MPlug& plug, bool) {
  const dg::Plug inner = api::plugOf(plug);
  if (inner.isNull()) return MStatus::kInvalidParameter;
  writableList(*this).add(inner);
  return MStatus::kSuccess;
}

MStatus MSelectionList::add(const MDagPath& path, const MObject& component, bool) {
  const auto item = api::toItem(path, component);
  if (!item) return api::toStatus(item, MStatus::kInvalidParameter);
  writableList(*this).merge(*item);
  return MStatus::kSuccess;
}

MStatus MSelectionList::add(const MString& matchString, bool) {
  const auto found = api::document().resolve(matchString.asChar());
  if (!found || found->isEmpty()) return MStatus::kInvalidParameter;
  writableList(*this).merge(*found);
  return MStatus::kSuccess;
}

MStatus MSelectionList::remove(unsigned int index) {
  if (!itemAt(*this, index)) return MStatus::kInvalidParameter;
  writableList(*this).removeAt(index);
  return MStatus::kSuccess;
}

namespace {
MStatus replaceWith(MSelectionList& list, unsigned int index, const MSelectionList& single) {
  if (!itemAt(list, index)) return MStatus::kInvalidParameter;
  writableList(list).replaceAt(index, listOf(single).items().front());
  return MStatus::kSuccess;
}
}  // namespace

MStatus MSelectionList::replace(unsigned int index, const MObject& item) {
  MSelectionList single;
  const MStatus status = single.add(item);
  return status ? replaceWith(*this, index, single) : status;
}
MStatus MSelectionList::replace(unsigned int index, const MPlug& plug) {
  MSelectionList single;
  const MStatus status = single.add(plug);
  return status ? replaceWith(*this, index, single) : status;
}
MStatus MSelectionList::replace(unsigned int index, const MDagPath& path,
                                const MObject& component) {
  MSelectionList single;
  const MStatus status = single.add(path, component);
  return status ? replaceWith(*this, index, single) : status;
}

bool MSelectionList::hasItem(const MObject& object, MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  const dg::Node* node = api::nodeOf(object);
  const auto& items = listOf(*this).items();
  return node && std::any_of(items.begin(), items.end(), [node](const auto& item) {
           return item.isObject() && item.node.get() == node;
         });
}

bool MSelectionList::hasItem(const MPlug& plug, MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  const dg::Plug inner = api::plugOf(plug);
  const auto& items = listOf(*this).items();
  return !inner.isNull() && std::any_of(items.begin(), items.end(),
                                        [&](const auto& item) { return item.plug == inner; });
}

namespace {
/// How many of `wanted`'s components the list holds, and how many it has in all; objects count as
/// one.
void countHeld(const scene::SelectionList& list, const scene::SelectionItem& wanted,
               std::size_t& held, std::size_t& all) {
  held = all = 0;
  for (const scene::SelectionItem& item : list.items()) {
    if (!(item.path == wanted.path)) continue;
    if (wanted.components.empty()) {
      all = 1;
      held = item.isObject() ? 1 : 0;
      if (held) return;
      continue;
    }
    const scene::Component& set = wanted.components.front();
    const Index count = scene::componentCount(wanted.path, set.type());
    all = set.count(count);
    const scene::Component* mine = item.component(set.type());
    if (!mine) continue;
    scene::Component both = set;
    both.intersect(*mine, count);
    held = both.count(count);
    return;
  }
}
}  // namespace

bool MSelectionList::hasItem(const MDagPath& path, const MObject& component,
                             MStatus* status) const {
  const auto item = api::toItem(path, component);
  setStatus(status, item ? MStatus::kSuccess : MStatus::kInvalidParameter);
  if (!item) return false;
  std::size_t held = 0, all = 0;
  countHeld(listOf(*this), *item, held, all);
  return all > 0 && held == all;
}

bool MSelectionList::hasItemPartly(const MDagPath& path, const MObject& component,
                                   MStatus* status) const {
  const auto item = api::toItem(path, component);
  setStatus(status, item ? MStatus::kSuccess : MStatus::kInvalidParameter);
  if (!item) return false;
  std::size_t held = 0, all = 0;
  countHeld(listOf(*this), *item, held, all);
  return held > 0;
}

MStatus MSelectionList::toggle(const MDagPath& path, const MObject& component) {
  return merge(path, component, kXORWithList);
}

MStatus MSelectionList::merge(const MSelectionList& other, MergeStrategy strategy) {
  const scene::SelectionList theirs = listOf(other);
  writableList(*this).merge(theirs, api::mergeOf(strategy));
  return MStatus::kSuccess;
}

MStatus MSelectionList::merge(const MDagPath& path, const MObject& component,
                              MergeStrategy strategy) {
  const auto item = api::toItem(path, component);
  if (!item) return api::toStatus(item, MStatus::kInvalidParameter);
  writableList(*this).merge(*item, api::mergeOf(strategy));
  return MStatus::kSuccess;
}

MStatus MSelectionList::intersect(const MSelectionList& other, bool) {
  // A without (A without B) leaves what is in both.
  scene::SelectionList outside = listOf(*this);
  outside.merge(listOf(other), scene::SelectionMerge::Remove);
  writableList(*this).merge(outside, scene::SelectionMerge::Remove);
  return MStatus::kSuccess;
}

std::ostream& operator<<(std::ostream& os, const MSelectionList& list) {
  const auto names = listOf(list).names();
  for (std::size_t i = 0; i < names.size(); ++i) os << (i ? " " : "") << names[i];
  return os;
}
