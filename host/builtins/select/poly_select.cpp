// polySelect: loops, rings, borders, paths and shells by the number of an edge, vertex or face.
#include <algorithm>
#include <array>
#include <unordered_set>

#include "host/builtins/select/component_picks.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/paths.h"
#include "host/mesh/shells.h"
#include "host/mesh/walks.h"

namespace host::builtins {

namespace {

using mesh::EdgeWalk;
using mesh::Mesh;
using scene::ComponentType;

using Ids = std::vector<Index>;
using Walk = EdgeWalk (*)(const Mesh&, EdgeId);

/// Faces in a row, kept as walks of edges are: which of both it is says the flag.
EdgeWalk runOf(const std::vector<FaceId>& faces) {
  return {copyIds<EdgeId>(faces), false};
}
EdgeWalk shell(const Mesh& mesh, FaceId face) {
  const std::array seed{face};
  return runOf(mesh::connectedFaces(mesh, seed, mesh::ShellLink::Edges));
}
/// The whole border from an edge of it, the loop from any other edge.
EdgeWalk loopOrBorder(const Mesh& mesh, EdgeId e) {
  return mesh.adjacency().isBorderEdge(e) ? mesh::borderWalk(mesh, e) : mesh::edgeLoop(mesh, e);
}
EdgeWalk edgePath(const Mesh& mesh, Index from, Index to) {
  return {mesh::shortestEdgePath(mesh, from, to), false};
}
EdgeWalk facePath(const Mesh& mesh, Index from, Index to) {
  return runOf(mesh::shortestFacePath(mesh, from, to));
}

/// The components of a walk at the distance of two of its edges from each other, both included.
EdgeWalk pattern(const EdgeWalk& walk, EdgeId from, EdgeId to) {
  const auto count = static_cast<std::ptrdiff_t>(walk.edges.size());
  const auto i = std::find(walk.edges.begin(), walk.edges.end(), from) - walk.edges.begin();
  const auto j = std::find(walk.edges.begin(), walk.edges.end(), to) - walk.edges.begin();
  if (i == count || j == count) return {};
  const std::ptrdiff_t step = i == j ? 1 : std::max(i, j) - std::min(i, j);
  EdgeWalk picked;
  for (std::ptrdiff_t k = i % step; k < count; k += step)
    picked.edges.push_back(walk.edges[static_cast<std::size_t>(k)]);
  return picked;
}

/// A flag with one number walks from it; one with two takes a part of the walk, its pattern, or the
/// way between them.
struct SelectFlag {
  const char *shortName, *longName;
  ComponentType takes, gives;
  Walk walk = nullptr;
  enum { Whole, Part, Pattern, Between, Shell } how = Whole;
  EdgeWalk (*between)(const Mesh&, Index, Index) = nullptr;

  [[nodiscard]] std::size_t numberCount() const { return how == Whole || how == Shell ? 1 : 2; }
};
constexpr ComponentType kVertex = ComponentType::Vertex, kEdge = ComponentType::Edge,
                        kFace = ComponentType::Face;
constexpr std::array kFlags = {
    SelectFlag{"el", "edgeLoop", kEdge, kEdge, mesh::edgeLoop},
    SelectFlag{"er", "edgeRing", kEdge, kEdge, mesh::edgeRing},
    SelectFlag{"eb", "edgeBorder", kEdge, kEdge, mesh::borderWalk},
    SelectFlag{"lb", "edgeLoopOrBorder", kEdge, kEdge, loopOrBorder},
    SelectFlag{"elp", "edgeLoopPath", kEdge, kEdge, mesh::edgeLoop, SelectFlag::Part},
    SelectFlag{"erp", "edgeRingPath", kEdge, kEdge, mesh::edgeRing, SelectFlag::Part},
    SelectFlag{"ebp", "edgeBorderPath", kEdge, kEdge, mesh::borderWalk, SelectFlag::Part},
    SelectFlag{"lpt", "edgeLoopPattern", kEdge, kEdge, mesh::edgeLoop, SelectFlag::Pattern},
    SelectFlag{"rpt", "edgeRingPattern", kEdge, kEdge, mesh::edgeRing, SelectFlag::Pattern},
    SelectFlag{"bpt", "edgeBorderPattern", kEdge, kEdge, mesh::borderWalk, SelectFlag::Pattern},
    SelectFlag{"ets", "extendToShell", kFace, kFace, nullptr, SelectFlag::Shell},
    SelectFlag{"sep", "shortestEdgePath", kVertex, kEdge, nullptr, SelectFlag::Between, edgePath},
    SelectFlag{"sfp", "shortestFacePath", kFace, kFace, nullptr, SelectFlag::Between, facePath},
};

Result<EdgeWalk> walked(const SelectFlag& flag, const Mesh& mesh,
                        std::span<const mel::Value> values) {
  Ids numbers;
  for (const mel::Value& value : values) numbers.push_back(value.toInt().value_or(kNone));
  const Index count = mesh::componentCount(mesh, flag.takes);
  for (const Index number : numbers)
    if (number < 0 || number >= count)
      return fail(ErrorKind::BadArgument, "polySelect -{}: there is no {}[{}]: the mesh has {}.",
                  flag.longName, scene::componentWord(flag.takes), number, count);
  if (numbers.size() < flag.numberCount())
    return fail("polySelect: -{} takes two numbers.", flag.longName);
  if (flag.how == SelectFlag::Shell) return shell(mesh, numbers[0]);
  if (flag.how == SelectFlag::Between) return flag.between(mesh, numbers[0], numbers[1]);
  EdgeWalk walk = flag.walk(mesh, numbers[0]);
  if (walk.edges.empty())
    return fail("polySelect -{}: e[{}] is no border edge.", flag.longName, numbers[0]);
  if (flag.how == SelectFlag::Whole) return walk;
  EdgeWalk some = flag.how == SelectFlag::Pattern
                      ? pattern(walk, numbers[0], numbers[1])
                      : EdgeWalk{mesh::partOfWalk(walk, numbers[0], numbers[1]), false};
  if (some.edges.empty())
    return fail("polySelect -{}: e[{}] and e[{}] do not lie on one.", flag.longName, numbers[0],
                numbers[1]);
  return some;
}

void merge(Context& context, const ParsedArgs& args, const scene::SelectionList& found) {
  scene::SelectionList merged = context.document.selection();
  merged.merge(found, args.has("add")        ? scene::SelectionMerge::Add
                      : args.has("deselect") ? scene::SelectionMerge::Remove
                                             : scene::SelectionMerge::Toggle);
  context.document.setSelection(std::move(merged));
}

Result<void> applySelection(Context& context, const ParsedArgs& args,
                            const std::vector<ComponentPick>& picks) {
  if (args.has("add") || args.has("toggle") || args.has("deselect")) {
    merge(context, args, pickedList(picks));
    return {};
  }
  selectPicks(context, picks);
  return {};
}

CommandResult polySelect(Context& context, const ParsedArgs& args) {
  auto items = namedMeshItems(context, args);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("polySelect: name or select a polygon object.");
  const MeshItem& item = items->front();
  const int every = args.integer("everyN", 1);
  if (every < 1) return fail(ErrorKind::BadArgument, "polySelect: -everyN must be at least 1.");
  std::vector<ComponentPick> picks;
  mel::IntArray numbers;
  for (const SelectFlag& flag : kFlags) {
    for (int use = 0; use < args.uses(flag.longName); ++use) {
      auto walk = walked(flag, item.mesh, args.values(flag.longName, use));
      if (!walk) return failWith(std::move(walk.error()));
      Ids ids;
      for (std::size_t i = 0; i < walk->edges.size(); i += at(every)) ids.push_back(walk->edges[i]);
      numbers.insert(numbers.end(), ids.begin(), ids.end());
      picks.push_back({&item, flag.gives, std::move(ids)});
    }
  }
  if (picks.empty()) return fail("polySelect: say what to select, as with -edgeLoop 12.");
  if (!args.isQuery() && !args.has("noSelection")) HOST_TRY(applySelection(context, args, picks));
  if (args.has("asSelectString")) return toValue(pickedList(picks).names());
  return mel::Value(std::move(numbers));
}

// The menu's forms: from the edges that are selected.

Walk walkNamed(std::string_view name) {
  if (name == "edgeLoop" || name == "loop") return mesh::edgeLoop;
  if (name == "edgeLoopOrBorder") return loopOrBorder;
  if (name == "edgeRing" || name == "ring") return mesh::edgeRing;
  if (name == "edgeBorder" || name == "border")
    return [](const Mesh& mesh, EdgeId e) {
      return mesh.adjacency().isBorderEdge(e) ? mesh::borderWalk(mesh, e) : EdgeWalk{};
    };
  return nullptr;
}

CommandResult extendEdges(Context& context, const scene::SelectionList& from, Walk walk) {
  auto items = meshItems(from);
  if (!items) return failWith(std::move(items.error()));
  std::vector<ComponentPick> picks;
  for (const MeshItem& item : *items) {
    if (item.isObject()) continue;
    std::unordered_set<EdgeId> isMet;
    Ids edges;
    for (const EdgeId start : convertedIds(item, kEdge, mesh::Conversion::Contained)) {
      if (isMet.contains(start)) continue;
      for (const EdgeId e : walk(item.mesh, start).edges)
        if (isMet.insert(e).second) edges.push_back(e);
    }
    std::sort(edges.begin(), edges.end());
    picks.push_back({&item, kEdge, std::move(edges)});
  }
  const bool isAnyFound = std::any_of(picks.begin(), picks.end(),
                                      [](const ComponentPick& pick) { return !pick.ids.empty(); });
  if (!isAnyFound) return fail("Select one or more edges to start from.");
  selectPicks(context, picks);
  return toValue(pickedList(picks).names());
}

}  // namespace

CommandResult selectEdgeLoops(Context& context) {
  return extendEdges(context, context.document.selection(), mesh::edgeLoop);
}
CommandResult selectEdgeRings(Context& context) {
  return extendEdges(context, context.document.selection(), mesh::edgeRing);
}

void registerPolySelect(CommandRegistry& registry) {
  Syntax syntax;
  for (const SelectFlag& flag : kFlags)
    syntax
        .flag(flag.shortName, flag.longName, std::vector<ArgType>(flag.numberCount(), ArgType::Int))
        .multiUse()
        .queryArgs();
  syntax.flag("en", "everyN", {ArgType::Int}).queryArgs();
  syntax.flag("ass", "asSelectString")
      .flag("ns", "noSelection")
      .flag("add", "add")
      .flag("d", "deselect")
      .flag("r", "replace")
      .flag("tgl", "toggle");
  define(registry, "polySelect", syntax.queryable().objects(0, -1, true), polySelect);

  define(registry, "polySelectSp",
         Syntax().flag("l", "loop").flag("r", "ring").flag("b", "border").objects(0, -1, true),
         [](Context& context, const ParsedArgs& args) -> CommandResult {
           const char* kind = args.has("ring") ? "ring" : args.has("border") ? "border" : "loop";
           auto list = args.resolveObjects(context.document);
           if (!list) return failWith(std::move(list.error()));
           return extendEdges(context, *list, walkNamed(kind));
         });
  define(
      registry, "polySelectEdges", Syntax().strings(1, 1),
      [](Context& context, const ParsedArgs& args) -> CommandResult {
        const Walk walk = walkNamed(args.firstObject());
        if (!walk)
          return fail("polySelectEdges: use edgeLoop, edgeRing, edgeLoopOrBorder or edgeBorder.");
        return extendEdges(context, context.document.selection(), walk);
      });
  for (const char* name : {"SelectEdgeLoopSp", "SelectEdgeLoop"})
    define(registry, name, Syntax(),
           [](Context& context, const ParsedArgs&) { return selectEdgeLoops(context); });
  for (const char* name : {"SelectEdgeRingSp", "SelectEdgeRing"})
    define(registry, name, Syntax(),
           [](Context& context, const ParsedArgs&) { return selectEdgeRings(context); });
}

}  // namespace host::builtins
