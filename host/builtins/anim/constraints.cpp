// pointConstraint, orientConstraint, parentConstraint, scaleConstraint, aimConstraint.
#include "host/nodes/anim/constraints.h"

#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/math/transform.h"
#include "host/nodes/transform.h"

namespace host::builtins {

namespace {

using dg::Plug;
using nodes::ConstraintWiring;
using scene::DagPath;

/// The attribute that the object's target has on the constraint: "pCube1W0".
std::string weightName(const dg::Node& target, Index index) {
  std::string name = target.name();
  std::ranges::replace(name, ':', '_');
  return fmt::format("{}W{}", name, index);
}

Result<dg::Node*> constraintBelow(const DagPath& object, std::string_view type) {
  for (scene::Node* child : scene::dagLinks(*object.node()).children)
    if (child->type().name == type) return child;
  return nullptr;
}

class Maker {
 public:
  Maker(Context& context, const ParsedArgs& args, const ConstraintWiring& wiring)
      : document_(context.document),
        graph_(context.document.graph()),
        args_(args),
        wiring_(wiring) {}

  Result<dg::Node*> make(const std::vector<DagPath>& targets, const DagPath& object) {
    object_ = object;
    const auto before = constraintBelow(object, wiring_.type);
    if (!before) return failWith(before.error());
    node_ = *before;
    const bool isNew = !node_;
    if (isNew) HOST_TRY(makeNode());
    for (const DagPath& target : targets) HOST_TRY(addTarget(target));
    HOST_TRY(setVectors());
    if (args_.has("maintainOffset")) {
      HOST_TRY(keepOffset(targets));
    } else if (args_.has("offset") && node_->plug("offset")) {
      HOST_TRY(setOffset(args_.vec3("offset")));
    }
    if (isNew) HOST_TRY(drive());
    return node_;
  }

 private:
  Result<void> makeNode() {
    const std::string name = args_.text(
        "name", fmt::format("{}_{}1", object_.node()->name(), std::string(wiring_.type)));
    auto made = document_.createNode(wiring_.type, name, object_.node());
    if (!made) return failWith(std::move(made.error()));
    node_ = made->get();
    for (const auto& [from, to] : wiring_.fromObject)
      HOST_TRY(graph_.connect(object_.node()->plug(from), node_->plug(to)));
    return graph_.connect(object_.node()->plug("parentInverseMatrix").element(instanceOf(object_)),
                          node_->plug("constraintParentInverseMatrix"));
  }

  static Index instanceOf(const DagPath& path) { return static_cast<Index>(path.instanceNumber()); }

  /// The element that a target has, or the next free one.
  [[nodiscard]] Plug below(Index index, std::string_view name) const {
    const Plug targets = node_->plug("target");
    return targets.element(index).child(targets.attribute()->find(name));
  }

  Result<void> addTarget(const DagPath& target) {
    if (target.node() == object_.node())
      return fail("{}: '{}' can't be its own target.", wiring_.command, target.partialName());
    const double weight = args_.real("weight", 1);
    for (const Index index : graph_.elementIndices(node_->plug("target"))) {
      const Plug source = graph_.source(below(index, "targetParentMatrix"));
      if (!source || source.node() != target.node()) continue;
      return graph_.set(node_->plug(weightName(*target.node(), index)), weight);
    }
    const Index index = graph_.nextFreeIndex(node_->plug("target"));
    for (const auto& [from, to] : wiring_.fromTarget)
      HOST_TRY(graph_.connect(target.node()->plug(from), below(index, to)));
    HOST_TRY(graph_.connect(target.node()->plug("parentMatrix").element(instanceOf(target)),
                            below(index, "targetParentMatrix")));
    const std::string name = weightName(*target.node(), index);
    dg::AttributePtr attribute = dg::makeAttribute(name, fmt::format("w{}", index),
                                                   dg::AttributeType::Double, dg::Value(1.0));
    attribute->keyable = true;
    attribute->minimum = 0;
    auto added = graph_.addAttribute(*node_, std::move(attribute));
    if (!added) return failWith(std::move(added.error()));
    HOST_TRY(graph_.set(node_->plug(name), weight));
    return graph_.connect(node_->plug(name), below(index, "targetWeight"));
  }

  Result<void> setVectors() {
    for (const auto& [flag, attribute] :
         {std::pair{"aimVector", "aimVector"}, std::pair{"upVector", "upVector"},
          std::pair{"worldUpVector", "worldUpVector"}})
      if (args_.has(flag)) HOST_TRY(graph_.setVec3(node_->plug(attribute), args_.vec3(flag)));
    if (args_.has("worldUpType")) {
      const dg::Attribute& choice = *node_->plug("worldUpType").attribute();
      const auto field = std::ranges::find_if(choice.enumFields, [&](const dg::EnumField& each) {
        return each.name == args_.text("worldUpType");
      });
      if (field == choice.enumFields.end())
        return fail("aimConstraint: '{}' is no -worldUpType.", args_.text("worldUpType"));
      HOST_TRY(graph_.set(node_->plug("worldUpType"), field->value));
    }
    if (!args_.has("worldUpObject")) return {};
    const auto up = document_.dagPath(args_.text("worldUpObject"));
    if (!up) return failWith(up.error());
    return graph_.connect(up->node()->plug("worldMatrix").element(instanceOf(*up)),
                          node_->plug("worldUpMatrix"), true);
  }

  /// -offset in the scene's units: angles of what turns.
  Result<void> setOffset(math::Vec3 offset) {
    const dg::AttributeType type = node_->plug("offset").attribute()->children.front()->type;
    const scene::Units& units = document_.units();
    if (type == dg::AttributeType::Angle) offset = offset * units.toRadians(1);
    if (type == dg::AttributeType::Distance) offset = offset * units.toCentimeters(1);
    return graph_.setVec3(node_->plug("offset"), offset);
  }

  /// The offsets with which the object stays where it is.
  Result<void> keepOffset(const std::vector<DagPath>& targets) {
    const auto now = nodes::readTransform(*object_.node());
    if (!now) return failWith(now.error());
    if (wiring_.type == "parentConstraint") return keepParentOffset(targets, *now);
    const bool isPlace = wiring_.type == "pointConstraint",
               isScale = wiring_.type == "scaleConstraint";
    const char* result = isPlace   ? "constraintTranslate"
                         : isScale ? "constraintScale"
                                   : "constraintRotate";
    HOST_TRY(graph_.setVec3(node_->plug("offset"), isScale ? math::Vec3{1, 1, 1} : math::Vec3{}));
    const auto given = graph_.getVec3(node_->plug(result));
    if (!given) return failWith(given.error());
    math::Vec3 offset;
    if (isPlace) {
      offset = now->translate - *given;
    } else if (isScale) {
      for (int i = 0; i < 3; ++i) offset[i] = (*given)[i] != 0 ? now->scale[i] / (*given)[i] : 1;
    } else {
      // offset * given = now, in the parent's space.
      const math::Matrix4 wanted = math::eulerToMatrix(now->rotate, now->rotateOrder),
                          back = math::transpose(math::eulerToMatrix(*given, now->rotateOrder));
      offset = math::matrixToEuler(wanted * back);
    }
    return graph_.setVec3(node_->plug("offset"), offset);
  }

  Result<void> keepParentOffset(const std::vector<DagPath>& targets,
                                const math::TransformComponents& now) {
    const math::Matrix4 parent = object_.parent().inclusiveMatrix();
    const math::Vec3 place =
        math::transformPoint(now.translate + now.rotatePivot + now.rotatePivotTranslate, parent);
    const math::Matrix4 turn = math::eulerToMatrix(now.rotate, now.rotateOrder) * linear(parent);
    for (const Index index : graph_.elementIndices(node_->plug("target"))) {
      const Plug source = graph_.source(below(index, "targetParentMatrix"));
      const auto target = std::ranges::find_if(
          targets, [&](const DagPath& each) { return source && each.node() == source.node(); });
      if (target == targets.end()) continue;
      const auto its = nodes::readTransform(*target->node());
      if (!its) return failWith(its.error());
      const math::Matrix4 above = target->parent().inclusiveMatrix();
      const math::Matrix4 rotation = math::eulerToMatrix(its->rotate, its->rotateOrder);
      const math::Vec3 pivot = math::transformPoint(
          its->translate + its->rotatePivot + its->rotatePivotTranslate, above);
      const auto back = math::inverse(math::Matrix4::scaling(its->scale) * rotation * above);
      if (!back) return fail("'{}' is scaled to nothing.", target->partialName());
      HOST_TRY(graph_.setVec3(below(index, "targetOffsetTranslate"),
                              math::transformVector(place - pivot, *back)));
      const math::Matrix4 relative = turn * math::transpose(rotation * linear(above));
      HOST_TRY(graph_.setVec3(below(index, "targetOffsetRotate"), math::matrixToEuler(relative)));
    }
    return {};
  }

  /// The rotation alone.
  static math::Matrix4 linear(const math::Matrix4& matrix) {
    const math::TransformComponents parts = math::decompose(matrix);
    return math::eulerToMatrix(parts.rotate, parts.rotateOrder);
  }

  Result<void> drive() {
    const std::vector<std::string> skipped = args_.texts("skip");
    for (const auto& [from, to] : wiring_.toObject) {
      const auto rest = graph_.getVec3(object_.node()->plug(to));
      for (int axis = 0; axis < 3; ++axis) {
        const std::string letter(1, static_cast<char>('x' + axis));
        const char* own = to == "translate" ? "skipTranslate" : "skipRotate";
        const std::vector<std::string> more = args_.texts(own);
        if (std::ranges::find(skipped, letter) != skipped.end() ||
            std::ranges::find(more, letter) != more.end())
          continue;
        const Plug driven = object_.node()->plug(to).child(axis);
        HOST_TRY(graph_.settable(driven));
        HOST_TRY(graph_.connect(node_->plug(from).child(axis), driven));
      }
      const char* restName = to == "translate" ? "restTranslate"
                             : to == "rotate"  ? "restRotate"
                                               : "restScale";
      if (rest && node_->plug(restName)) HOST_TRY(graph_.setVec3(node_->plug(restName), *rest));
    }
    return {};
  }

  scene::Document& document_;
  dg::Graph& graph_;
  const ParsedArgs& args_;
  const ConstraintWiring& wiring_;
  DagPath object_;
  dg::Node* node_ = nullptr;
};

CommandResult query(Context& context, const ParsedArgs& args, const ConstraintWiring& wiring) {
  auto node = context.document.node(args.firstObject());
  if (!node) return failWith(std::move(node.error()));
  if ((*node)->type().name != wiring.type && scene::isDagNode(**node)) {
    const auto below = constraintBelow(scene::firstPath(**node), wiring.type);
    if (below && *below) *node = *below;
  }
  if ((*node)->type().name != wiring.type)
    return fail("{}: '{}' has none.", wiring.command, (*node)->name());
  dg::Graph& graph = context.document.graph();
  const Plug targets = (*node)->plug("target");
  std::vector<std::string> names, weights;
  for (const Index index : graph.elementIndices(targets)) {
    const Plug element = targets.element(index);
    const Plug source =
        graph.source(element.child(targets.attribute()->find("targetParentMatrix")));
    if (!source) continue;
    names.push_back(nodeName(*source.node()));
    weights.push_back(weightName(*source.node(), index));
  }
  if (args.has("targetList")) return toValue(std::move(names));
  if (args.has("weightAliasList")) return toValue(std::move(weights));
  if (args.has("offset") && (*node)->plug("offset")) {
    auto offset = graph.getVec3((*node)->plug("offset"));
    if (!offset) return failWith(offset.error());
    return toValue(
        wiring.type == "pointConstraint"   ? *offset / context.document.units().toCentimeters(1)
        : wiring.type == "scaleConstraint" ? *offset
                                           : *offset / context.document.units().toRadians(1));
  }
  return fail("{}: query -targetList, -weightAliasList or -offset.", wiring.command);
}

CommandResult constrain(Context& context, const ParsedArgs& args, const ConstraintWiring& wiring) {
  if (args.isQuery()) return query(context, args, wiring);
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  std::vector<DagPath> paths;
  for (const scene::SelectionItem& item : list->items()) {
    if (!item.isDag()) return fail("{}: '{}' is no object.", wiring.command, item.node->name());
    paths.push_back(scene::isShape(*item.node) ? item.path.transform() : item.path);
  }
  if (paths.size() < 2)
    return fail("{}: name or select targets, then the object to constrain.", wiring.command);
  const DagPath object = paths.back();
  paths.pop_back();
  const auto node = Maker(context, args, wiring).make(paths, object);
  if (!node) return fail("{}: {}", wiring.command, node.error().message);
  return toValue({nodeName(**node)});
}

}  // namespace

void registerConstraintCommands(CommandRegistry& registry) {
  const std::vector<ArgType> triple{ArgType::Double, ArgType::Double, ArgType::Double};
  for (const ConstraintWiring& wiring : nodes::constraintWirings())
    define(registry, std::string(wiring.command),
           Syntax()
               .flag("mo", "maintainOffset")
               .flag("o", "offset", triple)
               .flag("n", "name", {ArgType::String})
               .flag("w", "weight", {ArgType::Double})
               .flag("sk", "skip", {ArgType::String})
               .multiUse()
               .flag("st", "skipTranslate", {ArgType::String})
               .multiUse()
               .flag("sr", "skipRotate", {ArgType::String})
               .multiUse()
               .flag("aim", "aimVector", triple)
               .flag("u", "upVector", triple)
               .flag("wu", "worldUpVector", triple)
               .flag("wut", "worldUpType", {ArgType::String})
               .flag("wuo", "worldUpObject", {ArgType::Name})
               .flag("tl", "targetList")
               .flag("wal", "weightAliasList")
               .editable()
               .queryable()
               .objects(0, -1, true),
           [&wiring](Context& context, const ParsedArgs& args) {
             return constrain(context, args, wiring);
           });
}

}  // namespace host::builtins
