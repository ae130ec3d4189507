#include "host/io/ma/ma_loader.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "host/base/cancel.h"
#include "host/io/ma/ma_attributes.h"
#include "host/io/ma/ma_mesh_writer.h"
#include "host/io/ma/ma_node_writer.h"
#include "host/io/ma/ma_numbers.h"
#include "host/io/ma/ma_passes.h"
#include "host/io/ma/ma_plugs.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/set_group.h"
#include "host/scene/dag_paths.h"

namespace host::io {
namespace {

using dg::Node;
using dg::Plug;

/// The names of a path, from the top, without the colon of the root namespace.
struct FilePath {
  std::vector<std::string_view> names;
  bool isAbsolute = false;

  explicit FilePath(std::string_view text) {
    isAbsolute = text.starts_with('|');
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('|'), text.size());
      std::string_view name = text.substr(0, end);
      text.remove_prefix(std::min(end + 1, text.size()));
      while (name.starts_with(':')) name.remove_prefix(1);
      if (!name.empty()) names.push_back(name);
    }
  }
  [[nodiscard]] std::string_view leaf() const {
    return names.empty() ? std::string_view() : names.back();
  }
};

/// "node.attribute": the path of the node, and the attribute.
std::pair<std::string_view, std::string_view> splitPlug(std::string_view text) {
  const std::size_t dot = text.find('.');
  if (dot == std::string_view::npos) return {text, {}};
  return {text.substr(0, dot), text.substr(dot + 1)};
}

class Loader {
 public:
  Loader(scene::Document& document, MaFile file, MaKept& kept, const MaLoadOptions& options)
      : document_(document),
        file_(std::move(file)),
        kept_(kept),
        options_(options),
        attributes_(document, file_.units,
                    [this](MaAttributes::Unused line) { keepLine(std::move(line)); }) {
    result_.warnings = std::move(file_.warnings);
  }

  Result<MaLoaded> load() {
    collectNames();
    if (!options_.isImport) findStartupCameras();
    if (!options_.isImport) {
      document_.setUnits(file_.units);
      document_.fileInfo = file_.fileInfo;
    }
    keepStatements();
    for (const MaReference& reference : file_.references) {
      if (isCancelled()) return cancelled();
      addReference(reference);
    }
    for (const MaNode& node : file_.nodes) {
      if (isCancelled()) return cancelled();
      HOST_TRY(addNode(node));
    }
    for (const MaInstance& instance : file_.instances) addInstance(instance);
    for (auto& [reference, edits] : edits_)
      options_.references->edit(*reference, std::move(edits), file_.units);
    for (const MaConnection& connection : file_.connections) connect(connection);
    for (const MaRelationship& relationship : file_.relationships) relate(relationship);
    passing_ = passMeshesThrough(document_, kept_);
    nodes::placeDeformedGeometry(document_);
    attributes_.lock();
    for (Node* node : locked_) HOST_TRY(document_.graph().setNodeLocked(*node, true));
    summarize();
    return std::move(result_);
  }

 private:
  // Names.

  void collectNames() {
    for (const dg::NodePtr& node : document_.graph().nodes()) {
      if (options_.isReference) break;
      if (options_.isImport) takenNames_.insert(node->name());
      takenUuids_.insert(node->uuid());
    }
    for (const MaNode& node : file_.nodes)
      if (!node.parent.empty()) parentNames_.insert(FilePath(node.parent).leaf());
    for (const MaInstance& instance : file_.instances) {
      if (!instance.parent.empty()) parentNames_.insert(FilePath(instance.parent).leaf());
      placedNames_.insert(FilePath(instance.child).leaf());
    }
  }

  /// What a node of the file is to be called in the document.
  [[nodiscard]] std::string nameFor(std::string_view fileName) const {
    while (fileName.starts_with(':')) fileName.remove_prefix(1);
    std::string name(fileName);
    if (!options_.isImport) return name;
    if (!options_.nameSpace.empty()) return options_.nameSpace + ":" + name;
    if (options_.clashPrefix.empty()) return name;
    return options_.renamesAll || takenNames_.count(name) != 0 ? options_.clashPrefix + "_" + name
                                                               : name;
  }

  [[nodiscard]] bool isBelow(const Node& node, const FilePath& path, std::size_t names) const {
    const std::vector<Node*>& parents = scene::dagLinks(node).parents;
    if (names == 0) return !path.isAbsolute || std::ranges::find(parents, nullptr) != parents.end();
    return std::ranges::any_of(parents, [&](const Node* parent) {
      if (!parent) return false;
      const auto known = fileNames_.find(parent);
      const std::string_view name =
          known == fileNames_.end() ? std::string_view(parent->name()) : known->second;
      return name == path.names[names - 1] && isBelow(*parent, path, names - 1);
    });
  }

  /// The node that a path of the file means: one of the file's own, or a default node of the
  /// document. Null when there is none.
  [[nodiscard]] Node* find(std::string_view text) const {
    const FilePath path(text);
    if (path.names.empty()) return nullptr;
    const auto own = nodes_.find(path.leaf());
    if (own != nodes_.end()) {
      for (Node* node : own->second)
        if ((path.names.size() == 1 && !path.isAbsolute) ||
            isBelow(*node, path, path.names.size() - 1))
          return node;
      return nullptr;
    }
    for (Node* node : document_.nodesNamed(path.leaf()))
      if (node->isDefault() || !options_.isImport) return node;
    return nullptr;
  }

  [[nodiscard]] std::string_view fileName(const Node& node) const {
    const auto known = fileNames_.find(&node);
    return known == fileNames_.end() ? std::string_view(node.name()) : known->second;
  }

  /// The number of a node's first place above which the names of a path stand, `names` of them.
  [[nodiscard]] std::optional<std::uint64_t> placeOf(const Node& node, const FilePath& path,
                                                     std::size_t names) const {
    if (names == 0 && !path.isAbsolute) return 0;
    std::uint64_t before = 0;
    for (const Node* parent : scene::dagLinks(node).parents) {
      if (names == 0 && !parent) return before;
      if (names > 0 && parent && fileName(*parent) == path.names[names - 1])
        if (const auto above = placeOf(*parent, path, names - 1)) return before + *above;
      before += parent ? scene::pathCount(*parent) : 1;
    }
    return std::nullopt;
  }

  /// Which of a node's places a path means.
  [[nodiscard]] Index instanceOf(const Node& node, std::string_view text) const {
    const FilePath path(text);
    if (path.names.size() < 2 || !scene::isDagNode(node) || scene::hasOnePath(node)) return 0;
    return static_cast<Index>(placeOf(node, path, path.names.size() - 1).value_or(0));
  }

  // Other files.

  void addReference(const MaReference& reference) {
    const bool isKept = !options_.references;
    if (isKept && !options_.isImport) kept_.early.emplace_back(reference.raw);
    if (isKept) return warn(reference.offset, "references to other files are not followed here");
    const std::string_view name = FilePath(reference.node).leaf();
    Node* node = options_.references->load(reference, nameFor(name));
    if (!node) return warn(reference.offset, "this reference could not be made");
    references_[name] = node;
    fileNames_[node] = name;
    const auto data = scene::referenceData(*node);
    if (!data) return;
    // The rest of the file knows its nodes by the names that it gave them.
    const std::string& actual = data->fields.nameSpace;
    for (const auto& member : data->fields.members) {
      const auto each = member.lock();
      if (!each) continue;
      std::string_view rest = each->name();
      if (!actual.empty() && rest.starts_with(actual + ":")) rest.remove_prefix(actual.size() + 1);
      const std::string& known = referencedNames_.emplace_back(
          reference.nameSpace.empty() ? std::string(rest)
                                      : fmt::format("{}:{}", reference.nameSpace, rest));
      nodes_[known].push_back(each.get());
      fileNames_[each.get()] = known;
    }
  }

  /// Edits wait until all nodes are there; the place holders are counted anew.
  Result<void> addReferenceLines(const MaNode& node) {
    std::vector<MaLine> others;
    for (const MaLine& line : node.lines) {
      const auto* value = std::get_if<MaSetAttr>(&line);
      if (value && value->type == "dataReferenceEdits")
        edits_.emplace_back(current_, readReferenceEdits(value->values));
      else if (!value ||
               !(value->path.starts_with("phl") || value->path.starts_with("placeHolder")))
        others.push_back(line);
    }
    if (!others.empty()) attributes_.apply(*current_, others);
    return {};
  }

  /// What a connection to a place holder leads to. False when its file is not there: it is kept.
  bool findBehind(Node& end, std::string_view path, Node& other, std::string_view otherPath,
                  bool leavesFile, Plug& plug) {
    const int number = options_.references ? placeHolderNumber(path) : -1;
    if (number < 0 || end.type().name != "reference") return true;
    plug = options_.references->behind(end, number);
    if (!plug.isNull()) return true;
    options_.references->keep(
        end, {number, other.weak_from_this(), std::string(otherPath), leavesFile, {}});
    return false;
  }

  // Nodes.

  /// Default cameras by the names that the file has for their transforms: a camera that was renamed
  /// still says which one it is.
  void findStartupCameras() {
    for (const MaNode& node : file_.nodes) {
      if (!node.isShared || node.type != "camera") continue;
      for (const MaLine& line : node.lines)
        if (const auto* value = std::get_if<MaSetAttr>(&line);
            value && (value->path == "imn" || value->path == "imageName") &&
            value->values.size() == 1)
          startupCameras_[FilePath(node.parent).leaf()] = value->values.front().text;
    }
  }

  /// The default camera, or its shape, that goes by another name in the file.
  Node* renamedCamera(const MaNode& node) const {
    if (!node.isShared || options_.isImport) return nullptr;
    if (node.type == "camera") {
      Node* parent = find(node.parent);
      if (!parent || !parent->isDefault()) return nullptr;
      for (Node* child : scene::dagLinks(*parent).children)
        if (child->isDefault() && child->type().name == "camera") return child;
      return nullptr;
    }
    const auto camera = startupCameras_.find(FilePath(node.name).leaf());
    if (node.type != "transform" || camera == startupCameras_.end()) return nullptr;
    for (Node* each : document_.nodesNamed(camera->second))
      if (each->isDefault() && each->type().name == "transform") return each;
    return nullptr;
  }

  /// A default node of the hierarchy goes where the file has it, behind those that came before.
  Result<void> putInPlace(const MaNode& node, Node& made) {
    const std::string_view name = FilePath(node.name).leaf();
    if (made.name() != name) {
      auto renamed = document_.rename(made, name);
      if (!renamed) return failWith(std::move(renamed).error());
    }
    Node* parent = node.parent.empty() ? nullptr : find(node.parent);
    const std::vector<Node*>& parents = scene::dagLinks(made).parents;
    if (parents.size() != 1) return {};
    if (parents.front() != parent && scene::isTransform(made))
      return document_.reparent(scene::firstPath(made), parent);
    return document_.reorder(made, parents.front(), std::numeric_limits<int>::max());
  }

  Node* existing(const MaNode& node) const {
    const std::string_view name = FilePath(node.name).leaf();
    if (node.type == "reference")
      if (const auto found = references_.find(name); found != references_.end())
        return found->second;
    if (Node* camera = renamedCamera(node)) return camera;
    for (Node* each : document_.nodesNamed(name))
      if (each->type().name == node.type && (each->isDefault() || node.isShared)) return each;
    return nullptr;
  }

  Result<void> addNode(const MaNode& node) {
    Node* made = nullptr;
    bool isThere = true;
    if (node.type.empty()) {
      made = find(node.name);
      if (!made) {
        keepSelected(node);
        return {};
      }
    } else if ((made = existing(node)) == nullptr) {
      auto created = create(node);
      if (!created) return failWith(std::move(created).error());
      made = *created;
      isThere = false;
      result_.nodes.push_back(made);
    }
    if (isThere && !node.type.empty() && !options_.isImport && scene::isDagNode(*made))
      HOST_TRY(putInPlace(node, *made));
    if (!node.type.empty()) {
      nodes_[FilePath(node.name).leaf()].push_back(made);
      fileNames_[made] = FilePath(node.name).leaf();
    }
    if (!node.uuid.empty() && !options_.isReference && made->uuid() != node.uuid &&
        takenUuids_.insert(std::string(node.uuid)).second)
      document_.graph().setUuid(*made, std::string(node.uuid));
    current_ = made;
    if (options_.references && made->type().name == "reference") return addReferenceLines(node);
    // What comes into a scene leaves its settings and cameras alone.
    if (isThere && options_.isImport) return {};
    if (node.mesh && !isBlank(*node.mesh) && made->plug("inMesh"))
      HOST_TRY(nodes::setStoredMesh(*made, *node.mesh));
    attributes_.apply(*made, node.lines);
    if (node.isLocked && !made->isDefault()) locked_.push_back(made);
    return {};
  }

  Result<Node*> create(const MaNode& node) {
    const dg::NodeType* type = document_.types().find(node.type);
    const bool isKnown = type && !type->isAbstract;
    Node* parent = node.parent.empty() ? nullptr : find(node.parent);
    if (!node.parent.empty() && (!parent || !scene::isTransform(*parent))) {
      warn(node.offset, fmt::format("'{}' has no parent '{}'", node.name, node.parent));
      parent = nullptr;
    }
    std::string_view typeName = node.type;
    if (!isKnown) {
      const std::string_view name = FilePath(node.name).leaf();
      // What has children is a transform, and what has places but begins under the world.
      const bool isTransform =
          parentNames_.count(name) != 0 || (!parent && placedNames_.count(name) != 0);
      typeName = isTransform ? "unknownTransform" : parent ? "unknownDag" : "unknown";
      auto& seen = unknownTypes_[node.type];
      if (seen.count++ == 0) seen.offset = node.offset;
    } else if (!type->isA("dagNode")) {
      parent = nullptr;
    }
    const std::string name = nameFor(node.name);
    auto made = document_.createNode(typeName, name, parent);
    // A name without a legal character is no name.
    if (!made) made = document_.createNode(typeName, {}, parent);
    if (!made) return fail("{}", file_.message(node.offset, made.error().message));
    if (!isKnown) kept_.of(**made).type = node.type;
    return made->get();
  }

  void addInstance(const MaInstance& instance) {
    Node* child = find(instance.child);
    if (instance.parent.empty() && !instance.isWorld) return moveToEnd(instance, child);
    Node* parent = instance.isWorld ? nullptr : find(instance.parent);
    const bool isPlace = instance.isWorld || (parent && scene::isTransform(*parent));
    if (!child || !isPlace || !scene::isDagNode(*child))
      return warn(instance.offset,
                  fmt::format("'{}' cannot be placed under '{}' as well", instance.child,
                              instance.isWorld ? "the world" : instance.parent));
    if (auto done = document_.addInstance(*child, parent); !done)
      warn(instance.offset, std::move(done).error().message);
  }

  void moveToEnd(const MaInstance& instance, Node* child) {
    const std::size_t bar = instance.child.rfind('|');
    Node* parent =
        bar == std::string_view::npos || bar == 0 ? nullptr : find(instance.child.substr(0, bar));
    if (!child || !scene::isDagNode(*child) || (bar != 0 && !parent))
      return warn(instance.offset, fmt::format("there is no '{}' to move", instance.child));
    if (auto done = document_.reorder(*child, parent, std::numeric_limits<int>::max()); !done)
      warn(instance.offset, std::move(done).error().message);
  }

  // Connections.

  void connect(const MaConnection& connection) {
    const auto [fromName, fromPath] = splitPlug(connection.source);
    const auto [toName, toPath] = splitPlug(connection.destination);
    Node* from = find(fromName);
    Node* to = find(toName);
    if (!from || !to) {
      if (!options_.isImport) kept_.late.emplace_back(connection.raw);
      return warn(connection.offset, fmt::format("there is no '{}'", from ? toName : fromName));
    }
    Plug source = findEnd(*from, fromPath, instanceOf(*from, fromName));
    Plug destination = findEnd(*to, toPath, instanceOf(*to, toName));
    if (!findBehind(*from, fromPath, *to, toPath, true, source)) return;
    Node& actual = source.isNull() ? *from : *source.node();
    const std::string actualPath = source.isNull() ? std::string(fromPath) : filePath(source);
    if (!findBehind(*to, toPath, actual, actualPath, false, destination)) return;
    if (source.isNull() || destination.isNull()) {
      ++keptConnections_;
      return keep(*from, fromPath, *to, toPath, connection.toNextAvailable);
    }
    if (document_.graph().source(destination) == source) return;
    if (destination.isArray() && (connection.toNextAvailable || !source.isArray()))
      destination = nodes::freeElement(destination);
    if (auto done = document_.graph().connect(source, destination, true); !done) {
      warn(connection.offset, std::move(done).error().message);
      return keep(*from, fromPath, *to, toPath, connection.toNextAvailable);
    }
    if (connection.isLocked) attributes_.lockLater(destination);
  }

  void keep(Node& from, std::string_view fromPath, Node& to, std::string_view toPath,
            bool toNextAvailable) {
    kept_.connections.push_back({from.weak_from_this(), to.weak_from_this(), std::string(fromPath),
                                 std::string(toPath), toNextAvailable});
  }

  /// A link joins an object and a light in one element; the pair may be there already.
  void relate(const MaRelationship& relationship) {
    const bool isShadow = relationship.kind == "shadowLink";
    Node* linker = find(relationship.node);
    const auto end = [&](std::string_view text) {
      const auto [name, path] = splitPlug(text);
      Node* node = find(name);
      return node ? findEnd(*node, path, instanceOf(*node, name)) : Plug();
    };
    const Plug object = end(relationship.object), light = end(relationship.light);
    Plug links;
    if (linker && (isShadow || relationship.kind == "link"))
      links = linker->plug(isShadow ? "shadowLink" : "link");
    if (links.isNull() || object.isNull() || light.isNull()) {
      if (!options_.isImport) kept_.late.emplace_back(relationship.raw);
      return warn(relationship.offset, "this relationship has no place here: kept as it is");
    }
    dg::Graph& graph = document_.graph();
    const std::string_view lightName = isShadow ? "shadowLight" : "light";
    const std::string_view objectName = isShadow ? "shadowObject" : "object";
    const auto child = [&](const Plug& element, std::string_view name) {
      return element.child(links.attribute()->find(name));
    };
    for (const Plug& use : graph.destinations(object)) {
      if (use.node() != linker || !use.attribute()->isNamed(objectName)) continue;
      if (graph.source(child(use.parent(), lightName)) == light) return;
    }
    const Plug element = nodes::freeElement(links);
    (void)graph.connect(light, child(element, lightName));
    (void)graph.connect(object, child(element, objectName));
  }

  // What has no place.

  void keepStatements() {
    const auto add = [](std::vector<std::string>& all, std::string_view statement) {
      if (std::ranges::find(all, statement) == all.end()) all.emplace_back(statement);
    };
    for (const std::string_view each : file_.requirements) add(kept_.requirements, each);
    if (options_.isImport) return;
    for (const std::string_view each : file_.early) kept_.early.emplace_back(each);
    for (const std::string_view each : file_.late) kept_.late.emplace_back(each);
  }

  void keepLine(MaAttributes::Unused line) {
    if (!line.raw.empty()) kept_.of(*current_).lines.emplace_back(line.raw);
    if (!line.reason.empty()) return warn(line.offset, std::move(line.reason));
    if (!MaAttributes::isUnknown(*current_))
      unknownAttributes_[current_->type().name].emplace(
          line.path.substr(0, line.path.find_first_of("[.")));
  }

  void keepSelected(const MaNode& node) {
    if (options_.isImport) return;
    std::string block = "select -ne ";
    // A bare word may read as a number that is none: "Inf".
    if (node.name.starts_with(':'))
      block += node.name;
    else
      appendQuoted(block, node.name);
    for (const MaLine& line : node.lines)
      block += fmt::format(";\n\t{}", std::visit([](const auto& each) { return each.raw; }, line));
    kept_.selected.push_back(std::move(block));
  }

  void warn(std::size_t offset, std::string reason) {
    if (++warningCount_ > kMostWarnings) return;
    result_.warnings.push_back(file_.message(offset, reason));
  }

  void summarize() {
    for (const auto& [type, seen] : unknownTypes_)
      warn(seen.offset,
           fmt::format("the node type '{}' is not known: its nodes ({}) are kept, but {}", type,
                       seen.count,
                       passing_.contains(std::string(type)) ? "let meshes through unchanged"
                                                            : "do nothing"));
    for (const auto& [type, names] : unknownAttributes_) {
      std::string list;
      for (const std::string_view name : names) {
        // Every mesh has lines about these; they are no news.
        if (name == "covm" || name == "cdvm") continue;
        list += (list.empty() ? "" : " ") + std::string(name);
      }
      if (!list.empty())
        result_.warnings.push_back(
            fmt::format("{}: attributes of {} nodes that mean nothing here are kept: {}",
                        file_.name, type, list));
    }
    if (keptConnections_ > 0)
      result_.warnings.push_back(
          fmt::format("{}: {} connections of attributes that mean nothing here are kept",
                      file_.name, keptConnections_));
    if (warningCount_ > kMostWarnings)
      result_.warnings.push_back(
          fmt::format("{}: {} more warnings", file_.name, warningCount_ - kMostWarnings));
  }

  static constexpr std::size_t kMostWarnings = 100;
  struct Seen {
    std::size_t count = 0, offset = 0;
  };

  scene::Document& document_;
  MaFile file_;
  MaKept& kept_;
  const MaLoadOptions& options_;
  MaAttributes attributes_;
  MaLoaded result_;
  Node* current_ = nullptr;
  std::vector<Node*> locked_;
  std::unordered_set<std::string> takenNames_, takenUuids_;
  std::unordered_set<std::string_view> parentNames_, placedNames_;  ///< that have children, places
  std::unordered_map<std::string_view, std::vector<Node*>> nodes_;  ///< by name in the file
  std::unordered_map<const Node*, std::string_view> fileNames_;
  std::map<std::string_view, Seen> unknownTypes_;
  std::map<std::string, std::set<std::string_view>> unknownAttributes_;
  std::size_t keptConnections_ = 0, warningCount_ = 0;
  std::unordered_map<std::string, bool> passing_;
  std::unordered_map<std::string_view, std::string_view> startupCameras_;
  std::unordered_map<std::string_view, Node*> references_;  ///< by name in the file
  std::deque<std::string> referencedNames_;
  std::vector<std::pair<Node*, std::vector<scene::ReferenceEdit>>> edits_;
};

}  // namespace

Result<MaLoaded> loadMa(scene::Document& document, MaFile file, MaKept& kept,
                        const MaLoadOptions& options) {
  return Loader(document, std::move(file), kept, options).load();
}

}  // namespace host::io
