#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

// One a source file, in the order of their names.
void registerPolyAppendVertex(CommandRegistry&);
void registerPolyBevel(CommandRegistry&);
void registerPolyBridgeEdge(CommandRegistry&);
void registerPolyChipOff(CommandRegistry&);
void registerPolyCloseBorder(CommandRegistry&);
void registerPolyCollapseEdge(CommandRegistry&);
void registerPolyCollapseFacet(CommandRegistry&);
void registerPolyConnectComponents(CommandRegistry&);
void registerPolyCreateFacet(CommandRegistry&);
void registerPolyDelEdge(CommandRegistry&);
void registerPolyDelFacet(CommandRegistry&);
void registerPolyDelVertex(CommandRegistry&);
void registerPolyExtrudeEdge(CommandRegistry&);
void registerPolyExtrudeFacet(CommandRegistry&);
void registerPolyMergeVertex(CommandRegistry&);
void registerPolyMirrorFace(CommandRegistry&);
void registerPolyNormal(CommandRegistry&);
void registerPolyPoke(CommandRegistry&);
void registerPolyQuad(CommandRegistry&);
void registerPolySeparate(CommandRegistry&);
void registerPolySmooth(CommandRegistry&);
void registerPolySplitRing(CommandRegistry&);
void registerPolySubdivideEdge(CommandRegistry&);
void registerPolySubdivideFacet(CommandRegistry&);
void registerPolyTriangulate(CommandRegistry&);
void registerPolyUnite(CommandRegistry&);

void registerModellingCommands(CommandRegistry& registry) {
  static constexpr void (*kRegistrations[])(CommandRegistry&) = {
      registerPolyAppendVertex,  registerPolyBevel,
      registerPolyBridgeEdge,    registerPolyChipOff,
      registerPolyCloseBorder,   registerPolyCollapseEdge,
      registerPolyCollapseFacet, registerPolyConnectComponents,
      registerPolyCreateFacet,   registerPolyDelEdge,
      registerPolyDelFacet,      registerPolyDelVertex,
      registerPolyExtrudeEdge,   registerPolyExtrudeFacet,
      registerPolyMergeVertex,   registerPolyMirrorFace,
      registerPolyNormal,        registerPolyPoke,
      registerPolyQuad,          registerPolySeparate,
      registerPolySmooth,        registerPolySplitRing,
      registerPolySubdivideEdge, registerPolySubdivideFacet,
      registerPolyTriangulate,   registerPolyUnite,
  };
  for (const auto registration : kRegistrations) registration(registry);
}

}  // namespace host::builtins
