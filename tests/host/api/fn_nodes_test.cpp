#include <maya/MDagModifier.h>
#include <maya/MDagPathArray.h>
#include <maya/MEulerRotation.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTransform.h>
#include <maya/MGlobal.h>
#include <maya/MItDag.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MItDependencyNodes.h>
#include <maya/MMatrix.h>
#include <maya/MObjectArray.h>
#include <maya/MObjectHandle.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MQuaternion.h>
#include <maya/MVector.h>

#include <cmath>
#include <set>

#include "tests/host/api/api_scene.h"

namespace {

bool isNear(const MVector& a, const MVector& b) {
  return (a - b).length() < 1e-9;
}

std::string namesOf(MItDag& iterator) {
  std::string names;
  for (; !iterator.isDone(); iterator.next())
    names += std::string(iterator.partialPathName().asChar()) + (iterator.isDone() ? "" : " ");
  return names;
}

}  // namespace

TEST_CASE_FIXTURE(ApiScene,
                  "dependency nodes: names, plugs, attributes added and removed, connections") {
  run("createNode transform -n a; createNode transform -n b; connectAttr a.tx b.ty; connectAttr "
      "a.tx b.tz;");
  MFnDependencyNode fn(node("a"));
  CHECK(std::string(fn.typeName().asChar()) == "transform");
  CHECK(std::string(fn.setName("b").asChar()) == "b1");  // the name is taken
  fn.setName("a");

  MStatus status;
  CHECK(fn.findPlug("translateX", true, &status).isConnected());
  CHECK(status == MS::kSuccess);
  CHECK(fn.findPlug("noSuchThing", true, &status).isNull());
  CHECK(status == MS::kInvalidParameter);
  MPlugArray ends;
  CHECK(fn.findPlug("tx", true).connectedTo(ends, false, true));
  CHECK(ends.length() == 2);
  CHECK_FALSE(fn.findPlug("tx", true).isDestination());
  CHECK(std::string(MFnDependencyNode(node("b")).findPlug("tz", true).source().name().asChar()) ==
        "a.translateX");

  MFnNumericAttribute number;
  const MObject attribute = number.create("weightOfIt", "woi", MFnNumericData::kDouble, 0.25);
  number.setKeyable(true);
  number.setMin(0.0);
  REQUIRE(fn.addAttribute(attribute));
  CHECK(fn.hasAttribute("woi"));
  CHECK(fn.attributeClass(fn.attribute("woi")) == MFnDependencyNode::kLocalDynamicAttr);
  CHECK(text("getAttr a.weightOfIt") == "0.25");
  CHECK_FALSE(fn.addAttribute(attribute));  // a second one of that name
  CHECK(fn.removeAttribute(fn.attribute("woi")));
  CHECK_FALSE(fn.hasAttribute("weightOfIt"));
}

TEST_CASE_FIXTURE(ApiScene,
                  "transforms: spaces, orders, pivots and limits agree with the attributes") {
  run("createNode transform -n upper; setAttr upper.t 10 0 0; setAttr upper.ry 90; setAttr upper.s "
      "2 2 2;"
      "createNode transform -n lower -p upper; setAttr lower.t 1 2 3;");
  MFnTransform fn(path("lower"));
  CHECK(isNear(fn.getTranslation(MSpace::kTransform), MVector(1, 2, 3)));
  // A half turn of a quarter: local z runs along world x.
  CHECK(isNear(fn.getTranslation(MSpace::kWorld), MVector(10 + 2 * 3, 4, -2)));
  REQUIRE(fn.setTranslation(MVector(10, 0, 0), MSpace::kWorld));
  CHECK(isNear(fn.getTranslation(MSpace::kTransform), MVector(0, 0, 0)));
  REQUIRE(fn.translateBy(MVector(1, 0, 0), MSpace::kWorld));
  CHECK(isNear(fn.getTranslation(MSpace::kWorld), MVector(11, 0, 0)));

  const double angles[] = {0.3, -0.7, 1.1};
  REQUIRE(fn.setRotation(angles, MTransformationMatrix::kXYZ));
  MQuaternion before;
  fn.getRotation(before);
  REQUIRE(fn.setRotationOrder(MTransformationMatrix::kZYX, true));
  CHECK(text("getAttr lower.rotateOrder") == "5");
  MQuaternion after;
  fn.getRotation(after);
  CHECK(before.isEquivalent(after, 1e-9));
  MEulerRotation euler;
  fn.getRotation(euler);
  CHECK(euler.order == MEulerRotation::kZYX);
  CHECK(euler.asMatrix().isEquivalent(before.asMatrix(), 1e-9));
  REQUIRE(fn.rotateBy(MEulerRotation(0, 0, 0), MSpace::kTransform));
  fn.getRotation(after);
  CHECK(before.isEquivalent(after, 1e-9));

  const double scale[] = {1, 2, 4}, by[] = {3, 1, 0.5};
  fn.setScale(scale);
  fn.scaleBy(by);
  CHECK(text("getAttr lower.sx") == "3");
  double got[3];
  fn.getScale(got);
  CHECK((got[0] == 3 && got[1] == 2 && got[2] == 2));

  // Moving the pivot with balance leaves the object where it is; without, it goes along.
  const MMatrix placed = fn.transformation().asMatrix();
  fn.setRotatePivot(MPoint(0, 5, 0), MSpace::kTransform, true);
  CHECK(fn.transformation().asMatrix().isEquivalent(placed, 1e-9));
  CHECK(
      path("lower").inclusiveMatrix().isEquivalent(placed * path("upper").inclusiveMatrix(), 1e-9));
  fn.setRotatePivot(MPoint(0, 0, 9), MSpace::kTransform, false);
  CHECK_FALSE(fn.transformation().asMatrix().isEquivalent(placed, 1e-3));

  REQUIRE(fn.setLimit(MFnTransform::kTranslateMaxX, 5));
  REQUIRE(fn.enableLimit(MFnTransform::kTranslateMaxX, true));
  CHECK(fn.isLimited(MFnTransform::kTranslateMaxX));
  CHECK_FALSE(fn.isLimited(MFnTransform::kTranslateMinX));
  CHECK(fn.limitValue(MFnTransform::kTranslateMaxX) == 5);
}

TEST_CASE_FIXTURE(ApiScene, "DAG nodes: children, parents, instances and paths") {
  run("group -em -n g; group -em -n h; polyCube -n box -ch 0; parent box g; parent -add box h;");
  MFnDagNode fn(node("box"));
  CHECK(fn.parentCount() == 2);
  CHECK(fn.instanceCount(true) == 2);
  CHECK(fn.isInstanced());
  CHECK(fn.hasParent(node("h")));
  CHECK(MFnDagNode(node("g")).isParentOf(fn.child(0)));
  MDagPathArray paths;
  fn.getAllPaths(paths);
  REQUIRE(paths.length() == 2);
  CHECK(std::string(paths[0].fullPathName().asChar()) == "|g|box");
  CHECK(std::string(paths[1].partialPathName().asChar()) == "h|box");
  CHECK(paths[1].instanceNumber() == 1);

  MDagPath path = paths[1];
  REQUIRE(path.extendToShape());
  CHECK(path.hasFn(MFn::kMesh));
  CHECK(path.length() == 3);
  CHECK(path.transform() == node("g|box"));
  path.pop(2);
  CHECK(std::string(path.fullPathName().asChar()) == "|h");
  CHECK_FALSE(path.pop(9));

  MObject child = node("g|box");
  CHECK(MFnDagNode(node("h")).removeChild(child));
  CHECK(fn.parentCount() == 1);
  CHECK(MFnDagNode(paths[0]).fullPathName() == "|g|box");
  CHECK_FALSE(paths[1].isValid());
}

TEST_CASE_FIXTURE(ApiScene, "iterators over the DAG and the graph") {
  run("group -em -n g; group -em -n h -p g; polyCube -n box; parent box h; group -em -n k -p g;");
  MItDag depth;
  REQUIRE(depth.reset(path("g")));
  CHECK(namesOf(depth) == "g h box boxShape k ");
  MItDag breadth;
  REQUIRE(breadth.reset(path("g"), MItDag::kBreadthFirst));
  CHECK(namesOf(breadth) == "g h k box boxShape ");
  MItDag pruned;
  REQUIRE(pruned.reset(path("g")));
  std::string seen;
  for (; !pruned.isDone(); pruned.next()) {
    seen += std::string(pruned.partialPathName().asChar()) + std::to_string(pruned.depth());
    if (pruned.partialPathName() == "h") pruned.prune();
  }
  CHECK(seen == "g0h1k1");
  int meshes = 0;
  for (MItDag all(MItDag::kDepthFirst, MFn::kMesh); !all.isDone(); all.next()) ++meshes;
  CHECK(meshes == 1);

  run("polySoftEdge -a 30 box");
  MObject shape = node("boxShape");
  std::string up;
  for (MItDependencyGraph it(shape, MFn::kInvalid, MItDependencyGraph::kUpstream); !it.isDone();
       it.next())
    up += std::string(MFnDependencyNode(it.currentItem()).typeName().asChar()) + " ";
  CHECK(up.find("mesh polySoftEdge polyCube") == 0);
  MObject cube = node("polyCube1");
  int found = 0;
  for (MItDependencyGraph it(cube, MFn::kMesh); !it.isDone(); it.next())
    found += it.currentItem() == shape;
  CHECK(found == 1);

  std::set<std::string> transforms;
  for (MItDependencyNodes it(MFn::kTransform); !it.isDone(); it.next())
    transforms.insert(MFnDependencyNode(it.thisNode()).name().asChar());
  CHECK(transforms.count("box") == 1);
  CHECK(transforms.count("persp") == 1);
  CHECK(transforms.count("boxShape") == 0);
}

TEST_CASE_FIXTURE(ApiScene,
                  "modifiers: all of a run or nothing, taken back and done again; handles follow") {
  run("polyCube -n box -ch 0");
  const std::size_t before = session->document().hash();
  MDagModifier modifier;
  const MObject made = modifier.createNode("transform");
  REQUIRE_FALSE(made.isNull());
  const MObjectHandle handle(made);
  modifier.renameNode(made, "made");
  modifier.reparentNode(node("box"), made);
  modifier.newPlugValueDouble(MFnDependencyNode(made).findPlug("tx", true), 4);
  modifier.commandToExecute("setAttr made.ty 5");
  REQUIRE(modifier.doIt());
  CHECK(std::string(path("box").fullPathName().asChar()) == "|made|box");
  CHECK(text("getAttr made.tx") == "4");
  CHECK(text("getAttr made.ty") == "5");
  const std::size_t after = session->document().hash();
  REQUIRE(modifier.undoIt());
  CHECK(session->document().hash() == before);
  CHECK_FALSE(handle.isValid());
  CHECK(handle.isAlive());
  REQUIRE(modifier.doIt());
  CHECK(session->document().hash() == after);
  CHECK(handle.isValid());

  MDGModifier failing;
  failing.newPlugValueDouble(MFnDependencyNode(made).findPlug("tz", true), 9);
  failing.commandToExecute("setAttr made.noSuchThing 1");
  CHECK_FALSE(failing.doIt());
  CHECK(session->document().hash() == after);
  CHECK_FALSE(MDGModifier().connect(MPlug(), MPlug()));
}

TEST_CASE_FIXTURE(ApiScene, "the status says what kind of fault it was") {
  run("createNode transform -n a; addAttr -ln own -at double a; setAttr -l on a.ty");
  MStatus status;
  MFnDependencyNode made;
  made.create("noSuchType", &status);
  CHECK(status == MS::kInvalidParameter);
  CHECK(MGlobal::sourceFile("no_such_script.mel") == MS::kNotFound);
  MFnDependencyNode fn(node("a"));
  MFnNumericAttribute number;
  const MObject twin = number.create("own", "own", MFnNumericData::kDouble);
  CHECK(fn.addAttribute(twin) == MS::kInvalidParameter);  // the name is taken
  CHECK(fn.findPlug("tx", true).setString("text") == MS::kInvalidParameter);
  CHECK(fn.findPlug("ty", true).setDouble(1) == MS::kFailure);  // locked: nothing wrong with 1
  MObject time = node("time1");
  CHECK(MGlobal::deleteNode(time) == MS::kFailure);
}
