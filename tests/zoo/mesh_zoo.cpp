#include "tests/zoo/mesh_zoo.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <numeric>
#include <set>

#include "tests/zoo/zoo_shapes.h"

namespace host::zoo {

using math::Vec3;
using mesh::Mesh;

namespace {

using EdgeKey = std::pair<VertexId, VertexId>;

/// Plain maps of what touches what: slow, and sharing no code with the mesh.
struct Survey {
  std::map<EdgeKey, std::vector<FaceId>> edgeFaces;
  std::map<EdgeKey, int> walksUp;  // times an edge is walked from the lower vertex to the higher
  std::map<VertexId, std::set<FaceId>> vertexFaces;
  bool repeatsVertex = false;

  explicit Survey(const Mesh& mesh) {
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      const auto loop = mesh.faceVertices(f);
      repeatsVertex = repeatsVertex || std::set(loop.begin(), loop.end()).size() < loop.size();
      for (std::size_t i = 0; i < loop.size(); ++i) {
        const VertexId a = loop[i], b = loop[(i + 1) % loop.size()];
        edgeFaces[std::minmax(a, b)].push_back(f);
        walksUp[std::minmax(a, b)] += a < b;
        vertexFaces[a].insert(f);
      }
    }
  }

  [[nodiscard]] bool isManifold() const {
    if (repeatsVertex) return false;
    for (const auto& [key, faces] : edgeFaces)
      if (faces.size() > 2 || (faces.size() == 2 && walksUp.at(key) != 1)) return false;
    for (const auto& [v, faces] : vertexFaces)
      if (fansAt(v, faces) != 1) return false;
    return true;
  }

  /// Groups the faces at v that hang together over edges at v.
  [[nodiscard]] int fansAt(VertexId v, const std::set<FaceId>& faces) const {
    std::map<FaceId, FaceId> group;
    for (FaceId f : faces) group[f] = f;
    for (const auto& [key, around] : edgeFaces) {
      if ((key.first != v && key.second != v) || around.size() < 2) continue;
      for (FaceId f : around) {
        const FaceId from = group[f], to = group[around[0]];
        for (auto& [face, g] : group)
          if (g == from) g = to;
      }
    }
    std::set<FaceId> groups;
    for (const auto& [face, g] : group) groups.insert(g);
    return static_cast<int>(groups.size());
  }

  [[nodiscard]] int shells(Index faceCount) const {
    std::vector<Index> group(at(faceCount));
    std::iota(group.begin(), group.end(), 0);
    for (bool changed = true; changed;) {
      changed = false;
      for (const auto& [v, faces] : vertexFaces)
        for (FaceId f : faces)
          if (group[at(f)] != group[at(*faces.begin())]) {
            group[at(f)] = group[at(*faces.begin())] =
                std::min(group[at(f)], group[at(*faces.begin())]);
            changed = true;
          }
    }
    return static_cast<int>(std::set(group.begin(), group.end()).size());
  }
};

Vec3 newell(const Mesh& mesh, FaceId f) {
  Vec3 n;
  const auto loop = mesh.faceVertices(f);
  for (std::size_t i = 0; i < loop.size(); ++i)
    n += cross(mesh.point(loop[i]), mesh.point(loop[(i + 1) % loop.size()]));
  return n;
}

enum class FaceShape { Convex, Warped, Concave, Flat };
FaceShape shapeOf(const Mesh& mesh, FaceId f) {
  const Vec3 n = newell(mesh, f);
  if (length(n) < 1e-12) return FaceShape::Flat;
  const auto loop = mesh.faceVertices(f);
  const std::size_t k = loop.size();
  for (std::size_t i = 0; i < k; ++i) {
    const Vec3 a = mesh.point(loop[i]), b = mesh.point(loop[(i + 1) % k]);
    if (dot(cross(b - a, mesh.point(loop[(i + 2) % k]) - b), n) <= 0) return FaceShape::Concave;
  }
  const double size = std::sqrt(length(n));
  for (VertexId v : loop)
    if (std::abs(dot(mesh.point(v) - mesh.point(loop[0]), normalized(n))) > 1e-5 * size)
      return FaceShape::Warped;
  return FaceShape::Convex;
}

class Describer {
 public:
  explicit Describer(const Mesh& mesh) : mesh_(mesh), survey_(mesh) {}

  Has run() {
    faces();
    uvs();
    for (float c : mesh_.creases().edges) add(c > 0, Has::Creases);
    for (float c : mesh_.creases().vertices) add(c > 0, Has::Creases);
    for (auto smooth : mesh_.edgeSmooth()) add(!smooth, Has::HardEdges);
    add(mesh_.colorSetCount() > 0, Has::Colors);
    for (auto locked : mesh_.lockedNormals().locked) add(locked != 0, Has::LockedNormals);
    add(static_cast<Index>(survey_.vertexFaces.size()) < mesh_.vertexCount(),
        Has::IsolatedVertices);
    add(!mesh_.invisibleFaces().empty(), Has::InvisibleFaces);
    return has_;
  }

 private:
  void add(bool isSo, Has property) {
    if (isSo) has_ = has_ | property;
  }

  void faces() {
    add(survey_.isManifold(), Has::Manifold);
    add(!survey_.isManifold(), Has::NonManifold);
    if (mesh_.faceCount() == 0) return;
    add(true, Has::Faces);
    bool closed = true, quads = true, triangles = true, convex = true;
    for (const auto& [key, around] : survey_.edgeFaces) {
      add(around.size() == 1, Has::Border);
      closed = closed && around.size() == 2;
    }
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      const Index size = mesh_.faceSize(f);
      quads = quads && size == 4;
      triangles = triangles && size == 3;
      add(size > 4, Has::Ngons);
      const FaceShape shape = shapeOf(mesh_, f);
      add(shape == FaceShape::Concave, Has::Concave);
      add(shape == FaceShape::Flat, Has::ZeroArea);
      convex = convex && shape == FaceShape::Convex;
    }
    add(closed, Has::Closed);
    add(quads, Has::QuadsOnly);
    add(triangles, Has::TrianglesOnly);
    add(convex, Has::ConvexFaces);
    add(survey_.shells(mesh_.faceCount()) > 1, Has::SeveralShells);
  }

  void uvs() {
    add(mesh_.uvSetCount() > 1, Has::SeveralUvSets);
    for (int s = 0; s < mesh_.uvSetCount(); ++s) {
      bool with = false, without = false;
      std::map<VertexId, UvId> seen;
      for (CornerId c = 0; c < mesh_.cornerCount(); ++c) {
        const UvId id = mesh_.cornerUv(s, c);
        (id == kNone ? without : with) = true;
        if (id == kNone) continue;
        const auto [entry, isNew] = seen.emplace(mesh_.cornerVertex(c), id);
        add(entry->second != id, Has::UvSeams);
      }
      add(with, Has::Uvs);
      add(with && without, Has::PartialUvs);
    }
  }

  const Mesh& mesh_;
  Survey survey_;
  Has has_ = Has::Anything;
};

const std::vector<ZooMesh>& allZooMeshes() {
  static const std::vector<ZooMesh> all = [] {
    std::vector<ZooMesh> meshes;
    for (auto& [name, mesh] : zooShapes()) {
      const Has properties = Describer(mesh).run();
      meshes.push_back({name, std::move(mesh), properties});
    }
    return meshes;
  }();
  return all;
}

template <AnyId Id>
std::vector<Id> firstIds(Index count) {
  std::vector<Id> ids(at(count));
  std::iota(ids.begin(), ids.end(), 0);
  return ids;
}

}  // namespace

std::vector<ZooMesh> meshZoo(Has required, Has excluded) {
  std::vector<ZooMesh> meshes;
  for (const ZooMesh& zoo : allZooMeshes()) {
    const auto unwanted =
        static_cast<std::uint32_t>(zoo.properties) & static_cast<std::uint32_t>(excluded);
    if (zoo.has(required) && unwanted == 0) meshes.push_back(zoo);
  }
  return meshes;
}

Mesh zooMesh(const std::string& name) {
  for (const ZooMesh& zoo : allZooMeshes())
    if (zoo.name == name) return zoo.mesh;
  std::fprintf(stderr, "There is no zoo mesh named %s.\n", name.c_str());
  std::abort();
}

Counts counts(const Mesh& mesh) {
  return {mesh.vertexCount(), mesh.edgeCount(), mesh.faceCount(), mesh.cornerCount()};
}

std::vector<FaceId> allFaces(const Mesh& mesh) {
  return firstIds<FaceId>(mesh.faceCount());
}
std::vector<EdgeId> allEdges(const Mesh& mesh) {
  return firstIds<EdgeId>(mesh.edgeCount());
}
std::vector<VertexId> allVertices(const Mesh& mesh) {
  return firstIds<VertexId>(mesh.vertexCount());
}

double surfaceArea(const Mesh& mesh) {
  double area = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto loop = mesh.faceVertices(f);
    Vec3 center;
    for (VertexId v : loop) center += mesh.point(v) / static_cast<double>(loop.size());
    for (std::size_t i = 0; i < loop.size(); ++i)
      area += 0.5 * length(cross(mesh.point(loop[i]) - center,
                                 mesh.point(loop[(i + 1) % loop.size()]) - center));
  }
  return area;
}

Mesh meshOf(std::vector<math::Vec3f> points, const std::vector<std::vector<VertexId>>& faces) {
  std::vector<Index> sizes;
  std::vector<VertexId> vertices;
  for (const auto& loop : faces) {
    sizes.push_back(static_cast<Index>(loop.size()));
    vertices.insert(vertices.end(), loop.begin(), loop.end());
  }
  auto mesh = mesh::buildMesh(std::move(points), sizes, vertices);
  if (mesh) return std::move(*mesh);
  std::fprintf(stderr, "A zoo shape is wrong: %s\n", mesh.error().message.c_str());
  std::abort();
}

Mesh gridMesh(Index nx, Index nz) {
  std::vector<math::Vec3f> points;
  mesh::UvSet uvs{"map1", {}, {}};
  for (Index z = 0; z <= nz; ++z)
    for (Index x = 0; x <= nx; ++x) {
      points.push_back({static_cast<float>(x), 0, -static_cast<float>(z)});
      uvs.points.push_back({static_cast<float>(x) / static_cast<float>(nx),
                            static_cast<float>(z) / static_cast<float>(nz)});
    }
  std::vector<VertexId> corners;
  for (Index z = 0; z < nz; ++z)
    for (Index x = 0; x < nx; ++x) {
      const VertexId v = z * (nx + 1) + x;
      corners.insert(corners.end(), {v, v + 1, v + nx + 2, v + nx + 1});
    }
  const std::vector<Index> sizes(at(nx) * at(nz), 4);
  Mesh mesh = *mesh::buildMesh(std::move(points), sizes, corners);
  uvs.cornerIds = copyIds<UvId>(corners);
  mesh.setUvSet(0, std::move(uvs));
  return mesh;
}

Mesh torusMesh(Index around, Index across) {
  std::vector<math::Vec3f> points;
  for (Index i = 0; i < around; ++i)
    for (Index j = 0; j < across; ++j) {
      const double a = 2 * 3.14159265358979 * i / around, b = 2 * 3.14159265358979 * j / across;
      const double r = 2 + 0.75 * std::cos(b);
      points.push_back(Vec3(r * std::cos(a), 0.75 * std::sin(b), r * std::sin(a)).toFloat());
    }
  std::vector<VertexId> corners;
  for (Index i = 0; i < around; ++i)
    for (Index j = 0; j < across; ++j) {
      const Index i1 = (i + 1) % around * across, j1 = (j + 1) % across;
      corners.insert(corners.end(), {i * across + j, i * across + j1, i1 + j1, i1 + j});
    }
  const std::vector<Index> sizes(at(around) * at(across), 4);
  return *mesh::buildMesh(std::move(points), sizes, corners);
}

}  // namespace host::zoo
