#include <algorithm>
#include <unordered_set>

#include "host/builtins/common/command.h"
#include "host/scene/dag_paths.h"

namespace host::builtins {

namespace {

using scene::DagPath;

class RelativeLister {
 public:
  RelativeLister(Context& context, const ParsedArgs& args)
      : document_(context.document), args_(args) {
    types_ = args.texts("type");
  }

  /// What components lie on is the shape: it is their parent.
  void visit(const scene::SelectionItem& item) {
    const DagPath& path = item.path;
    if (args_.has("parent")) {
      add(item.components.empty() ? path.parent() : path.toShape());
    } else if (args_.has("allParents")) {
      for (const DagPath& each : scene::allPaths(*path.node())) add(each.parent());
    } else if (args_.has("allDescendents")) {
      addBelow(path);
    } else {
      for (scene::Node* child : scene::dagLinks(*path.node()).children) add(path.child(child));
    }
  }

  [[nodiscard]] std::vector<std::string> takeNames() {
    if (budget_.leftOut()) postMessage(MessageKind::Warning, "listRelatives: " + budget_.warning());
    return std::move(names_);
  }

 private:
  /// Children before their parents: the reverse of what is met from the last child to the first.
  void addBelow(const DagPath& path) {
    const std::size_t first = names_.size();
    for (scene::PathWalk walk(path, scene::PathWalk::Children::Reversed, &budget_); !walk.isDone();
         walk.next())
      if (walk.depth() > 0) add(walk.path());
    std::reverse(names_.begin() + static_cast<std::ptrdiff_t>(first), names_.end());
  }

  void add(const DagPath& path) {
    if (path.isWorld()) return;
    scene::Node& node = *path.node();
    if (args_.has("shapes") && !scene::isShape(node)) return;
    if (!types_.empty() && std::none_of(types_.begin(), types_.end(), [&](const std::string& type) {
          return node.type().isA(type);
        }))
      return;
    if (args_.has("noIntermediate")) {
      const dg::Plug plug = node.plug("intermediateObject");
      const auto value = document_.graph().get(plug);
      if (value && dg::equal(*value, std::int64_t{1})) return;
    }
    std::string name = args_.has("fullPath") ? path.fullName()
                       : args_.has("path")   ? path.partialName()
                                             : node.name();
    if (args_.has("allParents") && !seen_.insert(name).second) return;
    names_.push_back(std::move(name));
  }

  scene::Document& document_;
  const ParsedArgs& args_;
  std::vector<std::string> types_, names_;
  std::unordered_set<std::string> seen_;
  scene::PlaceBudget budget_;
};

CommandResult listRelatives(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  RelativeLister lister(context, args);
  for (const scene::SelectionItem& item : list->items())
    if (item.isDag()) lister.visit(item);
  return toValue(lister.takeNames());
}

}  // namespace

void registerListRelatives(CommandRegistry& registry) {
  defineQuery(registry, "listRelatives",
              Syntax()
                  .flag("p", "parent")
                  .flag("ap", "allParents")
                  .flag("c", "children")
                  .flag("ad", "allDescendents")
                  .flag("s", "shapes")
                  .flag("typ", "type", {ArgType::String})
                  .multiUse()
                  .flag("f", "fullPath")
                  .flag("pa", "path")
                  .flag("ni", "noIntermediate")
                  .objects(0, -1, true),
              listRelatives);
}

}  // namespace host::builtins
