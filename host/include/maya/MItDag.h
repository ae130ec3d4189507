#pragma once

#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MIteratorType.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

class MDagPathArray;

/// Visits the nodes of the scene's hierarchy, or of one branch.
class MItDag {
 public:
  enum TraversalType { kInvalidType, kDepthFirst, kBreadthFirst };

  MItDag(TraversalType type = kDepthFirst, MFn::Type filter = MFn::kInvalid,
         MStatus* status = nullptr);
  MItDag(const MIteratorType& infoObject, TraversalType type = kDepthFirst,
         MStatus* status = nullptr);
  MItDag(const MItDag&) = delete;
  MItDag& operator=(const MItDag&) = delete;

  MStatus reset();
  MStatus reset(const MObject& object, TraversalType type = kDepthFirst,
                MFn::Type filter = MFn::kInvalid);
  MStatus reset(const MDagPath& path, TraversalType type = kDepthFirst,
                MFn::Type filter = MFn::kInvalid);
  MStatus next();
  bool isDone(MStatus* status = nullptr) const;
  MStatus prune();
  MObject root(MStatus* status = nullptr) const;
  MObject currentItem(MStatus* status = nullptr) const;
  /// The deprecated name of `currentItem`.
  MObject item(MStatus* status = nullptr) const { return currentItem(status); }
  unsigned int depth(MStatus* status = nullptr) const;
  TraversalType getType(MStatus* status = nullptr) const;
  MString fullPathName(MStatus* status = nullptr) const;
  MString partialPathName(MStatus* status = nullptr) const;
  MStatus getPath(MDagPath& path) const;
  MStatus getAllPaths(MDagPathArray& paths) const;
  bool isInstanced(bool indirect = true, MStatus* status = nullptr) const;
  unsigned int instanceCount(bool total, MStatus* status = nullptr) const;
  MStatus traverseUnderWorld(bool value);
  bool willTraverseUnderWorld(MStatus* status = nullptr) const;

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
