#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolySplitRing(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polySplitRing",
                   .nodeType = "polySplitRing",
                   .works = scene::ComponentType::Edge,
                   .leaves = Leaves::Made},
                  {{"stp", "splitType", {ArgType::Int}},
                   {"wt", "weight", {ArgType::Double}},
                   {"div", "divisions", {ArgType::Int}},
                   {"dr", "direction", {ArgType::Int}},
                   {"re", "rootEdge", {ArgType::Int}},
                   {"uem", "useEqualMultiplier", {ArgType::Bool}},
                   {"sma", "smoothingAngle", {ArgType::Angle}},
                   {"fq", "fixQuads", {ArgType::Bool}},
                   {"ief", "insertWithEdgeFlow", {ArgType::Bool}},
                   {"aef", "adjustEdgeFlow", {ArgType::Double}},
                   worldSpaceFlag()},
                  [](Context& context, const ParsedArgs& args, dg::Node& node, const MeshItem&,
                     const std::vector<EdgeId>& edges) -> Result<void> {
                    if (args.has("rootEdge") || edges.empty()) return {};
                    return context.document.graph().set(node.plug("rootEdge"),
                                                        std::int64_t{edges.front()});
                  });
}

}  // namespace host::builtins
