#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/remesh.h"

namespace host::modelling {

namespace {

/// The mean length of the faces' edges, in object space.
double meanLength(const mesh::Mesh& mesh, const std::vector<FaceId>& faces) {
  double sum = 0, count = 0;
  for (const FaceId f : faces)
    for (const EdgeId e : mesh.faceEdges(f)) {
      sum += length(mesh.point(mesh.edge(e).a) - mesh.point(mesh.edge(e).b));
      ++count;
    }
  return count > 0 ? sum / count : 0;
}

void movePoints(mesh::Mesh& mesh, const math::Matrix4& matrix) {
  for (math::Vec3f& point : mesh.editPoints())
    point = math::transformPoint(math::Vec3(point), matrix).toFloat();
}

Result<void> remesh(HistoryContext& context) {
  const std::vector<FaceId> faces = context.faces();
  if (faces.empty()) return {};
  ops::RemeshOptions options;
  options.longest = context.real("maxEdgeLength");
  // In the world edges have the world's lengths; a mesh at rest there is the object's own.
  math::Matrix4 there, back;
  if (context.boolean("worldSpace")) {
    there = context.matrix("inputMatrix");
    const auto inverse = math::inverse(there);
    if (!inverse) return fail("an object with a scale of zero has no lengths in the world");
    back = *inverse;
    movePoints(context.mesh, there);
  }
  if (context.boolean("useRelativeValues")) options.longest *= meanLength(context.mesh, faces);
  options.collapseShare = context.real("collapseThreshold") / 100;
  options.smoothing = context.real("smoothStrength") / 100;
  options.keepsBorders = !context.boolean("tessellateBorders");
  options.mostTriangles = context.integer("maxTriangleCount");
  auto made = ops::remeshFaces(context.mesh, faces, options);
  if (!made) return failWith(made.error());
  if (context.boolean("worldSpace")) movePoints(context.mesh, back);
  context.makes(*made);
  return {};
}

}  // namespace

void polyRemesh(Declarations& add) {
  add("polyRemesh", "Replaces faces by triangles of even size on the same surface.")
      .node("polyRemesh", typeCode("PRMS"), "polyModifierWorld")
      .takes(ComponentType::Face)
      .leaves(Leaves::Made)
      .parameter(keyable(real("maxEdgeLength", "mel", 1)),
                 "longer edges are split: centimetres, or times the mean edge as -urv says")
      .parameter(boolean("useRelativeValues", "urv", true),
                 "-mel counts in mean lengths of the faces' edges")
      .parameter(keyable(real("collapseThreshold", "cth", 60)),
                 "edges shorter than this many percent of the longest are collapsed, up to 75")
      .parameter(keyable(real("smoothStrength", "sst", 100)),
                 "how far vertices relax along the surface, percent")
      .parameter(boolean("tessellateBorders", "tsb", true), "borders are divided as well")
      .parameter(integer("maxTriangleCount", "mtc", 10000000), "more are refused")
      .parameter(choice("interpolationType", "ipt", {"Linear", "Centroid", "Phong"}, 2),
                 "new vertices go to the surface as it is")
      .recordedOnly()
      .trial("-mel 0.8 -mtc 20000", "f")
      .trial("-urv 0 -mel 0.4 -cth 50 -tsb 0 -mtc 20000", "f")
      .operation(remesh);
}

}  // namespace host::modelling
