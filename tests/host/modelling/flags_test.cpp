// Every flag of the modelling commands reads its node's attribute and writes it back as it was, in
// units of one's own.
#include <doctest/doctest.h>

#include <cmath>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/modelling/declare/declaration.h"
#include "host/nodes/mesh_shape.h"

using namespace host;

namespace {

/// What a trial may be run on, the cube "c" or the plane "p" of four faces; the first that the
/// command takes.
std::vector<std::pair<std::string, std::string>> places(const std::string& components) {
  if (components == "f") return {{"c.f[1]", "c"}, {"c", "c"}};
  if (components == "e") return {{"c.e[0]", "c"}, {"c.e[0:3]", "c"}, {"p.e[0]", "p"}};
  if (components == "vtx")
    return {{"c.vtx[0]", "c"}, {"c.vtx[0:3]", "c"}, {"p.vtx[0] p.vtx[8]", "p"}};
  if (components == "e vtx") return {{"c.e[0:1]", "c"}};
  if (components == "border") return {{"p.e[0] p.e[10]", "p"}};
  if (components == "map") return {{"c.map[0:3]", "c"}};
  return {{"p", "p"}, {"c", "c"}};
}

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
  bool tryRun(const std::string& text) {
    const MessageCapture quiet;
    return session_->executeLine(text).has_value();
  }
  std::string failure(const std::string& text) {
    const MessageCapture quiet;
    const auto value = session_->executeLine(text);
    return value ? "" : value.error().message;
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

/// Every flag is read and written back. The mesh must not notice.
void checkFlags(FlagScene& scene, const std::string& command, const std::string& object) {
  const mesh::Mesh made = scene.mesh(object);
  for (const cmd::FlagSpec& flag : scene.syntax(command).flags()) {
    const bool isOfAll = flag.longName == "constructionHistory" || flag.longName == "uvSetName";
    if (flag.args.empty() || flag.isMultiUse || isOfAll || flag.modes != cmd::kAnyMode) continue;
    // Words may be empty, which no script could write back.
    if (flag.args.front() == cmd::ArgType::String && flag.longName != "name") continue;
    CAPTURE(flag.longName);
    const std::string value = joined(scene.run(command + " -q -" + flag.longName + " " + object));
    CHECK(value.size() > 1);
    if (flag.longName == "name") continue;
    scene.run(command + " -e -" + flag.shortName + value + " " + object);
    checkAlike(scene.mesh(object), made);
  }
}

}  // namespace

TEST_CASE("modelling commands: every flag is read from the node and can be written back") {
  for (const modelling::Declaration& declaration : modelling::declarations().list())
    for (const modelling::Trial& trial : declaration.trials) {
      const std::string& command = declaration.command;
      INFO(command, " ", trial.flags);
      bool isDone = false;
      for (const auto& [words, object] : places(trial.components)) {
        FlagScene scene;
        if (isDone || !scene.tryRun(command + " " + trial.flags + " " + words)) continue;
        isDone = true;
        // Of faces polyCollapseEdge makes another command's node.
        if (!scene.tryRun(command + " -q -name " + object)) continue;
        checkFlags(scene, command, object);
      }
      CHECK(isDone);
    }
}

TEST_CASE(
    "primitives and what joins objects: every flag is read from the node and can be written back") {
  for (const char* line :
       {"polyCube -n o -w 2 -sx 3", "polySphere -n o -sy 5", "polyPlane -n o",
        "polyCylinder -n o -rcp 1 -sz 2", "polyCone -n o -h 3", "polyTorus -n o -tw 0.3",
        "polyPyramid -n o -ns 5", "polyUnite -n o c p", "polyBoolOp -n o c p",
        "polyCBoolOp -n o c p", "polyCreateFacet -n o -p 0 0 0 -p 1 0 0 -p 0 1 0"}) {
    FlagScene scene;
    CAPTURE(std::string(line));
    scene.run(line);
    checkFlags(scene, std::string(line).substr(0, std::string_view(line).find(' ')), "o");
  }
}

TEST_CASE("a flag without effect is refused where it asks for one, and nothing has changed") {
  int refused = 0;
  for (const modelling::Declaration& declaration : modelling::declarations().list()) {
    if (declaration.trials.empty()) continue;
    for (const modelling::Parameter& parameter : declaration.parameters) {
      const bool isNumber = parameter.argTypes().size() == 1;
      if (parameter.effect == modelling::Parameter::Effect::Full || parameter.takesAnything ||
          parameter.flags.empty() || !isNumber)
        continue;
      const std::string& flag = parameter.flags.front().longName;
      INFO(declaration.command, " -", flag);
      FlagScene scene;
      const modelling::Trial& trial = declaration.trials.front();
      const bool isOne = parameter.commandDefault() == 1.0;
      const std::string line =
          declaration.command + " " + trial.flags + " -" + flag + (isOne ? " 0 " : " 1 ");
      const auto message = scene.failure(line + places(trial.components).front().first);
      CHECK(message.find("-" + flag) != std::string::npos);
      CHECK(scene.mesh("c").faceCount() == 6);
      ++refused;
    }
  }
  CHECK(refused > 5);
}
