#include <ctime>
#include <filesystem>
#include <unordered_set>

#include "host/base/messages.h"
#include "host/builtins/file/formats.h"
#include "host/builtins/file/references.h"
#include "host/io/ma/ma_loader.h"
#include "host/io/ma/ma_writer.h"
#include "host/io/whole_file.h"
#include "host/nodes/sets.h"
#include "host/scene/namespaces.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

/// The first one whose files may hold all that is written here.
constexpr const char* kFileVersion = "2016";

/// Loads the plug-ins that a file asks for, by name alone: a scene does not say where code comes
/// from. Without one its nodes are unknown ones, which is told of them.
void loadPlugins(Context& context, const io::MaFile& file) {
  if (!context.session.pluginLoader) return;
  for (const std::string_view name : file.plugins)
    if (!name.empty() && name.find_first_of("/\\.") == std::string_view::npos)
      (void)context.session.pluginLoader->load(std::string(name));
}

Result<FileFormat::Placing> read(Context&, const std::string& path,
                                 const FileReadOptions& options) {
  auto file = io::readMa(path);
  if (!file) return failWith(std::move(file.error()));
  auto kept = std::make_shared<io::MaFile>(std::move(*file));
  io::MaLoadOptions how{.isImport = options.isImport,
                        .clashPrefix = options.clashPrefix,
                        .renamesAll = options.renamesAll,
                        .nameSpace = options.nameSpace};
  return [kept, how](Context& context) -> Result<std::vector<dg::Node*>> {
    loadPlugins(context, *kept);
    const scene::NamespaceScope inRoot(context.document, {});
    const io::MaReferenceKeeper references = referenceKeeper(context, kept->name);
    io::MaLoadOptions now = how;
    now.references = &references;
    now.isReference = isReadingReference(context);
    auto loaded = io::loadMa(context.document, std::move(*kept),
                             workspace::workspaceOf(context.session).maKept, now);
    if (!now.isReference) forgetSceneBeingRead(context);
    if (!loaded) return failWith(std::move(loaded.error()));
    for (const std::string& warning : loaded->warnings) postMessage(MessageKind::Warning, warning);
    return std::move(loaded->nodes);
  };
}

/// What goes along with the selected objects: all below them, what feeds them, and their materials.
class ExportSet {
 public:
  ExportSet(scene::Document& document, const FileWriteOptions& options)
      : graph_(document.graph()), options_(options) {}

  io::MaPart collect(const scene::SelectionList& selection) {
    for (const scene::SelectionItem& item : selection.items()) {
      if (item.isDag())
        addTree(item.path);
      else
        add(*item.node);
    }
    for (std::size_t i = 0; i < part_.nodes.size(); ++i) follow(*part_.nodes[i]);
    for (dg::Node* node : above_)
      if (seen_.insert(node).second) part_.nodes.push_back(node);
    return std::move(part_);
  }

 private:
  void add(dg::Node& node) {
    if (!node.isDefault() && seen_.insert(&node).second) part_.nodes.push_back(&node);
  }
  /// All below a path, each node once, however many instances lead to it; and what the path leads
  /// through, but nothing of what else hangs there.
  void addTree(const scene::DagPath& top) {
    for (scene::DagPath at = top; !at.isWorld(); at.pop()) {
      const scene::DagPath above = at.parent();
      if (!part_.links.emplace(at.node(), above.node()).second) break;
      if (!above.isWorld()) above_.push_back(above.node());
    }
    std::vector<dg::Node*> open{top.node()};
    while (!open.empty()) {
      dg::Node* node = open.back();
      open.pop_back();
      if (!met_.insert(node).second) continue;
      add(*node);
      const std::vector<dg::Node*>& children = scene::dagLinks(*node).children;
      for (const dg::Node* child : children) part_.links.emplace(child, node);
      open.insert(open.end(), children.rbegin(), children.rend());
    }
  }
  void follow(dg::Node& node) {
    const bool isSet = nodes::isSet(node);
    for (const dg::Graph::Connection& feed : graph_.incoming(node)) {
      dg::Node& source = *feed.source.node();
      const bool isMember = isSet && scene::isDagNode(source);
      const bool isGroup = feed.destination.attribute()->top().longName == "instObjGroups" &&
                           source.type().name != "groupId";
      const bool isHistory = source.type().isA("polyBase") || !source.type().existsWithoutOutputs;
      if (isMember || isGroup || (isHistory && !options_.withHistory)) continue;
      if (scene::isDagNode(source) && !seen_.contains(&source))
        addTree(scene::firstPath(source));
      else if (!scene::isDagNode(source))
        add(source);
    }
    if (!options_.withShading) return;
    for (const dg::Graph::Connection& use : graph_.outgoing(node)) {
      dg::Node& user = *use.destination.node();
      const bool isMaterial = nodes::isShadingGroup(user) && scene::isDagNode(node);
      const bool isInfo = user.type().isA("materialInfo") && nodes::isShadingGroup(node);
      if (isMaterial || isInfo) add(user);
    }
  }

  dg::Graph& graph_;
  const FileWriteOptions& options_;
  std::unordered_set<const dg::Node*> seen_, met_;
  std::vector<dg::Node*> above_;
  io::MaPart part_;
};

/// "Sun, Feb 03, 2019 11:53:52 AM".
std::string dateLine() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  char text[64];
  return std::string(text, std::strftime(text, sizeof text, "%a, %b %d, %Y %I:%M:%S %p", &parts));
}

/// `requires` statements for the plug-ins that made the types in use.
std::vector<std::string> requirementsOf(Context& context) {
  std::vector<std::string> statements;
  std::unordered_set<std::string> seen;
  for (const dg::NodePtr& node : context.document.graph().nodes()) {
    const std::string& plugin = node->type().pluginName;
    if (plugin.empty() || !seen.insert(node->type().name).second) continue;
    const cmd::PluginInfo* info =
        context.session.pluginLoader ? context.session.pluginLoader->info(plugin) : nullptr;
    const std::string version = info && !info->version.empty() ? info->version : "1.0";
    statements.push_back(
        fmt::format("requires -nodeType \"{}\" \"{}\" \"{}\"", node->type().name, plugin, version));
  }
  return statements;
}

Result<void> write(Context& context, const std::string& path, const FileWriteOptions& options) {
  io::MaPart part;
  if (options.onlySelected)
    part = ExportSet(context.document, options).collect(context.document.selection());
  io::MaWriteOptions how{.name = std::filesystem::path(path).filename().generic_string(),
                         .modified = dateLine(),
                         .version = kFileVersion,
                         .requirements = requirementsOf(context)};
  if (options.onlySelected) how.only = &part;
  how.withHistory = options.withHistory;
  const auto& saving = workspace::workspaceOf(context.session).sceneHooks.saving;
  if (saving.hasListeners())
    how.leavesOut = [&saving](const dg::Plug& plug) {
      bool isLeftOut = false;
      saving(plug, isLeftOut);
      return isLeftOut;
    };
  auto text = io::formatMa(context.document, workspace::workspaceOf(context.session).maKept, how);
  if (!text) return failWith(std::move(text.error()));
  HOST_TRY(io::writeFileAtomically(path, text->text));
  for (const std::string& warning : text->warnings) postMessage(MessageKind::Warning, warning);
  return {};
}

}  // namespace

FileFormat maFormat() {
  FileFormat format;
  format.name = "mayaAscii";
  format.extensions = {".ma"};
  format.isNative = true;
  format.read = read;
  format.write = write;
  format.forget = [](Context& context) { workspace::workspaceOf(context.session).maKept.clear(); };
  return format;
}

}  // namespace host::builtins
