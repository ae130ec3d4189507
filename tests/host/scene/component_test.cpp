#include "host/scene/component.h"

#include <doctest/doctest.h>

#include <random>
#include <set>

using namespace host;
using namespace host::scene;

TEST_CASE("component: words give back what was parsed, in ascending runs") {
  for (const char* word :
       {"vtx[3]", "vtx[0:5]", "e[2:9]", "f[*]", "map[7]", "vtxFace[2][5]", "vtxFace[*][*]"}) {
    CAPTURE(word);
    const auto parsed = parseComponent(word);
    REQUIRE(parsed);
    CHECK(parsed->words() == std::vector<std::string>{word});
  }
  CHECK(Component(ComponentType::Edge, {9, 1, 2, 2, 3, 7}).words() ==
        std::vector<std::string>{"e[1:3]", "e[7]", "e[9]"});
  CHECK(parseComponent("vtx[5:2]")->words() == std::vector<std::string>{"vtx[2:5]"});
  CHECK(parseComponent("f[1][4:5]")->words() == std::vector<std::string>{"f[1]", "f[4:5]"});
  CHECK(parseComponent("vtx")->isComplete());
  CHECK(parseComponent("vtxFace[1:2][0:1]")->pairs().size() == 4);
}

TEST_CASE("component: a malformed word is an error that names it, whatever range it claims") {
  for (const char* word :
       {"", "vtx[", "vtx[]x", "vtx[a]", "vtx[-1]", "vtx[1", "vtx[1]]", "foo[1]", "vtxFace[1]",
        "vtxFace[1][*]", "f[99999999999]", "vtx[0:2147483647]", "vtxFace[0:99999][0:99999]"}) {
    CAPTURE(word);
    const auto parsed = parseComponent(word);
    REQUIRE_FALSE(parsed);
    CHECK(parsed.error().message.find(word) != std::string::npos);
  }
}

TEST_CASE("component: set algebra agrees with a plain set, complete ones included") {
  std::mt19937 random(7);
  constexpr Index kCount = 12;
  const auto draw = [&] {
    if (random() % 5 == 0) return Component::all(ComponentType::Face);
    std::vector<Index> indices;
    for (Index i = 0; i < kCount; ++i)
      if (random() % 2) indices.push_back(kCount - 1 - i);
    return Component(ComponentType::Face, indices);
  };
  const auto plain = [&](const Component& c) {
    const std::vector<Index> all = c.expanded(kCount);
    return std::set<Index>(all.begin(), all.end());
  };
  for (int round = 0; round < 300; ++round) {
    const Component a = draw(), b = draw();
    const std::set<Index> sa = plain(a), sb = plain(b);
    Component sum = a, difference = a, both = a;
    sum.unite(b);
    difference.subtract(b, kCount);
    both.intersect(b, kCount);
    for (Index i = 0; i < kCount; ++i) {
      CHECK(sum.contains(i) == (sa.count(i) || sb.count(i)));
      CHECK(difference.contains(i) == (sa.count(i) && !sb.count(i)));
      CHECK(both.contains(i) == (sa.count(i) && sb.count(i)));
    }
  }
}
