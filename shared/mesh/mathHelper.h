#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MVector.h>

class M3dView;
class MDGModifier;

/// What tools need all the time besides topology: units, rays, a place in a mesh's history, the
/// view, index arrays. It keeps nothing; make one where it is used.
class mathHelper {
 public:
  mathHelper() = default;
  virtual ~mathHelper();

  /// Current linear units in a centimetre, asked of the host at each call; 1 for units it does not
  /// know.
  float unitsPerCentimetre() const;
  /// Centimetres in a current linear unit.
  float centimetresPerUnit() const;

  enum componentType { kVertexType = 0, kEdgeType = 1, kFaceType = 2, kNoType = 3 };
  /// The component type that is selected by clicks now; edges win over faces, faces over vertices.
  int currentComponentType() const;

  /// Where the line through `point` along `direction` meets the mesh nearest to `point`, before or
  /// behind it; world space. `point` itself when it meets nothing, and after a message when the
  /// mesh can't be asked.
  MPoint closestPointAlong(const MPoint& point, const MVector& direction,
                           const MDagPath& mesh) const;

  /// Puts a node with mesh plugs `inMesh` and `outMesh` between a shape and what drives it.
  ///
  /// A shape that nothing drives first gets an intermediate copy of itself under the path's
  /// transform, named after it with "Orig" appended, which then drives it. With a tweak node
  /// (`polyTweak`) in front of the node the shape's tweaks move there; without one they stay on the
  /// shape and are added to what comes out of the node. Instances share the history. The selection
  /// stays as it is. Costs the number of tweaks.
  /// @param original gets the copy that was made, null when none was needed. One that it holds
  ///     already, from an earlier time, serves instead of a new one.
  /// @return failure with the scene as it was; after "error setting tweaks on node" when the
  ///     connections can't be made
  MStatus insertNodeInHistory(const MDagPath& shape, const MObject& node,
                              const MObject& tweakNode = MObject::kNullObj,
                              MObject* original = nullptr) const;

  /// Takes a node that `insertNodeInHistory` put in out again and deletes it, and its tweak node.
  /// What fed the node feeds what the node fed; its tweaks go back to the shape, so that the mesh
  /// is, bit for bit, what it was before.
  /// @param original the copy that was made when it was put in: it goes too, and the shape has its
  ///     mesh to itself again, unless something else has come between. Null: an original stays and
  ///     drives the shape from now on.
  /// @param deleter deletes the nodes, so that its `undoIt` brings the same ones back; null: they
  ///     go for good
  /// @return failure with the scene as it was when the node is not in this shape's history
  MStatus removeNodeFromHistory(const MDagPath& shape, const MObject& node,
                                const MObject& tweakNode = MObject::kNullObj,
                                const MObject& original = MObject::kNullObj,
                                MDGModifier* deleter = nullptr) const;

  /// The elements of an array, each once, ascending.
  MIntArray uniqueSorted(const MIntArray& values) const;
  /// The elements of `from` that are not in `without`, in the order of `from`, repeats included.
  MIntArray difference(const MIntArray& from, const MIntArray& without) const;

  /// Where the cursor is in a view, pixels from its lower left corner. Fails when it is not over
  /// the view.
  MStatus cursorPosition(const M3dView& view, int& x, int& y) const;
  /// The world point under a pixel in the plane through `reference` square to the view direction.
  /// Fails without a camera.
  MStatus viewToWorldAtDepth(const M3dView& view, int x, int y, const MPoint& reference,
                             MPoint& world) const;
  /// The world point under a pixel on the near clipping plane.
  MStatus viewToWorld(const M3dView& view, int x, int y, MPoint& world) const;
  /// The edge whose centre shows at the pixel nearest to a given one, hidden or not, the lowest of
  /// equally near ones; centres that are clipped don't count. -1 when there is none. Linear in the
  /// edges.
  int nearestEdgeOnScreen(const M3dView& view, int x, int y, const MDagPath& mesh,
                          MStatus* status = nullptr) const;
};
