#include <doctest/doctest.h>
#include <maya/MColorArray.h>
#include <maya/MDoubleArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MStringArray.h>
#include <maya/MVectorArray.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// Edits an array and a std::vector alike at random, and compares them after each step.
template <class Array, class Make>
void editLikeVector(Make make, unsigned int seed) {
  using Element = decltype(make(0));
  Array array;
  std::vector<Element> expected;
  std::mt19937 random(seed);
  for (int step = 0; step < 2000; ++step) {
    const unsigned int size = array.length();
    const unsigned int at = size ? random() % size : 0;
    switch (random() % 8) {
      case 0:
      case 1:
      case 2:
        array.append(make(step));
        expected.push_back(make(step));
        break;
      case 3:
        array.insert(make(step), at);
        expected.insert(expected.begin() + at, make(step));
        break;
      case 4:
        if (size == 0) break;
        array.remove(at);
        expected.erase(expected.begin() + at);
        break;
      case 5:
        if (size == 0) break;
        array.append(array[at]);
        expected.push_back(Element(expected[at]));
        break;
      case 6:
        if (size == 0) break;
        array.set(make(step), at);
        expected[at] = make(step);
        break;
      case 7:
        if (random() % 16 != 0) break;
        array.setLength(at + 3);
        expected.resize(at + 3, Element());
        break;
    }
    REQUIRE(array.length() == expected.size());
    for (unsigned int i = 0; i < array.length(); ++i) REQUIRE(array[i] == expected[i]);
  }
}

}  // namespace

TEST_CASE("arrays: edits agree with a plain vector's") {
  editLikeVector<MIntArray>([](int i) { return i; }, 1);
  editLikeVector<MPointArray>([](int i) { return MPoint(i, -i, 0.5 * i); }, 2);
  editLikeVector<MStringArray>(
      [](int i) { return MString("a text too long for the small buffer ") + i; }, 3);
}

TEST_CASE("arrays: an index out of range is refused and changes nothing") {
  MIntArray array(3, 7);
  CHECK(array.set(1, 3) == MStatus::kInvalidParameter);
  CHECK(array.insert(1, 4) == MStatus::kInvalidParameter);
  CHECK(array.remove(3) == MStatus::kInvalidParameter);
  std::ostringstream text;
  text << array;
  CHECK(text.str() == "[7, 7, 7]");
}

TEST_CASE("arrays: copies are independent, moved-from arrays stay usable") {
  MStringArray a;
  a.append("one");
  MStringArray b(a), c;
  c = a;
  c = *&c;
  b[0] += " more";
  CHECK(a[0] == "one");
  CHECK(c[0] == "one");
  MStringArray d(std::move(b));
  b.clear();
  b.append("again");
  CHECK(d[0] == "one more");
  CHECK(b.length() == 1);
}

TEST_CASE("arrays: tuples of either precision go in and come out") {
  const double given[2][4] = {{1, 2, 3, 1}, {4, 5, 6, 2}};
  const MPointArray points(given, 2);
  float narrow[2][4];
  points.get(narrow);
  CHECK(narrow[1][3] == 2.0F);
  MFloatPointArray floats;
  floats.setCast(points);
  CHECK(floats[1] == MFloatPoint(4.0F, 5.0F, 6.0F, 2.0F));
  const float directions[1][3] = {{0, 1, 0}};
  CHECK(MVectorArray(directions, 1)[0] == MVector::yAxis);
  CHECK(MFloatVectorArray(directions, 1)[0] == MFloatVector::yAxis);
  MPointArray grown;
  grown.append(1, 2);
  CHECK(grown[0] == MPoint(1, 2, 0, 1));
  grown.setLength(2);
  CHECK(grown[1] == MPoint::origin);
}
