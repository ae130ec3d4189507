#include <maya/MFloatArray.h>
#include <maya/MItMeshPolygon.h>

#include <algorithm>
#include <cmath>
#include <fstream>

#include "tests/toolkit/toolkit_session.h"

// A whole job: models from no UVs to a packed layout, their seams drawn by a hand in the view, and
// all of it taken back.

namespace {

struct jobScene : toolkitSession {
  std::string text(const std::string& mel) {
    const auto value = session->executeLine(mel);
    REQUIRE_MESSAGE(value.has_value(), mel);
    return value->toText().value_or("");
  }
  double number(const std::string& mel) { return std::stod(text(mel)); }

  /// Of each UV shell the summed edge lengths in the scene by those in the map.
  static std::vector<double> ratios(const char* name) {
    const MDagPath mesh = path(name);
    const MFnMesh meshFn(mesh);
    MIntArray shellOfUv;
    unsigned int count = 0;
    REQUIRE(meshFn.getUvShellsIds(shellOfUv, count));
    std::vector<double> scene(count, 0.0), map(count, 0.0);
    for (MItMeshPolygon face(mesh); !face.isDone(); face.next()) {
      MPointArray points;
      MFloatArray u, v;
      int uv = 0;
      face.getPoints(points, MSpace::kWorld);
      face.getUVs(u, v);
      REQUIRE(face.getUVIndex(0, uv));
      const auto shell = static_cast<std::size_t>(shellOfUv[static_cast<unsigned int>(uv)]);
      for (unsigned int i = 0; i < points.length(); ++i) {
        const unsigned int next = (i + 1) % points.length();
        scene[shell] += points[i].distanceTo(points[next]);
        map[shell] += std::hypot(static_cast<double>(u[next]) - static_cast<double>(u[i]),
                                 static_cast<double>(v[next]) - static_cast<double>(v[i]));
      }
    }
    for (std::size_t i = 0; i < scene.size(); ++i) scene[i] /= map[i];
    return scene;
  }

  /// What a scene file holds, its comments left out. (A hash of the document takes in what is
  /// hilited, which is no step of undo.)
  std::string saved() {
    const std::string file = QXMT_BINARY_DIR "/uv job.ma";
    run("file -rename \"" + file + "\"; file -f -save -type \"mayaAscii\"");
    std::ifstream stream(file);
    std::string all, line;
    while (std::getline(stream, line))
      if (line.rfind("//", 0) != 0) all += line + "\n";
    return all;
  }

  void job(const std::string& model, std::size_t shells, int anchors) {
    CAPTURE(model);
    run("string $mesh = qxmtTourLoadModel_QXMT_Proc(\"" + model + "\");");
    const std::string mesh = text("$mesh = $mesh");
    run("select -cl; flushUndo");
    const std::string before = saved();
    run("qxmtTourMark_QXMT_Proc($mesh, \"" + model + "\")");
    CHECK(number("string $shapes[] = `listRelatives -s $mesh`; size(`getAttr ($shapes[0] + "
                 "\".qxUvMarkedEdgeArray\")`)") > 10);
    CHECK(number("size(`getAttr ($shapes[0] + \".qxUvAncorPointArray\")`)") == anchors);
    run("qxmtTourUnwrap_QXMT_Proc($mesh)");
    const std::vector<double> each = ratios(mesh.c_str());
    CHECK(each.size() == shells);
    const auto [least, most] = std::minmax_element(each.begin(), each.end());
    CHECK(*most / *least - 1 < 1e-4);
    run("float $worth[] = `polyUVReport -flipped -overlapping $mesh`");
    CHECK(number("$worth[0]") == 0);
    CHECK(number("$worth[1]") == 0);
    for (int i = 0; session->undo().itemCount() > 0 && i < 1000; ++i) {
      REQUIRE(session->undo().undo());
    }
    CHECK(before.size() > 1000);
    CHECK((saved() == before));
  }
};

}  // namespace

TEST_CASE("models get their UVs by hand: no flips, no overlaps, one density, undone to the bit") {
  jobScene scene;
  scene.run("source \"qxmt_tour.mel\"");
  const bool hasModels = scene.text("qxmtTourModelFile_QXMT_Proc(\"suzanne\")") != "";
  scene.job("vase", 1, 1);
  if (!hasModels) return;
  scene.run("file -f -new");
  scene.job("suzanne", 3, 2);
}
