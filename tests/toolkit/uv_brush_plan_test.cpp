#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "brushes/tabletInput.h"
#include "brushes/uvFrame.h"
#include "brushes/uvGuard.h"
#include "brushes/uvLayout.h"
#include "brushes/uvMirror.h"
#include "brushes/uvOrientation.h"
#include "brushes/uvRelax.h"
#include "tests/toolkit/toolkit_session.h"

namespace {

/// A square of n x n quads over the unit square, rows of n + 1 UVs; `sign` -1 mirrors it.
uvLayout grid(int n, float sign = 1.0F) {
  std::vector<float> places;
  for (int y = 0; y <= n; ++y)
    for (int x = 0; x <= n; ++x)
      places.insert(places.end(), {sign * static_cast<float>(x) / static_cast<float>(n),
                                   static_cast<float>(y) / static_cast<float>(n)});
  MIntArray counts, ids;
  for (int y = 0; y < n; ++y)
    for (int x = 0; x < n; ++x) {
      const int first = y * (n + 1) + x;
      counts.append(4);
      for (const int id : {first, first + 1, first + n + 2, first + n + 1}) ids.append(id);
    }
  uvLayout layout;
  REQUIRE(layout.build(places, counts, ids));
  return layout;
}

/// Two numbers of all UVs.
std::vector<float> placesOf(const uvLayout& layout) {
  return {layout.place(0), layout.place(0) + 2 * layout.count()};
}

std::vector<int> allOf(const uvLayout& layout) {
  std::vector<int> all;
  for (int uv = 0; uv < layout.count(); ++uv) all.push_back(uv);
  return all;
}

/// Corners of polygons that lie the wrong way of their shell, by exact test.
int turnedOver(const uvLayout& layout) {
  int count = 0;
  const intLists& faces = layout.faces();
  for (int face = 0; face < faces.count(); ++face) {
    const int* const uvs = faces.begin(face);
    const int size = faces.size(face);
    for (int i = 0; i < size; ++i)
      count +=
          orientation(layout.place(uvs[(i + size - 1) % size]), layout.place(uvs[i]),
                      layout.place(uvs[(i + 1) % size])) != layout.shellSign(layout.shellOf(*uvs));
  }
  return count;
}

__extension__ using wide = __int128;

}  // namespace

TEST_CASE("orientation is that of whole-number arithmetic, however thin the triangle") {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> mantissa(-(1 << 24), 1 << 24), shift(0, 26), nudge(-2, 2);
  int onLine = 0;
  for (int i = 0; i < 200000; ++i) {
    wide whole[3][2];
    float place[3][2];
    for (int p = 0; p < 3; ++p)
      for (int k = 0; k < 2; ++k) {
        // In every eighth all of it fits a float, so that the line is met.
        const int s = i % 8 == 2 ? 3 : shift(random);
        wide value = static_cast<wide>(i % 8 == 2 ? mantissa(random) / 4 : mantissa(random)) << s;
        // Every second triangle has its third corner as near to the line as floats allow.
        if (p == 2 && i % 2 == 0) value = (2 * whole[1][k] - whole[0][k]) / 16;
        // In every eighth the first corner is lost in the differences to the others.
        if (i % 8 == 5)
          value = p == 0 ? mantissa(random) >> 20 : static_cast<wide>(p * (1 + i % 63)) << 50;
        place[p][k] = static_cast<float>(static_cast<double>(value));
        if (p == 2 && i % 4 == 0)
          for (int n = nudge(random); n != 0; n += n > 0 ? -1 : 1)
            place[p][k] = std::nextafter(place[p][k], n > 0 ? HUGE_VALF : -HUGE_VALF);
        whole[p][k] = static_cast<wide>(std::ldexp(static_cast<double>(place[p][k]), 4));
      }
    const wide area = (whole[1][0] - whole[0][0]) * (whole[2][1] - whole[0][1]) -
                      (whole[1][1] - whole[0][1]) * (whole[2][0] - whole[0][0]);
    // Nudges below a sixteenth are cut off by the whole numbers: such places are passed over.
    bool isWhole = true;
    for (int p = 0; p < 3; ++p)
      for (int k = 0; k < 2; ++k)
        isWhole = isWhole && static_cast<double>(whole[p][k]) ==
                                 std::ldexp(static_cast<double>(place[p][k]), 4);
    if (!isWhole) continue;
    const int expected = area > 0 ? 1 : area < 0 ? -1 : 0;
    onLine += expected == 0;
    REQUIRE(orientation(place[0], place[1], place[2]) == expected);
  }
  CHECK(onLine > 1000);
}

TEST_CASE(
    "guard: whatever is asked, no polygon turns over, and what hinders nothing goes all the way") {
  for (unsigned int seed = 0; seed < 60; ++seed) {
    CAPTURE(seed);
    std::mt19937 random(seed);
    uvLayout layout = grid(6, seed % 2 ? -1.0F : 1.0F);
    uvGuard guard(layout);
    std::uniform_real_distribution<float> far(-0.6F, 0.6F);
    for (int step = 0; step < 12; ++step) {
      std::vector<int> uvs = allOf(layout);
      std::shuffle(uvs.begin(), uvs.end(), random);
      uvs.resize(1 + random() % uvs.size());
      std::vector<float> targets;
      for (const int uv : uvs)
        for (int k = 0; k < 2; ++k) targets.push_back(layout.place(uv)[k] + far(random));
      guard.move(uvs, targets);
      REQUIRE(turnedOver(layout) == 0);
    }
  }
  uvLayout layout = grid(4);
  uvGuard guard(layout);
  CHECK(guard.move({12}, {0.6F, 0.45F}) == 0);  // stays within its ring
  CHECK(layout.place(12)[0] == 0.6F);
  CHECK(guard.move({12}, {5.0F, 5.0F}) == 1);
  CHECK(turnedOver(layout) == 0);
  std::vector<float> shifted = placesOf(layout);
  for (float& number : shifted) number += 0.25F;
  CHECK(guard.move(allOf(layout), shifted) == 0);
  CHECK(placesOf(layout) == shifted);
}

TEST_CASE("guard: what lay the wrong way may be put right, and n-gons don't wind round twice") {
  uvLayout layout = grid(4);
  layout.setPlace(12, 0.95F, 0.5F);  // beyond its neighbours
  REQUIRE(turnedOver(layout) > 0);
  uvGuard guard(layout);
  CHECK(guard.move({12}, {0.5F, 0.5F}) == 0);
  CHECK(turnedOver(layout) == 0);

  std::vector<float> pentagon, star;
  MIntArray counts, ids;
  counts.append(5);
  for (int i = 0; i < 5; ++i) {
    ids.append(i);
    const double angle = 2 * M_PI * i / 5;
    for (const double number : {std::cos(angle), std::sin(angle)})
      pentagon.push_back(static_cast<float>(number));
    for (const double number : {std::cos(2 * angle), std::sin(2 * angle)})
      star.push_back(static_cast<float>(number));
  }
  uvLayout five;
  REQUIRE(five.build(pentagon, counts, ids));
  uvGuard fiveGuard(five);
  CHECK(fiveGuard.move(allOf(five), star) > 0);  // all its corners turn left, twice round
  CHECK(placesOf(five) != star);
}

TEST_CASE("layout: shells, borders and ids that fit nothing") {
  MIntArray counts, ids;
  for (const int count : {3, 0, 4}) counts.append(count);
  for (const int id : {0, 1, 2, 3, 4, 5, 6}) ids.append(id);
  uvLayout layout;
  std::vector<float> places{0, 0, 1, 0, 0, 1, 2, 0, 2, 1, 3, 1, 3, 0, 9, 9};
  REQUIRE(layout.build(places, counts, ids));
  CHECK(layout.shellCount() == 3);  // the last UV is in no polygon
  CHECK(layout.shellSign(layout.shellOf(0)) == 1);
  CHECK(layout.shellSign(layout.shellOf(3)) == -1);
  CHECK(layout.faces().size(1) == 0);
  CHECK(layout.isBorder(3));
  CHECK_FALSE(grid(2).isBorder(4));
  CHECK(grid(2).isBorder(1));
  ids[6] = 8;
  CHECK_FALSE(uvLayout(layout).build(places, counts, ids));
}

TEST_CASE("relaxing brings a crumpled map back to the shape of its surface, mirrored or not") {
  for (const float sign : {1.0F, -1.0F}) {
    uvLayout layout = grid(8, sign);
    std::vector<float> surface;  // the flat sheet, three times as large and turned in space
    for (const int uv : layout.faces().values) {
      const double x = std::fabs(static_cast<double>(layout.place(uv)[0])) * 3;
      const double y = static_cast<double>(layout.place(uv)[1]) * 3;
      for (const double number : {x * 0.6, y, x * 0.8})
        surface.push_back(static_cast<float>(number));
    }
    const std::vector<float> flat = placesOf(layout);
    uvRelax relax;
    relax.begin(layout, surface);
    REQUIRE(relax.hasSurface());
    std::mt19937 random(3);
    std::uniform_real_distribution<float> jitter(-0.05F, 0.05F);
    std::vector<int> inside;
    for (int uv = 0; uv < layout.count(); ++uv) {
      if (layout.isBorder(uv)) continue;
      inside.push_back(uv);
      layout.setPlace(uv, layout.place(uv)[0] + jitter(random),
                      layout.place(uv)[1] + jitter(random));
    }
    for (int round = 0; round < 300; ++round)
      for (const int uv : inside) {
        double wanted[2];
        REQUIRE(relax.target(layout, uv, false, wanted));
        layout.setPlace(uv, static_cast<float>(wanted[0]), static_cast<float>(wanted[1]));
      }
    double worst = 0;
    for (std::size_t i = 0; i < flat.size(); ++i)
      worst = std::max(worst, std::fabs(static_cast<double>(placesOf(layout)[i]) - flat[i]));
    CHECK(worst < 1e-3);
    // A border that was pulled out comes back too, without anybody holding the rest.
    layout.setPlace(0, -sign * 0.05F, -0.05F);
    for (int round = 0; round < 100; ++round) {
      double wanted[2];
      REQUIRE(relax.target(layout, 0, false, wanted));
      layout.setPlace(0, static_cast<float>(wanted[0]), static_cast<float>(wanted[1]));
    }
    CHECK(std::fabs(layout.place(0)[0]) < 2e-3);
    double middle[2];
    CHECK_FALSE(relax.target(layout, 0, true, middle));  // evening out leaves borders
    CHECK(relax.target(layout, inside[0], true, middle));
  }
  uvLayout flatFaces = grid(1);
  uvRelax relax;
  relax.begin(flatFaces, std::vector<float>(12, 1.0F));  // no area on the surface
  double wanted[2];
  CHECK_FALSE(relax.target(flatFaces, 0, false, wanted));
}

TEST_CASE("mirrored UVs move alike, the heavier of two has its way, those on the line stay on it") {
  const uvLayout layout = grid(4);
  const uvMirror mirror(layout, 0, 0.5);
  CHECK(mirror.counterpart(5) == 9);
  CHECK(mirror.counterpart(7) == 7);
  std::vector<int> uvs{5, 7, 8, 6};
  std::vector<float> targets{0.1F, 0.3F, 0.6F, 0.3F, 0.7F, 0.2F, 0.9F, 0.9F};
  addCounterparts(mirror, {1.0, 1.0, 0.75, 0.5}, uvs, targets);
  REQUIRE(uvs == std::vector<int>{5, 7, 8, 6, 9});
  CHECK(targets[2] == 0.5F);                   // on the line
  CHECK(targets[6] == doctest::Approx(0.3F));  // 6 follows 8, which weighs more
  CHECK(targets[7] == 0.2F);
  CHECK(targets[8] == doctest::Approx(0.9F));  // 9 follows 5
}

TEST_CASE("a frame says how a map lies on a turned surface") {
  const std::vector<MPoint> corners{{1, 2, 3}, {1, 4, 3}, {1, 4, 7}, {1, 2, 7}};
  uvFrame frame;  // u grows by 0.1 a centimetre along y, v by 0.25 along z
  REQUIRE(frameOfPolygon(corners, {0, 0, 0.2, 0, 0.2, 1, 0, 1}, MVector(1, 0, 0), MPoint(1, 3, 4),
                         frame));
  CHECK(frame.place[0] == doctest::Approx(0.1));
  CHECK(frame.place[1] == doctest::Approx(0.25));
  CHECK(frame.change(0, MVector(5, 1, 1)) == doctest::Approx(0.1));
  CHECK(frame.change(1, MVector(5, 1, 1)) == doctest::Approx(0.25));
  CHECK(frame.isSeenFromFront(MVector(1, 0, 0)));
  CHECK_FALSE(frame.isSeenFromFront(MVector(-1, 0, 0)));
  CHECK_FALSE(frameOfPolygon({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {0, 0, 1, 0, 2, 0},
                             MVector(0, 1, 0), MPoint(), frame));
}

TEST_CASE("the pen is asked while a brush is in hand, and is a mouse at all other times") {
  toolkitSession host;
  tabletInput& input = tabletInput::instance();
  host.run("viewGesture -press 10 10 -pressure 0.25 -tilt 30 -40 modelPanel1");
  input.detach();
  tabletUse brush, other;
  brush.begin();
  CHECK_FALSE(input.isListening());  // no window yet
  CHECK(input.pen().pressure == 1.0);
  brush.end();
  input.attach(0, 0);
  CHECK_FALSE(input.isListening());
  brush.begin();
  brush.begin();
  other.begin();
  CHECK(input.pen().pressure == 0.25);
  CHECK(input.pen().tiltX == 30.0);
  CHECK(input.pen().tiltY == -40.0);
  brush.end();
  CHECK(input.isListening());
  other.end();
  CHECK_FALSE(input.isListening());
  CHECK(input.pen().pressure == 1.0);
  {
    tabletUse gone;
    gone.begin();
  }
  CHECK_FALSE(input.isListening());
  host.run("viewGesture -release 10 10");
  // A script that answers wrongly is no pen.
  host.run("global proc float tabletState(string $a[]) { return 7; }");
  brush.begin();
  CHECK(input.pen().pressure <= 1.0);
  brush.end();
  input.detach();
}
