// A parameter either changes the mesh, on some mesh of the zoo and with some number, or is declared
// to be without effect and then never does.
#include <algorithm>
#include <map>
#include <numbers>
#include <set>

#include "host/nodes/history/history_node.h"
#include "tests/host/modelling/modelling_scene.h"

using namespace host;
using namespace host::modelling;
using modelling::test::ZooScene;

namespace {

/// Numbers to try in place of one.
std::vector<double> others(const dg::Attribute& attribute, double now) {
  switch (attribute.type) {
    case AttributeType::Bool:
      return {now != 0 ? 0.0 : 1.0};
    case AttributeType::Enum: {
      std::vector<double> values;
      for (const dg::EnumField& field : attribute.enumFields)
        if (static_cast<double>(field.value) != now)
          values.push_back(static_cast<double>(field.value));
      return values;
    }
    case AttributeType::Angle:
      return {now + 0.4, 0, std::numbers::pi, 1.2};
    case AttributeType::Float:
    case AttributeType::Double:
    case AttributeType::Distance:
      return {now + 0.2, now * 0.5, 0, 1, 0.01, 10};
    default:
      return {now + 1, now + 2, 0, 1, 3};
  }
}

class Effects {
 public:
  /// Runs a trial on a mesh and tries all parameters of its node.
  void tryOn(ZooScene& scene, const Declaration& declaration, const Trial& trial) {
    if (!scene.run(declaration.command + " " + trial.flags)) return;
    const dg::Plug source = scene.document().graph().source(scene.shape().plug("inMesh"));
    if (source && source.node()->type().name == declaration.nodeTypes.front().type)
      for (const Parameter* parameter : declarations().parametersOf(declaration))
        tryParameter(scene, declaration, *parameter, *source.node());
    REQUIRE(scene.undo().undo());
  }
  [[nodiscard]] bool isSeen(const Declaration& declaration, const Parameter& parameter) const {
    return seen_.contains({declaration.command, parameter.attribute->longName});
  }

 private:
  void tryParameter(ZooScene& scene, const Declaration& declaration, const Parameter& parameter,
                    dg::Node& node) {
    if (parameter.attribute->isArray || isSeen(declaration, parameter)) return;
    const dg::Plug plug = node.plug(parameter.attribute->longName);
    if (!plug.isCompound()) return tryLeaf(scene, declaration, parameter, plug);
    for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
      tryLeaf(scene, declaration, parameter, plug.child(static_cast<int>(i)));
  }

  void tryLeaf(ZooScene& scene, const Declaration& declaration, const Parameter& parameter,
               const dg::Plug& leaf) {
    if (!leaf.attribute()->isNumeric()) return;
    dg::Graph& graph = scene.document().graph();
    const auto value = graph.get(leaf);
    REQUIRE(value);
    const auto* integer = std::get_if<std::int64_t>(&*value);
    const double now = integer ? static_cast<double>(*integer) : std::get<double>(*value);
    const std::uint64_t before = scene.meshHash();
    for (const double other : others(*leaf.attribute(), now)) {
      REQUIRE(graph.set(leaf, dg::Value(other)));
      const auto changed = nodes::evaluatedMesh(scene.shape());
      if (!changed || mesh::hashMesh(*changed) == before) continue;
      seen_.insert({declaration.command, parameter.attribute->longName});
      break;
    }
    REQUIRE(graph.set(leaf, *value));
    REQUIRE(scene.meshHash() == before);
  }

  std::set<std::pair<std::string, std::string>> seen_;
};

/// Parameters whose effect takes more than a number on a mesh of the zoo; other tests show it.
bool isShownElsewhere(const std::string& name) {
  static const std::set<std::string> names = {
      "polyAutoProjection.optimize",       // small islands
      "polyAutoProjection.skipIntersect",  // pieces that wind over themselves
      "polyNormalizeUV.centerOnTile",      // UVs in other tiles
      "polyBridgeEdge.startVert1",
      "polyBridgeEdge.startVert2",  // only both together
      "polyMirrorFace.mirrorAxis",
      "polyMirrorFace.mirrorPosition",      // read when the node is made
      "polyMirrorFace.maya2017",            // about -direction
      "polyMirrorFace.mergeThresholdType",  // about -mergeThreshold
      "polyLayoutUV.denseLayout",           // only where -layoutMethod packs boxes
      "polyMapSewMove.limitPieceSize",      // about -numberFaces
      "polyMergeEdge.mergeTexture",         // border edges whose UVs lie apart
      "polySewEdge.texture",                // the same; the operation's own test shows it
      "unfold.scale",                       // only with -useScale
      "polyReduce.keepFaceGroupBorder",     // groups of faces
      "polyRemesh.maxTriangleCount",        // more are refused
      "polyQuad.keepTextureBorders",
      "polyQuad.keepHardEdges"};  // triangles with such borders
  return names.contains(name);
}

}  // namespace

TEST_CASE("modelling commands: parameters do something, or say that they do nothing") {
  std::mt19937 random(3);
  Effects effects;
  for (const zoo::ZooMesh& entry : zoo::meshZoo(zoo::Has::Faces)) {
    ZooScene scene(entry.build());
    for (const Declaration& declaration : declarations().list())
      for (const Trial& trial : declaration.trials)
        for (int round = 0; round < 2; ++round)
          if (scene.select(trial.components, random)) effects.tryOn(scene, declaration, trial);
  }
  for (const Declaration& declaration : declarations().list()) {
    if (declaration.trials.empty()) continue;
    for (const Parameter* parameter : declarations().parametersOf(declaration)) {
      const AttributePtr& attribute = parameter->attribute;
      const bool isNumber = attribute->isNumeric() || attribute->isCompound();
      if (attribute->isArray || !isNumber) continue;
      if (isShownElsewhere(declaration.command + "." + attribute->longName)) continue;
      INFO(declaration.command, ".", attribute->longName);
      CHECK(effects.isSeen(declaration, *parameter) ==
            (parameter->effect == Parameter::Effect::Full));
    }
  }
}

TEST_CASE(
    "commands that take from another object: parameters do something, or say that they don't") {
  const MessageCapture quiet;
  Effects effects;
  std::vector<const Declaration*> commands;
  for (const char* name : {"transferAttributes", "polyTransfer"})
    commands.push_back(declarations().ofCommand(name));
  int scenes = 0;
  for (const zoo::ZooMesh& entry : zoo::meshZoo(zoo::Has::Faces)) {
    ZooScene scene(entry.build());
    // The other object differs in places, UVs and colours, and has a border between two colours.
    const bool isMade = scene.run("duplicate -n other zoo; move -r 0.2 0.4 0.1 other; ") &&
                        scene.run("move -r 0.3 0 0.1 other.vtx[0]") &&
                        scene.run("polyEditUV -u 0.3 -v 0.1 other.map[*]") &&
                        scene.run("polyColorPerVertex -rgb 1 0 0 other") &&
                        scene.run("polyColorPerVertex -rgb 0 1 0 other.f[0]");
    if (!isMade) continue;
    ++scenes;
    for (const char* flags : {"-pos 1 -nml 1 -uvs 2 -col 2 -spa 0", "-uvs 1 -col 1 -spa 1 -sm 0",
                              "-pos 1 -uvs 1 -spa 4", "-col 2 -spa 3"})
      effects.tryOn(scene, *commands[0], {std::string(flags) + " other zoo", ""});
    effects.tryOn(scene, *commands[1], {"-v 0 -uv 0 -vc 0 -ao other zoo", ""});
  }
  CHECK(scenes > 5);
  for (const Declaration* declaration : commands)
    for (const Parameter* parameter : declarations().parametersOf(*declaration)) {
      const AttributePtr& attribute = parameter->attribute;
      if (attribute->isArray || (!attribute->isNumeric() && !attribute->isCompound())) continue;
      INFO(declaration->command, ".", attribute->longName);
      CHECK(effects.isSeen(*declaration, *parameter) ==
            (parameter->effect == Parameter::Effect::Full));
    }
}
