#include <algorithm>

#include "host/nodes/math/math_nodes.h"

namespace host::nodes {

void computeBy(TypeBuilder& builder, std::vector<const Attribute*> inputs,
               std::vector<const Attribute*> outputs,
               std::function<Result<void>(Node& node, DataBlock& block)> work) {
  for (const Attribute* input : inputs)
    for (const Attribute* made : outputs) builder.affects({input}, {made});
  builder.type().compute = [outputs = std::move(outputs), work = std::move(work)](
                               Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    const Attribute& top = plug.attribute()->top();
    if (std::ranges::find(outputs, &top) == outputs.end()) return Computed::Unhandled;
    HOST_TRY(work(node, block));
    return Computed::Done;
  };
  builder.finish();
}

void outputVec3(DataBlock& block, const Plug& triple, const math::Vec3& value) {
  for (int axis = 0; axis < 3; ++axis) block.output(triple.child(axis), value[axis]);
}

}  // namespace host::nodes
