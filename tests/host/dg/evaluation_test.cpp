#include <doctest/doctest.h>

#include "host/base/messages.h"
#include "tests/host/dg/synthetic.h"

using namespace host;
using namespace host::dg;
using namespace dgtest;

TEST_CASE("a chain is computed once when read, and again only after what it depends on changed") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.connect(a->plug("out"), b->plug("x")));
  REQUIRE(world.graph.set(a->plug("x"), 2.0));
  CHECK(world.number(b->plug("out")) == 3.0 * (3.0 * 2.0 + 1.0) + 1.0);
  const int computed = world.types.computations;
  (void)world.number(b->plug("out"));
  CHECK(world.types.computations == computed);
  REQUIRE(world.graph.set(a->plug("y"), 5.0));
  CHECK(world.graph.isDirty(b->plug("out")));
  CHECK(world.number(b->plug("out")) == 3.0 * (3.0 * 2.0 + 5.0 + 1.0) + 1.0);
}
