#include <array>
#include <optional>

#include "host/builtins/common/transform_targets.h"
#include "host/nodes/transform.h"

namespace host::builtins {

namespace {

using math::Matrix4;
using math::Vec3;

struct Turn {
  std::array<bool, 3> axes{true, true, true};
  Vec3 amount;
  bool isRelative = false, isWorld = false, isEuler = false;
  std::optional<Vec3> pivot;  ///< world space, cm
};

/// Reads the numbers for the axes that the flags pick; `base` is the neutral value, `prefix` that
/// of the axis flags.
Result<Turn> readTurn(const ParsedArgs& args, std::string_view prefix,
                      const std::vector<double>& numbers, double neutral) {
  Turn turn;
  turn.isRelative = args.has("relative");
  turn.isWorld = args.has("worldSpace");
  turn.isEuler = args.has("euler");
  if (args.has("pivot")) turn.pivot = args.vec3("pivot");
  for (const cmd::ParsedArgs::FlagUse& use : args.flagUses()) {
    const std::string_view name = use.spec->longName;
    if (!name.starts_with(prefix) || name.size() <= prefix.size()) continue;
    const std::string_view letters = name.substr(prefix.size());
    if (letters.find_first_not_of("XYZ") != std::string_view::npos) continue;
    for (int axis = 0; axis < 3; ++axis)
      turn.axes[static_cast<std::size_t>(axis)] =
          letters.find("XYZ"[axis]) != std::string_view::npos;
  }
  std::size_t next = 0;
  turn.amount = {neutral, neutral, neutral};
  for (int axis = 0; axis < 3; ++axis) {
    if (!turn.axes[static_cast<std::size_t>(axis)]) continue;
    if (next >= numbers.size()) return fail("{}: a value for {} is missing.", prefix, "xyz"[axis]);
    turn.amount[axis] = numbers[next++];
  }
  if (next < numbers.size()) return fail("{}: there are more values than axes.", prefix);
  return turn;
}

Matrix4 about(const Vec3& pivot, const Matrix4& matrix) {
  return Matrix4::translation(-pivot) * matrix * Matrix4::translation(pivot);
}

/// Turns a whole object about a world-space pivot, translate included.
Result<void> turnAboutPivot(const scene::DagPath& path, const Matrix4& worldChange) {
  const auto inverse = math::inverse(path.exclusiveMatrix());
  if (!inverse) return fail("'{}' is under a scale of zero.", path.partialName());
  return nodes::setLocalMatrix(*path.node(), path.inclusiveMatrix() * worldChange * *inverse);
}

/// The rotation part of a matrix.
Matrix4 rotationOf(const Matrix4& matrix) {
  const math::TransformComponents parts = math::decompose(matrix);
  return math::eulerToMatrix(parts.rotate);
}

Result<void> rotateObject(const scene::DagPath& path, const Turn& turn) {
  auto components = nodes::readTransform(*path.node());
  if (!components) return failWith(std::move(components.error()));
  const Matrix4 delta = math::eulerToMatrix(turn.amount);
  if (turn.isRelative && turn.pivot) return turnAboutPivot(path, about(*turn.pivot, delta));
  Vec3& rotate = components->rotate;
  if (!turn.isRelative && !turn.isWorld) {
    for (int axis = 0; axis < 3; ++axis)
      if (turn.axes[static_cast<std::size_t>(axis)]) rotate[axis] = turn.amount[axis];
  } else if (turn.isRelative && turn.isEuler) {
    rotate += turn.amount;
  } else {
    const Matrix4 own = math::eulerToMatrix(rotate, components->rotateOrder);
    const Matrix4 above = rotationOf(path.exclusiveMatrix());
    const Matrix4 under = math::transpose(above);
    const Matrix4 result = !turn.isRelative ? delta * under
                           : turn.isWorld   ? own * above * delta * under
                                            : delta * own;
    rotate = math::closestEuler(math::matrixToEuler(result, components->rotateOrder),
                                components->rotateOrder, rotate);
  }
  return nodes::writeTransform(*path.node(), *components);
}

Result<void> scaleObject(const scene::DagPath& path, const Turn& turn) {
  auto components = nodes::readTransform(*path.node());
  if (!components) return failWith(std::move(components.error()));
  Vec3& scale = components->scale;
  for (int axis = 0; axis < 3; ++axis) {
    if (!turn.axes[static_cast<std::size_t>(axis)]) continue;
    scale[axis] = turn.isRelative ? scale[axis] * turn.amount[axis] : turn.amount[axis];
  }
  if (!turn.pivot || !turn.isRelative) return nodes::writeTransform(*path.node(), *components);
  // The point at the pivot stays put: find it before, put it back after.
  const auto before = math::inverse(path.inclusiveMatrix());
  const auto above = math::inverse(path.exclusiveMatrix());
  if (!before || !above) return fail("'{}' has a scale of zero.", path.partialName());
  const Vec3 local = math::transformPoint(*turn.pivot, *before);
  const Vec3 wanted = math::transformPoint(*turn.pivot, *above);
  components->translate += wanted - math::transformPoint(local, math::toMatrix(*components));
  return nodes::writeTransform(*path.node(), *components);
}

Result<TransformTargets> targetsOf(Context& context, const std::vector<std::string>& names,
                                   std::string_view command) {
  auto list = names.empty() ? Result<scene::SelectionList>(context.document.selection())
                            : context.document.resolveAll(names);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("{}: name or select something.", command);
  return transformTargets(*list);
}

/// Turns the components about the pivot along the axes of the world or of each object.
Result<void> turnVertices(const TransformTargets& targets, const Turn& turn, const Matrix4& change,
                          bool isWorld) {
  const Vec3 pivot = turn.pivot.value_or(targets.meshes.empty() ? Vec3{} : targets.vertexCenter());
  for (const MeshItem& item : targets.meshes) {
    Matrix4 world = change;
    if (!isWorld) {
      const Matrix4 axes = rotationOf(item.path.inclusiveMatrix());
      world = math::transpose(axes) * change * axes;
    }
    const Matrix4 matrix = about(pivot, world);
    HOST_TRY(editVertices({item}, nodes::Space::World,
                          [&](const Vec3& p) { return math::transformPoint(p, matrix); }));
  }
  return {};
}

CommandResult rotate(Context& context, const ParsedArgs& args) {
  const NumbersAndNames words = splitNumbers(args, 3, ArgType::Angle, context.document.units());
  auto targets = targetsOf(context, words.names, "rotate");
  if (!targets) return failWith(std::move(targets.error()));
  auto turn = readTurn(args, "rotate", words.numbers, 0.0);
  if (!turn) return failWith(std::move(turn.error()));
  for (const scene::DagPath& path : targets->objects) HOST_TRY(rotateObject(path, *turn));
  HOST_TRY(
      turnVertices(*targets, *turn, math::eulerToMatrix(turn->amount), !args.has("objectSpace")));
  return mel::Value();
}

CommandResult scale(Context& context, const ParsedArgs& args) {
  const NumbersAndNames words = splitNumbers(args, 3, ArgType::Double, context.document.units());
  auto targets = targetsOf(context, words.names, "scale");
  if (!targets) return failWith(std::move(targets.error()));
  auto turn = readTurn(args, "scale", words.numbers, 1.0);
  if (!turn) return failWith(std::move(turn.error()));
  for (const scene::DagPath& path : targets->objects) HOST_TRY(scaleObject(path, *turn));
  HOST_TRY(turnVertices(*targets, *turn, Matrix4::scaling(turn->amount), !args.has("objectSpace")));
  return mel::Value();
}

Syntax turnSyntax(const std::string& prefix) {
  Syntax syntax;
  syntax.flag("a", "absolute")
      .flag("r", "relative")
      .flag("os", "objectSpace")
      .flag("ws", "worldSpace")
      .flag("p", "pivot", {ArgType::Distance, ArgType::Distance, ArgType::Distance})
      .flag("cp", "centerPivot")
      .flag("dph", "deletePriorHistory", {ArgType::Bool})
      .flag("pcp", "preserveChildPosition", {ArgType::Bool})
      .flag("puv", "preserveUV", {ArgType::Bool});
  for (const char* axes : {"X", "Y", "Z", "XY", "XZ", "YZ", "XYZ"}) {
    std::string shortName = axes;
    for (char& c : shortName) c = static_cast<char>(c - 'A' + 'a');
    syntax.flag(shortName, prefix + axes);
  }
  return syntax.strings(1);
}

}  // namespace

void registerRotateScale(CommandRegistry& registry) {
  define(registry, "rotate", turnSyntax("rotate").flag("eu", "euler").flag("fo", "forceOrderXYZ"),
         rotate);
  define(registry, "scale", turnSyntax("scale").flag("ls", "localSpace"), scale);
}

}  // namespace host::builtins
