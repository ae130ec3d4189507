#include <deque>
#include <unordered_set>

#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

using scene::Node;

/// Walks connections upstream (or downstream) from a node. Shading and bookkeeping connections are
/// no history.
class HistoryWalk {
 public:
  HistoryWalk(Context& context, const ParsedArgs& args)
      : graph_(context.document.graph()),
        isFuture_(args.boolean("future")),
        prunesDag_(args.boolean("pruneDagObjects")),
        isBreadthFirst_(args.has("breadthFirst")),
        levels_(args.integer("levels", 0)) {}

  void start(Node& node) { isBreadthFirst_ ? walkBroad(node) : walkDeep(node, 0); }
  [[nodiscard]] const std::vector<Node*>& nodes() const { return found_; }

 private:
  [[nodiscard]] bool isHistory(const dg::Graph::Connection& connection) const {
    const std::string& source = connection.source.attribute()->top().longName;
    const std::string& destination = connection.destination.attribute()->top().longName;
    if (source == "instObjGroups" || destination == "instObjGroups") return false;
    return connection.source.attribute()->type != dg::AttributeType::Message;
  }

  [[nodiscard]] std::vector<Node*> neighbours(Node& node) const {
    std::vector<Node*> result;
    for (const dg::Graph::Connection& connection :
         isFuture_ ? graph_.outgoing(node) : graph_.incoming(node))
      if (isHistory(connection))
        result.push_back(isFuture_ ? connection.destination.node() : connection.source.node());
    return result;
  }

  bool take(Node& node) {
    if (!seen_.insert(&node).second) return false;
    const bool isPruned = prunesDag_ && scene::isDagNode(node);
    if (!isPruned) found_.push_back(&node);
    return true;
  }

  void walkDeep(Node& start, int startLevel) {
    std::vector<std::pair<Node*, int>> stack{{&start, startLevel}};
    while (!stack.empty()) {
      const auto [node, level] = stack.back();
      stack.pop_back();
      if (!take(*node) || (levels_ > 0 && level >= levels_)) continue;
      const std::vector<Node*> next = neighbours(*node);
      for (auto each = next.rbegin(); each != next.rend(); ++each)
        stack.emplace_back(*each, level + 1);
    }
  }

  void walkBroad(Node& start) {
    std::deque<std::pair<Node*, int>> queue{{&start, 0}};
    while (!queue.empty()) {
      const auto [node, level] = queue.front();
      queue.pop_front();
      if (!take(*node) || (levels_ > 0 && level >= levels_)) continue;
      for (Node* next : neighbours(*node)) queue.emplace_back(next, level + 1);
    }
  }

  dg::Graph& graph_;
  bool isFuture_, prunesDag_, isBreadthFirst_;
  int levels_;
  std::unordered_set<Node*> seen_;
  std::vector<Node*> found_;
};

CommandResult listHistory(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("listHistory: name or select objects.");
  HistoryWalk walk(context, args);
  for (const scene::SelectionItem& item : list->items()) {
    const scene::DagPath shape = item.isDag() ? item.path.toShape() : scene::DagPath();
    walk.start(shape.isWorld() ? *item.node : *shape.node());
  }
  std::vector<std::string> names;
  for (const Node* node : walk.nodes()) names.push_back(nodeName(*node));
  return toValue(std::move(names));
}

}  // namespace

void registerListHistory(CommandRegistry& registry) {
  defineQuery(registry, "listHistory",
              Syntax()
                  .flag("f", "future", {ArgType::Bool})
                  .flag("pdo", "pruneDagObjects", {ArgType::Bool})
                  .flag("bf", "breadthFirst")
                  .flag("lv", "levels", {ArgType::Unsigned})
                  .flag("lf", "leaf", {ArgType::Bool})
                  .flag("il", "interestLevel", {ArgType::Int})
                  .flag("gl", "groupLevels")
                  .flag("ac", "allConnections")
                  .flag("ag", "allGraphs")
                  .flag("af", "allFuture")
                  .objects(0, -1, true),
              listHistory);
}

}  // namespace host::builtins
