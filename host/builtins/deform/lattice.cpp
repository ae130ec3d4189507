// lattice: points that follow a cage.
#include "host/nodes/history/lattice.h"

#include <algorithm>

#include "host/builtins/deform/deformer_flags.h"
#include "host/nodes/transform.h"
#include "host/scene/dag_paths.h"

namespace host::builtins {

namespace {

using math::Vec3;
using nodes::MeshItem;

struct LatticeParts {
  dg::Node *ffd = nullptr, *lattice = nullptr, *base = nullptr;  ///< the latter two: shapes
};

dg::Node* shapeBehind(dg::Node& ffd, const char* compound, const char* matrix) {
  const dg::Plug plug = ffd.plug(compound);
  const dg::Plug source = ffd.graph().source(plug.child(plug.attribute()->find(matrix)));
  return source ? source.node() : nullptr;
}

LatticeParts partsOf(dg::Node& ffd) {
  return {&ffd, shapeBehind(ffd, "deformedLattice", "deformedLatticeMatrix"),
          shapeBehind(ffd, "baseLattice", "baseLatticeMatrix")};
}

Result<dg::Node*> addCage(scene::Document& document, const char* type, const std::string& name,
                          const math::TransformComponents& place, dg::Node* parent) {
  auto transform = document.createNode("transform", name, parent);
  if (!transform) return failWith(std::move(transform.error()));
  HOST_TRY(nodes::writeTransform(**transform, place));
  auto shape = document.createNode(type, (*transform)->name() + "Shape", transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  return shape->get();
}

/// Where the flags want the box: around the objects, or where they say.
math::TransformComponents placeOf(const ParsedArgs& args, const std::vector<MeshItem>& items) {
  math::TransformComponents place;
  if (args.has("objectCentered") && args.boolean("objectCentered", true)) {
    const math::Box box = worldBox(items);
    if (!box.isEmpty()) {
      place.translate = box.center();
      place.scale = box.size();
      // What is flat has no box; a side of one stands for it.
      for (int axis = 0; axis < 3; ++axis)
        if (place.scale[axis] < 1e-9) place.scale[axis] = 1;
    }
  }
  if (args.has("position")) place.translate = args.vec3("position");
  if (args.has("rotation")) place.rotate = args.vec3("rotation");
  if (args.has("scale")) place.scale = args.vec3("scale");
  return place;
}

Result<void> setNumbers(Context& context, const ParsedArgs& args, const LatticeParts& parts) {
  dg::Graph& graph = context.document.graph();
  const auto setThree = [&](const char* flag, dg::Node* node,
                            std::initializer_list<const char*> attributes,
                            int least) -> Result<void> {
    if (!args.has(flag) || !node) return {};
    int i = 0;
    for (const char* attribute : attributes) {
      const int number = args.integer(flag, least, i++);
      if (number < least || number > 100)
        return fail("lattice: -{} takes numbers from {} to 100, not {}.", flag, least, number);
      HOST_TRY(graph.set(node->plug(attribute), std::int64_t{number}));
    }
    return {};
  };
  HOST_TRY(setThree("divisions", parts.lattice, {"sDivisions", "tDivisions", "uDivisions"}, 2));
  HOST_TRY(setThree("ldivisions", parts.ffd,
                    {"localInfluenceS", "localInfluenceT", "localInfluenceU"}, 1));
  if (args.has("outsideLattice")) {
    const int number = args.integer("outsideLattice");
    if (number < 0 || number > 2)
      return fail("lattice: -outsideLattice is 0 (what is inside), 1 (all) or 2 (fading).");
    HOST_TRY(graph.set(parts.ffd->plug("outsideLattice"), std::int64_t{number}));
  }
  if (args.has("outsideFalloffDistance"))
    HOST_TRY(graph.set(parts.ffd->plug("outsideFalloffDist"), args.real("outsideFalloffDistance")));
  if (args.has("freezeMapping"))
    HOST_TRY(nodes::freezeInLattice(*parts.ffd, args.boolean("freezeMapping")));
  if ((args.has("latticeReset") || args.has("removeTweaks")) && parts.lattice)
    HOST_TRY(nodes::resetLattice(*parts.lattice));
  if (args.has("latticeReset") && parts.lattice && parts.base) {
    // Back onto the base, wherever that is.
    const scene::DagPath place = scene::firstPath(*parts.lattice).parent();
    const auto above = math::inverse(place.parent().inclusiveMatrix());
    const auto now = nodes::readTransform(*place.node());
    if (above && now)
      HOST_TRY(nodes::writeTransform(
          *place.node(),
          math::decompose(scene::firstPath(*parts.base).inclusiveMatrix() * *above, *now)));
  }
  return {};
}

CommandResult create(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  const auto objects = deformerObjects(context, args);
  if (!objects) return failWith(objects.error());
  if (objects->meshes.empty()) return fail("lattice: name or select what it is to deform.");
  const math::TransformComponents place = placeOf(args, objects->meshes);
  for (int axis = 0; axis < 3; ++axis)
    if (place.scale[axis] == 0) return fail("lattice: a lattice can't have a scale of zero.");
  auto made = document.createNode("ffd", args.text("name", "ffd#"));
  if (!made) return failWith(std::move(made.error()));
  dg::Node& ffd = **made;
  dg::Node* parent = nullptr;
  if (args.has("commonParent") && args.boolean("commonParent", true)) {
    auto group = document.createNode("transform", ffd.name() + "Group");
    if (!group) return failWith(std::move(group.error()));
    parent = group->get();
  }
  const auto lattice = addCage(document, "lattice", ffd.name() + "Lattice", place, parent);
  if (!lattice) return failWith(lattice.error());
  const auto base = addCage(document, "baseLattice", ffd.name() + "Base", place, parent);
  if (!base) return failWith(base.error());
  const dg::Plug deformed = ffd.plug("deformedLattice"), rest = ffd.plug("baseLattice");
  HOST_TRY(graph.connect((*lattice)->plug("latticeOutput"),
                         deformed.child(deformed.attribute()->find("deformedLatticePoints"))));
  HOST_TRY(graph.connect((*lattice)->plug("worldMatrix").element(0),
                         deformed.child(deformed.attribute()->find("deformedLatticeMatrix"))));
  HOST_TRY(graph.connect((*base)->plug("worldMatrix").element(0),
                         rest.child(rest.attribute()->find("baseLatticeMatrix"))));
  // Scenes say it in their files: made by the command points count locally.
  HOST_TRY(graph.set(ffd.plug("local"), std::int64_t{1}));
  HOST_TRY(setNumbers(context, args, {&ffd, *lattice, *base}));
  const auto added = addDeformed(document, ffd, *objects, args);
  if (!added) return fail("lattice: {}", added.error().message);
  const scene::DagPath at = scene::firstPath(**lattice).parent();
  scene::SelectionList list;
  list.add(at);
  document.setSelection(std::move(list));
  return toValue(
      {ffd.name(), nodeName(*at.node()), nodeName(*scene::firstPath(**base).parent().node())});
}

CommandResult query(Context& context, const ParsedArgs& args, const LatticeParts& parts) {
  dg::Graph& graph = context.document.graph();
  const auto integers = [&](dg::Node* node,
                            std::initializer_list<const char*> attributes) -> CommandResult {
    mel::IntArray numbers;
    for (const char* attribute : attributes) {
      const auto value =
          node ? graph.get(node->plug(attribute)) : Result<dg::Value>(std::int64_t{0});
      if (!value) return failWith(value.error());
      numbers.push_back(static_cast<std::int32_t>(std::get<std::int64_t>(*value)));
    }
    if (numbers.size() == 1) return mel::Value(numbers.front());
    return mel::Value(std::move(numbers));
  };
  if (args.has("divisions"))
    return integers(parts.lattice, {"sDivisions", "tDivisions", "uDivisions"});
  if (args.has("ldivisions"))
    return integers(parts.ffd, {"localInfluenceS", "localInfluenceT", "localInfluenceU"});
  if (args.has("outsideLattice")) return integers(parts.ffd, {"outsideLattice"});
  if (args.has("freezeMapping")) return integers(parts.ffd, {"freezeGeometry"});
  if (args.has("outsideFalloffDistance")) {
    const auto value = graph.get(parts.ffd->plug("outsideFalloffDist"));
    if (!value) return failWith(value.error());
    return mel::Value(std::get<double>(*value));
  }
  if (auto answer = queryDeformer(context, args, *parts.ffd)) return *std::move(answer);
  return fail("lattice: say which flag to query.");
}

CommandResult lattice(Context& context, const ParsedArgs& args) {
  if (args.isCreate()) return create(context, args);
  std::string name = args.firstObject();
  // The lattice and its base stand for the deformer.
  if (const auto node = context.document.node(name); node && scene::isDagNode(**node))
    for (const dg::NodePtr& other : context.document.graph().nodes()) {
      if (!other->type().isA("ffd")) continue;
      const LatticeParts parts = partsOf(*other);
      for (dg::Node* shape : {parts.lattice, parts.base})
        if (shape && (shape == *node || scene::firstPath(*shape).parent().node() == *node))
          name = other->name();
    }
  const auto ffd = deformerOfType(context, "lattice", "ffd", name);
  if (!ffd) return failWith(ffd.error());
  const LatticeParts parts = partsOf(**ffd);
  if (args.isQuery()) return query(context, args, parts);
  HOST_TRY(setNumbers(context, args, parts));
  HOST_TRY(editDeformer(context, args, **ffd));
  return toValue({(*ffd)->name()});
}

}  // namespace

void registerLatticeCommands(CommandRegistry& registry) {
  const std::vector<ArgType> threeInts{ArgType::Int, ArgType::Int, ArgType::Int};
  Syntax syntax;
  syntax.about("Lets points follow a cage of points that is made around them, or changes how.")
      .flag("dv", "divisions", threeInts)
      .help("how many points the cage has along s, t and u")
      .flag("ldv", "ldivisions", threeInts)
      .help("how many divisions away a point of the cage counts")
      .flag("oc", "objectCentered", {ArgType::Bool})
      .optionalArgs()
      .help("around the objects, as large as they are")
      .flag("cp", "commonParent", {ArgType::Bool})
      .optionalArgs()
      .help("puts cage and base below one transform")
      .flag("pos", "position", {ArgType::Distance, ArgType::Distance, ArgType::Distance})
      .help("where the middle of the cage is")
      .flag("ro", "rotation", {ArgType::Angle, ArgType::Angle, ArgType::Angle})
      .help("how the cage is turned")
      .flag("s", "scale", {ArgType::Double, ArgType::Double, ArgType::Double})
      .help("how large the cage is")
      .flag("ol", "outsideLattice", {ArgType::Int})
      .help("0: what is outside of the base stays, 1: it goes along, 2: that fades")
      .flag("ofd", "outsideFalloffDistance", {ArgType::Double})
      .help("how far from the base it has faded, in sizes of the base")
      .flag("fm", "freezeMapping", {ArgType::Bool})
      .help("holds points where they are in the base")
      .flag("lr", "latticeReset")
      .help("puts the cage back onto its base, all points at rest")
      .flag("rt", "removeTweaks")
      .help("puts the points of the cage to rest");
  define(registry, "lattice", addDeformerFlags(syntax), lattice);
}

}  // namespace host::builtins
