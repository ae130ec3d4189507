#include "host/builtins/file/references.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "host/base/cancel.h"
#include "host/builtins/file/formats.h"
#include "host/builtins/file/scene_files.h"
#include "host/edits/atomically.h"

namespace host::builtins {

namespace {

using scene::ReferenceData;
namespace fs = std::filesystem;

/// The file that is being read for a reference; null while it is the scene itself.
struct ReferenceWork {
  dg::Node* reading = nullptr;
  std::string scene;  ///< the file of the scene while it is read
  std::string depth;  ///< which references are loaded, when somebody said so
  /// Place holders of references that were loaded while the present scene was read.
  std::map<const dg::Node*, std::map<int, dg::Plug>> placeHolders;
};

ReferenceWork& workOf(Context& context) {
  return workspace::workspaceOf(context.session).kept<ReferenceWork>();
}

std::string sceneFile(Context& context) {
  const std::string& read = workOf(context).scene;
  return read.empty() ? context.document.fileName() : read;
}

/// "$HOME/a.ma{2}" with what the variable holds, without the number.
std::string expanded(std::string path) {
  if (path.ends_with('}'))
    if (const std::size_t brace = path.rfind('{'); brace != std::string::npos) path.resize(brace);
  if (!path.starts_with('$')) return path;
  const std::size_t end = std::min(path.find('/'), path.size());
  std::string name = path.substr(1, end - 1);
  if (name.starts_with('{') && name.ends_with('}')) name = name.substr(1, name.size() - 2);
  const char* value = std::getenv(name.c_str());
  return value ? value + path.substr(end) : path;
}

/// Where a file is: as named, beside the file that names it, or there under its bare name, which
/// finds files of a project that was moved. Empty: nowhere.
std::string locate(Context& context, const std::string& written, const dg::Node* parent) {
  std::string around = sceneFile(context);
  if (parent)
    if (const auto data = scene::referenceData(*parent)) around = data->fields.file;
  const fs::path named = expanded(written), folder = fs::path(around).parent_path();
  std::vector<fs::path> places;
  if (named.is_relative() && !around.empty()) places.push_back(folder / named);
  places.push_back(named);
  if (!around.empty()) places.push_back(folder / named.filename());
  std::error_code ignored;
  for (const fs::path& place : places)
    if (fs::is_regular_file(place, ignored)) return absolutePath(place.string());
  return {};
}

bool isSameFile(const std::string& a, const std::string& b) {
  std::error_code ignored;
  return !a.empty() && !b.empty() && (a == b || fs::equivalent(a, b, ignored));
}

/// Whether a file is the scene itself or one of those that lead to the reference.
bool leadsToItself(Context& context, const std::string& file, const dg::Node* parent) {
  if (isSameFile(file, sceneFile(context))) return true;
  for (std::shared_ptr<dg::Node> held; parent; parent = held.get()) {
    const auto data = scene::referenceData(*parent);
    if (!data) return false;
    if (isSameFile(data->fields.file, file)) return true;
    held = data->fields.parent.lock();
  }
  return false;
}

bool hasNamespace(const scene::Document& document, const std::string& name) {
  return std::ranges::any_of(document.graph().nodes(), [&](const dg::NodePtr& node) {
    const auto data = scene::referenceData(*node);
    return node->name().starts_with(name + ":") || (data && data->fields.nameSpace == name);
  });
}

std::string freeNamespace(const scene::Document& document, const std::string& wanted) {
  if (!hasNamespace(document, wanted)) return wanted;
  for (int number = 1;; ++number)
    if (std::string name = wanted + std::to_string(number); !hasNamespace(document, name))
      return name;
}

/// Reads a file as a reference's: its nodes are noted as its own.
Result<std::vector<std::weak_ptr<dg::Node>>> readNodes(Context& context, dg::Node& reference,
                                                       const ReferenceData::Fields& fields) {
  const FileFormats& formats = formatsOf(context);
  const FileFormat* format = formats.byPath(fields.file);
  if (!format && !fields.type.empty()) format = formats.byName(fields.type);
  if (!format) return fail("'{}' is of no kind that can be read", fields.file);
  ReferenceWork& work = workOf(context);
  dg::Node* const before = std::exchange(work.reading, &reference);
  const auto read = [&]() -> Result<std::vector<std::weak_ptr<dg::Node>>> {
    auto placing = format->read(context, fields.file,
                                {.options = fields.options,
                                 .isImport = true,
                                 .nameSpace = fields.nameSpace,
                                 .clashPrefix = fields.nameSpace.empty() ? fields.prefix : "",
                                 .renamesAll = !fields.prefix.empty()});
    if (!placing) return failWith(std::move(placing.error()));
    const std::size_t count = context.document.graph().nodes().size();
    auto nodes = (*placing)(context);
    if (!nodes) return failWith(std::move(nodes.error()));
    std::vector<std::weak_ptr<dg::Node>> members;
    const auto& all = context.document.graph().nodes();
    for (std::size_t i = count; i < all.size(); ++i) {
      if (!scene::referenceOf(*all[i])) scene::setReferenceOf(*all[i], reference);
      members.push_back(all[i]);
    }
    return members;
  };
  auto members = read();
  work.reading = before;
  return members;
}

/// Connections that had to wait for the file.
void connectOutside(Context& context, ReferenceData::Fields& fields,
                    const std::map<int, dg::Plug>& placeHolders) {
  std::erase_if(fields.outside, [&](const scene::OutsideConnection& each) {
    const auto other = each.node.lock();
    const auto own = placeHolders.find(each.placeHolder);
    if (!other || !other->isAlive()) return true;
    if (own == placeHolders.end()) return false;
    auto plug = dg::parsePlug(*other, each.path);
    if (!plug) return false;
    dg::Graph& graph = context.document.graph();
    return static_cast<bool>(each.leavesFile ? graph.connect(own->second, *plug, true)
                                             : graph.connect(*plug, own->second, true));
  });
}

/// Makes the edits that wait, and keeps those that fail.
Result<void> makeEdits(Context& context, dg::Node& reference, ReferenceData::Fields fields,
                       const scene::Units& units, std::string_view outer) {
  io::AppliedEdits done =
      io::applyReferenceEdits(context.document, reference, fields.edits, units, outer);
  fields.edits = std::move(done.failed);
  connectOutside(context, fields, done.placeHolders);
  workOf(context).placeHolders[&reference] = std::move(done.placeHolders);
  if (!fields.edits.empty())
    postMessage(MessageKind::Warning,
                fmt::format("{}: {} edits of the reference could not be made: what they are for is "
                            "not in the file. They are kept.",
                            reference.name(), fields.edits.size()));
  return scene::setReferenceData(reference, std::move(fields));
}

/// Reads the file of `fields` and notes what came.
Result<ReferenceData::Fields> loaded(Context& context, dg::Node& reference,
                                     ReferenceData::Fields fields) {
  const auto parent = fields.parent.lock();
  fields.file = locate(context, fields.written, parent.get());
  if (fields.file.empty()) return fail("Reference file not found: {}", fields.written);
  if (leadsToItself(context, fields.file, parent.get()))
    return fail("'{}' refers to itself, directly or through another file: it is not loaded",
                fields.written);
  auto members = readNodes(context, reference, fields);
  if (!members) return failWith(std::move(members.error()));
  fields.members = *std::move(members);
  fields.isLoaded = true;
  fields.isDeferred = false;
  if (!scene::referenceOf(reference) && !parent)
    fields.baseline = io::referenceBaseline(context.document, fields.members);
  return fields;
}

std::vector<scene::Node*> membersOf(const ReferenceData::Fields& fields) {
  std::vector<scene::Node*> nodes;
  for (const auto& each : fields.members)
    if (const auto node = each.lock(); node && node->isAlive()) nodes.push_back(node.get());
  return nodes;
}

/// Nodes of the scene that stand below nodes of the file come to the top of the hierarchy first,
/// shapes under an object of their own.
Result<void> saveGuests(scene::Document& document, const dg::Node& reference,
                        const std::vector<scene::Node*>& members) {
  for (const scene::Node* member : members) {
    if (!scene::isDagNode(*member)) continue;
    const std::vector<scene::Node*> children = scene::dagLinks(*member).children;
    for (scene::Node* child : children)
      if (!scene::referenceOf(*child)) {
        scene::Node* parent = nullptr;
        if (!scene::isTransform(*child)) {
          auto made = document.createNode("transform", reference.name() + "fosterParent#");
          if (!made) return failWith(made.error());
          parent = made->get();
        }
        HOST_TRY(document.reparent(scene::firstPath(*child), parent));
      }
  }
  return {};
}

Result<void> deleteMembers(Context& context, const dg::Node& reference,
                           const ReferenceData::Fields& fields) {
  const std::vector<scene::Node*> members = membersOf(fields);
  HOST_TRY(saveGuests(context.document, reference, members));
  const scene::ReferenceRelease release;
  for (scene::Node* node : members)
    if (node->isLocked()) HOST_TRY(context.document.graph().setNodeLocked(*node, false));
  if (!members.empty()) HOST_TRY(context.document.deleteNodes(members));
  return {};
}

Result<std::shared_ptr<const ReferenceData>> dataOf(const dg::Node& reference) {
  auto data = scene::referenceData(reference);
  if (!data) return fail("'{}' is no reference", reference.name());
  return data;
}

/// Only what the scene itself refers to may be changed.
Result<std::shared_ptr<const ReferenceData>> ownDataOf(const dg::Node& reference) {
  if (const dg::Node* around = scene::referenceOf(reference))
    return fail("'{}' is referenced by the file of '{}', not by this scene", reference.name(),
                around->name());
  return dataOf(reference);
}

Result<void> deleteReferenceNode(Context& context, dg::Node& reference) {
  if (reference.isLocked()) HOST_TRY(context.document.graph().setNodeLocked(reference, false));
  return context.document.deleteNodes({&reference});
}

}  // namespace

Result<dg::Node*> makeReference(Context& context, const ReferenceRequest& request,
                                dg::Node* parent) {
  ReferenceData::Fields fields;
  fields.written = request.written;
  fields.prefix = request.prefix;
  fields.options = request.options;
  fields.isDeferred = request.isDeferred;
  fields.type = request.type;
  fields.shared = request.shared;
  if (!fields.shared.empty())
    postMessage(MessageKind::Warning,
                fmt::format("{}: {} of it are its own here, in its namespace; that they are to be "
                            "shared is kept for the file.",
                            request.written, fmt::join(fields.shared, " and ")));
  if (parent) fields.parent = parent->weak_from_this();
  const auto around = parent ? scene::referenceData(*parent) : nullptr;
  std::string outer = around ? around->fields.nameSpace : std::string();
  if (request.prefix.empty()) {
    std::string own = request.nameSpace;
    while (own.starts_with(':')) own.erase(0, 1);
    std::string full = outer.empty() || own.empty() ? outer + own : outer + ":" + own;
    if (!own.empty() && !request.sharesNamespace) full = freeNamespace(context.document, full);
    fields.nameSpace = full;
    fields.ownNamespace = outer.empty()                ? full
                          : full.size() > outer.size() ? full.substr(outer.size() + 1)
                                                       : "";
  } else {
    fields.nameSpace = outer;
  }
  std::string name = request.node;
  if (name.empty())
    name =
        (fields.nameSpace.empty() ? fs::path(request.written).stem().string() : fields.nameSpace) +
        "RN";
  auto node = context.document.createNode("reference", name);
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(scene::setReferenceData(**node, fields));
  HOST_TRY(context.document.graph().set((*node)->plug("fileNames").element(0), request.written));
  const std::string& depth = workOf(context).depth;
  const bool isLoaded =
      depth.empty() ? !request.isDeferred : depth == "all" || (depth == "topOnly" && !parent);
  if (!isLoaded) return node->get();
  auto done = loaded(context, **node, fields);
  if (!done && isCancelled()) return failWith(std::move(done.error()));
  if (!done) {
    postMessage(MessageKind::Warning, done.error().message);
    return node->get();
  }
  HOST_TRY(scene::setReferenceData(**node, *std::move(done)));
  return node->get();
}

Result<void> loadReference(Context& context, dg::Node& reference, const std::string& newFile) {
  auto data = dataOf(reference);
  if (!data) return failWith(std::move(data.error()));
  ReferenceData::Fields fields = (*data)->fields;
  if (!newFile.empty()) fields.written = newFile;
  const auto parent = fields.parent.lock();
  if (locate(context, fields.written, parent.get()).empty())
    return fail("Reference file not found: {}", fields.written);
  return edits::atomically(context.document, [&]() -> Result<void> {
    if (fields.isLoaded) {
      HOST_TRY(unloadReference(context, reference));
      fields = scene::referenceData(reference)->fields;
      if (!newFile.empty()) fields.written = newFile;
    }
    auto done = loaded(context, reference, std::move(fields));
    if (!done) return failWith(std::move(done.error()));
    HOST_TRY(scene::setReferenceData(reference, *done));
    HOST_TRY(context.document.graph().set(reference.plug("fileNames").element(0), done->written));
    return makeEdits(context, reference, *std::move(done), context.document.units(), {});
  });
}

Result<void> unloadReference(Context& context, dg::Node& reference) {
  auto data = dataOf(reference);
  if (!data) return failWith(std::move(data.error()));
  if (!(*data)->fields.isLoaded) return {};
  io::ReferenceDifferences all = io::referenceDifferences(context.document, reference);
  for (const std::string& warning : all.warnings) postMessage(MessageKind::Warning, warning);
  ReferenceData::Fields fields = (*data)->fields;
  HOST_TRY(deleteMembers(context, reference, fields));
  fields.edits = std::move(all.edits);
  fields.outside = std::move(all.outside);
  fields.isLoaded = false;
  fields.isDeferred = true;
  fields.members.clear();
  fields.baseline = nullptr;
  return scene::setReferenceData(reference, std::move(fields));
}

Result<void> removeReference(Context& context, dg::Node& reference) {
  auto data = ownDataOf(reference);
  if (!data) return failWith(std::move(data.error()));
  HOST_TRY(deleteMembers(context, reference, (*data)->fields));
  return deleteReferenceNode(context, reference);
}

Result<void> importReference(Context& context, dg::Node& reference) {
  auto data = ownDataOf(reference);
  if (!data) return failWith(std::move(data.error()));
  if (!(*data)->fields.isLoaded)
    return fail("'{}' is not loaded: load it first, or remove it", reference.name());
  // References of the file become the scene's own: what they are like now is where edits start.
  for (scene::Node* member : membersOf((*data)->fields)) {
    const auto inner = scene::referenceData(*member);
    if (!inner || scene::referenceOf(*member) != &reference) continue;
    ReferenceData::Fields fields = inner->fields;
    fields.parent.reset();
    fields.ownNamespace = fields.nameSpace;
    fields.baseline =
        fields.isLoaded ? io::referenceBaseline(context.document, fields.members) : nullptr;
    HOST_TRY(scene::setReferenceData(*member, std::move(fields)));
  }
  return deleteReferenceNode(context, reference);
}

Result<void> cleanReference(dg::Node& reference, int kind) {
  auto data = dataOf(reference);
  if (!data) return failWith(std::move(data.error()));
  ReferenceData::Fields fields = (*data)->fields;
  std::erase_if(fields.edits,
                [&](const scene::ReferenceEdit& edit) { return kind < 0 || edit.kind == kind; });
  if (kind < 0 || kind == scene::ReferenceEdit::Connect) fields.outside.clear();
  return scene::setReferenceData(reference, std::move(fields));
}

void forgetSceneBeingRead(Context& context) {
  workOf(context).scene.clear();
  workOf(context).placeHolders.clear();
}

bool isReadingReference(Context& context) {
  return workOf(context).reading != nullptr;
}

void setReferenceDepth(Context& context, std::string depth) {
  workOf(context).depth = std::move(depth);
}

io::MaReferenceKeeper referenceKeeper(Context& context, const std::string& path) {
  io::MaReferenceKeeper keeper;
  ReferenceWork& work = workOf(context);
  dg::Node* const parent = work.reading;
  work.scene = parent ? work.scene : path;
  if (!parent) work.placeHolders.clear();
  keeper.load = [&context, parent](const io::MaReference& each,
                                   const std::string& name) -> dg::Node* {
    auto node = makeReference(context,
                              {.written = std::string(each.path),
                               .nameSpace = std::string(each.nameSpace),
                               .prefix = std::string(each.prefix),
                               .node = name,
                               .options = std::string(each.options),
                               .type = std::string(each.type),
                               .shared = {each.shared.begin(), each.shared.end()},
                               .isDeferred = each.isDeferred,
                               .sharesNamespace = false},
                              parent);
    if (node) return *node;
    postMessage(MessageKind::Warning, node.error().message);
    return nullptr;
  };
  keeper.edit = [&context, parent](dg::Node& reference, std::vector<scene::ReferenceEdit> edits,
                                   const scene::Units& units) {
    const auto data = scene::referenceData(reference);
    if (!data) return;
    ReferenceData::Fields fields = data->fields;
    fields.edits = std::move(edits);
    const auto around = parent ? scene::referenceData(*parent) : nullptr;
    const std::string outer = around ? around->fields.nameSpace : std::string();
    const auto done = fields.isLoaded
                          ? makeEdits(context, reference, std::move(fields), units, outer)
                          : scene::setReferenceData(reference, std::move(fields));
    if (!done) postMessage(MessageKind::Warning, done.error().message);
  };
  keeper.behind = [&context](const dg::Node& reference, int placeHolder) {
    const auto& all = workOf(context).placeHolders;
    const auto own = all.find(&reference);
    if (own == all.end()) return dg::Plug();
    const auto plug = own->second.find(placeHolder);
    return plug == own->second.end() ? dg::Plug() : plug->second;
  };
  keeper.keep = [](dg::Node& reference, scene::OutsideConnection connection) {
    const auto data = scene::referenceData(reference);
    if (!data) return;
    ReferenceData::Fields fields = data->fields;
    fields.outside.push_back(std::move(connection));
    (void)scene::setReferenceData(reference, std::move(fields));
  };
  return keeper;
}

Result<dg::Node*> findReference(Context& context, const std::string& name) {
  const scene::Document& document = context.document;
  for (dg::Node* node : document.nodesNamed(name))
    if (scene::referenceData(*node)) return node;
  const std::string path = expanded(name), file = absolutePath(path);
  for (dg::Node* node : scene::references(document)) {
    const auto data = scene::referenceData(*node);
    const std::string numbered = numberedFile(document, *node);
    if (numbered == name ||
        (name.ends_with('}') ? numbered == absolutePath(name)
                             : data->fields.written == name || data->fields.file == file))
      return node;
  }
  const std::string plain = name.substr(0, name.find('.'));
  if (auto node = document.node(plain)) {
    if (dg::Node* reference = scene::referenceOf(**node)) return reference;
    return fail("'{}' does not come from a referenced file", name);
  }
  return fail("'{}' is neither a reference, a referenced file nor a node of one", name);
}

std::string numberedFile(const scene::Document& document, const dg::Node& reference,
                         bool withNumber, bool asWritten) {
  const auto data = scene::referenceData(reference);
  if (!data) return {};
  const auto nameOf = [](const ReferenceData& each) {
    return each.fields.file.empty() ? each.fields.written : each.fields.file;
  };
  std::string path = asWritten ? data->fields.written : nameOf(*data);
  if (!withNumber) return path;
  int number = 0;
  for (const dg::Node* node : scene::references(document)) {
    if (node == &reference) break;
    if (nameOf(*scene::referenceData(*node)) == nameOf(*data)) ++number;
  }
  return number == 0 ? path : fmt::format("{}{{{}}}", path, number);
}

}  // namespace host::builtins
