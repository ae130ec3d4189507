#include <maya/MStringArray.h>
#include <maya/MUIDrawManager.h>
#include <maya/MUintArray.h>

#include "host/api/view/draw_pen.h"
#include "host/viewport/stroke_font.h"

using namespace host;
using api::penOf;
using api::toVec3;
using math::Vec3;

// The calls that take arrays, and text.

namespace {

using Manager = MHWRender::MUIDrawManager;
using Indices = std::vector<unsigned int>;

/// The vertices of separate points, segments or triangles that a run of vertices stands for.
Indices spread(Manager::Primitive mode, const Indices& run) {
  Indices result;
  const std::size_t count = run.size();
  switch (mode) {
    case Manager::kPoints:
      return run;
    case Manager::kLines:
      return Indices(run.begin(), run.begin() + static_cast<std::ptrdiff_t>(count / 2 * 2));
    case Manager::kTriangles:
      return Indices(run.begin(), run.begin() + static_cast<std::ptrdiff_t>(count / 3 * 3));
    case Manager::kLineStrip:
    case Manager::kClosedLine:
      for (std::size_t i = 0; i + 1 < count; ++i) result.insert(result.end(), {run[i], run[i + 1]});
      if (mode == Manager::kClosedLine && count > 2)
        result.insert(result.end(), {run.back(), run.front()});
      return result;
    case Manager::kTriStrip:
      for (std::size_t i = 0; i + 2 < count; ++i)
        result.insert(result.end(), {run[i + i % 2], run[i + 1 - i % 2], run[i + 2]});
      return result;
  }
  return result;
}

viewport::Primitive primitiveOf(Manager::Primitive mode) {
  if (mode == Manager::kPoints) return viewport::Primitive::Points;
  const bool isTriangles = mode == Manager::kTriangles || mode == Manager::kTriStrip;
  return isTriangles ? viewport::Primitive::Triangles : viewport::Primitive::Lines;
}

void addMesh(api::DrawRep& pen, Manager::Primitive mode, const MPointArray& position,
             const MVectorArray* normal, const MColorArray* color, const MUintArray* index,
             bool isScreen) {
  Indices run;
  if (index)
    run.assign(index->begin(), index->end());
  else
    for (unsigned int i = 0; i < position.length(); ++i) run.push_back(i);
  for (const unsigned int i : run)
    if (i >= position.length()) return;
  const bool hasNormals = normal && normal->length() == position.length();
  const bool hasColors = color && color->length() == position.length();
  api::ShapePoints points;
  std::vector<math::Vec3f> normals;
  std::vector<std::uint32_t> colors;
  for (const unsigned int i : spread(mode, run)) {
    points.push_back(toVec3(position[i]));
    if (hasNormals) {
      const Vec3 n = math::normalized(toVec3((*normal)[i]));
      normals.push_back(
          {static_cast<float>(n.x), static_cast<float>(n.y), static_cast<float>(n.z)});
    }
    if (hasColors) colors.push_back(viewport::packColor(api::toRgba((*color)[i])));
  }
  api::addShape(pen, primitiveOf(mode), points, isScreen, std::move(normals), std::move(colors));
}

void addText(api::DrawRep& pen, const MPoint& position, const MString& text,
             Manager::TextAlignment alignment, const int* backgroundSize,
             const MColor* backgroundColor, bool isScreen) {
  if (!pen.list || !pen.isOpen) return;
  viewport::TextItem item;
  item.text = api::toStd(text);
  item.space = isScreen ? viewport::Space::Screen : viewport::Space::World;
  item.position = isScreen ? toVec3(position) : math::transformPoint(toVec3(position), pen.world);
  item.align = alignment == Manager::kLeft    ? viewport::TextAlign::Left
               : alignment == Manager::kRight ? viewport::TextAlign::Right
                                              : viewport::TextAlign::Center;
  item.color = pen.color;
  item.height = pen.fontHeight;
  if (isScreen && backgroundColor) {
    const double width =
        backgroundSize ? backgroundSize[0] : viewport::textWidth(item.text, item.height) + 4;
    const double height = backgroundSize ? backgroundSize[1] : item.height * 1.5;
    const double left = item.position.x - (alignment == Manager::kLeft    ? 2
                                           : alignment == Manager::kRight ? width - 2
                                                                          : width / 2);
    const double bottom = item.position.y - item.height * 0.25;
    const Vec3 a{left, bottom, 0}, b{left + width, bottom, 0}, c{left + width, bottom + height, 0},
        d{left, bottom + height, 0};
    const viewport::Rgba ink = std::exchange(pen.color, api::toRgba(*backgroundColor));
    api::addShape(pen, viewport::Primitive::Triangles, {a, b, c, a, c, d}, true);
    pen.color = ink;
  }
  pen.list->texts.push_back(std::move(item));
}

}  // namespace

namespace MHWRender {

void MUIDrawManager::mesh(Primitive mode, const MPointArray& position, const MVectorArray* normal,
                          const MColorArray* color, const MUintArray* index, const MPointArray*) {
  addMesh(penOf(*this), mode, position, normal, color, index, false);
}
void MUIDrawManager::mesh2d(Primitive mode, const MPointArray& position, const MColorArray* color,
                            const MUintArray* index, const MPointArray*) {
  addMesh(penOf(*this), mode, position, nullptr, color, index, true);
}

void MUIDrawManager::setFontSize(unsigned int size) {
  // A size is that of a whole line; capitals are about seven tenths of it.
  constexpr float kCapitalShare = 0.7f;
  penOf(*this).fontHeight = static_cast<int>(size) <= 0 ? api::DrawRep().fontHeight
                                                        : static_cast<float>(size) * kCapitalShare;
}
// There is one face, drawn in strokes, in one weight and width.
void MUIDrawManager::setFontName(const MString&) {}
void MUIDrawManager::setFontIncline(int) {}
void MUIDrawManager::setFontWeight(int) {}
void MUIDrawManager::setFontStretch(int) {}
void MUIDrawManager::setFontLine(int) {}
unsigned int MUIDrawManager::getFontList(MStringArray& faceNames) {
  faceNames.clear();
  faceNames.append("Strokes");
  return faceNames.length();
}

void MUIDrawManager::text(const MPoint& position, const MString& text, TextAlignment alignment,
                          const int* backgroundSize, const MColor* backgroundColor, bool) {
  addText(penOf(*this), position, text, alignment, backgroundSize, backgroundColor, false);
}
void MUIDrawManager::text2d(const MPoint& position, const MString& text, TextAlignment alignment,
                            const int* backgroundSize, const MColor* backgroundColor, bool) {
  addText(penOf(*this), position, text, alignment, backgroundSize, backgroundColor, true);
}

void MUIDrawManager::icon(const MPoint& position, const MString& name, float scale) {
  // Icons are marks at a place in space that keep their size on screen.
  api::DrawRep& pen = penOf(*this);
  constexpr float kSize = 12;
  const float size = std::exchange(pen.pointSize, kSize * (scale > 0 ? scale : 1));
  if (name.length() > 0) api::addShape(pen, viewport::Primitive::Points, {toVec3(position)}, false);
  pen.pointSize = size;
}
MStatus MUIDrawManager::getIconNames(MStringArray& names) {
  names.clear();
  names.append("POINT");
  return MStatus::kSuccess;
}

}  // namespace MHWRender
