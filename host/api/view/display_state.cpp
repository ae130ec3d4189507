#include "host/api/view/display_state.h"

#include "host/api/core/access.h"
#include "host/api/view/view_access.h"
#include "host/api/view/view_rep.h"
#include "host/scene/display_rules.h"
#include "host/viewport/display_colors.h"

namespace host::api {
namespace {

using MHWRender::DisplayStatus;

/// What the selection says of a path: dormant, active, lead or with active components.
DisplayStatus selectionStatus(const scene::DagPath& path) {
  const auto& items = document().selection().items();
  DisplayStatus status = MHWRender::kDormant;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (!items[i].isDag()) continue;
    const bool covers = items[i].path == path || items[i].path.isAncestorOf(path);
    if (!items[i].isObject()) {
      if (items[i].path.toShape() == path.toShape() && status == MHWRender::kDormant)
        status = MHWRender::kActiveComponent;
    } else if (covers) {
      status = i + 1 == items.size() ? MHWRender::kLead : MHWRender::kActive;
    }
  }
  return status;
}

}  // namespace

DisplayStatus displayStatusOf(const scene::DagPath& path) {
  bool isFaint = false;
  for (dg::Node* node : path.nodes()) {
    if (!scene::isShown(*node)) return MHWRender::kInvisible;
    if (scene::isIntermediate(*node)) return MHWRender::kIntermediateObject;
    isFaint = isFaint || scene::isTemplate(*node);
  }
  const DisplayStatus selected = selectionStatus(path);
  if (isFaint)
    return selected == MHWRender::kActive || selected == MHWRender::kLead
               ? MHWRender::kActiveTemplate
               : MHWRender::kTemplate;
  for (const scene::SelectionItem& item : document().hilite().items())
    if (item.isDag() && item.path.toShape() == path.toShape()) return MHWRender::kHilite;
  return selected;
}

namespace {

/// The colour that an object's override gives its lines; the nearest to the leaf counts.
const MColor* overrideColor(const scene::DagPath& path) {
  static MColor color;
  for (dg::Node* node : path.upwards()) {
    if (scene::numberOr(*node, "overrideEnabled", 0) == 0) continue;
    const double index = scene::numberOr(*node, "overrideColor", 0);
    if (index < 1) return nullptr;
    color = indexedColor(static_cast<unsigned int>(index) - 1);
    return &color;
  }
  return nullptr;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;

namespace MHWRender {

DisplayStatus MGeometryUtilities::displayStatus(const MDagPath& path, MStatus* status) {
  const bool isValid = path.isValid();
  setStatus(status, isValid ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return isValid ? api::displayStatusOf(api::pathOf(path)) : kNoStatus;
}

MColor MGeometryUtilities::wireframeColor(const MDagPath& path, MStatus* status) {
  const viewport::DisplayColors& colors = viewport::displayColors();
  switch (displayStatus(path, status)) {
    case kLead:
      return api::toMColor(colors.wireLead);
    case kActive:
      return api::toMColor(colors.wireSelected);
    case kHilite:
    case kActiveComponent:
      return api::toMColor(colors.wireHilitedOnly);
    case kTemplate:
      return api::toMColor(colors.wireTemplate);
    case kActiveTemplate:
      return api::toMColor(colors.vertexSelected);
    default:
      break;
  }
  const MColor* own = path.isValid() ? api::overrideColor(api::pathOf(path)) : nullptr;
  return own ? *own : api::toMColor(colors.wireOnly);
}

}  // namespace MHWRender
