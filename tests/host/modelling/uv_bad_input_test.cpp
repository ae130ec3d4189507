// UV commands over meshes and maps that nobody would make on purpose: a result or a message that
// can be acted on, a sound mesh either way, and everything taken back to the bit.
#include <doctest/doctest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/mesh/check.h"
#include "host/nodes/mesh_shape.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;

namespace {

/// A mesh whose corners at a vertex share the UV that `place` gives it.
mesh::Mesh withUvs(mesh::Mesh mesh, const std::function<mesh::Vec2f(VertexId)>& place) {
  mesh::UvSet set{.name = "map1", .points = {}, .cornerIds = {}};
  for (VertexId v = 0; v < mesh.vertexCount(); ++v) set.points.push_back(place(v));
  for (CornerId c = 0; c < mesh.cornerCount(); ++c)
    set.cornerIds.push_back(Index(mesh.cornerVertex(c)));
  mesh.setUvSet(0, std::move(set));
  return mesh;
}

mesh::Mesh withoutUvs(mesh::Mesh mesh) {
  mesh.setUvSet(0, {.name = "map1", .points = {}, .cornerIds = {}});
  return mesh;
}

/// One face of very many corners, not quite round.
mesh::Mesh roundFace(Index corners) {
  std::vector<mesh::Vec3f> points;
  std::vector<VertexId> loop;
  for (Index i = 0; i < corners; ++i) {
    const double angle = 2 * std::numbers::pi * i / corners, radius = 1 + 1e-4 * (i * 7919 % 13);
    points.push_back({static_cast<float>(radius * std::cos(angle)), 0,
                      static_cast<float>(-radius * std::sin(angle))});
    loop.push_back(i);
  }
  return withUvs(*mesh::buildMesh(points, std::vector<Index>{corners}, loop), [&](VertexId v) {
    const mesh::Vec3 p(points[static_cast<std::size_t>(v)]);
    return mesh::Vec2f{static_cast<float>(0.5 + 0.4 * p.x), static_cast<float>(0.5 - 0.4 * p.z)};
  });
}

/// Quads apart from each other whose UVs all lie on one another.
mesh::Mesh stackedQuads(Index count) {
  std::vector<mesh::Vec3f> points;
  std::vector<VertexId> loops;
  for (Index i = 0; i < count; ++i)
    for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
      loops.push_back(static_cast<VertexId>(points.size()));
      points.push_back({static_cast<float>(x + 2 * i), static_cast<float>(y), 0});
    }
  const std::vector<Index> counts(static_cast<std::size_t>(count), 4);
  return withUvs(*mesh::buildMesh(points, counts, loops), [](VertexId v) {
    return mesh::Vec2f{v % 4 == 1 || v % 4 == 2 ? 1.0f : 0.0f, v % 4 >= 2 ? 1.0f : 0.0f};
  });
}

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct BadMesh {
  const char* name;
  std::function<mesh::Mesh()> build;
};
const BadMesh kMeshes[] = {
    {"UVs that are no numbers",
     [] {
       return withUvs(zoo::zooMesh("grid"), [](VertexId v) {
         return mesh::Vec2f{v % 3 == 0 ? kNan : static_cast<float>(v) / 16,
                            static_cast<float>(v % 4)};
       });
     }},
    {"infinite UVs",
     [] {
       return withUvs(zoo::zooMesh("grid"), [](VertexId v) {
         return mesh::Vec2f{v == 5 ? std::numeric_limits<float>::infinity() : 0.1f * v, 0.2f * v};
       });
     }},
    {"all UVs in one point",
     [] {
       return withUvs(zoo::zooMesh("grid"), [](VertexId) { return mesh::Vec2f{0.5f, 0.5f}; });
     }},
    {"far away",
     [] {
       return withUvs(zoo::zooMesh("grid"), [](VertexId v) {
         return mesh::Vec2f{1e30f * static_cast<float>(v % 4), 1e30f * static_cast<float>(v / 4)};
       });
     }},
    {"no UVs at all", [] { return withoutUvs(zoo::zooMesh("grid")); }},
    {"UVs on no face, faces without UVs",
     [] {
       mesh::Mesh mesh = withUvs(zoo::zooMesh("grid"), [](VertexId v) {
         return mesh::Vec2f{0.1f * static_cast<float>(v % 4), 0.1f * static_cast<float>(v / 4)};
       });
       mesh::UvSet set = mesh.uvSet(0);
       set.points.push_back({0.9f, 0.9f});
       set.points.push_back({kNan, 0});
       for (CornerId c = mesh.firstCorner(1); c < mesh.firstCorner(3); ++c)
         set.cornerIds[static_cast<std::size_t>(c)] = kNone;
       mesh.setUvSet(0, std::move(set));
       return mesh;
     }},
    {"a face of 20,000 corners", [] { return roundFace(20'000); }},
    {"a face of 1,500 corners", [] { return roundFace(1'500); }},
    {"150 stacked shells", [] { return stackedQuads(150); }},
};

const char* const kLines[] = {
    "polyPlanarProjection -md b",
    "polyCylindricalProjection -sc 1",
    "polySphericalProjection",
    "polyAutoProjection -lm 1",
    "polyAutoProjection -lm 0 -l 1",
    "polyForceUV -unitize",
    "polyForceUV -unshare",
    "polyEditUV -u 0.1 -a 30",
    "polyEditUVShell -v 0.3",
    "polyMoveUV -tu 0.2 -ran 1",
    "polyMapCut bad.e[*]",
    "polyMapSew bad.e[*]",
    "polyMapSewMove bad.e[*]",
    "polyMapDel",
    "polyMergeUV -d 0.1",
    "polyMergeUV -d 1e6",
    "polyNormalizeUV",
    "polyNormalizeUV -nt 0",
    "polyFlipUV",
    "polyStraightenUVBorder",
    "polyCopyUV -cm 1",
    "polyLayoutUV -rbf 2 -ps 0.2",
    "polyLayoutUV -lm 0 -se 2",
    "polyLayoutUV -l 1",
    "polyLayoutUV -l 0",
    "polyMultiLayoutUV -l 3 -gu 2 -gv 2",
    "polyMultiLayoutUV -l 4 -kst 1",
    "unfold",
    "unfold -i 5 -pub 1",
    "untangleUV",
    "untangleUV -mb circular",
    "polyUVReport -coverage -gap",
    "polyPinUV",
    "polyUVStretchColor bad",
    "ConvertSelectionToUVShell",
    "polyEvaluate -b2 -uvShell -uvArea bad",
};

}  // namespace

TEST_CASE("UV commands over broken maps: a result or a message, nothing half done") {
  for (const BadMesh& bad : kMeshes) {
    CAPTURE(std::string(bad.name));
    const auto session = builtins::makeSession();
    const auto shape = session->document().createNode("mesh", "badShape");
    REQUIRE(shape);
    REQUIRE(nodes::setStoredMesh(**shape, bad.build()));
    session->undo().flush();
    const std::uint64_t before = session->document().hash();
    for (const char* line : kLines) {
      CAPTURE(std::string(line));
      MessageCapture said;
      const auto done = session->executeLine("select -r bad; " + std::string(line));
      if (!done) CHECK(done.error().message.size() > 20);
      const auto mesh = nodes::evaluatedMesh(**shape);
      REQUIRE(mesh);
      std::vector<std::string> faults = mesh::check(*mesh);
      // What was no number before may be none after.
      std::erase_if(faults, [](const std::string& each) {
        return each.find("not finite") != std::string::npos;
      });
      CHECK_MESSAGE(faults.empty(), (faults.empty() ? "" : faults.front()));
      while (session->undo().canUndo()) REQUIRE(session->undo().undo());
      REQUIRE(session->document().hash() == before);
    }
  }
}
