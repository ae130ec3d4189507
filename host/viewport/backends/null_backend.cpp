#include "host/viewport/backends/null_backend.h"

#include <cmath>

#include "host/base/assert.h"

namespace host::viewport {

Result<void> NullBackend::beginFrame(const FrameSettings& settings) {
  if (isInFrame_) report("beginFrame was called inside a frame; call endFrame first");
  if (isDirect_) report("beginFrame was called inside a direct section; call endDirect first");
  const PortSize port = settings.port;
  if (port.width < 1 || port.height < 1 || port.width > maxSide() || port.height > maxSide())
    return fail("A picture of {} by {} pixels can't be drawn; a side may have 1 to {} pixels.",
                port.width, port.height, maxSide());
  settings_ = settings;
  isInFrame_ = true;
  ++counts_.frames;
  return {};
}

void NullBackend::draw(const DrawList& list) {
  if (!isInFrame_) report("draw was called outside a frame; call beginFrame first");
  if (isDirect_) report("draw was called inside a direct section; call endDirect first");
  const std::vector<std::string> faults = check(list);
  problems_.insert(problems_.end(), faults.begin(), faults.end());
  for (const DrawItem& item : list.items) {
    if (!item.vertices) continue;
    const std::size_t used = item.indices ? item.indices->size() : item.vertices->positions.size();
    if (item.primitive == Primitive::Points) counts_.points += used;
    if (item.primitive == Primitive::Lines) counts_.lines += used / 2;
    if (item.primitive == Primitive::Triangles) counts_.triangles += used / 3;
  }
  counts_.texts += list.texts.size();
}

void NullBackend::endFrame() {
  if (!isInFrame_) report("endFrame was called without beginFrame");
  if (isDirect_) report("endFrame was called inside a direct section; call endDirect first");
  isInFrame_ = false;
}

bool NullBackend::beginDirect(const Matrix4& world) {
  if (isDirect_) report("beginDirect was called inside a direct section; call endDirect first");
  for (const auto& row : world.m)
    for (const double value : row)
      if (!std::isfinite(value)) report("beginDirect was given a matrix that is not finite");
  isDirect_ = true;
  ++counts_.directSections;
  return false;
}

void NullBackend::endDirect() {
  if (!isDirect_) report("endDirect was called without beginDirect");
  isDirect_ = false;
}

Result<Image> NullBackend::readPixels() {
  if (counts_.frames == 0) return fail("Nothing was drawn yet, so there is no picture to read.");
  if (isInFrame_) report("readPixels was called inside a frame; call endFrame first");
  Image image{settings_.port.width, settings_.port.height, {}};
  image.rgba.reserve(std::size_t{4} * at(image.width) * at(image.height));
  const Rgba top = settings_.backgroundTop;
  const Rgba bottom = settings_.backgroundBottom;
  for (int y = 0; y < image.height; ++y) {
    const float t = (static_cast<float>(y) + 0.5f) / static_cast<float>(image.height);
    const std::uint32_t packed =
        packColor({top.r + (bottom.r - top.r) * t, top.g + (bottom.g - top.g) * t,
                   top.b + (bottom.b - top.b) * t, top.a + (bottom.a - top.a) * t});
    for (int x = 0; x < image.width; ++x)
      for (int byte = 0; byte < 4; ++byte)
        image.rgba.push_back(static_cast<std::uint8_t>(packed >> (8 * byte)));
  }
  return image;
}

}  // namespace host::viewport
