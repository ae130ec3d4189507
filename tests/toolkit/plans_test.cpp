#include <doctest/doctest.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "commands/circlePlan.h"
#include "commands/planarPlan.h"
#include "commands/straightenPlan.h"
#include "shared/numeric/pointIndex.h"

namespace {

MPointArray pointsOf(std::initializer_list<MPoint> list) {
  MPointArray points;
  for (const MPoint& p : list) points.append(p);
  return points;
}

MPointArray randomPoints(unsigned int count, unsigned int seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> wide(-10, 10);
  MPointArray points;
  for (unsigned int i = 0; i < count; ++i)
    points.append(MPoint(wide(random), wide(random), wide(random)));
  return points;
}

bool same(const MPointArray& a, const MPointArray& b) {
  return a.length() == b.length() && std::equal(a.begin(), a.end(), b.begin());
}

}  // namespace

TEST_CASE("straighten plan: points land on the line through the extremes, each straight across") {
  for (unsigned int seed = 0; seed < 20; ++seed) {
    const MPointArray before = randomPoints(30, seed);
    MPointArray after = before;
    straightenRun(after, 5, 20, kKeepNone);
    const auto unmoved = [&](unsigned int i) { return before[i].distanceTo(after[i]) < 1e-12; };
    unsigned int ends = 0;
    MVector along;
    for (unsigned int i = 5; i < 25; ++i)
      for (unsigned int k = 5; k < i; ++k)
        if (MVector d = after[i] - after[k]; d.length() > along.length()) along = d;
    along.normalize();
    for (unsigned int i = 0; i < 30; ++i) {
      if (i < 5 || i >= 25) {
        CHECK(before[i] == after[i]);
        continue;
      }
      ends += unmoved(i);
      CHECK(std::fabs((after[i] - before[i]) * along) < 1e-9);
      CHECK(((after[i] - after[5]) ^ along).length() < 1e-9);
    }
    CHECK(ends == 2);
  }
}

TEST_CASE(
    "straighten plan: kept coordinates stay, coinciding points and single points do not move") {
  const MPointArray bent = pointsOf({{0, 0, 0}, {1, 0.2, 0}, {2, 0, 0}});
  const auto middle = [&](int keep) {
    MPointArray points = bent;
    straightenRun(points, 0, 3, keep);
    CHECK(points[0] == bent[0]);
    CHECK(points[2] == bent[2]);
    return points[1];
  };
  CHECK(middle(kKeepNone).isEquivalent(MPoint(1, 0, 0)));
  CHECK(middle(kKeepX).isEquivalent(MPoint(1, 0, 0)));
  CHECK(middle(kKeepY) == bent[1]);
  CHECK(middle(kKeepYZ) == bent[1]);
  CHECK(middle(kKeepXZ).isEquivalent(MPoint(1, 0, 0)));

  for (const MPointArray& still :
       {pointsOf({{3, 3, 3}, {3, 3, 3}, {3, 3, 3}}), pointsOf({{3, 1, 2}}), MPointArray()}) {
    MPointArray points = still;
    straightenRun(points, 0, points.length(), kKeepNone);
    CHECK(same(points, still));
  }
}

TEST_CASE(
    "circle plan: equal steps on the widest circle, in angular order, in the plane of the normal") {
  for (const unsigned int count : {3u, 4u, 8u, 13u, 38u, 5000u}) {
    std::mt19937 random(count);
    std::uniform_real_distribution<double> radius(1, 3), height(-0.5, 0.5);
    MPointArray before;
    for (unsigned int i = 0; i < count; ++i) {  // a star-shaped loop in order of angle
      const double angle = 6.283185307179586 * i / count, r = radius(random);
      before.append(MPoint(r * std::cos(angle), height(random), r * std::sin(angle)));
    }
    MPointArray after = before;
    REQUIRE(circleRun(after, 0, count, MVector(0, 2, 0)) == circleFault::none);
    MPoint centre;
    for (const MPoint& p : before) centre += MVector(p) / count;
    double widest = 0;
    for (const MPoint& p : before) widest = std::max(widest, p.distanceTo(centre));
    const double side = 2 * widest * std::sin(3.141592653589793 / count);
    for (unsigned int i = 0; i < count; ++i)
      CHECK(after[i].distanceTo(centre) == doctest::Approx(widest));
    std::vector<unsigned int> order(count);
    for (unsigned int i = 0; i < count; ++i) order[i] = i;
    const auto angleOf = [&](const MPointArray& points, unsigned int i) {
      return std::atan2(points[i].z - centre.z, points[i].x - centre.x);
    };
    std::sort(order.begin(), order.end(), [&](unsigned int a, unsigned int b) {
      return angleOf(before, a) < angleOf(before, b);
    });
    // Neighbours by angle before are neighbours after.
    for (unsigned int i = 0; i < count; ++i)
      CHECK(after[order[i]].distanceTo(after[order[(i + 1) % count]]) ==
            doctest::Approx(side).epsilon(1e-6));
  }
}

TEST_CASE("circle plan: a bad normal is replaced, and what has no circle is refused unchanged") {
  MPointArray square = pointsOf({{1, 1, 0}, {-1, 1, 0}, {-1, -1, 0}, {1.5, -1, 0}});
  REQUIRE(circleRun(square, 0, 4, MVector()) == circleFault::none);
  for (const MPoint& p : square) CHECK(std::fabs(p.z) < 1e-12);

  MPointArray line = pointsOf({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {5, 5, 5}});
  const MPointArray kept = line;
  for (const MVector& normal : {MVector(), MVector(1, 1, 1), MVector(-2, -2, -2)})
    CHECK(circleRun(line, 0, 4, normal) == circleFault::noPlane);
  CHECK(circleRun(line, 0, 2, MVector(0, 1, 0)) == circleFault::tooFewPoints);
  CHECK(same(line, kept));
}

TEST_CASE(
    "planar plan: an orthogonal projection onto the plane through the mean, horizontal planes "
    "too") {
  for (const MVector normal :
       {MVector(0, 1, 0), MVector(0, -5, 0), MVector(1, 2, 3), MVector(0, 0, 0)}) {
    const MPointArray before = randomPoints(12, 7);
    MPointArray after = before;
    REQUIRE(flattenRun(after, 2, 8, normal));
    MPoint mean;
    for (unsigned int i = 2; i < 10; ++i) mean += MVector(before[i]) / 8.0;
    MVector across;  // the common direction of all moves
    for (unsigned int i = 2; i < 10; ++i)
      if (MVector move = after[i] - before[i]; move.length() > across.length()) across = move;
    across.normalize();
    if (normal.length() > 0) CHECK((across ^ normal.normal()).length() < 1e-9);
    for (unsigned int i = 2; i < 10; ++i) {
      CHECK(((after[i] - before[i]) ^ across).length() < 1e-9);
      CHECK(std::fabs((after[i] - mean) * across) < 1e-9);
    }
    CHECK(before[0] == after[0]);
    CHECK(before[11] == after[11]);
  }
  MPointArray line = pointsOf({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}});
  const MPointArray kept = line;
  CHECK_FALSE(flattenRun(line, 0, 3, MVector()));
  CHECK(same(line, kept));
}

TEST_CASE("point index: the nearest of a run as a scan finds it, ties to the first") {
  MPointArray points = randomPoints(300, 3);
  for (unsigned int i = 0; i < 60; ++i) points.append(points[i]);  // repeats
  points.append(MPoint(std::nan(""), 0, 0));
  const unsigned int start = 20, count = points.length() - start;
  const pointIndex index(points, start, count);
  const MPointArray questions = randomPoints(200, 4);
  for (const MPoint& q : questions)
    for (const double limit : {0.5, 4.0, 1e9}) {
      int best = -1;
      double bestDistance = limit;
      for (unsigned int i = 0; i < count; ++i)
        if (const double d = q.distanceTo(points[start + i]); d < bestDistance) {
          bestDistance = d;
          best = static_cast<int>(i);
        }
      CHECK(index.nearest(q, limit) == best);
    }
  CHECK(pointIndex(points, 0, 0).nearest(MPoint(), 1e9) == -1);
}
