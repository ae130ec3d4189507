#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Each registers one type of history node that wraps one modelling operation.
void registerPolyAppendVertex(dg::TypeRegistry& types);
void registerPolyBevel(dg::TypeRegistry& types);  ///< polyBevel, polyBevel2 and polyBevel3
void registerPolyBridgeEdge(dg::TypeRegistry& types);
void registerPolyChipOff(dg::TypeRegistry& types);
void registerPolyCloseBorder(dg::TypeRegistry& types);
void registerPolyCollapse(dg::TypeRegistry& types);  ///< polyCollapseEdge and polyCollapseF
void registerPolyConnectComponents(dg::TypeRegistry& types);
void registerPolyCreateFace(dg::TypeRegistry& types);
void registerPolyDelEdge(dg::TypeRegistry& types);
void registerPolyDelFacet(dg::TypeRegistry& types);
void registerPolyDelVertex(dg::TypeRegistry& types);
void registerPolyExtrudeEdge(dg::TypeRegistry& types);
void registerPolyExtrudeFace(dg::TypeRegistry& types);
void registerPolyMergeVert(dg::TypeRegistry& types);
void registerPolyMirror(dg::TypeRegistry& types);
void registerPolyNormal(dg::TypeRegistry& types);
void registerPolyPoke(dg::TypeRegistry& types);
void registerPolyQuad(dg::TypeRegistry& types);
void registerPolySeparate(dg::TypeRegistry& types);
void registerPolySmoothFace(dg::TypeRegistry& types);
void registerPolySplitRing(dg::TypeRegistry& types);
void registerPolySubdEdge(dg::TypeRegistry& types);
void registerPolySubdFace(dg::TypeRegistry& types);
void registerPolyTriangulate(dg::TypeRegistry& types);
void registerPolyUnite(dg::TypeRegistry& types);

/// All of the above.
void registerModellingNodes(dg::TypeRegistry& types);

}  // namespace host::nodes
