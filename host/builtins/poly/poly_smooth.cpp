#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolySmooth(CommandRegistry& registry) {
  constexpr ArgType kSwitch = ArgType::Bool, kCount = ArgType::Int, kReal = ArgType::Double;
  defineModelling(registry,
                  {.command = "polySmooth",
                   .nodeType = "polySmoothFace",
                   .works = scene::ComponentType::Face,
                   .leaves = Leaves::Made},
                  {{"mth", "method", {kCount}},
                   {"sdt", "subdivisionType", {kCount}},
                   {"dv", "divisions", {kCount}},
                   {"sl", "subdivisionLevels", {kCount}},
                   {"c", "continuity", {kReal}},
                   {"suv", "smoothUVs", {kSwitch}},
                   {"kb", "keepBorder", {kSwitch}},
                   {"ksb", "keepSelectionBorder", {kSwitch}},
                   {"khe", "keepHardEdge", {kSwitch}},
                   {"peh", "propagateEdgeHardness", {kSwitch}},
                   {"kmb", "keepMapBorders", {kCount}},
                   {"kt", "keepTessellation", {kSwitch}},
                   {"dpe", "divisionsPerEdge", {kCount}},
                   {"ps", "pushStrength", {kReal}},
                   {"ro", "roundness", {kReal}},
                   {"bnr", "boundaryRule", {kCount}},
                   {"ovb", "osdVertBoundary", {kCount}},
                   {"ofb", "osdFvarBoundary", {kCount}},
                   {"ofc", "osdFvarPropagateCorners", {kSwitch}},
                   {"ost", "osdSmoothTriangles", {kSwitch}},
                   {"ocr", "osdCreaseMethod", {kCount}}});
}

}  // namespace host::builtins
