// curveInfo, pointOnCurveInfo and nearestPointOnCurve: what is measured of a curve.
#include <cmath>

#include "host/dg/graph.h"
#include "host/nodes/curve/curve_nodes.h"
#include "host/nodes/math/math_nodes.h"
#include "host/scene/curve_data.h"

namespace host::nodes {

namespace {

using math::Vec3;

AttributePtr inputCurve() {
  return dg::makeTyped("inputCurve", "ic", "nurbsCurve");
}

void registerWhole(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "curveInfo", {}, typeCode("NCIN"));
  const Attribute* in = builder.add(inputCurve());
  const Attribute* length = builder.add(output(distance("arcLength", "al")));
  computeBy(builder, {in}, {length}, [=](Node&, DataBlock& block) -> Result<void> {
    const auto data = block.data<scene::CurveData>(in);
    block.output(length, data ? data->curve.length() : 0.0);
    return {};
  });
}

void registerPoint(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "pointOnCurveInfo", {}, typeCode("NPCI"));
  const Attribute* in = builder.add(inputCurve());
  const Attribute* parameter = builder.add(keyable(real("parameter", "pr")));
  const Attribute* isShare = builder.add(keyable(boolean("turnOnPercentage", "top")));
  const Attribute* result =
      builder.add(output(compound("result", "r",
                                  {triple("position", "p", AttributeType::Distance),
                                   triple("normal", "n", AttributeType::Distance),
                                   triple("normalizedNormal", "nn", AttributeType::Double),
                                   triple("tangent", "t", AttributeType::Distance),
                                   triple("normalizedTangent", "nt", AttributeType::Double),
                                   triple("curvatureCenter", "cc", AttributeType::Distance),
                                   distance("curvatureRadius", "cr")})));
  computeBy(builder, {in, parameter, isShare}, {result},
            [=](Node& node, DataBlock& block) -> Result<void> {
              const auto data = block.data<scene::CurveData>(in);
              const Plug all(&node, result);
              if (!data) return fail("'{}' has no curve to measure", node.name());
              const math::NurbsCurve& curve = data->curve;
              double at = block.real(parameter);
              if (block.boolean(isShare)) at = curve.first() + at * (curve.last() - curve.first());
              const Vec3 place = curve.at(at), tangent = curve.derivative(at),
                         bend = curve.derivative(at, 2);
              // Across the tangent, towards the middle of the circle that fits best.
              const double speed = math::dot(tangent, tangent);
              const Vec3 normal =
                  speed > 0 ? bend - tangent * (math::dot(bend, tangent) / speed) : Vec3();
              const double curvature = speed > 0 ? math::length(normal) / speed : 0;
              const double radius = curvature > 0 ? 1 / curvature : 0;
              outputVec3(block, all.child(0), place);
              outputVec3(block, all.child(1), normal);
              outputVec3(block, all.child(2), math::normalized(normal));
              outputVec3(block, all.child(3), tangent);
              outputVec3(block, all.child(4), math::normalized(tangent));
              outputVec3(block, all.child(5), place + math::normalized(normal) * radius);
              block.output(all.child(6), radius);
              return {};
            });
}

void registerNearest(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "nearestPointOnCurve", {}, typeCode("NPOC"));
  const Attribute* in = builder.add(inputCurve());
  const Attribute* from = builder.add(keyable(triple("inPosition", "ip", AttributeType::Distance)));
  const Attribute* result = builder.add(output(compound(
      "result", "r", {triple("position", "p", AttributeType::Distance), real("parameter", "pr")})));
  computeBy(builder, {in, from}, {result}, [=](Node& node, DataBlock& block) -> Result<void> {
    const auto data = block.data<scene::CurveData>(in);
    if (!data) return fail("'{}' has no curve to measure", node.name());
    const double at = data->curve.closest(block.vec3(from));
    outputVec3(block, Plug(&node, result).child(0), data->curve.at(at));
    block.output(Plug(&node, result).child(1), at);
    return {};
  });
}

}  // namespace

void registerCurveInfoNodes(dg::TypeRegistry& types) {
  registerWhole(types);
  registerPoint(types);
  registerNearest(types);
}

}  // namespace host::nodes
