#include "uv/edgeGraph.h"

#include <maya/MFnMesh.h>

#include <algorithm>

bool edgeGraph::isOf(const MDagPath& mesh) const {
  return stage != kNone && path == mesh;
}

void edgeGraph::clear() {
  stage = kNone;
  path = MDagPath();
  ends.clear();
  firsts.clear();
  filled.clear();
  links.clear();
}

void edgeGraph::begin(const MDagPath& mesh) {
  MStatus status;
  const MFnMesh meshFn(mesh, &status);
  const bool isSame = status == MS::kSuccess && isOf(mesh) && edgeCount == meshFn.numEdges() &&
                      vertexCount() == at(meshFn.numVertices());
  if (isSame) return;
  clear();
  if (status != MS::kSuccess) return;
  path = mesh;
  stage = kReads;
  edgeCount = meshFn.numEdges();
  next = 0;
  ends.reserve(2 * at(edgeCount));
  firsts.assign(at(meshFn.numVertices()) + 1, 0);
}

bool edgeGraph::build(unsigned int edges) {
  if (stage == kReads)
    read(edges);
  else if (stage == kLinks)
    linkUp(edges);
  return stage == kReads || stage == kLinks;
}

bool edgeGraph::finish() {
  while (build(1U << 20)) {
  }
  return isDone();
}

void edgeGraph::read(unsigned int edges) {
  const MFnMesh mesh(path);
  const int last = std::min(edgeCount, next + static_cast<int>(edges));
  for (; next < last; ++next) {
    int2 both = {0, 0};
    mesh.getEdgeVertices(next, both);
    for (const int end : both) {
      ends.push_back(end);
      ++firsts[at(end) + 1];
    }
  }
  if (next < edgeCount) return;
  for (std::size_t v = 1; v < firsts.size(); ++v) firsts[v] += firsts[v - 1];
  filled.assign(firsts.begin(), firsts.end() - 1);
  links.resize(ends.size());
  next = 0;
  stage = kLinks;
}

void edgeGraph::linkUp(unsigned int edges) {
  const int last = std::min(edgeCount, next + static_cast<int>(edges));
  for (; next < last; ++next) {
    const int a = ends[2 * at(next)], b = ends[2 * at(next) + 1];
    links[at(filled[at(a)]++)] = {b, next};
    links[at(filled[at(b)]++)] = {a, next};
  }
  if (next < edgeCount) return;
  std::vector<int>().swap(ends);
  std::vector<int>().swap(filled);
  stage = kDone;
}
