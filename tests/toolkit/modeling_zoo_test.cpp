#include <random>

#include "host/base/messages.h"
#include "host/mesh/check.h"
#include "host/nodes/mesh_shape.h"
#include "tests/toolkit/tool_hand.h"
#include "tests/toolkit/zoo_scene.h"

// Every gesture of the modelling tool on every kind of mesh, in every kind of pose and view.

namespace {

constexpr auto kLeft = toolHand::kLeft;
constexpr auto kMiddle = toolHand::kMiddle;

struct gestureKind {
  host::tools::MouseButton button;
  heldKeys keys;
  bool isDrag;
  bool needsSelection;
};
constexpr gestureKind kGestures[] = {
    {kLeft, kNoKeys, false, false},   {kLeft, kNoKeys, true, false},
    {kLeft, kShift, false, true},     {kLeft, kShift, true, false},
    {kLeft, kControl, false, true},   {kLeft, kControl, true, false},
    {kLeft, kBoth, false, false},     {kLeft, kBoth, true, false},
    {kMiddle, kNoKeys, false, false}, {kMiddle, kNoKeys, false, true},
    {kMiddle, kNoKeys, true, false},  {kMiddle, kControl, false, true},
    {kMiddle, kShift, false, true},   {kMiddle, kBoth, true, true},
};

/// The document without its cameras, which turn about what was picked last and are not undone.
std::uint64_t sceneHash(toolHand& hand) {
  REQUIRE(
      hand.session->executeLine("for ($c in {\"perspShape\", \"topShape\"}) { setAttr ($c + "
                                "\".tumblePivot\") -type double3 0 "
                                "0 0; setAttr ($c + \".centerOfInterest\") 44.8; }",
                                {.undo = false}));
  return hand.hash();
}

/// One gesture about a place; where the hand goes is up to the numbers.
void perform(toolHand& hand, const gestureKind& kind, toolHand::place from, double dx, double dy) {
  hand.hover(from);
  if (kind.isDrag)
    hand.stroke(from, {from.x + dx, from.y + dy}, kind.button, kind.keys, 3);
  else
    hand.click(from, kind.button, kind.keys);
}

bool isSound(const MDagPath& path) {
  if (!path.isValid()) return true;
  const auto shape =
      host::cmd::currentSession().document().node(MFnDagNode(path).fullPathName().asChar());
  if (!shape) return true;
  const auto mesh = host::nodes::evaluatedMesh(**shape);
  return !mesh || host::mesh::check(*mesh).empty();
}

void undoAll(toolHand& hand, std::size_t to) {
  const host::MessageCapture quiet;
  while (hand.undoItems() > to) REQUIRE(hand.session->undo().undo());
}

}  // namespace

TEST_CASE("modelling tool: every gesture on every mesh leaves it sound and is undone to the bit") {
  toolHand hand("modelPanel4");
  const host::MessageCapture quiet;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo())
    for (const char* pose : {"", kHardPoses[0], kHardPoses[1], kHardPoses[2]}) {
      CAPTURE(zoo.name);
      CAPTURE(std::string(pose));
      hand.run("setToolTo selectSuperContext");
      const MDagPath path = showMesh(hand, zoo.mesh, pose);
      hand.run("setAttr persp.rotate -type double3 -30 35 0; select -cl; viewFit -all");
      hand.takeTool("shape", "vertex");
      hand.mirror(&zoo == &host::zoo::meshZoo().front());
      const std::uint64_t before = sceneHash(hand);
      const std::size_t steps = hand.undoItems();
      for (const gestureKind& kind : kGestures) {
        const auto index = static_cast<std::size_t>(&kind - kGestures);
        CAPTURE(index);
        for (const char* type : {"vtx", "e", "f"}) {
          const auto at = static_cast<int>(index * 7 + static_cast<std::size_t>(type[0])) % 11;
          const std::string name =
              "shape." + std::string(type) + "[" + std::to_string(at % 3) + "]";
          if (kind.needsSelection) {
            const auto done = hand.session->executeLine("select -r " + name, {.postErrors = false});
            if (!done) continue;
          }
          const auto port = host::workspace::workspaceOf(*hand.session).views.active().port;
          const toolHand::place from{std::round(port.width * 0.5 + at * 9 - 45),
                                     std::round(port.height * 0.5 + at * 5 - 25)};
          perform(hand, kind, from, 30 - at * 3, 24);
          CHECK_FALSE(hand.session->undo().isChunkOpen());
          CHECK(isSound(path));
          undoAll(hand, steps);
          hand.run("select -cl");
          undoAll(hand, steps);
          CHECK(sceneHash(hand) == before);
        }
      }
    }
}

namespace {

/// What a hand may meet: a scene whose first object is "a", and how it is worked on.
struct badScene {
  const char* name;
  const char* mel;
  bool isObjectMode = false;
};
constexpr const char* kFaceless = "createNode transform -n a; createNode mesh -n aShape -p a;";
// Three faces at one edge, two that only touch in a vertex, one that is used twice.
constexpr const char* kNonManifold =
    "polyCreateFacet -n a -ch 0 -p 0 0 0 -p 1 0 0 -p 0 1 0; polyAppendVertex -ch 0 -a 0 -a 1 -p 0 "
    "0 "
    "1 a; polyAppendVertex -ch 0 -a 1 -a 0 -p 0.3 -1 0.2 a; polyAppendVertex -ch 0 -a 2 -p 1 2 0 "
    "-p "
    "0 2 1 a;";
constexpr const char* kZeroArea =
    "polyPlane -n a -sx 3 -sy 3 -ch 0; scale -r 0 1 1 a.vtx[0:7]; move -a 0 0 0 a.vtx[9:14];";
constexpr badScene kBadScenes[] = {
    {"an empty scene", ""},
    {"object mode", "polyCube -n a -ch 0; select -r a;", true},
    {"a mesh without faces", kFaceless},
    {"edges of three faces", kNonManifold},
    {"components without area", kZeroArea},
    {"a parent scaled to nothing",
     "polyCube -n a -ch 0; group -n above a; setAttr above.s -type double3 0 0 0;"},
    {"a parent that is flat",
     "polyCube -n a -ch 0; group -n above a; setAttr above.s -type double3 1 0 1;"},
    {"a parent turned inside out",
     "polyCube -n a -ch 0; group -n above a; setAttr above.s -type double3 -1 2 0.5;"},
    {"one mesh behind the other",
     "polyCube -n a -ch 0; duplicate -n b a; move 0 -2 0 b; move 0 0 -2 b;"},
    {"instances", "polyCube -n a -ch 0; instance -n b a; move 0.5 0 0 b; rotate 0 30 0 b;"},
    {"history and tweaks", "polyCube -n a; polySmooth -dv 1 a; move -r 0 0.2 0 a.vtx[3];"},
};

/// With nothing selected: `select` above is undone to what tools have selected without a step.
std::uint64_t unselectedHash(toolHand& hand) {
  REQUIRE(hand.session->executeLine("select -cl", {.undo = false}));
  return sceneHash(hand);
}

/// A gesture with what it needs, and the way back: the scene is then as it was.
void performAndUndo(toolHand& hand, const gestureKind& kind, const char* selected,
                    toolHand::place from) {
  const std::uint64_t before = unselectedHash(hand);
  const std::size_t steps = hand.undoItems();
  if (kind.needsSelection)
    (void)hand.session->executeLine(std::string("select -r ") + selected, {.postErrors = false});
  perform(hand, kind, from, 40, 20);
  CHECK_FALSE(hand.session->undo().isChunkOpen());
  CHECK(hand.texts("ls -type drawLocator").size() == 1);
  CHECK(hand.shown("parr").length() == 0);
  undoAll(hand, steps);
  CHECK(unselectedHash(hand) == before);
}

}  // namespace

TEST_CASE("modelling tool: whatever it meets, every gesture is undone to the bit") {
  const host::MessageCapture quiet;
  for (const badScene& scene : kBadScenes)
    for (const bool isTiny : {false, true})
      for (const char* panel : {"modelPanel1", "modelPanel4"}) {
        CAPTURE(std::string(scene.name));
        CAPTURE(isTiny);
        CAPTURE(std::string(panel));
        toolHand hand(panel);
        hand.run(scene.mel);
        hand.run(
            "select -cl; string $all[] = `ls -type mesh`; if (size($all)) hilite -r "
            "`listRelatives -ap -pa $all`");
        hand.run(scene.isObjectMode ? "selectMode -object; select -r a" : "selectMode -component");
        hand.mirror(false);
        const std::uint64_t untouched = unselectedHash(hand);
        const double due = hand.session->loop().timers().nextDue();
        hand.run("modelingContext tool; setToolTo tool");
        if (scene.isObjectMode) hand.run("selectMode -object; selectType -ocm -alc 0; select -cl");
        if (isTiny) host::workspace::workspaceOf(*hand.session).views.active().port = {1, 1};
        const toolHand::place from = isTiny ? toolHand::place{0, 0} : hand.pixel(0.4, 0.5, 0.3);
        for (const gestureKind& kind : kGestures)
          for (const char* selected : {"a.vtx[0:1]", "a.e[0:1]", "a.f[0]"}) {
            CAPTURE(static_cast<std::size_t>(&kind - kGestures));
            CAPTURE(std::string(selected));
            performAndUndo(hand, kind, selected, from);
            if (!kind.needsSelection) break;
          }
        hand.run("setToolTo selectSuperContext");
        CHECK_FALSE(hand.hasLocator());
        CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 0);
        CHECK(hand.session->loop().timers().nextDue() == due);
        if (!scene.isObjectMode) CHECK(unselectedHash(hand) == untouched);
      }
}

TEST_CASE(
    "modelling tool: a random walk with undo and redo keeps the mesh sound and the way back") {
  toolHand hand("modelPanel4");
  const host::MessageCapture quiet;
  std::mt19937 random(20140);
  const auto below = [&](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  for (int round = 0; round < 3; ++round) {
    CAPTURE(round);
    hand.run(
        "setToolTo selectSuperContext; file -f -new; polySphere -n shape -r 3 -sx 12 -sy 8 -ch 0; "
        "setAttr shape.rotate -type double3 20 40 5; setAttr shape.scale -type double3 1 1.5 "
        "-1; setAttr persp.rotate -type double3 -20 30 0; select -cl; viewFit -all");
    hand.takeTool("shape", round == 0 ? "vertex" : round == 1 ? "edge" : "facet");
    hand.mirror(round == 2);
    const MDagPath path = hand.path("shape");
    const std::uint64_t start = sceneHash(hand);
    const std::size_t steps = hand.undoItems();
    for (int i = 0; i < 80; ++i) {
      CAPTURE(i);
      const int what = below(10);
      if (what == 0 && hand.undoItems() > steps) {
        REQUIRE(hand.session->undo().undo());
      } else if (what == 1 && hand.session->undo().canRedo()) {
        REQUIRE(hand.session->undo().redo());
      } else {
        const auto port = host::workspace::workspaceOf(*hand.session).views.active().port;
        const toolHand::place from{
            static_cast<double>(port.width / 4 + below(port.width / 2)),
            static_cast<double>(port.height / 8 + below(port.height * 3 / 4))};
        perform(hand, kGestures[below(14)], from, below(121) - 60, below(121) - 60);
      }
      REQUIRE(isSound(path));
      REQUIRE_FALSE(hand.session->undo().isChunkOpen());
      REQUIRE(static_cast<int>(hand.number("size(`ls -type drawLocator`)")) == 1);
    }
    const std::uint64_t end = sceneHash(hand);
    std::size_t undone = 0;
    for (; hand.undoItems() > steps; ++undone) REQUIRE(hand.session->undo().undo());
    CHECK(sceneHash(hand) == start);
    for (; undone > 0; --undone) REQUIRE(hand.session->undo().redo());
    CHECK(sceneHash(hand) == end);
  }
}
