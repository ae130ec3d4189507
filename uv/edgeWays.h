#pragma once

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshEdge.h>
#include <maya/MMatrix.h>
#include <maya/MVector.h>

#include <memory>
#include <vector>

#include "shared/selection/componentPick.h"
#include "uv/edgeGraph.h"

/// The cheapest ways along the edges of a mesh from one of its components to all others, found as
/// far as they are asked for.
///
/// It grows outwards from where it begins (Dijkstra's method) and keeps what it found: a way to a
/// place that it has reached costs its length. `grow` uses idle time, so that a later question
/// finds the place reached. Of equally cheap ways the one over the lower vertices is taken, however
/// much was grown in between.
class edgeWays {
 public:
  enum measure {
    kShortest,  ///< length in the world
    kCreases    ///< the same, down to a twelfth of it where faces bend by a right angle or more
  };

  /// Begins anew at a vertex or an edge, unless it has begun there and the mesh stands where it
  /// did.
  /// @param graph of the mesh; what is left of it is built. It must outlive this, or be cleared
  ///     together with it
  /// @return whether the mesh has the component
  bool begin(const pickedComponent& from, measure how, edgeGraph& graph);
  /// Forgets everything: the mesh has changed or gone.
  void clear();
  bool isBegun() const { return walk != nullptr; }

  /// Goes on for so many vertices. @return whether there are more
  bool grow(unsigned int vertices);
  /// The edges of the way to a vertex or an edge, from there back, that edge and the one it began
  /// at with them; each once. Empty when no way leads there, and from a vertex to itself.
  MIntArray wayTo(const pickedComponent& to);

 private:
  struct front {
    double cost;
    int vertex;
  };
  /// What the mesh is read through.
  struct reader {
    reader(const MDagPath& path, MStatus& status) : mesh(path, &status), edge(path) {}
    MFnMesh mesh;
    MItMeshEdge edge;
    std::vector<int> creased;  ///< ascending
  };
  static bool isLater(const front& a, const front& b);
  void start(int vertex);
  void settleNext();
  void reach(int vertex, int overEdge, double cost);
  bool isSettled(int vertex) const;
  double edgeCost(int edge, int a, int b);
  double sharpness(int edge);
  double length(int a, int b) const;

  pickedComponent origin;
  measure how = kShortest;
  MMatrix toWorld;
  std::unique_ptr<reader> walk;
  const edgeGraph* links = nullptr;
  const float* points = nullptr;
  std::vector<double> costs;    ///< of each vertex; infinite until it is reached
  std::vector<int> arrivals;    ///< the edge that the way to a vertex ends with; none at the start
  std::vector<char> isDone;     ///< its cost is final
  std::vector<front> frontier;  ///< a heap
};
