#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnSet.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MGlobal.h>
#include <maya/MItSelectionList.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>
#include <maya/MVectorArray.h>

#include "tests/host/api/api_scene.h"

namespace {

MObject vertices(std::initializer_list<int> ids) {
  MFnSingleIndexedComponent fn;
  const MObject component = fn.create(MFn::kMeshVertComponent);
  for (const int id : ids) fn.addElement(id);
  return component;
}

}  // namespace

TEST_CASE("components: sorted, each element once; complete ones name none") {
  MFnSingleIndexedComponent fn;
  const MObject list = fn.create(MFn::kMeshPolygonComponent);
  const int ids[] = {7, 2, 2, 9};
  fn.addElements(MIntArray(ids, 4));
  fn.addElement(2);
  REQUIRE(fn.elementCount() == 3);
  CHECK((fn.element(0) == 2 && fn.element(2) == 9));
  CHECK(fn.componentType() == MFn::kMeshPolygonComponent);
  CHECK(list.hasFn(MFn::kSingleIndexedComponent));
  MStatus status;
  fn.element(3, &status);
  CHECK_FALSE(status);
  CHECK_FALSE(fn.isComplete());
  fn.setCompleteData(12);
  int count = 0;
  fn.getCompleteData(count);
  CHECK((fn.isComplete() && count == 12 && fn.elementCount() == 12));

  MFnDoubleIndexedComponent corners;
  corners.create(MFn::kMeshVtxFaceComponent);
  corners.addElement(3, 1);
  corners.addElement(0, 5);
  int vertex = -1, face = -1;
  REQUIRE(corners.getElement(0, vertex, face));
  CHECK((corners.elementCount() == 2 && vertex + face == 5 - 0 - (vertex == 3 ? 1 : 0)));
  CHECK_FALSE(MFnSingleIndexedComponent(list).create(MFn::kMesh).hasFn(MFn::kMesh));
}

TEST_CASE_FIXTURE(ApiScene,
                  "selection lists: merging, removing, toggling and intersecting components") {
  run("polyCube -n box -ch 0; polyCube -n can -ch 0;");
  const MDagPath box = path("boxShape"), can = path("canShape");
  MSelectionList list;
  list.add(box, vertices({0, 1, 2}));
  list.add(box, vertices({2, 3}), true);
  CHECK(textOf(list) == "box.vtx[0:3]");
  CHECK(list.hasItem(box, vertices({1, 3})));
  CHECK_FALSE(list.hasItem(box, vertices({1, 4})));
  CHECK(list.hasItemPartly(box, vertices({1, 4})));
  MSelectionList other;
  other.add(box, vertices({1, 6}));
  other.add(can);
  MSelectionList merged(list);
  merged.merge(other);
  CHECK(textOf(merged).find("box.vtx[0:3] box.vtx[6]") == 0);
  CHECK(merged.length() == 2);
  MSelectionList removed(list);
  removed.merge(other, MSelectionList::kRemoveFromList);
  CHECK(textOf(removed) == "box.vtx[0] box.vtx[2:3]");
  MSelectionList toggled(list);
  toggled.merge(other, MSelectionList::kXORWithList);
  CHECK(toggled.hasItem(box, vertices({0, 2, 3, 6})));
  CHECK_FALSE(toggled.hasItemPartly(box, vertices({1})));
  CHECK(toggled.hasItem(can));
  MSelectionList common(list);
  common.intersect(other);
  CHECK(textOf(common) == "box.vtx[1]");
  CHECK_FALSE(list.add("noSuchNode"));
  CHECK_FALSE(list.add("box.vtx[90:99]"));
  CHECK(textOf(list) == "box.vtx[0:3]");
  MSelectionList wild;
  REQUIRE(wild.add("box*.f[1:2]"));
  CHECK(textOf(wild) == "box.f[1:2]");
}

TEST_CASE_FIXTURE(ApiScene, "sets: members, union, intersection and the partition rule's errors") {
  run("polyCube -n box -ch 0; group -em -n g; sets -em -n s; sets -n t box.f[0:1] g;");
  MFnSet set(node("s"));
  MSelectionList members;
  REQUIRE(set.addMember(path("boxShape"), vertices({1, 2})));
  REQUIRE(set.addMember(node("g")));
  REQUIRE(set.getMembers(members, false));
  CHECK(textOf(members) == "box.vtx[1:2] g");
  CHECK(set.isMember(node("g")));
  CHECK(set.isMember(path("boxShape"), vertices({2})));
  CHECK_FALSE(set.isMember(path("boxShape"), vertices({5})));
  MSelectionList both;
  set.getIntersection(node("t"), both);
  CHECK(textOf(both) == "g");
  both.clear();
  set.getUnion(node("t"), both);
  CHECK(both.hasItem(node("g")));
  CHECK(both.hasItem(path("boxShape"), vertices({1})));
  REQUIRE(set.removeMember(path("boxShape"), vertices({1})));
  CHECK_FALSE(set.isMember(path("boxShape"), vertices({1})));
  REQUIRE(set.clear());
  members.clear();
  set.getMembers(members, false);
  CHECK(members.isEmpty());

  MSelectionList list;
  list.add("g");
  MStatus status;
  const MObject made = MFnSet().create(list, MFnSet::kNone, &status);
  REQUIRE(status);
  CHECK(text("sets -im " + std::string(MFnDependencyNode(made).name().asChar()) + " g") == "1");
}

TEST_CASE("data objects hold copies of what they were made from") {
  MIntArray numbers(3, 7);
  MFnIntArrayData integers;
  const MObject data = integers.create(numbers);
  numbers[0] = 1;
  CHECK((integers.length() == 3 && integers[0] == 7));
  integers.set(5, 1);
  CHECK(MFnIntArrayData(data)[1] == 5);
  CHECK_FALSE(integers.set(5, 9));
  MStatus status;
  MFnPointArrayData(data, &status);
  CHECK_FALSE(status);

  MMatrix matrix;
  matrix[3][1] = 4;
  MFnMatrixData matrices;
  const MObject held = matrices.create(matrix);
  CHECK((MFnMatrixData(held).matrix() == matrix && !matrices.isTransformation()));
  MFnNumericData triple;
  triple.create(MFnNumericData::k3Double);
  triple.setData(1.0, 2.0, 3.0);
  double x = 0, y = 0, z = 0;
  REQUIRE(triple.getData(x, y, z));
  CHECK((x == 1 && z == 3));
  CHECK_FALSE(triple.getData(x, y));

  MFnComponentListData lists;
  const MObject components = lists.create();
  lists.add(vertices({1}));
  lists.add(vertices({4, 5}));
  CHECK((lists.length() == 2 && lists.has(vertices({4, 5})) && !lists.has(vertices({9}))));
  lists.remove(0u);
  CHECK(MFnSingleIndexedComponent(MFnComponentListData(components)[0]).elementCount() == 2);
}

TEST_CASE_FIXTURE(ApiScene, "typed attributes take data objects and give them back") {
  run("createNode transform -n a");
  MFnDependencyNode fn(node("a"));
  MFnTypedAttribute typed;
  MFnPointArrayData points;
  MPointArray values(2, MPoint(1, 2, 3));
  REQUIRE(
      fn.addAttribute(typed.create("places", "pls", MFnData::kPointArray, points.create(values))));
  MObject data;
  MPlug plug = fn.findPlug("places", true);
  REQUIRE(plug.getValue(data));
  CHECK(MFnPointArrayData(data).length() == 2);  // the default
  values.append(MPoint(4, 5, 6));
  REQUIRE(plug.setValue(MFnPointArrayData().create(values)));
  REQUIRE(plug.getValue(data));
  CHECK(MFnPointArrayData(data)[2] == MPoint(4, 5, 6));
  CHECK_FALSE(plug.setValue(MFnIntArrayData().create()));  // of another type
  CHECK(text("getAttr -type a.places") == "pointArray");

  REQUIRE(fn.addAttribute(typed.create("words", "wds", MFnData::kStringArray)));
  const char* const words[] = {"one", "two"};
  REQUIRE(fn.findPlug("words", true).setValue(MFnStringArrayData().create(MStringArray(words, 2))));
  CHECK(text("size(`getAttr a.words`)") == "2");
}

TEST_CASE_FIXTURE(ApiScene, "selection iterator: filters by component type and by node type") {
  run("polyCube -n box -ch 0; group -em -n g; select -r box.vtx[1:2] box.e[3] g;");
  MSelectionList list;
  MGlobal::getActiveSelectionList(list);
  int vertexItems = 0, edgeItems = 0, others = 0;
  for (MItSelectionList it(list, MFn::kMeshVertComponent); !it.isDone(); it.next()) {
    MDagPath path;
    MObject component;
    REQUIRE(it.getDagPath(path, component));
    vertexItems += MFnSingleIndexedComponent(component).elementCount();
  }
  for (MItSelectionList it(list, MFn::kMeshEdgeComponent); !it.isDone(); it.next()) ++edgeItems;
  for (MItSelectionList it(list, MFn::kTransform); !it.isDone(); it.next()) ++others;
  CHECK(vertexItems == 2);
  CHECK(edgeItems == 1);
  CHECK(others >= 1);
}
