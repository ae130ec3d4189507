#include "uv/uvObjectEnds.h"

#include <maya/MFn.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>

#include "uv/uvEditNode.h"
#include "uv/uvLinks.h"
#include "uv/uvObject.h"

namespace {

/// The mesh that a node's output ends up in, over whatever steps of history are between.
MDagPath meshFedBy(const MObject& node) {
  MObject root = node;
  MStatus status;
  MItDependencyGraph downstream(root, MFn::kMesh, MItDependencyGraph::kDownstream,
                                MItDependencyGraph::kBreadthFirst, MItDependencyGraph::kNodeLevel,
                                &status);
  MDagPath mesh;
  if (status && !downstream.isDone()) MDagPath::getAPathTo(downstream.currentItem(), mesh);
  return mesh;
}

}  // namespace

MDagPath meshOfUvObject(const MDagPath& uvObject) {
  const MDagPath linked = uvLinks::meshOf(uvObject.node());
  if (linked.isValid()) return linked;
  MPlugArray fed;
  MFnDependencyNode(uvObject.node()).findPlug("outMesh", false).connectedTo(fed, false, true);
  for (unsigned int i = 0; i < fed.length(); ++i)
    if (fed[i].attribute() == uvEditNode::inUVPolyMesh) return meshFedBy(fed[i].node());
  return MDagPath();
}

MDagPath uvObjectOfMesh(const MDagPath& mesh) {
  const MDagPath linked = uvLinks::uvObjectOf(mesh.node());
  if (linked.isValid()) return linked;
  const MObject node = nodeInHistory(mesh, "uvEditNode");
  MPlugArray drivers;
  MDagPath uvObject;
  if (node.isNull()) return uvObject;
  MPlug(node, uvEditNode::inUVPolyMesh).connectedTo(drivers, true, false);
  if (drivers.length() > 0 && drivers[0].node().hasFn(MFn::kMesh))
    MDagPath::getAPathTo(drivers[0].node(), uvObject);
  return uvObject;
}
