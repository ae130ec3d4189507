// polyCleanupArgList: finds faces and edges that renderers and other programs stumble over, selects
// them or mends them.
#include <algorithm>
#include <set>

#include "host/builtins/common/command.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

using nodes::MeshItem;

namespace {

using scene::ComponentType;

/// The numbers of the list, in its order.
struct Wanted {
  bool allMeshes = false, selects = false, history = true;
  bool quads = false, nsided = false, concave = false, nonplanar = false;
  bool zeroArea = false, zeroEdge = false;
  double area = 0, edge = 0;
  int nonmanifold = -1;  ///< -1 no, 1 edges, vertices and normals, 2 edges and vertices
  bool lamina = false;
};

Result<Wanted> readList(const std::vector<std::string>& words) {
  // All versions of the list begin alike; later ones have more at the end.
  if (words.size() < 16)
    return fail(ErrorKind::BadArgument,
                "polyCleanupArgList: the list has {} entries; it takes 16 or more.", words.size());
  std::vector<double> numbers;
  for (const std::string& word : words) numbers.push_back(std::atof(word.c_str()));
  const auto is = [&](std::size_t i) { return i < numbers.size() && numbers[i] != 0; };
  return Wanted{.allMeshes = is(0),
                .selects = numbers[1] == 2,
                .history = is(2),
                .quads = is(3),
                .nsided = is(4),
                .concave = is(5),
                .nonplanar = is(7),
                .zeroArea = is(8),
                .zeroEdge = is(10),
                .area = numbers[9],
                .edge = numbers[11],
                .nonmanifold = static_cast<int>(numbers[15]),
                .lamina = is(16)};
}

bool isConcave(const mesh::Mesh& mesh, FaceId f) {
  const auto loop = mesh.faceVertices(f);
  const math::Vec3 normal = mesh::faceNormal(mesh, f);
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const math::Vec3 a = mesh.point(loop[i]), b = mesh.point(loop[(i + 1) % loop.size()]),
                     c = mesh.point(loop[(i + 2) % loop.size()]);
    const math::Vec3 in = b - a, out = c - b;
    if (dot(cross(in, out), normal) < -1e-6 * length(in) * length(out)) return true;
  }
  return false;
}

bool isBent(const mesh::Mesh& mesh, FaceId f) {
  const math::Vec3 normal = mesh::faceNormal(mesh, f), center = mesh::faceCenter(mesh, f);
  double size = 0, off = 0;
  for (const VertexId v : mesh.faceVertices(f)) {
    const math::Vec3 way = mesh.point(v) - center;
    size = std::max(size, length(way));
    off = std::max(off, std::abs(dot(way, normal)));
  }
  return off > 1e-4 * size;
}

/// What was found of one mesh, each list ascending.
struct Findings {
  std::vector<FaceId> divide, remove;
  std::vector<EdgeId> collapse, split;
  std::vector<VertexId> part;
  [[nodiscard]] bool isEmpty() const {
    return divide.empty() && remove.empty() && collapse.empty() && split.empty() && part.empty();
  }
};

/// Faces that have all their vertices in common with an earlier one.
void findLamina(const mesh::Mesh& mesh, std::vector<FaceId>& found) {
  std::set<std::vector<VertexId>> seen;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto loop = mesh.faceVertices(f);
    std::vector<VertexId> sorted(loop.begin(), loop.end());
    std::ranges::sort(sorted);
    if (!seen.insert(std::move(sorted)).second) found.push_back(f);
  }
}

Findings look(const MeshItem& item, const Wanted& wanted) {
  const mesh::Mesh& mesh = item.mesh;
  Findings found;
  std::vector<FaceId> lamina;
  if (wanted.lamina) findLamina(mesh, lamina);
  const std::vector<FaceId> faces = item.idsOf<FaceId>();
  for (const FaceId f : faces) {
    const bool isGone = (wanted.zeroArea && mesh::faceArea(mesh, f) <= wanted.area) ||
                        std::ranges::binary_search(lamina, f);
    const Index size = mesh.faceSize(f);
    if (isGone)
      found.remove.push_back(f);
    else if ((wanted.quads && size == 4) || (wanted.nsided && size > 4) ||
             (wanted.concave && isConcave(mesh, f)) ||
             (wanted.nonplanar && size > 3 && isBent(mesh, f)))
      found.divide.push_back(f);
  }
  if (wanted.zeroEdge)
    for (const EdgeId e : item.ids(ComponentType::Edge))
      if (length(mesh.point(mesh.edge(e).a) - mesh.point(mesh.edge(e).b)) <= wanted.edge)
        found.collapse.push_back(e);
  if (wanted.nonmanifold != 1 && wanted.nonmanifold != 2) return found;
  for (const EdgeId e : item.ids(ComponentType::Edge)) {
    const bool isFork = mesh.adjacency().edgeFaces(e).size() > 2;
    if (isFork || (wanted.nonmanifold == 1 && !mesh.adjacency().isManifoldEdge(e)))
      found.split.push_back(e);
  }
  for (const VertexId v : item.ids(ComponentType::Vertex)) {
    // What an edge's parting mends needs no cut of its own.
    const auto edges = mesh.adjacency().vertexEdges(v);
    const bool atSplit = std::ranges::any_of(
        edges, [&](EdgeId e) { return std::ranges::binary_search(found.split, e); });
    if (!atSplit && !mesh.adjacency().isManifoldVertex(v)) found.part.push_back(v);
  }
  return found;
}

template <AnyId Id>
std::vector<std::string> namesOf(const MeshItem& item, const std::vector<Id>& ids) {
  scene::SelectionList list;
  if (!ids.empty()) list.add(item.path, scene::Component::of(ids));
  return list.names();
}

Result<void> mend(Context& context, const char* command, bool history,
                  const std::vector<std::string>& names) {
  if (names.empty()) return {};
  std::vector<mel::Value> words{mel::Value("-constructionHistory"), mel::Value(history ? 1 : 0)};
  for (const std::string& name : names) words.emplace_back(name);
  const auto done = context.session.callCommand(command, words);
  if (!done) return failWith(done.error());
  return {};
}

/// From what keeps numbers to what changes them: each step goes by the mesh as it was, so one kind
/// of change that renumbers is made, the others by looking again.
Result<void> mendOne(Context& context, const scene::DagPath& path, const Wanted& wanted) {
  const auto again = [&]() -> Result<MeshItem> {
    scene::SelectionList list;
    list.add(path);
    auto items = nodes::meshItems(list);
    if (!items) return failWith(items.error());
    return items->front();
  };
  const auto step = [&](const char* command, auto ids) -> Result<void> {
    const auto item = again();
    if (!item) return failWith(item.error());
    const Findings found = look(*item, wanted);
    return mend(context, command, wanted.history, namesOf(*item, found.*ids));
  };
  HOST_TRY(step("polySplitEdge", &Findings::split));
  HOST_TRY(step("polySplitVertex", &Findings::part));
  HOST_TRY(step("polyCollapseEdge", &Findings::collapse));
  HOST_TRY(step("polyDelFacet", &Findings::remove));
  return step("polyTriangulate", &Findings::divide);
}

std::vector<std::string> findingNames(const MeshItem& item, const Findings& found) {
  std::vector<FaceId> faces = found.divide;
  faces.insert(faces.end(), found.remove.begin(), found.remove.end());
  std::ranges::sort(faces);
  std::vector<EdgeId> edges = found.collapse;
  edges.insert(edges.end(), found.split.begin(), found.split.end());
  std::ranges::sort(edges);
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  std::vector<std::string> names = namesOf(item, faces);
  for (const auto& more : {namesOf(item, edges), namesOf(item, found.part)})
    names.insert(names.end(), more.begin(), more.end());
  return names;
}

CommandResult polyCleanupArgList(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  if (words.size() < 2)
    return fail(ErrorKind::BadArgument,
                "polyCleanupArgList: give the version and the list, as in "
                "polyCleanupArgList 4 {{\"0\", \"2\", ...}}.");
  const auto wanted = readList({words.begin() + 1, words.end()});
  if (!wanted) return failWith(wanted.error());
  scene::SelectionList list = context.document.selection();
  if (wanted->allMeshes) {
    list = {};
    for (const auto& node : context.document.graph().nodes())
      if (node->type().name == "mesh") list.add(scene::firstPath(*node));
  }
  const auto items = nodes::meshItems(list);
  if (!items) return failWith(items.error());
  if (items->empty()) return fail("polyCleanupArgList: select polygon objects or components.");
  std::vector<std::string> names;
  for (const MeshItem& item : *items) {
    const Findings found = look(item, *wanted);
    if (found.isEmpty()) continue;
    const auto own = findingNames(item, found);
    names.insert(names.end(), own.begin(), own.end());
    if (!wanted->selects) HOST_TRY(mendOne(context, item.path, *wanted));
  }
  if (wanted->selects) {
    std::vector<mel::Value> call{mel::Value(names.empty() ? "-clear" : "-replace")};
    for (const std::string& name : names) call.emplace_back(name);
    const auto selected = context.session.callCommand("select", call);
    if (!selected) return failWith(selected.error());
  }
  return mel::Value(std::move(names));
}

}  // namespace

void registerPolyCleanup(CommandRegistry& registry) {
  define(registry, "polyCleanupArgList",
         Syntax()
             .about("Selects or mends faces, edges and vertices that other programs stumble over.")
             .strings(1),
         polyCleanupArgList);
}

}  // namespace host::builtins
