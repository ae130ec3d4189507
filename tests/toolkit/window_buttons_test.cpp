#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "tests/toolkit/toolkit_session.h"

// Every button of the modelling window and every item of the toolkit's menu, pressed in a scene
// made for it, and what is looked at afterwards.

namespace {

/// MEL that the scenes and the looks at them share.
constexpr const char* kWords = R"mel(
global proc int isAt(string $vertex, float $x, float $y, float $z)
{
    float $p[] = `xform -q -ws -t $vertex`;
    return mag(<<$p[0] - $x, $p[1] - $y, $p[2] - $z>>) < 1e-4;
}
global proc string titleNow() { string $tool = `currentCtx`; return `contextInfo -t $tool`; }
global proc string toolNow() { string $tool = `currentCtx`; return `contextInfo -c $tool`; }
global proc string marks(string $list)
{
    int $all[] = `getAttr ("shapeShape." + $list)`;
    string $text = "";
    for ($one in $all) $text += $one + " ";
    return $text;
}
// The UVs of "shape" and, asked again, whether they have changed since.
global string $gUvsBefore;
global proc string uvsOf()
{
    float $uvs[] = `polyEditUV -q shape.map[*]`;
    string $text = "";
    for ($uv in $uvs) $text += $uv + " ";
    return $text;
}
// Whether a vertex is shaded with another normal than its plane has.
global proc int isBent(string $vertex)
{
    float $y[] = `polyNormalPerVertex -q -y $vertex`;
    return size($y) > 0 && $y[0] < 0.999;
}
global proc keepUvs() { global string $gUvsBefore; $gUvsBefore = uvsOf(); }
global proc int uvsChanged() { global string $gUvsBefore; return uvsOf() != $gUvsBefore; }
// A plane of two faces; the middle of its front is off the line and off the plane.
global proc bent()
{
    polyPlane -n shape -sx 2 -sy 1 -w 2 -h 1;
    xform -ws -t -1 -1 0.5 shape.vtx[0]; xform -ws -t 0.5 -0.5 0.8 shape.vtx[1]; xform -ws -t 1 1 0.5 shape.vtx[2];
    select -r shape.vtx[0:2];
}
global proc dropped(float $x, float $y, float $z)
{
    polyPlane -n shape -sx 2 -sy 1 -w 2 -h 1;
    polyPlane -n ground -w 50 -h 50 -ax $x $y $z; move (-3 * $x) (-3 * $y) (-3 * $z) ground;
    select -r shape ground;
}
)mel";

/// One control, by its label, what stands in the scene and is selected before, and what must be so
/// afterwards.
struct press {
  const char *label, *before, *after;
};

constexpr const char *kMoreThanOne =
                         "polyPlane -n shape -sx 4 -sy 1; select -r shape.vtx[3]; select -add "
                         "shape.vtx[4]; select -add shape.vtx[1]",
                     *kMerged =
                         "`polyEvaluate -v shape` == 8 && isAt(\"shape.vtx[1]\", -0.25, 0, 0.5)",
                     *kRing =
                         "polyPlane -n shape -sx 2 -sy 2 -w 2 -h 2; select -r shape.vtx[0:3] "
                         "shape.vtx[5:8]",
                     *kRound = "isAt(\"shape.vtx[1]\", 0, 0, 1.414214)",
                     *kHill =
                         "checkBox -e -v 0 mirror_QXMT_CB; optionChanged_QXMT_Proc; polyPlane -n "
                         "shape -sx 2 -sy 2 -w 2 -h 2; move -r 0 0.3 0 "
                         "shape.vtx[4]; select -r shape.f[*]",
                     *kFlat =
                         "isAt(\"shape.vtx[4]\", 0, 0.033333, 0) && isAt(\"shape.vtx[0]\", -1, "
                         "0.033333, 1)",
                     *kSnapped =
                         "isAt(\"shape.vtx[0]\", 0, -1, 0.5) && isAt(\"shape.vtx[3]\", -1, 0, "
                         "-0.5)",
                     *kCube = "polyCube -n shape; select -r shape",
                     *kSmoothed =
                         "`polyEvaluate -f shape1` > 300 && `getAttr "
                         "shape.intermediateObject` && `sets -im qxTSmoothObjectsSet shape`",
                     *kOneFace = "polyPlane -n shape -sx 2 -sy 1; select -r shape.f[0]",
                     *kFourEdges = "size(`filterExpand -sm 32`) == 4",
                     *kTwelveEdges = "size(`filterExpand -sm 32`) == 12",
                     *kAbove = "dropped(0, 1, 0)", *kTaken = "isAt(\"shape.vtx[0]\", -1, -3, 0.5)",
                     *kNormals =
                         "polyPlane -n shape -sx 2 -sy 1; polySphere -n other; select -r "
                         "shape other",
                     *kLocked = "isBent(\"shape.vtx[0]\")", *kAcross = "dropped(1, 0, 0)",
                     *kAlong = "dropped(0, 0, 1)",
                     *kAtX =
                         "isAt(\"shape.vtx[0]\", -3, 0, 0.5) && isAt(\"shape.vtx[2]\", -1, 0, "
                         "0.5)",
                     *kAtZ =
                         "isAt(\"shape.vtx[0]\", -1, 0, -2) && isAt(\"shape.vtx[3]\", -1, 0, -3)",
                     *kPlane = "polyPlane -n shape -sx 2 -sy 2; select -r shape",
                     *kCubeUvs = "polyCube -n shape; select -r shape; keepUvs";

const press kButtons[] = {
    {"Modeling Tool", kPlane, "toolNow() == \"modelingContext\""},
    {"Quad Draw", kPlane, "toolNow() == \"quadDrawContext\""},
    {"Move Brush", kPlane, "titleNow() == \"Move Brush\""},
    {"Sculpt", kPlane, "titleNow() == \"Sculpt Brush\""},
    {"UV Window", "", "`window -ex customUvWindow_QXMT`"},
    {"Load",
     "if (!`checkBox -q -v enable_slide_soft_select_QXMT_CB`) uiGesture -press "
     "enable_slide_soft_select_QXMT_CB; polyCube -n shape; select -r shape",
     "`qxSetCommands -ms \"slideDagName\"` == \"shape\" && `textField -q -tx "
     "add_static_slide_object_QXMT_TF` == \"shape\""},
    {"Clear", "polyCube -n shape; select -r shape; qxSetCommands -ms \"setSlideDag\"",
     "`qxSetCommands -ms \"slideDagName\"` == \"\" && `textField -q -tx "
     "add_static_slide_object_QXMT_TF` == \"Load Object, or slide on itself\""},
    {"Straighten", "bent", "isAt(\"shape.vtx[1]\", 0, 0, 0.5)"},
    {"Keep X", "bent", "isAt(\"shape.vtx[1]\", 0.5, 0, 0.5)"},
    {"Keep Y", "bent", "isAt(\"shape.vtx[1]\", 0, -0.5, 0.5)"},
    {"Keep Z", "bent", "isAt(\"shape.vtx[1]\", 0, 0, 0.8)"},
    {"Circle", kRing, kRound},
    {"Planar", kHill, kFlat},
    {"Snap to Mirror", "bent", kSnapped},
    {"Merge to Last", kMoreThanOne, kMerged},
    {"Smooth", kCube, kSmoothed},
    {"Border Edges", kOneFace, kFourEdges},
    {"Hard Edges", kCube, kTwelveEdges},
    {"Take Shape", kAbove, kTaken},
    {"Take Normals", kNormals, kLocked},
    {"Drop X", kAcross, kAtX},
    {"Drop Y", kAbove, kTaken},
    {"Drop Z", kAlong, kAtZ},
    {"Drop Object Y", kAbove, kTaken},
};

const press kItems[] = {
    {"Modeling Window", "deleteUI -window qx_modeling_ui", "`window -ex qx_modeling_ui`"},
    {"UV Window", "", "`window -ex customUvWindow_QXMT`"},
    {"Modeling Tool", kPlane, "toolNow() == \"modelingContext\""},
    {"Quad Draw", kPlane, "toolNow() == \"quadDrawContext\""},
    {"Move Brush", kPlane, "titleNow() == \"Move Brush\""},
    {"Sculpt", kPlane, "titleNow() == \"Sculpt Brush\""},
    {"Straighten", "bent", "isAt(\"shape.vtx[1]\", 0, 0, 0.5)"},
    {"Straighten, Keep X", "bent", "isAt(\"shape.vtx[1]\", 0.5, 0, 0.5)"},
    {"Straighten, Keep Y", "bent", "isAt(\"shape.vtx[1]\", 0, -0.5, 0.5)"},
    {"Straighten, Keep Z", "bent", "isAt(\"shape.vtx[1]\", 0, 0, 0.8)"},
    {"Circle", kRing, kRound},
    {"Make Planar", kHill, kFlat},
    {"Snap to Mirror Plane", "bent", kSnapped},
    {"Merge to Last", kMoreThanOne, kMerged},
    {"Smooth, Keep Hard Edges", kCube, kSmoothed},
    {"Border Edges of Faces", kOneFace, kFourEdges},
    {"Hard Edges", kCube, kTwelveEdges},
    {"Shape, Where They Stand", kAbove, kTaken},
    {"Shape, Object Space",
     "polyPlane -n shape -sx 2 -sy 1 -w 2 -h 1; polyPlane -n ground; scale 9 1 9 ground.vtx[*]; "
     "move "
     "-r 0 -3 0 ground.vtx[*]; move 7 7 7 ground; select -r shape ground",
     kTaken},
    {"Shape, Same Faces",
     "polyCube -n shape; polyCube -n other; move -r 0.2 0.1 0 other.vtx[2]; select -r shape.f[0] "
     "other.f[0]",
     "isAt(\"shape.vtx[2]\", -0.3, 0.6, 0.5)"},
    {"Vertex Normals", kNormals, kLocked},
    {"Drop on Mesh, X", kAcross, kAtX},
    {"Drop on Mesh, Y", kAbove, kTaken},
    {"Drop on Mesh, Z", kAlong, kAtZ},
    {"Drop on Mesh, Object Y", kAbove, kTaken},
    {"Build UV Object", kPlane, "size(`ls -type uvEditNode`) == 1 && `objExists uvGroup_QXMT`"},
    {"Unwrap", kCubeUvs, "uvsChanged"},
    {"Unwrap Straight", kCubeUvs, "uvsChanged"},
    {"Load for Marking", kPlane, "`attributeQuery -n shapeShape -ex qxUvMarkedEdgeArray`"},
    {"Mark Seams",
     "polyCube -n shape; select -r shape; qxLoadUvObjectForMarking -loadType \"load\"; select -r "
     "shape.e[1] shape.e[4]",
     "marks(\"qxUvMarkedEdgeArray\") == \"1 4 \""},
    {"Mark Anchors",
     "polyCube -n shape; select -r shape; qxLoadUvObjectForMarking -loadType \"load\"; select -r "
     "shape.vtx[2:3]",
     "marks(\"qxUvAncorPointArray\") == \"2 3 \""},
    {"Pin",
     "polyPlane -n shape; string $known[] = `ls -tr`; select -r shape; qxBuildUVObject; string "
     "$new[] "
     "= stringArrayRemove($known, `ls -tr`); select -r ($new[0] + \".vtx[0:1]\")",
     "size(`ls -sl`) == 0"},
    {"Match Seam",
     "polyCube -n shape; polyAutoProjection -ch 0 shape.f[*]; polyEditUV -su 0.5 -sv 0.5 "
     "shape.map[0:3]; keepUvs; select -r shape.e[0:11]",
     "uvsChanged"},
    {"Set UV Ratio...", "", "`window -ex customUvWindow_QXMT`"},
    {"UV Select Tool", kPlane, "titleNow() == \"Uv Select Tool\""},
    {"UV Tweak Brush", kPlane, "titleNow() == \"Tweak UV Brush\""},
    {"UV Move Rotate Scale Brush", kPlane, "titleNow() == \"Move Rotate Scale UV Brush\""},
    {"Reset Options", "uiGesture -set 5 intensity_QXMT_IF",
     "`intField -q -v intensity_QXMT_IF` == 60"},
    {"Check for Updates", "", "1"},
};

/// What an option box opens, by the label of the item that it stands beside.
const std::pair<const char*, const char*> kOptionBoxes[] = {
    {"Modeling Tool", "qx_modeling_ui"},
    {"Quad Draw", "qx_modeling_ui"},
    {"Straighten", "straightenOptions_QXMT"},
    {"Snap to Mirror Plane", "qx_modeling_ui"},
    {"Smooth, Keep Hard Edges", "smoothOptions_QXMT"},
    {"Unwrap", "customUvWindow_QXMT"},
};

struct pressedScene : toolkitSession {
  pressedScene() { run(kWords); }
  std::string asked(const std::string& mel) {
    const auto value = session->executeLine(mel);
    REQUIRE_MESSAGE(value.has_value(), mel);
    return value->resultText();
  }
  std::vector<std::string> listed(const std::string& mel) {
    const auto names = session->executeLine(mel);
    REQUIRE(names.has_value());
    return names->toTexts();
  }
  void begin(const char* scene) {
    run("setToolTo selectSuperContext; file -f -new; modelingWindow_QXMT_Proc;");
    run("if (`window -ex customUvWindow_QXMT`) deleteUI -window customUvWindow_QXMT");
    run(scene);
  }
  /// Presses, and looks; then takes it back as one step, if the document was changed.
  void tryOut(const press& one, const std::string& control) {
    CAPTURE(one.label);
    const host::MessageCapture said;
    begin(one.before);
    run("uiGesture -press \"" + control + "\"");
    CAPTURE(one.after);
    CAPTURE(said.text(host::MessageKind::Error));
    CHECK(asked(one.after) == "1");
  }
};

}  // namespace

TEST_CASE("modelling window: every button does what it says") {
  pressedScene scene;
  scene.run("modelingWindow_QXMT_Proc");
  std::set<std::string> tried;
  for (const std::string& path : scene.listed("lsUI -l -type button")) {
    // The window is built anew for each: only their own names stay.
    const std::string button = path.substr(path.rfind('|') + 1);
    const std::string label = scene.asked("button -q -l \"" + button + "\"");
    CAPTURE(button);
    const auto row = std::find_if(std::begin(kButtons), std::end(kButtons),
                                  [&](const press& each) { return label == each.label; });
    REQUIRE(row != std::end(kButtons));
    scene.tryOut(*row, button);
    tried.insert(label);
  }
  CHECK(tried.size() == std::size(kButtons));
}

TEST_CASE("toolkit menu: every item does what it says, and every option box opens its window") {
  pressedScene scene;
  scene.run("qx_modeling_tool_ui");
  std::set<std::string> tried, opened;
  std::string last;
  for (const std::string& item : scene.listed("lsUI -l -mi")) {
    if (item.find("qxToolkitMenu_QXMT") == std::string::npos) continue;
    const auto is = [&](const char* flag) {
      return scene.asked(std::string("menuItem -q ") + flag + " \"" + item + "\"") == "1";
    };
    if (is("-d") || is("-sm")) continue;
    CAPTURE(item);
    if (is("-ob")) {
      for (const auto& [label, window] : kOptionBoxes) {
        if (last != label) continue;
        scene.begin("");
        scene.run(std::string("if (`window -ex ") + window + "`) deleteUI -window " + window);
        scene.run("uiGesture -press \"" + item + "\"");
        CHECK(scene.asked(std::string("window -ex ") + window) == "1");
        opened.insert(label);
      }
      continue;
    }
    last = scene.asked("menuItem -q -l \"" + item + "\"");
    CAPTURE(last);
    const auto row = std::find_if(std::begin(kItems), std::end(kItems),
                                  [&](const press& each) { return last == each.label; });
    REQUIRE(row != std::end(kItems));
    scene.tryOut(*row, item);
    tried.insert(last);
  }
  CHECK(tried.size() == std::size(kItems));
  CHECK(opened.size() == std::size(kOptionBoxes));
}

TEST_CASE("option windows: Apply does it, Close closes, and the third does both") {
  struct optionWindow {
    const char *name, *before, *after;
  };
  const optionWindow windows[] = {
      {"straightenOptions_QXMT", "bent", "isAt(\"shape.vtx[1]\", 0.5, 0, 0.5)"},
      {"smoothOptions_QXMT", kCube, "`polyEvaluate -f shape1` == 6 * 4 * 4 * 4 * 4"}};
  pressedScene scene;
  for (const optionWindow& each : windows) {
    CAPTURE(each.name);
    const std::string name = each.name;
    for (const char* button : {"_Apply_B", "_ApplyClose_B", "_Close_B"}) {
      CAPTURE(button);
      const host::MessageCapture said;
      scene.begin(each.before);
      scene.run(name + "_Proc");
      scene.run(name == "smoothOptions_QXMT" ? "uiGesture -set 2 smoothDivisions_QXMT_IS"
                                             : "uiGesture -set \"x\" straightenKeep_QXMT_OM");
      scene.run("uiGesture -press " + name + button);
      const bool closes = std::string(button) != "_Apply_B";
      CHECK(scene.asked("window -ex " + name) == (closes ? "0" : "1"));
      if (std::string(button) == "_Close_B")
        CHECK(scene.asked("size(`ls -type mesh`)") == "1");
      else
        CHECK(scene.asked(each.after) == "1");
      if (!closes) scene.run("uiGesture -press " + name + "_Close_B");
    }
  }
  scene.run("resetOptions_QXMT_Proc");
}
