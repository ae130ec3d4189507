#pragma once

#include <maya/MFn.h>
#include <maya/MIteratorType.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

class MObjectArray;
class MPlugArray;

/// Follows connections from a node or plug, upstream or downstream.
class MItDependencyGraph {
 public:
  enum Direction { kDownstream, kUpstream };
  enum Traversal { kDepthFirst, kBreadthFirst };
  enum Level { kNodeLevel, kPlugLevel };

  MItDependencyGraph(MObject& rootNode, MFn::Type filter = MFn::kInvalid,
                     Direction direction = kDownstream, Traversal traversal = kDepthFirst,
                     Level level = kNodeLevel, MStatus* status = nullptr);
  MItDependencyGraph(MPlug& rootPlug, MFn::Type filter = MFn::kInvalid,
                     Direction direction = kDownstream, Traversal traversal = kDepthFirst,
                     Level level = kNodeLevel, MStatus* status = nullptr);
  MItDependencyGraph(MObject& rootNode, const MIteratorType& filter,
                     Direction direction = kDownstream, Traversal traversal = kDepthFirst,
                     Level level = kNodeLevel, MStatus* status = nullptr);
  MItDependencyGraph(const MItDependencyGraph&) = delete;
  MItDependencyGraph& operator=(const MItDependencyGraph&) = delete;

  MStatus reset();
  MStatus resetTo(MObject& rootNode, MFn::Type filter = MFn::kInvalid,
                  Direction direction = kDownstream, Traversal traversal = kDepthFirst,
                  Level level = kNodeLevel);
  MStatus resetTo(MPlug& rootPlug, MFn::Type filter = MFn::kInvalid,
                  Direction direction = kDownstream, Traversal traversal = kDepthFirst,
                  Level level = kNodeLevel);
  MStatus next();
  bool isDone(MStatus* status = nullptr) const;
  MStatus prune();
  MObject currentItem(MStatus* status = nullptr) const;
  MObject thisNode(MStatus* status = nullptr) const { return currentItem(status); }
  MPlug thisPlug(MStatus* status = nullptr) const;
  MStatus getNodePath(MObjectArray& path) const;
  bool thisNodeHasUnknownType(MStatus* status = nullptr) const;
  bool atNodeLevel(MStatus* status = nullptr) const;
  MStatus rootNode(MObject& root) const;
  MStatus rootPlug(MPlug& root) const;
  Direction currentDirection(MStatus* status = nullptr) const;
  Traversal currentTraversal(MStatus* status = nullptr) const;
  Level currentLevel(MStatus* status = nullptr) const;
  MStatus toggleDirection();
  MStatus toggleTraversal();
  MStatus toggleLevel();
  MFn::Type currentFilter(MStatus* status = nullptr) const;
  MStatus setCurrentFilter(MFn::Type filter);
  bool isPruningOnFilter(MStatus* status = nullptr) const;
  void enablePruningOnFilter();
  void disablePruningOnFilter();

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
