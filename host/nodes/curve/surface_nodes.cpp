#include "host/nodes/curve/surface_nodes.h"

#include <algorithm>
#include <cmath>

#include "host/dg/graph.h"
#include "host/nodes/curve/curve_nodes.h"
#include "host/scene/surface_data.h"

namespace host::nodes {

namespace {

dg::Value valueOf(math::NurbsSurface surface) {
  return dg::DataPtr(std::make_shared<scene::SurfaceData>(std::move(surface)));
}

/// Attributes that say how a surface is drawn and cut into triangles elsewhere: kept for files.
enum class Kind { Bool, Integer, Short, Real, Single };
struct Kept {
  const char *longName, *shortName;
  Kind kind;
  double value;
};
constexpr Kept kKept[] = {
    {"divisionsU", "dvu", Kind::Short, 0},
    {"divisionsV", "dvv", Kind::Short, 0},
    {"curvePrecision", "cpr", Kind::Short, 4},
    {"curvePrecisionShaded", "cps", Kind::Short, 1},
    {"simplifyMode", "sm", Kind::Short, 0},
    {"simplifyU", "smu", Kind::Short, 1},
    {"simplifyV", "smv", Kind::Short, 1},
    {"smoothEdge", "ues", Kind::Bool, 0},
    {"smoothEdgeRatio", "esr", Kind::Real, 0.99},
    {"useChordHeight", "uch", Kind::Bool, 0},
    {"objSpaceChordHeight", "uco", Kind::Bool, 1},
    {"useChordHeightRatio", "ucr", Kind::Bool, 1},
    {"edgeSwap", "es", Kind::Bool, 0},
    {"useMinScreen", "uns", Kind::Bool, 0},
    {"selCVDisp", "scvd", Kind::Bool, 0},
    {"dispCV", "dcv", Kind::Bool, 0},
    {"dispEP", "dep", Kind::Bool, 0},
    {"dispHull", "dh", Kind::Bool, 0},
    {"dispGeometry", "dg", Kind::Bool, 1},
    {"dispOrigin", "dor", Kind::Bool, 0},
    {"numberU", "nu", Kind::Integer, 3},
    {"modeU", "mu", Kind::Short, 3},
    {"numberV", "nv", Kind::Integer, 3},
    {"modeV", "mv", Kind::Short, 3},
    {"chordHeight", "ch", Kind::Real, 0.1},
    {"chordHeightRatio", "chr", Kind::Real, 0.983},
    {"minScreen", "mns", Kind::Real, 14},
    {"inPlace", "ipo", Kind::Bool, 0},
    {"displayRenderTessellation", "drt", Kind::Bool, 0},
    {"fixTextureWarp", "ftwp", Kind::Bool, 0},
    {"gridDivisionPerSpanU", "gdsu", Kind::Short, 4},
    {"gridDivisionPerSpanV", "gdsv", Kind::Short, 4},
    {"explicitTessellationAttributes", "eta", Kind::Bool, 0},
    {"uDivisionsFactor", "nufa", Kind::Real, 1.5},
    {"vDivisionsFactor", "nvfa", Kind::Real, 1.5},
    {"curvatureTolerance", "cvto", Kind::Short, 2},
    {"basicTessellationType", "btt", Kind::Short, 0},
    {"dispSF", "dsf", Kind::Bool, 0},
    {"normalsDisplayScale", "ndf", Kind::Real, 1},
    {"doubleSided", "ds", Kind::Bool, 1},
    {"opposite", "op", Kind::Bool, 0},
    {"smoothShading", "smo", Kind::Bool, 1},
    {"tweak", "tw", Kind::Bool, 0},
};

AttributePtr made(const Kept& kept) {
  switch (kept.kind) {
    case Kind::Bool:
      return boolean(kept.longName, kept.shortName, kept.value != 0);
    case Kind::Integer:
      return integer(kept.longName, kept.shortName, static_cast<std::int64_t>(kept.value));
    case Kind::Short:
      return shortInteger(kept.longName, kept.shortName, static_cast<std::int64_t>(kept.value));
    case Kind::Real:
      return real(kept.longName, kept.shortName, kept.value);
    case Kind::Single:
      break;
  }
  return single(kept.longName, kept.shortName, kept.value);
}

struct Attributes {
  const Attribute *stored, *create, *moves, *local, *world, *matrices;
  const Attribute *formU, *formV, *rangeU, *rangeV, *degrees, *spans;
};

/// Elements of controlPoints: places of a surface of its own, moves of one that is made by others.
Result<void> applyMoves(dg::Graph& graph, const Plug& moves, bool areOffsets,
                        math::NurbsSurface& surface) {
  std::vector<Index> indices;
  std::vector<double> values;
  if (!graph.getPacked(moves, indices, values)) {
    // Connected elements are read one by one.
    indices = graph.elementIndices(moves);
    for (const Index index : indices) {
      const auto move = graph.getVec3(moves.element(index));
      if (!move) return failWith(move.error());
      for (int axis = 0; axis < 3; ++axis) values.push_back((*move)[axis]);
    }
  }
  for (std::size_t i = 0; i < indices.size(); ++i) {
    if (indices[i] < 0 || at(indices[i]) >= surface.points.size()) continue;
    const math::Vec3 value{values[3 * i], values[3 * i + 1], values[3 * i + 2]};
    math::Vec3& point = surface.points[at(indices[i])];
    point = areOffsets ? point + value : value;
  }
  return {};
}

Result<Computed> compute(const Attributes& a, Node& node, const Plug& plug, DataBlock& block) {
  const Attribute* asked = plug.attribute();
  const Attribute* wanted = asked->parent ? asked->parent : asked;
  const Attribute* known[] = {a.local,  a.world,  a.formU,   a.formV,
                              a.rangeU, a.rangeV, a.degrees, a.spans};
  if (std::ranges::find(known, wanted) == std::end(known)) return Computed::Unhandled;
  const bool isDriven = !block.graph().source(Plug(&node, a.create)).isNull();
  const auto data = block.data<scene::SurfaceData>(isDriven ? a.create : a.stored);
  if (!data) {
    if (wanted != a.local && wanted != a.world) return Computed::Unhandled;
    block.output(plug, dg::Value());
    return Computed::Done;
  }
  math::NurbsSurface own = data->surface;
  const Plug moves(&node, a.moves);
  const bool isMoved = block.graph().elementCount(moves) > 0;
  if (isMoved) HOST_TRY(applyMoves(block.graph(), moves, isDriven, own));
  const auto pair = [&](const Attribute* parent, auto first, auto second) {
    block.output(Plug(&node, parent).child(0), first);
    block.output(Plug(&node, parent).child(1), second);
  };
  if (wanted == a.formU) block.output(a.formU, static_cast<std::int64_t>(own.formU));
  if (wanted == a.formV) block.output(a.formV, static_cast<std::int64_t>(own.formV));
  if (wanted == a.rangeU) pair(a.rangeU, own.firstU(), own.lastU());
  if (wanted == a.rangeV) pair(a.rangeV, own.firstV(), own.lastV());
  if (wanted == a.degrees) pair(a.degrees, std::int64_t{own.degreeU}, std::int64_t{own.degreeV});
  if (wanted == a.spans) pair(a.spans, std::int64_t{own.spansU()}, std::int64_t{own.spansV()});
  if (wanted == a.local)
    block.output(a.local, isMoved ? valueOf(std::move(own)) : dg::Value(dg::DataPtr(data)));
  if (wanted == a.world) {
    const Index index = plug.isElement() ? plug.logicalIndex() : 0;
    const auto matrix = block.data<dg::MatrixData>(Plug(&node, a.matrices).element(index));
    if (matrix)
      for (math::Vec3& point : own.points) point = math::transformPoint(point, matrix->value);
    block.output(Plug(&node, a.world).element(index), valueOf(std::move(own)));
  }
  return Computed::Done;
}

void registerShape(dg::TypeRegistry& types) {
  TypeBuilder surface(types, "nurbsSurface", "surfaceShape", typeCode("NSRF"));
  for (const Kept& each : kKept)
    if (!surface.has(each.longName)) surface.add(made(each));
  Attributes a{};
  a.stored = surface.add(hidden(dg::makeTyped("cached", "cc", "nurbsSurface")));
  a.create = surface.add(notStored(dg::makeTyped("create", "cr", "nurbsSurface")));
  a.moves = surface.add(array(
      numbers("controlPoints", "cp", "double3",
              {distance("xValue", "xv"), distance("yValue", "yv"), distance("zValue", "zv")})));
  a.local = surface.add(output(dg::makeTyped("local", "l", "nurbsSurface")));
  AttributePtr placed = array(output(dg::makeTyped("worldSpace", "ws", "nurbsSurface")));
  placed->worldSpace = true;
  a.world = surface.add(std::move(placed));
  a.formU = surface.add(output(choice("formU", "fu", {"Open", "Closed", "Periodic"})));
  a.formV = surface.add(output(choice("formV", "fv", {"Open", "Closed", "Periodic"})));
  a.rangeU =
      surface.add(numbers("minMaxRangeU", "mmu", "double2",
                          {output(real("minValueU", "mnu")), output(real("maxValueU", "mxu"))}));
  a.rangeV =
      surface.add(numbers("minMaxRangeV", "mmv", "double2",
                          {output(real("minValueV", "mnv")), output(real("maxValueV", "mxv"))}));
  a.degrees =
      surface.add(numbers("degreeUV", "d", "long2",
                          {output(integer("degreeU", "du")), output(integer("degreeV", "dv"))}));
  a.spans =
      surface.add(numbers("spansUV", "sp", "long2",
                          {output(integer("spansU", "su")), output(integer("spansV", "sv"))}));
  a.matrices = surface["worldMatrix"];
  surface.affects({a.stored, a.create, a.moves},
                  {a.local, a.world, a.formU, a.formV, a.rangeU, a.rangeV, a.degrees, a.spans});
  surface.affects({a.matrices}, {a.world});
  surface.type().compute = [a](Node& node, const Plug& plug, DataBlock& block) {
    return compute(a, node, plug, block);
  };
  surface.finish();
}

void registerPlane(dg::TypeRegistry& types) {
  TypeBuilder plane(types, "makeNurbPlane", {}, typeCode("NPLN"));
  plane.livesByItsOutputs();
  const Attribute* pivot = plane.add(triple("pivot", "p", AttributeType::Distance));
  const Attribute* axis = plane.add(triple("axis", "ax", AttributeType::Distance, {1, 0, 0}));
  const Attribute* width = plane.add(keyable(distance("width", "w", 1)));
  const Attribute* ratio = plane.add(keyable(real("lengthRatio", "lr", 1)));
  const Attribute* patchesU = plane.add(keyable(atLeast(integer("patchesU", "u", 1), 1)));
  const Attribute* patchesV = plane.add(keyable(atLeast(integer("patchesV", "v", 1), 1)));
  const Attribute* degree = plane.add(dg::makeEnum(
      "degree", "d", {{"Linear", 1}, {"Quadratic", 2}, {"Cubic", 3}, {"Quintic", 5}, {"Heptic", 7}},
      3));
  const Attribute* result = plane.add(output(dg::makeTyped("outputSurface", "os", "nurbsSurface")));
  plane.affects({pivot, axis, width, ratio, patchesU, patchesV, degree}, {result});
  plane.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    constexpr std::int64_t kMost = 1000;
    math::NurbsPlaneOptions options;
    options.center = block.vec3(pivot);
    options.normal = block.vec3(axis);
    options.width = block.real(width);
    options.ratio = block.real(ratio);
    options.patchesU =
        static_cast<int>(std::clamp<std::int64_t>(block.integer(patchesU), 1, kMost));
    options.patchesV =
        static_cast<int>(std::clamp<std::int64_t>(block.integer(patchesV), 1, kMost));
    options.degree = static_cast<int>(std::clamp<std::int64_t>(block.integer(degree), 1, 7));
    math::NurbsSurface made = math::nurbsPlane(options);
    if (const auto good = math::check(made); !good)
      return fail("'{}': {}", node.name(), good.error().message);
    block.output(result, valueOf(std::move(made)));
    return Computed::Done;
  };
  plane.finish();
}

}  // namespace

void registerSurfaceNodes(dg::TypeRegistry& types) {
  registerShape(types);
  registerPlane(types);
}

Result<math::NurbsSurface> evaluatedSurface(Node& shape) {
  const Plug local = shape.plug("local");
  if (!local || !shape.type().isA("nurbsSurface"))
    return fail("'{}' is no curved surface", shape.name());
  const auto value = shape.graph().get(local);
  if (!value) return failWith(value.error());
  const auto* data = dg::dataAs<scene::SurfaceData>(*value);
  if (!data) return fail("'{}' has no surface in it", shape.name());
  return data->surface;
}

Result<void> setStoredSurface(Node& shape, math::NurbsSurface surface) {
  HOST_TRY(math::check(surface));
  dg::Graph& graph = shape.graph();
  if (graph.source(shape.plug("create")))
    return fail("'{}' is made by other nodes and can't be replaced", shape.name());
  HOST_TRY(graph.set(shape.plug("cached"), valueOf(std::move(surface))));
  const Plug moves = shape.plug("controlPoints");
  for (const Index index : graph.elementIndices(moves))
    HOST_TRY(graph.removeElement(moves.element(index), true));
  return {};
}

Result<void> moveSurfacePoints(Node& shape, const std::vector<math::Vec3>& points) {
  auto now = evaluatedSurface(shape);
  if (!now) return failWith(now.error());
  if (points.size() != now->points.size())
    return fail("'{}' has {} control points, not {}", shape.name(), now->points.size(),
                points.size());
  dg::Graph& graph = shape.graph();
  if (!graph.source(shape.plug("create"))) {
    now->points = points;
    return setStoredSurface(shape, *std::move(now));
  }
  const Plug moves = shape.plug("controlPoints");
  for (std::size_t i = 0; i < points.size(); ++i) {
    const math::Vec3 further = points[i] - now->points[i];
    if (!math::isFinite(further)) return fail("A point of '{}' is not finite", shape.name());
    if (further == math::Vec3()) continue;
    const Plug element = moves.element(static_cast<Index>(i));
    math::Vec3 before;
    if (graph.elementExists(element)) {
      const auto stored = graph.getVec3(element);
      if (!stored) return failWith(stored.error());
      before = *stored;
    }
    HOST_TRY(graph.setVec3(element, before + further));
  }
  return {};
}

Result<void> deleteCurvedHistory(scene::Document& document, Node& shape) {
  const bool isCurve = shape.type().isA("nurbsCurve");
  if (!isCurve && !shape.type().isA("nurbsSurface")) return {};
  dg::Graph& graph = document.graph();
  const Plug create = shape.plug("create");
  const Plug source = graph.source(create);
  if (!source) return {};
  const dg::NodePtr maker = source.node()->shared_from_this();
  if (isCurve) {
    auto curve = evaluatedCurve(shape);
    if (!curve) return failWith(curve.error());
    HOST_TRY(graph.disconnect(source, create));
    HOST_TRY(setStoredCurve(shape, *std::move(curve)));
  } else {
    auto surface = evaluatedSurface(shape);
    if (!surface) return failWith(surface.error());
    HOST_TRY(graph.disconnect(source, create));
    HOST_TRY(setStoredSurface(shape, *std::move(surface)));
  }
  if (!maker->isAlive() || scene::isDagNode(*maker) || !graph.destinations(source).empty())
    return {};
  return document.deleteNodes({maker.get()});
}

math::Box boundsOfCurved(Node& shape, const math::Matrix4& matrix) {
  math::Box box;
  const auto add = [&](const math::Vec3& place) { box.add(math::transformPoint(place, matrix)); };
  constexpr int kCurveSteps = 24, kSurfaceSteps = 8;
  if (shape.type().isA("nurbsCurve")) {
    const auto curve = evaluatedCurve(shape);
    if (!curve) return box;
    const int steps = curve->spans() * (curve->degree == 1 ? 1 : kCurveSteps);
    for (int i = 0; i <= steps; ++i)
      add(curve->at(curve->first() + (curve->last() - curve->first()) * i / steps));
  } else if (shape.type().isA("nurbsSurface")) {
    const auto surface = evaluatedSurface(shape);
    if (!surface) return box;
    for (const double u : math::spread(math::breaksU(*surface), kSurfaceSteps))
      for (const double v : math::spread(math::breaksV(*surface), kSurfaceSteps))
        add(surface->at(u, v));
  }
  return box;
}

}  // namespace host::nodes
