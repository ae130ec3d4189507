#include <maya/MColorArray.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>

#include <algorithm>

#include "host/api/mesh/color_edit.h"
#include "host/api/mesh/fn_mesh.h"
#include "host/mesh/adjacency.h"

namespace host::api {

MStatus meanColor(const MColorArray& colors, MColor& mean) {
  MColor sum(0, 0, 0, 0);
  int count = 0;
  for (const MColor& one : colors) {
    if (one.a < 0) continue;
    sum = MColor(sum.r + one.r, sum.g + one.g, sum.b + one.b, sum.a + one.a);
    ++count;
  }
  if (count == 0) return MStatus::kFailure;
  const float scale = 1.0F / static_cast<float>(count);
  mean = MColor(sum.r * scale, sum.g * scale, sum.b * scale, sum.a * scale);
  return MStatus::kSuccess;
}

ColorEdit::ColorEdit(mesh::Mesh& mesh) : mesh_(mesh) {
  if (mesh.currentColorSet() < 0)
    mesh.setCurrentColorSet(mesh.addColorSet({"colorSet1", 4, false, {}, {}}));
  index_ = mesh.currentColorSet();
  set_ = mesh.colorSet(index_);
  set_.cornerIds.resize(at(mesh.cornerCount()), kNone);
}

Index ColorEdit::add(const MColor& color) {
  set_.colors.push_back(fromMColor(color));
  return static_cast<Index>(set_.colors.size()) - 1;
}

void ColorEdit::finish() {
  std::vector<Index> newIds(set_.colors.size(), kNone);
  for (const Index id : set_.cornerIds)
    if (id != kNone) newIds[at(id)] = 0;
  Index count = 0;
  for (std::size_t i = 0; i < newIds.size(); ++i) {
    if (newIds[i] == kNone) continue;
    newIds[i] = count;
    set_.colors[at(count++)] = set_.colors[i];
  }
  set_.colors.resize(at(count));
  for (Index& id : set_.cornerIds)
    if (id != kNone) id = newIds[at(id)];
  mesh_.setColorSet(index_, std::move(set_));
}

namespace {

/// The mesh and the index of the colour set that a query names.
scene::MeshDataPtr readColorSet(const MFnMesh& set, const MString* name, int& index,
                                MStatus& status) {
  auto data = readMesh(set, &status);
  if (!data) return nullptr;
  index = colorSetIndex(data->mesh, name);
  if (index >= 0) return data;
  status = MStatus::kInvalidParameter;
  return nullptr;
}

template <class Change>
MStatus editColorSet(const MFnMesh& set, const MString* name, Change change) {
  return editAttributes(set, nullptr, [&](mesh::Mesh& mesh) -> MStatus {
    const int index = colorSetIndex(mesh, name);
    return index < 0 ? MStatus(MStatus::kInvalidParameter) : change(mesh, mesh.editColorSet(index));
  });
}

bool isColor(const mesh::ColorSet& set, int id) {
  return id >= 0 && at(id) < set.colors.size();
}

std::span<const CornerId> cornersOfVertex(const mesh::Mesh& mesh, VertexId v) {
  return mesh.adjacency().vertexCorners(v);
}
std::vector<CornerId> cornersOfFace(const mesh::Mesh& mesh, FaceId f) {
  std::vector<CornerId> corners(at(mesh.faceSize(f)));
  for (std::size_t i = 0; i < corners.size(); ++i)
    corners[i] = mesh.firstCorner(f) + static_cast<Index>(i);
  return corners;
}

/// The corners that one entry of a list names; nothing when it names none.
std::vector<CornerId> cornersNamed(const mesh::Mesh& mesh, const MIntArray* faces,
                                   const MIntArray* vertices, unsigned int i) {
  if (faces && vertices) {
    const CornerId corner =
        isFace(mesh, (*faces)[i]) ? cornerAt(mesh, (*faces)[i], (*vertices)[i]) : kNone;
    return corner == kNone ? std::vector<CornerId>() : std::vector<CornerId>{corner};
  }
  if (faces)
    return isFace(mesh, (*faces)[i]) ? cornersOfFace(mesh, (*faces)[i]) : std::vector<CornerId>();
  if (!isVertex(mesh, (*vertices)[i])) return {};
  const auto corners = cornersOfVertex(mesh, (*vertices)[i]);
  return {corners.begin(), corners.end()};
}

bool namesSomething(const mesh::Mesh& mesh, const MIntArray* faces, const MIntArray* vertices,
                    unsigned int i) {
  if (faces && !isFace(mesh, (*faces)[i])) return false;
  if (vertices && !isVertex(mesh, (*vertices)[i])) return false;
  return !faces || !vertices || cornerAt(mesh, (*faces)[i], (*vertices)[i]) != kNone;
}

/// Colours what the lists name, one colour an entry; without colours, takes them away.
MStatus paint(const MFnMesh& set, const MColorArray* colors, const MIntArray* faces,
              const MIntArray* vertices, MDGModifier* modifier, int representation = 0) {
  const unsigned int count = faces ? faces->length() : vertices->length();
  if ((colors && colors->length() != count) || (faces && vertices && vertices->length() != count))
    return MStatus::kInvalidParameter;
  return editAttributes(set, modifier, [&](mesh::Mesh& mesh) -> MStatus {
    if (!colors && mesh.currentColorSet() < 0) return MStatus::kFailure;
    ColorEdit edit(mesh);
    if (representation > 0) edit.setRepresentation(representation);
    for (unsigned int i = 0; i < count; ++i) {
      if (!namesSomething(mesh, faces, vertices, i)) return MStatus::kInvalidParameter;
      const Index color = colors ? edit.add((*colors)[i]) : kNone;
      for (const CornerId corner : cornersNamed(mesh, faces, vertices, i))
        edit.assign(corner, color);
    }
    edit.finish();
    return MStatus::kSuccess;
  });
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::cornerColor;
using api::editColorSet;
using api::isColor;
using api::paint;
using api::readColorSet;
using api::toMColor;

int MFnMesh::numColors(MStatus* status) const {
  return numColors(MString(), status);
}
int MFnMesh::numColors(const MString& colorSet, MStatus* status) const {
  MStatus code;
  int set = -1;
  const auto data = readColorSet(*this, &colorSet, set, code);
  api::setStatus(status, code.statusCode());
  return data ? static_cast<int>(data->mesh.colorSet(set).colors.size()) : 0;
}

MStatus MFnMesh::getColors(MColorArray& colors, const MString* colorSet, const MColor*) const {
  MStatus status;
  int set = -1;
  const auto data = readColorSet(*this, colorSet, set, status);
  if (!data) return status;
  colors.clear();
  for (const mesh::Color4f& color : data->mesh.colorSet(set).colors) colors.append(toMColor(color));
  return MStatus::kSuccess;
}
MStatus MFnMesh::setColors(const MColorArray& colors, const MString* colorSet) {
  return editColorSet(*this, colorSet, [&](mesh::Mesh&, mesh::ColorSet& set) -> MStatus {
    if (colors.length() < set.colors.size()) return MStatus::kInvalidParameter;
    set.colors.resize(colors.length());
    for (unsigned int i = 0; i < colors.length(); ++i) set.colors[i] = api::fromMColor(colors[i]);
    return MStatus::kSuccess;
  });
}
MStatus MFnMesh::getColor(int colorId, MColor& color, const MString* colorSet,
                          const MColor* defaultUnsetColor) const {
  MStatus status;
  int set = -1;
  const auto data = readColorSet(*this, colorSet, set, status);
  if (!data) return status;
  if (colorId == kNone)
    color = api::unsetColor(defaultUnsetColor);
  else if (!isColor(data->mesh.colorSet(set), colorId))
    return MStatus::kInvalidParameter;
  else
    color = toMColor(data->mesh.colorSet(set).colors[at(colorId)]);
  return MStatus::kSuccess;
}
MStatus MFnMesh::setColor(int colorId, const MColor& color, const MString* colorSet) {
  return editColorSet(*this, colorSet, [&](mesh::Mesh&, mesh::ColorSet& set) -> MStatus {
    // One past the last adds a colour.
    if (colorId < 0 || at(colorId) > set.colors.size()) return MStatus::kInvalidParameter;
    if (at(colorId) == set.colors.size()) set.colors.emplace_back();
    set.colors[at(colorId)] = api::fromMColor(color);
    return MStatus::kSuccess;
  });
}
MStatus MFnMesh::assignColor(int polygonId, int vertexIndex, int colorId, const MString* colorSet) {
  return editColorSet(*this, colorSet, [&](mesh::Mesh& mesh, mesh::ColorSet& set) -> MStatus {
    const CornerId corner = api::localCorner(mesh, polygonId, vertexIndex);
    if (corner == kNone || (colorId != kNone && !isColor(set, colorId)))
      return MStatus::kInvalidParameter;
    set.cornerIds.resize(at(mesh.cornerCount()), kNone);
    set.cornerIds[corner] = colorId;
    return MStatus::kSuccess;
  });
}
MStatus MFnMesh::assignColors(const MIntArray& colorIds, const MString* colorSet) {
  return editColorSet(*this, colorSet, [&](mesh::Mesh& mesh, mesh::ColorSet& set) -> MStatus {
    if (colorIds.length() != static_cast<unsigned int>(mesh.cornerCount()))
      return MStatus::kInvalidParameter;
    for (const int id : colorIds)
      if (id != kNone && !isColor(set, id)) return MStatus::kInvalidParameter;
    set.cornerIds.assign(colorIds.begin(), colorIds.end());
    return MStatus::kSuccess;
  });
}
MStatus MFnMesh::clearColors(const MString* colorSet) {
  return editColorSet(*this, colorSet, [](mesh::Mesh&, mesh::ColorSet& set) {
    set.colors.clear();
    set.cornerIds.clear();
    return MStatus::kSuccess;
  });
}
MStatus MFnMesh::getColorIndex(int faceIndex, int localVertexIndex, int& colorIndex,
                               const MString* colorSet) const {
  MStatus status;
  int set = -1;
  const auto data = readColorSet(*this, colorSet, set, status);
  if (!data) return status;
  const CornerId corner = api::localCorner(data->mesh, faceIndex, localVertexIndex);
  if (corner == kNone) return MStatus::kInvalidParameter;
  colorIndex = cornerColor(data->mesh, set, corner);
  return MStatus::kSuccess;
}
MStatus MFnMesh::getFaceVertexColorIndex(int faceIndex, int localVertexIndex, int& colorIndex,
                                         const MString* colorSet) const {
  MStatus status;
  int set = -1;
  const auto data = readColorSet(*this, colorSet, set, status);
  if (!data) return status;
  const CornerId corner = api::localCorner(data->mesh, faceIndex, localVertexIndex);
  if (corner == kNone) return MStatus::kInvalidParameter;
  colorIndex = corner;  // the place in what getFaceVertexColors lists
  return MStatus::kSuccess;
}

MStatus MFnMesh::getVertexColors(MColorArray& colors, const MString* colorSet,
                                 const MColor* defaultUnsetColor) const {
  MStatus status;
  int set = -1;
  const auto data = readColorSet(*this, colorSet, set, status);
  if (!data) return status;
  const mesh::Mesh& mesh = data->mesh;
  colors = MColorArray(static_cast<unsigned int>(mesh.vertexCount()),
                       api::unsetColor(defaultUnsetColor));
  for (VertexId v = 0; v < mesh.vertexCount(); ++v) {
    // The mean of what the corners there show.
    MColor sum(0, 0, 0, 0);
    int count = 0;
    for (const CornerId corner : mesh.adjacency().vertexCorners(v)) {
      const Index id = cornerColor(mesh, set, corner);
      if (id == kNone) continue;
      const mesh::Color4f& color = mesh.colorSet(set).colors[at(id)];
      sum = MColor(sum.r + color.r, sum.g + color.g, sum.b + color.b, sum.a + color.a);
      ++count;
    }
    const float scale = count > 0 ? 1.0F / static_cast<float>(count) : 0.0F;
    if (count > 0)
      colors[static_cast<unsigned int>(v)] =
          MColor(sum.r * scale, sum.g * scale, sum.b * scale, sum.a * scale);
  }
  return MStatus::kSuccess;
}
MStatus MFnMesh::getFaceVertexColors(MColorArray& colors, const MString* colorSet,
                                     const MColor* defaultUnsetColor) const {
  MStatus status;
  int set = -1;
  const auto data = readColorSet(*this, colorSet, set, status);
  if (!data) return status;
  const mesh::Mesh& mesh = data->mesh;
  colors = MColorArray(static_cast<unsigned int>(mesh.cornerCount()),
                       api::unsetColor(defaultUnsetColor));
  for (CornerId corner = 0; corner < mesh.cornerCount(); ++corner)
    if (const Index id = cornerColor(mesh, set, corner); id != kNone)
      colors[static_cast<unsigned int>(corner)] = toMColor(mesh.colorSet(set).colors[at(id)]);
  return MStatus::kSuccess;
}

MStatus MFnMesh::setVertexColor(const MColor& color, int vertexId, MDGModifier* modifier) {
  return setVertexColors(MColorArray(1, color), MIntArray(1, vertexId), modifier);
}
MStatus MFnMesh::setVertexColors(const MColorArray& colors, const MIntArray& vertexList,
                                 MDGModifier* modifier) {
  return paint(*this, &colors, nullptr, &vertexList, modifier);
}
MStatus MFnMesh::setVertexColors(const MColorArray& colors, const MIntArray& vertexList,
                                 MDGModifier* modifier, MColorRepresentation rep) {
  return paint(*this, &colors, nullptr, &vertexList, modifier, rep);
}
MStatus MFnMesh::setFaceColor(const MColor& color, int faceId) {
  return setFaceColors(MColorArray(1, color), MIntArray(1, faceId));
}
MStatus MFnMesh::setFaceColors(const MColorArray& colors, const MIntArray& faceList) {
  return paint(*this, &colors, &faceList, nullptr, nullptr);
}
MStatus MFnMesh::setFaceVertexColor(const MColor& color, int faceId, int vertexId,
                                    MDGModifier* modifier) {
  return setFaceVertexColors(MColorArray(1, color), MIntArray(1, faceId), MIntArray(1, vertexId),
                             modifier);
}
MStatus MFnMesh::setFaceVertexColors(const MColorArray& colors, const MIntArray& faceList,
                                     const MIntArray& vertexList, MDGModifier* modifier) {
  return paint(*this, &colors, &faceList, &vertexList, modifier);
}
MStatus MFnMesh::setFaceVertexColors(const MColorArray& colors, const MIntArray& faceList,
                                     const MIntArray& vertexList, MDGModifier* modifier,
                                     MColorRepresentation rep) {
  return paint(*this, &colors, &faceList, &vertexList, modifier, rep);
}
MStatus MFnMesh::removeVertexColors(const MIntArray& vertexList, MDGModifier* modifier) {
  return paint(*this, nullptr, nullptr, &vertexList, modifier);
}
MStatus MFnMesh::removeFaceColors(const MIntArray& faceList) {
  return paint(*this, nullptr, &faceList, nullptr, nullptr);
}
MStatus MFnMesh::removeFaceVertexColors(const MIntArray& faceList, const MIntArray& vertexList,
                                        MDGModifier* modifier) {
  return paint(*this, nullptr, &faceList, &vertexList, modifier);
}
