#pragma once

#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include <utility>
#include <vector>

/// The surface that a plan puts vertices on.
class placingSurface {
 public:
  /// The place of the surface nearest to a point, and the way it faces there.
  virtual bool nearest(const MPoint& point, MPoint& place, MVector& facing) const = 0;
  /// The place on the line through a point along `direction` nearest to it, no farther than
  /// `reach`, before or behind.
  virtual bool along(const MPoint& point, const MVector& direction, double reach, MPoint& place,
                     MVector& facing) const = 0;
  /// Whether nobody wants to know any more: then it finds nothing.
  virtual bool isStopped() const { return false; }

 protected:
  ~placingSurface() = default;
};

/// How many faces of a mesh that was put on a surface came out badly.
struct placingFaults {
  int wrongWay = 0;   ///< look against the surface
  int collapsed = 0;  ///< have lost nearly all of their area
  int folds = 0;      ///< edges over which the mesh turns back on itself
  int all() const { return wrongWay + collapsed + folds; }
};

/// Loosens a mesh that was put on a surface vertex by vertex, where that has turned faces round,
/// pinched them together or folded the mesh over: the vertices there and around them are spread
/// evenly, as a membrane held at its rim, and put on the surface again, on the side they face.
/// Where nothing came out badly nothing moves.
///
/// Works in rounds that reach farther around what is still bad, and keeps the best of them. A round
/// costs the vertices it loosens, each a few questions to the surface. What is bad after that lies
/// in hollows where evenness and the nearest place pull the wrong way: there each vertex looks
/// around for a place at which the faces at it come out better.
class regularPlan {
 public:
  /// @param before the mesh as it was, one point a vertex
  /// @param isHeld vertices that stay: one a vertex
  /// @param side -1 for faces that are seen from behind, in a mirroring transform; else 1
  regularPlan(const MPointArray& before, const MIntArray& counts, const MIntArray& connects,
              const std::vector<char>& isHeld, double side);

  /// Improves `places`. @return what is left
  placingFaults run(const placingSurface& surface, MPointArray& places);

 private:
  struct faceState {
    MVector normal;  ///< unit; zero without area
    double area = 0.0;
    double facing = 1.0;  ///< cosine between its normal and the surface's
    bool isWrong = false, isCollapsed = false, isFolded = false;
    bool isBad() const { return isWrong || isCollapsed || isFolded; }
  };
  void join();
  static double facingOf(const MPoint& centre, const faceState& state,
                         const placingSurface& surface);
  void look(int face, const placingSurface& surface);
  void lookAtAll(const placingSurface& surface);
  void findFolds();
  placingFaults faults() const;
  std::vector<int> region(int rings) const;
  void relax(const std::vector<int>& vertices, int passes);
  void putOn(const std::vector<int>& vertices, const placingSurface& surface);
  double badnessAt(int vertex, const placingSurface& surface);
  void lookAround(int vertex, const placingSurface& surface);
  void settle(const placingSurface& surface, placingFaults& best, MPointArray& places);
  MVector normalAt(int vertex) const;
  MVector areaOf(const MPointArray& points, int face) const;
  MPoint centreOf(int face) const;

  const MIntArray& corners;
  const std::vector<char>& held;
  double sideOfFaces;
  std::vector<int> firsts;                ///< first corner a face, and the end
  std::vector<std::vector<int>> facesOf;  ///< of a vertex
  /// Of a vertex: those that it shares an edge with, once a face, and how much they pull at it.
  std::vector<std::vector<std::pair<int, double>>> neighbours;
  struct joint {
    int a, b;        ///< faces
    bool wasFolded;  ///< before
  };
  std::vector<joint> joints;
  std::vector<std::vector<int>> jointsOf;  ///< of a face
  std::vector<double> areasBefore;
  double meanBefore = 0.0, meanArea = 0.0;

  MPointArray points;
  std::vector<faceState> faces;
};
