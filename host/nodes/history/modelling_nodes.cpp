#include "host/nodes/history/modelling_nodes.h"

namespace host::nodes {

void registerModellingNodes(dg::TypeRegistry& types) {
  registerPolyAppendVertex(types);
  registerPolyBevel(types);
  registerPolyCloseBorder(types);
  registerPolyCollapse(types);
  registerPolyConnectComponents(types);
  registerPolyCreateFace(types);
  registerPolyDelEdge(types);
  registerPolyDelFacet(types);
  registerPolyDelVertex(types);
  registerPolyExtrudeFace(types);
  registerPolyMergeVert(types);
  registerPolyNormal(types);
  registerPolyPoke(types);
  registerPolySeparate(types);
  registerPolySmoothFace(types);
  registerPolySubdEdge(types);
  registerPolySubdFace(types);
  registerPolyTriangulate(types);
  registerPolyUnite(types);
}

}  // namespace host::nodes
