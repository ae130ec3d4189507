#include <array>

#include "host/builtins/common/transform_targets.h"
#include "host/nodes/transform.h"

namespace host::builtins {

namespace {

using math::Vec3;

enum class MoveSpace { World, Object, Local };

struct Move {
  std::array<bool, 3> axes{true, true, true};
  Vec3 amount;
  bool isRelative = false;
  MoveSpace space = MoveSpace::World;
  bool byRotatePivot = false;
  bool byScalePivot = false;
};

/// The numbers are in cm.
Result<Move> readMove(const ParsedArgs& args, const std::vector<double>& numbers) {
  Move move;
  move.isRelative = args.has("relative");
  if (args.has("objectSpace")) move.space = MoveSpace::Object;
  if (args.has("localSpace")) move.space = MoveSpace::Local;
  move.byRotatePivot = args.has("rotatePivotRelative");
  move.byScalePivot = args.has("scalePivotRelative");
  for (const std::string_view flag :
       {"moveX", "moveY", "moveZ", "moveXY", "moveXZ", "moveYZ", "moveXYZ"}) {
    if (!args.has(flag)) continue;
    const std::string_view letters = flag.substr(4);
    for (int axis = 0; axis < 3; ++axis)
      move.axes[static_cast<std::size_t>(axis)] =
          letters.find("XYZ"[axis]) != std::string_view::npos;
  }
  std::size_t next = 0;
  for (int axis = 0; axis < 3; ++axis) {
    if (!move.axes[static_cast<std::size_t>(axis)]) continue;
    if (next >= numbers.size()) return fail("move: a distance for {} is missing.", "xyz"[axis]);
    move.amount[axis] = numbers[next++];
  }
  if (next < numbers.size()) return fail("move: there are more distances than axes.");
  return move;
}

/// Where a coordinate triple goes: by the amount, or to it, on the axes of the move.
Vec3 moved(const Move& move, Vec3 at) {
  if (move.isRelative) return at + move.amount;
  for (int axis = 0; axis < 3; ++axis)
    if (move.axes[static_cast<std::size_t>(axis)]) at[axis] = move.amount[axis];
  return at;
}

Result<void> moveObject(const scene::DagPath& path, const Move& move) {
  auto components = nodes::readTransform(*path.node());
  if (!components) return failWith(std::move(components.error()));
  const math::Matrix4 parent = path.exclusiveMatrix();
  const auto inverse = math::inverse(parent);
  if (!inverse)
    return fail("'{}' is under a scale of zero and can't be moved in world space.",
                path.partialName());
  Vec3& translate = components->translate;
  if (move.space == MoveSpace::World) {
    Vec3 from = math::transformPoint(translate, parent);
    if (move.byRotatePivot || move.byScalePivot) {
      const Vec3 pivot = move.byScalePivot
                             ? components->scalePivot + components->scalePivotTranslate
                             : components->rotatePivot + components->rotatePivotTranslate;
      from = math::transformPoint(translate + pivot, parent);
    }
    const Vec3 to = moved(move, from);
    if (!(to == from)) translate += math::transformVector(to - from, *inverse);
  } else if (move.space == MoveSpace::Object && move.isRelative) {
    const math::Matrix4 rotation = math::eulerToMatrix(components->rotateAxis) *
                                   math::eulerToMatrix(components->rotate, components->rotateOrder);
    translate += math::transformVector(move.amount, rotation);
  } else {
    translate = moved(move, translate);
  }
  return nodes::writeTransform(*path.node(), *components);
}

/// Moving a pivot leaves the object where it is.
Result<void> movePivot(const scene::DagPath& path, const Move& move, bool rotatePivot,
                       bool scalePivot) {
  auto components = nodes::readTransform(*path.node());
  if (!components) return failWith(std::move(components.error()));
  const math::Matrix4 matrix = path.inclusiveMatrix();
  const auto inverse = math::inverse(matrix);
  if (!inverse)
    return fail("'{}' has a scale of zero: its pivots can't be moved.", path.partialName());
  const auto target = [&](const Vec3& pivot) {
    if (move.space != MoveSpace::World) return moved(move, pivot);
    return math::transformPoint(moved(move, math::transformPoint(pivot, matrix)), *inverse);
  };
  if (rotatePivot)
    *components = math::withRotatePivot(*components, target(components->rotatePivot));
  if (scalePivot) *components = math::withScalePivot(*components, target(components->scalePivot));
  return nodes::writeTransform(*path.node(), *components);
}

/// "pCube1.rotatePivot" and its like name pivots of an object.
struct PivotWords {
  bool rotatePivot = false, scalePivot = false;
};
PivotWords pivotOf(const dg::Plug& plug) {
  const std::string& name = plug.attribute()->longName;
  return {name == "rotatePivot", name == "scalePivot"};
}

CommandResult move(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const NumbersAndNames words = splitNumbers(args, 3, ArgType::Distance, document.units());
  auto list = words.names.empty() ? Result<scene::SelectionList>(document.selection())
                                  : document.resolveAll(words.names);
  if (!list) return failWith(std::move(list.error()));
  auto amount = readMove(args, words.numbers);
  if (!amount) return failWith(std::move(amount.error()));
  scene::SelectionList rest;
  for (const scene::SelectionItem& item : list->items()) {
    const PivotWords pivots = item.plug ? pivotOf(item.plug) : PivotWords{};
    if (!pivots.rotatePivot && !pivots.scalePivot) {
      rest.merge(item);
      continue;
    }
    HOST_TRY(movePivot(scene::firstPath(*item.plug.node()), *amount, pivots.rotatePivot,
                       pivots.scalePivot));
  }
  auto targets = transformTargets(rest);
  if (!targets) return failWith(std::move(targets.error()));
  if (list->isEmpty()) return fail("move: name or select something to move.");
  for (const scene::DagPath& path : targets->objects) HOST_TRY(moveObject(path, *amount));
  const nodes::Space space =
      amount->space == MoveSpace::World ? nodes::Space::World : nodes::Space::Object;
  HOST_TRY(editVertices(targets->meshes, space, [&](const Vec3& p) { return moved(*amount, p); }));
  return mel::Value();
}

}  // namespace

void registerMove(CommandRegistry& registry) {
  define(registry, "move",
         Syntax()
             .flag("a", "absolute")
             .flag("r", "relative")
             .flag("os", "objectSpace")
             .flag("ws", "worldSpace")
             .flag("ls", "localSpace")
             .flag("wd", "worldSpaceDistance")
             .flag("x", "moveX")
             .flag("y", "moveY")
             .flag("z", "moveZ")
             .flag("xy", "moveXY")
             .flag("xz", "moveXZ")
             .flag("yz", "moveYZ")
             .flag("xyz", "moveXYZ")
             .flag("rpr", "rotatePivotRelative")
             .flag("spr", "scalePivotRelative")
             .flag("pcp", "preserveChildPosition", {ArgType::Bool})
             .flag("puv", "preserveUV", {ArgType::Bool})
             .strings(1),
         move);
}

}  // namespace host::builtins
