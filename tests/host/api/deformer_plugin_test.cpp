// A plug-in's deformer with weights and a ramp, and its node that measures curves.
#include <maya/MFloatArray.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MFnWeightGeometryFilter.h>
#include <maya/MItCurveCV.h>
#include <maya/MItGeometry.h>
#include <maya/MRampAttribute.h>

#include <cmath>
#include <filesystem>
#include <numbers>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Waves : ApiScene {
  Waves() {
    REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/wave_deformer.so"));
    run("polyPlane -n sheet -w 4 -h 4 -sx 4 -sy 4 -ch 0; deformer -n w -type waveDeformer sheet;"
        "setAttr w.profile[0].profile_Position 0; setAttr w.profile[0].profile_FloatValue 1;"
        "setAttr w.profile[1].profile_Position 2; setAttr w.profile[1].profile_FloatValue 0;");
  }
  ~Waves() { session.reset(); }
  host::MessageCapture quiet;
  double number(const std::string& mel) { return run(mel).toFloat().value_or(-1e9); }
  /// The world height of a vertex.
  double height(const std::string& vertex) {
    run("float $at[] = `pointPosition -w " + vertex + "`;");
    return number("$at[1]");
  }
};

}  // namespace

TEST_CASE_FIXTURE(Waves, "a deformer moves points by its ramp, weights and envelope, live") {
  CHECK(height("sheet.vtx[12]") == doctest::Approx(1));    // in the middle
  CHECK(height("sheet.vtx[13]") == doctest::Approx(0.5));  // one away
  CHECK(height("sheet.vtx[0]") == doctest::Approx(0).epsilon(1e-6));
  run("setAttr w.height 3");
  CHECK(height("sheet.vtx[12]") == doctest::Approx(3));
  run("setAttr w.weightList[0].weights[12] 0.25; percent -v 0.5 w sheet.vtx[13]");
  CHECK(height("sheet.vtx[12]") == doctest::Approx(0.75));
  CHECK(height("sheet.vtx[13]") == doctest::Approx(0.75));
  run("setAttr w.envelope 0.5");
  CHECK(height("sheet.vtx[12]") == doctest::Approx(0.375));
  run("setAttr w.nodeState 1");
  CHECK(height("sheet.vtx[12]") == doctest::Approx(0).epsilon(1e-6));
  run("undo; undo");
  CHECK(height("sheet.vtx[12]") == doctest::Approx(0.75));
}

TEST_CASE_FIXTURE(Waves, "the first look at a deformed mesh finds no cycle in its own matrix") {
  run("polyCube -n fresh -ch 0; deformer -n f -type waveDeformer fresh;");
  run("polyEvaluate -v fresh");
  CHECK(quiet.text(host::MessageKind::Warning).find("itself") == std::string::npos);
}

TEST_CASE_FIXTURE(Waves, "what a deformer is given takes the geometry to the world") {
  run("setAttr sheet.tx 1; setAttr sheet.sy 2; setAttr sheet.ty 5");
  // The vertex at the world's origin is the one to the left of the middle now.
  CHECK(height("sheet.vtx[11]") == doctest::Approx(6));
  CHECK(height("sheet.vtx[12]") == doctest::Approx(5.5));
}

TEST_CASE_FIXTURE(Waves, "several geometries, parts of one, and geometries that come and go") {
  run("polyPlane -n other -w 4 -h 4 -sx 4 -sy 4 -ch 0; deformer -e -g other w;");
  CHECK(text("size(`deformer -q -g w`)") == "2");
  CHECK(height("other.vtx[12]") == doctest::Approx(1));
  run("setAttr w.weightList[1].weights[12] 0");
  CHECK(height("other.vtx[12]") == doctest::Approx(0).epsilon(1e-6));
  CHECK(height("sheet.vtx[12]") == doctest::Approx(1));
  run("polyPlane -n part -w 4 -h 4 -sx 4 -sy 4 -ch 0;"
      "deformer -n p -type waveDeformer part.vtx[13] part.vtx[11];"
      "setAttr p.profile[0].profile_FloatValue 2;");
  CHECK(height("part.vtx[12]") == doctest::Approx(0).epsilon(1e-6));
  CHECK(height("part.vtx[13]") == doctest::Approx(2));
  run("deformer -e -rm -g sheet w");
  CHECK(height("sheet.vtx[12]") == doctest::Approx(0).epsilon(1e-6));
  CHECK(height("other.vtx[7]") == doctest::Approx(0.5));
  run("undo");
  CHECK(height("sheet.vtx[12]") == doctest::Approx(1));
  run("delete -ch sheet");
  CHECK(height("sheet.vtx[12]") == doctest::Approx(1));
  CHECK(text("objExists waveCenter") == "1");  // what the deformer made beside itself
}

TEST_CASE_FIXTURE(Waves,
                  "UVs are projected from the mesh at rest unless they are to see it moved") {
  const auto after = [&](const char* node) {
    return text(std::string("string $to[] = `listConnections -s 0 -d 1 -sh 1 ") + node +
                ".output`; $to[0]");
  };
  run("setAttr w.height 30");
  for (const char* command :
       {"polyPlanarProjection", "polyAutoProjection", "polyCylindricalProjection",
        "polySphericalProjection", "polyNormalizeUV", "polyFlipUV", "polyCopyUV -cm 1 -uvs more"}) {
    CAPTURE(std::string(command));
    run(std::string("string $made[] = `") + command + " sheet.f[*]`;");
    CHECK(after(text("$made[0]").c_str()) == "w");
    CHECK(height("sheet.vtx[12]") == doctest::Approx(30));
    run(std::string("$made = `") + command + " -ibd 0 sheet.f[*]`;");
    CHECK(after(text("$made[0]").c_str()) == "sheetShape");
    CHECK(height("sheet.vtx[12]") == doctest::Approx(30));
    run("undo");
    run("undo");
  }
  run("polyPlane -n other -ch 0");
  for (const bool isFront : {false, true}) {
    run(std::string("string $made[] = `transferAttributes -uvs 2 -sm 3 ") +
        (isFront ? "-foc" : "-af") + " other sheet`;");
    CHECK(after(text("$made[0]").c_str()) == (isFront ? "w" : "sheetShape"));
    CHECK(height("sheet.vtx[12]") == doctest::Approx(30));
    run("undo");
  }
  // At rest the sheet is flat: seen from above its middle is that of the map, whatever the wave.
  run("polyPlanarProjection -md x sheet.f[*]; float $flat = `getAttr polyPlanarProj1.ph`;");
  run("undo");
  run("polyPlanarProjection -md x -ibd 0 sheet.f[*]; float $high = `getAttr polyPlanarProj1.ph`;");
  CHECK(number("$flat") < 2);
  CHECK(number("$high") > 25);
}

TEST_CASE_FIXTURE(Waves, "a deformer is saved with ramp and weights, and opened again") {
  const std::string file =
      (std::filesystem::temp_directory_path() / "qxmt_wave_deformer.ma").string();
  run("setAttr w.weightList[0].weights[12] 0.25; file -f -rename \"" + file +
      "\"; file -f -save -type mayaAscii; file -f -open \"" + file + "\"");
  std::filesystem::remove(file);
  CHECK(height("sheet.vtx[12]") == doctest::Approx(0.25));
  CHECK(height("sheet.vtx[13]") == doctest::Approx(0.5));
}

TEST_CASE_FIXTURE(Waves, "function sets read and write weights, ramps and points") {
  MFnWeightGeometryFilter filter(node("w"));
  MFloatArray weights;
  CHECK(filter.setWeight(path("sheetShape"), MObject(), 0.5F));
  CHECK(filter.getWeights(path("sheetShape"), MObject(), weights));
  CHECK(weights.length() == 25);
  CHECK(weights[7] == 0.5F);
  CHECK(height("sheet.vtx[12]") == doctest::Approx(0.5));
  CHECK(filter.numOutputConnections() == 1);

  MRampAttribute ramp(filter.findPlug("profile", true));
  MFloatArray positions, values;
  MIntArray indices, kinds;
  positions.append(1);
  values.append(4);
  kinds.append(MRampAttribute::kLinear);
  ramp.addEntries(positions, values, kinds);
  CHECK(ramp.getNumEntries() == 3);
  float value = 0;
  ramp.getValueAtPosition(0.5F, value);
  CHECK(value == doctest::Approx(2.5));
  ramp.getValueAtPosition(1.5F, value);
  CHECK(value == doctest::Approx(2));

  run("polyCube -n box -ch 0; move 0 5 0");
  MItGeometry points(path("box"));
  CHECK(points.count() == 8);
  for (; !points.isDone(); points.next())
    points.setPosition(points.position(MSpace::kWorld) + MVector(0, 1, 0), MSpace::kWorld);
  CHECK(height("box.vtx[0]") == doctest::Approx(5.5));
}

TEST_CASE_FIXTURE(Waves, "curves: made, measured on threads, walked and moved") {
  run("string $c[] = `circle -n ring -r 2 -s 24`; createNode curveMeter -n meter;"
      "connectAttr ringShape.local meter.inputCurve;");
  const double around = 2 * std::numbers::pi * 2;
  CHECK(number("getAttr meter.curveLength") == doctest::Approx(around).epsilon(1e-4));
  CHECK(number("getAttr meter.sampledLength") == doctest::Approx(around).epsilon(1e-4));
  run("circle -e -r 4 ring");
  CHECK(number("getAttr meter.curveLength") == doctest::Approx(2 * around).epsilon(1e-4));

  run("curve -n line -d 1 -p 0 0 0 -p 3 0 0 -p 3 4 0; setAttr line.ty 10");
  MFnNurbsCurve line(path("line"));
  CHECK(line.degree() == 1);
  CHECK(line.length() == doctest::Approx(7));
  CHECK(line.findParamFromLength(5) == doctest::Approx(1.5));
  double parameter = 0;
  const MPoint near = line.closestPoint(MPoint(5, 12, 0), &parameter, 1e-3, MSpace::kWorld);
  CHECK(near.isEquivalent(MPoint(3, 12, 0), 1e-6));
  CHECK(parameter == doctest::Approx(1.5));
  CHECK(line.tangent(1.5).isEquivalent(MVector(0, 1, 0), 1e-9));
  for (MItCurveCV cv(path("line")); !cv.isDone(); cv.next()) cv.translateBy(MVector(0, 1, 0));
  CHECK(text("arclen line") == "7");
  MPoint moved;
  line.getCV(0, moved);
  CHECK(moved.y == 1);

  MFnNurbsCurveData dataFn;
  const MObject data = dataFn.create();
  MPointArray places;
  for (int i = 0; i < 5; ++i) places.append(MPoint(i, i % 2, 0));
  MFnNurbsCurve through;
  REQUIRE(!through.createWithEditPoints(places, 3, MFnNurbsCurve::kOpen, false, false, false, data)
               .isNull());
  MPoint at;
  double first = 0, last = 0;
  through.getKnotDomain(first, last);
  through.getPointAtParam(last, at);
  CHECK(at.isEquivalent(places[4], 1e-6));
  CHECK(through.distanceToPoint(places[2]) < 1e-6);
}
