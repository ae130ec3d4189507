// Every flag of the modelling commands reads its node's attribute and writes it back as it was, in
// units of one's own.
#include <doctest/doctest.h>

#include <cmath>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/nodes/mesh_shape.h"

using namespace host;

namespace {

struct Sample {
  const char* command;
  const char* words;  ///< after the command, on a cube "c" and a plane "p" of four faces
  const char* object;
};

const Sample kSamples[] = {
    {"polyExtrudeFacet", "-ltz 0.5 -lry 10 -lsx 2 -off 0.01 -d 2 -tk 0.1 -twist 5 c.f[1]", "c"},
    {"polyExtrudeEdge", "-ltx 0.25 -d 2 p.e[0]", "p"},
    {"polyBevel", "-o 0.1 -oaf 0 -sg 2 -sa 40 c.e[0]", "c"},
    {"polyBevel3", "-f 0.3 -oaf 1 c.e[0:1]", "c"},
    {"polyChipOff", "-ltz 0.2 -dup 1 c.f[0]", "c"},
    {"polyConnectComponents", "c.e[0:1]", "c"},
    {"polySplitRing", "-wt 0.3 c.e[0:3]", "c"},
    {"polySubdivideEdge", "-dv 2 -s 0.01 c.e[0]", "c"},
    {"polySubdivideFacet", "-dv 2 c.f[0]", "c"},
    {"polyPoke", "-ltz 0.2 -ltx 0.1 c.f[0]", "c"},
    {"polyTriangulate", "c", "c"},
    {"polyQuad", "-a 20 c", "c"},
    {"polySmooth", "-dv 2 -c 0.5 c", "c"},
    {"polyNormal", "-nm 0 c", "c"},
    {"polyMergeVertex", "-d 0.02 c.vtx[0:3]", "c"},
    {"polyCollapseEdge", "c.e[0]", "c"},
    {"polyCollapseFacet", "c.f[0]", "c"},
    {"polyDelEdge", "-cv 1 c.e[0]", "c"},
    {"polyDelVertex", "c.vtx[0]", "c"},
    {"polyDelFacet", "c.f[0]", "c"},
    {"polyCloseBorder", "p.e[0]", "p"},
    {"polyBridgeEdge", "-dv 1 -twist 10 p.e[0] p.e[10]", "p"},
    {"polyAppendVertex", "-a 0 -a 1 -a 0 1 2 -tx 0 p", "p"},
    {"polyMirrorFace", "-a 0 -ad 0 -mt 0.01 p", "p"},
    {"polyUnite", "-n c2 c p", "c2"},
};

class FlagScene {
 public:
  FlagScene() : session_(builtins::makeSession()) {
    run("currentUnit -l m -a rad; polyCube -n c; polyPlane -n p -sx 2 -sy 2");
  }
  mel::Value run(const std::string& text) {
    const MessageCapture quiet;
    auto value = session_->executeLine(text);
    REQUIRE_MESSAGE(value.has_value(), text, ": ", value ? "" : value.error().message);
    return *value;
  }
  mesh::Mesh mesh(const std::string& object) {
    const auto path = session_->document().dagPath(object);
    REQUIRE(path);
    auto evaluated = nodes::evaluatedMesh(*path->toShape().node());
    REQUIRE(evaluated);
    return *evaluated;
  }
  const cmd::Syntax& syntax(const std::string& command) {
    const auto found = session_->commands().find(command);
    REQUIRE(found);
    return found->builtin()->syntax;
  }

 private:
  std::unique_ptr<cmd::Session> session_;
};

void checkAlike(const mesh::Mesh& a, const mesh::Mesh& b) {
  REQUIRE(a.vertexCount() == b.vertexCount());
  REQUIRE(a.faceCount() == b.faceCount());
  for (VertexId v = 0; v < a.vertexCount(); ++v)
    CHECK(math::length(a.point(v) - b.point(v)) < 1e-4);
}

std::string joined(const mel::Value& value) {
  std::string words;
  for (const std::string& text : value.isString() || value.isInt() || value.isFloat()
                                     ? std::vector<std::string>{value.toText().value_or("")}
                                     : value.toTexts())
    words += " " + text;
  return words;
}

}  // namespace

TEST_CASE("modelling commands: every flag is read from the node and can be written back") {
  for (const Sample& sample : kSamples) {
    FlagScene scene;
    const std::string command = sample.command, object = sample.object;
    CAPTURE(command);
    scene.run(command + " " + sample.words);
    const mesh::Mesh made = scene.mesh(object);
    for (const cmd::FlagSpec& flag : scene.syntax(command).flags()) {
      if (flag.args.empty() || flag.isMultiUse || flag.longName == "constructionHistory") continue;
      CAPTURE(flag.longName);
      const std::string value = joined(scene.run(command + " -q -" + flag.longName + " " + object));
      CHECK(value.size() > 1);
      if (flag.longName == "name") continue;
      scene.run(command + " -e -" + flag.shortName + value + " " + object);
      checkAlike(scene.mesh(object), made);
    }
  }
}
