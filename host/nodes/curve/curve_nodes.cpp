#include "host/nodes/curve/curve_nodes.h"

#include <cmath>
#include <numbers>

#include "host/dg/graph.h"
#include "host/scene/curve_data.h"

namespace host::nodes {

namespace {

dg::Value valueOf(math::NurbsCurve curve) {
  return dg::DataPtr(std::make_shared<scene::CurveData>(std::move(curve)));
}

void registerShape(dg::TypeRegistry& types) {
  TypeBuilder base(types, "curveShape", "controlPoint", typeCode("CVSH"));
  base.setAbstract();
  base.finish();
  TypeBuilder curve(types, "nurbsCurve", "curveShape", typeCode("NCRV"));
  const Attribute* stored = curve.add(hidden(dg::makeTyped("cached", "cc", "nurbsCurve")));
  const Attribute* create = curve.add(notStored(dg::makeTyped("create", "cr", "nurbsCurve")));
  const Attribute* local = curve.add(output(dg::makeTyped("local", "l", "nurbsCurve")));
  AttributePtr placed = array(output(dg::makeTyped("worldSpace", "ws", "nurbsCurve")));
  placed->worldSpace = true;
  const Attribute* world = curve.add(std::move(placed));
  curve.add(boolean("inPlace", "ipo"));
  curve.add(boolean("dispCV", "dcv"));
  curve.add(boolean("dispEP", "dep"));
  curve.add(boolean("dispHull", "dh"));
  curve.add(boolean("dispGeometry", "dg", true));
  curve.add(single("lineWidth", "lw", -1));
  const Attribute* form = curve.add(output(choice("form", "f", {"Open", "Closed", "Periodic"})));
  const Attribute* degree = curve.add(output(integer("degree", "d")));
  const Attribute* spans = curve.add(output(integer("spans", "s")));
  const Attribute* range =
      curve.add(numbers("minMaxValue", "mmv", "double2",
                        {output(real("minValue", "min")), output(real("maxValue", "max"))}));
  const Attribute* matrices = curve["worldMatrix"];
  curve.affects({stored, create}, {local, world, form, degree, spans, range});
  curve.affects({matrices}, {world});
  curve.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    const Attribute* wanted = plug.attribute();
    const bool isRange = wanted == range || wanted->parent == range;
    if (wanted != local && wanted != world && wanted != form && wanted != degree &&
        wanted != spans && !isRange)
      return Computed::Unhandled;
    const bool isDriven = !block.graph().source(Plug(&node, create)).isNull();
    const auto data = block.data<scene::CurveData>(isDriven ? create : stored);
    if (!data) {
      if (wanted == local || wanted == world) {
        block.output(plug, dg::Value());
        return Computed::Done;
      }
      return Computed::Unhandled;
    }
    const math::NurbsCurve& own = data->curve;
    if (wanted == local) block.output(local, dg::DataPtr(data));
    if (wanted == form) block.output(form, static_cast<std::int64_t>(own.form));
    if (wanted == degree) block.output(degree, std::int64_t{own.degree});
    if (wanted == spans) block.output(spans, std::int64_t{own.spans()});
    if (isRange) {
      block.output(Plug(&node, range).child(0), own.first());
      block.output(Plug(&node, range).child(1), own.last());
    }
    if (wanted == world) {
      const Index index = plug.isElement() ? plug.logicalIndex() : 0;
      const auto matrix = block.data<dg::MatrixData>(Plug(&node, matrices).element(index));
      math::NurbsCurve moved = own;
      if (matrix)
        for (math::Vec3& point : moved.points) point = math::transformPoint(point, matrix->value);
      block.output(Plug(&node, world).element(index), valueOf(std::move(moved)));
    }
    return Computed::Done;
  };
  curve.finish();
}

void registerCircle(dg::TypeRegistry& types) {
  TypeBuilder circle(types, "makeNurbCircle", {}, typeCode("NCRC"));
  circle.livesByItsOutputs();
  const Attribute* center = circle.add(triple("center", "c", AttributeType::Distance));
  const Attribute* normal = circle.add(triple("normal", "nr", AttributeType::Distance, {0, 0, 1}));
  const Attribute* first = circle.add(triple("first", "fp", AttributeType::Distance, {1, 0, 0}));
  const Attribute* radius = circle.add(keyable(distance("radius", "r", 1)));
  const Attribute* sweep = circle.add(angle("sweep", "sw", 2 * std::numbers::pi));
  const Attribute* degree =
      circle.add(dg::makeEnum("degree", "d", {{"Linear", 1}, {"Cubic", 3}}, 3));
  const Attribute* sections = circle.add(atLeast(integer("sections", "s", 8), 1));
  const Attribute* fix = circle.add(boolean("fixCenter", "fc", true));
  circle.add(boolean("useTolerance", "ut"));
  circle.add(real("tolerance", "tol", 0.01));
  const Attribute* result = circle.add(output(dg::makeTyped("outputCurve", "oc", "nurbsCurve")));
  circle.affects({center, normal, first, radius, sweep, degree, sections, fix}, {result});
  circle.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    const double size = block.real(radius);
    if (!std::isfinite(size)) return fail("'{}' has no finite radius", node.name());
    block.output(result, valueOf(math::circleCurve(size, static_cast<int>(block.integer(degree)),
                                                   static_cast<int>(block.integer(sections)),
                                                   block.vec3(center), block.vec3(normal))));
    return Computed::Done;
  };
  circle.finish();
}

}  // namespace

void registerCurveNodes(dg::TypeRegistry& types) {
  registerShape(types);
  registerCircle(types);
}

Result<math::NurbsCurve> evaluatedCurve(Node& shape) {
  const Plug local = shape.plug("local");
  if (!local || !shape.type().isA("nurbsCurve")) return fail("'{}' is no curve", shape.name());
  const auto value = shape.graph().get(local);
  if (!value) return failWith(value.error());
  const auto* data = dg::dataAs<scene::CurveData>(*value);
  if (!data) return fail("'{}' has no curve in it", shape.name());
  return data->curve;
}

Result<void> setStoredCurve(Node& shape, math::NurbsCurve curve) {
  HOST_TRY(math::check(curve));
  dg::Graph& graph = shape.graph();
  if (graph.source(shape.plug("create")))
    return fail("'{}' is made by other nodes and can't be replaced", shape.name());
  return graph.set(shape.plug("cached"), valueOf(std::move(curve)));
}

}  // namespace host::nodes
