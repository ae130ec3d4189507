#include <maya/M3dView.h>

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "host/api/view/direct_target.h"
#include "host/api/view/view_access.h"
#include "host/api/view/view_rep.h"
#include "host/viewport/backends/direct_draw.h"
#include "host/viewport/display_colors.h"

using namespace host;
using api::directTarget;
using api::setStatus;
using api::viewOf;

// Drawing with OpenGL in a view, and its selection mode.

namespace host::api {
namespace {

struct Port {
  unsigned int x, y, width, height;
};
std::vector<Port>& pushedPorts() {
  static std::vector<Port> ports;
  return ports;
}

/// Where the hits of the selection mode go; empty: the mode is off.
std::vector<std::uint32_t>& ownHits() {
  static std::vector<std::uint32_t> hits;
  return hits;
}
bool& isSelecting() {
  static bool isOn = false;
  return isOn;
}

/// The colour that text is drawn in: that of the last setDrawColor.
viewport::Rgba& drawColor() {
  static viewport::Rgba color{1, 1, 1, 1};
  return color;
}

void applyPort(const Port& port) {
  viewport::setDirectViewport(static_cast<int>(port.x), static_cast<int>(port.y),
                              static_cast<int>(port.width), static_cast<int>(port.height));
}

MStatus naming(bool isAllowed) {
  return isAllowed ? MStatus::kSuccess : MStatus::kFailure;
}

constexpr std::array<viewport::Rgba, 31> kColors = {{
    {0, 0, 0, 1},
    {0.25f, 0.25f, 0.25f, 1},
    {0.6f, 0.6f, 0.6f, 1},
    {0.61f, 0, 0.16f, 1},
    {0, 0.02f, 0.38f, 1},
    {0, 0, 1, 1},
    {0, 0.28f, 0.1f, 1},
    {0.15f, 0, 0.26f, 1},
    {0.78f, 0, 0.78f, 1},
    {0.54f, 0.28f, 0.2f, 1},
    {0.25f, 0.14f, 0.12f, 1},
    {0.6f, 0.15f, 0, 1},
    {1, 0, 0, 1},
    {0, 1, 0, 1},
    {0, 0.25f, 0.6f, 1},
    {1, 1, 1, 1},
    {1, 1, 0, 1},
    {0.39f, 0.86f, 1, 1},
    {0.26f, 1, 0.64f, 1},
    {1, 0.69f, 0.69f, 1},
    {0.89f, 0.68f, 0.47f, 1},
    {1, 1, 0.39f, 1},
    {0, 0.6f, 0.33f, 1},
    {0.63f, 0.41f, 0.19f, 1},
    {0.62f, 0.63f, 0.19f, 1},
    {0.41f, 0.63f, 0.19f, 1},
    {0.19f, 0.63f, 0.36f, 1},
    {0.19f, 0.63f, 0.63f, 1},
    {0.19f, 0.4f, 0.63f, 1},
    {0.43f, 0.19f, 0.63f, 1},
    {0.63f, 0.19f, 0.41f, 1},
}};

}  // namespace

MColor indexedColor(unsigned int index) {
  return toMColor(kColors[index < kColors.size() ? index : 0]);
}
unsigned int indexedColorCount() {
  return static_cast<unsigned int>(kColors.size());
}

}  // namespace host::api

MStatus M3dView::pushViewport(unsigned int x, unsigned int y, unsigned int width,
                              unsigned int height) {
  if (!viewOf(*this) || width == 0 || height == 0) return MStatus::kFailure;
  api::pushedPorts().push_back({x, y, width, height});
  if (directTarget().isOpen()) api::applyPort(api::pushedPorts().back());
  return MStatus::kSuccess;
}
MStatus M3dView::popViewport() {
  const workspace::View* view = viewOf(*this);
  if (!view || api::pushedPorts().empty()) return MStatus::kFailure;
  api::pushedPorts().pop_back();
  const api::Port whole{0, 0, static_cast<unsigned int>(view->port.width),
                        static_cast<unsigned int>(view->port.height)};
  if (directTarget().isOpen())
    api::applyPort(api::pushedPorts().empty() ? whole : api::pushedPorts().back());
  return MStatus::kSuccess;
}

MStatus M3dView::beginGL() {
  if (directTarget().begin()) return MStatus::kSuccess;
  directTarget().end();
  return MStatus::kFailure;
}
MStatus M3dView::endGL() {
  if (!directTarget().isOpen()) return MStatus::kFailure;
  directTarget().end();
  return MStatus::kSuccess;
}
MStatus M3dView::beginOverlayDrawing() {
  const MStatus status = beginGL();
  if (status) viewport::beginDirectOverlay();
  return status;
}
MStatus M3dView::endOverlayDrawing() {
  return endGL();
}
MStatus M3dView::beginXorDrawing(bool wantStippling, bool wantDepthTest, float lineWidth,
                                 StippleStyle stippleStyle, const MColor& lineColor) {
  const MStatus status = beginGL();
  if (status)
    viewport::beginDirectXor(wantStippling && stippleStyle == kStippleDashed, wantDepthTest,
                             lineWidth, api::toRgba(lineColor));
  return status;
}
MStatus M3dView::endXorDrawing() {
  if (!directTarget().isOpen()) return MStatus::kFailure;
  viewport::endDirectXor();
  return endGL();
}

MStatus M3dView::drawText(const MString& text, const MPoint position, TextPosition textPosition) {
  if (!viewOf(*this)) return MStatus::kFailure;
  viewport::TextItem item;
  item.text = api::toStd(text);
  item.position = {position.x, position.y, position.z};
  item.space = viewport::Space::World;
  item.align = textPosition == kLeft    ? viewport::TextAlign::Left
               : textPosition == kRight ? viewport::TextAlign::Right
                                        : viewport::TextAlign::Center;
  item.color = api::drawColor();
  const bool isOutside = !directTarget().isOpen();
  if (isOutside && !beginGL()) return MStatus::kFailure;
  directTarget().addText(std::move(item));
  if (isOutside) directTarget().end();
  return MStatus::kSuccess;
}

MStatus M3dView::setDrawColor(unsigned int index, ColorTable table) {
  MStatus status;
  const MColor color = colorAtIndex(index, table, &status);
  return status ? setDrawColor(color) : status;
}
MStatus M3dView::setDrawColor(const MColor& color) {
  return setDrawColorAndAlpha(MColor(color.r, color.g, color.b, 1.0f));
}
MStatus M3dView::setDrawColorAndAlpha(const MColor& color) {
  api::drawColor() = api::toRgba(color);
  if (directTarget().isOpen()) viewport::setDirectColor(api::drawColor());
  return MStatus::kSuccess;
}
unsigned int M3dView::numDormantColors(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return api::indexedColorCount();
}
unsigned int M3dView::numActiveColors(MStatus* status) const {
  return numDormantColors(status);
}
MColor M3dView::colorAtIndex(unsigned int index, ColorTable table, MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  if (table & kBackgroundColor) return backgroundColor(status);
  if (table & kTemplateColor) return api::toMColor(viewport::displayColors().wireTemplate);
  if (index >= api::indexedColorCount()) setStatus(status, MStatus::kInvalidParameter);
  return api::indexedColor(index);
}
MColor M3dView::backgroundColor(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return api::toMColor(viewport::displayColors().backgroundBottom);
}

MStatus M3dView::beginSelect(unsigned int* buffer, int size) {
  if (api::isSelecting() || !beginGL()) return MStatus::kFailure;
  constexpr std::size_t kOwnSize = 4096;
  api::ownHits().assign(buffer ? 0 : kOwnSize, 0);
  const std::span<std::uint32_t> hits =
      buffer ? std::span<std::uint32_t>(buffer, at(std::max(size, 0)))
             : std::span<std::uint32_t>(api::ownHits());
  viewport::beginDirectSelect(hits);
  api::isSelecting() = true;
  return MStatus::kSuccess;
}
int M3dView::endSelect(MStatus* status) {
  setStatus(status, api::isSelecting() ? MStatus::kSuccess : MStatus::kFailure);
  if (!api::isSelecting()) return 0;
  api::isSelecting() = false;
  const int hits = viewport::endDirectSelect();
  (void)endGL();
  if (hits < 0) setStatus(status, MStatus::kFailure);
  return hits;
}
bool M3dView::selectMode() const {
  return api::isSelecting();
}
MStatus M3dView::initNames() {
  if (api::isSelecting()) viewport::initDirectNames();
  return api::naming(api::isSelecting());
}
MStatus M3dView::loadName(unsigned int name) {
  if (api::isSelecting()) viewport::loadDirectName(name);
  return api::naming(api::isSelecting());
}
MStatus M3dView::pushName(unsigned int name) {
  if (api::isSelecting()) viewport::pushDirectName(name);
  return api::naming(api::isSelecting());
}
MStatus M3dView::popName() {
  if (api::isSelecting()) viewport::popDirectName();
  return api::naming(api::isSelecting());
}
