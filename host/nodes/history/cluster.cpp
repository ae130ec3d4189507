#include "host/nodes/history/cluster.h"

#include "host/nodes/history/deformers.h"
#include "host/scene/dag_paths.h"

namespace host::nodes {

namespace {

using math::Matrix4;
using math::Vec3;

AttributePtr transforms(const char* longName, const char* pre, const char* weighted,
                        const char* post) {
  return compound(longName, "x",
                  {matrix(pre, "pre"), matrix(weighted, "wt"), matrix(post, "post")});
}

Matrix4 placeOfGeometry(DeformInput& input) {
  const Plug stored = input.plug("geomMatrix").element(input.geometry);
  return input.node().graph().elementExists(stored) ? input.matrix(stored) : input.geometryMatrix();
}

/// What the handle itself does, below what is above it.
std::optional<Matrix4> ownMotion(DeformInput& input) {
  const Plug source = input.node().graph().source(input.plug("matrix"));
  if (!source || !scene::isTransform(*source.node())) return std::nullopt;
  const scene::DagPath path = scene::firstPath(*source.node());
  const Matrix4 above = path.exclusiveMatrix();
  const auto back = math::inverse(above);
  if (!back) return std::nullopt;
  return *back * scene::localMatrix(*source.node()) * above;
}

Result<void> follow(DeformInput& input) {
  const Matrix4 there = placeOfGeometry(input);
  const auto back = math::inverse(there);
  if (!back) return fail("the geometry has a scale of zero");
  // Read in any case: what is not read is not told when it changes.
  Matrix4 motion = input.matrix(input.plug("bindPreMatrix")) * input.matrix(input.plug("matrix"));
  if (input.integer("relative") != 0)
    if (const auto own = ownMotion(input)) motion = *own;
  const Matrix4 all = there * motion * *back;
  if (math::isIdentity(all)) return {};
  const Plug lists = input.plug("weightList");
  const Plug weights = lists.element(input.geometry).child(lists.attribute()->find("weights"));
  const std::vector<float> strengths =
      vertexStrengths(input.node(), input.geometry, input.mesh, weights);
  movePoints(input.mesh, strengths, input.envelope,
             [&](std::size_t, const Vec3& rest) { return math::transformPoint(rest, all); });
  return {};
}

}  // namespace

void registerCluster(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "cluster", "weightGeometryFilter", typeCode("FCLS"));
  builder.livesByItsOutputs();
  builder.add(single("percentResolution", "ptr", 5));
  builder.add(choice("usePartialResolution", "upr", {"full", "partial", "partialWithPercent"}));
  const Attribute* relative = builder.add(boolean("relative", "rel"));
  const Attribute* places = builder.add(array(matrix("geomMatrix", "gm")));
  const Attribute* now = builder.add(matrix("matrix", "ma"));
  const Attribute* bound = builder.add(matrix("bindPreMatrix", "pm"));
  builder.add(matrix("weightedCompensationMatrix", "wcm"));
  builder.add(choice("angleInterpolation", "ait", {"closest", "positive", "negative"}));
  builder.add(hidden(transforms("clusterXforms", "preMatrix", "weightedMatrix", "postMatrix")));
  builder.add(hidden(boolean("bindState", "bs")));
  builder.add(hidden(matrix("postCompensationMatrix", "psc")));
  builder.add(hidden(matrix("preCompensationMatrix", "prc")));
  builder.affects({relative, places, now, bound}, {builder["outputGeometry"]});
  setDeformation(builder, follow);
  builder.finish();

  TypeBuilder handle(types, "clusterHandle", "shape", typeCode("CLHN"));
  handle.add(triple("origin", "or", AttributeType::Distance));
  handle.add(message("weightedNode", "wn"));
  handle.add(array(hidden(transforms("clusterTransforms", "preWeightedMatrixTransform",
                                     "weightedMatrixTransform", "postWeightedMatrixTransform"))));
  handle.finish();
}

}  // namespace host::nodes
