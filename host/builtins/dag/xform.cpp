#include "host/edits/xform.h"

#include <algorithm>
#include <array>
#include <optional>

#include "host/builtins/common/command.h"
#include "host/edits/bounds.h"
#include "host/edits/transform_targets.h"
#include "host/nodes/transform.h"

namespace host::builtins {

namespace {

using math::Matrix4;
using math::TransformComponents;
using math::Vec3;

constexpr std::array<std::string_view, 6> kOrders = {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"};

mel::FloatArray numbers(const Vec3& v, double factor = 1.0) {
  return {v.x / factor, v.y / factor, v.z / factor};
}

Matrix4 readMatrix(const ParsedArgs& args) {
  Matrix4 matrix;
  for (int i = 0; i < 16; ++i) matrix[i / 4][i % 4] = args.real("matrix", 0, i);
  return matrix;
}

mel::FloatArray cells(const Matrix4& matrix) {
  mel::FloatArray result;
  for (int i = 0; i < 16; ++i) result.push_back(matrix[i / 4][i % 4]);
  return result;
}

CommandResult queryComponents(const edits::TransformTargets& targets, bool isWorld,
                              const scene::Units& units) {
  mel::FloatArray result;
  const std::vector<nodes::MeshItem>& items = targets.meshes;
  const double factor = units.toCentimeters(1.0);
  for (const nodes::MeshItem& item : items) {
    const Matrix4 matrix = isWorld ? item.path.inclusiveMatrix() : Matrix4{};
    for (const VertexId v : item.vertices()) {
      const Vec3 p =
          isWorld ? math::transformPoint(item.mesh.point(v), matrix) : item.mesh.point(v);
      result.insert(result.end(), {p.x / factor, p.y / factor, p.z / factor});
    }
  }
  for (const scene::PointItem& item : targets.points) {
    const Matrix4 matrix = isWorld ? item.path.inclusiveMatrix() : Matrix4{};
    const auto points = item.points();
    if (!points) return failWith(points.error());
    for (const scene::NumberedPoint& point : *points) {
      const Vec3 p = isWorld ? math::transformPoint(point.place, matrix) : point.place;
      result.insert(result.end(), {p.x / factor, p.y / factor, p.z / factor});
    }
  }
  return mel::Value(std::move(result));
}

CommandResult queryBox(const scene::SelectionList& list, bool isWorld, const scene::Units& units) {
  math::Box box;
  for (const scene::SelectionItem& item : list.items()) {
    if (!isWorld && item.isDag() && item.isObject()) {
      box.add(edits::objectBox(item.path));
      continue;
    }
    auto own = edits::worldBox(item);
    if (!own) return failWith(std::move(own.error()));
    box.add(*own);
  }
  if (box.isEmpty()) box = math::Box({}, {});
  mel::FloatArray result = numbers(box.min, units.toCentimeters(1.0));
  for (const double x : numbers(box.max, units.toCentimeters(1.0))) result.push_back(x);
  return mel::Value(std::move(result));
}

CommandResult queryObject(const scene::DagPath& path, const TransformComponents& c,
                          const ParsedArgs& args, const scene::Units& units) {
  const bool isWorld = args.has("worldSpace");
  const Matrix4 world = path.inclusiveMatrix();
  const auto worldRotation = [&] {
    return math::matrixToEuler(math::eulerToMatrix(math::decompose(world).rotate), c.rotateOrder);
  };
  const double length = units.toCentimeters(1.0), angle = units.toRadians(1.0);
  const auto place = [&](const Vec3& p) { return isWorld ? math::transformPoint(p, world) : p; };
  if (args.has("translation"))
    return mel::Value(numbers(
        isWorld ? math::transformPoint(c.translate, path.exclusiveMatrix()) : c.translate, length));
  if (args.has("rotation")) return mel::Value(numbers(isWorld ? worldRotation() : c.rotate, angle));
  if (args.has("scale"))
    return mel::Value(numbers(isWorld ? math::decompose(world).scale : c.scale));
  if (args.has("shear"))
    return mel::Value(numbers(isWorld ? math::decompose(world).shear : c.shear));
  if (args.has("matrix")) return mel::Value(cells(isWorld ? world : math::toMatrix(c)));
  if (args.has("rotatePivot")) return mel::Value(numbers(place(c.rotatePivot), length));
  if (args.has("scalePivot")) return mel::Value(numbers(place(c.scalePivot), length));
  if (args.has("pivots")) {
    mel::FloatArray both = numbers(place(c.rotatePivot), length);
    for (const double x : numbers(place(c.scalePivot), length)) both.push_back(x);
    return mel::Value(std::move(both));
  }
  if (args.has("rotateTranslation")) return mel::Value(numbers(c.rotatePivotTranslate, length));
  if (args.has("scaleTranslation")) return mel::Value(numbers(c.scalePivotTranslate, length));
  if (args.has("rotateAxis")) return mel::Value(numbers(c.rotateAxis, angle));
  if (args.has("rotateOrder")) return mel::Value(kOrders[static_cast<std::size_t>(c.rotateOrder)]);
  return fail("xform: say what to query.");
}

Result<edits::XformOptions> readOptions(const ParsedArgs& args) {
  edits::XformOptions options{.isRelative = args.has("relative"),
                              .isWorld = args.has("worldSpace"),
                              .isEuler = args.has("euler"),
                              .zeroesPivots = args.has("zeroTransformPivots"),
                              .centersPivots = args.has("centerPivots"),
                              .preservesRotation = args.boolean("preserve", true)};
  struct Triple {
    const char* flag;
    std::optional<Vec3> edits::XformOptions::*field;
  };
  using Options = edits::XformOptions;
  for (const Triple& triple :
       {Triple{"translation", &Options::translation}, Triple{"rotation", &Options::rotation},
        Triple{"scale", &Options::scale}, Triple{"shear", &Options::shear},
        Triple{"pivots", &Options::pivots}, Triple{"rotatePivot", &Options::rotatePivot},
        Triple{"scalePivot", &Options::scalePivot},
        Triple{"rotateTranslation", &Options::rotateTranslation},
        Triple{"scaleTranslation", &Options::scaleTranslation},
        Triple{"rotateAxis", &Options::rotateAxis}})
    if (args.has(triple.flag)) options.*triple.field = args.vec3(triple.flag);
  if (args.has("matrix")) options.matrix = readMatrix(args);
  if (args.has("rotateOrder")) {
    const std::string name = args.text("rotateOrder");
    const auto found = std::find(kOrders.begin(), kOrders.end(), name);
    if (found == kOrders.end()) return fail("xform: there is no rotate order '{}'.", name);
    options.rotateOrder = static_cast<math::RotateOrder>(found - kOrders.begin());
  }
  return options;
}

CommandResult xform(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("xform: name or select something.");
  const scene::Units& units = context.document.units();
  if (args.isQuery() && (args.has("boundingBox") || args.has("boundingBoxInvisible")))
    return queryBox(*list, args.has("worldSpace"), units);
  if (args.isQuery()) {
    const auto targets = edits::transformTargets(*list);
    if (!targets) return failWith(targets.error());
    if (targets->objects.empty()) {
      if (!args.has("translation")) return fail("xform: components have a translation only.");
      return queryComponents(*targets, args.has("worldSpace"), units);
    }
    const scene::DagPath& path = targets->objects.front();
    const auto components = nodes::readTransform(*path.node());
    if (!components) return failWith(components.error());
    return queryObject(path, *components, args, units);
  }
  const auto options = readOptions(args);
  if (!options) return failWith(options.error());
  HOST_TRY(edits::xform(context.document, *list, *options));
  return mel::Value();
}

}  // namespace

void registerXform(CommandRegistry& registry) {
  const std::vector<ArgType> lengths(3, ArgType::Distance), angles(3, ArgType::Angle),
      factors(3, ArgType::Double);
  define(registry, "xform",
         Syntax()
             .flag("a", "absolute")
             .flag("r", "relative")
             .flag("eu", "euler")
             .flag("os", "objectSpace")
             .flag("ws", "worldSpace")
             .flag("wd", "worldSpaceDistance")
             .flag("t", "translation", lengths)
             .flag("ro", "rotation", angles)
             .flag("s", "scale", factors)
             .flag("sh", "shear", factors)
             .flag("m", "matrix", std::vector<ArgType>(16, ArgType::Double))
             .flag("rp", "rotatePivot", lengths)
             .flag("sp", "scalePivot", lengths)
             .flag("piv", "pivots", lengths)
             .flag("rt", "rotateTranslation", lengths)
             .flag("st", "scaleTranslation", lengths)
             .flag("ra", "rotateAxis", angles)
             .flag("roo", "rotateOrder", {ArgType::String})
             .flag("p", "preserve", {ArgType::Bool})
             .flag("cp", "centerPivots")
             .flag("cpc", "centerPivotsOnComponents")
             .flag("ztp", "zeroTransformPivots")
             .flag("bb", "boundingBox")
             .flag("bbi", "boundingBoxInvisible")
             .flag("dph", "deletePriorHistory", {ArgType::Bool})
             .flag("puv", "preserveUV", {ArgType::Bool})
             .queryable()
             .objects(0, -1, true),
         xform);
}

}  // namespace host::builtins
