// blendShape: points that move towards those of other meshes.
#include "host/nodes/history/blend_shape.h"

#include <algorithm>

#include "host/builtins/deform/deformer_flags.h"
#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"

namespace host::builtins {

namespace {

using nodes::MeshItem;

/// The shapes at and below the objects that a word names, as they are seen.
Result<std::vector<dg::Node*>> shapesNamed(Context& context, const std::string& name) {
  auto list = context.document.resolve(name);
  if (!list) return failWith(std::move(list.error()));
  std::vector<dg::Node*> shapes;
  for (const scene::SelectionItem& item : list->items()) {
    if (!item.isDag()) continue;
    std::vector<scene::DagPath> open{item.path};
    while (!open.empty()) {
      const scene::DagPath path = open.back();
      open.pop_back();
      if (path.node()->type().isA("mesh")) {
        if (!scene::isIntermediate(*path.node())) shapes.push_back(path.node());
        continue;
      }
      const auto& children = scene::dagLinks(*path.node()).children;
      for (auto child = children.rbegin(); child != children.rend(); ++child)
        open.push_back(path.child(*child));
    }
  }
  if (shapes.empty()) return fail("blendShape: '{}' has no mesh.", name);
  return shapes;
}

Result<void> setOrigin(Context& context, const ParsedArgs& args, dg::Node& blend) {
  if (!args.has("origin")) return {};
  const std::string word = args.text("origin");
  if (word != "world" && word != "local")
    return fail("blendShape: -origin is \"world\" or \"local\", not \"{}\".", word);
  return context.document.graph().set(blend.plug("origin"), std::int64_t{word == "local"});
}

Result<void> setWeights(Context& context, const ParsedArgs& args, dg::Node& blend) {
  for (int use = 0; use < args.uses("weight"); ++use) {
    const auto words = args.values("weight", use);
    if (words.size() < 2) return fail("blendShape: -weight takes a target's number and a weight.");
    const auto target = static_cast<Index>(words[0].toFloat().value_or(-1));
    const std::vector<Index> targets = nodes::blendTargets(blend);
    if (std::ranges::find(targets, target) == targets.end())
      return fail("blendShape: '{}' has no target {}.", blend.name(), target);
    HOST_TRY(context.document.graph().set(blend.plug("weight").element(target),
                                          words[1].toFloat().value_or(0)));
  }
  return {};
}

Result<void> refuseMismatch(const ParsedArgs& args, dg::Node& blend, dg::Node& base,
                            dg::Node& target) {
  const auto check = blend.graph().get(blend.plug("topologyCheck"));
  const bool isChecked = args.has("topologyCheck") ? args.boolean("topologyCheck")
                                                   : check && dg::equal(*check, std::int64_t{1});
  const std::string reason = isChecked ? nodes::blendMismatch(base, target) : std::string();
  if (reason.empty()) return {};
  return fail("blendShape: {}: with -topologyCheck 0 vertices are matched by number.", reason);
}

Result<void> addTargets(Context& context, const ParsedArgs& args, dg::Node& blend,
                        const std::vector<std::string>& names) {
  const auto bases = nodes::deformedShapes(blend);
  Index target = 0;
  for (const std::string& name : names) {
    const auto shapes = shapesNamed(context, name);
    if (!shapes) return failWith(shapes.error());
    if (shapes->size() != bases.size())
      return fail("blendShape: '{}' has {} meshes, what it is a target for has {}.", name,
                  shapes->size(), bases.size());
    for (std::size_t i = 0; i < bases.size(); ++i) {
      const auto& [geometry, base] = bases[i];
      HOST_TRY(refuseMismatch(args, blend, *base, *(*shapes)[i]));
      const auto added =
          nodes::addBlendTarget(context.document, blend, geometry, target, *(*shapes)[i], 1);
      if (!added) return fail("blendShape: {}", added.error().message);
    }
    ++target;
  }
  return {};
}

/// The words named, or those of what is selected.
Result<std::vector<std::string>> wordsOf(Context& context, const ParsedArgs& args) {
  std::vector<std::string> words;
  if (!args.hasObjects()) return context.document.selection().names();
  for (const std::string& name : args.objectNames()) {
    const auto list = context.document.resolve(name);
    if (!list) return failWith(list.error());
    const std::vector<std::string> some = list->names(true);
    words.insert(words.end(), some.begin(), some.end());
  }
  return words;
}

CommandResult create(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto words = wordsOf(context, args);
  if (!words) return failWith(std::move(words.error()));
  std::vector<dg::Node*> named;
  std::erase_if(*words, [&](const std::string& word) {
    const auto node = document.node(word);
    const bool isDeformer = node && (*node)->type().isA("geometryFilter");
    if (isDeformer) named.push_back(*node);
    return isDeformer;
  });
  if (words->empty())
    return fail("blendShape: name or select targets and, last, what is to follow.");
  const nodes::DeformerPlace place = deformerPlace(args, named);
  const std::string base = words->back();
  words->pop_back();
  const auto list = document.resolve(base);
  const auto items = list ? nodes::meshItems(*list) : failWith(list.error());
  if (!items) return failWith(items.error());
  auto made = document.createNode("blendShape", args.text("name", "blendShape#"));
  if (!made) return failWith(std::move(made.error()));
  if (args.has("topologyCheck"))
    HOST_TRY(document.graph().set((*made)->plug("topologyCheck"),
                                  std::int64_t{args.boolean("topologyCheck")}));
  HOST_TRY(setOrigin(context, args, **made));
  const auto shapes = shapesNamed(context, base);
  if (!shapes) return failWith(shapes.error());
  for (dg::Node* shape : *shapes) {
    std::vector<scene::Component> components;
    for (const MeshItem& item : *items)
      if (item.path.node() == shape) components = item.components;
    const auto added = nodes::addDeformedShape(document, **made, *shape, components, place);
    if (!added) return fail("blendShape: {}", added.error().message);
  }
  HOST_TRY(addTargets(context, args, **made, *words));
  HOST_TRY(setWeights(context, args, **made));
  HOST_TRY(editDeformer(context, args, **made));
  return toValue({(*made)->name()});
}

CommandResult query(Context& context, const ParsedArgs& args, dg::Node& blend) {
  dg::Graph& graph = context.document.graph();
  const std::vector<Index> targets = nodes::blendTargets(blend);
  if (args.has("target")) {
    std::vector<std::string> names;
    for (const Index target : targets) {
      const dg::Plug weight = blend.plug("weight").element(target);
      const std::string alias = graph.alias(weight);
      names.push_back(alias.empty() ? weight.attributePath() : alias);
    }
    return toValue(std::move(names));
  }
  if (args.has("weight")) {
    mel::FloatArray weights;
    for (const Index target : targets) {
      const dg::Plug plug = blend.plug("weight").element(target);
      const auto value = graph.elementExists(plug) ? graph.get(plug) : Result<dg::Value>(0.0);
      if (!value) return failWith(value.error());
      weights.push_back(std::get<double>(*value));
    }
    return mel::Value(std::move(weights));
  }
  if (args.has("weightCount")) return mel::Value(static_cast<std::int32_t>(targets.size()));
  for (const char* flag : {"topologyCheck", "origin"}) {
    if (!args.has(flag)) continue;
    const auto value = graph.get(blend.plug(flag));
    if (!value) return failWith(value.error());
    const auto number = static_cast<std::int32_t>(std::get<std::int64_t>(*value));
    if (flag[0] == 't') return mel::Value(number);
    constexpr const char* kWords[] = {"world", "local", "user"};
    return mel::Value(std::string(kWords[std::clamp(number, 0, 2)]));
  }
  if (auto answer = queryDeformer(context, args, blend)) return *std::move(answer);
  return fail("blendShape: say which flag to query.");
}

/// -target base number target weight: what the words of one use say.
struct TargetWords {
  Index geometry = 0, target = 0;
  dg::Node *base = nullptr, *shape = nullptr;
  double weight = 1;
};

Result<TargetWords> targetWords(Context& context, const ParsedArgs& args, dg::Node& blend,
                                int use) {
  const auto words = args.values("target", use);
  if (words.size() < 4)
    return fail(
        "blendShape: -target takes the base, the target's number, its mesh and its weight.");
  TargetWords said;
  const auto bases = shapesNamed(context, words[0].toText().value_or(""));
  if (!bases) return failWith(bases.error());
  said.base = bases->front();
  const auto all = nodes::deformedShapes(blend);
  const auto found =
      std::ranges::find_if(all, [&](const auto& each) { return each.second == said.base; });
  if (found == all.end())
    return fail("blendShape: '{}' does not deform '{}'.", blend.name(), said.base->name());
  said.geometry = found->first;
  said.target = static_cast<Index>(words[1].toFloat().value_or(-1));
  const auto shapes = shapesNamed(context, words[2].toText().value_or(""));
  if (!shapes) return failWith(shapes.error());
  said.shape = shapes->front();
  said.weight = words[3].toFloat().value_or(1);
  return said;
}

CommandResult edit(Context& context, const ParsedArgs& args, dg::Node& blend) {
  scene::Document& document = context.document;
  for (int use = 0; use < args.uses("target"); ++use) {
    const auto said = targetWords(context, args, blend, use);
    if (!said) return failWith(said.error());
    if (removes(args)) {
      const auto removed =
          nodes::removeBlendTarget(document, blend, said->geometry, said->target, said->weight);
      if (!removed) return fail("blendShape: {}", removed.error().message);
      continue;
    }
    const bool isThere = !nodes::blendTargetWeights(blend, said->geometry, said->target).empty();
    if (args.has("inBetween") && !isThere)
      return fail("blendShape: '{}' has no target {} to put a shape in between.", blend.name(),
                  said->target);
    HOST_TRY(refuseMismatch(args, blend, *said->base, *said->shape));
    const auto added = nodes::addBlendTarget(document, blend, said->geometry, said->target,
                                             *said->shape, said->weight);
    if (!added) return fail("blendShape: {}", added.error().message);
  }
  if (args.has("topologyCheck"))
    HOST_TRY(document.graph().set(blend.plug("topologyCheck"),
                                  std::int64_t{args.boolean("topologyCheck")}));
  HOST_TRY(setOrigin(context, args, blend));
  HOST_TRY(setWeights(context, args, blend));
  HOST_TRY(editDeformer(context, args, blend));
  return toValue({blend.name()});
}

CommandResult blendShape(Context& context, const ParsedArgs& args) {
  if (args.isCreate()) return create(context, args);
  std::string name = args.firstObject();
  if (name.empty() && !context.document.selection().isEmpty())
    name = context.document.selection().names().front();
  const auto blend = deformerOfType(context, "blendShape", "blendShape", name);
  if (!blend) return failWith(blend.error());
  return args.isQuery() ? query(context, args, **blend) : edit(context, args, **blend);
}

// reorderDeformers
// -------------------------------------------------------------------------------------------------

CommandResult reorderDeformers(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  dg::Node* deformers[2] = {};
  for (std::size_t i = 0; i < 2; ++i) {
    auto node = context.document.node(words[i]);
    if (!node) return failWith(std::move(node.error()));
    if (!(*node)->type().isA("geometryFilter"))
      return fail("reorderDeformers: '{}' is no deformer.", words[i]);
    deformers[i] = *node;
  }
  const auto list = words.size() > 2 ? context.document.resolveAll({words.begin() + 2, words.end()})
                                     : Result<scene::SelectionList>(context.document.selection());
  const auto items = list ? nodes::meshItems(*list) : failWith(list.error());
  if (!items) return failWith(items.error());
  if (items->empty()) return fail("reorderDeformers: name or select the objects.");
  for (const MeshItem& item : *items) {
    if (scene::isIntermediate(*item.path.node())) continue;
    const auto done = nodes::moveDeformer(context.document, *deformers[1], *item.path.node(),
                                          {nodes::DeformerPlace::Where::Before, deformers[0]});
    if (!done) return fail("reorderDeformers: {}", done.error().message);
  }
  return mel::Value();
}

}  // namespace

void registerBlendShapeCommands(CommandRegistry& registry) {
  Syntax syntax;
  syntax.about("Moves the points of an object towards those of others, or changes how.")
      .flag("t", "target", {ArgType::String, ArgType::Int, ArgType::String, ArgType::Double})
      .multiUse()
      .help("the object, a target's number, its mesh, and at which weight that is reached")
      .flag("w", "weight", {ArgType::Int, ArgType::Double})
      .multiUse()
      .help("a target's number and how much of it is seen")
      .flag("wc", "weightCount")
      .help("how many targets there are")
      .flag("ib", "inBetween")
      .help("the target is there already, and gets one more mesh on its way")
      .flag("o", "origin", {ArgType::String})
      .help("where meshes are compared: \"local\" or \"world\"")
      .flag("tc", "topologyCheck", {ArgType::Bool})
      .help("whether meshes of other numbers of components are refused");
  define(registry, "blendShape", addDeformerFlags(syntax), blendShape);
  define(registry, "reorderDeformers",
         Syntax()
             .about("Puts the second deformer named in front of the first, on the objects that "
                    "follow.")
             .strings(2),
         reorderDeformers);
}

}  // namespace host::builtins
