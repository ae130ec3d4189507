// What a scene changed of a referenced file: the difference between what its nodes hold now and
// what they held when the file was read, in the statements that the node writer makes.
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "host/io/ma/ma_node_writer.h"
#include "host/io/ma/ma_plugs.h"
#include "host/io/ma/ma_references.h"
#include "host/mesh/mesh.h"
#include "host/nodes/mesh_node.h"
#include "host/nodes/mesh_shape.h"

namespace host::io {
namespace {

using dg::Node;
using dg::Plug;
using scene::ReferenceEdit;

/// Statements of one node: values by the path that they set, attributes by their long names.
struct Statements {
  std::map<std::string, std::string, std::less<>> values;  ///< " -l on" before, "5" behind a tab
  std::vector<std::pair<std::string, std::string>> attributes;  ///< long name; short name, flags
};

/// Told apart by the nodes' addresses, also when they are gone.
struct Link {
  std::weak_ptr<Node> from, to;
  const Node *fromKey = nullptr, *toKey = nullptr;
  std::string source, destination;
  friend bool operator<(const Link& a, const Link& b) {
    return std::tie(a.fromKey, a.toKey, a.source, a.destination) <
           std::tie(b.fromKey, b.toKey, b.source, b.destination);
  }
};

struct NodeBaseline {
  std::weak_ptr<Node> node, parent;
  Statements statements;
  std::optional<mesh::Mesh> mesh;  ///< of shapes without history
};

struct Baseline {
  std::vector<NodeBaseline> nodes;
  std::set<Link> links;
};

std::string between(std::string_view text, std::string_view before, char after) {
  const std::size_t at = text.find(before);
  if (at == std::string_view::npos) return {};
  const std::size_t start = at + before.size();
  return std::string(text.substr(start, std::min(text.find(after, start), text.size()) - start));
}

/// Takes a statement apart. Texts that a node writes have no line ends of their own.
void addStatement(Statements& all, std::string_view text) {
  std::string line;
  for (const char each : text)
    if (each == '\n')
      line += ' ';
    else if (each != '\t')
      line += each;
  if (line.starts_with("addAttr")) {
    const std::string longName = between(line, "-ln \"", '"'),
                      shortName = between(line, "-sn \"", '"');
    if (shortName == "aal") return;
    std::string flags = line.substr(7);
    for (const std::string& part :
         {fmt::format(" -sn \"{}\"", shortName), fmt::format(" -ln \"{}\"", longName)})
      if (const std::size_t at = flags.find(part); at != std::string::npos)
        flags.erase(at, part.size());
    all.attributes.emplace_back(longName, shortName + '\t' + flags);
    return;
  }
  const std::size_t name = line.find(" \".");
  if (!line.starts_with("setAttr") || name == std::string::npos) return;
  const std::size_t end = line.find('"', name + 3);
  const std::string path = line.substr(name + 3, end - name - 3);
  std::string switches = line.substr(7, name - 7);
  const std::string value = line.substr(end + 1);
  if (path == "aal" || (value.empty() && switches.starts_with(" -s "))) return;
  if (switches.starts_with(" -s ")) switches.clear();
  all.values[path] = switches + '\t' + value;
}

/// Compared in units that stay the same when the scene's are changed.
Statements statementsOf(scene::Document& document, Node& node, const std::vector<Plug>& forced = {},
                        const scene::Units& units = {}) {
  MaNodeWriter writer(document.graph(), units, node, nullptr);
  if (node.type().isA("mesh"))
    for (const std::string_view attribute :
         {"vrts", "edge", "face", "normals", "uvSet", "currentUVSet", "colorSet", "currentColorSet",
          "inMesh", "cachedInMesh"})
      writer.leaveOut(attribute);
  writer.leaveOut(nodes::kMeshOverrideAttribute);
  writer.leaveOut("fileNames");
  for (const Plug& plug : forced) writer.force(plug);
  std::string text;
  writer.write(text);
  Statements all;
  std::size_t start = 0;
  for (std::size_t end = text.find(";\n"); end != std::string::npos;
       start = end + 2, end = text.find(";\n", start))
    addStatement(all, std::string_view(text).substr(start, end - start));
  return all;
}

std::optional<mesh::Mesh> ownMesh(Node& node) {
  if (!node.type().isA("mesh") || nodes::hasHistory(node)) return std::nullopt;
  auto mesh = nodes::untweakedMesh(node);
  if (!mesh) return std::nullopt;
  return *std::move(mesh);
}

void addLinks(const dg::Graph& graph, const Node& node, std::set<Link>& links) {
  const auto add = [&](const dg::Graph::Connection& each) {
    Node &from = *each.source.node(), &to = *each.destination.node();
    links.insert({from.weak_from_this(), to.weak_from_this(), &from, &to, filePath(each.source),
                  filePath(each.destination)});
  };
  for (const auto& each : graph.incoming(node)) add(each);
  for (const auto& each : graph.outgoing(node)) add(each);
}

std::string nameOf(const Node& node) {
  return scene::isDagNode(node) ? scene::firstPath(node).fullName() : node.name();
}

class Differ {
 public:
  Differ(scene::Document& document, Node& reference, const Baseline& before)
      : document_(document), reference_(reference), before_(before) {}

  ReferenceDifferences run(const scene::ReferenceData::Fields& fields) {
    for (const NodeBaseline& each : before_.nodes)
      if (const auto node = each.node.lock(); node && node->isAlive()) members_.insert(node.get());
    for (const NodeBaseline& each : before_.nodes)
      if (const auto node = each.node.lock(); node && node->isAlive()) addParent(*node, each);
    for (const NodeBaseline& each : before_.nodes)
      if (const auto node = each.node.lock(); node && node->isAlive()) addNode(*node, each);
    addLinkEdits();
    for (const ReferenceEdit& edit : fields.edits)
      if (std::ranges::find(result_.edits, edit) == result_.edits.end())
        result_.edits.push_back(edit);
    for (scene::OutsideConnection each : fields.outside) {
      each.placeHolder += placeHolders_;
      result_.outside.push_back(std::move(each));
    }
    return std::move(result_);
  }

 private:
  void add(const Node& node, int kind, std::vector<std::string> words, int form = -1) {
    const Node* owner = scene::referenceOf(node);
    result_.edits.push_back({(owner ? owner : &reference_)->name(), kind, form, std::move(words)});
  }

  void addParent(Node& node, const NodeBaseline& before) {
    if (!scene::isDagNode(node)) return;
    Node* parent = scene::dagLinks(node).parents.front();
    const auto old = before.parent.lock();
    if (parent == old.get()) return;
    // The path that the node has in its file: below what it was below.
    std::string path = (old ? nameOf(*old) : std::string()) + "|" + node.name();
    add(node, ReferenceEdit::Parent, {std::move(path), parent ? nameOf(*parent) : "|", "-s -r "});
  }

  void addNode(Node& node, const NodeBaseline& before) {
    Statements now = statementsOf(document_, node);
    const std::vector<Plug> forced = addForced(node, before.statements, now);
    const Statements said = document_.units() == scene::Units()
                                ? Statements()
                                : statementsOf(document_, node, forced, document_.units());
    const std::string name = nameOf(node);
    for (const auto& [longName, rest] : now.attributes)
      if (!has(before.statements, longName))
        add(node, ReferenceEdit::AddAttr,
            {name, longName, rest.substr(0, rest.find('\t')), rest.substr(rest.find('\t') + 1)});
    for (const auto& [longName, rest] : before.statements.attributes)
      if (!has(now, longName)) add(node, ReferenceEdit::DeleteAttr, {name, longName, ""});
    std::vector<std::pair<std::string, std::string>> edits;
    for (const auto& [path, value] : now.values) {
      const auto old = before.statements.values.find(path);
      if (old != before.statements.values.end() && old->second == value) continue;
      const std::size_t tab = value.find('\t');
      std::string text = value.substr(0, tab);
      const auto spoken = said.values.find(path);
      const std::string& written = spoken == said.values.end() ? value : spoken->second;
      if (old != before.statements.values.end())
        text += turnedOff(old->second.substr(0, old->second.find('\t')), text);
      edits.emplace_back(path, text + written.substr(written.find('\t') + 1));
    }
    // What was locked has to be free before anything above it can be set.
    std::stable_partition(edits.begin(), edits.end(), [](const auto& edit) {
      return edit.second.find(" -l off") != std::string::npos;
    });
    for (const auto& [path, value] : edits) add(node, ReferenceEdit::SetAttr, {name, path, value});
    addPoints(node, before, name);
  }

  static bool has(const Statements& all, std::string_view longName) {
    return std::ranges::any_of(all.attributes,
                               [&](const auto& each) { return each.first == longName; });
  }

  /// Switches that were set and are not any more.
  static std::string turnedOff(const std::string& before, const std::string& now) {
    std::string words;
    for (const std::string_view flag : {" -k ", " -cb ", " -ca ", " -l "}) {
      const std::size_t at = before.find(flag);
      if (at == std::string::npos || now.find(flag) != std::string::npos) continue;
      words += std::string(flag) + (before.compare(at + flag.size(), 2, "on") == 0 ? "off" : "on");
    }
    return words;
  }

  /// What is at its default now and was not in the file has to be said; also elements that went.
  std::vector<Plug> addForced(Node& node, const Statements& before, Statements& now) {
    std::vector<Plug> forced;
    std::vector<std::string> gone;
    for (const auto& [path, value] : before.values) {
      if (now.values.contains(path)) continue;
      const MaPlug found = findPlug(node, path);
      if (found.plug.isNull()) continue;
      if (found.first != kNone)
        gone.push_back(path);
      else
        forced.push_back(found.plug);
    }
    if (!forced.empty()) {
      const Statements again = statementsOf(document_, node, forced);
      for (const auto& [path, value] : again.values)
        if (before.values.contains(path)) now.values.try_emplace(path, value);
      // A switch alone, with no value: it is at its default again.
      for (const auto& [path, value] : before.values)
        if (!now.values.contains(path) && value.ends_with('\t') &&
            !findPlug(node, path).plug.isNull())
          now.values[path] = "\t";
    }
    for (const std::string& path : gone) addGone(node, path, before.values.at(path), now);
    return forced;
  }

  /// Elements of a packed array that are not there now count as nothing.
  void addGone(Node& node, const std::string& path, const std::string& value, Statements& now) {
    const MaPlug found = findPlug(node, path);
    const Index last = found.last == kNone ? found.first : found.last;
    if (document_.graph().isDriven(found.plug)) return;
    const std::size_t bracket = path.rfind('[');
    const std::size_t type = value.find(" -type "), numbers = value.rfind('"');
    const std::string head =
        type == std::string::npos ? std::string() : value.substr(type, numbers + 1 - type);
    const std::size_t width = std::max<std::size_t>(1, found.plug.attribute()->children.size());
    std::string zeros;
    for (std::size_t i = 0; i < width; ++i) zeros += " 0";
    for (Index index = found.first; index <= last; ++index) {
      const Plug element = found.plug.element(index);
      if (!document_.graph().elementExists(element))
        now.values[fmt::format("{}[{}]", path.substr(0, bracket), index)] = "\t" + head + zeros;
    }
  }

  /// Points of a mesh that were moved in place, as offsets from those of the file.
  void addPoints(Node& node, const NodeBaseline& before, const std::string& name) {
    if (!before.mesh) return;
    const auto now = ownMesh(node);
    if (!now || *now == *before.mesh) return;
    mesh::Mesh moved = *before.mesh;
    const bool sameCount = now->vertexCount() == moved.vertexCount();
    if (sameCount) moved.setPoints({now->points().begin(), now->points().end()});
    if (!sameCount || !(moved == *now)) {
      result_.warnings.push_back(fmt::format(
          "'{}' comes from a referenced file: what was changed of its faces, UVs or normals "
          "without history is not saved",
          name));
      if (!sameCount) return;
    }
    std::vector<Index> indices;
    std::vector<double> values;
    std::unordered_map<Index, math::Vec3> tweaks;
    if (document_.graph().getPacked(node.plug("pnts"), indices, values))
      for (std::size_t i = 0; i < indices.size(); ++i)
        tweaks[indices[i]] = {values[3 * i], values[3 * i + 1], values[3 * i + 2]};
    const double unit = scene::centimetersPer(document_.units().linear);
    for (Index v = 0; v < now->vertexCount(); ++v) {
      const math::Vec3 offset = now->point(v) - before.mesh->point(v);
      if (offset == math::Vec3()) continue;
      const math::Vec3 all = (offset + tweaks[v]) / unit;
      const std::string path = fmt::format("pt[{}]", v);
      std::erase_if(result_.edits, [&](const ReferenceEdit& edit) {
        return edit.kind == ReferenceEdit::SetAttr && edit.words[0] == name &&
               edit.words[1] == path;
      });
      add(node, ReferenceEdit::SetAttr,
          {name, path, fmt::format(" -type \"float3\" {} {} {}", all.x, all.y, all.z)});
    }
  }

  // Connections.

  void addLinkEdits() {
    std::set<Link> now;
    for (const Node* member : members_) addLinks(document_.graph(), *member, now);
    const auto isThere = [](const std::weak_ptr<Node>& node) {
      const auto held = node.lock();
      return held && held->isAlive();
    };
    for (const Link& link : before_.links)
      if (!now.contains(link) && isThere(link.from) && isThere(link.to)) {
        const auto from = link.from.lock(), to = link.to.lock();
        add(members_.contains(to.get()) ? *to : *from, ReferenceEdit::Disconnect,
            {nameOf(*from) + "." + link.source, nameOf(*to) + "." + link.destination, ""});
      }
    for (const Link& link : now)
      if (!before_.links.contains(link)) addConnect(link);
  }

  void addConnect(const Link& link) {
    const auto from = link.from.lock(), to = link.to.lock();
    const bool fromFile = members_.contains(from.get()), toFile = members_.contains(to.get());
    if (to->type().isA("reference") || from->type().isA("reference")) return;
    const std::string source = nameOf(*from) + "." + link.source,
                      destination = nameOf(*to) + "." + link.destination;
    const auto placeHolder = [&] {
      return fmt::format("{}.placeHolderList[{}]", reference_.name(), ++placeHolders_);
    };
    if (fromFile && toFile) {
      const std::string first = placeHolder(), second = placeHolder();
      add(*to, ReferenceEdit::Connect, {reference_.name(), source, destination, first, second, ""},
          0);
    } else if (fromFile) {
      add(*from, ReferenceEdit::Connect, {reference_.name(), source, placeHolder(), ""}, 3);
      result_.outside.push_back({placeHolders_, link.to, link.destination, true, source});
    } else {
      add(*to, ReferenceEdit::Connect, {reference_.name(), placeHolder(), destination, ""}, 4);
      result_.outside.push_back({placeHolders_, link.from, link.source, false, destination});
    }
  }

  scene::Document& document_;
  Node& reference_;
  const Baseline& before_;
  std::unordered_set<const Node*> members_;
  ReferenceDifferences result_;
  int placeHolders_ = 0;
};

}  // namespace

std::shared_ptr<const void> referenceBaseline(scene::Document& document,
                                              const std::vector<std::weak_ptr<Node>>& members) {
  auto baseline = std::make_shared<Baseline>();
  for (const auto& member : members) {
    const auto node = member.lock();
    if (!node || !node->isAlive()) continue;
    NodeBaseline& each = baseline->nodes.emplace_back();
    each.node = member;
    if (scene::isDagNode(*node))
      if (Node* parent = scene::dagLinks(*node).parents.front())
        each.parent = parent->weak_from_this();
    each.statements = statementsOf(document, *node);
    each.mesh = ownMesh(*node);
    addLinks(document.graph(), *node, baseline->links);
  }
  return baseline;
}

ReferenceDifferences referenceDifferences(scene::Document& document, Node& reference) {
  const auto data = scene::referenceData(reference);
  if (!data) return {};
  if (!data->fields.isLoaded || !data->fields.baseline)
    return {data->fields.edits, data->fields.outside, {}};
  return Differ(document, reference, *static_cast<const Baseline*>(data->fields.baseline.get()))
      .run(data->fields);
}

}  // namespace host::io
