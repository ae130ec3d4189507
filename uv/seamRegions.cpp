#include "uv/seamRegions.h"

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MItMeshPolygon.h>

#include <algorithm>
#include <cstddef>

namespace {

std::size_t at(int index) {
  return static_cast<std::size_t>(index);
}

/// Which faces have an edge and the other way round, as rows of two flat lists.
struct faceEdgeTable {
  std::vector<int> edgesOfFaces, firstEdge;  ///< row f: firstEdge[f] to firstEdge[f + 1]
  std::vector<int> facesOfEdges, firstFace;

  explicit faceEdgeTable(const MDagPath& mesh) {
    const MFnMesh meshFn(mesh);
    const std::size_t edgeCount = at(meshFn.numEdges());
    firstEdge.assign(1, 0);
    firstFace.assign(edgeCount + 1, 0);
    MIntArray edges;
    for (MItMeshPolygon face(mesh); !face.isDone(); face.next()) {
      face.getEdges(edges);
      for (unsigned int i = 0; i < edges.length(); ++i) {
        edgesOfFaces.push_back(edges[i]);
        ++firstFace[at(edges[i]) + 1];
      }
      firstEdge.push_back(static_cast<int>(edgesOfFaces.size()));
    }
    for (std::size_t e = 0; e < edgeCount; ++e) firstFace[e + 1] += firstFace[e];
    std::vector<int> next(firstFace.begin(), firstFace.end() - 1);
    facesOfEdges.resize(edgesOfFaces.size());
    for (int f = 0; f < faceCount(); ++f)
      for (int k = firstEdge[at(f)]; k < firstEdge[at(f) + 1]; ++k)
        facesOfEdges[at(next[at(edgesOfFaces[at(k)])]++)] = f;
  }
  int faceCount() const { return static_cast<int>(firstEdge.size()) - 1; }
};

}  // namespace

std::vector<MIntArray> seamRegions(const MDagPath& mesh, const MIntArray& seams) {
  const faceEdgeTable table(mesh);
  std::vector<char> isSeam(table.firstFace.size(), 0);
  for (unsigned int i = 0; i < seams.length(); ++i)
    if (seams[i] >= 0 && at(seams[i]) < isSeam.size()) isSeam[at(seams[i])] = 1;
  std::vector<char> isMet(at(table.faceCount()), 0);
  std::vector<MIntArray> regions;
  std::vector<int> queue;
  for (int start = 0; start < table.faceCount(); ++start) {
    if (isMet[at(start)]) continue;
    queue.assign(1, start);
    isMet[at(start)] = 1;
    for (std::size_t head = 0; head < queue.size(); ++head) {
      const std::size_t face = at(queue[head]);
      for (int k = table.firstEdge[face]; k < table.firstEdge[face + 1]; ++k) {
        const std::size_t edge = at(table.edgesOfFaces[at(k)]);
        if (isSeam[edge]) continue;
        for (int i = table.firstFace[edge]; i < table.firstFace[edge + 1]; ++i) {
          const int other = table.facesOfEdges[at(i)];
          if (isMet[at(other)]) continue;
          isMet[at(other)] = 1;
          queue.push_back(other);
        }
      }
    }
    std::sort(queue.begin(), queue.end());
    regions.emplace_back(queue.data(), static_cast<unsigned int>(queue.size()));
  }
  return regions;
}
