// namespace and namespaceInfo.
#include "host/scene/namespaces.h"

#include <algorithm>
#include <set>

#include "host/builtins/common/command.h"
#include "host/scene/name_index.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

/// Namespaces are the parts of nodes' names before the colons, and those that were made and hold
/// nothing yet. Written without the colon in front; the root is empty.
struct Namespaces {
  std::set<std::string> made;
  std::string current;  ///< of the document, as it was when this was asked for
  bool isWatching = false;
  Connection onNewScene;
};

Namespaces& namespacesOf(Context& context) {
  auto& workspace = workspace::workspaceOf(context.session);
  auto& own = workspace.kept<Namespaces>();
  if (!own.isWatching)
    own.onNewScene = workspace.sceneHooks.reached.connect(
        [&own, &hooks = workspace.sceneHooks](workspace::SceneStage stage, const std::string&) {
          const bool opens = hooks.work == workspace::SceneHooks::Work::Opening &&
                             stage == workspace::SceneStage::BeforeRead;
          if (stage == workspace::SceneStage::AfterNew || opens) own.made.clear();
        });
  own.isWatching = true;
  own.current = scene::currentNamespace(context.document);
  return own;
}

std::string parentOf(const std::string& name) {
  const std::size_t colon = name.rfind(':');
  return colon == std::string::npos ? std::string() : name.substr(0, colon);
}
std::string baseOf(const std::string& name) {
  return name.substr(name.rfind(':') + 1);
}

/// A written name from the root: relative ones begin at the current namespace.
std::string absolute(const Namespaces& own, std::string name) {
  const bool isAbsolute = name.starts_with(':');
  while (name.starts_with(':')) name.erase(0, 1);
  while (name.ends_with(':')) name.pop_back();
  if (isAbsolute || own.current.empty()) return name;
  return name.empty() ? own.current : own.current + ":" + name;
}

std::set<std::string> allOf(Context& context) {
  std::set<std::string> all = namespacesOf(context).made;
  for (const dg::NodePtr& node : context.document.graph().nodes())
    for (std::string name = parentOf(node->name()); !name.empty(); name = parentOf(name))
      all.insert(name);
  return all;
}

bool exists(Context& context, const std::string& name) {
  return name.empty() || allOf(context).contains(name);
}

std::vector<dg::NodePtr> nodesIn(Context& context, const std::string& name, bool deep) {
  std::vector<dg::NodePtr> found;
  for (const dg::NodePtr& node : context.document.graph().nodes()) {
    const std::string own = parentOf(node->name());
    if (own == name || (deep && own.starts_with(name + ":"))) found.push_back(node);
  }
  return found;
}

/// Nodes get their names in another namespace; what lies below keeps its place there.
Result<void> moveContent(Context& context, const std::string& from, const std::string& to) {
  for (const dg::NodePtr& node : nodesIn(context, from, true)) {
    std::string rest = from.empty() ? node->name() : node->name().substr(from.size() + 1);
    auto renamed = context.document.rename(*node, ":" + (to.empty() ? rest : to + ":" + rest));
    if (!renamed) return failWith(std::move(renamed.error()));
  }
  std::set<std::string>& made = namespacesOf(context).made;
  std::set<std::string> kept;
  for (const std::string& name : made) {
    if (name.starts_with(from + ":"))
      kept.insert((to.empty() ? "" : to + ":") + name.substr(from.size() + 1));
    else if (name != from)
      kept.insert(name);
  }
  made = std::move(kept);
  return {};
}

Result<void> removeNamespace(Context& context, const ParsedArgs& args, const std::string& name) {
  if (name.empty()) return fail("namespace: the root namespace can't be removed.");
  if (!exists(context, name)) return fail("namespace: there is no namespace '{}'.", name);
  if (namespacesOf(context).current == name)
    return fail("namespace: '{}' is the current namespace and can't be removed.", name);
  if (args.has("deleteNamespaceContent")) {
    std::vector<scene::Node*> gone;
    for (const dg::NodePtr& node : nodesIn(context, name, true)) gone.push_back(node.get());
    if (!gone.empty()) HOST_TRY(context.document.deleteNodes(gone));
    std::erase_if(namespacesOf(context).made, [&](const std::string& each) {
      return each == name || each.starts_with(name + ":");
    });
    return {};
  }
  if (args.has("mergeNamespaceWithRoot")) return moveContent(context, name, "");
  if (args.has("mergeNamespaceWithParent")) return moveContent(context, name, parentOf(name));
  const auto all = allOf(context);
  const bool hasMore = std::ranges::any_of(
      all, [&](const std::string& each) { return each.starts_with(name + ":"); });
  if (hasMore || !nodesIn(context, name, true).empty())
    return fail("namespace: '{}' is not empty.", name);
  namespacesOf(context).made.erase(name);
  return {};
}

CommandResult namespaceCommand(Context& context, const ParsedArgs& args) {
  Namespaces& own = namespacesOf(context);
  if (args.has("exists")) return mel::Value(exists(context, absolute(own, args.text("exists"))));
  if (args.has("isRootNamespace"))
    return mel::Value(absolute(own, args.text("isRootNamespace")).empty());
  if (args.has("validateName")) return mel::Value(scene::legalName(args.text("validateName")));
  if (args.isQuery()) return mel::Value(":" + own.current);
  if (args.has("addNamespace")) {
    const std::string parent =
        args.has("parent") ? absolute(own, args.text("parent")) : std::string();
    const std::string written = args.text("addNamespace");
    std::string name = args.has("parent") && !written.starts_with(':')
                           ? (parent.empty() ? written : parent + ":" + written)
                           : absolute(own, written);
    if (scene::legalName(name) != name || name.empty())
      return fail("namespace: '{}' is no name for a namespace.", written);
    if (exists(context, name)) return fail("namespace: '{}' is there already.", name);
    for (std::string each = name; !each.empty(); each = parentOf(each)) own.made.insert(each);
    return mel::Value(name);
  }
  if (args.has("setNamespace")) {
    const std::string name = absolute(own, args.text("setNamespace"));
    if (!exists(context, name)) return fail("namespace: there is no namespace '{}'.", name);
    scene::setCurrentNamespace(context.document, name);
    return mel::Value(name.empty() ? ":" : name);
  }
  if (args.has("removeNamespace")) {
    const std::string name = absolute(own, args.text("removeNamespace"));
    HOST_TRY(removeNamespace(context, args, name));
    return mel::Value(name);
  }
  if (args.has("rename")) {
    const std::string from = absolute(own, args.text("rename"));
    const std::string base = args.text("rename", {}, 1), parent = parentOf(from);
    const std::string to =
        parent.empty() || base.starts_with(':') ? absolute({}, base) : parent + ":" + base;
    if (!exists(context, from) || from.empty())
      return fail("namespace: there is no namespace '{}'.", from);
    if (exists(context, to)) return fail("namespace: '{}' is there already.", to);
    HOST_TRY(moveContent(context, from, to));
    own.made.insert(to);
    if (own.current == from) scene::setCurrentNamespace(context.document, to);
    return mel::Value(to);
  }
  if (args.has("moveNamespace")) {
    const std::string from = absolute(own, args.text("moveNamespace")),
                      to = absolute(own, args.text("moveNamespace", {}, 1));
    for (const std::string& name : {from, to})
      if (!exists(context, name)) return fail("namespace: there is no namespace '{}'.", name);
    if (to == from || to.starts_with(from + ":"))
      return fail("namespace: '{}' can't be moved into itself.", from);
    HOST_TRY(moveContent(context, from, to));
    own.made.insert(from);  // only its content went: scripts remove it next
    return mel::Value(to);
  }
  return fail("namespace: say what to do: -add, -set, -rename, -removeNamespace, -exists, ...");
}

std::vector<std::string> listed(Context& context, const ParsedArgs& args, const std::string& name) {
  const bool deep = args.has("recurse"), onlyNodes = args.has("listOnlyDependencyNodes"),
             onlyNamespaces = args.has("listOnlyNamespaces");
  std::vector<std::string> names;
  if (!onlyNodes)
    for (const std::string& each : allOf(context)) {
      const bool isBelow = name.empty() || each.starts_with(name + ":");
      if (isBelow && each != name && (deep || parentOf(each) == name)) names.push_back(each);
    }
  if (!onlyNamespaces)
    for (const dg::NodePtr& node : nodesIn(context, name, deep))
      names.push_back(args.has("dagPath") ? nodeName(*node, true) : node->name());
  if (args.has("absoluteName"))
    for (std::string& each : names)
      if (!each.starts_with('|')) each.insert(0, ":");
  std::ranges::sort(names);
  return names;
}

CommandResult namespaceInfo(Context& context, const ParsedArgs& args) {
  const Namespaces& own = namespacesOf(context);
  const std::string name = args.hasObjects() ? absolute(own, args.firstObject()) : own.current;
  if (!exists(context, name)) return fail("namespaceInfo: there is no namespace '{}'.", name);
  if (args.has("listNamespace") || args.has("listOnlyNamespaces") ||
      args.has("listOnlyDependencyNodes"))
    return toValue(listed(context, args, name));
  if (args.has("isRootNamespace")) return mel::Value(name.empty());
  std::string answer = args.has("currentNamespace") ? own.current : name;
  if (args.has("parent")) answer = parentOf(answer);
  if (args.has("shortName") || args.has("baseName")) answer = baseOf(answer);
  if (args.has("absoluteName") || answer.empty()) answer.insert(0, ":");
  return mel::Value(answer);
}

}  // namespace

void registerNamespaces(CommandRegistry& registry) {
  define(registry, "namespace",
         Syntax()
             .flag("add", "addNamespace", {ArgType::String})
             .flag("set", "setNamespace", {ArgType::String})
             .flag("rm", "removeNamespace", {ArgType::String})
             .flag("ren", "rename", {ArgType::String, ArgType::String})
             .flag("mv", "moveNamespace", {ArgType::String, ArgType::String})
             .flag("ex", "exists", {ArgType::String})
             .flag("ir", "isRootNamespace", {ArgType::String})
             .flag("p", "parent", {ArgType::String})
             .flag("vn", "validateName", {ArgType::String})
             .flag("mnr", "mergeNamespaceWithRoot")
             .flag("mnp", "mergeNamespaceWithParent")
             .flag("dnc", "deleteNamespaceContent")
             .flag("an", "absoluteName")
             .flag("rel", "relativeNames", {ArgType::Bool})
             .flag("f", "force")
             .flag("r", "recurse")
             .queryable()
             .strings(0, 1),
         namespaceCommand);
  defineQuery(registry, "namespaceInfo",
              Syntax()
                  .flag("an", "absoluteName")
                  .flag("bn", "baseName")
                  .flag("sn", "shortName")
                  .flag("cur", "currentNamespace")
                  .flag("fn", "fullName")
                  .flag("p", "parent")
                  .flag("ir", "isRootNamespace")
                  .flag("ls", "listNamespace")
                  .flag("lon", "listOnlyNamespaces")
                  .flag("lod", "listOnlyDependencyNodes")
                  .flag("r", "recurse")
                  .flag("dp", "dagPath")
                  .flag("int", "internal")
                  .strings(0, 1),
              namespaceInfo);
}

}  // namespace host::builtins
