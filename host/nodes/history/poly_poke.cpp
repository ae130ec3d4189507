#include "host/math/frame.h"
#include "host/mesh/normals.h"
#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/subdivide_faces.h"

namespace host::nodes {

namespace {

/// Moves the new centres in the frames of the faces that they stand in, measured in `space`.
Result<void> moveCentres(mesh::Mesh& mesh, const mesh::Mesh& before,
                         const std::vector<FaceId>& faces, const std::vector<VertexId>& centres,
                         const math::Vec3& by, const math::Matrix4& space) {
  const auto back = math::inverse(space);
  if (!back) return fail("the object is scaled to nothing; its centres can't be moved");
  const auto points = mesh.editPoints();
  for (std::size_t i = 0; i < centres.size(); ++i) {
    math::Vec3f& point = points[static_cast<std::size_t>(centres[i])];
    const math::Vec3 normal = math::transformNormal(mesh::faceNormal(before, faces[i]), space);
    const math::Frame frame =
        math::frameFromNormal(math::transformPoint(math::Vec3(point), space), normal);
    point = math::transformPoint(frame.toWorld(by), *back).toFloat();
    if (!math::isFinite(math::Vec3(point))) return fail("the centres would end at infinity");
  }
  return {};
}

}  // namespace

void registerPolyPoke(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyPoke", typeCode("PPOK"), "polyModifierWorld")
      .parameter(keyable(triple("localTranslate", "lt", AttributeType::Distance)))
      .operation([](HistoryContext& context) -> Result<void> {
        const std::vector<FaceId> faces = context.faces();
        const mesh::Mesh before = context.mesh;
        auto made = ops::pokeFaces(context.mesh, faces);
        if (!made) return failWith(made.error());
        const math::Vec3 by = context.vec3("localTranslate");
        if (by != math::Vec3())
          HOST_TRY(moveCentres(context.mesh, before, faces, made->vertices, by, context.space()));
        context.makes(scene::ComponentType::Face, std::move(made->faces));
        return {};
      });
}

}  // namespace host::nodes
