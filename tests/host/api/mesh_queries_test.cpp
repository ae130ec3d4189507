#include <doctest/doctest.h>
#include <maya/MDagPath.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MMeshIntersector.h>
#include <maya/MPointArray.h>
#include <maya/MPointOnMesh.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "host/api/session/host_session.h"
#include "host/math/ray.h"
#include "tests/zoo/mesh_zoo.h"

// Rays, closest points and triangles, against scans over all triangles in the space that was asked
// about.
namespace {

struct Scene {
  Scene() : session(host::api::makeHostSession()) {}
  void run(const std::string& mel) {
    const auto done = session->executeLine(mel);
    CAPTURE(mel);
    REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
  }
  MDagPath shape(const host::mesh::Mesh& mesh, const char* pose) {
    run("file -f -new");
    std::vector<int> counts;
    for (host::FaceId f = 0; f < mesh.faceCount(); ++f) counts.push_back(mesh.faceSize(f));
    MFloatPointArray points;
    for (const auto& p : mesh.points()) points.append(MFloatPoint(p.x, p.y, p.z));
    const auto& corners = mesh.topology().cornerVertices;
    MStatus status;
    const MObject transform = MFnMesh().create(
        mesh.vertexCount(), mesh.faceCount(), points,
        MIntArray(counts.data(), static_cast<unsigned int>(counts.size())),
        MIntArray(host::IdView(corners).data(), static_cast<unsigned int>(corners.size())),
        MObject::kNullObj, &status);
    REQUIRE(status);
    MDagPath path;
    REQUIRE(MDagPath::getAPathTo(transform, path));
    run(std::string("rename ") + path.partialPathName().asChar() + " shape; " + pose);
    path.extendToShape();
    return path;
  }
  std::unique_ptr<host::cmd::Session> session;
};

constexpr const char* kPoses[] = {
    "",
    "setAttr shape.translate -type double3 5 -3 2; setAttr shape.rotate -type double3 20 30 40;",
    "setAttr shape.scale -type double3 3 0.2 1; setAttr shape.rotate -type double3 20 30 40;",
    "setAttr shape.scale -type double3 -1 2 0.5; setAttr shape.shearXZ 0.7; setAttr "
    "shape.translateX 1000;",
    "setAttr shape.scale -type double3 1 0 1;"};

/// All triangles of a mesh in world space, face by face.
struct Triangles {
  std::vector<std::array<host::math::Vec3, 3>> corners;
  std::vector<int> faces, numbers;
  explicit Triangles(const MFnMesh& mesh) {
    MIntArray counts, vertices;
    MPointArray points;
    REQUIRE(mesh.getTriangles(counts, vertices));
    REQUIRE(mesh.getPoints(points, MSpace::kWorld));
    unsigned int next = 0;
    for (unsigned int f = 0; f < counts.length(); ++f)
      for (int k = 0; k < counts[f]; ++k) {
        auto& triangle = corners.emplace_back();
        for (auto& corner : triangle) {
          const MPoint& p = points[static_cast<unsigned int>(vertices[next++])];
          corner = {p.x, p.y, p.z};
        }
        faces.push_back(static_cast<int>(f));
        numbers.push_back(k);
      }
  }
  double distance(const host::math::Vec3& p) const {
    double best = 1e300;
    for (const auto& t : corners) {
      const auto [u, v] = host::math::closestOnTriangle(t[0], t[1], t[2], p);
      best = std::min(best, host::math::distance(p, t[0] * (1 - u - v) + t[1] * u + t[2] * v));
    }
    return best;
  }
};

host::math::Vec3 vec(const MPoint& p) {
  return {p.x, p.y, p.z};
}

}  // namespace

TEST_CASE(
    "closest point: right in world space, stretched, mirrored, sheared and flattened spaces too") {
  Scene scene;
  std::mt19937 random(5);
  std::uniform_real_distribution<double> wide(-4, 4);
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    const MDagPath path = scene.shape(host::zoo::torusMesh(12, 8), pose);
    const MFnMesh mesh(path);
    const Triangles triangles(mesh);
    MMeshIntersector intersector;
    REQUIRE(intersector.create(path.node(), path.inclusiveMatrix()));
    MPointArray points;
    REQUIRE(mesh.getPoints(points, MSpace::kWorld));
    const MPoint centre = (points[0] + MVector(points[40])) / 2.0;
    for (int i = 0; i < 50; ++i) {
      const MPoint p(centre.x + wide(random), centre.y + wide(random), centre.z + wide(random));
      MPoint found;
      int face = -1;
      REQUIRE(mesh.getClosestPoint(p, found, MSpace::kWorld, &face));
      const double expected = triangles.distance(vec(p));
      CHECK(p.distanceTo(found) == doctest::Approx(expected).epsilon(1e-6));
      CHECK(triangles.distance(vec(found)) < 1e-4);  // on the surface
      MPointOnMesh place;
      REQUIRE(intersector.getClosestPoint(p, place));
      // Asked in the world, it answers in object space.
      const MPoint there = MPoint(place.getPoint()) * path.inclusiveMatrix();
      CHECK(p.distanceTo(there) == doctest::Approx(expected).epsilon(1e-4));
      MVector facing;
      REQUIRE(mesh.getPolygonNormal(place.faceIndex(), facing, MSpace::kObject));
      CHECK(facing.isEquivalent(MVector(place.getNormal()), 1e-5));
      CHECK_FALSE(intersector.getClosestPoint(p, place, 0.5 * expected));
    }
  }
}

TEST_CASE("closest normal: across the surface in world space") {
  Scene scene;
  const MFnMesh mesh(
      scene.shape(host::zoo::gridMesh(3, 3),
                  "setAttr shape.scale -type double3 1 1 -2; setAttr shape.rotateZ 30;"));
  MPoint point;
  MVector normal;
  REQUIRE(mesh.getClosestPointAndNormal(MPoint(1, 3, -1), point, normal, MSpace::kWorld));
  CHECK(std::fabs(normal * MVector(std::cos(M_PI / 6), std::sin(M_PI / 6), 0)) < 1e-6);
  CHECK(normal.length() == doctest::Approx(1));
}

TEST_CASE("intersections: all hits of a scan, parameters counting in lengths of the direction") {
  Scene scene;
  std::mt19937 random(9);
  std::uniform_real_distribution<float> wide(-3, 3);
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    const MFnMesh mesh(scene.shape(host::zoo::torusMesh(12, 8), pose));
    const Triangles triangles(mesh);
    MPointArray points;
    REQUIRE(mesh.getPoints(points, MSpace::kWorld));
    for (int i = 0; i < 60; ++i) {
      const MPoint& target = points[static_cast<unsigned int>(i)];
      const MFloatPoint from(static_cast<float>(target.x) + wide(random),
                             static_cast<float>(target.y) + wide(random),
                             static_cast<float>(target.z) + wide(random));
      const MFloatVector along(0.5F * (static_cast<float>(target.x) - from.x) + 0.01F,
                               0.5F * (static_cast<float>(target.y) - from.y),
                               0.5F * (static_cast<float>(target.z) - from.z) + 0.02F);
      const host::math::Ray ray{{from.x, from.y, from.z}, {along.x, along.y, along.z}};
      std::vector<double> expected;
      double nearest = 1e300;
      for (const auto& t : triangles.corners)
        if (const auto hit = host::math::intersectTriangle(ray, t[0], t[1], t[2]);
            hit && std::fabs(hit->t) <= 50) {
          expected.push_back(hit->t);
          if (std::fabs(hit->t) < std::fabs(nearest)) nearest = hit->t;
        }
      std::sort(expected.begin(), expected.end());
      MFloatPointArray hits;
      MFloatArray params, bary1, bary2;
      MIntArray faces, numbers;
      mesh.allIntersections(from, along, nullptr, nullptr, false, MSpace::kWorld, 50, true, nullptr,
                            true, hits, &params, &faces, &numbers, &bary1, &bary2);
      CHECK(hits.length() == doctest::Approx(static_cast<double>(expected.size())).epsilon(0.001));
      for (unsigned int k = 0; k < std::min<std::size_t>(hits.length(), expected.size()); ++k) {
        CHECK(static_cast<double>(params[k]) == doctest::Approx(expected[k]).epsilon(1e-3));
        // The weights belong to the first two corners of the triangle that the mesh lists under
        // that number.
        std::size_t row = 0;
        while (triangles.faces[row] != faces[k] || triangles.numbers[row] != numbers[k]) ++row;
        const auto& t = triangles.corners[row];
        const double b1 = static_cast<double>(bary1[k]), b2 = static_cast<double>(bary2[k]);
        const host::math::Vec3 p = t[0] * b1 + t[1] * b2 + t[2] * (1 - b1 - b2);
        CHECK(host::math::distance(p, {hits[k].x, hits[k].y, hits[k].z}) < 1e-3);
      }
      MFloatPoint hit;
      float param = 0;
      const bool isHit =
          mesh.closestIntersection(from, along, nullptr, nullptr, false, MSpace::kWorld, 50, true,
                                   nullptr, hit, &param, nullptr, nullptr, nullptr, nullptr);
      CHECK(isHit == !expected.empty());
      if (isHit)
        CHECK(std::fabs(static_cast<double>(param)) ==
              doctest::Approx(std::fabs(nearest)).epsilon(1e-3));
    }
  }
}

TEST_CASE("intersections: face and triangle lists narrow the search, the reach ends it") {
  Scene scene;
  const MFnMesh mesh(scene.shape(host::zoo::zooMesh("cube"), ""));
  MPointArray points;
  MIntArray faces;
  REQUIRE(mesh.intersect(MPoint(0.1, 0.2, 9), MVector(0, 0, -1), points, 1e-3, MSpace::kObject,
                         &faces));
  REQUIRE(points.length() == 2);
  const auto hits = [&](const MIntArray* list, const MIntArray* triangles, float reach, int& face) {
    MFloatPoint hit;
    return mesh.closestIntersection(MFloatPoint(0.1F, 0.2F, 9), MFloatVector(0, 0, -1), list,
                                    triangles, false, MSpace::kObject, reach, false, nullptr, hit,
                                    nullptr, &face, nullptr, nullptr, nullptr);
  };
  int face = -1;
  CHECK(hits(nullptr, nullptr, 100, face));
  CHECK(face == faces[0]);
  const MIntArray behind(1, faces[1]);
  CHECK(hits(&behind, nullptr, 100, face));
  CHECK(face == faces[1]);
  const MIntArray first(1, 0), second(1, 1);
  CHECK(hits(&behind, &first, 100, face) != hits(&behind, &second, 100, face));
  CHECK_FALSE(hits(nullptr, nullptr, 1, face));
  const MIntArray none;
  CHECK_FALSE(hits(&none, nullptr, 100, face));
}

TEST_CASE(
    "queries: one function set sees every change of its mesh, its place, and what it is attached "
    "to") {
  Scene scene;
  const MDagPath path = scene.shape(host::zoo::gridMesh(4, 4), "");
  const MObject node = path.node();
  MFnMesh set(path);
  const auto heightAt = [&](MSpace::Space space) {
    MFloatPoint hit;
    const bool isHit = set.closestIntersection(MFloatPoint(1.5F, 50, -1.5F), MFloatVector(0, -1, 0),
                                               nullptr, nullptr, false, space, 1e6F, false, nullptr,
                                               hit, nullptr, nullptr, nullptr, nullptr, nullptr);
    MPoint closest;
    if (!isHit) return -1000.0F;
    REQUIRE(set.getClosestPoint(MPoint(1.5, 50, -1.5), closest, space));
    CHECK(closest.y == doctest::Approx(hit.y));
    return hit.y;
  };
  const auto lift = [&](float height) {
    MFnMesh other(path);
    MFloatPointArray points;
    REQUIRE(other.getPoints(points));
    for (unsigned int i = 0; i < points.length(); ++i) points[i].y = height;
    REQUIRE(other.setPoints(points));
  };
  CHECK(heightAt(MSpace::kObject) == 0);
  lift(2);  // through another set
  CHECK(heightAt(MSpace::kObject) == 2);
  CHECK(heightAt(MSpace::kWorld) == 2);
  scene.run("setAttr shape.translateY 3");
  CHECK(heightAt(MSpace::kObject) == 2);
  CHECK(heightAt(MSpace::kWorld) == 5);
  scene.run("group -name above shape");
  CHECK(heightAt(MSpace::kWorld) == -1000);  // the path that the set was given is none any more
  CHECK(heightAt(MSpace::kObject) == 2);
  set.setObject(node);
  CHECK(heightAt(MSpace::kObject) == 2);
  scene.run("undo; undo");
  set.setObject(path);
  CHECK(heightAt(MSpace::kWorld) == 2);
  REQUIRE(set.freeCachedIntersectionAccelerator());
  CHECK(heightAt(MSpace::kWorld) == 2);
  scene.run("polyPlane -name plane -w 9 -h 9; move 0 7 0 plane;");
  MSelectionList list;
  MDagPath plane;
  list.add("plane");
  list.getDagPath(0, plane);
  set.setObject(plane);
  CHECK(heightAt(MSpace::kWorld) == 7);
  scene.run("setAttr polyPlane1.width 0.1");
  CHECK(heightAt(MSpace::kWorld) == -1000);
  scene.run("delete plane");
  CHECK(heightAt(MSpace::kObject) == -1000);
}
