#include <doctest/doctest.h>

#include "host/mesh/adjacency.h"
#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "host/mesh/mesh.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using namespace host::mesh;
using namespace host::zoo;

TEST_CASE("zoo: every shape is sound, and every property has a shape") {
  std::uint32_t all = 0;
  for (const ZooMesh& zoo : meshZoo()) {
    CAPTURE(zoo.name);
    for (const std::string& fault : check(zoo.mesh)) FAIL_CHECK(fault);
    all |= static_cast<std::uint32_t>(zoo.properties);
  }
  CHECK(all == (1u << 22) - 1);
  CHECK(meshZoo(Has::Closed | Has::Manifold | Has::QuadsOnly).size() >= 4);
  CHECK(counts(zooMesh("torus")).euler() == 0);
  CHECK(counts(zooMesh("cube")).euler() == 2);
  CHECK(counts(zooMesh("annulus")).euler() == 0);
}
