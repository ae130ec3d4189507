#include <maya/MGlobal.h>

#include "host/api/core/access.h"
#include "host/cmd/session.h"
#include "host/edits/select.h"
#include "host/workspace/edit_hooks.h"

namespace host::api {
namespace {

/// Changes the active selection as one of the list adjustments does.
void adjust(const scene::SelectionList& change, MGlobal::ListAdjustment how) {
  scene::SelectionList list;
  if (how == MGlobal::kReplaceList) {
    list = change;
  } else if (how == MGlobal::kAddToHeadOfList) {
    list = change;
    list.merge(document().selection());
  } else {
    list = document().selection();
    list.merge(change, how == MGlobal::kXORWithList      ? scene::SelectionMerge::Toggle
                       : how == MGlobal::kRemoveFromList ? scene::SelectionMerge::Remove
                                                         : scene::SelectionMerge::Add);
  }
  document().setSelection(std::move(list));
}

MStatus adjustByName(const MString& name, MGlobal::ListAdjustment how) {
  auto found = document().resolve(name.asChar());
  if (!found) return toStatus(found, MStatus::kInvalidParameter);
  if (found->isEmpty()) return MStatus::kInvalidParameter;
  adjust(*found, how);
  return MStatus::kSuccess;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;

MStatus MGlobal::getActiveSelectionList(MSelectionList& dest, bool) {
  dest = api::wrap(api::document().selection());
  return MStatus::kSuccess;
}
MStatus MGlobal::setActiveSelectionList(const MSelectionList& src, ListAdjustment listAdjustment) {
  api::adjust(api::listOf(src), listAdjustment);
  return MStatus::kSuccess;
}
MStatus MGlobal::clearSelectionList() {
  api::document().setSelection({});
  return MStatus::kSuccess;
}
MStatus MGlobal::getHiliteList(MSelectionList& dest) {
  dest = api::wrap(api::document().hilite());
  return MStatus::kSuccess;
}
MStatus MGlobal::setHiliteList(const MSelectionList& src) {
  scene::SelectionList list;
  // Hiliting is a state of objects: the components of an item count for their object.
  for (const scene::SelectionItem& item : api::listOf(src).items())
    if (item.isDag()) list.add(item.path);
  api::document().setHilite(std::move(list));
  return MStatus::kSuccess;
}
MStatus MGlobal::getSelectionListByName(const MString& name, MSelectionList& list) {
  auto found = api::document().resolve(name.asChar());
  if (!found) return api::toStatus(found, MStatus::kInvalidParameter);
  if (found->isEmpty()) return MStatus::kInvalidParameter;
  api::writableList(list).merge(*found);
  return MStatus::kSuccess;
}

MStatus MGlobal::select(const MDagPath& object, const MObject& component,
                        ListAdjustment listAdjustment) {
  MSelectionList list;
  const MStatus status = list.add(object, component);
  return status ? setActiveSelectionList(list, listAdjustment) : status;
}
MStatus MGlobal::select(const MObject& object, ListAdjustment listAdjustment) {
  MSelectionList list;
  const MStatus status = list.add(object);
  return status ? setActiveSelectionList(list, listAdjustment) : status;
}
MStatus MGlobal::selectByName(const MString& name, ListAdjustment listAdjustment) {
  return api::adjustByName(name, listAdjustment);
}
MStatus MGlobal::selectCommand(const MSelectionList& src, ListAdjustment listAdjustment) {
  using edits::SelectHow;
  static constexpr SelectHow kHow[] = {SelectHow::Replace, SelectHow::Toggle, SelectHow::Add,
                                       SelectHow::Remove, SelectHow::AddFirst};
  const auto done = cmd::currentSession().dispatcher().recordStep("select", [&]() -> Result<void> {
    edits::select(api::document(), edits::expandSets(api::listOf(src)), kHow[listAdjustment]);
    return {};
  });
  return api::toStatus(done);
}
MStatus MGlobal::unselect(const MDagPath& object, const MObject& component) {
  return select(object, component, kRemoveFromList);
}
MStatus MGlobal::unselect(const MObject& object) {
  return select(object, kRemoveFromList);
}
MStatus MGlobal::unselectByName(const MString& name) {
  return api::adjustByName(name, kRemoveFromList);
}

MGlobal::SelectionMode MGlobal::selectionMode(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  // There is no picking of roots, leaves or templates alone.
  return workspace::workspaceOf(cmd::currentSession()).selectionModes.isComponentMode
             ? kSelectComponentMode
             : kSelectObjectMode;
}
MStatus MGlobal::setSelectionMode(SelectionMode mode) {
  workspace::SelectionModes modes = workspace::workspaceOf(cmd::currentSession()).selectionModes;
  if (mode == kSelectObjectMode) modes.isComponentMode = false;
  if (mode == kSelectComponentMode || mode == kSelectHandleMode) modes.isComponentMode = true;
  workspace::setSelectionModes(cmd::currentSession(), std::move(modes));
  return MStatus::kSuccess;
}
