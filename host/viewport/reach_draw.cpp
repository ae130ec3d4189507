#include "host/viewport/reach_draw.h"

#include <algorithm>
#include <list>

#include "host/mesh/adjacency.h"

namespace host::viewport {
namespace {

/// What was drawn of one instance last.
struct Drawn {
  std::weak_ptr<const ColoredVertices> reach;
  std::uint64_t id = 0;
  mesh::Mesh mesh;  ///< shares its arrays, so that unchanged points are known by their address
  VertexDataPtr vertices;
  IndexDataPtr edges;
};

/// The last few: views show the same meshes over and over.
std::list<Drawn>& kept() {
  static std::list<Drawn> all;
  return all;
}

IndexDataPtr edgesAmong(const mesh::Mesh& mesh, const std::vector<VertexId>& vertices) {
  auto indices = std::make_shared<IndexData>();
  const mesh::Adjacency& adjacency = mesh.adjacency();
  for (std::size_t i = 0; i < vertices.size(); ++i)
    for (const EdgeId e : adjacency.vertexEdges(vertices[i])) {
      const VertexId a = mesh.edge(e).a, b = mesh.edge(e).b;
      const VertexId other = a == vertices[i] ? b : a;
      if (other <= vertices[i]) continue;  // from its other end
      const auto found = std::ranges::lower_bound(vertices, other);
      if (found == vertices.end() || *found != other) continue;
      indices->push_back(static_cast<std::uint32_t>(i));
      indices->push_back(static_cast<std::uint32_t>(found - vertices.begin()));
    }
  return indices;
}

const Drawn& drawnOf(const RenderMesh& object) {
  constexpr std::size_t kMost = 16;
  std::list<Drawn>& all = kept();
  all.remove_if([](const Drawn& each) { return each.reach.expired(); });
  auto found = std::ranges::find_if(all, [&](const Drawn& each) {
    return each.id == object.id && each.reach.lock() == object.reach;
  });
  const bool isKnown = found != all.end();
  if (isKnown)
    all.splice(all.begin(), all, found);
  else
    all.emplace_front();
  if (all.size() > kMost) all.pop_back();
  Drawn& drawn = all.front();
  if (!isKnown || drawn.mesh.points().data() != object.mesh.points().data()) {
    auto data = std::make_shared<VertexData>();
    data->positions.reserve(object.reach->vertices.size());
    for (const VertexId v : object.reach->vertices)
      data->positions.push_back(object.mesh.points()[at(v)]);
    data->colors = object.reach->colors;
    drawn.vertices = std::move(data);
  }
  if (!isKnown) {
    drawn.reach = object.reach;
    drawn.id = object.id;
    drawn.edges = edgesAmong(object.mesh, object.reach->vertices);
  }
  drawn.mesh = object.mesh;
  return drawn;
}

}  // namespace

void drawReach(const RenderMesh& object, double edgePixels, DrawList& list) {
  if (!object.reach || object.reach->vertices.empty() ||
      object.reach->vertices.back() >= object.mesh.vertexCount())
    return;
  const Drawn& drawn = drawnOf(object);
  const auto add = [&](Primitive primitive, Pass pass, IndexDataPtr indices, float width,
                       float pull) {
    DrawItem& item = list.items.emplace_back();
    item.vertices = drawn.vertices;
    item.indices = std::move(indices);
    item.world = object.world;
    item.primitive = primitive;
    item.pass = pass;
    item.depthWrite = false;
    item.width = width;
    item.pull = pull;
    item.priority = 1;
  };
  // Over the wire, below what is selected.
  constexpr float kLinePull = 2.25f, kDotPull = 4.25f, kDot = 5;
  if (!drawn.edges->empty()) add(Primitive::Lines, Pass::Wire, drawn.edges, 1.8f, kLinePull);
  const float size = std::clamp(static_cast<float>(edgePixels) * 0.45f, 2.0f, kDot);
  add(Primitive::Points, Pass::Dots, nullptr, size, kDotPull);
}

}  // namespace host::viewport
