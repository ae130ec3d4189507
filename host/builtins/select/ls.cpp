#include <algorithm>
#include <unordered_set>
#include <utility>

#include "host/builtins/common/command.h"
#include "host/builtins/select/foreign_types.h"
#include "host/builtins/select/selection_order.h"
#include "host/nodes/mesh_components.h"
#include "host/scene/dag_paths.h"
#include "host/scene/lattice_points.h"
#include "host/scene/references.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using scene::DagPath;
using scene::SelectionItem;

/// What `ls` goes through: an item of a selection, or a node with one of its paths.
class Lister {
 public:
  Lister(Context& context, const ParsedArgs& args)
      : session_(context.session), document_(context.document), args_(args) {
    types_ = args.texts("type");
    excluded_ = args.texts("excludeType");
    exact_ = args.texts("exactType");
    isLong_ = args.has("long");
  }

  Result<std::vector<std::string>> run() {
    if (args_.has("orderedSelection") && visitInOrder()) return std::move(names_);
    if (args_.has("selection") || args_.has("orderedSelection"))
      visitItems(document_.selection());
    else if (args_.has("hilite"))
      visitItems(document_.hilite());
    else if (args_.hasObjects())
      visitNames();
    else
      visitAll();
    if (budget_.leftOut()) postMessage(MessageKind::Warning, "ls: " + budget_.warning());
    trim();
    return std::move(names_);
  }

 private:
  void visitItems(const scene::SelectionList& list) {
    for (const SelectionItem& item : list.items()) visitItem(item);
  }

  /// One by one in the order in which they were selected, while that is tracked.
  bool visitInOrder() {
    const SelectionOrder& order = workspace::workspaceOf(session_).kept<SelectionOrder>();
    if (!order.isTracking()) return false;
    for (const SelectionItem& item : order.inOrder(document_.selection())) visitItem(item);
    trim();
    return true;
  }

  void visitNames() {
    for (const std::string& name : args_.objectNames()) {
      if (name.find('.') != std::string::npos) {
        if (auto list = document_.resolve(name)) visitItems(*list);
        continue;
      }
      if (args_.has("uuid") && visitUuid(name)) continue;
      std::vector<scene::Node*> nodes = document_.findNodes(name);
      const bool isPattern = name.find_first_of("*?") != std::string::npos;
      if (isPattern) sortByName(nodes);
      const bool isPath = name.find('|') != std::string::npos;
      for (scene::Node* node : nodes) {
        if (isPath && !isPattern && scene::isDagNode(*node)) {
          if (auto path = document_.dagPath(name)) visitPath(*path);
          continue;
        }
        visitNode(*node);
      }
    }
  }

  bool visitUuid(const std::string& uuid) {
    for (const dg::NodePtr& node : document_.graph().nodes())
      if (node->uuid() == uuid) {
        add(nodeName(*node, isLong_), *node);
        return true;
      }
    return false;
  }

  void visitAll() {
    if (args_.has("dagObjects") || args_.has("assemblies")) {
      for (scene::Node* node : document_.worldChildren()) visitPath(DagPath({node}));
      return;
    }
    std::vector<scene::Node*> nodes;
    for (const dg::NodePtr& node : document_.graph().nodes()) nodes.push_back(node.get());
    if (filters()) sortByName(nodes);
    for (scene::Node* node : nodes) visitNode(*node);
  }

  /// Whether anything but everything is asked for.
  [[nodiscard]] bool filters() const { return !args_.flagUses().empty(); }

  static void sortByName(std::vector<scene::Node*>& nodes) {
    std::stable_sort(nodes.begin(), nodes.end(), [](const scene::Node* a, const scene::Node* b) {
      return a->name() < b->name();
    });
  }

  void visitNode(scene::Node& node) {
    if (!scene::isDagNode(node)) {
      if (!args_.has("dagObjects") && passes(node, {})) add(node.name(), node);
      return;
    }
    if (!args_.has("allPaths")) return visitPath(scene::firstPath(node));
    if (!hasType(node)) return;
    const std::uint64_t places = scene::pathCount(node);
    if (places > 1 && (listed_ += std::min(places, 2 * scene::kMostPaths)) > scene::kMostPaths) {
      if (!std::exchange(isCutShort_, true))
        postMessage(MessageKind::Warning,
                    fmt::format("ls: '{}' and others stand in more than {} places: of each of them "
                                "the first is listed",
                                node.name(), scene::kMostPaths));
      return visitPath(scene::firstPath(node));
    }
    for (const DagPath& path : scene::allPaths(node)) visitPath(path);
  }

  void visitPath(const DagPath& path) {
    if (path.isWorld()) return;
    for (scene::PathWalk walk(path, scene::PathWalk::Children::InOrder, &budget_); !walk.isDone();
         walk.next()) {
      if (passes(walk.node(), walk.path()))
        add(isLong_ ? walk.path().fullName() : walk.path().partialName(), walk.node());
      if (!args_.has("dagObjects")) return;
    }
  }

  void visitItem(const SelectionItem& item) {
    if (item.plug) {
      if (args_.has("objectsOnly") || filtersTypes()) {
        if (passes(*item.node, item.path)) add(nodeName(*item.node, isLong_), *item.node);
      } else {
        add(plugName(item.plug), *item.node);
      }
      return;
    }
    if (item.isObject() || args_.has("objectsOnly") || args_.has("dagObjects")) {
      if (item.isDag())
        visitPath(item.path);
      else
        visitNode(*item.node);
      return;
    }
    if (filtersTypes() && !passes(*item.node, item.path)) return;
    for (const scene::Component& component : item.components) addComponent(item, component);
  }

  void addComponent(const SelectionItem& item, const scene::Component& component) {
    const std::string base = scene::itemBaseName(item, isLong_) + ".";
    if (!args_.has("flatten")) {
      for (const std::string& word : scene::componentWords(*item.node, component))
        add(base + word, *item.node);
      return;
    }
    if (component.type() == scene::ComponentType::VertexFace && !component.isComplete()) {
      for (const auto& pair : component.pairs())
        add(fmt::format("{}vtxFace[{}][{}]", base, pair.vertex, pair.face), *item.node);
      return;
    }
    const std::vector<std::string> points = scene::flatLatticeWords(*item.node, component);
    for (const std::string& word : points) add(base + word, *item.node);
    if (!points.empty()) return;
    const std::string prefix = base + std::string(scene::componentWord(component.type())) + "[";
    const Index count =
        component.isComplete() ? scene::componentCount(item.path, component.type()) : 0;
    for (const Index index : component.expanded(count))
      add(prefix + std::to_string(index) + "]", *item.node);
  }

  [[nodiscard]] bool filtersTypes() const {
    static constexpr std::string_view kFlags[] = {"type",      "exactType", "shapes", "transforms",
                                                  "geometry",  "cameras",   "lights", "sets",
                                                  "materials", "textures"};
    return std::any_of(std::begin(kFlags), std::end(kFlags),
                       [&](std::string_view flag) { return args_.has(flag); });
  }

  [[nodiscard]] bool hasType(const dg::Node& node) const {
    const dg::NodeType& type = node.type();
    const auto isAny = [&](const std::vector<std::string>& names) {
      return std::any_of(names.begin(), names.end(),
                         [&](const std::string& name) { return type.isA(name); });
    };
    if (isAny(excluded_)) return false;
    if (!filtersTypes()) return true;
    if (isAny(types_) || std::find(exact_.begin(), exact_.end(), type.name) != exact_.end())
      return true;
    const auto isClassified = [&](std::string_view word) {
      const dg::NodeType* at = &type;
      while (at && at->classification.empty()) at = at->base;
      return at && at->classification.find(word) != std::string::npos;
    };
    return (args_.has("shapes") && scene::isShape(node)) ||
           (args_.has("transforms") && scene::isTransform(node)) ||
           (args_.has("geometry") && type.isA("geometryShape")) ||
           (args_.has("cameras") && type.isA("camera")) ||
           (args_.has("lights") && type.isA("light")) ||
           (args_.has("sets") && type.isA("objectSet")) ||
           (args_.has("materials") && isClassified("shader/")) ||
           (args_.has("textures") && isClassified("texture"));
  }

  [[nodiscard]] bool isOn(dg::Node& node, std::string_view attribute) const {
    const dg::Plug plug = node.plug(attribute);
    auto value = plug ? document_.graph().get(plug) : Result<dg::Value>(dg::Value(std::int64_t{0}));
    const auto* number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
    return number && *number != 0;
  }

  [[nodiscard]] bool isVisible(const DagPath& path) const {
    for (scene::Node* node : path.upwards())
      if (!isOn(*node, "visibility") || isOn(*node, "intermediateObject")) return false;
    return true;
  }

  [[nodiscard]] bool passes(dg::Node& node, const DagPath& path) const {
    if (!hasType(node)) return false;
    if (args_.has("assemblies") && path.length() != 1) return false;
    if (args_.has("dependencyNodes") && args_.has("noDag") && !path.isWorld()) return false;
    if (args_.has("defaultNodes") && !node.isDefault()) return false;
    if (args_.has("undeletable") && !node.isDefault()) return false;
    if (args_.has("lockedNodes") && !node.isLocked()) return false;
    if (args_.has("leaf") && (path.isWorld() || !scene::dagLinks(node).children.empty()))
      return false;
    if (args_.has("intermediateObjects") && !isOn(node, "intermediateObject")) return false;
    if (args_.has("noIntermediate") && isOn(node, "intermediateObject")) return false;
    if (args_.has("visible") && (path.isWorld() || !isVisible(path))) return false;
    if (args_.has("invisible") && (path.isWorld() || isVisible(path))) return false;
    if ((args_.has("referencedNodes") || args_.has("readOnly")) && !scene::referenceOf(node))
      return false;
    if (args_.has("partition") && !node.type().isA("partition")) return false;
    if (args_.has("references") && !node.type().isA("reference")) return false;
    return true;
  }

  void add(std::string name, const dg::Node& node) {
    if (args_.has("uuid")) name = node.uuid();
    // Nothing is listed twice, as when a parent and its child are both given with -dagObjects.
    const bool mayRepeat = args_.has("dagObjects") || (args_.hasObjects() && !args_.has("flatten"));
    if (mayRepeat && !seen_.insert(name).second) return;
    names_.push_back(std::move(name));
    if (args_.has("showType")) names_.push_back(node.type().name);
    if (args_.has("showNamespace")) {
      const std::size_t colon = node.name().rfind(':');
      names_.push_back(colon == std::string::npos ? ":" : ":" + node.name().substr(0, colon));
    }
  }

  void trim() {
    const auto limit = [&](std::string_view flag) {
      return std::min(names_.size(), at(std::max(0, args_.integer(flag))));
    };
    if (args_.has("head")) names_.resize(limit("head"));
    if (args_.has("tail"))
      names_.erase(names_.begin(), names_.end() - static_cast<std::ptrdiff_t>(limit("tail")));
  }

  cmd::Session& session_;
  scene::Document& document_;
  const ParsedArgs& args_;
  std::vector<std::string> types_, excluded_, exact_, names_;
  std::unordered_set<std::string> seen_;
  bool isLong_ = false;
  scene::PlaceBudget budget_;
  std::uint64_t listed_ = 0;  ///< places of instanced nodes
  bool isCutShort_ = false;
};

CommandResult ls(Context& context, const ParsedArgs& args) {
  for (const std::string_view flag : {"type", "exactType", "excludeType"})
    for (const std::string& name : args.texts(flag))
      if (!context.document.types().find(name) && !isForeignNodeType(name))
        return fail("Unknown object type: {}", name);
  auto names = Lister(context, args).run();
  if (!names) return failWith(std::move(names.error()));
  return toValue(std::move(*names));
}

}  // namespace

void registerLs(CommandRegistry& registry) {
  defineQuery(registry, "ls",
              Syntax()
                  .flag("sl", "selection")
                  .flag("os", "orderedSelection")
                  .flag("hl", "hilite")
                  .flag("l", "long")
                  .flag("sn", "shortNames")
                  .flag("typ", "type", {ArgType::String})
                  .multiUse()
                  .flag("et", "exactType", {ArgType::String})
                  .multiUse()
                  .flag("ext", "excludeType", {ArgType::String})
                  .multiUse()
                  .flag("dag", "dagObjects")
                  .flag("dep", "dependencyNodes")
                  .flag("nd", "noDag")
                  .flag("as", "assemblies")
                  .flag("ap", "allPaths")
                  .flag("s", "shapes")
                  .flag("tr", "transforms")
                  .flag("g", "geometry")
                  .flag("ca", "cameras")
                  .flag("lt", "lights")
                  .flag("set", "sets")
                  .flag("mat", "materials")
                  .flag("tex", "textures")
                  .flag("o", "objectsOnly")
                  .flag("fl", "flatten")
                  .flag("lf", "leaf")
                  .flag("v", "visible")
                  .flag("iv", "invisible")
                  .flag("io", "intermediateObjects")
                  .flag("ni", "noIntermediate")
                  .flag("dn", "defaultNodes")
                  .flag("ud", "undeletable")
                  .flag("ln", "lockedNodes")
                  .flag("rn", "referencedNodes")
                  .flag("ro", "readOnly")
                  .flag("r", "recursive", {ArgType::Bool})
                  .flag("st", "showType")
                  .flag("sns", "showNamespace")
                  .flag("pr", "partition")
                  .flag("rf", "references")
                  .flag("uid", "uuid")
                  .flag("hd", "head", {ArgType::Int})
                  .flag("tl", "tail", {ArgType::Int})
                  .strings(),
              ls);
}

}  // namespace host::builtins
