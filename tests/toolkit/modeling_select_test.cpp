#include "tests/toolkit/tool_hand.h"

// What the modelling tool makes of the scene by being taken and left. What it does in between is
// told by the scripts of tests/scripts/gestures/tools.

namespace {

using names = toolHand::names;

}  // namespace

TEST_CASE(
    "modelling tool: what it makes at the start is gone at the end, and the scene as it was") {
  toolHand hand;
  hand.run(
      "polyPlane -n plane -ch 0; doMenuComponentSelection(\"plane\", \"facet\"); "
      "select -r plane.f[3]");
  const std::uint64_t before = hand.hash();
  const std::size_t steps = hand.undoItems();
  hand.run("modelingContext tool; setToolTo tool");
  CHECK(hand.undoItems() == steps);
  CHECK(hand.texts("contextInfo -t tool") == names{"Advanced Modeling Tool"});
  CHECK(hand.texts("contextInfo -i1 tool") == names{"advancedModelingToolContext.bmp"});
  CHECK(hand.texts("nodeType qxModelingToolsDrawSSPointLocator") == names{"drawLocator"});
  CHECK(hand.selected() == names{"plane.f[3]"});
  CHECK(hand.texts("ls -hl") == names{"plane"});
  CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 1);
  hand.run(
      "createNode transform -n above; createNode drawLocator -n leftOver -p above; select -r "
      "plane.f[3]; rename qxModelingToolsDrawSSPointLocator other; rename leftOver "
      "qxModelingToolsDrawSSPointLocator; delete other; select -r plane.f[3]");
  hand.run("setToolTo tool");  // with one left over from elsewhere
  CHECK(hand.texts("ls -type drawLocator").size() == 1);
  hand.run("setToolTo selectSuperContext");
  CHECK(hand.hash() == before);
  CHECK_FALSE(hand.hasLocator());
  CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 0);
  hand.run(
      "tumbleCtx -e -localTumble 1 tumbleContext; setToolTo tool; setToolTo "
      "selectSuperContext");
  CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 1);

  // An object that is selected comes into the component mode.
  hand.run("selectMode -object; select -r plane; hilite -u plane; setToolTo tool");
  CHECK(hand.texts("ls -hl") == names{"plane"});
  CHECK(hand.number("selectMode -q -component") == 1);
}
