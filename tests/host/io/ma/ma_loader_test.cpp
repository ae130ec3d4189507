#include "host/mesh/hash.h"
#include "tests/host/io/ma/ma_fixture.h"

using namespace host;
using io::test::MaScene;

TEST_CASE("loaded scenes: unknown nodes keep their lines and connections, and are written back") {
  const std::string text = R"(requires "someShaders" "1.2";
dataStructure -fmt "raw" -as "name=table";
createNode transform -n "box";
createNode mesh -n "boxShape" -p "box";
	setAttr ".dr" 3;
createNode strangeGroup -n "group7" -p "box";
	setAttr ".t" -type "double3" 1 2 3 ;
	setAttr ".glow" -type "float3" 1 0 0.5 ;
createNode strangeShape -n "below" -p "group7";
	setAttr -k off ".v";
createNode strangeShader -n "shader1";
	addAttr -ci true -h true -sn "aal" -ln "attributeAliasList" -dt "attributeAlias";
	addAttr -ci true -sn "more" -ln "more" -at "double";
	setAttr ".more" 5;
	setAttr ".w[0:2]"  1 0.5 2;
	setAttr ".aal" -type "attributeAlias" {"a","weight[0]","b","weight[1]"} ;
lockNode -l 1 ;
select -ne :strangeDefaults;
	setAttr ".x" 4;
connectAttr "shader1.out" "boxShape.i";
connectAttr "boxShape.w" "shader1.ip[0].ig";
connectAttr "shader1.msg" ":strangeList1.s" -na;
connectAttr "boxShape.ciog.cog[0]" ":initialShadingGroup.dsm" -na;
relationship "link" ":strangeLinker" ":initialShadingGroup.message" ":defaultLightSet.message";
applyMetadata -fmt "raw" -scn;
// End of scene.ma
)";
  MaScene scene;
  const io::MaLoaded loaded = scene.open(text);
  CHECK(scene->nodesNamed("group7").front()->type().name == "unknownTransform");
  CHECK(scene.real("group7.translateY") == 2);
  CHECK(scene->nodesNamed("below").front()->type().name == "unknownDag");
  CHECK(scene->nodesNamed("shader1").front()->type().name == "unknown");
  CHECK(scene->nodesNamed("shader1").front()->isLocked());
  CHECK_FALSE(loaded.warnings.empty());

  const std::string saved = scene.save();
  for (const char* line :
       {"requires \"someShaders\" \"1.2\";\n", "dataStructure -fmt \"raw\" -as \"name=table\";\n",
        "createNode strangeGroup -n \"group7\" -p \"box\";\n",
        "createNode strangeShape -n \"below\" -p \"group7\";\n",
        "\tsetAttr \".glow\" -type \"float3\" 1 0 0.5 ;\n",
        "createNode strangeShader -n \"shader1\";\n", "\tsetAttr \".more\" 5;\n",
        "\tsetAttr \".w[0:2]\"  1 0.5 2;\n", "{\"a\",\"weight[0]\",\"b\",\"weight[1]\"} ;\n",
        "select -ne :strangeDefaults;\n\tsetAttr \".x\" 4;\n",
        "connectAttr \"shader1.out\" \"boxShape.i\";\n",
        "connectAttr \"boxShape.w\" \"shader1.ip[0].ig\";\n",
        "connectAttr \"shader1.msg\" \":strangeList1.s\" -na;\n",
        "connectAttr \"boxShape.ciog.cog[0]\" \":initialShadingGroup.dsm\" -na;\n",
        "relationship \"link\" \":strangeLinker\"", "applyMetadata -fmt \"raw\" -scn;\n"}) {
    CAPTURE(line);
    CHECK(saved.find(line) != std::string::npos);
  }
  MaScene again;
  again.open(saved);
  CHECK(again.save() == saved);
  CHECK(again->hash() == scene->hash());

  // What is kept follows its node: renamed, then gone.
  REQUIRE(scene.graph().setNodeLocked(*scene->nodesNamed("shader1").front(), false));
  REQUIRE(scene->rename(*scene->nodesNamed("shader1").front(), "glass"));
  CHECK(scene.save().find("connectAttr \"glass.out\" \"boxShape.i\";\n") != std::string::npos);
  REQUIRE(scene->deleteNodes({scene->nodesNamed("glass").front()}));
  const std::string without = scene.save();
  CHECK(without.find("strangeShader") == std::string::npos);
  CHECK(without.find("glass") == std::string::npos);
}

TEST_CASE("loaded scenes: connections find elements, instances and nodes of the same name") {
  MaScene scene;
  CHECK(scene
            .open(R"(createNode transform -n "a";
createNode transform -n "part" -p "a";
createNode mesh -n "partShape" -p "part";
createNode transform -n "b";
createNode transform -n "part" -p "|b";
	setAttr ".tx" 4;
parent -s -nc -r -add "|a|part|partShape" "|b|part";
createNode polyCube -n "polyCube1";
	setAttr ".w" 3;
createNode objectSet -n "set1";
connectAttr "polyCube1.out" "|a|part|partShape.i";
connectAttr "|b|part|partShape.iog" "set1.dsm" -na;
connectAttr "|a|part|partShape.iog" "set1.dsm" -na;
connectAttr "|b|part.tx" "a.ty" -l on;
// End
)")
            .warnings.empty());
  CHECK(scene.mesh("|b|part|partShape").vertexCount() == 8);
  CHECK(scene.graph().source(scene.plug("set1.dagSetMembers[0]")) ==
        scene.plug("partShape.instObjGroups[1]"));
  CHECK(scene.graph().source(scene.plug("set1.dagSetMembers[1]")) ==
        scene.plug("partShape.instObjGroups[0]"));
  CHECK(scene.real("a.translateY") == 4);
  CHECK(scene.graph().flag(scene.plug("a.translateY"), dg::Graph::PlugFlag::Locked));
  const std::string saved = scene.save();
  MaScene again;
  again.open(saved);
  CHECK(again->hash() == scene->hash());
}

TEST_CASE("loaded scenes: imports rename what clashes and leave cameras and settings alone") {
  const std::string text = R"(currentUnit -l meter -a degree -t pal;
createNode transform -s -n "persp";
	setAttr ".t" -type "double3" 7 7 7 ;
createNode transform -n "box";
	setAttr ".t" -type "double3" 1 0 0 ;
createNode mesh -n "boxShape" -p "box";
createNode transform -n "fresh" -p "box";
createNode polyCube -n "polyCube1";
connectAttr "polyCube1.out" "boxShape.i";
connectAttr "boxShape.iog" ":initialShadingGroup.dsm" -na;
// End
)";
  MaScene scene;
  scene.open(text);
  const double before = scene.real("persp.translateX");
  scene.document->setUnits({});
  const auto again = scene.load(text, {.isImport = true, .clashPrefix = "two", .nameSpace = {}});
  REQUIRE(again);
  CHECK(again->warnings.empty());
  CHECK(again->nodes.size() == 4);
  CHECK(scene->nodesNamed("two_box").size() == 1);
  CHECK(scene->nodesNamed("two_fresh").size() == 1);
  CHECK(scene.real("two_box.translateX") == 100);
  CHECK(scene.mesh("two_boxShape").vertexCount() == 8);
  CHECK(scene.real("persp.translateX") == before);
  CHECK(scene->units().linear == scene::LinearUnit::Centimeter);
  REQUIRE(scene.load(text, {.isImport = true, .clashPrefix = {}, .nameSpace = "props"}));
  CHECK(scene.mesh("props:boxShape").vertexCount() == 8);
  REQUIRE(scene.load(text,
                     {.isImport = true, .clashPrefix = "p", .renamesAll = true, .nameSpace = {}}));
  CHECK(scene->nodesNamed("p_fresh").size() == 1);
}

TEST_CASE("loaded scenes: values of every form") {
  MaScene scene;
  const io::MaLoaded loaded = scene.open(R"(currentUnit -l inch -a degree -t film;
createNode transform -n "t";
	addAttr -ci true -sn "mx" -ln "mx" -dt "matrix";
	addAttr -ci true -sn "ia" -ln "ints" -dt "Int32Array";
	addAttr -ci true -sn "sa" -ln "texts" -dt "stringArray";
	addAttr -ci true -sn "va" -ln "vectors" -dt "vectorArray";
	addAttr -ci true -m -sn "w" -ln "w" -at "double" -min 0 -max 3;
	addAttr -ci true -sn "pair" -ln "pair" -at "compound" -nc 2;
	addAttr -ci true -m -sn "ca" -ln "ca" -at "bool" -p "pair";
	addAttr -ci true -sn "cb" -ln "cb" -dt "string" -p "pair";
	addAttr -ci true -k true -sn "ang" -ln "ang" -dv 90 -at "doubleAngle";
	setAttr ".t" -type "double3" 1 -2.5e-001 1e-420 ;
	setAttr ".ry" 45;
	setAttr ".mx" -type "matrix" 1 0 0 0 0 1 0 0 0 0 1 0 5 6 7 1;
	setAttr ".ia" -type "Int32Array" 3 1 -2147483648 7 ;
	setAttr ".sa" -type "stringArray" 2 "one" "two \"2\""  ;
	setAttr ".va" -type "vectorArray" 2 1 2 3 4 5 6 ;
	setAttr -s 3 ".w";
	setAttr ".w[0]" 1;
	setAttr ".w[4:5]" 2 3;
	setAttr ".pair.ca[1]" yes;
	setAttr ".cb" -type "string" ( "first "
		+ "second" + " third");
	setAttr ".v" off;
	setAttr -l on -k off ".sx" 2;
	setAttr ".sy" sometimes;
// End
)");
  REQUIRE(loaded.warnings.size() == 1);
  CHECK(loaded.warnings[0].starts_with("scene.ma:26: 'sometimes' is not a value"));
  CHECK(scene.real("t.translateX") == 2.54);
  CHECK(scene.real("t.translateZ") == 0);
  CHECK(scene.real("t.rotateY") == scene::Units().toRadians(45));
  CHECK(scene.matrix("t.mx")[3][1] == 6);
  const auto read = [&](const char* plug) { return *scene.graph().get(scene.plug(plug)); };
  CHECK(dg::dataAs<dg::IntArrayData>(read("t.ints"))->value ==
        std::vector<std::int32_t>{1, std::numeric_limits<std::int32_t>::min(), 7});
  CHECK(dg::dataAs<dg::StringArrayData>(read("t.texts"))->value ==
        std::vector<std::string>{"one", "two \"2\""});
  CHECK(dg::dataAs<dg::VectorArrayData>(read("t.vectors"))->value[1] == math::Vec3(4, 5, 6));
  CHECK(scene.graph().elementIndices(scene.plug("t.w")) == std::vector<Index>{0, 4, 5});
  CHECK(scene.real("t.w[5]") == 3);
  CHECK(dg::equal(read("t.ca[1]"), std::int64_t{1}));
  CHECK(dg::equal(read("t.cb"), std::string("first second third")));
  CHECK(scene.real("t.ang") == scene::Units().toRadians(90));
  CHECK(scene.real("t.scaleX") == 2);
  CHECK_FALSE(scene.graph().set(scene.plug("t.scaleX"), 3.0));
  MaScene again;
  again.open(scene.save());
  CHECK(again.save() == scene.save());
  CHECK(again->hash() == scene->hash());
}

TEST_CASE("loaded scenes: few words cannot ask for more memory than there is") {
  MaScene scene;
  const auto loaded = scene.open(R"(createNode groupParts -n "parts";
	setAttr ".ic" -type "componentList" 2 "f[0:2000000000]" "vtxFace[0:99999][0:99999]";
createNode transform -n "t";
	addAttr -ln "deep" -sn "deep" -at "compound" -nc 2000000000;
	addAttr -ci true -m -sn "w" -ln "w" -at "double";
	setAttr ".w[0:2000000000]" 1 2;
	setAttr ".w[2147483647]" 1;
	setAttr ".w[2000000000]" 1;
// End
)");
  CHECK(loaded.warnings.size() >= 3);
  CHECK(scene.graph().elementCount(scene.plug("t.w")) == 1);
}

TEST_CASE("scenes: nodes of unknown types that have several places keep them") {
  const std::string text = R"(//Maya ASCII 2016 scene
requires maya "2016";
createNode strangeGroup -n "above";
createNode strangeThing -n "thing";
parent -s -nc -r -add "|thing" "above";
// End of scene.ma
)";
  MaScene scene;
  (void)scene.open(text);
  CHECK(scene::allPaths(*scene->nodesNamed("thing").front()).size() == 2);
  const std::string once = scene.save();
  MaScene again;
  (void)again.open(once);
  CHECK(scene::allPaths(*again->nodesNamed("thing").front()).size() == 2);
  CHECK(again.save() == once);
}

TEST_CASE("scenes: selected nodes that are not there keep names that look like numbers") {
  MaScene scene;
  (void)scene.open("//Maya ASCII 2016 scene\nselect -ne \"Inf\";\n\tsetAttr \".x\" 4;\n");
  const std::string once = scene.save();
  CHECK(once.find("select -ne \"Inf\";\n\tsetAttr \".x\" 4;\n") != std::string::npos);
  MaScene again;
  (void)again.open(once);
  CHECK(again.save() == once);
}
