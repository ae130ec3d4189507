// Random sequences of UV commands over the zoo: the mesh stays sound after each, and taking all of
// them back and doing them again gives the same documents, to the bit.
#include <doctest/doctest.h>

#include <random>
#include <string>
#include <vector>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "host/nodes/mesh_shape.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;

namespace {

struct UvLine {
  const char* text;
  const char* component;  ///< "" for the object
};

const UvLine kLines[] = {
    {"polyEditUV -u 0.1 -a 30 -su 1.5", "map"},
    {"polyEditUVShell -v 0.3", "map"},
    {"polyMapCut", "e"},
    {"polyMapSew", "e"},
    {"polyMapSewMove", "e"},
    {"performPolyMapSewMove 0", "e"},
    {"polyForceUV -unitize", "f"},
    {"polyForceUV -unshare", "f"},
    {"polyPlanarProjection -md b", "f"},
    {"polySphericalProjection -sc 1", "f"},
    {"polyAutoProjection", "f"},
    {"polyMapDel", "f"},
    {"polyFlipUV -ft 1", "f"},
    {"polyNormalizeUV -nt 0", "f"},
    {"polyMergeUV -d 0.2", "map"},
    {"polyMoveUV -tu 0.2 -ra 10", "map"},
    {"polyCopyUV -cm 1 -uvs copied", ""},
    {"polyUVSet -create -uvSet extra", ""},
    {"delete -ch", ""},
};

}  // namespace

TEST_CASE("random sequences of UV commands keep meshes sound and are taken back to the bit") {
  std::mt19937 random(23);
  std::vector<int> done(std::size(kLines), 0);
  for (const zoo::ZooMesh& entry : zoo::meshZoo(zoo::Has::Faces)) {
    INFO(entry.name);
    const auto session = builtins::makeSession();
    const auto shape = session->document().createNode("mesh", "zooShape");
    REQUIRE(shape);
    REQUIRE(nodes::setStoredMesh(**shape, entry.build()));
    const scene::DagPath path = scene::firstPath(**shape);
    session->undo().flush();
    const MessageCapture quiet;
    std::vector<std::uint64_t> states{session->document().hash()};
    std::string story;
    for (int step = 0; step < 12; ++step) {
      const std::size_t which = random() % std::size(kLines);
      const UvLine& line = kLines[which];
      std::string names;
      scene::ComponentType type{};
      if (*line.component != '\0') {
        REQUIRE(scene::parseComponentWord(line.component, type));
        const unsigned chance = 1 + random() % 3;
        for (Index i = 0; i < scene::componentCount(path, type); ++i)
          if (random() % chance == 0)
            names += " zoo." + std::string(line.component) + "[" + std::to_string(i) + "]";
        if (names.empty()) continue;
      } else {
        names = " zoo";
      }
      const std::string text = "select -r" + names + "; " + line.text;
      story += text + "\n";
      INFO(story);
      done[which] += session->executeLine(text).has_value();
      const auto mesh = nodes::evaluatedMesh(**shape);
      REQUIRE(mesh);
      const std::vector<std::string> faults = mesh::check(*mesh);
      REQUIRE_MESSAGE(faults.empty(), (faults.empty() ? "" : faults.front()));
      if (session->undo().itemCount() == states.size())
        states.push_back(session->document().hash());
    }
    INFO(story);
    for (std::size_t i = states.size() - 1; i > 0; --i) {
      REQUIRE(session->undo().undo());
      REQUIRE(session->document().hash() == states[i - 1]);
    }
    for (std::size_t i = 1; i < states.size(); ++i) {
      REQUIRE(session->undo().redo());
      REQUIRE(session->document().hash() == states[i]);
    }
  }
  for (std::size_t i = 0; i < std::size(kLines); ++i) {
    CAPTURE(std::string(kLines[i].text));
    CHECK(done[i] > 0);
  }
}
