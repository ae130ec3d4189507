#include "uv/uvSelection.h"

#include <maya/MFn.h>
#include <maya/MFnMesh.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MItMeshEdge.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>

#include <algorithm>

#include "shared/mesh/shownMesh.h"
#include "shared/numeric/indexArrays.h"

namespace {

/// A mesh's corners, as far as UVs need them.
class cornerUvs {
 public:
  explicit cornerUvs(const MDagPath& path) : mesh(path) {
    MIntArray uvCounts;
    mesh.getVertices(counts, vertices);
    mesh.getAssignedUVs(uvCounts, uvs);
    starts.reserve(counts.length() + 1);
    int start = 0, uvStart = 0;
    for (unsigned int f = 0; f < counts.length(); ++f) {
      starts.push_back(start);
      const bool hasUvs = f < uvCounts.length() && uvCounts[f] > 0;
      uvStarts.push_back(hasUvs ? uvStart : -1);
      start += counts[f];
      uvStart += hasUvs ? uvCounts[f] : 0;
    }
  }

  int faceCount() const { return static_cast<int>(counts.length()); }
  void addFace(int face, std::vector<int>& ids) const {
    addIf(face, ids, [](int) { return true; });
  }
  /// The UVs of a face at vertices that a test picks.
  template <class Picks>
  void addIf(int face, std::vector<int>& ids, Picks picks) const {
    if (face < 0 || face >= faceCount() || uvStarts[static_cast<std::size_t>(face)] < 0) return;
    const int uvStart = uvStarts[static_cast<std::size_t>(face)];
    const int start = starts[static_cast<std::size_t>(face)];
    for (int k = 0; k < counts[static_cast<unsigned int>(face)]; ++k)
      if (picks(vertices[static_cast<unsigned int>(start + k)]))
        ids.push_back(uvs[static_cast<unsigned int>(uvStart + k)]);
  }
  MFnMesh mesh;

 private:
  MIntArray counts, vertices, uvs;
  std::vector<int> starts, uvStarts;
};

void addVertices(const cornerUvs& corners, const MIntArray& vertices, std::vector<int>& ids) {
  std::vector<char> isListed(static_cast<std::size_t>(corners.mesh.numVertices()), 0);
  for (unsigned int i = 0; i < vertices.length(); ++i)
    if (vertices[i] >= 0 && static_cast<std::size_t>(vertices[i]) < isListed.size())
      isListed[static_cast<std::size_t>(vertices[i])] = 1;
  for (int face = 0; face < corners.faceCount(); ++face)
    corners.addIf(face, ids, [&](int v) { return isListed[static_cast<std::size_t>(v)] != 0; });
}

void addEdges(const cornerUvs& corners, const MDagPath& mesh, const MObject& component,
              std::vector<int>& ids) {
  MObject edges = component;
  MIntArray faces;
  for (MItMeshEdge edge(mesh, edges); !edge.isDone(); edge.next()) {
    const int ends[] = {edge.index(0), edge.index(1)};
    edge.getConnectedFaces(faces);
    for (unsigned int i = 0; i < faces.length(); ++i)
      corners.addIf(faces[i], ids, [&](int v) { return v == ends[0] || v == ends[1]; });
  }
}

void addComponent(const MDagPath& mesh, const MObject& component, std::vector<int>& ids) {
  MIntArray elements;
  MFnSingleIndexedComponent(component).getElements(elements);
  if (component.hasFn(MFn::kMeshMapComponent)) {
    const std::vector<int> own = toVector(elements);
    ids.insert(ids.end(), own.begin(), own.end());
    return;
  }
  const cornerUvs corners(mesh);
  if (component.hasFn(MFn::kMeshEdgeComponent))
    addEdges(corners, mesh, component, ids);
  else if (component.hasFn(MFn::kMeshVertComponent))
    addVertices(corners, elements, ids);
  else if (component.hasFn(MFn::kMeshPolygonComponent))
    for (unsigned int i = 0; i < elements.length(); ++i) corners.addFace(elements[i], ids);
}

selectedUvs& entryFor(std::vector<selectedUvs>& all, const MDagPath& mesh) {
  for (selectedUvs& each : all)
    if (each.mesh.node() == mesh.node()) return each;
  all.emplace_back();
  all.back().mesh = mesh;
  return all.back();
}

void dropMissing(std::vector<int>& ids, int count) {
  makeSortedUnique(ids);
  ids.erase(
      std::remove_if(ids.begin(), ids.end(), [count](int id) { return id < 0 || id >= count; }),
      ids.end());
}

}  // namespace

std::vector<selectedUvs> uvsIn(const MSelectionList& selection) {
  std::vector<selectedUvs> all;
  for (unsigned int i = 0; i < selection.length(); ++i) {
    MDagPath path;
    MObject component;
    if (!selection.getDagPath(i, path, component) || !extendToShownMesh(path)) continue;
    selectedUvs& entry = entryFor(all, path);
    if (component.isNull()) entry.isWhole = true;
    if (entry.isWhole) continue;
    std::vector<int> ids = toVector(entry.uvs);
    addComponent(path, component, ids);
    dropMissing(ids, MFnMesh(path).numUVs());
    entry.uvs = toArray(ids);
  }
  for (selectedUvs& each : all)
    if (each.isWhole) each.uvs.clear();
  return all;
}
