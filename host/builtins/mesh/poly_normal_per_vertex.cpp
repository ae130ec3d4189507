// polyNormalPerVertex: sets, locks, frees and tells normals of vertices and corners.
#include <algorithm>
#include <array>
#include <functional>
#include <optional>

#include "host/builtins/common/command.h"
#include "host/builtins/mesh/corner_record.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

using nodes::MeshItem;

namespace {

using math::Vec3;

/// A component, with the corners whose normals are its own.
struct Target {
  std::vector<CornerId> corners;
};

/// One target a vertex, or a corner where vertex-faces are named; the vertices of edges and faces.
std::vector<Target> targetsOf(const MeshItem& item) {
  std::vector<Target> targets;
  const bool hasCorners =
      std::ranges::any_of(item.components, [](const scene::Component& component) {
        return component.type() == scene::ComponentType::VertexFace;
      });
  if (hasCorners) {
    for (const CornerId corner : item.ids(scene::ComponentType::VertexFace))
      targets.push_back({{corner}});
    return targets;
  }
  for (const VertexId v : item.vertices()) {
    const auto corners = item.mesh.adjacency().vertexCorners(v);
    targets.push_back({{corners.begin(), corners.end()}});
  }
  return targets;
}

/// What the flags say of the i-th component's normal.
class NormalChange {
 public:
  explicit NormalChange(const ParsedArgs& args) : args_(args) {
    static constexpr std::array kAxes = {"normalX", "normalY", "normalZ"};
    for (std::size_t i = 0; i < 3; ++i)
      if (args.has(kAxes[i])) axes_[i] = args.real(kAxes[i]);
  }

  [[nodiscard]] bool isAny() const {
    return args_.has("normalXYZ") || axes_[0] || axes_[1] || axes_[2] ||
           args_.has("freezeNormal") || args_.has("unFreezeNormal");
  }
  /// One vector for all components, or one for each.
  [[nodiscard]] Result<void> fits(std::size_t components) const {
    const auto uses = at(args_.uses("normalXYZ"));
    if (uses > 1 && uses != components)
      return fail(ErrorKind::BadArgument,
                  "polyNormalPerVertex: give one vector, or one for each of the {} components.",
                  components);
    return {};
  }
  [[nodiscard]] Vec3 on(const Vec3& before, std::size_t component) const {
    Vec3 wanted = before;
    const bool adds = args_.has("relative");
    if (const int uses = args_.uses("normalXYZ"); uses > 0) {
      const auto numbers = args_.values("normalXYZ", uses == 1 ? 0 : static_cast<int>(component));
      const Vec3 given{numbers[0].floatValue(), numbers[1].floatValue(), numbers[2].floatValue()};
      wanted = adds ? before + given : given;
    }
    for (int i = 0; i < 3; ++i)
      if (const auto& axis = axes_[at(i)]) wanted[i] = adds ? wanted[i] + *axis : *axis;
    const double size = length(wanted);
    return size > 0 ? wanted / size : before;
  }
  [[nodiscard]] bool frees() const {
    return args_.has("unFreezeNormal") && args_.boolean("unFreezeNormal", true);
  }

 private:
  const ParsedArgs& args_;
  std::array<std::optional<double>, 3> axes_;
};

/// Writes what a mesh has at some corners into a node: a locked normal, or that it is let go.
Result<void> recordNormals(dg::Node& node, const mesh::Mesh& mesh,
                           const std::vector<CornerId>& changed) {
  dg::Graph& graph = node.graph();
  const mesh::LockedNormals& normals = mesh.lockedNormals();
  const dg::Plug all = node.plug("normalPerVertex").child(0);
  const auto normalOf = [&](CornerId corner) {
    const bool isLocked = !normals.locked.empty() && normals.locked[at(corner)] != 0;
    constexpr float kLetGo = 1e20F;
    return isLocked ? normals.normals[at(corner)] : math::Vec3f{kLetGo, kLetGo, kLetGo};
  };
  for (const VertexCorners& each : byVertex(mesh, changed)) {
    const dg::Plug element = all.element(each.vertex), faces = element.child(1);
    const math::Vec3f first = normalOf(each.corners.front().second);
    const bool isOne = each.isWhole && std::ranges::all_of(each.corners, [&](const auto& corner) {
                         return normalOf(corner.second) == first;
                       });
    if (isOne && graph.elementIndices(faces).empty()) {
      HOST_TRY(setNumbers(graph, element.child(0), {first.x, first.y, first.z}));
      continue;
    }
    for (const auto& [face, corner] : each.corners) {
      const math::Vec3f normal = normalOf(corner);
      HOST_TRY(setNumbers(graph, faces.element(face).child(0), {normal.x, normal.y, normal.z}));
    }
  }
  return {};
}

/// The new normal of a corner from the one before; nothing lets it go.
using NormalOf =
    std::function<std::optional<Vec3>(CornerId corner, const Vec3& before, std::size_t component)>;

Result<void> changeOne(scene::Document& document, const MeshItem& item, const NormalOf& normalOf,
                       bool makesHistory, std::size_t& component) {
  // Read again: an earlier item may be another instance of the same shape.
  auto mesh = nodes::evaluatedMesh(*item.path.node());
  if (!mesh) return failWith(std::move(mesh.error()));
  const std::vector<math::Vec3f> now(mesh->cornerNormals().begin(), mesh->cornerNormals().end());
  mesh::LockedNormals& normals = mesh->editLockedNormals();
  normals.normals.resize(now.size());
  normals.locked.resize(now.size(), 0);
  std::vector<CornerId> changed;
  for (const Target& target : targetsOf(item)) {
    for (const CornerId corner : target.corners) {
      changed.push_back(corner);
      const auto wanted = normalOf(corner, Vec3(now[at(corner)]), component);
      normals.locked[at(corner)] = wanted ? 1 : 0;
      normals.normals[at(corner)] = wanted ? wanted->toFloat() : math::Vec3f();
    }
    ++component;
  }
  if (std::ranges::all_of(normals.locked, [](std::uint8_t locked) { return locked == 0; }))
    normals = {};
  dg::Node& shape = *item.path.node();
  if ((!makesHistory && !nodes::hasHistory(shape)) ||
      static_cast<Index>(changed.size()) > kMostRecordedCorners)
    return nodes::setEvaluatedMesh(shape, *std::move(mesh));
  const auto fill = [&](dg::Node& node) { return recordNormals(node, *mesh, changed); };
  if (dg::Node* present = cornerNodeInFront(document.graph(), shape, "polyNormalPerVertex")) {
    const auto adds = document.graph().get(present->plug("normalAdd"));
    if (adds && dg::equal(*adds, std::int64_t{0})) return fill(*present);
  }
  return insertCornerNode(document, shape, "polyNormalPerVertex", fill);
}

/// Every corner's normal in order: x, y and z together or one of them; or who is locked.
CommandResult query(const ParsedArgs& args, const std::vector<MeshItem>& items) {
  const bool asksLocks = args.has("freezeNormal") || args.has("unFreezeNormal");
  mel::FloatArray numbers;
  mel::IntArray locks;
  bool areAllLocked = true;
  for (const MeshItem& item : items) {
    const auto normals = item.mesh.cornerNormals();
    for (const Target& target : targetsOf(item))
      for (const CornerId corner : target.corners) {
        const math::Vec3f& n = normals[at(corner)];
        const bool isLocked = item.mesh.isNormalLocked(corner);
        areAllLocked = areAllLocked && isLocked;
        locks.push_back(isLocked == args.has("freezeNormal") ? 1 : 0);
        if (args.has("normalXYZ")) numbers.insert(numbers.end(), {n.x, n.y, n.z});
        if (args.has("normalX")) numbers.push_back(n.x);
        if (args.has("normalY")) numbers.push_back(n.y);
        if (args.has("normalZ")) numbers.push_back(n.z);
      }
  }
  if (args.has("allLocked")) return mel::Value(areAllLocked);
  if (asksLocks) return mel::Value(std::move(locks));
  return mel::Value(std::move(numbers));
}

CommandResult polyNormalPerVertex(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  const auto items = nodes::meshItems(*list);
  if (!items) return failWith(items.error());
  if (items->empty())
    return fail("polyNormalPerVertex: name or select polygon objects or components.");
  if (args.isQuery()) return query(args, *items);
  const NormalChange change(args);
  if (!change.isAny())
    return fail("polyNormalPerVertex: give a normal, as with -xyz 0 1 0, -fn or -ufn.");
  std::size_t count = 0;
  for (const MeshItem& item : *items) count += targetsOf(item).size();
  HOST_TRY(change.fits(count));
  std::size_t component = 0;
  const auto normalOf = [&](CornerId, const Vec3& before, std::size_t at) {
    return change.frees() ? std::nullopt : std::optional(change.on(before, at));
  };
  for (const MeshItem& item : *items)
    HOST_TRY(changeOne(context.document, item, normalOf, args.boolean("constructionHistory", false),
                       component));
  return mel::Value(true);
}

/// Lets the normals at components go and makes the edges there hard, so that they are the faces'.
Result<void> hardenAround(scene::Document& document, const MeshItem& item) {
  const NormalOf none = [](CornerId, const Vec3&, std::size_t) -> std::optional<Vec3> {
    return std::nullopt;
  };
  std::size_t component = 0;
  if (!item.mesh.lockedNormals().normals.empty())
    HOST_TRY(changeOne(document, item, none, false, component));
  std::vector<EdgeId> edges;
  for (const Target& target : targetsOf(item))
    for (const CornerId corner : target.corners)
      for (const EdgeId edge :
           item.mesh.adjacency().vertexEdges(item.mesh.topology().cornerVertices[corner]))
        edges.push_back(edge);
  mesh::sortUnique(edges);
  dg::Node& shape = *item.path.node();
  if (nodes::hasHistory(shape))
    return insertCornerNode(document, shape, "polySoftEdge", [&](dg::Node& node) -> Result<void> {
      dg::Graph& graph = document.graph();
      HOST_TRY(graph.set(node.plug("angle"), 0.0));
      return graph.set(node.plug("inputComponents"),
                       dg::DataPtr(std::make_shared<scene::ComponentListData>(
                           std::vector{scene::Component::of(edges)})));
    });
  auto mesh = nodes::evaluatedMesh(shape);
  if (!mesh) return failWith(std::move(mesh.error()));
  for (const EdgeId edge : edges) mesh->setEdgeSmooth(edge, false);
  return nodes::setEvaluatedMesh(shape, *std::move(mesh));
}

CommandResult polySetToFaceNormal(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  const auto items = nodes::meshItems(*list);
  if (!items) return failWith(items.error());
  if (items->empty())
    return fail("polySetToFaceNormal: name or select polygon objects or components.");
  std::size_t component = 0;
  for (const MeshItem& item : *items) {
    if (!args.has("setUserNormal")) {
      HOST_TRY(hardenAround(context.document, item));
      continue;
    }
    const auto ofFace = [&](CornerId corner, const Vec3& before, std::size_t) {
      const Vec3 normal = mesh::faceNormal(item.mesh, item.mesh.adjacency().cornerFace(corner));
      return std::optional(length(normal) > 0 ? normal : before);
    };
    HOST_TRY(changeOne(context.document, item, ofFace, false, component));
  }
  return mel::Value(true);
}

}  // namespace

void registerPolyNormalPerVertex(CommandRegistry& registry) {
  define(registry, "polyNormalPerVertex",
         Syntax()
             .about("Sets, locks, frees or tells normals of vertices and corners.")
             .flag("xyz", "normalXYZ", {ArgType::Double, ArgType::Double, ArgType::Double})
             .multiUse()
             .help("the normal, of any length; one for all components or one for each")
             .flag("x", "normalX", {ArgType::Double})
             .help("x of the normal, the others stay")
             .flag("y", "normalY", {ArgType::Double})
             .help("y of the normal")
             .flag("z", "normalZ", {ArgType::Double})
             .help("z of the normal")
             .flag("rel", "relative")
             .help("is added to what the normal was")
             .flag("fn", "freezeNormal", {ArgType::Bool})
             .optionalArgs()
             .help("locks normals as they are")
             .flag("ufn", "unFreezeNormal", {ArgType::Bool})
             .optionalArgs()
             .help("lets normals follow the faces again")
             .flag("al", "allLocked", {ArgType::Bool})
             .optionalArgs()
             .help("queried: whether all are locked")
             .flag("def", "deformable", {ArgType::Bool})
             .help("obsolete; recorded nowhere")
             .flag("ch", "constructionHistory", {ArgType::Bool})
             .help("makes a node on a mesh without history, too")
             .editable()
             .queryable()
             .objects(0, -1, true),
         polyNormalPerVertex);
  define(registry, "polySetToFaceNormal",
         Syntax()
             .about("Gives vertices and corners the normals of their faces.")
             .flag("suv", "setUserNormal")
             .help("locks them; without it locks go and the edges around become hard")
             .objects(0, -1, true),
         polySetToFaceNormal);
}

}  // namespace host::builtins
