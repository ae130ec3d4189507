// polySelectConstraint: the selection grown, shrunk or filtered by what components are like.
#include <algorithm>
#include <array>
#include <cmath>

#include "host/builtins/select/component_picks.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using math::Vec3;
using mesh::Mesh;
using scene::ComponentType;

using Ids = std::vector<Index>;

// What -mode says: 0 off, 1 what is picked next, 2 what is selected, 3 everything.
constexpr int kCurrentAndNext = 2, kAllAndNext = 3;

/// A number or a pair of bounds that scripts set and ask for.
struct Setting {
  const char *shortName, *longName;
  ArgType type;
  int count = 1;
};
constexpr std::array kSettings = {
    Setting{"m", "mode", ArgType::Int},
    Setting{"t", "type", ArgType::Int},
    Setting{"sz", "size", ArgType::Int},        // 1 triangles, 2 quads, 3 more
    Setting{"w", "where", ArgType::Int},        // 1 on the border, 2 inside
    Setting{"sm", "smoothness", ArgType::Int},  // 1 hard, 2 smooth
    Setting{"c", "convexity", ArgType::Int},    // 1 concave, 2 convex
    Setting{"p", "planarity", ArgType::Int},    // 1 bent, 2 flat
    Setting{"tx", "textured", ArgType::Int},    // 1 with UVs, 2 without
    Setting{"or", "order", ArgType::Bool},
    Setting{"orb", "orderbound", ArgType::Int, 2},  // edges at a vertex
    Setting{"l", "length", ArgType::Bool},
    Setting{"lb", "lengthbound", ArgType::Distance, 2},
    Setting{"ga", "geometricarea", ArgType::Bool},
    Setting{"gab", "geometricareabound", ArgType::Double, 2},
    Setting{"r", "random", ArgType::Bool},
    Setting{"rr", "randomratio", ArgType::Double},
};

struct SelectConstraints {
  std::array<std::array<double, 2>, kSettings.size()> values{};

  SelectConstraints() { values[kSettings.size() - 1][0] = 0.5; }
  [[nodiscard]] double number(std::string_view name, std::size_t part = 0) const {
    for (std::size_t i = 0; i < kSettings.size(); ++i)
      if (name == kSettings[i].longName) return values[i][part];
    return 0;
  }
  [[nodiscard]] int choice(std::string_view name) const { return static_cast<int>(number(name)); }
  [[nodiscard]] bool isWithin(std::string_view bounds, double value) const {
    return value >= number(bounds, 0) && value <= number(bounds, 1);
  }
};

bool typeOf(int mask, ComponentType& type) {
  switch (mask) {
    case 0x0001:
      type = ComponentType::Vertex;
      return true;
    case 0x8000:
      type = ComponentType::Edge;
      return true;
    case 0x0008:
      type = ComponentType::Face;
      return true;
    case 0x0010:
      type = ComponentType::Uv;
      return true;
    default:
      return false;
  }
}

bool isOnBorder(const Mesh& mesh, ComponentType type, Index id) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  const auto hasBorder = [&](std::span<const EdgeId> edges) {
    return std::any_of(edges.begin(), edges.end(),
                       [&](EdgeId e) { return adjacency.isBorderEdge(e); });
  };
  if (type == ComponentType::Vertex) return adjacency.isBorderVertex(id);
  if (type == ComponentType::Edge) return adjacency.isBorderEdge(id);
  return type == ComponentType::Face && hasBorder(mesh.faceEdges(id));
}

bool isConvex(const Mesh& mesh, FaceId face) {
  const auto vertices = mesh.faceVertices(face);
  const Vec3 normal = mesh::faceAreaVector(mesh, face);
  const std::size_t count = vertices.size();
  for (std::size_t i = 0; i < count; ++i) {
    const Vec3 before = mesh.point(vertices[i]) - mesh.point(vertices[(i + count - 1) % count]);
    const Vec3 after = mesh.point(vertices[(i + 1) % count]) - mesh.point(vertices[i]);
    if (math::dot(math::cross(before, after), normal) < 0) return false;
  }
  return true;
}

/// Whether no vertex is farther from the face's plane than a thousandth of the face's size.
bool isFlat(const Mesh& mesh, FaceId face) {
  const double size = std::sqrt(mesh::faceArea(mesh, face));
  const Vec3 normal = mesh::faceNormal(mesh, face), center = mesh::faceCenter(mesh, face);
  const auto vertices = mesh.faceVertices(face);
  return std::all_of(vertices.begin(), vertices.end(), [&](VertexId v) {
    return std::abs(math::dot(mesh.point(v) - center, normal)) <= 1e-3 * size;
  });
}

bool faceFits(const SelectConstraints& wanted, const Mesh& mesh, FaceId face) {
  const Index size = mesh.faceSize(face);
  const int sizeClass = size == 3 ? 1 : size == 4 ? 2 : 3;
  if (const int want = wanted.choice("size"); want != 0 && want != sizeClass) return false;
  if (const int want = wanted.choice("convexity"); want != 0 && (want == 2) != isConvex(mesh, face))
    return false;
  if (const int want = wanted.choice("planarity"); want != 0 && (want == 2) != isFlat(mesh, face))
    return false;
  const bool isMapped = mesh.cornerUv(mesh.currentUvSet(), mesh.firstCorner(face)) != kNone;
  if (const int want = wanted.choice("textured"); want != 0 && (want == 1) != isMapped)
    return false;
  return wanted.choice("geometricarea") == 0 ||
         wanted.isWithin("geometricareabound", mesh::faceArea(mesh, face));
}

bool edgeFits(const SelectConstraints& wanted, const Mesh& mesh, EdgeId edge) {
  if (const int want = wanted.choice("smoothness");
      want != 0 && (want == 2) != mesh.isEdgeSmooth(edge))
    return false;
  const mesh::EdgeVertices ends = mesh.edge(edge);
  return wanted.choice("length") == 0 ||
         wanted.isWithin("lengthbound", math::length(mesh.point(ends.b) - mesh.point(ends.a)));
}

/// Draws a share of the components; the same ones each time, whatever else is asked for.
bool isDrawn(Index id, double share) {
  std::uint64_t bits = static_cast<std::uint64_t>(id) + 0x9e3779b97f4a7c15ULL;
  bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9ULL;
  bits = (bits ^ (bits >> 27)) * 0x94d049bb133111ebULL;
  bits ^= bits >> 31;
  return static_cast<double>(bits >> 11) * 0x1p-53 < share;
}

bool fits(const SelectConstraints& wanted, const Mesh& mesh, ComponentType type, Index id) {
  if (wanted.choice("random") != 0 && !isDrawn(id, wanted.number("randomratio"))) return false;
  if (const int want = wanted.choice("where");
      want != 0 && (want == 1) != isOnBorder(mesh, type, id))
    return false;
  if (type == ComponentType::Face) return faceFits(wanted, mesh, id);
  if (type == ComponentType::Edge) return edgeFits(wanted, mesh, id);
  if (type != ComponentType::Vertex || wanted.choice("order") == 0) return true;
  return wanted.isWithin("orderbound",
                         static_cast<double>(mesh.adjacency().vertexEdges(id).size()));
}

/// The flags that act at once.
struct Action {
  const char *shortName, *longName;
  Result<void> (*act)(Context&);
};
template <Traverse how>
Result<void> traverseBy(Context& context) {
  return traverseSelection(context, how);
}
template <CommandResult (*selectEdges)(Context&)>
Result<void> extendBy(Context& context) {
  HOST_TRY(selectEdges(context));
  return {};
}
constexpr std::array<Result<void> (*)(Context&), 5> kPropagations = {
    nullptr, traverseBy<Traverse::Grow>, traverseBy<Traverse::Shrink>,
    traverseBy<Traverse::Boundary>, extendBy<selectEdgeLoops>};
constexpr std::array kActions = {Action{"sh", "shell", traverseBy<Traverse::Shells>},
                                 Action{"bo", "border", traverseBy<Traverse::ShellBorders>},
                                 Action{"lp", "loop", extendBy<selectEdgeLoops>},
                                 Action{"ri", "ring", extendBy<selectEdgeRings>}};

Result<void> act(Context& context, const ParsedArgs& args) {
  const int propagation = args.integer("propagate");
  if (propagation < 0 || propagation >= static_cast<int>(kPropagations.size()))
    return fail("polySelectConstraint: -propagate is 1 more, 2 less, 3 border or 4 edge loops.");
  if (propagation > 0) HOST_TRY(kPropagations[at(propagation)](context));
  for (const Action& action : kActions)
    if (args.boolean(action.longName)) HOST_TRY(action.act(context));
  return {};
}

/// What is selected, or all on the meshes that are selected (without any, on those that are
/// hilited), as far as it fits.
Result<std::vector<std::string>> filter(Context& context, const SelectConstraints& wanted,
                                        bool selects) {
  ComponentType type{};
  if (!typeOf(wanted.choice("type"), type))
    return fail(
        "polySelectConstraint: -type is 0x1 vertices, 0x8000 edges, 0x8 faces or 0x10 UVs.");
  const bool isAll = wanted.choice("mode") == kAllAndNext;
  auto items = meshItems(context.document.selection());
  if (items && items->empty() && isAll) items = meshItems(context.document.hilite());
  if (!items) return failWith(std::move(items.error()));
  std::vector<ComponentPick> picks;
  for (MeshItem& item : *items) {
    if (isAll) item.components.clear();
    const bool isDone = std::any_of(picks.begin(), picks.end(), [&](const ComponentPick& pick) {
      return pick.item->path == item.path;
    });
    if (isAll && isDone) continue;
    Ids ids = convertedIds(item, type);
    std::erase_if(ids, [&](Index id) { return !fits(wanted, item.mesh, type, id); });
    picks.push_back({&item, type, std::move(ids)});
  }
  if (selects) selectPicks(context, picks);
  return pickedList(picks).names();
}

CommandResult query(const SelectConstraints& state, const ParsedArgs& args) {
  for (std::size_t i = 0; i < kSettings.size(); ++i) {
    const Setting& setting = kSettings[i];
    if (!args.has(setting.longName)) continue;
    const auto& value = state.values[i];
    if (setting.count == 2) return mel::Value(mel::FloatArray{value[0], value[1]});
    return mel::Value(static_cast<std::int32_t>(value[0]));
  }
  return fail("polySelectConstraint: say which setting to query.");
}

CommandResult polySelectConstraint(Context& context, const ParsedArgs& args) {
  auto& kept = workspace::workspaceOf(context.session).selectConstraints;
  SelectConstraints state;
  if (kept.empty()) kept.assign(state.values.begin(), state.values.end());
  std::copy(kept.begin(), kept.end(), state.values.begin());
  if (args.isQuery()) return query(state, args);
  SelectConstraints wanted = state;
  for (std::size_t i = 0; i < kSettings.size(); ++i)
    for (int part = 0; args.has(kSettings[i].longName) && part < kSettings[i].count; ++part)
      wanted.values[i][at(part)] = kSettings[i].type == ArgType::Bool
                                       ? args.boolean(kSettings[i].longName)
                                       : args.real(kSettings[i].longName, 0, part);
  HOST_TRY(act(context, args));
  std::vector<std::string> names;
  if (wanted.choice("mode") >= kCurrentAndNext) {
    auto found = filter(context, wanted, !args.has("returnSelection"));
    if (!found) return failWith(std::move(found.error()));
    names = std::move(*found);
  }
  if (args.has("disable")) wanted = SelectConstraints();
  kept.assign(wanted.values.begin(), wanted.values.end());
  if (args.has("returnSelection")) return toValue(std::move(names));
  return mel::Value();
}

}  // namespace

void registerPolySelectConstraint(CommandRegistry& registry) {
  Syntax syntax;
  for (const Setting& setting : kSettings)
    syntax.flag(setting.shortName, setting.longName,
                std::vector<ArgType>(at(setting.count), setting.type));
  for (const Action& action : kActions)
    syntax.flag(action.shortName, action.longName, {ArgType::Bool});
  define(registry, "polySelectConstraint",
         syntax.flag("pp", "propagate", {ArgType::Int})
             .flag("dis", "disable")
             .flag("rs", "returnSelection")
             .queryable(),
         polySelectConstraint);
}

}  // namespace host::builtins
