#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/subdivide_faces.h"

namespace host::nodes {

void registerPolySubdFace(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polySubdFace", typeCode("PSDF"))
      .parameter(keyable(limited(integer("divisions", "dv", 1), 1, 8)))
      .parameter(choice("mode", "m", {"Quads", "Triangles"}))
      .operation([](HistoryContext& context) -> Result<void> {
        using Mode = ops::SubdivideFacesOptions::Mode;
        ops::SubdivideFacesOptions options;
        options.divisions = context.integer("divisions");
        options.mode = context.integer("mode") == 0 ? Mode::Quads : Mode::Triangles;
        auto made = ops::subdivideFaces(context.mesh, context.faces(), options);
        if (!made) return failWith(made.error());
        context.makes(scene::ComponentType::Face, std::move(made->faces));
        return {};
      });
}

}  // namespace host::nodes
