// duplicate and instance.
#include "host/edits/duplicate.h"

#include "host/builtins/common/command.h"
#include "host/workspace/edit_hooks.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

/// The copies that duplicate made last, with what they were made of: -smartTransform gives the next
/// copy the change that came between the two.
struct LastDuplicates {
  struct Pair {
    std::weak_ptr<dg::Node> original, copy;
  };
  std::vector<Pair> pairs;
};

Result<void> repeatChange(scene::Document& document, const dg::Node& first, const dg::Node& second,
                          dg::Node& third) {
  dg::Graph& graph = document.graph();
  const auto value = [&](const dg::Node& node, const std::string& name) {
    const auto read = graph.get(const_cast<dg::Node&>(node).plug(name));
    const auto* number = read ? std::get_if<double>(&*read) : nullptr;
    return number ? *number : 0.0;
  };
  for (const char* channel : {"translate", "rotate", "scale"}) {
    for (const char* axis : {"X", "Y", "Z"}) {
      const std::string name = std::string(channel) + axis;
      const double before = value(first, name), after = value(second, name);
      const bool isFactor = channel[0] == 's' && before != 0;
      const double next = isFactor ? after * (after / before) : after + (after - before);
      if (next == after || !graph.settable(third.plug(name))) continue;
      HOST_TRY(graph.set(third.plug(name), dg::Value(next)));
    }
  }
  return {};
}

/// The originals of a call, in the order of its copies.
std::vector<dg::NodePtr> originalsOf(const scene::SelectionList& list) {
  std::vector<dg::NodePtr> nodes;
  for (const scene::SelectionItem& item : list.items()) {
    dg::Node* node = item.node.get();
    if (item.isDag() && scene::isShape(*item.node)) node = item.path.transform().node();
    nodes.push_back(node->shared_from_this());
  }
  return nodes;
}

Result<void> smartTransform(Context& context, const std::vector<dg::NodePtr>& originals,
                            const std::vector<edits::Copy>& copies, bool repeats) {
  auto& last = workspace::workspaceOf(context.session).kept<LastDuplicates>();
  LastDuplicates now;
  for (std::size_t i = 0; i < copies.size() && i < originals.size(); ++i) {
    now.pairs.push_back({originals[i], copies[i].node});
    if (!repeats || !scene::isDagNode(*copies[i].node)) continue;
    for (const LastDuplicates::Pair& pair : last.pairs) {
      const dg::NodePtr first = pair.original.lock(), second = pair.copy.lock();
      if (!first || second != originals[i] || !first->isAlive()) continue;
      HOST_TRY(repeatChange(context.document, *first, *second, *copies[i].node));
    }
  }
  last = std::move(now);
  return {};
}

/// The names of the copies. What is below one has the names of what is below the original, so that
/// each is told by its path up to the copy; the paths of a deep hierarchy take memory by the square
/// of its depth and end at a bound.
std::vector<std::string> namesOf(const std::vector<edits::Copy>& copies, bool onlyRoots) {
  constexpr std::size_t kMostText = std::size_t{16} << 20;
  std::vector<std::string> names;
  std::size_t text = 0, shortened = 0;
  for (const edits::Copy& copy : copies) {
    names.push_back(nodeName(*copy.node));
    if (onlyRoots) continue;
    for (const dg::NodePtr& below : copy.below) {
      const bool isLong = text > kMostText;
      shortened += isLong ? 1 : 0;
      names.push_back(isLong ? below->name() : nodeName(*below));
      text += names.back().size();
    }
  }
  if (shortened > 0)
    postMessage(MessageKind::Warning,
                fmt::format("duplicate: the paths of {} copies are too long to list: they are "
                            "returned by their last names",
                            shortened));
  return names;
}

CommandResult duplicate(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("duplicate: name or select objects.");
  const edits::DuplicateHooks hooks = workspace::duplicateHooks(context.session);
  const std::vector<dg::NodePtr> originals = originalsOf(*list);
  const auto copies = edits::duplicate(context.document, *std::move(list),
                                       {.name = args.text("name"),
                                        .renamesChildren = args.has("renameChildren"),
                                        .withoutChildren = args.has("parentOnly"),
                                        .sharesShapes = args.has("instanceLeaf"),
                                        .connectsInputs = args.has("inputConnections"),
                                        .copiesUpstream = args.has("upstreamNodes"),
                                        .hooks = &hooks});
  if (!copies) return failWith(copies.error());
  HOST_TRY(smartTransform(context, originals, *copies, args.has("smartTransform")));
  return toValue(namesOf(*copies, args.has("returnRootsOnly")));
}

CommandResult instance(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("instance: name or select objects.");
  const edits::DuplicateHooks hooks = workspace::duplicateHooks(context.session);
  const auto made =
      edits::instance(context.document, *std::move(list),
                      {.name = args.text("name"), .onlyShapes = args.has("leaf"), .hooks = &hooks});
  if (!made) return failWith(made.error());
  std::vector<std::string> names;
  for (const dg::NodePtr& node : *made) names.push_back(nodeName(*node));
  return toValue(std::move(names));
}

}  // namespace

void registerDuplicate(CommandRegistry& registry) {
  define(registry, "duplicate",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("rr", "returnRootsOnly")
             .flag("rc", "renameChildren")
             .flag("po", "parentOnly")
             .flag("ic", "inputConnections")
             .flag("un", "upstreamNodes")
             .flag("st", "smartTransform")
             .flag("ilf", "instanceLeaf")
             .objects(0, -1, true),
         duplicate);
  define(registry, "instance",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("lf", "leaf")
             .flag("st", "smartTransform")
             .objects(0, -1, true),
         instance);
}

}  // namespace host::builtins
