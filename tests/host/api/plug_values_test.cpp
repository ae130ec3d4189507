// Plugs: their shape, their values in all types, what guards them and what drives them.
#include <maya/MArrayDataHandle.h>
#include <maya/MDGModifier.h>
#include <maya/MDataHandle.h>
#include <maya/MDistance.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnStringData.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MTime.h>

#include "tests/host/api/api_scene.h"

namespace {

struct Plugs : ApiScene {
  static MPlug plug(const char* nodeName, const char* attribute) {
    MStatus status;
    const MPlug found = MFnDependencyNode(node(nodeName)).findPlug(attribute, true, &status);
    CAPTURE(std::string(attribute));
    REQUIRE(status);
    return found;
  }
  static std::string name(const MPlug& plug) { return plug.name().asChar(); }
};

}  // namespace

TEST_CASE_FIXTURE(Plugs,
                  "array plugs: sparse elements by index and by place, with their connections") {
  run("createNode transform -n a; addAttr -ln list -sn li -at double -m a;"
      "setAttr a.list[7] 70; setAttr a.list[2] 20; connectAttr a.tx a.list[4];");
  const MPlug list = plug("a", "list");
  CHECK(list.isArray());
  CHECK_FALSE(list.isElement());
  CHECK_FALSE(list.isCompound());
  CHECK(list.numElements() == 3);
  CHECK(list.evaluateNumElements() == 3);
  CHECK(list.numConnectedElements() == 1);
  MIntArray indices;
  CHECK(list.getExistingArrayAttributeIndices(indices) == 3);
  CHECK((indices[0] == 2 && indices[1] == 4 && indices[2] == 7));
  CHECK(name(list[0]) == "a.list[2]");
  CHECK(list[2].asDouble() == 70);
  CHECK(list[2].logicalIndex() == 7);
  CHECK(list[2].isElement());
  CHECK(list[2].array() == list);
  CHECK(name(list.connectionByPhysicalIndex(0)) == "a.list[4]");
  MStatus status;
  CHECK(list.elementByPhysicalIndex(3, &status).isNull());
  CHECK_FALSE(status);
  CHECK(list.connectionByPhysicalIndex(1, &status).isNull());
  CHECK_FALSE(status);
  CHECK(list.numChildren(&status) == 0);
  CHECK_FALSE(status);
  CHECK(list[0].numElements(&status) == 0);
  CHECK_FALSE(status);

  // Naming an element does not make it; setting it does.
  const MPlug fresh = list.elementByLogicalIndex(30);
  CHECK(list.numElements() == 3);
  CHECK(fresh.setDouble(1.5));
  CHECK(list.numElements() == 4);
  MPlug walking = fresh;
  CHECK(walking.selectAncestorLogicalIndex(2));
  CHECK(walking == list[0]);
  CHECK(walking != fresh);
  CHECK(std::string(fresh.partialName().asChar()) == "li[30]");
  CHECK(std::string(fresh.partialName(true, false, false, false, false, true).asChar()) ==
        "a.list[30]");

  MDGModifier modifier;
  CHECK(modifier.removeMultiInstance(fresh, false));
  CHECK(modifier.removeMultiInstance(list.elementByLogicalIndex(4), true));
  REQUIRE(modifier.doIt());
  CHECK(list.numElements() == 2);
  CHECK_FALSE(plug("a", "tx").isConnected());
  REQUIRE(modifier.undoIt());
  CHECK(list.numElements() == 4);
  CHECK(fresh.asDouble() == 1.5);
  CHECK(plug("a", "tx").isConnected());
}

TEST_CASE_FIXTURE(Plugs, "compound plugs: children, parents, values as a whole") {
  run("createNode transform -n a; setAttr a.t 1 2 3; connectAttr a.sx a.tz;");
  const MPlug whole = plug("a", "translate"), y = plug("a", "ty");
  CHECK(whole.isCompound());
  CHECK(whole.numChildren() == 3);
  CHECK(whole.numConnectedChildren() == 1);
  CHECK(whole.child(1) == y);
  CHECK(whole.child(y.attribute()) == y);
  CHECK(y.parent() == whole);
  CHECK(y.isChild());
  CHECK_FALSE(whole.isChild());
  MStatus status;
  CHECK(whole.child(3, &status).isNull());
  CHECK_FALSE(status);
  CHECK(whole.child(plug("a", "sx").attribute(), &status).isNull());
  CHECK_FALSE(status);
  CHECK(whole.parent(&status).isNull());
  CHECK_FALSE(status);
  double x = 0, second = 0, third = 0;
  REQUIRE(MFnNumericData(whole.asMObject()).getData(x, second, third));
  CHECK((x == 1 && second == 2 && third == 1));
  run("disconnectAttr a.sx a.tz");
  MFnNumericData numbers;
  MObject data = numbers.create(MFnNumericData::k3Double);
  numbers.setData(4.0, 5.0, 6.0);
  CHECK(whole.setMObject(data));
  CHECK(text("getAttr a.translate") == text("float $v[] = {4, 5, 6}; $v = $v;"));
  CHECK_FALSE(whole.setDouble(3));
  CHECK(whole.asDouble(&status) == 0);
  CHECK_FALSE(status);

  // An array of compounds: the way down names every index.
  run("polyCube -n box -ch 0; setAttr boxShape.pnts[3].pnty 0.25;");
  const MPlug tweaks = plug("boxShape", "pnts");
  const MPlug leaf = tweaks.elementByLogicalIndex(3).child(1);
  CHECK(name(leaf) == "boxShape.pnts[3].pnty");
  CHECK(leaf.asFloat() == 0.25f);
  CHECK(leaf.isChild());
  CHECK_FALSE(leaf.isElement());
  CHECK(leaf.parent() == tweaks.elementByLogicalIndex(3));
  CHECK(leaf.parent().array() == tweaks);
  MPlug moved = leaf;
  CHECK(moved.selectAncestorLogicalIndex(5, tweaks.attribute()));
  CHECK(name(moved) == "boxShape.pnts[5].pnty");
}

TEST_CASE_FIXTURE(Plugs,
                  "values: every type reads and writes, in its units, and text is no number") {
  run("createNode transform -n a; addAttr -ln count -at long a; addAttr -ln word -dt \"string\" a;"
      "addAttr -ln flag -at bool a; addAttr -ln few -at short -min -5 -max 5 a;"
      "addAttr -ln kind -at \"enum\" -en \"red:green:blue=7\" a; addAttr -ln when -at time a;");
  CHECK(plug("a", "tx").setMDistance(MDistance(2, MDistance::kMeters)));
  CHECK(text("getAttr a.tx") == "200");
  CHECK(plug("a", "tx").asMDistance().asMillimeters() == doctest::Approx(2000));
  CHECK(plug("a", "rx").setMAngle(MAngle(90, MAngle::kDegrees)));
  CHECK(text("getAttr a.rx") == "90");
  CHECK(plug("a", "rx").asDouble() == doctest::Approx(1.5707963267948966));
  CHECK(plug("a", "when").setMTime(MTime(2, MTime::kSeconds)));
  CHECK(text("getAttr a.when") == "48");
  CHECK(plug("a", "when").asMTime().as(MTime::kMilliseconds) == doctest::Approx(2000));
  run("currentUnit -l inch -a radian");
  CHECK(plug("a", "tx").asDouble() == doctest::Approx(200));
  CHECK(plug("a", "rx").asMAngle().asDegrees() == doctest::Approx(90));
  run("currentUnit -l centimeter -a degree");

  CHECK(plug("a", "count").setInt(-7));
  CHECK(plug("a", "count").asDouble() == -7);
  CHECK(plug("a", "count").asShort() == -7);
  CHECK(plug("a", "count").asInt64() == -7);
  CHECK(plug("a", "count").asBool());
  CHECK(plug("a", "flag").setBool(true));
  CHECK(plug("a", "flag").asInt() == 1);
  CHECK(plug("a", "kind").setShort(7));
  CHECK(text("getAttr -as a.kind") == "blue");
  CHECK(plug("a", "word").setString("two words"));
  CHECK(std::string(plug("a", "word").asString().asChar()) == "two words");
  CHECK(std::string(MFnStringData(plug("a", "word").asMObject()).string().asChar()) == "two words");
  MStatus status;
  plug("a", "word").asDouble(&status);
  CHECK_FALSE(status);
  plug("a", "tx").asString(&status);
  CHECK_FALSE(status);
  CHECK_FALSE(plug("a", "tx").setString("five"));
  CHECK_FALSE(plug("a", "word").setDouble(5));
  CHECK(text("getAttr a.tx") == "200");

  MStringArray commands;
  CHECK(plug("a", "word").getSetAttrCmds(commands, MPlug::kAll, true));
  REQUIRE(commands.length() == 1);
  CHECK(std::string(commands[0].asChar()) == "setAttr \".word\" -type \"string\" \"two words\";");
  CHECK(plug("a", "translate").getSetAttrCmds(commands, MPlug::kNonDefault));
  REQUIRE(commands.length() == 1);
  CHECK(std::string(commands[0].asChar()).find("200") != std::string::npos);
  CHECK_FALSE(plug("a", "tx").isDefaultValue());
  CHECK(plug("a", "sx").isDefaultValue());
  CHECK_FALSE(plug("a", "translate").isDefaultValue());
  CHECK(MPlug().setDouble(1).statusCode() != MStatus::kSuccess);
}

TEST_CASE_FIXTURE(Plugs, "locks and drivers: what may not change, does not, and says why") {
  run("createNode transform -n a; createNode transform -n b; connectAttr a.tx b.tx;");
  MPlug y = plug("a", "ty"), whole = plug("a", "t");
  CHECK(y.isFreeToChange() == MPlug::kFreeToChange);
  CHECK(y.setLocked(true));
  CHECK(y.isLocked());
  CHECK_FALSE(whole.isLocked());
  CHECK_FALSE(y.setDouble(4));
  CHECK(y.asDouble() == 0);
  CHECK(y.isFreeToChange() == MPlug::kNotFreeToChange);
  CHECK(whole.isFreeToChange() == MPlug::kChildrenNotFreeToChange);
  CHECK(whole.isFreeToChange(true, false) == MPlug::kFreeToChange);
  CHECK(y.setLocked(false));
  CHECK(whole.setLocked(true));
  CHECK(y.isLocked());
  CHECK(y.isFreeToChange(true) == MPlug::kNotFreeToChange);
  CHECK(y.isFreeToChange(false) == MPlug::kFreeToChange);
  CHECK_FALSE(y.setDouble(4));
  CHECK(whole.setLocked(false));
  CHECK(y.setDouble(4));

  const MPlug from = plug("a", "tx"), to = plug("b", "tx");
  CHECK_FALSE(to.setDouble(8));
  CHECK(to.isFreeToChange() == MPlug::kNotFreeToChange);
  CHECK((from.isSource() && !from.isDestination() && to.isDestination() && !to.isSource()));
  CHECK(to.source() == from);
  MPlugArray ends;
  CHECK(from.destinations(ends));
  REQUIRE(ends.length() == 1);
  CHECK(ends[0] == to);
  CHECK_FALSE(from.connectedTo(ends, true, false));
  CHECK(ends.length() == 0);
  CHECK(MFnDependencyNode(node("a")).getConnections(ends));
  CHECK(ends.length() == 1);
  run("setAttr -k 0 a.tz");
  CHECK_FALSE(plug("a", "tz").isKeyable());
  CHECK(plug("a", "tz").setKeyable(true));
  CHECK(text("getAttr -k a.tz") == "1");
}

TEST_CASE_FIXTURE(Plugs,
                  "data handles of plugs are copies: they change a plug when set, and not before") {
  run("createNode transform -n a; setAttr a.t 1 2 3; addAttr -ln list -at double -m a;"
      "setAttr a.list[1] 10; setAttr a.list[5] 50;");
  MDataHandle handle = plug("a", "tx").asMDataHandle();
  CHECK(handle.asDouble() == 1);
  handle.setDouble(9);
  CHECK(plug("a", "tx").asDouble() == 1);
  CHECK(plug("a", "tx").setMDataHandle(handle));
  CHECK(plug("a", "tx").asDouble() == 9);
  plug("a", "tx").destructHandle(handle);

  MDataHandle whole = plug("a", "translate").asMDataHandle();
  CHECK(whole.asDouble3()[1] == 2);
  whole.set3Double(7, 8, 9);
  CHECK(plug("a", "translate").setMDataHandle(whole));
  CHECK(plug("a", "tz").asDouble() == 9);

  MDataHandle list = plug("a", "list").asMDataHandle();
  MArrayDataHandle elements(list);
  CHECK(elements.elementCount() == 2);
  CHECK(elements.jumpToElement(5));
  CHECK(elements.inputValue().asDouble() == 50);
  CHECK_FALSE(elements.jumpToElement(2));
  CHECK(elements.jumpToArrayElement(0));
  CHECK(elements.elementIndex() == 1);
  CHECK(elements.next());
  CHECK_FALSE(elements.next());
}
