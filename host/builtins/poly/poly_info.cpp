#include <algorithm>
#include <cmath>

#include "host/builtins/common/command.h"
#include "host/mesh/adjacency.h"
#include "host/nodes/mesh_components.h"

namespace host::builtins {

using nodes::MeshItem;
using nodes::meshItems;

namespace {

using math::Vec3;
using scene::ComponentType;

struct Listing {
  const char *shortName, *longName, *label;
  ComponentType of;
};
/// What is told about each component, a line each.
constexpr Listing kListings[] = {
    {"ve", "vertexToEdge", "VERTEX", ComponentType::Vertex},
    {"vf", "vertexToFace", "VERTEX", ComponentType::Vertex},
    {"ev", "edgeToVertex", "EDGE", ComponentType::Edge},
    {"ef", "edgeToFace", "EDGE", ComponentType::Edge},
    {"fv", "faceToVertex", "FACE", ComponentType::Face},
    {"fe", "faceToEdge", "FACE", ComponentType::Face},
    {"fn", "faceNormals", "FACE_NORMAL", ComponentType::Face},
};

std::string numbersLine(const Listing& listing, Index id, IdView numbers) {
  std::string line = fmt::format("{} {:6}:", listing.label, id);
  for (const Index number : numbers) line += fmt::format(" {:6}", number);
  return line + " ";
}

Vec3 faceNormal(const mesh::Mesh& mesh, FaceId face) {
  Vec3 normal;
  const auto loop = mesh.faceVertices(face);
  for (std::size_t i = 0; i < loop.size(); ++i)
    normal += math::cross(mesh.point(loop[i]), mesh.point(loop[(i + 1) % loop.size()]));
  return math::normalized(normal);
}

std::string lineFor(const Listing& listing, const mesh::Mesh& mesh, Index id) {
  const std::string_view what = listing.longName;
  const mesh::Adjacency& adjacency = mesh.adjacency();
  if (what == "vertexToEdge") return numbersLine(listing, id, adjacency.vertexEdges(id)) + "\n";
  if (what == "vertexToFace") return numbersLine(listing, id, adjacency.vertexFaces(id)) + "\n";
  if (what == "edgeToFace") return numbersLine(listing, id, adjacency.edgeFaces(id)) + "\n";
  if (what == "faceToVertex") return numbersLine(listing, id, mesh.faceVertices(id)) + "\n";
  if (what == "faceToEdge") return numbersLine(listing, id, mesh.faceEdges(id)) + "\n";
  if (what == "edgeToVertex") {
    const auto edge = mesh.edge(id);
    const Index ends[] = {edge.a, edge.b};
    return numbersLine(listing, id, ends) + (mesh.isEdgeSmooth(id) ? "" : " Hard") + "\n";
  }
  const Vec3 normal = faceNormal(mesh, id);
  // What is written as 0 has no sign, whichever way the face is turned.
  const auto shown = [](double x) { return std::abs(x) < 0.5e-6 ? 0.0 : x; };
  return fmt::format("{} {:6}: {:f} {:f} {:f}\n", listing.label, id, shown(normal.x),
                     shown(normal.y), shown(normal.z));
}

/// Faces that share all their vertices with another one.
std::vector<FaceId> laminaFaces(const mesh::Mesh& mesh) {
  std::vector<std::pair<std::vector<VertexId>, FaceId>> keys;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto loop = mesh.faceVertices(f);
    std::vector<VertexId> key(loop.begin(), loop.end());
    std::sort(key.begin(), key.end());
    keys.emplace_back(std::move(key), f);
  }
  std::sort(keys.begin(), keys.end());
  std::vector<FaceId> faces;
  for (std::size_t i = 1; i < keys.size(); ++i)
    if (keys[i].first == keys[i - 1].first)
      faces.insert(faces.end(), {keys[i - 1].second, keys[i].second});
  mesh::sortUnique(faces);
  return faces;
}

struct FaultFlag {
  const char *shortName, *longName;
  ComponentType type;
};
constexpr FaultFlag kFaults[] = {
    {"nme", "nonManifoldEdges", ComponentType::Edge},
    {"nmv", "nonManifoldVertices", ComponentType::Vertex},
    {"lf", "laminaFaces", ComponentType::Face},
    {"iv", "invalidVertices", ComponentType::Vertex},
    {"ie", "invalidEdges", ComponentType::Edge},
};

std::vector<Index> faulty(const mesh::Mesh& mesh, std::string_view what) {
  std::vector<Index> ids;
  const mesh::Adjacency& adjacency = mesh.adjacency();
  if (what == "laminaFaces") return copyIds(laminaFaces(mesh));
  if (what == "nonManifoldEdges" || what == "invalidEdges") {
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
      const bool isBad =
          what == "invalidEdges" ? adjacency.edgeFaces(e).empty() : !adjacency.isManifoldEdge(e);
      if (isBad) ids.push_back(e);
    }
    return ids;
  }
  for (VertexId v = 0; v < mesh.vertexCount(); ++v) {
    const bool isBad = what == "invalidVertices" ? adjacency.vertexEdges(v).empty()
                                                 : !adjacency.isManifoldVertex(v);
    if (isBad) ids.push_back(v);
  }
  return ids;
}

CommandResult polyInfo(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("polyInfo: name or select polygon objects or components.");
  std::vector<std::string> lines;
  scene::SelectionList found;
  for (const MeshItem& item : *items) {
    for (const Listing& listing : kListings) {
      if (!args.has(listing.longName)) continue;
      for (const Index id : item.ids(listing.of)) lines.push_back(lineFor(listing, item.mesh, id));
    }
    for (const FaultFlag& fault : kFaults)
      if (args.has(fault.longName))
        found.add(item.path, scene::Component(fault.type, faulty(item.mesh, fault.longName)));
  }
  for (std::string& name : found.names()) lines.push_back(std::move(name));
  return toValue(std::move(lines));
}

}  // namespace

void registerPolyInfo(CommandRegistry& registry) {
  Syntax syntax;
  for (const Listing& listing : kListings) syntax.flag(listing.shortName, listing.longName);
  for (const FaultFlag& fault : kFaults) syntax.flag(fault.shortName, fault.longName);
  defineQuery(registry, "polyInfo", syntax.objects(0, -1, true), polyInfo);
}

}  // namespace host::builtins
