#include <opensubdiv/far/primvarRefiner.h>
#include <opensubdiv/far/topologyDescriptor.h>

#include <cmath>
#include <map>
#include <memory>

#include "host/ops/primitives/cube.h"
#include "host/ops/primitives/plane.h"
#include "host/ops/smooth/smooth_mesh.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;
namespace Far = OpenSubdiv::Far;
namespace Sdc = OpenSubdiv::Sdc;

namespace {

// A value of the oracle's refiner: as many numbers as are needed.
struct Value {
  double x[3] = {0, 0, 0};
  void Clear() { *this = {}; }
  void AddWithWeight(const Value& other, float weight) {
    for (int i = 0; i < 3; ++i) x[i] += other.x[i] * static_cast<double>(weight);
  }
};

// One step of the oracle on the same mesh, creases and first UV set.
class Oracle {
 public:
  Oracle(const Mesh& mesh, Sdc::Options::FVarLinearInterpolation uvRule) : mesh_(mesh) {
    using Descriptor = Far::TopologyDescriptor;
    Descriptor descriptor;
    std::vector<int> sizes, creaseEnds, cornerIds;
    std::vector<float> creaseWeights, cornerWeights;
    for (FaceId f = 0; f < mesh.faceCount(); ++f) sizes.push_back(mesh.faceSize(f));
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
      if (mesh.edgeCrease(e) > 0) {
        creaseEnds.insert(creaseEnds.end(), {mesh.edge(e).a, mesh.edge(e).b});
        creaseWeights.push_back(mesh.edgeCrease(e));
      }
    for (VertexId v = 0; v < mesh.vertexCount(); ++v)
      if (mesh.vertexCrease(v) > 0) {
        cornerIds.push_back(v);
        cornerWeights.push_back(mesh.vertexCrease(v));
      }
    descriptor.numVertices = mesh.vertexCount();
    descriptor.numFaces = mesh.faceCount();
    descriptor.numVertsPerFace = sizes.data();
    descriptor.vertIndicesPerFace = IdView(mesh.topology().cornerVertices).data();
    descriptor.numCreases = static_cast<int>(creaseWeights.size());
    descriptor.creaseVertexIndexPairs = creaseEnds.data();
    descriptor.creaseWeights = creaseWeights.data();
    descriptor.numCorners = static_cast<int>(cornerWeights.size());
    descriptor.cornerVertexIndices = cornerIds.data();
    descriptor.cornerWeights = cornerWeights.data();
    Descriptor::FVarChannel channel;
    const auto& uvs = mesh.uvSet(0);
    hasUvs_ = !uvs.cornerIds.empty() &&
              *std::min_element(uvs.cornerIds.begin(), uvs.cornerIds.end()) >= 0;
    channel.numValues = static_cast<int>(uvs.points.size());
    channel.valueIndices = IdView(uvs.cornerIds).data();
    if (hasUvs_) {
      descriptor.numFVarChannels = 1;
      descriptor.fvarChannels = &channel;
    }
    Sdc::Options options;
    options.SetVtxBoundaryInterpolation(Sdc::Options::VTX_BOUNDARY_EDGE_ONLY);
    options.SetFVarLinearInterpolation(uvRule);
    using Factory = Far::TopologyRefinerFactory<Descriptor>;
    refiner_.reset(Factory::Create(descriptor, Factory::Options(Sdc::SCHEME_CATMARK, options)));
    REQUIRE(refiner_ != nullptr);
    Far::TopologyRefiner::UniformOptions uniform(1);
    uniform.fullTopologyInLastLevel = true;
    refiner_->RefineUniform(uniform);
    const Far::PrimvarRefiner primvars(*refiner_);
    std::vector<Value> points, uvPoints;
    for (const auto& p : mesh.points()) points.push_back({{p.x, p.y, p.z}});
    for (const auto& p : uvs.points) uvPoints.push_back({{p.u, p.v, 0}});
    points_.resize(static_cast<std::size_t>(refiner_->GetLevel(1).GetNumVertices()));
    primvars.Interpolate(1, points, points_);
    if (hasUvs_) {
      uvs_.resize(static_cast<std::size_t>(refiner_->GetLevel(1).GetNumFVarValues(0)));
      primvars.InterpolateFaceVarying(1, uvPoints, uvs_, 0);
    }
  }

  // Holds a smoothed copy of the mesh to the oracle's points and UVs.
  void check(const Mesh& smooth) const {
    const auto& base = refiner_->GetLevel(0);
    const auto& fine = refiner_->GetLevel(1);
    REQUIRE(smooth.vertexCount() == fine.GetNumVertices());
    std::vector<int> theirs;  // of our vertices
    for (VertexId v = 0; v < mesh_.vertexCount(); ++v)
      theirs.push_back(base.GetVertexChildVertex(v));
    for (EdgeId e = 0; e < mesh_.edgeCount(); ++e)
      theirs.push_back(base.GetEdgeChildVertex(base.FindEdge(mesh_.edge(e).a, mesh_.edge(e).b)));
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) theirs.push_back(base.GetFaceChildVertex(f));
    double worst = 0, worstUv = 0, size = 1;  // the oracle's weights are floats
    for (const auto& p : mesh_.points()) size = std::max(size, math::length(math::Vec3(p)));
    for (VertexId v = 0; v < smooth.vertexCount(); ++v) {
      const Value& p = points_[static_cast<std::size_t>(theirs[static_cast<std::size_t>(v)])];
      worst = std::max(worst, math::distance(smooth.point(v), {p.x[0], p.x[1], p.x[2]}));
    }
    CHECK(worst < 2e-6 * size);
    FaceId ours = 0;
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      const auto children = base.GetFaceChildFaces(f);
      for (int k = 0; k < children.size(); ++k, ++ours) {
        const auto vertices = fine.GetFaceVertices(children[k]);
        for (Index i = 0; i < 4; ++i) {
          const CornerId c = smooth.firstCorner(ours) + i;
          const int place =
              vertices.FindIndex(theirs[static_cast<std::size_t>(smooth.cornerVertex(c))]);
          REQUIRE(place >= 0);
          if (!hasUvs_) continue;
          const Value& uv =
              uvs_[static_cast<std::size_t>(fine.GetFaceFVarValues(children[k], 0)[place])];
          const auto here = smooth.uvSet(0).points[static_cast<std::size_t>(smooth.cornerUv(0, c))];
          worstUv = std::max({worstUv, std::abs(here.u - uv.x[0]), std::abs(here.v - uv.x[1])});
        }
      }
    }
    CHECK(worstUv < 1e-5);
  }

 private:
  const Mesh& mesh_;
  bool hasUvs_ = false;
  std::unique_ptr<Far::TopologyRefiner> refiner_;
  std::vector<Value> points_, uvs_;
};

SmoothOptions oneStep() {
  SmoothOptions options;
  options.keepBorder = false;
  return options;
}

bool hasPinch(const Mesh& mesh) {
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto loop = mesh.faceVertices(f);
    if (std::set<VertexId>(loop.begin(), loop.end()).size() < loop.size()) return true;
  }
  return false;
}

}  // namespace

TEST_CASE("smoothMesh: two steps agree with the oracle over the zoo, creases and UVs included") {
  std::mt19937 random(4);
  for (const zoo::ZooMesh& entry :
       zoo::meshZoo(Has::Faces | Has::Manifold, Has::IsolatedVertices)) {
    if (hasPinch(entry.mesh)) continue;
    INFO(entry.name);
    for (const bool isCreased : {false, true}) {
      INFO(isCreased);
      Mesh mesh = entry.mesh;
      if (isCreased) {
        mesh::Creases creases;
        const float weights[] = {0, 0, 0, 0.3F, 0.8F, 1, 1.7F, 2.5F, 10};
        for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
          creases.edges.push_back(weights[random() % 9]);
        for (VertexId v = 0; v < mesh.vertexCount(); ++v)
          creases.vertices.push_back(weights[random() % 5]);
        mesh.setCreases(creases);
      }
      for (int step = 0; step < 2; ++step) {
        Mesh smooth = mesh, loose = mesh;
        REQUIRE(smoothMesh(smooth, zoo::allFaces(mesh), oneStep()));
        requireSound(smooth);
        Oracle(mesh, Sdc::Options::FVAR_LINEAR_BOUNDARIES).check(smooth);
        SmoothOptions options = oneStep();
        options.mapBorders = SmoothOptions::MapBorders::Smooth;
        REQUIRE(smoothMesh(loose, zoo::allFaces(mesh), options));
        if (!isCreased) Oracle(mesh, Sdc::Options::FVAR_LINEAR_NONE).check(loose);
        mesh = smooth;
      }
    }
  }
}

TEST_CASE("smoothMesh: several steps at once are the steps one by one") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces)) {
    INFO(entry.name);
    Mesh twice = entry.mesh, once = entry.mesh;
    SmoothOptions options;
    options.propagateHardness = true;
    REQUIRE(smoothMesh(twice, zoo::allFaces(twice), options));
    REQUIRE(smoothMesh(twice, zoo::allFaces(twice), options));
    options.divisions = 2;
    REQUIRE(smoothMesh(once, zoo::allFaces(once), options));
    CHECK(geometryOf(once) == geometryOf(twice));
    CHECK(once.points().size() == twice.points().size());
    requireSound(once);
  }
}

TEST_CASE("smoothMesh: any part of any mesh can be smoothed") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    for (const bool keeps : {false, true}) {
      SmoothOptions options;
      options.divisions = 2;
      options.keepSelectionBorder = options.keepHardEdges = options.propagateHardness = keeps;
      options.mapBorders =
          keeps ? SmoothOptions::MapBorders::KeepAll : SmoothOptions::MapBorders::Smooth;
      Mesh smooth = mesh;
      const auto result = smoothMesh(smooth, faces, options);
      REQUIRE(result.has_value());
      requireSound(smooth);
      if (faces.empty()) CHECK(smooth == mesh);
      Index corners = 0;
      for (const FaceId f : faces) corners += mesh.faceSize(f);
      CHECK(static_cast<Index>(result->faces.size()) == 4 * corners);
      CHECK(smooth.faceCount() ==
            mesh.faceCount() - static_cast<Index>(faces.size()) + 4 * corners);
    }
  });
}

TEST_CASE("smoothMesh: numbering of a cube in two linear steps is that of stored results") {
  Mesh cube = makeCube().value();
  SmoothOptions options;
  options.divisions = 2;
  options.continuity = 0;
  options.propagateHardness = true;
  REQUIRE(smoothMesh(cube, zoo::allFaces(cube), options));
  REQUIRE(zoo::counts(cube) == zoo::Counts{98, 192, 96, 384});
  const auto at = [&](VertexId v) { return cube.point(v); };
  const auto edgePath = [&](EdgeId e) { return std::pair(at(cube.edge(e).a), at(cube.edge(e).b)); };
  // Edge 0 went from (-.5 -.5 .5) to (.5 -.5 .5): its quarters are the edges 0 to 3, in that
  // direction, and hard.
  for (int q = 0; q < 4; ++q) {
    CHECK(edgePath(q).first == math::Vec3(-0.5 + 0.25 * q, -0.5, 0.5));
    CHECK(edgePath(q).second == math::Vec3(-0.25 + 0.25 * q, -0.5, 0.5));
    CHECK_FALSE(cube.isEdgeSmooth(q));
  }
  CHECK_FALSE(cube.isEdgeSmooth(47));
  for (EdgeId e = 48; e < 192; ++e) CHECK(cube.isEdgeSmooth(e));
  // Edges inside faces come in order of first use, quad by quad.
  CHECK(edgePath(48) == std::pair(math::Vec3(-0.25, -0.5, 0.5), math::Vec3(-0.25, -0.25, 0.5)));
  CHECK(edgePath(49) == std::pair(math::Vec3(-0.25, -0.25, 0.5), math::Vec3(-0.5, -0.25, 0.5)));
  CHECK(edgePath(50) == std::pair(math::Vec3(0, -0.5, 0.5), math::Vec3(0, -0.25, 0.5)));
  CHECK(edgePath(52) == std::pair(math::Vec3(0, -0.25, 0.5), math::Vec3(0, 0, 0.5)));
  // Corner k of a quad's parent is corner k of its k-th quad.
  const math::Vec3 corners[4] = {{-0.5, -0.5, 0.5}, {0, -0.5, 0.5}, {0, 0, 0.5}, {-0.5, 0, 0.5}};
  for (Index k = 0; k < 4; ++k)
    CHECK(at(cube.faceVertices(k)[static_cast<std::size_t>(k)]) == corners[k]);
  for (const auto& p : cube.points())
    CHECK(std::max({std::abs(p.x), std::abs(p.y), std::abs(p.z)}) == 0.5F);
  CHECK(cube.uvSet(0).points.size() == 125);
}

TEST_CASE("smoothMesh: what is kept stays where it was") {
  PlaneOptions four;
  four.subdivisionsWidth = four.subdivisionsHeight = 2;
  const Mesh plane = makePlane(four).value();
  Mesh kept = plane, curved = plane;
  SmoothOptions options;
  REQUIRE(smoothMesh(kept, zoo::allFaces(plane), options));
  for (VertexId v = 0; v < plane.vertexCount(); ++v)
    if (v != 4)
      CHECK(kept.points()[static_cast<std::size_t>(v)] ==
            plane.points()[static_cast<std::size_t>(v)]);
  options.keepBorder = false;
  REQUIRE(smoothMesh(curved, zoo::allFaces(plane), options));
  CHECK(math::distance(curved.point(0), plane.point(0)) > 0.05);
  CHECK(zoo::surfaceArea(curved) < zoo::surfaceArea(plane));
  CHECK(kept.uvSet(0).points[0] == plane.uvSet(0).points[0]);

  Mesh sharp = makeCube().value(), round = sharp;
  options.keepHardEdges = true;
  REQUIRE(smoothMesh(sharp, zoo::allFaces(sharp), options));
  for (VertexId v = 0; v < 8; ++v) CHECK(sharp.point(v) == round.point(v));
  options.keepHardEdges = false;
  REQUIRE(smoothMesh(round, zoo::allFaces(round), options));
  CHECK(zoo::surfaceArea(round) < 0.8 * zoo::surfaceArea(sharp));
  CHECK(round.edgeSmooth().empty());

  // A creased edge stays creased, one weaker; 10 stays for good.
  Mesh creased = makeCube().value();
  mesh::Creases creases;
  creases.edges.assign(12, 0);
  creases.edges[0] = 2.5F, creases.edges[1] = 10;
  creased.setCreases(creases);
  REQUIRE(smoothMesh(creased, zoo::allFaces(creased), options));
  CHECK((creased.edgeCrease(0) == 1.5F && creased.edgeCrease(1) == 1.5F));
  CHECK((creased.edgeCrease(2) == 10 && creased.edgeCrease(4) == 0));
}

TEST_CASE("smoothMesh: bad numbers change nothing") {
  Mesh mesh = zoo::gridMesh(2, 2);
  const Mesh before = mesh;
  SmoothOptions options;
  CHECK_FALSE(smoothMesh(mesh, std::vector<FaceId>{4}, options));
  options.divisions = 9;
  CHECK_FALSE(smoothMesh(mesh, zoo::allFaces(mesh), options));
  options.divisions = 1;
  options.continuity = 1.5;
  CHECK_FALSE(smoothMesh(mesh, zoo::allFaces(mesh), options));
  CHECK(mesh == before);
}
