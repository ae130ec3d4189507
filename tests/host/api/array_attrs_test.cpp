// Arrays by name, as emitters hand them on, and arrays that show others' elements.
#include <maya/MDynamicsUtil.h>
#include <maya/MFnArrayAttrsData.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPlug.h>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Arrays : ApiScene {
  ~Arrays() { session.reset(); }
  host::MessageCapture quiet;
};

}  // namespace

TEST_CASE_FIXTURE(Arrays, "arrays by name: those handed out are the data's, copies are not") {
  MFnArrayAttrsData fn;
  MObject data = fn.create();
  MVectorArray positions = fn.vectorArray("position");
  MVectorArray same = fn.vectorArray("position");
  for (int i = 0; i < 40; ++i) positions.append(MVector(i, 0, 0));
  CHECK(same.length() == 40);
  same[39].y = 5;
  CHECK(positions[39].y == 5);
  same.remove(0);
  CHECK(positions.length() == 39);
  positions.insert(MVector(7, 7, 7), 0);
  CHECK(same[0] == MVector(7, 7, 7));
  MVectorArray copied(positions);
  MVectorArray assigned;
  assigned = fn.vectorArray("position");
  copied.clear();
  assigned.clear();
  CHECK(fn.getVectorData("position").length() == 40);
  // Assigning to one that was handed out writes into the data.
  positions = MVectorArray(3, MVector(1, 2, 3));
  CHECK(same.length() == 3);
  CHECK(MFnArrayAttrsData(data).vectorArray("position")[2] == MVector(1, 2, 3));
  {
    MStringArray names = fn.stringArray("name");
    names.append("a");
    names.append("bc");
  }
  CHECK(fn.getStringData("name")[1] == "bc");
  const MVectorArray kept = fn.vectorArray("position");
  CHECK(fn.clear());
  CHECK(fn.count() == 0);
  CHECK(kept.length() == 3);
}

TEST_CASE_FIXTURE(Arrays, "arrays by name: kinds, lists, and names that are not there") {
  MFnArrayAttrsData fn;
  MStatus status;
  CHECK(fn.vectorArray("v", &status).length() == 0);
  CHECK_FALSE(status);
  (void)fn.create();
  (void)fn.doubleArray("mass");
  (void)fn.intArray("id");
  CHECK(fn.count() == 2);
  CHECK(fn.list()[1] == "id");
  MFnArrayAttrsData::Type type = MFnArrayAttrsData::kInvalid;
  CHECK(fn.checkArrayExist("id", type));
  CHECK(type == MFnArrayAttrsData::kIntArray);
  CHECK_FALSE(fn.checkArrayExist("other", type));
  (void)fn.getDoubleData("other", &status);
  CHECK_FALSE(status);
  (void)fn.vectorArray("mass", &status);
  CHECK_FALSE(status);
  CHECK(fn.count() == 2);
}

TEST_CASE_FIXTURE(Arrays, "arrays by name: between a plug-in's nodes, in plugs, undo and files") {
  REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/scatter_points.so"));
  run("polyPlane -w 2 -h 2 -sx 1 -sy 1; createNode acmeScatter -n sc; createNode acmeScatterReader "
      "-n rd; connectAttr pPlaneShape1.outMesh sc.inMesh; connectAttr sc.outputPoints "
      "rd.inputPoints");
  CHECK(text("getAttr rd.number") == "10");
  CHECK(text("getAttr rd.arrayNames") == "position normal id faceId type");
  run("move -r 0 3 0 pPlane1.vtx[0:3]; setAttr sc.count 4");
  CHECK(text("getAttr rd.number") == "4");
  CHECK(text("getAttr rd.centreY") == "3");
  CHECK(text("getAttr -type rd.inputPoints") == "arrayAttrs");

  // What is stored is as it was when it was set, whatever the plug-in does with its arrays later.
  run("disconnectAttr sc.outputPoints rd.inputPoints");
  MFnArrayAttrsData fn;
  const MObject data = fn.create();
  MVectorArray positions = fn.vectorArray("position");
  positions.append(MVector(1, 2, 3));
  const MPlug plug = MFnDependencyNode(node("rd")).findPlug("inputPoints", true);
  REQUIRE(MPlug(plug).setMObject(data));
  positions.append(MVector(9, 9, 9));
  CHECK(text("getAttr rd.number") == "1");
  MObject stored = plug.asMObject();
  MFnArrayAttrsData reader(stored);
  reader.vectorArray("position").append(MVector());
  reader.stringArray("note").append("two \"words\"");
  reader.doubleArray("mass").append(0.1);
  reader.intArray("id").append(-7);
  CHECK(text("getAttr rd.number") == "1");
  REQUIRE(MPlug(plug).setMObject(stored));
  const std::string save =
      "string $f = `internalVar -userTmpDir` + \"array_attrs.ma\"; file -rename $f; file -f -s "
      "-type "
      "mayaAscii; file -f -o $f;";
  run(save);
  CHECK(text("getAttr rd.arrayNames") == "position note mass id");
  CHECK(text("getAttr rd.number") == "2");
  MFnArrayAttrsData opened(MFnDependencyNode(node("rd")).findPlug("inputPoints", true).asMObject());
  CHECK(opened.getStringData("note")[0] == "two \"words\"");
  CHECK(opened.getDoubleData("mass")[0] == 0.1);
  CHECK(opened.getIntData("id")[0] == -7);
  CHECK(opened.getVectorData("position")[0] == MVector(1, 2, 3));
}

TEST_CASE_FIXTURE(Arrays, "textures of dynamics: the 2d texture that drives an attribute") {
  run("createNode checker -n ch; setAttr ch.color1 1 0 0; setAttr ch.color2 1 0 0; createNode "
      "lambert -n l; connectAttr ch.outColor l.color");
  MFnDependencyNode fn(node("l"));
  MDoubleArray us(2, 0.25), vs(2, 0.75), alphas;
  MVectorArray colors;
  CHECK(MDynamicsUtil::hasValidDynamics2dTexture(node("l"), fn.attribute("color")));
  CHECK_FALSE(MDynamicsUtil::hasValidDynamics2dTexture(node("l"), fn.attribute("diffuse")));
  REQUIRE(MDynamicsUtil::evalDynamics2dTexture(node("l"), fn.attribute("color"), us, vs, &colors,
                                               &alphas));
  REQUIRE(colors.length() == 2);
  CHECK(colors[1] == MVector(1, 0, 0));
  CHECK(alphas.length() == 2);
}
