#include "host/nodes/history/modelling_nodes.h"

namespace host::nodes {

void registerModellingNodes(dg::TypeRegistry& types) {
  registerPolyAppendVertex(types);
  registerPolyBevel(types);
  registerPolyBridgeEdge(types);
  registerPolyChipOff(types);
  registerPolyCloseBorder(types);
  registerPolyCollapse(types);
  registerPolyConnectComponents(types);
  registerPolyCreateFace(types);
  registerPolyDelEdge(types);
  registerPolyDelFacet(types);
  registerPolyDelVertex(types);
  registerPolyExtrudeEdge(types);
  registerPolyExtrudeFace(types);
  registerPolyMergeVert(types);
  registerPolyMirror(types);
  registerPolyNormal(types);
  registerPolyPoke(types);
  registerPolyQuad(types);
  registerPolySeparate(types);
  registerPolySmoothFace(types);
  registerPolySplitRing(types);
  registerPolySubdEdge(types);
  registerPolySubdFace(types);
  registerPolyTriangulate(types);
  registerPolyUnite(types);
}

}  // namespace host::nodes
