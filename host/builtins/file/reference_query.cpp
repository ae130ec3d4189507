// referenceQuery, and what `file` does to references.
#include "host/builtins/file/reference_query.h"

#include <algorithm>
#include <filesystem>

#include "host/builtins/file/references.h"
#include "host/builtins/file/scene_files.h"
#include "host/builtins/file/script_nodes.h"
#include "host/edits/atomically.h"
#include "host/scene/name_index.h"

namespace host::builtins {

namespace {

using scene::ReferenceData;

/// What -editCommand names; -1 for none of them.
int editKind(const std::string& command) {
  static constexpr const char* kCommands[] = {"parent",         "addAttr",    "setAttr",
                                              "disconnectAttr", "deleteAttr", "connectAttr"};
  const auto* found = std::ranges::find(kCommands, command);
  return found == std::end(kCommands) ? -1 : static_cast<int>(found - std::begin(kCommands));
}

std::string fileOf(Context& context, const dg::Node& reference, const ParsedArgs& args) {
  std::string path = numberedFile(context.document, reference, !args.has("withoutCopyNumber"),
                                  args.has("unresolvedName"));
  return args.has("shortName") ? std::filesystem::path(path).filename().generic_string() : path;
}

/// The reference whose file has this one; null at the scene.
dg::Node* parentOf(const ReferenceData& data) {
  const auto parent = data.fields.parent.lock();
  return parent && parent->isAlive() ? parent.get() : nullptr;
}

dg::Node& topOf(dg::Node& reference) {
  dg::Node* above = scene::topReferenceOf(reference);
  return above ? *above : reference;
}

/// Edits that the scene made, of a reference and those in its file. Those that failed are kept in
/// the reference; what could be made is found by comparing.
CommandResult edits(Context& context, dg::Node& reference, const ParsedArgs& args) {
  dg::Node& top = topOf(reference);
  const auto data = scene::referenceData(top);
  std::vector<scene::ReferenceEdit> all = io::referenceDifferences(context.document, top).edits;
  const std::size_t failedCount = data->fields.edits.size();
  const std::size_t made = all.size() - std::min(failedCount, all.size());
  const bool withFailed = args.boolean("failedEdits"),
             withMade = args.has("successfulEdits") ? args.boolean("successfulEdits") : !withFailed;
  const std::string command = args.text("editCommand");
  std::vector<std::string> answer;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const bool failed = i >= made;
    if (!data->fields.isLoaded ? false : failed ? !withFailed : !withMade) continue;
    if (&top != &reference && all[i].reference != reference.name()) continue;
    if (!command.empty() && all[i].kind != editKind(command)) continue;
    if (args.has("editStrings")) {
      answer.push_back(io::editString(all[i]));
      continue;
    }
    for (const std::string& target : io::editTargets(all[i])) {
      const std::size_t dot = target.find('.');
      const std::string node = target.substr(0, dot),
                        attribute = dot == std::string::npos ? "" : target.substr(dot + 1);
      const bool nodes = args.has("editNodes"), attributes = args.has("editAttrs");
      answer.push_back(nodes && attributes ? target : attributes ? attribute : node);
    }
  }
  return toValue(std::move(answer));
}

CommandResult nodesOfReference(const ReferenceData& data, const ParsedArgs& args) {
  std::vector<std::string> names;
  for (const auto& each : data.fields.members)
    if (const auto node = each.lock(); node && node->isAlive())
      names.push_back(args.has("dagPath") ? nodeName(*node) : node->name());
  return toValue(std::move(names));
}

CommandResult aboutNode(Context& context, const std::string& target) {
  auto found = context.document.resolve(target);
  if (!found) return failWith(found.error());
  const bool isFrom = std::ranges::any_of(found->items(), [](const scene::SelectionItem& item) {
    return scene::referenceOf(*item.node) != nullptr;
  });
  return mel::Value(isFrom);
}

CommandResult namespaceAnswer(const ReferenceData& data, const ParsedArgs& args) {
  std::string name = data.fields.nameSpace;
  if (args.has("parentNamespace")) {
    const std::size_t colon = name.rfind(':');
    name = colon == std::string::npos ? "" : name.substr(0, colon);
  }
  if (args.has("shortName")) return mel::Value(name.substr(name.rfind(':') + 1));
  return mel::Value(":" + name);
}

CommandResult referenceQuery(Context& context, const ParsedArgs& args) {
  const std::string target = args.firstObject();
  if (args.has("isNodeReferenced")) return aboutNode(context, target);
  auto found = findReference(context, target);
  if (!found) return fail("referenceQuery: {}.", found.error().message);
  dg::Node* reference = *found;
  const auto data = scene::referenceData(*reference);
  if (args.has("isLoaded")) return mel::Value(data->fields.isLoaded);
  if (args.has("editStrings") || args.has("editNodes") || args.has("editAttrs"))
    return edits(context, *reference, args);
  if (args.has("nodes")) return nodesOfReference(*data, args);
  if (args.has("namespace") || args.has("parentNamespace")) return namespaceAnswer(*data, args);
  if (args.has("child")) {
    std::vector<std::string> names;
    for (dg::Node* each : scene::references(context.document))
      if (parentOf(*scene::referenceData(*each)) == reference)
        names.push_back(args.has("filename") ? fileOf(context, *each, args) : each->name());
    return toValue(std::move(names));
  }
  if (args.has("parent")) reference = parentOf(*data);
  if (args.has("topReference")) reference = &topOf(*reference);
  if (!reference) return mel::Value(std::string());
  if (args.has("filename")) return mel::Value(fileOf(context, *reference, args));
  if (args.has("referenceNode") || args.has("parent") || args.has("topReference"))
    return mel::Value(reference->name());
  return fail(
      "referenceQuery: say what to query: -filename, -referenceNode, -nodes, -isLoaded, ...");
}

/// The reference that a command is about: -referenceNode, else the name that is given.
Result<dg::Node*> named(Context& context, const ParsedArgs& args) {
  const std::string name =
      args.has("referenceNode") ? args.text("referenceNode") : args.firstObject();
  if (name.empty()) return fail("name the reference by -referenceNode or by its file");
  return findReference(context, name);
}

}  // namespace

CommandResult referenceFile(Context& context, const ParsedArgs& args, const std::string& path) {
  if (path.empty()) return fail("file: name the file to refer to.");
  if (!std::filesystem::exists(absolutePath(path)) && !path.starts_with('$'))
    return fail("File not found: {}", path);
  if (std::filesystem::is_directory(absolutePath(path)))
    return fail("file: '{}' is a folder, not a scene.", path);
  if (!context.document.fileName().empty() && absolutePath(path) == context.document.fileName())
    return fail("file: '{}' is the open scene: it can't refer to itself.", path);
  ReferenceRequest request{.written = path.starts_with('$') ? path : absolutePath(path),
                           .nameSpace = args.has("namespace")
                                            ? args.text("namespace")
                                            : std::filesystem::path(path).stem().string(),
                           .prefix = {},
                           .node = args.text("referenceNode"),
                           .options = args.text("options"),
                           .type = args.has("type") ? args.text("type") : fileType(context, path),
                           .shared = args.texts("sharedNodes"),
                           .isDeferred = args.boolean("deferReference"),
                           .sharesNamespace = args.boolean("mergeNamespacesOnClash")};
  if (args.has("renamingPrefix")) request.prefix = args.text("renamingPrefix");
  if (request.nameSpace == ":") request.nameSpace.clear();
  request.nameSpace = scene::legalName(request.nameSpace);
  std::vector<std::string> made;
  const std::size_t before = context.document.graph().nodes().size();
  auto done = edits::atomically(context.document, [&]() -> Result<dg::Node*> {
    auto node = makeReference(context, request, nullptr);
    if (!node || !args.has("groupReference")) return node;
    auto group = context.document.createNode(
        "transform", args.has("groupName") ? args.text("groupName") : "group#");
    if (!group) return failWith(group.error());
    for (const auto& member : scene::referenceData(**node)->fields.members)
      if (const auto each = member.lock();
          each && scene::isTransform(*each) && scene::dagLinks(*each).parents.front() == nullptr)
        HOST_TRY(context.document.reparent(scene::firstPath(*each), group->get()));
    return node;
  });
  if (!done) return failWith(std::move(done.error()));
  admitExpressions(context, false);
  if (!args.has("returnNewNodes")) return mel::Value(numberedFile(context.document, **done));
  const auto& all = context.document.graph().nodes();
  for (std::size_t i = before; i < all.size(); ++i) made.push_back(nodeName(*all[i]));
  return toValue(std::move(made));
}

namespace {

/// Sets which references are loaded for as long as it lives.
class Depth {
 public:
  Depth(Context& context, const ParsedArgs& args) : context_(context) {
    setReferenceDepth(context, args.has("loadNoReferences")    ? "none"
                               : args.has("loadAllReferences") ? "all"
                                                               : args.text("loadReferenceDepth"));
  }
  ~Depth() { setReferenceDepth(context_, {}); }
  Depth(const Depth&) = delete;
  Depth& operator=(const Depth&) = delete;

 private:
  Context& context_;
};

}  // namespace

std::shared_ptr<void> referenceDepthScope(Context& context, const ParsedArgs& args) {
  return std::make_shared<Depth>(context, args);
}

std::optional<CommandResult> editReferences(Context& context, const ParsedArgs& args) {
  const auto depth = referenceDepthScope(context, args);
  if (args.has("reference")) return referenceFile(context, args, args.firstObject());
  const bool loads = args.has("loadReference"), unloads = args.has("unloadReference"),
             removes = args.has("removeReference"), imports = args.has("importReference"),
             cleans = args.has("cleanReference");
  if (!loads && !unloads && !removes && !imports && !cleans) return std::nullopt;
  auto found = loads     ? findReference(context, args.text("loadReference"))
               : unloads ? findReference(context, args.text("unloadReference"))
               : cleans  ? findReference(context, args.text("cleanReference"))
                         : named(context, args);
  if (!found) return fail("file: {}.", found.error().message);
  dg::Node& reference = **found;
  const std::string path = numberedFile(context.document, reference);
  Result<void> done;
  if (loads) {
    done = loadReference(context, reference,
                         args.hasObjects() ? absolutePath(args.firstObject()) : std::string());
  } else {
    done = edits::atomically(context.document, [&]() -> Result<void> {
      if (unloads) return unloadReference(context, reference);
      if (removes) return removeReference(context, reference);
      if (imports) return importReference(context, reference);
      return cleanReference(reference,
                            args.has("editCommand") ? editKind(args.text("editCommand")) : -1);
    });
  }
  if (!done) return fail("file: {}.", done.error().message);
  if (loads) admitExpressions(context, false);
  return loads ? mel::Value(numberedFile(context.document, reference)) : mel::Value(path);
}

std::optional<CommandResult> queryReferences(Context& context, const ParsedArgs& args) {
  if (args.has("reference")) {
    std::vector<std::string> files;
    // Those of the scene itself; with the name of a file, those in that.
    dg::Node* around = nullptr;
    if (args.hasObjects()) {
      auto found = findReference(context, args.firstObject());
      if (!found) return fail("file: {}.", found.error().message);
      around = *found;
    }
    for (dg::Node* each : scene::references(context.document))
      if (parentOf(*scene::referenceData(*each)) == around)
        files.push_back(numberedFile(context.document, *each));
    return toValue(std::move(files));
  }
  const bool isAbout = args.has("referenceNode") || args.has("namespace") ||
                       args.has("deferReference") || args.has("parentNamespace");
  if (!isAbout) return std::nullopt;
  auto found = findReference(context, args.firstObject());
  if (!found) return fail("file: {}.", found.error().message);
  const auto data = scene::referenceData(**found);
  if (args.has("referenceNode")) return mel::Value((*found)->name());
  if (args.has("deferReference")) return mel::Value(!data->fields.isLoaded);
  const std::string& name = data->fields.nameSpace;
  if (args.has("namespace")) return mel::Value(name.substr(name.rfind(':') + 1));
  const std::size_t colon = name.rfind(':');
  return toValue({colon == std::string::npos ? "" : name.substr(0, colon)});
}

void registerReferenceQuery(CommandRegistry& registry) {
  defineQuery(registry, "referenceQuery",
              Syntax()
                  .flag("inr", "isNodeReferenced")
                  .flag("il", "isLoaded")
                  .flag("f", "filename")
                  .flag("n", "nodes")
                  .flag("rfn", "referenceNode")
                  .flag("ns", "namespace")
                  .flag("pns", "parentNamespace")
                  .flag("sn", "shortName")
                  .flag("un", "unresolvedName")
                  .flag("wcn", "withoutCopyNumber")
                  .flag("tr", "topReference")
                  .flag("p", "parent")
                  .flag("ch", "child")
                  .flag("es", "editStrings")
                  .flag("en", "editNodes")
                  .flag("ea", "editAttrs")
                  .flag("ec", "editCommand", {ArgType::String})
                  .flag("fld", "failedEdits", {ArgType::Bool})
                  .flag("scs", "successfulEdits", {ArgType::Bool})
                  .flag("dp", "dagPath")
                  .strings(1, 1),
              referenceQuery);
}

}  // namespace host::builtins
