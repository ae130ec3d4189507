#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "host/builtins/common/command.h"
#include "host/builtins/mesh/corner_record.h"
#include "host/mesh/adjacency.h"
#include "host/modelling/declare/corner_values.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

using nodes::componentIds;
using nodes::MeshItem;
using nodes::meshItems;

namespace {

using mesh::Color4f;
using mesh::Mesh;

/// The channels that the flags give; those that are not given keep their value.
struct ColorChange {
  std::array<bool, 4> isGiven{};
  std::array<float, 4> value{};
  bool isRelative = false, removes = false;

  explicit ColorChange(const ParsedArgs& args)
      : isRelative(args.has("relative")), removes(args.has("remove")) {
    static constexpr std::array kChannels = {"colorR", "colorG", "colorB", "alpha"};
    for (int i = 0; i < 3; ++i)
      if (args.has("colorRGB")) give(at(i), args.real("colorRGB", 0, i));
    for (std::size_t i = 0; i < kChannels.size(); ++i)
      if (args.has(kChannels[i])) give(i, args.real(kChannels[i]));
  }

  [[nodiscard]] bool isAny() const {
    return removes || std::find(isGiven.begin(), isGiven.end(), true) != isGiven.end();
  }

  [[nodiscard]] Color4f on(const Color4f& before) const {
    std::array<float, 4> channels = {before.r, before.g, before.b, before.a};
    for (std::size_t i = 0; i < 4; ++i)
      if (isGiven[i]) channels[i] = isRelative ? channels[i] + value[i] : value[i];
    return {channels[0], channels[1], channels[2], channels[3]};
  }

 private:
  void give(std::size_t channel, double wanted) {
    isGiven[channel] = true;
    value[channel] = static_cast<float>(wanted);
  }
};

/// The corners that an item's components colour: those at a vertex, of a face, at the ends of an
/// edge.
std::vector<CornerId> corners(const MeshItem& item) {
  if (item.isObject()) return item.idsOf<CornerId>();
  std::vector<CornerId> all;
  for (const scene::Component& component : item.components) {
    std::vector<Index> own = componentIds(item.mesh, component);
    mesh::ComponentType kind = component.type();
    if (kind == mesh::ComponentType::Edge || kind == mesh::ComponentType::Uv) {
      own = mesh::convertComponents(item.mesh, kind, own, mesh::ComponentType::Vertex,
                                    mesh::Conversion::Connected, item.mesh.currentUvSet());
      kind = mesh::ComponentType::Vertex;
    }
    const std::vector<Index> more =
        mesh::convertComponents(item.mesh, kind, own, mesh::ComponentType::VertexFace);
    all.insert(all.end(), more.begin(), more.end());
  }
  mesh::sortUnique(all);
  return all;
}

void recolor(mesh::ColorSet& set, Index cornerCount, const std::vector<CornerId>& wanted,
             const ColorChange& change) {
  if (set.cornerIds.empty()) set.cornerIds.assign(at(cornerCount), kNone);
  // Corners that had one colour share the new one as well.
  std::map<Index, Index> changed;
  for (const CornerId corner : wanted) {
    Index& id = set.cornerIds[corner];
    if (change.removes) {
      id = kNone;
      continue;
    }
    const auto [found, isNew] = changed.try_emplace(id, static_cast<Index>(set.colors.size()));
    if (isNew) set.colors.push_back(change.on(id == kNone ? Color4f{} : set.colors[at(id)]));
    id = found->second;
  }
  modelling::dropUnusedColors(set);
}

/// What the flags say beside the colours themselves.
struct SetFormat {
  std::optional<bool> clamped;
  std::optional<int> representation;

  explicit SetFormat(const ParsedArgs& args) {
    if (args.has("clamped")) clamped = args.boolean("clamped");
    if (args.has("representation")) representation = args.integer("representation");
  }
  [[nodiscard]] bool isAny() const { return clamped || representation; }
  [[nodiscard]] Result<void> check() const {
    if (!representation || *representation == 1 || *representation == 3 || *representation == 4)
      return {};
    return fail(ErrorKind::BadArgument,
                "polyColorPerVertex: the representation is 1 (A), 3 (RGB) or 4 (RGBA), not {}.",
                *representation);
  }
  void apply(mesh::ColorSet& set) const {
    if (clamped) set.clamped = *clamped;
    if (representation) set.representation = *representation;
  }
};

/// Writes the colours that a set has at some corners into a node: for a whole vertex when all of it
/// has one colour and the node says nothing of its corners.
Result<void> recordColors(dg::Node& node, const Mesh& mesh, const std::vector<CornerId>& changed) {
  dg::Graph& graph = node.graph();
  const mesh::ColorSet& set = mesh.colorSet(mesh.currentColorSet());
  HOST_TRY(graph.set(node.plug("colorSetName"), dg::Value(set.name)));
  HOST_TRY(graph.set(node.plug("clamped"), std::int64_t{set.clamped}));
  HOST_TRY(graph.set(node.plug("representation"), std::int64_t{set.representation}));
  const dg::Plug all = node.plug("colorPerVertex").child(0);
  const auto colorOf = [&](CornerId corner) { return set.colors[at(set.cornerIds[corner])]; };
  for (const VertexCorners& each : byVertex(mesh, changed)) {
    const dg::Plug element = all.element(each.vertex), faces = element.child(2);
    const Color4f first = colorOf(each.corners.front().second);
    const bool isOne = each.isWhole && std::ranges::all_of(each.corners, [&](const auto& corner) {
                         return colorOf(corner.second) == first;
                       });
    if (isOne && graph.elementIndices(faces).empty()) {
      HOST_TRY(setNumbers(graph, element.child(0), {first.r, first.g, first.b}));
      HOST_TRY(graph.set(element.child(1), double{first.a}));
      continue;
    }
    for (const auto& [face, corner] : each.corners) {
      const Color4f color = colorOf(corner);
      HOST_TRY(setNumbers(graph, faces.element(face).child(0), {color.r, color.g, color.b}));
      HOST_TRY(graph.set(faces.element(face).child(1), double{color.a}));
    }
  }
  return {};
}

/// The node that already holds colours of the mesh's current set, or a new one.
Result<void> keepColors(scene::Document& document, dg::Node& shape, const Mesh& mesh,
                        const std::vector<CornerId>& changed) {
  dg::Graph& graph = document.graph();
  const auto fill = [&](dg::Node& node) { return recordColors(node, mesh, changed); };
  if (dg::Node* present = cornerNodeInFront(graph, shape, "polyColorPerVertex")) {
    const auto name = graph.get(present->plug("colorSetName"));
    if (name && dg::equal(*name, dg::Value(mesh.colorSet(mesh.currentColorSet()).name)))
      return fill(*present);
  }
  return insertCornerNode(document, shape, "polyColorPerVertex", fill);
}

Result<void> dropColors(scene::Document& document, const MeshItem& item, const Mesh& mesh) {
  std::vector<scene::Component> components = item.components;
  if (item.isObject()) components = {scene::Component::all(scene::ComponentType::Vertex)};
  return insertCornerNode(
      document, *item.path.node(), "polyColorDel", [&](dg::Node& node) -> Result<void> {
        dg::Graph& graph = document.graph();
        HOST_TRY(graph.set(
            node.plug("inputComponents"),
            dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(components)))));
        return graph.set(node.plug("colorSetName"),
                         dg::Value(mesh.colorSet(mesh.currentColorSet()).name));
      });
}

Result<void> colorOne(scene::Document& document, const MeshItem& item, const ColorChange& change,
                      const SetFormat& format, bool makesHistory) {
  // Read again: an earlier item may be another instance of the same shape.
  auto mesh = nodes::evaluatedMesh(*item.path.node());
  if (!mesh) return failWith(std::move(mesh.error()));
  if (mesh->currentColorSet() < 0) {
    if (change.removes) return {};
    mesh->setCurrentColorSet(mesh->addColorSet({"colorSet1", 4, false, {}, {}}));
  }
  const std::vector<CornerId> changed = change.isAny() ? corners(item) : std::vector<CornerId>();
  dg::Node& shape = *item.path.node();
  const bool hasRoom = static_cast<Index>(changed.size()) <= kMostRecordedCorners;
  const bool isRecorded = (makesHistory || nodes::hasHistory(shape)) && hasRoom;
  if (isRecorded && change.removes) return dropColors(document, item, *mesh);
  mesh::ColorSet& set = mesh->editColorSet(mesh->currentColorSet());
  format.apply(set);
  recolor(set, mesh->cornerCount(), changed, change);
  if (isRecorded) return keepColors(document, shape, *mesh, changed);
  return nodes::setEvaluatedMesh(shape, *std::move(mesh));
}

/// The mean colour of the coloured corners at each component, in order; -1 in all channels where
/// there is none.
std::vector<Color4f> componentColors(const MeshItem& item) {
  std::vector<Color4f> colors;
  const mesh::ColorSet& set = item.mesh.colorSet(item.mesh.currentColorSet());
  const auto addMean = [&](std::span<const CornerId> around) {
    Color4f sum{0, 0, 0, 0};
    float count = 0;
    for (const CornerId corner : around) {
      const Index id = set.cornerIds.empty() ? kNone : set.cornerIds[corner];
      if (id == kNone) continue;
      const Color4f& color = set.colors[at(id)];
      sum = {sum.r + color.r, sum.g + color.g, sum.b + color.b, sum.a + color.a};
      ++count;
    }
    if (count == 0)
      colors.push_back({-1, -1, -1, -1});
    else
      colors.push_back({sum.r / count, sum.g / count, sum.b / count, sum.a / count});
  };
  if (item.components.size() == 1 &&
      item.components.front().type() == scene::ComponentType::VertexFace) {
    for (const CornerId corner : corners(item)) addMean(std::span(&corner, 1));
  } else {
    for (const VertexId v : item.vertices()) addMean(item.mesh.adjacency().vertexCorners(v));
  }
  return colors;
}

CommandResult query(const ParsedArgs& args, const std::vector<MeshItem>& items) {
  mel::FloatArray values;
  for (const MeshItem& item : items) {
    if (item.mesh.currentColorSet() < 0)
      return fail("polyColorPerVertex: '{}' has no colours.", item.path.partialName());
    for (const Color4f& color : componentColors(item)) {
      if (args.has("colorRGB")) values.insert(values.end(), {color.r, color.g, color.b});
      if (args.has("colorR")) values.push_back(color.r);
      if (args.has("colorG")) values.push_back(color.g);
      if (args.has("colorB")) values.push_back(color.b);
      if (args.has("alpha")) values.push_back(color.a);
    }
  }
  return mel::Value(std::move(values));
}

/// -query -clamped or -representation: of the current set of the first mesh.
CommandResult queryFormat(const std::vector<MeshItem>& items, bool asksClamped) {
  const Mesh& mesh = items.front().mesh;
  if (mesh.currentColorSet() < 0)
    return fail("polyColorPerVertex: '{}' has no colours.", items.front().path.partialName());
  const mesh::ColorSet& set = mesh.colorSet(mesh.currentColorSet());
  if (asksClamped) return mel::Value(set.clamped);
  return mel::Value(std::int32_t{set.representation});
}

CommandResult polyColorPerVertex(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty())
    return fail("polyColorPerVertex: name or select polygon objects or components.");
  if (args.isQuery() && args.has("colorDisplayOption")) {
    auto shown = context.document.graph().get(items->front().path.node()->plug("displayColors"));
    if (!shown) return failWith(std::move(shown.error()));
    const auto* isOn = std::get_if<std::int64_t>(&*shown);
    return mel::Value(isOn && *isOn != 0);
  }
  if (args.isQuery() && args.has("clamped")) return queryFormat(*items, true);
  if (args.isQuery() && args.has("representation")) return queryFormat(*items, false);
  if (args.isQuery()) return query(args, *items);
  const ColorChange change(args);
  const SetFormat format(args);
  HOST_TRY(format.check());
  const bool colors = change.isAny() || format.isAny();
  if (!colors && !args.has("colorDisplayOption"))
    return fail("polyColorPerVertex: give a colour, as with -rgb 1 0 0, or -remove.");
  const auto edit = [&]() -> Result<void> {
    for (const MeshItem& item : *items) {
      if (colors)
        HOST_TRY(colorOne(context.document, item, change, format,
                          args.boolean("constructionHistory", false)));
      if (args.has("colorDisplayOption"))
        HOST_TRY(
            context.document.graph().set(item.path.node()->plug("displayColors"),
                                         std::int64_t{args.boolean("colorDisplayOption", true)}));
    }
    return {};
  };
  if (args.has("notUndoable")) {
    const scene::Journal::Scope unrecorded(context.document.journal(), nullptr);
    HOST_TRY(edit());
  } else {
    HOST_TRY(edit());
  }
  return mel::Value(true);
}

}  // namespace

void registerPolyColorPerVertex(CommandRegistry& registry) {
  define(registry, "polyColorPerVertex",
         Syntax()
             .flag("rgb", "colorRGB", {ArgType::Double, ArgType::Double, ArgType::Double})
             .flag("r", "colorR", {ArgType::Double})
             .flag("g", "colorG", {ArgType::Double})
             .flag("b", "colorB", {ArgType::Double})
             .flag("a", "alpha", {ArgType::Double})
             .flag("rel", "relative")
             .flag("rem", "remove")
             .flag("cdo", "colorDisplayOption", {ArgType::Bool})
             .optionalArgs()
             .flag("cla", "clamped", {ArgType::Bool})
             .flag("rpt", "representation", {ArgType::Int})
             .flag("nun", "notUndoable")
             .flag("ch", "constructionHistory", {ArgType::Bool})
             .queryable()
             .editable()
             .objects(0, -1, true),
         polyColorPerVertex);
}

}  // namespace host::builtins
