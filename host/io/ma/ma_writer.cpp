#include "host/io/ma/ma_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "host/base/cancel.h"
#include "host/base/cancel_poll.h"
#include "host/io/ma/ma_held_meshes.h"
#include "host/io/ma/ma_mesh_writer.h"
#include "host/io/ma/ma_node_writer.h"
#include "host/io/ma/ma_numbers.h"
#include "host/io/ma/ma_passes.h"
#include "host/io/ma/ma_references.h"
#include "host/nodes/mesh_node.h"
#include "host/nodes/mesh_shape.h"

namespace host::io {
namespace {

using dg::Node;
using dg::Plug;

/// Default nodes that files make anew; the others they select.
bool isMadeByFiles(const Node& node) {
  static constexpr std::string_view kTypes[] = {
      "lightLinker", "displayLayerManager", "displayLayer", "renderLayerManager", "renderLayer"};
  return scene::isDagNode(node) || !node.isDefault() ||
         std::ranges::find(kTypes, node.type().name) != std::end(kTypes);
}

class Writer {
 public:
  Writer(scene::Document& document, const MaKept& kept, const MaWriteOptions& options)
      : document_(document),
        graph_(document.graph()),
        kept_(kept),
        options_(options),
        fresh_(document.types()) {
    fresh_.populateNewScene = document.populateNewScene;
    fresh_.reset();
  }

  Result<MaText> write() {
    collect();
    writeHeader();
    for (Node* node : order_) {
      if (isCancelled()) return cancelled();
      if (isMadeByFiles(*node)) HOST_TRY(writeNode(*node));
    }
    writeHeldMeshes();
    writeInstances();
    for (Node* node : order_)
      if (!isMadeByFiles(*node)) HOST_TRY(writeSelected(*node));
    if (!options_.only)
      for (const std::string& block : kept_.selected) out() += block + ";\n";
    findPasses();
    for (Node* node : order_) writeConnections(*node);
    writeKeptConnections();
    out() += heldConnections_ + outside_;
    writeLinks();
    if (!options_.only)
      for (const std::string& statement : kept_.late) out() += statement + ";\n";
    out() += fmt::format("// End of {}\n", options_.name);
    return std::move(result_);
  }

 private:
  std::string& out() { return result_.text; }

  // What is written.

  void collect() {
    std::optional<std::unordered_set<const Node*>> only;
    if (options_.only) {
      only.emplace(options_.only->begin(), options_.only->end());
      for (const Node* node : *options_.only)
        for (const scene::DagPath& path : scene::allPaths(*node))
          for (const Node* each : path.upwards())
            if (!only->insert(each).second && each != node) break;
    }
    const auto isWanted = [&](const Node* node) { return !only || only->count(node) != 0; };
    for (const dg::NodePtr& node : graph_.nodes()) {
      if (!isWanted(node.get()) || !isBaked(*node)) continue;
      if (nodes::evaluatedMesh(*node))
        baked_.insert(node.get());
      else
        result_.warnings.push_back(fmt::format(
            "'{}' cannot be evaluated: what was edited after its history was made is not saved",
            node->name()));
    }
    findFeeders();
    const auto add = [&](Node* node) {
      if (!isWanted(node) || feeders_.count(node) != 0 || isFromFile(*node)) return;
      if (isWritten_.insert(node).second) order_.push_back(node);
    };
    std::unordered_set<const Node*> met;
    const auto addTree = [&](Node* top) {
      std::vector<Node*> open{top};
      while (!open.empty()) {
        Node* node = open.back();
        open.pop_back();
        if (!met.insert(node).second) continue;
        add(node);
        const std::vector<Node*>& children = scene::dagLinks(*node).children;
        // An instance belongs to its first parent; others get it by statements of their own.
        for (auto child = children.rbegin(); child != children.rend(); ++child)
          if (scene::dagLinks(**child).parents.front() == node) open.push_back(*child);
      }
    };
    for (Node* top : document_.worldChildren())
      if (scene::dagLinks(*top).parents.front() == nullptr) addTree(top);
    for (const dg::NodePtr& node : graph_.nodes())
      if (!scene::isDagNode(*node) && node->isDefault() && !only) add(node.get());
    for (const dg::NodePtr& node : graph_.nodes())
      if (!scene::isDagNode(*node) && !node->isDefault()) add(node.get());
  }

  /// What another file brings is written there. An export of a part holds all that it needs.
  [[nodiscard]] bool isFromFile(const Node& node) const {
    return !options_.only && scene::referenceOf(node) != nullptr;
  }

  /// Whether a shape is written as it is seen: edits on top of history have no other place.
  [[nodiscard]] bool isBaked(Node& node) const {
    const Plug override = node.plug(nodes::kMeshOverrideAttribute);
    if (!override || isFromFile(node)) return false;
    if (!options_.withHistory && nodes::hasHistory(node)) return true;
    // What feeds it is not written along.
    if (options_.only && nodes::hasHistory(node) &&
        std::ranges::find(*options_.only, graph_.source(node.plug("inMesh")).node()) ==
            options_.only->end())
      return true;
    const dg::Value stored = graph_.stored(override);
    const auto* data = std::get_if<dg::DataPtr>(&stored);
    return data && *data;
  }

  /// History that feeds only shapes that are written without it.
  void findFeeders() {
    std::vector<const Node*> open(baked_.begin(), baked_.end());
    std::ranges::sort(open, {}, [](const Node* node) { return node->serial(); });
    while (!open.empty()) {
      const Node* node = open.back();
      open.pop_back();
      for (const dg::Graph::Connection& feed : graph_.incoming(*node)) {
        Node* source = feed.source.node();
        const bool isHistory =
            !source->type().existsWithoutOutputs || source->type().isA("polyBase") ||
            (source->type().isA("mesh") &&
             dg::equal(graph_.stored(source->plug("intermediateObject")), std::int64_t{1}));
        if (!isHistory || feeders_.count(source) != 0 || baked_.count(source) != 0 ||
            isGroup(feed) || !feedsOnlyBaked(*source))
          continue;
        feeders_.insert(source);
        open.push_back(source);
      }
    }
  }
  static bool isGroup(const dg::Graph::Connection& feed) {
    return feed.destination.attribute()->top().longName == "instObjGroups";
  }
  [[nodiscard]] bool feedsOnlyBaked(const Node& source) const {
    return std::ranges::all_of(graph_.outgoing(source), [&](const dg::Graph::Connection& use) {
      return feeders_.count(use.destination.node()) != 0 || isCut(use);
    });
  }
  /// A connection that a baked shape has no more use for.
  [[nodiscard]] bool isCut(const dg::Graph::Connection& connection) const {
    return baked_.count(connection.destination.node()) != 0 &&
           connection.destination.attribute()->longName == "inMesh";
  }

  // Names.

  [[nodiscard]] std::string nameOf(const Node& node) const {
    if (!scene::isDagNode(node)) return node.isDefault() ? ":" + node.name() : node.name();
    if (document_.nodesNamed(node.name()).size() == 1) return node.name();
    return scene::firstPath(node).fullName();
  }
  [[nodiscard]] std::string plugName(const Plug& plug) const {
    return nameOf(*plug.node()) + "." + filePath(plug);
  }
  /// The same node of a new scene; null for nodes that it does not have.
  [[nodiscard]] const Node* freshOf(const Node& node) const {
    if (!node.isDefault()) return nullptr;
    const std::vector<Node*>& found = fresh_.nodesNamed(node.name());
    return found.empty() || &found.front()->type() != &node.type() ? nullptr : found.front();
  }

  // Statements.

  void writeHeader() {
    out() += fmt::format("//Maya ASCII {} scene\n//Name: {}\n", options_.version, options_.name);
    if (!options_.modified.empty())
      out() += fmt::format("//Last modified: {}\n", options_.modified);
    out() += fmt::format("//Codeset: UTF-8\nrequires maya \"{}\";\n", options_.version);
    std::unordered_set<std::string_view> stated;
    for (const auto* all : {&options_.requirements, &kept_.requirements})
      for (const std::string& each : *all)
        if (stated.insert(each).second) out() += each + ";\n";
    const scene::Units& units = document_.units();
    writeReferences();
    out() +=
        fmt::format("currentUnit -l {} -a {} -t {};\n", scene::linearUnitName(units.linear, true),
                    scene::angularUnitName(units.angular, true), units.time);
    for (const auto& [keyword, value] : document_.fileInfo) {
      out() += "fileInfo ";
      appendQuoted(out(), keyword);
      out() += ' ';
      appendQuoted(out(), value);
      out() += ";\n";
    }
    if (!options_.only)
      for (const std::string& statement : kept_.early) out() += statement + ";\n";
  }

  /// The statements of one reference; `depth` counts from 1, and those further in are for readers
  /// that want to know all files.
  void writeReference(const scene::ReferenceData::Fields& reference, std::string_view name,
                      const std::string& head) {
    out() += "file " + head;
    if (!reference.prefix.empty()) {
      out() += " -rpr ";
      appendQuoted(out(), reference.prefix);
    } else {
      out() += " -ns ";
      appendQuoted(out(), reference.ownNamespace.empty() ? ":" : reference.ownNamespace);
    }
    for (const std::string& kind : reference.shared) {
      out() += " -shd ";
      appendQuoted(out(), kind);
    }
    out() += fmt::format("{} -rfn ", reference.isDeferred ? " -dr 1" : "");
    appendQuoted(out(), name);
    if (!reference.options.empty()) {
      out() += " -op ";
      appendQuoted(out(), reference.options);
    }
    out() += " -typ ";
    appendQuoted(out(), reference.type.empty() ? "mayaAscii" : reference.type);
    out() += ' ';
    appendQuoted(out(), reference.written);
    out() += ";\n";
  }

  void writeReferences() {
    if (options_.only) return;
    std::string rows;
    for (const Node* node : scene::references(document_)) {
      const auto data = scene::referenceData(*node);
      int depth = 1;
      for (const Node* above = scene::referenceOf(*node); above; above = scene::referenceOf(*above))
        ++depth;
      writeReference(data->fields, node->name(), fmt::format("-rdi {}", depth));
      if (depth > 1) continue;
      std::swap(rows, out());
      writeReference(data->fields, node->name(), "-r");
      std::swap(rows, out());
    }
    out() += rows;
  }

  /// What the scene changes of a file, and where its place holders are connected.
  void writeReferenceEdits(Node& node) {
    if (options_.only || !scene::referenceData(node)) return;
    ReferenceDifferences all = referenceDifferences(document_, node);
    if (!all.outside.empty())
      out() += fmt::format("\tsetAttr -s {} \".phl\";\n", all.outside.size());
    for (const scene::OutsideConnection& each : all.outside)
      out() += fmt::format("\tsetAttr \".phl[{}]\" 0;\n", each.placeHolder);
    appendReferenceEdits(out(), node.name(), all.edits);
    for (std::string& warning : all.warnings) result_.warnings.push_back(std::move(warning));
    for (const scene::OutsideConnection& each : all.outside) {
      const auto other = each.node.lock();
      if (!other || !other->isAlive()) continue;
      // Between two files a connection is the scene's, and said once.
      const bool isAcross = scene::referenceOf(*other) && !each.own.empty();
      if (isAcross && !each.leavesFile) continue;
      const std::string own =
          isAcross ? each.own : fmt::format("{}.phl[{}]", node.name(), each.placeHolder);
      const std::string outer = nameOf(*other) + "." + each.path;
      outside_ += each.leavesFile ? fmt::format("connectAttr \"{}\" \"{}\";\n", own, outer)
                                  : fmt::format("connectAttr \"{}\" \"{}\";\n", outer, own);
    }
  }

  Result<void> writeLines(Node& node) {
    MaNodeWriter writer(graph_, document_.units(), node, freshOf(node));
    const bool isMesh = node.type().isA("mesh");
    if (isMesh) {
      for (const std::string_view attribute :
           {"vrts", "edge", "face", "normals", "uvSet", "currentUVSet", "colorSet",
            "currentColorSet", "inMesh", "cachedInMesh"})
        writer.leaveOut(attribute);
      writer.leaveOut(nodes::kMeshOverrideAttribute);
      if (baked_.count(&node) != 0) writer.leaveOut("pnts");
    }
    if (options_.leavesOut && !node.type().pluginName.empty())
      for (const dg::AttributePtr& attribute : node.type().attributes())
        if (options_.leavesOut(node.plug(attribute.get()))) writer.leaveOut(attribute->longName);
    writer.write(out());
    if (!writer.notFinite().empty())
      result_.warnings.push_back(
          fmt::format("'{}' is not a finite number: it is saved as 0", writer.notFinite()));
    if (!writer.lost().empty())
      result_.warnings.push_back(fmt::format(
          "'{}' holds data that its plug-in does not write: it is not saved", writer.lost()));
    if (isMesh) HOST_TRY(writeMesh(node));
    if (const MaKept::Node* kept = kept_.find(node))
      for (const std::string& line : kept->lines) out() += "\t" + line + ";\n";
    if (node.type().name == "reference") writeReferenceEdits(node);
    return {};
  }

  Result<void> writeMesh(Node& node) {
    const bool isBaked = baked_.count(&node) != 0;
    if (!isBaked && nodes::hasHistory(node)) return {};
    if (isBaked && nodes::hasHistory(node) && options_.withHistory)
      result_.warnings.push_back(
          fmt::format("'{}' was edited after its construction history was made: it is saved as it "
                      "is, without its history",
                      node.name()));
    auto mesh = isBaked ? nodes::evaluatedMesh(node) : nodes::untweakedMesh(node);
    if (!mesh) return failWith(std::move(mesh).error());
    appendMeshOf(node.name(), *mesh);
    return {};
  }

  void appendMeshOf(const std::string& name, const mesh::Mesh& mesh) {
    const MaMeshLosses lost =
        appendMesh(out(), mesh, scene::centimetersPer(document_.units().linear));
    if (lost.notFinite > 0)
      result_.warnings.push_back(
          fmt::format("'{}': {} numbers that are not finite are saved as 0", name, lost.notFinite));
    if (lost.hardened > 0)
      result_.warnings.push_back(
          fmt::format("'{}': {} smooth edges are saved as hard ones, because locked normals differ "
                      "across them and the format has no other way to say so",
                      name, lost.hardened));
  }

  /// Meshes that history holds and nobody gives it get a shape of their own, hidden beside the one
  /// that shows them.
  void writeHeldMeshes() {
    std::unordered_set<std::string> taken;
    for (const HeldMesh& held : heldMeshes(
             graph_, order_, [&](const Node& node) { return isWritten_.count(&node) != 0; })) {
      const std::string stem = held.shape->name() + "Orig";
      std::string name = stem;
      for (int number = 1; !document_.nodesNamed(name).empty() || taken.contains(name); ++number)
        name = stem + std::to_string(number);
      taken.insert(name);
      out() += fmt::format("createNode mesh -n \"{}\" -p \"{}\";\n\tsetAttr \".io\" yes;\n", name,
                           nameOf(*scene::dagLinks(*held.shape).parents.front()));
      appendMeshOf(name, held.mesh);
      heldConnections_ += fmt::format("connectAttr \"{}.o\" \"{}\";\n", name, plugName(held.input));
    }
  }

  /// Where meshes go past unknown nodes, and where those nodes' own connections lead.
  void findPasses() {
    for (const MaKept::Pass& pass : kept_.passes) {
      const Plug end = currentEnd(graph_, pass);
      passEnds_[pass.connection] = end;
      if (end) passed_.insert(end);
    }
  }

  Result<void> writeNode(Node& node) {
    const MaKept::Node* kept = kept_.find(node);
    const bool isUnknown = kept && !kept->type.empty();
    const bool isShared = node.isDefault() && node.type().name != "displayLayerManager" &&
                          node.type().name != "displayLayer" &&
                          node.type().name != "renderLayerManager" &&
                          node.type().name != "renderLayer";
    out() += fmt::format("createNode {}{} -n ", isUnknown ? kept->type : node.type().name,
                         isShared ? " -s" : "");
    appendQuoted(out(), node.name());
    if (scene::isDagNode(node))
      if (const Node* parent = scene::dagLinks(node).parents.front()) {
        out() += " -p ";
        appendQuoted(out(), nameOf(*parent));
      }
    out() += fmt::format(";\n\trename -uid \"{}\";\n", node.uuid());
    HOST_TRY(writeLines(node));
    if (node.isLocked()) out() += "\tlockNode -l 1 ;\n";
    return {};
  }

  /// Nothing for a default node that is as new.
  Result<void> writeSelected(Node& node) {
    const std::size_t start = out().size();
    out() += fmt::format("select -ne :{};\n", node.name());
    const std::size_t lines = out().size();
    HOST_TRY(writeLines(node));
    if (out().size() == lines) out().resize(start);
    return {};
  }

  void writeInstances() {
    for (const Node* node : order_) {
      if (!scene::isDagNode(*node)) continue;
      const std::vector<Node*>& parents = scene::dagLinks(*node).parents;
      for (std::size_t i = 1; i < parents.size(); ++i) {
        const std::string path = scene::firstPath(*node).fullName();
        if (!parents[i])
          out() += fmt::format("parent -s -nc -r -add -w \"{}\";\n", path);
        else if (isWritten_.count(parents[i]) != 0)
          out() += fmt::format("parent -s -nc -r -add \"{}\" \"{}\";\n", path, nameOf(*parents[i]));
      }
    }
    writeOrder();
  }

  /// Instances arrive behind what is made in place: where that is not their order, those that
  /// stand elsewhere go to the end one after the other.
  void writeOrder() {
    std::unordered_map<const Node*, std::vector<const Node*>> arriving;
    std::vector<const Node*> shuffled;
    for (const Node* node : order_)
      if (scene::isDagNode(*node) && !scene::dagLinks(*node).parents.empty())
        arriving[scene::dagLinks(*node).parents.front()].push_back(node);
    for (const Node* node : order_) {
      if (!scene::isDagNode(*node)) continue;
      const std::vector<Node*>& parents = scene::dagLinks(*node).parents;
      for (std::size_t i = 1; i < parents.size(); ++i) {
        if (parents[i] && isWritten_.count(parents[i]) == 0) continue;
        arriving[parents[i]].push_back(node);
        shuffled.push_back(parents[i]);
      }
    }
    std::unordered_set<const Node*> seen;
    for (const Node* parent : shuffled) {
      if (!seen.insert(parent).second) continue;
      const std::vector<const Node*>& made = arriving[parent];
      std::size_t place = 0;
      bool isInOrder = true;
      const std::string above = parent ? scene::firstPath(*parent).fullName() : std::string();
      for (const Node* child :
           parent ? scene::dagLinks(*parent).children : document_.worldChildren()) {
        if (isWritten_.count(child) == 0) continue;
        isInOrder = isInOrder && place < made.size() && made[place] == child;
        ++place;
        if (!isInOrder) out() += fmt::format("reorder -b \"{}|{}\";\n", above, child->name());
      }
    }
  }

  // Connections.

  /// Whether a new scene has a connection anyway.
  [[nodiscard]] bool isFresh(const dg::Graph::Connection& connection) const {
    const Node* from = freshOf(*connection.source.node());
    const Node* to = freshOf(*connection.destination.node());
    if (!from || !to) return false;
    return std::ranges::any_of(fresh_.graph().outgoing(*from), [&](const auto& each) {
      return each.destination.node() == to &&
             each.source.attributePath() == connection.source.attributePath() &&
             each.destination.attributePath() == connection.destination.attributePath();
    });
  }

  void writeConnections(const Node& node) {
    for (const dg::Graph::Connection& connection : graph_.outgoing(node)) {
      if (isWritten_.count(connection.destination.node()) == 0 || isCut(connection) ||
          isLink(connection.destination) || passed_.count(connection.destination) != 0)
        continue;
      const bool areLayers =
          isMadeByFiles(node) && node.isDefault() && isMadeByFiles(*connection.destination.node());
      if (!areLayers && isFresh(connection)) continue;
      const bool isLocked = graph_.flag(connection.destination, dg::Graph::PlugFlag::Locked);
      out() += fmt::format("connectAttr{} \"{}\" \"{}\";\n", isLocked ? " -l on" : "",
                           plugName(connection.source), plugName(connection.destination));
    }
  }

  void writeKeptConnections() {
    for (std::size_t i = 0; i < kept_.connections.size(); ++i) {
      const MaKept::Connection& kept = kept_.connections[i];
      const auto from = kept.source.lock(), to = kept.destination.lock();
      if (!from || !to || !from->isAlive() || !to->isAlive()) continue;
      if (isWritten_.count(from.get()) == 0 || isWritten_.count(to.get()) == 0) continue;
      std::string destination = nameOf(*to) + "." + kept.destinationPath;
      if (const auto pass = passEnds_.find(i); pass != passEnds_.end()) {
        if (!pass->second || isWritten_.count(pass->second.node()) == 0) continue;
        destination = plugName(pass->second);
      }
      out() += "connectAttr ";
      appendQuoted(out(), nameOf(*from) + "." + kept.sourcePath);
      out() += ' ';
      appendQuoted(out(), destination);
      out() += kept.toNextAvailable ? " -na;\n" : ";\n";
    }
  }

  /// One end of a pair that a light linker keeps: written as a relationship.
  [[nodiscard]] bool isLink(const Plug& end) const {
    const std::string& top = end.attribute()->top().longName;
    return end.node()->type().isA("lightLinker") && (top == "link" || top == "shadowLink") &&
           end.parent() && !otherEnd(end).isNull();
  }
  /// What feeds the pair's other end; null when nothing does.
  [[nodiscard]] Plug otherEnd(const Plug& end) const {
    return graph_.source(end.parent().child(end.attribute()->childIndex == 0 ? 1 : 0));
  }

  void writeLinks() {
    for (Node* node : order_) {
      if (!node->type().isA("lightLinker")) continue;
      for (const char* kind : {"link", "shadowLink"}) {
        const Plug links = node->plug(kind);
        for (const Index index : graph_.elementIndices(links)) {
          const Plug light = links.element(index).child(0), object = links.element(index).child(1);
          const Plug lightSource = graph_.source(light), objectSource = graph_.source(object);
          if (lightSource.isNull() || objectSource.isNull() ||
              isWritten_.count(lightSource.node()) == 0 ||
              isWritten_.count(objectSource.node()) == 0)
            continue;
          out() +=
              fmt::format("relationship \"{}\" \"{}\" \"{}.message\" \"{}.message\";\n", kind,
                          nameOf(*node), nameOf(*objectSource.node()), nameOf(*lightSource.node()));
        }
      }
    }
  }

  scene::Document& document_;
  dg::Graph& graph_;
  const MaKept& kept_;
  const MaWriteOptions& options_;
  scene::Document fresh_;
  MaText result_;
  std::vector<Node*> order_;
  std::unordered_set<const Node*> isWritten_, baked_, feeders_;
  std::string heldConnections_, outside_;
  std::unordered_map<std::size_t, Plug> passEnds_;  ///< by the number of the kept connection
  std::unordered_set<Plug, dg::PlugHash> passed_;
};

}  // namespace

Result<MaText> formatMa(scene::Document& document, const MaKept& kept,
                        const MaWriteOptions& options) {
  return cancellable([&] { return Writer(document, kept, options).write(); });
}

}  // namespace host::io
