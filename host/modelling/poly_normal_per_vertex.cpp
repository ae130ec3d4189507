// The node that keeps set normals in the history; the command is beside those of colour sets.
#include <cmath>

#include "host/mesh/adjacency.h"
#include "host/modelling/declare/corner_values.h"
#include "host/modelling/declare/declaration.h"

namespace host::modelling {

namespace {

/// What says nothing of a normal, and from where on one is let go.
constexpr double kUnsaid = -999, kReleased = 1e19;

Result<void> setNormals(HistoryContext& context) {
  mesh::Mesh& mesh = context.mesh;
  std::vector<std::pair<CornerId, math::Vec3>> wanted;
  CornerValues values(context.block);
  const Plug all = context.node().plug("normalPerVertex").child(0);
  for (const VertexId vertex : values.indices(all)) {
    if (vertex < 0 || vertex >= mesh.vertexCount()) continue;
    const Plug element = all.element(vertex);
    if (const math::Vec3 whole = values.triple(element.child(0)); whole.x != kUnsaid)
      for (const CornerId corner : mesh.adjacency().vertexCorners(vertex))
        wanted.emplace_back(corner, whole);
    const Plug faces = element.child(1);
    for (const FaceId face : values.indices(faces)) {
      if (face < 0 || face >= mesh.faceCount()) continue;
      const CornerId corner = mesh.adjacency().findCorner(face, vertex);
      const math::Vec3 own = values.triple(faces.element(face).child(0));
      if (corner != kNone && own.x != kUnsaid) wanted.emplace_back(corner, own);
    }
  }
  if (auto done = values.fault(); !done) return done;
  if (wanted.empty()) return {};
  const bool adds = context.boolean("normalAdd");
  const std::vector<math::Vec3f> now(mesh.cornerNormals().begin(), mesh.cornerNormals().end());
  mesh::LockedNormals& normals = mesh.editLockedNormals();
  const auto corners = at(mesh.cornerCount());
  normals.normals.resize(corners);
  normals.locked.resize(corners, 0);
  for (const auto& [corner, value] : wanted) {
    const auto at = static_cast<std::size_t>(corner);
    const bool isLet = std::abs(value.x) > kReleased;
    const math::Vec3 normal = isLet ? math::Vec3() : adds ? math::Vec3(now[at]) + value : value;
    const double length = math::length(normal);
    // Nothing points nowhere: such a normal leaves the corner as it was.
    if (!isLet && !(length > 0)) continue;
    normals.locked[at] = isLet ? 0 : 1;
    normals.normals[at] = isLet ? math::Vec3f() : (normal / length).toFloat();
  }
  return {};
}

}  // namespace

void polyNormalPerVertex(Declarations& add) {
  const auto xyz = [](const char* longName, const char* shortName, const std::string& child,
                      const std::string& shortChild) {
    return numbers(longName, shortName, "float3",
                   {single(child + "X", shortChild + "x", kUnsaid),
                    single(child + "Y", shortChild + "y", kUnsaid),
                    single(child + "Z", shortChild + "z", kUnsaid)});
  };
  add("", "Sets normals of vertices and corners.")
      .node("polyNormalPerVertex", typeCode("PNPV"))
      .parameter(compound("normalPerVertex", "npvx",
                          {array(compound("vertexNormal", "vn",
                                          {xyz("vertexNormalXYZ", "nxyz", "vertexNormal", "vxn"),
                                           array(compound("vertexFaceNormal", "vfnl",
                                                          {xyz("vertexFaceNormalXYZ", "fnxy",
                                                               "vertexFaceNormal", "vfn")}))}))}),
                 "the normals")
      .noFlag()
      .parameter(boolean("normalDeform", "npvd", true), "of older files")
      .noFlag()
      .recordedOnly()
      .parameter(boolean("normalAdd", "npva"), "the vectors are added to the normals")
      .noFlag()
      .operation(setNormals);
}

}  // namespace host::modelling
