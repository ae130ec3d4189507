#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>

class MPointArray;
class MSelectionList;
class MVector;

/// Topology of polygon meshes: rings, loops, borders, order and symmetry. It keeps nothing; make
/// one where it is used.
///
/// Paths may end at a mesh or at its transform. A path that was deleted, or that ends at no mesh,
/// fails; ids that the mesh does not have fail with kInvalidParameter. After a failure results are
/// empty. Neighbourhoods are read from the mesh once per topology, linear in it; beyond that a
/// routine costs what its comment says.
class polyHelper {
 public:
  polyHelper() = default;
  virtual ~polyHelper();

  /// The edge ring through an edge: from edge to opposite edge across quads. It ends at mesh
  /// borders, at faces that are not quads and at edges of three or more faces; the edge it ends at
  /// belongs to it.
  ///
  /// An open ring runs from one end to the other with `edge` somewhere inside. A closed one starts
  /// at `edge`, lists every edge once and sets `isClosed`. Costs its length.
  MStatus edgeRing(const MDagPath& mesh, int edge, MIntArray& edges,
                   bool* isClosed = nullptr) const;

  /// The edge loop through an edge: straight on across every vertex with four edges and four faces.
  /// It ends at poles (any other number), at the mesh border and at non-manifold edges. The loop of
  /// a border edge is the border it lies on, up to where the border forks.
  ///
  /// Order and closed loops as with rings. Costs its length.
  MStatus edgeLoop(const MDagPath& mesh, int edge, MIntArray& edges,
                   bool* isClosed = nullptr) const;

  /// The run of a ring from `first` to `last`, both included, in that order. On a closed ring it
  /// goes the shorter way round, and with both ways equally long the way that leaves `first`
  /// through the first of its connected faces. Fails when the two are not in one ring.
  MStatus partialEdgeRing(const MDagPath& mesh, int first, int last, MIntArray& edges) const;

  /// The run of a loop from `first` to `last`, as with rings; with both ways equally long it leaves
  /// `first` over the second of its two vertices.
  MStatus partialEdgeLoop(const MDagPath& mesh, int first, int last, MIntArray& edges) const;

  /// The edges that bound a set of faces, as an edge component with ascending indices: those of its
  /// edges that a face outside the set shares, and those on the mesh border. An edge all of whose
  /// faces are in the set is inside, however many they are. Costs the size of the set times its
  /// logarithm.
  /// @param faces in any order, repeats allowed; an empty set has an empty border
  /// @return a null object on failure
  MObject borderEdges(const MDagPath& mesh, const MIntArray& faces,
                      MStatus* status = nullptr) const;

  /// Orders points by their angle around their common centre, so that joined in that order they
  /// make a polygon that does not cross itself (points seen in the plane that fits them best).
  ///
  /// The order is counter-clockwise for who looks against `towardsViewer`; without one, or where it
  /// lies in the plane, for who looks against the side that the first two points in `points`
  /// already go counter-clockwise around. It starts at point 0; equal angles go from near to far,
  /// then by place. Points on the centre come last.
  /// @param order gets places in `points`; on one line (no plane) the places stay in order along
  /// the line
  /// @return failure, with an empty order, for points that are not numbers
  MStatus angularOrder(const MPointArray& points, const MVector* towardsViewer,
                       MIntArray& order) const;

  /// For every vertex its counterpart across the plane where an axis is 0, or -1 where it has none.
  /// A vertex near enough to the plane is its own.
  ///
  /// A counterpart is the vertex nearest to the mirrored position, no farther from it than
  /// `mirrorTolerance` says. It is mutual, a is b's when b is a's: of vertices that claim the same
  /// one the nearest has it, then the lowest, and the others look on among those that are left (of
  /// many in one place the first few find one). n log n.
  /// @param axis 0 x, 1 y, 2 z
  /// @param inWorldSpace the plane is the world's; else the mesh's own
  MStatus symmetricVertices(const MDagPath& mesh, int axis, bool inWorldSpace,
                            MIntArray& counterparts) const;

  /// The same for points that are in the plane's space.
  static MIntArray symmetricPoints(const MPointArray& points, int axis);

  /// One vertex's counterpart as above, -1 for none or on failure. Mostly linear in the mesh: for
  /// many ask for all.
  int symmetricVertex(const MDagPath& mesh, int vertex, int axis, bool inWorldSpace,
                      MStatus* status = nullptr) const;

  /// The same for one of points that are in the plane's space.
  static int symmetricPoint(const MPointArray& points, int point, int axis);

  /// The same across the plane that the tool settings name.
  int symmetricVertex(const MDagPath& mesh, int vertex, MStatus* status = nullptr) const;

  /// How far a counterpart may lie from the mirrored position: a thousandth of the diagonal of the
  /// points' bounding box in the plane's space, in its units.
  static double mirrorTolerance(const MPointArray& points);

  /// The mean world position of all vertices of the selected components, of any kind, each vertex
  /// of a mesh once. Whole objects count with all their vertices.
  /// @return failure, with the origin, when no vertex is selected
  MStatus selectionCentre(const MSelectionList& selection, MPoint& centre) const;
  /// The same for the active selection.
  MStatus selectionCentre(MPoint& centre) const;
};
