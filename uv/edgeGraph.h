#pragma once

#include <maya/MDagPath.h>

#include <cstddef>
#include <vector>

/// Which edges leave each vertex of a mesh and where they lead, in flat lists: for walks over many
/// vertices, where asking the mesh for each would cost ten times as much. It is of the topology
/// alone and is built in slices, so that a tool can use idle time for it.
class edgeGraph {
 public:
  struct link {
    int vertex;  ///< where it leads
    int edge;
  };

  /// Begins on a mesh, unless it is on it already and the mesh has as many vertices and edges.
  void begin(const MDagPath& mesh);
  void clear();
  /// Goes on for about so many edges. @return whether there is more to do
  bool build(unsigned int edges);
  /// Builds what is left. @return false for a path that is no mesh
  bool finish();
  bool isOf(const MDagPath& mesh) const;
  bool isDone() const { return stage == kDone; }

  // Once it is done.
  std::size_t vertexCount() const { return firsts.size() - 1; }
  /// The links of a vertex, in the order of their edges.
  const link* begin(int vertex) const { return links.data() + firsts[at(vertex)]; }
  const link* end(int vertex) const { return links.data() + firsts[at(vertex) + 1]; }

 private:
  enum stages { kNone, kReads, kLinks, kDone };
  static std::size_t at(int index) { return static_cast<std::size_t>(index); }
  void read(unsigned int edges);
  void linkUp(unsigned int edges);

  MDagPath path;
  stages stage = kNone;
  int edgeCount = 0, next = 0;
  std::vector<int> ends;    ///< two an edge; none once it is done
  std::vector<int> firsts;  ///< row v: firsts[v] to firsts[v + 1]
  std::vector<int> filled;  ///< none once it is done
  std::vector<link> links;
};
