#include <functional>

#include "host/ops/smooth/smooth_mesh.h"
#include "host/ops/topology/append_polygon.h"
#include "host/ops/topology/bevel_edges.h"
#include "host/ops/topology/bridge_edges.h"
#include "host/ops/topology/chip_off.h"
#include "host/ops/topology/collapse.h"
#include "host/ops/topology/connect_components.h"
#include "host/ops/topology/delete_edges.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/delete_vertices.h"
#include "host/ops/topology/extrude_edges.h"
#include "host/ops/topology/extrude_faces.h"
#include "host/ops/topology/merge_vertices.h"
#include "host/ops/topology/mirror.h"
#include "host/ops/topology/normals.h"
#include "host/ops/topology/quadrangulate.h"
#include "host/ops/topology/separate.h"
#include "host/ops/topology/split_ring.h"
#include "host/ops/topology/subdivide_edges.h"
#include "host/ops/topology/subdivide_faces.h"
#include "host/ops/topology/triangulate_faces.h"
#include "host/ops/topology/unite.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

struct Selection {
  std::vector<VertexId> vertices;
  std::vector<EdgeId> edges;
  std::vector<FaceId> faces;
};

struct Step {
  const char* name;
  std::function<bool(Mesh&, const Selection&)> run;  // false where it refuses
};

template <class Options>
Options raised() {
  Options options;
  options.local.translate.z = 0.3;
  options.offset = 0.05;
  return options;
}

const std::vector<Step>& steps() {
  using S = Selection;
  static const std::vector<Step> all{
      {"extrude faces",
       [](Mesh& m, const S& s) {
         return extrudeFaces(m, s.faces, raised<ExtrudeFacesOptions>()).has_value();
       }},
      {"extrude edges",
       [](Mesh& m, const S& s) {
         return extrudeEdges(m, s.edges, raised<ExtrudeEdgesOptions>()).has_value();
       }},
      {"bevel", [](Mesh& m, const S& s) { return bevelEdges(m, s.edges).has_value(); }},
      {"connect",
       [](Mesh& m, const S& s) { return connectComponents(m, s.vertices, s.edges).has_value(); }},
      {"split ring", [](Mesh& m, const S& s) { return splitRing(m, s.edges).has_value(); }},
      {"subdivide edges",
       [](Mesh& m, const S& s) { return subdivideEdges(m, s.edges, 2).has_value(); }},
      {"subdivide faces",
       [](Mesh& m, const S& s) { return subdivideFaces(m, s.faces).has_value(); }},
      {"poke", [](Mesh& m, const S& s) { return pokeFaces(m, s.faces).has_value(); }},
      {"collapse", [](Mesh& m, const S& s) { return collapseEdges(m, s.edges).has_value(); }},
      {"merge",
       [](Mesh& m, const S& s) {
         return mergeVertices(m, s.vertices, {0.2, true, {}}).has_value();
       }},
      {"delete edges",
       [](Mesh& m, const S& s) { return deleteEdges(m, s.edges, {true}).has_value(); }},
      {"delete faces", [](Mesh& m, const S& s) { return deleteFaces(m, s.faces).has_value(); }},
      {"delete vertices",
       [](Mesh& m, const S& s) { return deleteVertices(m, s.vertices).has_value(); }},
      {"close borders", [](Mesh& m, const S& s) { return closeBorders(m, s.edges).has_value(); }},
      {"bridge", [](Mesh& m, const S& s) { return bridgeEdges(m, s.edges).has_value(); }},
      {"triangulate", [](Mesh& m, const S& s) { return triangulateFaces(m, s.faces).has_value(); }},
      {"quadrangulate", [](Mesh& m, const S& s) { return quadrangulate(m, s.faces).has_value(); }},
      {"chip off",
       [](Mesh& m, const S& s) {
         return chipOff(m, s.faces, raised<ChipOffOptions>()).has_value();
       }},
      {"mirror",
       [](Mesh& m, const S&) {
         MirrorOptions options;
         options.cut = true;
         return mirrorMesh(m, options).has_value();
       }},
      {"extract reversed",
       [](Mesh& m, const S& s) {
         return changeNormals(m, s.faces, NormalMode::ReverseAndExtract).has_value();
       }},
      {"smooth", [](Mesh& m, const S& s) { return smoothMesh(m, s.faces).has_value(); }},
      {"separate and unite",
       [](Mesh& m, const S&) {
         std::vector<UnitePart> parts;
         for (Mesh& piece : separate(m)) parts.push_back({std::move(piece), {}});
         if (parts.empty()) return false;
         m = unite(parts).value();
         return true;
       }},
  };
  return all;
}

}  // namespace

TEST_CASE("any operations in a row leave a sound mesh, and a refusal leaves it as it was") {
  constexpr Index kMostFaces = 1500;
  std::vector<int> done(steps().size(), 0);
  unsigned seed = 0;
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces))
    for (int round = 0; round < 12; ++round) {
      std::mt19937 random(++seed);
      std::string story = entry.name;
      Mesh mesh = entry.mesh;
      for (int i = 0; i < 8 && mesh.faceCount() > 0 && mesh.faceCount() < kMostFaces; ++i) {
        const std::size_t k = random() % steps().size();
        const double chance = 0.05 + 0.1 * (random() % 5);
        const Selection selection{randomIds<VertexId>(random, mesh.vertexCount(), chance),
                                  randomIds<EdgeId>(random, mesh.edgeCount(), chance),
                                  randomIds<FaceId>(random, mesh.faceCount(), chance)};
        story += std::string(", ") + steps()[k].name;
        INFO(story);
        const Mesh before = mesh;
        if (steps()[k].run(mesh, selection))
          ++done[k];
        else
          CHECK(mesh == before);
        requireSound(mesh);
      }
    }
  for (std::size_t k = 0; k < done.size(); ++k)
    if (std::string(steps()[k].name) != "bridge") CHECK_MESSAGE(done[k] > 10, steps()[k].name);
}
