#pragma once

#include <maya/MFn.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

class MDagPathArray;
class MDrawInfo;

/// A way from the root of the scene's hierarchy to one of its nodes.
class MDagPath {
 public:
  MDagPath() = default;

  bool hasFn(MFn::Type type, MStatus* status = nullptr) const;
  MFn::Type apiType(MStatus* status = nullptr) const;
  /// True while the node it ends at exists under the nodes it passes.
  bool isValid(MStatus* status = nullptr) const;
  MObject node(MStatus* status = nullptr) const;
  MObject transform(MStatus* status = nullptr) const;

  /// Goes down to a shape below this transform: the one numbered `shapeNum`, or the only one. A
  /// path that ends at a shape already is left as it is.
  MStatus extendToShape();
  MStatus extendToShapeDirectlyBelow(unsigned int shapeNum);
  MStatus numberOfShapesDirectlyBelow(unsigned int& numShapes) const;

  MStatus push(const MObject& child);
  MStatus pop(unsigned int num = 1);
  unsigned int childCount(MStatus* status = nullptr) const;
  MObject child(unsigned int i, MStatus* status = nullptr) const;
  unsigned int length(MStatus* status = nullptr) const;
  unsigned int pathCount(MStatus* status = nullptr) const;
  MStatus getPath(MDagPath& path, unsigned int i = 0) const;
  MStatus set(const MDagPath& source);

  /// Returns the product of the transforms along the path, with or without that of its last node.
  MMatrix inclusiveMatrix(MStatus* status = nullptr) const;
  MMatrix exclusiveMatrix(MStatus* status = nullptr) const;
  MMatrix inclusiveMatrixInverse(MStatus* status = nullptr) const;
  MMatrix exclusiveMatrixInverse(MStatus* status = nullptr) const;

  MString fullPathName(MStatus* status = nullptr) const;
  /// Returns the shortest name that is unique.
  MString partialPathName(MStatus* status = nullptr) const;
  bool isInstanced(MStatus* status = nullptr) const;
  unsigned int instanceNumber(MStatus* status = nullptr) const;
  bool isVisible(MStatus* status = nullptr) const;
  bool isTemplated(MStatus* status = nullptr) const;

  static MStatus getAPathTo(const MObject& node, MDagPath& path);
  static MStatus getAllPathsTo(const MObject& node, MDagPathArray& paths);
  static MDagPath getAPathTo(const MObject& node, MStatus* status = nullptr);

  bool operator==(const MDagPath& other) const;
  bool operator!=(const MDagPath& other) const { return !(*this == other); }

 private:
  friend struct host::api::Access;
  explicit MDagPath(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};

std::ostream& operator<<(std::ostream& os, const MDagPath& path);

#include <maya/MDagPathArray.h>
