#include "host/nodes/locator_node.h"

#include <algorithm>
#include <array>

#include "host/nodes/type_builder.h"
#include "host/scene/dag_paths.h"

namespace host::nodes {

void registerLocator(dg::TypeRegistry& types) {
  TypeBuilder locator(types, "locator", "geometryShape", typeCode("LOCT"));
  const Attribute* local =
      locator.add(channelBox(triple("localPosition", "lp", AttributeType::Distance)));
  locator.add(channelBox(triple("localScale", "los", AttributeType::Distance, {1, 1, 1}, "ls")));
  AttributePtr positions = array(output(triple("worldPosition", "wp", AttributeType::Distance)));
  positions->worldSpace = true;
  const Attribute* world = locator.add(std::move(positions));
  const Attribute* matrices = locator["worldMatrix"];
  locator.affects({local, matrices, locator["parentMatrix"]}, {world});
  locator.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    const bool isPart = plug.attribute()->parent == world;
    if (plug.attribute() != world && !isPart) return Computed::Unhandled;
    const Plug whole = isPart ? plug.parent() : plug;
    const Index first = whole.isElement() ? whole.logicalIndex() : 0;
    const Index last =
        whole.isElement() ? first + 1
                          : static_cast<Index>(std::min(scene::pathCount(node), scene::kMostPaths));
    const math::Vec3 position = block.vec3(local);
    for (Index i = first; i < last; ++i) {
      const auto matrix = block.data<dg::MatrixData>(Plug(&node, matrices).element(i));
      const math::Vec3 placed = matrix ? math::transformPoint(position, matrix->value) : position;
      for (int axis = 0; axis < 3; ++axis)
        block.output(Plug(&node, world).element(i).child(axis), placed[axis]);
    }
    return Computed::Done;
  };
  locator.finish();
}

}  // namespace host::nodes
