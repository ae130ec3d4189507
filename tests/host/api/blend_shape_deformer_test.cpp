// Blended meshes as a plug-in makes, reads and changes them.
#include <maya/MFloatArray.h>
#include <maya/MFnBlendShapeDeformer.h>
#include <maya/MFnWeightGeometryFilter.h>
#include <maya/MSelectionList.h>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Blended : ApiScene {
  Blended() {
    run("polyCube -ch 0 -n base; polyCube -ch 0 -n up; polyCube -ch 0 -n half;"
        "move -r 0 2 0 up.vtx[3]; move -r 0 2 0 half.vtx[3]; polySphere -ch 0 -n ball");
  }
  host::MessageCapture quiet;

  static MObject node(const char* name) {
    MSelectionList list;
    REQUIRE(list.add(name));
    MObject object;
    REQUIRE(list.getDependNode(0, object));
    return object;
  }
  double height() {
    run("float $at[] = `pointPosition -w base.vtx[3]`;");
    return run("$at[1]").toFloat().value_or(-1e9);
  }
};

}  // namespace

TEST_CASE_FIXTURE(Blended, "a plug-in makes a blendShape with targets and shapes in between") {
  MStatus status;
  MFnBlendShapeDeformer blend;
  const MObject made = blend.create(node("base"), MFnBlendShapeDeformer::kLocalOrigin, &status);
  REQUIRE(status);
  CHECK(made.hasFn(MFn::kBlendShape));
  CHECK(made.hasFn(MFn::kGeometryFilt));
  REQUIRE(blend.addTarget(node("base"), 3, node("up"), 1));
  CHECK(blend.setWeight(3, 0.5F));
  CHECK(height() == doctest::Approx(1.5));
  REQUIRE(blend.addTarget(node("base"), 3, node("half"), 0.5));
  CHECK(height() == doctest::Approx(2.5));
  MIntArray items;
  REQUIRE(blend.targetItemIndexList(3, node("base"), items));
  REQUIRE(items.length() == 2);
  CHECK(items[0] == 5500);
  CHECK(items[1] == 6000);
  MObjectArray targets;
  REQUIRE(blend.getTargets(node("base"), 3, targets));
  REQUIRE(targets.length() == 2);
  CHECK(MFnDependencyNode(targets[1]).name() == "upShape");
  REQUIRE(blend.removeTarget(node("base"), 3, node("half"), 0.5));
  CHECK(height() == doctest::Approx(1.5));
  CHECK(blend.weight(3) == 0.5F);
  MIntArray indices;
  REQUIRE(blend.weightIndexList(indices));
  CHECK((indices.length() == 1 && indices[0] == 3 && blend.numWeights() == 1));
  CHECK(run("getAttr blendShape1.up").toFloat().value_or(0) == doctest::Approx(0.5));
}

TEST_CASE_FIXTURE(Blended, "what does not fit is refused and changes nothing") {
  run("blendShape -n bs -w 0 1 up base");
  MFnBlendShapeDeformer blend(node("bs"));
  CHECK_FALSE(blend.addTarget(node("base"), 1, node("ball"), 1));
  CHECK_FALSE(blend.addTarget(node("up"), 1, node("half"), 1));
  CHECK_FALSE(blend.addTarget(node("base"), 0, node("half"), 1));
  CHECK_FALSE(blend.addTarget(node("base"), 1, node("half"), 0));
  CHECK_FALSE(blend.addTarget(node("base"), -1, node("half"), 1));
  CHECK_FALSE(blend.setWeight(7, 1));
  MStatus status;
  blend.weight(7, &status);
  CHECK_FALSE(status);
  CHECK(blend.numWeights() == 1);
  CHECK(height() == doctest::Approx(2.5));
  CHECK_FALSE(MFnBlendShapeDeformer(node("up"), &status).setWeight(0, 1));
  CHECK_FALSE(status);
  CHECK(blend.origin() == MFnBlendShapeDeformer::kLocalOrigin);
  CHECK(blend.setOrigin(MFnBlendShapeDeformer::kWorldOrigin));
  run("setAttr up.ty 4");
  CHECK(height() == doctest::Approx(6.5));
  REQUIRE(blend.addBaseObject(node("half")));
  MObjectArray bases;
  REQUIRE(blend.getBaseObjects(bases));
  CHECK(bases.length() == 2);
}

TEST_CASE_FIXTURE(Blended, "weights of a cluster are those that a plug-in sets") {
  run("cluster -n cl base; setAttr clHandle.ty 4");
  MFnWeightGeometryFilter cluster(node("cl"));
  CHECK(node("cl").hasFn(MFn::kClusterFilter));
  CHECK(node("clHandleShape").hasFn(MFn::kCluster));
  MSelectionList list;
  REQUIRE(list.add("base.vtx[3]"));
  MDagPath path;
  MObject vertex;
  REQUIRE(list.getDagPath(0, path, vertex));
  MFloatArray weights;
  REQUIRE(cluster.setWeight(path, vertex, 0.25F, &weights));
  REQUIRE(weights.length() == 1);
  CHECK(weights[0] == 1);
  CHECK(height() == doctest::Approx(1.5));
}
