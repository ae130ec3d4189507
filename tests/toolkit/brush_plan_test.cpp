#include <doctest/doctest.h>
#include <maya/MIntArray.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

#include "brushes/brushSurface.h"
#include "brushes/mirrorPairs.h"
#include "brushes/sculptPlan.h"
#include "brushes/strokeSampler.h"
#include "shared/mesh/polyHelper.h"
#include "tests/toolkit/zoo_scene.h"

namespace {

penSample at(double x, double y, double pressure = 1.0) {
  penSample sample;
  sample.x = x;
  sample.y = y;
  sample.pen.pressure = pressure;
  return sample;
}

/// A curved way, told in `events` places.
std::vector<penSample> drawn(int events, double smoothing, double step) {
  const auto way = [](double t) { return at(300.0 * t, 80.0 * std::sin(4.0 * t), 1.0 - 0.5 * t); };
  strokeSampler sampler;
  sampler.begin(way(0.0), smoothing);
  std::vector<penSample> dabs;
  penSample dab;
  const auto takeAll = [&] {
    while (sampler.next(step, dab)) dabs.push_back(dab);
  };
  takeAll();
  for (int i = 1; i <= events; ++i) {
    sampler.moveTo(way(static_cast<double>(i) / events));
    takeAll();
  }
  sampler.finish();
  takeAll();
  return dabs;
}

brushSurface surfaceOf(const MDagPath& path) {
  brushSurface surface;
  REQUIRE(surface.read(path) == MS::kSuccess);
  REQUIRE(surface.placeInWorld());
  return surface;
}

dabQuery queryAt(const brushSurface& surface, int face, double radius) {
  dabQuery query;
  const int first = surface.faces().offsets[static_cast<std::size_t>(face)];
  query.centre = surface.worldPoint(surface.faces().corners[static_cast<std::size_t>(first)]);
  query.normal = surface.worldFaceNormal(face);
  if (query.normal.length() < 0.5) query.normal = MVector(0, 1, 0);
  query.across =
      query.normal ^ (std::fabs(query.normal.x) < 0.8 ? MVector(1, 0, 0) : MVector(0, 0, 1));
  query.across.normalize();
  query.radius = radius;
  query.startFace = face;
  query.backFaces = true;
  return query;
}

std::set<int> setOf(const dabRegion& region) {
  return {region.vertices.begin(), region.vertices.end()};
}

}  // namespace

TEST_CASE("stroke sampler: the same line gives the same dabs, drawn fast or slowly") {
  for (const double smoothing : {0.0, 0.3, 1.0}) {
    CAPTURE(smoothing);
    const auto slow = drawn(400, smoothing, 9.0), fast = drawn(60, smoothing, 9.0);
    REQUIRE(slow.size() > 30);
    REQUIRE(std::abs(static_cast<int>(slow.size()) - static_cast<int>(fast.size())) <= 1);
    const std::size_t both = std::min(slow.size(), fast.size());
    for (std::size_t i = 0; i < both; ++i) {
      CHECK(std::hypot(slow[i].x - fast[i].x, slow[i].y - fast[i].y) < 1.0);
      CHECK(slow[i].pen.pressure == doctest::Approx(fast[i].pen.pressure).epsilon(0.01));
    }
    for (std::size_t i = 1; i < slow.size(); ++i)
      CHECK(std::hypot(slow[i].x - slow[i - 1].x, slow[i].y - slow[i - 1].y) <= 9.0 + 1e-9);
  }
  // A smoothed way still comes to where the pointer was let go.
  CHECK(std::hypot(drawn(50, 1.0, 1.0).back().x - 300.0, 0.0) < 1.1);
}

TEST_CASE("falloff: ramps and names come back as they were given, what is none is refused") {
  falloffCurve curve;
  std::string problem;
  for (const char* ramp : {"1,0,2,0,1,2", "0.5,0,1,1,0.5,3,0,1,0", "1,0,0"}) {
    REQUIRE(curve.setText(ramp, problem));
    CHECK(curve.text() == ramp);
  }
  for (const char* name : {"smooth", "linear", "sharp", "round", "flat"}) {
    CAPTURE(name);
    REQUIRE(curve.setText(name, problem));
    CHECK(curve.weight(0.0) == doctest::Approx(1.0));
    CHECK(curve.weight(1.0) == 0.0);
    for (double share = 0.05; share < 1.0; share += 0.05)
      CHECK(curve.weight(share) <= curve.weight(share - 0.05) + 1e-6);
  }
  REQUIRE(curve.setText("0,1,1,1,0,1", problem));  // in any order
  CHECK(curve.weight(0.25) == doctest::Approx(0.75).epsilon(0.01));
  const std::string before = curve.text();
  for (const char* bad : {"", "wavy", "1,0", "1,0,7,0,1,1", "1,0,1.5,0,1,1", "nan,0,1", "1,,0"}) {
    CAPTURE(bad);
    CHECK_FALSE(curve.setText(bad, problem));
    CHECK(problem.find("no falloff") != std::string::npos);
    CHECK(curve.text() == before);
  }
}

TEST_CASE("face tree: a mended tree answers as one built anew") {
  toolkitSession toolkit;
  toolkit.run("polyTorus -n shape -sx 24 -sy 18 -ch 0");
  brushSurface surface = surfaceOf(toolkitSession::path("shape"));
  faceArrays arrays = surface.faces();
  faceTree mended;
  mended.build(arrays);
  std::mt19937 random(7);
  std::uniform_real_distribution<double> number(-1.0, 1.0);
  for (int round = 0; round < 30; ++round) {
    std::vector<int> touched;
    for (int i = 0; i < 20; ++i) {
      const int vertex = static_cast<int>(random() % static_cast<unsigned>(arrays.vertexCount()));
      for (std::size_t k = 0; k < 3; ++k)
        arrays.points[3 * static_cast<std::size_t>(vertex) + k] +=
            static_cast<float>(number(random));
      touched.insert(touched.end(), surface.facesBegin(vertex), surface.facesEnd(vertex));
    }
    std::sort(touched.begin(), touched.end());
    touched.erase(std::unique(touched.begin(), touched.end()), touched.end());
    mended.mend(arrays, touched);
    faceTree fresh;
    fresh.build(arrays);
    for (int i = 0; i < 50; ++i) {
      const double origin[3] = {3 * number(random), 3 * number(random), 3 * number(random)};
      const double way[3] = {number(random), number(random), number(random)};
      const faceHit a = mended.cast(arrays, origin, way), b = fresh.cast(arrays, origin, way);
      REQUIRE(a.isHit() == b.isHit());
      if (a.isHit()) CHECK(a.distance == doctest::Approx(b.distance));
      std::vector<int> in, inFresh;
      const double high[3] = {origin[0] + 0.5, origin[1] + 0.5, origin[2] + 0.5};
      mended.facesInBox(origin, high, in);
      fresh.facesInBox(origin, high, inFresh);
      // Leaves hold several faces, whose boxes go together: compare what surely reaches in.
      std::set<int> both(in.begin(), in.end()), other(inFresh.begin(), inFresh.end());
      for (int f = 0; f < arrays.faceCount(); ++f) {
        bool isInside = false;
        for (int c = arrays.offsets[static_cast<std::size_t>(f)];
             c < arrays.offsets[static_cast<std::size_t>(f) + 1]; ++c) {
          const float* p = arrays.point(arrays.corners[static_cast<std::size_t>(c)]);
          isInside = isInside || (p[0] >= origin[0] && p[0] <= high[0] && p[1] >= origin[1] &&
                                  p[1] <= high[1] && p[2] >= origin[2] && p[2] <= high[2]);
        }
        if (isInside) REQUIRE((both.count(f) == 1 && other.count(f) == 1));
      }
    }
  }
}

TEST_CASE("brush surface: a dab reaches the vertices within its radius that hang together") {
  toolkitSession toolkit;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo(host::zoo::Has::Faces))
    for (const char* pose : kPoses) {
      CAPTURE(zoo.name);
      CAPTURE(pose);
      brushSurface surface = surfaceOf(showMesh(toolkit, zoo.build(), pose));
      for (const double radius : {0.0, 0.4, 1.5, 1e5}) {
        dabQuery query = queryAt(surface, 0, radius);
        dabRegion together, all, along;
        surface.gather(query, together);
        query.islands = true;
        surface.gather(query, all);
        query.islands = false;
        query.overSurface = true;
        surface.gather(query, along);
        std::set<int> inside;
        for (int v = 0; v < surface.vertexCount(); ++v)
          if (surface.worldPoint(v).distanceTo(query.centre) < radius &&
              surface.facesBegin(v) != surface.facesEnd(v))
            inside.insert(v);
        CHECK(setOf(all) == inside);
        const auto isWithin = [](const std::set<int>& some, const std::set<int>& of) {
          return std::includes(of.begin(), of.end(), some.begin(), some.end());
        };
        CHECK(isWithin(setOf(together), inside));
        // Along the surface is never nearer than through space.
        CHECK(isWithin(setOf(along), inside));
        for (const dabRegion* region : {&together, &all, &along}) {
          CHECK(region->vertices.size() == setOf(*region).size());
          for (const double share : region->shares) CHECK((share >= 0.0 && share < 1.0));
          for (const double place : region->stamp) CHECK(std::fabs(place) < 1.0 + 1e-6);
        }
      }
    }
}

TEST_CASE("brush surface: distances along a bent sheet are those of the sheet laid flat") {
  toolkitSession toolkit;
  toolkit.run("polyPlane -n shape -w 12 -h 4 -sx 48 -sy 16 -ch 0");
  // Rolled up to three quarters of a tube of radius 2.
  MPointArray points = toolkitSession::points("shape");
  const MPointArray flat = points;
  for (unsigned int i = 0; i < points.length(); ++i) {
    const double angle = flat[i].x / 2.0;
    points[i] = MPoint(2.0 * std::sin(angle), 2.0 - 2.0 * std::cos(angle), flat[i].z);
  }
  toolkitSession::setPoints("shape", points);
  brushSurface surface = surfaceOf(toolkitSession::path("shape"));
  const int face = 16 * 24 / 2 + 8;
  dabQuery query = queryAt(surface, face, 3.0);
  query.overSurface = true;
  dabRegion region;
  surface.gather(query, region);
  REQUIRE(region.vertices.size() > 100);
  const int start = surface.faces().corners[static_cast<std::size_t>(
      surface.faces().offsets[static_cast<std::size_t>(face)])];
  const MPoint centre = flat[static_cast<unsigned int>(start)];
  for (std::size_t i = 0; i < region.vertices.size(); ++i) {
    const double wanted = flat[static_cast<unsigned int>(region.vertices[i])].distanceTo(centre);
    CHECK(region.shares[i] * 3.0 == doctest::Approx(wanted).epsilon(0.03));
    CHECK(std::hypot(region.stamp[2 * i], region.stamp[2 * i + 1]) * 3.0 ==
          doctest::Approx(wanted).epsilon(0.03));
  }
}

TEST_CASE("mirror pairs: the rule of all tools, found vertex by vertex") {
  toolkitSession toolkit;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo(host::zoo::Has::Faces))
    for (int axis = 0; axis < 3; ++axis) {
      CAPTURE(zoo.name);
      CAPTURE(axis);
      const MDagPath path = showMesh(toolkit, zoo.build());
      const brushSurface surface = surfaceOf(path);
      mirrorPairs pairs;
      pairs.begin(surface, axis, false);
      MIntArray wanted;
      REQUIRE(polyHelper().symmetricVertices(path, axis, false, wanted) == MS::kSuccess);
      MPointArray points = toolkitSession::points("shape", MSpace::kObject);
      int differing = 0;
      for (int v = 0; v < surface.vertexCount(); ++v) {
        if (surface.facesBegin(v) == surface.facesEnd(v)) continue;
        const int there = pairs.partner(v);
        if (there >= 0) CHECK(pairs.partner(there) == v);
        if (there == wanted[static_cast<unsigned int>(v)]) continue;
        // Several vertices in one place share their claims differently.
        int here = 0;
        for (unsigned int other = 0; other < points.length(); ++other)
          here += points[other].isEquivalent(points[static_cast<unsigned int>(v)], 1e-3) ? 1 : 0;
        if (here == 1) ++differing;
      }
      CHECK(differing == 0);
    }
}

TEST_CASE("sculpt plans: what a stroke does does not hang on how it was cut into dabs") {
  brushDab coarse, fine;
  coarse.strength = fine.strength = 0.7;
  coarse.stepShare = 0.3;
  fine.stepShare = 0.05;
  const double one = 1.0 - sculptPlan::amountOf(coarse, 4.0);
  const double six = std::pow(1.0 - sculptPlan::amountOf(fine, 4.0), 6);
  CHECK(one == doctest::Approx(six));
}

TEST_CASE("sculpt plans: relaxing evens out, keeps a flat border's line and stays finite") {
  toolkitSession toolkit;
  toolkit.run("polyPlane -n shape -w 8 -h 8 -sx 16 -sy 16 -ch 0; move -r 0 1 0 shape.vtx[144]");
  const brushSurface surface = surfaceOf(toolkitSession::path("shape"));
  dabQuery query = queryAt(surface, 120, 100.0);
  dabRegion region;
  surface.gather(query, region);
  dabMoves moves(region.vertices.size());
  vertexSlots slots;
  sculptPlan::relax(surface, region, 0.5, 10, slots, moves);
  for (std::size_t i = 0; i < moves.size(); ++i) {
    const MPoint after = surface.worldPoint(region.vertices[i]) + moves[i];
    CHECK(std::isfinite(after.x + after.y + after.z));
    CHECK(std::fabs(after.y) < 0.5);
    if (surface.isBorder(region.vertices[i])) CHECK(moves[i].length() < 1e-6);
  }
}
