#include "host/ops/topology/weld.h"

#include "host/base/cancel_poll.h"
#include "host/mesh/rebuild.h"

namespace host::ops {
namespace {

// Drops what closes on itself where the loop's end meets its start.
void removeSpikesAcrossTheEnd(std::vector<LoopCorner>& loop) {
  std::size_t first = 0;
  while (loop.size() - first >= 2) {
    const std::size_t n = loop.size() - first;
    if (loop.back().vertex == loop[first].vertex) {
      loop.pop_back();
    } else if (n >= 3 && loop[loop.size() - 2].vertex == loop[first].vertex) {
      loop.resize(loop.size() - 2);
    } else if (n >= 3 && loop.back().vertex == loop[first + 1].vertex) {
      loop.pop_back();
      ++first;
    } else {
      break;
    }
  }
  loop.erase(loop.begin(), loop.begin() + static_cast<std::ptrdiff_t>(first));
}

}  // namespace

void removeSpikes(std::vector<LoopCorner>& loop) {
  std::size_t n = 0;
  for (const LoopCorner corner : loop) {
    if (n >= 1 && loop[n - 1].vertex == corner.vertex) continue;
    if (n >= 2 && loop[n - 2].vertex == corner.vertex)
      --n;
    else
      loop[n++] = corner;
  }
  loop.resize(n);
  removeSpikesAcrossTheEnd(loop);
}

WeldMaps weldVertices(Mesh& mesh, std::span<const VertexId> targets) {
  WeldMaps maps;
  maps.faces.assign(at(mesh.faceCount()), kNone);
  mesh::MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  for (std::size_t v = 0; v < targets.size(); ++v)
    if (targets[v] != static_cast<VertexId>(v))
      rebuilder.mergeVertex(static_cast<VertexId>(v), targets[v]);
  std::vector<std::uint8_t> isTouched(targets.size(), 0);
  for (std::size_t v = 0; v < targets.size(); ++v)
    if (targets[v] != static_cast<VertexId>(v)) isTouched[v] = isTouched[at(targets[v])] = 1;
  std::vector<LoopCorner> loop;
  FaceId next = 0, made = 0;
  const auto copyUpTo = [&](FaceId f) {
    rebuilder.copyFaces(next, f);
    for (; next < f; ++next) maps.faces[at(next)] = made++;
  };
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    pollCancel(f);
    const auto vertices = mesh.faceVertices(f);
    if (std::none_of(vertices.begin(), vertices.end(),
                     [&](VertexId v) { return isTouched[at(v)] != 0; }))
      continue;
    copyUpTo(f);
    ++next;
    const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
    bool isMoved = false;
    loop.clear();
    for (CornerId c = first; c < end; ++c) {
      const VertexId v = mesh.cornerVertex(c);
      isMoved |= targets[at(v)] != v;
      loop.push_back({targets[at(v)], c});
    }
    // A face without a moved corner may still touch a target, so its edges are looked up like the
    // others'.
    if (isMoved) removeSpikes(loop);
    if (loop.size() < 3) continue;
    rebuilder.beginFace(f);
    for (const LoopCorner& corner : loop) rebuilder.addCorner(corner.vertex, corner.source);
    maps.faces[at(f)] = rebuilder.endFace();
    ++made;
  }
  copyUpTo(mesh.faceCount());
  mesh::Rebuilt rebuilt = rebuilder.finish({.dropUnusedVertices = true});
  maps.vertices.resize(targets.size());
  for (std::size_t v = 0; v < targets.size(); ++v) maps.vertices[v] = rebuilt.vertexMap[targets[v]];
  maps.edges = std::move(rebuilt.edgeMap);
  maps.uvs = std::move(rebuilt.uvMaps);
  mesh = std::move(rebuilt.mesh);
  return maps;
}

}  // namespace host::ops
