#include "host/viewport/draw_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

namespace host::viewport {

std::uint32_t packColor(const Rgba& color) {
  const auto byte = [](float value) {
    return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.f, 1.f) * 255.f));
  };
  return byte(color.r) | byte(color.g) << 8 | byte(color.b) << 16 | byte(color.a) << 24;
}

DrawItem& DrawList::add(Primitive primitive, Pass pass, std::vector<Vec3f> positions) {
  auto vertices = std::make_shared<VertexData>();
  vertices->positions = std::move(positions);
  DrawItem& item = items.emplace_back();
  item.vertices = std::move(vertices);
  item.primitive = primitive;
  item.pass = pass;
  item.depthWrite = pass == Pass::Opaque;
  return item;
}

void DrawList::append(const DrawList& other) {
  items.insert(items.end(), other.items.begin(), other.items.end());
  texts.insert(texts.end(), other.texts.begin(), other.texts.end());
}

namespace {

constexpr int kMaxTextureSide = 16384;

std::size_t verticesOf(Primitive primitive) {
  return primitive == Primitive::Points ? 1 : primitive == Primitive::Lines ? 2 : 3;
}

bool finite(const Vec3f& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

bool finite(const Matrix4& matrix) {
  for (const auto& row : matrix.m)
    for (const double value : row)
      if (!std::isfinite(value)) return false;
  return true;
}

/// Collects the faults of one item, each prefixed with the item's number.
class ItemCheck {
 public:
  ItemCheck(std::size_t number, const DrawItem& item, std::vector<std::string>& problems)
      : number_(number), item_(item), problems_(problems) {}

  void run() {
    if (!item_.vertices) return report("has no vertices; leave it out instead");
    arrays();
    indices();
    style();
    if (item_.texture) texture(*item_.texture);
    if (item_.material && item_.material->texture) texture(*item_.material->texture);
  }

 private:
  void report(std::string text) { problems_.push_back(fmt::format("item {} {}", number_, text)); }

  void arrays() {
    const VertexData& data = *item_.vertices;
    const std::size_t count = data.positions.size();
    const auto fits = [&](std::size_t size) { return size == 0 || size == count; };
    if (!fits(data.normals.size()) || !fits(data.colors.size()) || !fits(data.uvs.size()))
      report("has vertex arrays of different lengths");
    if (!std::ranges::all_of(data.positions, [](const Vec3f& p) { return finite(p); }))
      report("has a position that is not finite");
    if (!std::ranges::all_of(data.normals, [](const Vec3f& n) { return finite(n); }))
      report("has a normal that is not finite");
    if (!finite(item_.world)) report("has a matrix that is not finite");
    if (item_.lit && item_.primitive == Primitive::Triangles && data.normals.size() != count)
      report("is lit but has no normals");
    const bool isTextured = item_.texture || (item_.material && item_.showsTexture);
    if (isTextured && data.uvs.size() != count) report("is textured but has no UVs");
  }

  void indices() {
    const std::size_t count = item_.vertices->positions.size();
    const std::size_t used = item_.indices ? item_.indices->size() : count;
    if (used % verticesOf(item_.primitive) != 0)
      report(fmt::format("has {} vertices, which don't make up whole primitives", used));
    if (!item_.indices) return;
    const auto bad =
        std::ranges::find_if(*item_.indices, [&](std::uint32_t i) { return i >= count; });
    if (bad != item_.indices->end())
      report(fmt::format("has index {} but only {} vertices", *bad, count));
  }

  void style() {
    const auto unit = [](float value) { return value >= 0 && value <= 1; };
    if (!(item_.width > 0) || !std::isfinite(item_.width))
      report("has a width that is not positive");
    if (!std::isfinite(item_.pull)) report("has a pull that is not finite");
    for (const Rgba& c : {item_.color, item_.outline})
      if (!unit(c.r) || !unit(c.g) || !unit(c.b) || !unit(c.a)) report("has a colour outside 0..1");
    if (item_.stipple == Stipple::Checkerboard && item_.primitive != Primitive::Triangles)
      report("has a checkerboard stipple but no triangles");
  }

  void texture(const Texture& picture) {
    const bool sized = picture.width > 0 && picture.height > 0 &&
                       picture.width <= kMaxTextureSide && picture.height <= kMaxTextureSide;
    if (!sized || picture.rgba.size() != std::size_t{4} * at(picture.width) * at(picture.height))
      report("has a texture whose size and pixels don't agree");
  }

  std::size_t number_;
  const DrawItem& item_;
  std::vector<std::string>& problems_;
};

}  // namespace

std::vector<std::string> check(const DrawList& list) {
  std::vector<std::string> problems;
  for (std::size_t i = 0; i < list.items.size(); ++i) ItemCheck(i, list.items[i], problems).run();
  for (std::size_t i = 0; i < list.texts.size(); ++i) {
    const TextItem& text = list.texts[i];
    if (!math::isFinite(text.position))
      problems.push_back(fmt::format("text {} has a position that is not finite", i));
    if (!(text.height > 0)) problems.push_back(fmt::format("text {} has no height", i));
  }
  return problems;
}

std::vector<std::size_t> drawOrder(const DrawList& list) {
  std::vector<std::size_t> order(list.items.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto key = [&](std::size_t i) {
    const DrawItem& item = list.items[i];
    return std::tuple(item.space, item.pass, item.priority);
  };
  std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) { return key(a) < key(b); });
  return order;
}

}  // namespace host::viewport
