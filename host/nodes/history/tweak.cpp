#include "host/nodes/history/tweak.h"

#include "host/dg/graph.h"
#include "host/nodes/history/deformers.h"

namespace host::nodes {

namespace {

void apply(DeformInput& in, const char* lists, const char* list, bool isRelative) {
  const Plug all = in.plug(lists);
  std::vector<Index> vertices;
  std::vector<double> numbers;
  in.block.graph().getPacked(all.element(in.geometry).child(all.attribute()->find(list)), vertices,
                             numbers);
  if (vertices.empty()) return;
  const std::span<math::Vec3f> points = in.mesh.editPoints();
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    if (at(vertices[i]) >= points.size()) continue;
    math::Vec3f& point = points[at(vertices[i])];
    const math::Vec3 given{numbers[3 * i], numbers[3 * i + 1], numbers[3 * i + 2]};
    const math::Vec3 rest(point);
    const math::Vec3 way = isRelative ? given : given - rest;
    // No way at all must not even turn a -0 into a 0.
    if (way.x == 0 && way.y == 0 && way.z == 0) continue;
    point = (rest + way * in.envelope).toFloat();
  }
}

}  // namespace

void registerTweak(dg::TypeRegistry& types) {
  TypeBuilder tweak(types, "tweak", "geometryFilter", typeCode("FTWK"));
  tweak.livesByItsOutputs();
  const Attribute* relative = tweak.add(boolean("relativeTweak", "rtw", true));
  const Attribute* points =
      tweak.add(array(compound("plist", "pl",
                               {array(numbers("controlPoints", "cp", "double3",
                                              {distance("xValue", "xv"), distance("yValue", "yv"),
                                               distance("zValue", "zv")}))})));
  // In double precision, as the offsets of a mesh are, which move in here.
  const Attribute* vertices =
      tweak.add(array(compound("vlist", "vl",
                               {array(numbers("vertex", "vt", "float3",
                                              {distance("xVertex", "vx"), distance("yVertex", "vy"),
                                               distance("zVertex", "vz")}))})));
  tweak.affects({relative, points, vertices}, {tweak["outputGeometry"]});
  setDeformation(tweak, [](DeformInput& in) -> Result<void> {
    const bool isRelative = in.integer("relativeTweak") != 0;
    apply(in, "plist", "controlPoints", isRelative);
    apply(in, "vlist", "vertex", isRelative);
    return {};
  });
  tweak.finish();
}

}  // namespace host::nodes
