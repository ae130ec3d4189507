#include "host/math/frame.h"
#include "host/mesh/normals.h"
#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/subdivide_faces.h"

namespace host::modelling {

namespace {

/// Moves the new centres in the frames of the faces that they stand in, then along the axes, both
/// measured in `space`.
Result<void> moveCentres(HistoryContext& context, const mesh::Mesh& before,
                         const std::vector<FaceId>& faces, const std::vector<VertexId>& centres) {
  const math::Vec3 local = context.vec3("localTranslate"), along = context.vec3("translate");
  if (local == math::Vec3() && along == math::Vec3()) return {};
  const math::Matrix4 space = context.space();
  const auto back = math::inverse(space);
  if (!back) return fail("the object is scaled to nothing; its centres can't be moved");
  const auto points = context.mesh.editPoints();
  for (std::size_t i = 0; i < centres.size(); ++i) {
    math::Vec3f& point = points[at(centres[i])];
    const math::Vec3 normal = math::transformNormal(mesh::faceNormal(before, faces[i]), space);
    const math::Frame frame =
        math::frameFromNormal(math::transformPoint(math::Vec3(point), space), normal);
    point = math::transformPoint(frame.toWorld(local) + along, *back).toFloat();
    if (!math::isFinite(math::Vec3(point))) return fail("the centres would end at infinity");
  }
  return {};
}

Result<void> poke(HistoryContext& context) {
  const std::vector<FaceId> faces = context.faces();
  const mesh::Mesh before = context.mesh;
  auto made = ops::pokeFaces(context.mesh, faces);
  if (!made) return failWith(made.error());
  HOST_TRY(moveCentres(context, before, faces, made->vertices));
  context.makes(std::move(made->faces));
  return {};
}

}  // namespace

void polyPoke(Declarations& add) {
  add("polyPoke", "Replaces each face by triangles around a new vertex in its middle.")
      .node("polyPoke", typeCode("PPOK"), "polyModifierWorld")
      .takes(ComponentType::Face)
      .leaves(Leaves::Made)
      .parameter(keyable(triple("translate", "t", AttributeType::Distance)),
                 "moves the new vertices along the axes")
      .parameter(keyable(triple("localTranslate", "lt", AttributeType::Distance)),
                 "moves the new vertices in the frames of their faces, z along the normal")
      .trial("-ltz 0.1", "f")
      .trial("-tx 0.2 -lty 0.1 -ws 1", "f")
      .operation(poke);
}

}  // namespace host::modelling
