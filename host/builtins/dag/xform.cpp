#include <algorithm>
#include <array>
#include <optional>

#include "host/builtins/common/transform_targets.h"
#include "host/builtins/dag/hierarchy.h"
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

/// One object's transform with the matrices around it.
class ObjectTransform {
 public:
  static Result<ObjectTransform> of(const scene::DagPath& path) {
    auto components = nodes::readTransform(*path.node());
    if (!components) return failWith(std::move(components.error()));
    return ObjectTransform(path, *components);
  }

  TransformComponents components;
  const scene::DagPath path;
  [[nodiscard]] Matrix4 parent() const { return path.exclusiveMatrix(); }
  [[nodiscard]] Matrix4 world() const { return path.inclusiveMatrix(); }
  [[nodiscard]] Result<Matrix4> parentInverse() const {
    const auto inverse = math::inverse(parent());
    if (!inverse)
      return fail("'{}' is under a scale of zero: world space can't be undone there.",
                  path.partialName());
    return *inverse;
  }
  [[nodiscard]] Vec3 worldRotation() const {
    return math::matrixToEuler(math::eulerToMatrix(math::decompose(world()).rotate),
                               components.rotateOrder);
  }

 private:
  ObjectTransform(scene::DagPath pathIn, TransformComponents componentsIn)
      : components(componentsIn), path(std::move(pathIn)) {}
};

CommandResult queryComponents(const std::vector<MeshItem>& items, bool isWorld,
                              const scene::Units& units) {
  mel::FloatArray result;
  const double factor = units.toCentimeters(1.0);
  for (const MeshItem& item : items) {
    const Matrix4 matrix = isWorld ? item.path.inclusiveMatrix() : Matrix4{};
    for (const VertexId v : item.vertices()) {
      const Vec3 p =
          isWorld ? math::transformPoint(item.mesh.point(v), matrix) : item.mesh.point(v);
      result.insert(result.end(), {p.x / factor, p.y / factor, p.z / factor});
    }
  }
  return mel::Value(std::move(result));
}

CommandResult queryBox(const scene::SelectionList& list, bool isWorld, const scene::Units& units) {
  math::Box box;
  for (const scene::SelectionItem& item : list.items()) {
    if (!isWorld && item.isDag() && item.isObject()) {
      box.add(objectBox(item.path));
      continue;
    }
    auto own = worldBox(item);
    if (!own) return failWith(std::move(own.error()));
    box.add(*own);
  }
  if (box.isEmpty()) box = math::Box({}, {});
  mel::FloatArray result = numbers(box.min, units.toCentimeters(1.0));
  for (const double x : numbers(box.max, units.toCentimeters(1.0))) result.push_back(x);
  return mel::Value(std::move(result));
}

CommandResult queryObject(const ObjectTransform& object, const ParsedArgs& args,
                          const scene::Units& units) {
  const bool isWorld = args.has("worldSpace");
  const TransformComponents& c = object.components;
  const double length = units.toCentimeters(1.0), angle = units.toRadians(1.0);
  const auto place = [&](const Vec3& p) {
    return isWorld ? math::transformPoint(p, object.world()) : p;
  };
  if (args.has("translation"))
    return mel::Value(numbers(
        isWorld ? math::transformPoint(c.translate, object.parent()) : c.translate, length));
  if (args.has("rotation"))
    return mel::Value(numbers(isWorld ? object.worldRotation() : c.rotate, angle));
  if (args.has("scale"))
    return mel::Value(numbers(isWorld ? math::decompose(object.world()).scale : c.scale));
  if (args.has("shear"))
    return mel::Value(numbers(isWorld ? math::decompose(object.world()).shear : c.shear));
  if (args.has("matrix")) return mel::Value(cells(isWorld ? object.world() : math::toMatrix(c)));
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

void setPivots(TransformComponents& c, const Vec3& at, bool rotatePivot, bool scalePivot) {
  if (rotatePivot) c = math::withRotatePivot(c, at);
  if (scalePivot) c = math::withScalePivot(c, at);
}

Result<void> applyPivots(const ObjectTransform& object, const ParsedArgs& args,
                         TransformComponents& c) {
  const auto inverse = math::inverse(object.world());
  const auto local = [&](const Vec3& p) {
    return args.has("worldSpace") && inverse ? math::transformPoint(p, *inverse) : p;
  };
  if (args.has("zeroTransformPivots")) setPivots(c, {}, true, true);
  if (args.has("centerPivots")) setPivots(c, objectBox(object.path).center(), true, true);
  const bool isRelative = args.has("relative");
  if (args.has("pivots")) setPivots(c, local(args.vec3("pivots")), true, true);
  if (args.has("rotatePivot"))
    setPivots(
        c, isRelative ? c.rotatePivot + args.vec3("rotatePivot") : local(args.vec3("rotatePivot")),
        true, false);
  if (args.has("scalePivot"))
    setPivots(c,
              isRelative ? c.scalePivot + args.vec3("scalePivot") : local(args.vec3("scalePivot")),
              false, true);
  return {};
}

Result<void> applyRotation(const ObjectTransform& object, const ParsedArgs& args,
                           TransformComponents& c) {
  if (args.has("rotateOrder")) {
    const std::string name = args.text("rotateOrder");
    const auto found = std::find(kOrders.begin(), kOrders.end(), name);
    if (found == kOrders.end()) return fail("xform: there is no rotate order '{}'.", name);
    const auto order = static_cast<math::RotateOrder>(found - kOrders.begin());
    if (args.boolean("preserve", true))
      c.rotate = math::reorderEuler(c.rotate, c.rotateOrder, order);
    c.rotateOrder = order;
  }
  if (args.has("rotateAxis")) c.rotateAxis = args.vec3("rotateAxis");
  if (!args.has("rotation")) return {};
  const Vec3 given = args.vec3("rotation");
  if (!args.has("worldSpace")) {
    if (args.has("relative") && !args.has("euler")) {
      const Matrix4 both =
          math::eulerToMatrix(given, c.rotateOrder) * math::eulerToMatrix(c.rotate, c.rotateOrder);
      c.rotate = math::matrixToEuler(both, c.rotateOrder);
    } else {
      c.rotate = args.has("relative") ? c.rotate + given : given;
    }
    return {};
  }
  const Matrix4 above = math::eulerToMatrix(math::decompose(object.parent()).rotate);
  const Matrix4 now = math::eulerToMatrix(c.rotate, c.rotateOrder) * above;
  const Matrix4 turn = math::eulerToMatrix(given, c.rotateOrder);
  const Matrix4 wanted = (args.has("relative") ? now * turn : turn) * math::transpose(above);
  c.rotate =
      math::closestEuler(math::matrixToEuler(wanted, c.rotateOrder), c.rotateOrder, c.rotate);
  return {};
}

Result<void> applyTranslation(const ObjectTransform& object, const ParsedArgs& args,
                              TransformComponents& c) {
  if (!args.has("translation")) return {};
  const Vec3 given = args.vec3("translation");
  if (!args.has("worldSpace")) {
    c.translate = args.has("relative") ? c.translate + given : given;
    return {};
  }
  auto inverse = object.parentInverse();
  if (!inverse) return failWith(std::move(inverse.error()));
  c.translate = args.has("relative") ? c.translate + math::transformVector(given, *inverse)
                                     : math::transformPoint(given, *inverse);
  return {};
}

Result<void> applyToObject(const scene::DagPath& path, const ParsedArgs& args) {
  auto object = ObjectTransform::of(path);
  if (!object) return failWith(std::move(object.error()));
  TransformComponents c = object->components;
  if (args.has("matrix")) {
    Matrix4 matrix = readMatrix(args);
    if (args.has("worldSpace")) {
      auto inverse = object->parentInverse();
      if (!inverse) return failWith(std::move(inverse.error()));
      matrix = matrix * *inverse;
    }
    c = math::decompose(args.has("relative") ? matrix * math::toMatrix(c) : matrix, c);
  }
  HOST_TRY(applyPivots(*object, args, c));
  if (args.has("scale")) {
    const Vec3 given = args.vec3("scale");
    const bool isRelative = args.has("relative");
    for (int i = 0; i < 3; ++i) c.scale[i] = isRelative ? c.scale[i] * given[i] : given[i];
  }
  if (args.has("shear"))
    c.shear = args.has("relative") ? c.shear + args.vec3("shear") : args.vec3("shear");
  HOST_TRY(applyRotation(*object, args, c));
  HOST_TRY(applyTranslation(*object, args, c));
  if (args.has("rotateTranslation")) c.rotatePivotTranslate = args.vec3("rotateTranslation");
  if (args.has("scaleTranslation")) c.scalePivotTranslate = args.vec3("scaleTranslation");
  return nodes::writeTransform(*path.node(), c);
}

Result<void> applyToComponents(const TransformTargets& targets, const ParsedArgs& args) {
  const bool isWorld = args.has("worldSpace"), isRelative = args.has("relative");
  const nodes::Space space = isWorld ? nodes::Space::World : nodes::Space::Object;
  if (args.has("translation")) {
    const Vec3 given = args.vec3("translation");
    HOST_TRY(editVertices(targets.meshes, space,
                          [&](const Vec3& p) { return isRelative ? p + given : given; }));
  }
  Matrix4 change;
  if (args.has("scale")) change = change * Matrix4::scaling(args.vec3("scale"));
  if (args.has("rotation")) change = change * math::eulerToMatrix(args.vec3("rotation"));
  if (args.has("matrix")) change = change * readMatrix(args);
  if (math::isIdentity(change)) return {};
  return editVertices(targets.meshes, space,
                      [&](const Vec3& p) { return math::transformPoint(p, change); });
}

CommandResult xform(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("xform: name or select something.");
  const scene::Units& units = context.document.units();
  if (args.isQuery() && (args.has("boundingBox") || args.has("boundingBoxInvisible")))
    return queryBox(*list, args.has("worldSpace"), units);
  auto targets = transformTargets(*list);
  if (!targets) return failWith(std::move(targets.error()));
  if (args.isQuery()) {
    if (targets->objects.empty()) {
      if (!args.has("translation")) return fail("xform: components have a translation only.");
      return queryComponents(targets->meshes, args.has("worldSpace"), units);
    }
    auto object = ObjectTransform::of(targets->objects.front());
    if (!object) return failWith(std::move(object.error()));
    return queryObject(*object, args, units);
  }
  for (const scene::DagPath& path : targets->objects) HOST_TRY(applyToObject(path, args));
  HOST_TRY(applyToComponents(*targets, args));
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
