// Attributes of every kind, made by function sets and used on a node.
#include <maya/MAngle.h>
#include <maya/MDGModifier.h>
#include <maya/MDistance.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnStringData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MTime.h>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Attributes : ApiScene {
  Attributes() { run("createNode transform -n a; createNode transform -n b;"); }
  MPlug add(const MObject& attribute) {
    MFnDependencyNode fn(node("a"));
    CHECK(fn.addAttribute(attribute));
    return fn.findPlug(attribute, true);
  }
  bool fails(const char* command) {
    const host::MessageCapture quiet;
    return !session->executeLine(command).has_value();
  }
};

}  // namespace

TEST_CASE_FIXTURE(Attributes,
                  "numeric: ranges, soft ranges and defaults, one for all or one a part") {
  MFnNumericAttribute fn;
  MObject one = fn.create("weight", "wt", MFnNumericData::kDouble, 0.5);
  CHECK(fn.setMin(0.0));
  CHECK(fn.setMax(2.0));
  CHECK(fn.setSoftMax(1.0));
  CHECK((fn.hasMin() && fn.hasMax() && fn.hasSoftMax() && !fn.hasSoftMin()));
  double bound = 0;
  CHECK(fn.getMax(bound));
  CHECK(bound == 2);
  CHECK_FALSE(fn.getSoftMin(bound));
  CHECK(fn.unitType() == MFnNumericData::kDouble);
  const MPlug weight = add(one);
  CHECK(weight.asDouble() == 0.5);
  CHECK(fails("setAttr a.weight 2.5"));
  CHECK(fails("setAttr a.weight -0.1"));
  CHECK(weight.asDouble() == 0.5);
  run("setAttr a.wt 2");
  CHECK(text("attributeQuery -n a -range weight") == text("float $r[] = {0, 2}; $r = $r;"));

  MObject triple = fn.create("offset", "off", MFnNumericData::k3Float, 1.0);
  CHECK(fn.setDefault(1.0f, 2.0f, 3.0f));
  CHECK(fn.setMin(0.0));
  CHECK(fn.setMax(5.0, 6.0, 7.0));
  CHECK_FALSE(fn.setMax(5.0, 6.0));
  double x = 0, y = 0, z = 0;
  CHECK(fn.getMax(x, y, z));
  CHECK((x == 5 && y == 6 && z == 7));
  CHECK(fn.unitType() == MFnNumericData::k3Float);
  CHECK(std::string(MFnNumericAttribute(fn.child(2)).name().asChar()) == "offset2");
  MStatus status;
  CHECK(fn.child(3, &status).isNull());
  CHECK_FALSE(status);
  const MPlug offset = add(triple);
  CHECK(offset.child(2).asFloat() == 3);
  CHECK(fails("setAttr a.offset1 6.5"));
  run("setAttr a.offset 5 6 7");

  MObject color = fn.createColor("tint", "tn");
  CHECK(fn.isUsedAsColor());
  CHECK(add(color).child(1).partialName(false, false, false, false, false, true) == "tintG");
  MObject flag = fn.create("flag", "fg", MFnNumericData::kBoolean, 1);
  bool isOn = false;
  CHECK(fn.getDefault(isOn));
  CHECK(isOn);
  CHECK(add(flag).asBool());
  CHECK(text("getAttr -type a.flag") == "bool");
  CHECK(fn.create("2bad", "x", MFnNumericData::kInt, 0, &status).isNull());
  CHECK_FALSE(status);
  CHECK(fn.create("bad", "x", MFnNumericData::kInvalid, 0, &status).isNull());
  CHECK_FALSE(status);

  MFnUnitAttribute part;
  const MObject px = part.create("placeX", "px", MFnUnitAttribute::kDistance);
  const MObject py = part.create("placeY", "py", MFnUnitAttribute::kDistance);
  const MObject pz = part.create("placeZ", "pz", MFnUnitAttribute::kDistance);
  MObject place = fn.create("place", "pl", px, py, pz, &status);
  REQUIRE(status);
  CHECK(fn.create("again", "ag", px, py, pz, &status).isNull());  // they are taken
  CHECK(add(place).numChildren() == 3);
  CHECK(text("getAttr -type a.place") == "double3");
}

TEST_CASE_FIXTURE(Attributes, "enumerations: fields with gaps, by name and by value") {
  MFnEnumAttribute fn;
  const MObject kind = fn.create("kind", "kd", 4);
  CHECK(fn.addField("low", 1));
  CHECK(fn.addField("high", 9));
  CHECK(fn.addField("mid", 4));
  short value = 0;
  CHECK(fn.getMin(value));
  CHECK(value == 1);
  CHECK(fn.getMax(value));
  CHECK(value == 9);
  CHECK(fn.fieldIndex("mid") == 4);
  CHECK(fn.fieldName(9) == "high");
  MStatus status;
  fn.fieldIndex("none", &status);
  CHECK_FALSE(status);
  fn.fieldName(5, &status);
  CHECK_FALSE(status);
  MString name;
  CHECK(fn.getDefault(name));
  CHECK(name == "mid");
  CHECK(fn.setDefault("high"));
  CHECK_FALSE(fn.setDefault("none"));
  const MPlug plug = add(kind);
  CHECK(plug.asShort() == 9);
  CHECK(text("getAttr -asString a.kind") == "high");
  CHECK(plug.setShort(1));
  CHECK(text("getAttr -asString a.kind") == "low");
}

TEST_CASE_FIXTURE(Attributes, "units: defaults and ranges are the same quantity in every unit") {
  MFnUnitAttribute fn;
  const MObject length = fn.create("reach", "rc", MDistance(2, MDistance::kMeters));
  CHECK(fn.unitType() == MFnUnitAttribute::kDistance);
  CHECK(fn.setMax(MDistance(3, MDistance::kMeters)));
  CHECK(fn.setMin(50.0));
  MDistance bound;
  CHECK(fn.getMin(bound));
  CHECK(bound.asMillimeters() == doctest::Approx(500));
  double raw = 0;
  CHECK(fn.getMax(raw));
  CHECK(raw == doctest::Approx(300));
  const MPlug reach = add(length);
  run("currentUnit -l m");
  CHECK(text("getAttr a.reach") == "2");
  run("setAttr a.reach 2.5");
  CHECK(reach.asDouble() == doctest::Approx(250));
  CHECK(fails("setAttr a.reach 3.5"));
  run("currentUnit -l cm");

  const MObject angle = fn.create("bend", "bd", MAngle(45, MAngle::kDegrees));
  CHECK(add(angle).asMAngle().asDegrees() == doctest::Approx(45));
  CHECK(text("getAttr a.bend") == "45");
  const MObject time = fn.create("start", "st", MTime(2, MTime::kSeconds));
  CHECK(add(time).asMTime().as(MTime::kSeconds) == doctest::Approx(2));
  CHECK(text("getAttr a.start") == "48");
  CHECK_FALSE(fn.hasMin());
  CHECK_FALSE(fn.getMin(raw));
}

TEST_CASE_FIXTURE(Attributes, "matrices and text: defaults, values and what they refuse") {
  MFnMatrixAttribute fn;
  const MObject matrix = fn.create("frame", "fr");
  CHECK(fn.isDoublePrecision());
  MMatrix shift;
  shift[3][0] = 5;
  CHECK(fn.setDefault(shift));
  MMatrix got;
  CHECK(fn.getDefault(got));
  CHECK(got.isEquivalent(shift));
  const MPlug plug = add(matrix);
  CHECK(MFnMatrixData(plug.asMObject()).matrix().isEquivalent(shift));
  shift[3][1] = -2;
  CHECK(plug.setMObject(MFnMatrixData().create(shift)));
  CHECK(MFnMatrixData(plug.asMObject()).matrix()[3][1] == -2);
  run("setAttr -type \"matrix\" a.frame 1 0 0 0 0 1 0 0 0 0 1 0 7 8 9 1");
  CHECK(MFnMatrixData(plug.asMObject()).matrix()[3][2] == 9);
  CHECK_FALSE(plug.setDouble(3));
  CHECK_FALSE(plug.setMObject(MFnStringData().create("no matrix")));
  const MObject rough = fn.create("rough", "rgh", MFnMatrixAttribute::kFloat);
  CHECK(add(rough).setMObject(MFnMatrixData().create(shift)));

  MFnTypedAttribute typed;
  const MObject label =
      typed.create("label", "lb", MFnData::kString, MFnStringData().create("none"));
  CHECK(typed.attrType() == MFnData::kString);
  const MPlug word = add(label);
  CHECK(word.asString() == "none");
  CHECK_FALSE(word.setMObject(MFnMatrixData().create(shift)));
  CHECK(word.asString() == "none");
}

TEST_CASE_FIXTURE(Attributes, "compounds: of mixed children, in arrays; a child belongs to one") {
  MFnNumericAttribute number;
  MFnTypedAttribute typed;
  MFnCompoundAttribute fn;
  const MObject amount = number.create("amount", "am", MFnNumericData::kDouble, 3.0);
  const MObject title = typed.create("title", "tl", MFnData::kString);
  const MObject extra = number.create("extra", "ex", MFnNumericData::kInt);
  const MObject rows = fn.create("rows", "rw");
  CHECK(fn.addChild(amount));
  CHECK(fn.addChild(title));
  CHECK(fn.addChild(extra));
  CHECK(fn.removeChild(extra));
  CHECK_FALSE(fn.removeChild(extra));
  CHECK(fn.setArray(true));
  CHECK(fn.numChildren() == 2);
  CHECK(MFnAttribute(fn.child(0)).parent() == rows);
  MFnCompoundAttribute other;
  other.create("other", "ot");
  CHECK_FALSE(other.addChild(amount));
  CHECK_FALSE(fn.addChild(rows));
  const MPlug plug = add(rows);
  CHECK((plug.isArray() && plug.isCompound()));
  run("setAttr -type \"string\" a.rows[4].title \"row\"; setAttr a.rows[9].amount 1;");
  CHECK(plug.numElements() == 2);
  CHECK(plug[0].child(0).asDouble() == 3);
  CHECK(plug[0].child(1).asString() == "row");
  CHECK_FALSE(fn.setArray(false));  // values of the one kind exist
  CHECK_FALSE(fn.addChild(extra));
  run("setAttr a.rows[4].amount 8");
  CHECK(plug.elementByLogicalIndex(4).child(amount).asDouble() == 8);
}

TEST_CASE_FIXTURE(Attributes, "messages and generics: what connects to them and what does not") {
  MFnMessageAttribute message;
  const MObject link = message.create("link", "lk");
  add(link);
  CHECK(fails("setAttr a.link 1"));
  run("connectAttr b.message a.link");
  CHECK(fails("connectAttr -f b.tx a.link"));
  CHECK(text("connectionInfo -sfd a.link") == "b.message");
  MFnGenericAttribute generic;
  const MObject anything = generic.create("anything", "an");
  CHECK(generic.addAccept(MFnData::kString));
  CHECK(generic.addAccept(MFnNumericData::kDouble));
  const MPlug plug = add(anything);
  CHECK(plug.setDouble(4.5));
  CHECK(plug.asDouble() == 4.5);
  CHECK(plug.setString("word"));
  CHECK(plug.asString() == "word");
}

TEST_CASE_FIXTURE(Attributes, "flags decide who may read, write, store, connect and see a value") {
  MFnNumericAttribute fn;
  const MObject sealed = fn.create("sealed", "sl", MFnNumericData::kDouble);
  CHECK(fn.setWritable(false));
  const MObject silent = fn.create("silent", "si", MFnNumericData::kDouble);
  CHECK(fn.setReadable(false));
  const MObject passing = fn.create("passing", "pg", MFnNumericData::kDouble);
  CHECK(fn.setStorable(false));
  CHECK(fn.setKeyable(true));
  const MObject alone = fn.create("alone", "al", MFnNumericData::kDouble);
  CHECK(fn.setConnectable(false));
  const MObject hidden = fn.create("hiddenOne", "ho", MFnNumericData::kDouble);
  CHECK(fn.setHidden(true));
  CHECK(fn.setNiceNameOverride("Out Of Sight"));
  CHECK(fn.addToCategory("private"));
  CHECK((fn.hasCategory("private") && !fn.hasCategory("public")));
  for (const MObject& each : {sealed, silent, passing, alone, hidden}) (void)add(each);
  CHECK(fails("connectAttr b.tx a.sealed"));
  CHECK(fails("connectAttr a.silent b.tx"));
  CHECK(fails("connectAttr b.tx a.alone"));
  run("connectAttr b.tx a.silent; connectAttr a.sealed b.ty;");
  CHECK(text("listAttr -k a").find("passing") == std::string::npos);
  CHECK(text("attributeQuery -n a -hidden hiddenOne") == "1");
  CHECK(text("attributeQuery -n a -storable passing") == "0");
  CHECK(text("attributeQuery -n a -niceName hiddenOne") == "Out Of Sight");
  CHECK(text("attributeQuery -n a -writable sealed") == "0");
  CHECK(text("attributeQuery -n a -keyable passing") == "1");

  // The command that a function set writes makes the same attribute.
  fn.create("level", "lv", MFnNumericData::kDouble, 2.0);
  fn.setMin(0.0);
  fn.setKeyable(true);
  const std::string command = fn.getAddAttrCmd(true).asChar();
  run(command.substr(0, command.size() - 1) + " b");
  CHECK(text("getAttr b.level") == "2");
  CHECK(fails("setAttr b.level -1"));
  CHECK(text("getAttr -k b.level") == "1");

  const std::size_t before = session->document().hash();
  MDGModifier modifier;
  fn.create("later", "la", MFnNumericData::kInt, 5);
  CHECK(modifier.addAttribute(node("a"), fn.object()));
  REQUIRE(modifier.doIt());
  CHECK(text("getAttr a.later") == "5");
  REQUIRE(modifier.undoIt());
  CHECK(fails("getAttr a.later"));
  CHECK(session->document().hash() == before);
}
