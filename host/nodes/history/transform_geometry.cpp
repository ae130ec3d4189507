#include <memory>

#include "host/nodes/history/modifiers.h"
#include "host/nodes/type_builder.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

void registerTransformGeometry(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "transformGeometry", {}, typeCode("TGEO"));
  builder.livesByItsOutputs();
  const Attribute* input = builder.add(notStored(dg::makeTyped("inputGeometry", "ig", "mesh")));
  const Attribute* transform = builder.add(matrix("transform", "txf"));
  const Attribute* invert = builder.add(boolean("invertTransform", "itf"));
  const Attribute* freeze = builder.add(boolean("freezeNormals", "fn"));
  const Attribute* result = builder.add(output(dg::makeTyped("outputGeometry", "og", "mesh")));
  const Attribute* state = builder["nodeState"];
  builder.affects({input, transform, invert, freeze, state}, {result});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    auto arriving = block.input(Plug(&node, input));
    if (!arriving) return failWith(arriving.error());
    const auto* data = dg::dataAs<scene::MeshData>(*arriving);
    if (!data || block.integer(state) == 1) {
      block.output(result, *arriving);
      return Computed::Done;
    }
    math::Matrix4 by = block.matrix(transform);
    if (block.boolean(invert)) {
      const auto inverted = math::inverse(by);
      if (!inverted) return fail("{}: the transform has no inverse", node.name());
      by = *inverted;
    }
    mesh::Mesh moved = data->mesh;
    for (math::Vec3f& point : moved.editPoints())
      point = math::transformPoint(math::Vec3(point), by).toFloat();
    if (!moved.lockedNormals().normals.empty() && !block.boolean(freeze))
      for (math::Vec3f& normal : moved.editLockedNormals().normals)
        normal = math::normalized(math::transformNormal(math::Vec3(normal), by)).toFloat();
    block.output(result,
                 dg::DataPtr(std::make_shared<scene::MeshData>(std::move(moved), data->groups)));
    return Computed::Done;
  };
  builder.finish();
}

}  // namespace host::nodes
