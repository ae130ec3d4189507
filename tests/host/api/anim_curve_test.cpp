#include <maya/MAnimCurveChange.h>
#include <maya/MCommandMessage.h>
#include <maya/MFnAnimCurve.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnTransform.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MPointArray.h>

#include <string>
#include <vector>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Keys : ApiScene {
  Keys() { run("polyCube -n box; currentUnit -t film"); }
  MPlug plug(const char* attribute) { return MFnTransform(path("box")).findPlug(attribute, true); }
};

}  // namespace

TEST_CASE_FIXTURE(
    Keys, "animation curves: made for a plug, their keys drive it, at frames and in its units") {
  MStatus status;
  MFnAnimCurve curve;
  REQUIRE_FALSE(curve.create(plug("translateX"), nullptr, &status).isNull());
  REQUIRE(status);
  CHECK(curve.animCurveType() == MFnAnimCurve::kAnimCurveTL);
  CHECK(curve.addKey(MTime(10, MTime::kFilm), 5, MFnAnimCurve::kTangentLinear,
                     MFnAnimCurve::kTangentLinear) == 0);
  CHECK(curve.addKey(MTime(20, MTime::kFilm), 15, MFnAnimCurve::kTangentLinear,
                     MFnAnimCurve::kTangentLinear) == 1);
  CHECK(curve.addKey(MTime(0, MTime::kFilm), 0) == 0);
  CHECK(curve.numKeys() == 3);
  run("currentTime 15");
  CHECK(run("getAttr box.tx").toFloat().value_or(0) == doctest::Approx(10));
  CHECK(curve.evaluate(MTime(15, MTime::kFilm)) == doctest::Approx(10));
  CHECK(text("keyframe -q -kc box.tx") == "3");
  CHECK(curve.time(2).as(MTime::kFilm) == doctest::Approx(20));
  unsigned int index = 9;
  CHECK(curve.find(MTime(10, MTime::kFilm), index));
  CHECK(index == 1);
  CHECK_FALSE(curve.find(MTime(11, MTime::kFilm), index));
  CHECK(curve.findClosest(MTime(16, MTime::kFilm)) == 2);
  // A key may not pass its neighbour; what is not there is told.
  CHECK_FALSE(curve.setTime(1, MTime(21, MTime::kFilm)));
  CHECK(curve.setTime(1, MTime(12, MTime::kFilm)));
  CHECK_FALSE(curve.remove(7));
  (void)curve.value(7, &status);
  CHECK_FALSE(status);
  // An angle's curve counts in radians, and one that there is found through its plug.
  run("setKeyframe -t 1 -v 90 box.ry");
  MFnAnimCurve angle(plug("rotateY"), &status);
  REQUIRE(status);
  CHECK(angle.animCurveType() == MFnAnimCurve::kAnimCurveTA);
  CHECK(angle.value(0) == doctest::Approx(1.5707963267948966));
  MFnAnimCurve none(plug("rotateZ"), &status);
  CHECK_FALSE(status);
}

TEST_CASE_FIXTURE(
    Keys, "animation curves: what a change object was given goes back and forth as a whole") {
  MFnAnimCurve curve;
  REQUIRE_FALSE(curve.create(plug("translateY")).isNull());
  MAnimCurveChange change;
  curve.addKey(MTime(1, MTime::kFilm), 1, MFnAnimCurve::kTangentFlat, MFnAnimCurve::kTangentFlat,
               &change);
  curve.addKey(MTime(2, MTime::kFilm), 3, MFnAnimCurve::kTangentFlat, MFnAnimCurve::kTangentFlat,
               &change);
  REQUIRE(curve.setTangent(0, 1, 2, false, &change));
  REQUIRE(curve.setPreInfinityType(MFnAnimCurve::kCycle, &change));
  float x = 0, y = 0;
  REQUIRE(curve.getTangent(0, x, y, false));
  CHECK((x == 1 && y == 2));
  CHECK(curve.outTangentType(0) == MFnAnimCurve::kTangentFixed);
  REQUIRE(change.undoIt());
  CHECK(curve.numKeys() == 0);
  CHECK(curve.preInfinityType() == MFnAnimCurve::kConstant);
  REQUIRE(change.redoIt());
  CHECK(curve.numKeys() == 2);
  CHECK(curve.preInfinityType() == MFnAnimCurve::kCycle);
  // With a modifier nothing is driven before that is done.
  MDGModifier modifier;
  MFnAnimCurve later;
  REQUIRE_FALSE(later.create(plug("translateZ"), &modifier).isNull());
  CHECK_FALSE(plug("translateZ").isDestination());
  REQUIRE(modifier.doIt());
  CHECK(plug("translateZ").isDestination());
}

namespace {
struct Heard {
  std::vector<std::string> lines, said;
};
void hearLine(const MString& line, void* data) {
  static_cast<Heard*>(data)->lines.emplace_back(line.asChar());
}
void hearOutput(const MString& message, MCommandMessage::MessageType type, void* data) {
  static_cast<Heard*>(data)->said.push_back(std::to_string(type) + message.asChar());
}
void hideSecrets(const MString& message, MCommandMessage::MessageType, bool& hides, void*) {
  if (message.indexW("secret") >= 0) hides = true;
}
}  // namespace

TEST_CASE_FIXTURE(
    ApiScene,
    "command messages: lines before they run, and what they say, which a filter may hide") {
  host::MessageCapture shown;
  Heard heard;
  const MCallbackId ids[] = {MCommandMessage::addCommandCallback(hearLine, &heard),
                             MCommandMessage::addCommandOutputCallback(hearOutput, &heard),
                             MCommandMessage::addCommandOutputFilterCallback(hideSecrets)};
  run("print \"open\"; warning \"careful\"; print \"secret\"");
  REQUIRE(heard.lines.size() == 1);
  CHECK(heard.lines.front().find("print") == 0);
  CHECK(heard.said ==
        std::vector<std::string>{std::to_string(MCommandMessage::kDisplay) + "open",
                                 std::to_string(MCommandMessage::kWarning) + "careful",
                                 std::to_string(MCommandMessage::kDisplay) + "secret"});
  CHECK(shown.text(host::MessageKind::Print) == "open");
  for (const MCallbackId id : ids) CHECK(MMessage::removeCallback(id));
  run("print \"secret\"");
  CHECK(shown.text(host::MessageKind::Print) == "opensecret");
  CHECK(heard.said.size() == 3);
}

TEST_CASE_FIXTURE(ApiScene, "iterators look again when they are reset") {
  run("polyPlane -ch 0 -sx 2 -sy 2 -n sheet");
  MItMeshPolygon faces(path("sheet"));
  CHECK(faces.count() == 4);
  MFnMesh mesh(path("sheet"));
  REQUIRE(mesh.deleteFace(0));
  REQUIRE(faces.reset());
  int count = 0;
  for (; !faces.isDone(); faces.next(), ++count) {
    MPointArray points;
    faces.getPoints(points);
    CHECK(points.length() == 4);
  }
  CHECK(count == 3);
}

TEST_CASE_FIXTURE(ApiScene, "mesh data is its own world") {
  run("polyCube -n box; move 5 0 0 box");
  MFnMeshData data;
  MStatus status;
  const MObject object = data.create();
  MFnMesh(path("box")).copy(path("box").node(), object, &status);
  REQUIRE(status);
  MPoint point;
  REQUIRE(MFnMesh(object).getPoint(0, point, MSpace::kWorld));
  CHECK(point.x == doctest::Approx(-0.5));
  // A node without its path is in no place that is known.
  CHECK_FALSE(MFnMesh(path("box").node()).getPoint(0, point, MSpace::kWorld));
}
