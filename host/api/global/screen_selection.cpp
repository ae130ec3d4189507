#include <maya/MGlobal.h>
#include <maya/MSelectionMask.h>
#include <maya/MTime.h>

#include <filesystem>

#include "host/api/core/access.h"
#include "host/api/core/fn_types.h"
#include "host/api/session/api_state.h"
#include "host/cmd/session.h"
#include "host/edits/time.h"
#include "host/nodes/sets.h"
#include "host/tools/screen_pick.h"
#include "host/workspace/edit_hooks.h"

namespace host::api {
namespace {

ApiState::SelectionSettings& settings() {
  return apiState().selection;
}

struct MaskWord {
  MSelectionMask::SelectionType type;
  const char* word;
};
constexpr MaskWord kObjectWords[] = {{MSelectionMask::kSelectMeshes, "polymesh"},
                                     {MSelectionMask::kSelectCameras, "camera"},
                                     {MSelectionMask::kSelectLights, "light"},
                                     {MSelectionMask::kSelectLocators, "locator"},
                                     {MSelectionMask::kSelectNurbsCurves, "nurbsCurve"},
                                     {MSelectionMask::kSelectNurbsSurfaces, "nurbsSurface"}};
constexpr MaskWord kComponentWords[] = {{MSelectionMask::kSelectMeshVerts, "vertex"},
                                        {MSelectionMask::kSelectMeshEdges, "edge"},
                                        {MSelectionMask::kSelectMeshFaces, "facet"},
                                        {MSelectionMask::kSelectMeshUVs, "polymeshUV"},
                                        {MSelectionMask::kSelectVertexFaces, "polymeshVtxFace"},
                                        {MSelectionMask::kSelectCVs, "controlVertex"},
                                        {MSelectionMask::kSelectEditPoints, "editPoint"},
                                        {MSelectionMask::kSelectHulls, "hull"}};

template <std::size_t Count, class IsOn>
MSelectionMask readMask(const MaskWord (&words)[Count], const IsOn& isOn, MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  MSelectionMask mask;
  for (const MaskWord& entry : words)
    if (isOn(entry.word)) mask.addMask(entry.type);
  return mask;
}

/// Puts the words of what the mask has, or of what it lacks, into the kinds, and takes the others
/// out.
template <std::size_t Count>
MStatus writeMask(const MaskWord (&words)[Count], const MSelectionMask& mask, bool listsWhatIsOn,
                  workspace::SelectionModes::Kinds workspace::SelectionModes::*kinds) {
  workspace::SelectionModes modes = workspace::workspaceOf(cmd::currentSession()).selectionModes;
  for (const MaskWord& entry : words) {
    if (mask.intersects(entry.type) == listsWhatIsOn)
      (modes.*kinds).insert(entry.word);
    else
      (modes.*kinds).erase(entry.word);
  }
  workspace::setSelectionModes(cmd::currentSession(), std::move(modes));
  return MStatus::kSuccess;
}

MStatus selectInRectangle(viewport::PickRect rect, MGlobal::ListAdjustment how) {
  cmd::Session& session = cmd::currentSession();
  tools::ToolRegistry& registry = workspace::workspaceOf(session).toolbox;
  const auto view = registry.views.wholeOf({});
  if (!view) return toStatus(view);
  auto picked = tools::pickFromScreen(session.document(), registry.picker(), *view, rect,
                                      registry.views.pickOptions());
  if (!picked) return toStatus(picked);
  return MGlobal::setActiveSelectionList(wrap(std::move(*picked)), how);
}

viewport::ViewPoint toViewPoint(short x, short y) {
  return {static_cast<double>(x), static_cast<double>(y)};
}

/// Puts a node of the hierarchy under another, or under the world; nothing to do where it is there
/// already.
MStatus placeUnder(const MObject& object, const MObject& parent) {
  dg::Node* node = nodeOf(object);
  dg::Node* above = nodeOf(parent);
  if (!node || !scene::isDagNode(*node) || (!parent.isNull() && !above))
    return MStatus::kInvalidParameter;
  const auto& parents = scene::dagLinks(*node).parents;
  if (parents.size() == 1 && parents.front() == above) return MStatus::kSuccess;
  return toStatus(document().reparent(scene::firstPath(*node), above));
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;

MStatus MGlobal::selectFromScreen(const short& x_pos, const short& y_pos,
                                  ListAdjustment listAdjustment, SelectionMethod) {
  const viewport::ViewPoint at = api::toViewPoint(x_pos, y_pos);
  return api::selectInRectangle({at, at}, listAdjustment);
}
MStatus MGlobal::selectFromScreen(const short& start_x, const short& start_y, const short& end_x,
                                  const short& end_y, ListAdjustment listAdjustment,
                                  SelectionMethod) {
  return api::selectInRectangle(
      {api::toViewPoint(start_x, start_y), api::toViewPoint(end_x, end_y)}, listAdjustment);
}
MGlobal::SelectionMethod MGlobal::selectionMethod(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return kSurfaceSelectMethod;
}

MSelectionMask MGlobal::miscSelectionMask(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return api::settings().misc;
}
MSelectionMask MGlobal::animSelectionMask(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return api::settings().anim;
}
MSelectionMask MGlobal::objectSelectionMask(MStatus* status) {
  const auto& off = workspace::workspaceOf(cmd::currentSession()).selectionModes.objectTypesOff;
  return api::readMask(
      api::kObjectWords, [&](const char* word) { return !off.contains(word); }, status);
}
MSelectionMask MGlobal::componentSelectionMask(MStatus* status) {
  const auto& on = workspace::workspaceOf(cmd::currentSession()).selectionModes.componentTypes;
  return api::readMask(
      api::kComponentWords, [&](const char* word) { return on.contains(word); }, status);
}
MStatus MGlobal::setMiscSelectionMask(const MSelectionMask& mask) {
  api::settings().misc = mask;
  return MStatus::kSuccess;
}
MStatus MGlobal::setAnimSelectionMask(const MSelectionMask& mask) {
  api::settings().anim = mask;
  return MStatus::kSuccess;
}
MStatus MGlobal::setObjectSelectionMask(const MSelectionMask& mask) {
  return api::writeMask(api::kObjectWords, mask, false, &workspace::SelectionModes::objectTypesOff);
}
MStatus MGlobal::setComponentSelectionMask(const MSelectionMask& mask) {
  return api::writeMask(api::kComponentWords, mask, true,
                        &workspace::SelectionModes::componentTypes);
}

MStatus MGlobal::getPreselectionHiliteList(MSelectionList& dest) {
  dest = api::settings().preselection;
  return MStatus::kSuccess;
}
MStatus MGlobal::setPreselectionHiliteList(const MSelectionList& src) {
  api::settings().preselection = src;
  return MStatus::kSuccess;
}
MStatus MGlobal::getLiveList(MSelectionList& dest) {
  dest.clear();  // no object can be made live
  return MStatus::kSuccess;
}
MStatus MGlobal::getAssociatedSets(MSelectionList& list) {
  const scene::SelectionList given = api::listOf(list);
  for (const scene::SelectionItem& item : given.items())
    for (dg::Node* set : nodes::setsOf(api::document(), item))
      api::writableList(list).add(set->shared_from_this());
  return MStatus::kSuccess;
}
MStatus MGlobal::getFunctionSetList(const MObject& object, MStringArray& array) {
  if (object.isNull()) return MStatus::kInvalidParameter;
  array.clear();
  for (int type = MFn::kBase; type < MFn::kLast; ++type)
    if (object.hasFn(static_cast<MFn::Type>(type)))
      array.append(api::fnTypeName(static_cast<MFn::Type>(type)));
  return MStatus::kSuccess;
}

MStatus MGlobal::addToModel(const MObject& object, const MObject& parent) {
  return api::placeUnder(object, parent);
}
MStatus MGlobal::addToModelAt(const MObject& object, const MVector& position,
                              const MObject& parent) {
  const MStatus status = addToModel(object, parent);
  dg::Node* node = api::nodeOf(object);
  if (!status || !node || !scene::isTransform(*node)) return status;
  return api::toStatus(api::document().graph().setVec3(
      node->plug("translate"), math::Vec3{position.x, position.y, position.z}));
}
MStatus MGlobal::removeFromModel(const MObject& object) {
  MObject node = object;
  return deleteNode(node);
}
MStatus MGlobal::setDisplayCVs(const MObject& object, bool useSelected) {
  dg::Node* node = api::nodeOf(object);
  const dg::Plug plug = node ? node->plug("dispCV") : dg::Plug();
  if (plug.isNull()) return MStatus::kInvalidParameter;
  return api::toStatus(api::document().graph().set(plug, useSelected));
}

MStatus MGlobal::viewFrame(double frame) {
  return viewFrame(MTime(frame, MTime::uiUnit()));
}
MStatus MGlobal::viewFrame(const MTime& time) {
  const auto done = edits::setCurrentTime(api::document(), time.as(MTime::kSeconds));
  if (done) cmd::currentSession().scriptJobs().triggerEvent("timeChanged");
  return api::toStatus(done);
}

MString MGlobal::getAbsolutePathToResources() {
  std::error_code ignored;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", ignored);
  return api::toMString(program.parent_path().parent_path().string());
}
MStatus MGlobal::initOpenGLPipeline() {
  return api::toStatus(workspace::workspaceOf(cmd::currentSession()).views.offscreen());
}
