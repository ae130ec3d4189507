#include "tests/zoo/zoo_shapes.h"

#include <algorithm>
#include <cmath>

namespace host::zoo {

using math::Vec2f;
using math::Vec3f;
using mesh::Mesh;

namespace {

using Loops = std::vector<std::vector<VertexId>>;

constexpr double kTurn = 2 * 3.14159265358979323846;

// --- Closed shapes -------------------------------------------------------------------------------

const Loops kCubeFaces{{0, 1, 3, 2}, {2, 3, 5, 4}, {4, 5, 7, 6},
                       {6, 7, 1, 0}, {1, 7, 5, 3}, {6, 0, 2, 4}};

std::vector<Vec3f> cubePoints(float x = 0) {
  return {{x - 1, -1, 1}, {x + 1, -1, 1}, {x - 1, 1, 1},   {x + 1, 1, 1},
          {x - 1, 1, -1}, {x + 1, 1, -1}, {x - 1, -1, -1}, {x + 1, -1, -1}};
}

Mesh cube() {
  return meshOf(cubePoints(), kCubeFaces);
}

Mesh tetrahedron() {
  return meshOf({{1, 1, 1}, {-1, -1, 1}, {-1, 1, -1}, {1, -1, -1}},
                {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}});
}

Mesh octahedron() {
  return meshOf(
      {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0}, {0, -1, 0}, {0, 0, -1}},
      {{0, 1, 2}, {1, 3, 2}, {3, 4, 2}, {4, 0, 2}, {1, 0, 5}, {3, 1, 5}, {4, 3, 5}, {0, 4, 5}});
}

/// A prism on a regular base: n-gon caps and quad sides.
Mesh prism(Index sides) {
  std::vector<Vec3f> points;
  for (int level = 0; level < 2; ++level)
    for (Index i = 0; i < sides; ++i)
      points.push_back({static_cast<float>(std::cos(kTurn * i / sides)), static_cast<float>(level),
                        -static_cast<float>(std::sin(kTurn * i / sides))});
  Loops faces(2);
  for (Index i = 0; i < sides; ++i) {
    const Index next = (i + 1) % sides;
    faces[0].push_back(sides - 1 - i);
    faces[1].push_back(sides + i);
    faces.push_back({i, next, sides + next, sides + i});
  }
  return meshOf(std::move(points), faces);
}

/// A ring of sides around an apex.
Mesh pyramid(Index sides) {
  std::vector<Vec3f> points;
  for (Index i = 0; i < sides; ++i)
    points.push_back({static_cast<float>(std::cos(kTurn * i / sides)), 0,
                      -static_cast<float>(std::sin(kTurn * i / sides))});
  points.push_back({0, 1.5f, 0});
  Loops faces(1);
  for (Index i = 0; i < sides; ++i) {
    faces[0].push_back(sides - 1 - i);
    faces.push_back({i, (i + 1) % sides, sides});
  }
  return meshOf(std::move(points), faces);
}

// --- Open shapes ---------------------------------------------------------------------------------

Mesh strip(Index quads, bool isClosed, bool isTwisted) {
  std::vector<Vec3f> points;
  const Index rungs = isClosed ? quads : quads + 1;
  for (Index i = 0; i < rungs; ++i) {
    const double a = kTurn * i / quads, half = isTwisted ? a / 2 : 0;
    for (double side : {-0.5, 0.5}) {
      const double r = 2 + side * std::sin(half), y = side * std::cos(half);
      if (isClosed)
        points.push_back({static_cast<float>(r * std::cos(a)), static_cast<float>(y),
                          -static_cast<float>(r * std::sin(a))});
      else
        points.push_back({static_cast<float>(i), static_cast<float>(y), 0});
    }
  }
  Loops faces;
  for (Index i = 0; i < quads; ++i) {
    const Index a = 2 * i, b = 2 * ((i + 1) % rungs);
    const bool flips = isTwisted && i + 1 == quads;
    faces.push_back({a, flips ? b + 1 : b, flips ? b : b + 1, a + 1});
  }
  return meshOf(std::move(points), faces);
}

/// A square frame of eight quads: one shell, two borders.
Mesh annulus() {
  Mesh grid = gridMesh(3, 3);
  Loops faces;
  for (FaceId f = 0; f < 9; ++f)
    if (f != 4) faces.emplace_back(grid.faceVertices(f).begin(), grid.faceVertices(f).end());
  return meshOf({grid.points().begin(), grid.points().end()}, faces);
}

Mesh arrow() {
  return meshOf({{0, 0, 0}, {2, 0, -1}, {0, 0, -2}, {0.75f, 0, -1}}, {{0, 1, 2, 3}});
}

Mesh comb() {
  return meshOf({{0, 0, 0},
                 {5, 0, 0},
                 {5, 0, -3},
                 {4, 0, -1},
                 {3, 0, -3},
                 {2, 0, -1},
                 {1, 0, -3},
                 {0, 0, -1}},
                {{0, 1, 2, 3, 4, 5, 6, 7}});
}

/// A square with a square hole as one face, whose loop walks to the hole and back.
Mesh keyhole() {
  return meshOf({{0, 0, 0},
                 {3, 0, 0},
                 {3, 0, -3},
                 {0, 0, -3},
                 {1, 0, -1},
                 {2, 0, -1},
                 {2, 0, -2},
                 {1, 0, -2}},
                {{0, 1, 2, 3, 0, 4, 7, 6, 5, 4}});
}

Mesh lShape() {
  return meshOf(
      {{0, 0, 0}, {2, 0, 0}, {2, 0, -1}, {1, 0, -1}, {1, 0, -2}, {0, 0, -2}, {2, 1, 0}, {2, 1, -1}},
      {{0, 1, 2, 3, 4, 5}, {1, 6, 7, 2}});
}

// --- Non-manifold and degenerate shapes ----------------------------------------------------------

Mesh threePages() {
  return meshOf({{0, 0, 0},
                 {0, 1, 0},
                 {1, 0, 0},
                 {1, 1, 0},
                 {-1, 0, 1},
                 {-1, 1, 1},
                 {-1, 0, -1},
                 {-1, 1, -1}},
                {{0, 2, 3, 1}, {0, 4, 5, 1}, {0, 6, 7, 1}});
}

Mesh bowtie() {
  return meshOf({{0, 0, 0}, {1, 0, -1}, {1, 0, 1}, {-1, 0, 1}, {-1, 0, -1}},
                {{0, 2, 1}, {0, 4, 3}});
}

/// Two cubes that share one edge: four faces at it.
Mesh cubesAtEdge() {
  std::vector<Vec3f> points = cubePoints();
  Loops faces = kCubeFaces;
  std::vector<VertexId> map;
  for (const Vec3f& p : cubePoints()) {
    const Vec3f q{p.x + 2, p.y + 2, p.z};
    const auto found = std::ranges::find(points, q);
    map.push_back(static_cast<VertexId>(found - points.begin()));
    if (found == points.end()) points.push_back(q);
  }
  for (std::vector<VertexId> loop : kCubeFaces) {
    for (VertexId& v : loop) v = map[at(v)];
    faces.push_back(loop);
  }
  return meshOf(std::move(points), faces);
}

Mesh opposedWinding() {
  return meshOf({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 0, -1}, {1, 0, -1}, {2, 0, -1}},
                {{0, 1, 4, 3}, {1, 4, 5, 2}});
}

/// Two faces back to back on the same three vertices: a closed shape without volume.
Mesh pillow() {
  return meshOf({{0, 0, 0}, {1, 0, 0}, {0, 0, -1}}, {{0, 1, 2}, {2, 1, 0}});
}

/// The same face twice, wound alike.
Mesh lamina() {
  return meshOf({{0, 0, 0}, {1, 0, 0}, {1, 0, -1}, {0, 0, -1}}, {{0, 1, 2, 3}, {0, 1, 2, 3}});
}

Mesh zeroArea() {
  return meshOf({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 0, -1}, {2, 0, 0}, {1, 1, 0}},
                {{0, 1, 3}, {1, 2, 3}, {1, 4, 2}, {1, 0, 5}});
}

Mesh collapsedQuad() {
  return meshOf({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {0, 0, 0}, {1, 0, -1}, {0, 0, -1}},
                {{0, 1, 2, 3}, {3, 2, 4, 5}});
}

Mesh warpedQuad() {
  return meshOf({{0, 0, 0}, {1, 0.6f, 0}, {1, -0.4f, -1}, {0, 0.5f, -1}}, {{0, 1, 2, 3}});
}

// --- Corner data ---------------------------------------------------------------------------------

/// Every face has its own square of UVs.
Mesh withFaceUvs(Mesh mesh) {
  mesh::UvSet set{"map1", {}, {}};
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    for (Index i = 0; i < mesh.faceSize(f); ++i) {
      const double a = kTurn * i / mesh.faceSize(f);
      set.cornerIds.push_back(static_cast<UvId>(set.points.size()));
      set.points.push_back({static_cast<float>(Index(f) + 0.4 * std::cos(a)),
                            static_cast<float>(0.4 * std::sin(a))});
    }
  mesh.setUvSet(0, std::move(set));
  return mesh;
}

/// One UV a vertex: no seams.
mesh::UvSet vertexUvs(const Mesh& mesh, const std::string& name) {
  mesh::UvSet set{name, {}, copyIds<UvId>(mesh.topology().cornerVertices)};
  for (const Vec3f& p : mesh.points())
    set.points.push_back({p.x + 0.25f * p.y, p.z - 0.125f * p.y});
  return set;
}

Mesh withVertexUvs(Mesh mesh) {
  mesh.setUvSet(0, vertexUvs(mesh, "map1"));
  return mesh;
}

/// The cross that a cube unfolds into: seams and shared UVs mixed.
Mesh crossCube() {
  Mesh mesh = cube();
  mesh::UvSet set{
      "map1", {}, {0, 1, 3, 2, 2, 3, 5, 4, 4, 5, 7, 6, 6, 7, 9, 8, 1, 10, 11, 3, 12, 0, 2, 13}};
  set.points = {{.375f, 0},   {.625f, 0},    {.375f, .25f}, {.625f, .25f}, {.375f, .5f},
                {.625f, .5f}, {.375f, .75f}, {.625f, .75f}, {.375f, 1},    {.625f, 1},
                {.875f, 0},   {.875f, .25f}, {.125f, 0},    {.125f, .25f}};
  mesh.setUvSet(0, std::move(set));
  return mesh;
}

Mesh twoUvSets() {
  Mesh mesh = crossCube();
  mesh.addUvSet(vertexUvs(mesh, "lightmap"));
  mesh.addUvSet({"empty", {}, {}});
  mesh.setCurrentUvSet(1);
  return mesh;
}

Mesh partialUvs() {
  Mesh mesh = gridMesh(2, 2);
  mesh::UvSet& set = mesh.editUvSet(0);
  for (CornerId c = 4; c < 8; ++c) set.cornerIds[at(c)] = kNone;
  return mesh;
}

/// UV points that no face uses, in front, between and behind those in use.
Mesh unusedUvs() {
  Mesh mesh = gridMesh(2, 1);
  mesh::UvSet& set = mesh.editUvSet(0);
  set.points.insert(set.points.begin(), Vec2f{9, 9});
  set.points.insert(set.points.begin() + 3, Vec2f{8, 8});
  set.points.push_back({7, 7});
  for (UvId& id : set.cornerIds) id += id >= 2 ? 2 : 1;
  return mesh;
}

Mesh uvSeamGrid() {
  Mesh mesh = gridMesh(4, 2);
  mesh::UvSet& set = mesh.editUvSet(0);
  std::vector<UvId> copies(set.points.size(), kNone);
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    for (CornerId c = mesh.firstCorner(f); f % 4 >= 2 && c < mesh.firstCorner(f + 1); ++c) {
      UvId& id = set.cornerIds[at(c)];
      if (id % 5 != 2) continue;
      if (copies[at(id)] == kNone) {
        copies[at(id)] = static_cast<UvId>(set.points.size());
        set.points.push_back({set.points[at(id)].u + 0.1f, set.points[at(id)].v});
      }
      id = copies[at(id)];
    }
  return mesh;
}

Mesh creased() {
  Mesh mesh = cube();
  mesh::Creases& creases = mesh.editCreases();
  creases.edges.assign(at(mesh.edgeCount()), 0);
  creases.edges[0] = 2.5f;
  creases.edges[3] = 10;
  creases.vertices.assign(at(mesh.vertexCount()), 0);
  creases.vertices[6] = 1.25f;
  return mesh;
}

Mesh allHard() {
  Mesh mesh = crossCube();
  mesh.setEdgeSmooth(std::vector<std::uint8_t>(at(mesh.edgeCount()), 0));
  return mesh;
}

Mesh someHard() {
  Mesh mesh = gridMesh(3, 3);
  const auto points = mesh.editPoints();
  points[5].y = 1;
  points[10].y = 0.5f;
  for (EdgeId e = 0; e < mesh.edgeCount(); e += 3) mesh.setEdgeSmooth(e, false);
  return mesh;
}

Mesh colored() {
  Mesh mesh = cube();
  mesh::ColorSet set;
  set.name = "colorSet1";
  for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
    const auto t = static_cast<float>(c) / 24;
    set.cornerIds.push_back(c % 5 == 0 ? kNone : static_cast<Index>(set.colors.size()));
    if (c % 5 != 0) set.colors.push_back({t, 1 - t, 0.5f, 1});
  }
  mesh.addColorSet(std::move(set));
  mesh.addColorSet(
      {"flat", 3, true, {{1, 0, 0, 1}}, std::vector<Index>(at(mesh.cornerCount()), 0)});
  return mesh;
}

Mesh locked() {
  Mesh mesh = gridMesh(2, 2);
  mesh::LockedNormals normals;
  normals.normals.assign(at(mesh.cornerCount()), {0, 1, 0});
  normals.locked.assign(at(mesh.cornerCount()), 0);
  for (std::size_t c : {1u, 2u, 7u}) {
    normals.normals[c] = {0.6f, 0.8f, 0};
    normals.locked[c] = 1;
  }
  mesh.setLockedNormals(std::move(normals));
  return mesh;
}

Mesh withInvisible() {
  Mesh mesh = gridMesh(3, 2);
  mesh.setInvisibleFaces({1, 4});
  return mesh;
}

/// Everything a mesh can carry at once.
Mesh everything() {
  Mesh mesh = twoUvSets();
  mesh.editCreases() = creased().creases();
  for (EdgeId e : {1, 4, 8}) mesh.setEdgeSmooth(e, false);
  const Mesh colors = colored();
  for (int s = 0; s < colors.colorSetCount(); ++s) mesh.addColorSet(colors.colorSet(s));
  mesh::LockedNormals normals;
  normals.normals.assign(24, {0, 0, 1});
  normals.locked.assign(24, 0);
  normals.locked[3] = normals.locked[9] = 1;
  mesh.setLockedNormals(std::move(normals));
  mesh.setInvisibleFaces({5});
  return mesh;
}

// --- Several pieces and odd numbers --------------------------------------------------------------

Mesh twoCubes() {
  std::vector<Vec3f> points = cubePoints(-2);
  for (const Vec3f& p : cubePoints(2)) points.push_back(p);
  Loops faces = kCubeFaces;
  for (std::vector<VertexId> loop : kCubeFaces) {
    for (VertexId& v : loop) v += 8;
    faces.push_back(loop);
  }
  return meshOf(std::move(points), faces);
}

Mesh interleavedShells() {
  std::vector<Vec3f> points;
  Loops faces(3);
  for (Index i = 0; i < 12; ++i) {
    points.push_back(
        {static_cast<float>(i % 3 * 4 + (i / 3 == 1 || i / 3 == 2)), 0, i / 3 >= 2 ? -1.0f : 0.0f});
    faces[at(i % 3)].push_back(i);
  }
  return meshOf(std::move(points), faces);
}

Mesh isolatedVertices() {
  return meshOf({{5, 0, 0}, {0, 0, 0}, {1, 0, 0}, {7, 0, 0}, {1, 0, -1}, {0, 0, -1}, {9, 0, 0}},
                {{1, 2, 4, 5}});
}

Mesh pointsOnly() {
  return meshOf({{0, 0, 0}, {1, 2, 3}, {-1, 0, 4}}, {});
}

Mesh farAway() {
  Mesh mesh = cube();
  for (Vec3f& p : mesh.editPoints()) p = {p.x + 4096, p.y - 2048, p.z + 8192};
  return mesh;
}

Mesh tiny() {
  Mesh mesh = octahedron();
  for (Vec3f& p : mesh.editPoints()) p = {p.x * 1e-5f, p.y * 1e-5f, p.z * 1e-5f};
  return mesh;
}

Mesh mixedFaces() {
  return meshOf({{0, 0, 0},
                 {1, 0, 0},
                 {2, 0, 0},
                 {3, 0, -0.5f},
                 {2, 0, -1},
                 {1, 0, -1},
                 {0, 0, -1},
                 {0.5f, 0, -2},
                 {1.5f, 0, -2}},
                {{0, 1, 5, 6}, {1, 2, 3, 4, 5}, {6, 5, 7}, {5, 4, 8}});
}

}  // namespace

std::vector<std::pair<std::string, Mesh>> zooShapes() {
  return {
      {"empty", Mesh()},
      {"points only", pointsOnly()},
      {"triangle", meshOf({{0, 0, 0}, {1, 0, 0}, {0, 0, -1}}, {{0, 1, 2}})},
      {"quad", meshOf({{0, 0, 0}, {1, 0, 0}, {1, 0, -1}, {0, 0, -1}}, {{0, 1, 2, 3}})},
      {"warped quad", warpedQuad()},
      {"tetrahedron", tetrahedron()},
      {"octahedron", octahedron()},
      {"cube", cube()},
      {"prism of five", prism(5)},
      {"prism of twelve", prism(12)},
      {"pyramid of four", pyramid(4)},
      {"pyramid of nine", pyramid(9)},
      {"torus", torusMesh(6, 5)},
      {"strip", strip(4, false, false)},
      {"tube", strip(6, true, false)},
      {"moebius", strip(7, true, true)},
      {"grid", gridMesh(4, 3)},
      {"annulus", annulus()},
      {"arrow", arrow()},
      {"comb", comb()},
      {"keyhole", keyhole()},
      {"l shape", lShape()},
      {"mixed faces", mixedFaces()},
      {"three pages", threePages()},
      {"bowtie", bowtie()},
      {"cubes at edge", cubesAtEdge()},
      {"opposed winding", opposedWinding()},
      {"pillow", pillow()},
      {"lamina", lamina()},
      {"zero area", zeroArea()},
      {"collapsed quad", collapsedQuad()},
      {"two cubes", twoCubes()},
      {"interleaved shells", interleavedShells()},
      {"isolated vertices", isolatedVertices()},
      {"far away", farAway()},
      {"tiny", tiny()},
      {"cross cube", crossCube()},
      {"face uvs", withFaceUvs(prism(5))},
      {"vertex uvs", withVertexUvs(torusMesh(4, 4))},
      {"non-manifold uvs", withFaceUvs(threePages())},
      {"two uv sets", twoUvSets()},
      {"partial uvs", partialUvs()},
      {"unused uvs", unusedUvs()},
      {"uv seam grid", uvSeamGrid()},
      {"creased", creased()},
      {"all hard", allHard()},
      {"some hard", someHard()},
      {"colored", colored()},
      {"locked normals", locked()},
      {"invisible faces", withInvisible()},
      {"everything", everything()},
  };
}

}  // namespace host::zoo
