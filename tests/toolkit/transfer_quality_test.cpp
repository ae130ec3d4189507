#include <maya/MFloatVectorArray.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MMeshIntersector.h>
#include <maya/MPointOnMesh.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <thread>
#include <vector>

#include "host/base/cancel.h"
#include "tests/toolkit/toolkit_session.h"

// A mesh that takes another's shape is to cover it: no faces turned round, none pinched away, no
// folds.

namespace {

struct quality {
  int wrongWay = 0, collapsed = 0, folds = 0;
};

/// The areas of a mesh's faces, by their mean.
std::vector<double> shares(const char* name) {
  std::vector<double> areas;
  double total = 0;
  for (MItMeshPolygon face(toolkitSession::path(name)); !face.isDone(); face.next()) {
    double area = 0;
    face.getArea(area, MSpace::kWorld);
    areas.push_back(area);
    total += area;
  }
  for (double& area : areas) area *= static_cast<double>(areas.size()) / total;
  return areas;
}

quality qualityOf(const char* moved, const char* target, const std::vector<double>& before) {
  quality found;
  const MDagPath path = toolkitSession::path(moved), onto = toolkitSession::path(target);
  MMeshIntersector nearest;
  REQUIRE(nearest.create(onto.node(), onto.inclusiveMatrix()));
  const MFnMesh targetFn(onto);
  std::vector<MVector> normals;
  for (MItMeshPolygon face(path); !face.isDone(); face.next()) {
    MPointArray points;
    face.getPoints(points, MSpace::kWorld);
    MVector area;
    MPoint centre;
    for (unsigned int i = 0; i < points.length(); ++i) {
      area += (points[i] - points[0]) ^ (points[(i + 1) % points.length()] - points[0]);
      centre += MVector(points[i]) / points.length();
    }
    normals.push_back(area.normal());
    MPointOnMesh at;
    MVector facing;
    REQUIRE(nearest.getClosestPoint(centre, at));
    REQUIRE(targetFn.getPolygonNormal(at.faceIndex(), facing, MSpace::kWorld));
    found.wrongWay += facing * normals.back() < 0;
  }
  const std::vector<double> after = shares(moved);
  for (std::size_t f = 0; f < after.size(); ++f) found.collapsed += after[f] < 0.02 * before[f];
  for (MItMeshEdge edge(path); !edge.isDone(); edge.next()) {
    MIntArray faces;
    edge.getConnectedFaces(faces);
    if (faces.length() == 2)
      found.folds += normals[static_cast<std::size_t>(faces[0])] *
                         normals[static_cast<std::size_t>(faces[1])] <
                     0;
  }
  return found;
}

}  // namespace

TEST_CASE("qxTransferTopology: a ball covers a shape with horns without turning faces round") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polySphere -n horned -sx 60 -sy 50 -r 1 -ch 0; polySphere -n shape -sx 40 -sy "
      "30 -r 1.2");
  MPointArray points = toolkitSession::points("horned");
  for (MPoint& p : points) {  // two horns upwards, a dent below them
    const double left = std::exp(-18 * ((p.x - 0.5) * (p.x - 0.5) + p.z * p.z));
    const double right = std::exp(-18 * ((p.x + 0.5) * (p.x + 0.5) + p.z * p.z));
    if (p.y > 0) p.y += 1.6 * (left + right) - 0.5 * std::exp(-18 * (p.x * p.x + p.z * p.z));
  }
  toolkitSession::setPoints("horned", points);
  toolkit.run("select -r shape horned");
  const std::vector<double> before = shares("shape");
  toolkit.run("qxTransferTopology");
  const quality q = qualityOf("shape", "horned", before);
  CHECK(q.wrongWay == 0);
  CHECK(q.collapsed == 0);
  CHECK(q.folds < 5);
}

TEST_CASE("qxTransferTopology: a ball covers the bunny") {
  const std::string bunny = QXMT_SOURCE_DIR "/../shared/models/bunny.obj";
  if (!std::filesystem::exists(bunny)) return;
  toolkitSession toolkit;
  for (const char* size : {"-sx 20 -sy 20", "-sx 30 -sy 25", "-sx 40 -sy 30", "-sx 60 -sy 40"}) {
    CAPTURE(std::string(size));
    toolkit.run("file -f -new; file -import \"" + bunny +
                "\"; string $all[] = `ls -type mesh`; string $p[] = `listRelatives -p $all[0]`; "
                "rename $p[0] bunny; polySphere -n shape -r 0.1 " +
                size);
    toolkit.run(
        "float $bb[] = `exactWorldBoundingBox bunny`; move (($bb[0]+$bb[3])/2) "
        "(($bb[1]+$bb[4])/2) (($bb[2]+$bb[5])/2) shape; select -r shape bunny;");
    const std::vector<double> before = shares("shape");
    toolkit.run("qxTransferTopology");
    const quality q = qualityOf("shape", "bunny", before);
    CHECK(q.wrongWay == 0);
    CHECK(q.collapsed == 0);
    CHECK(q.folds < 5);
  }
}

TEST_CASE(
    "qxTransferVertexNormals: a copy is shaded as the mesh it was made of, bent faces and all") {
  const std::string suzanne = QXMT_SOURCE_DIR "/../shared/models/suzanne.obj";
  if (!std::filesystem::exists(suzanne)) return;
  toolkitSession toolkit;
  toolkit.run("file -f -new; file -import \"" + suzanne +
              "\"; string $all[] = `ls -type mesh`; string $p[] = `listRelatives -p $all[0]`; "
              "rename $p[0] from; duplicate -n to from;");
  toolkit.run("polySoftEdge -a 30 -ch 0 from; polySoftEdge -a 180 -ch 0 to; select -r to from;");
  toolkit.run("qxTransferVertexNormals");
  const MFnMesh from(toolkitSession::path("from")), to(toolkitSession::path("to"));
  int corners = 0;
  for (int f = 0; f < from.numPolygons(); ++f) {
    MFloatVectorArray wanted, found;
    REQUIRE(from.getFaceVertexNormals(f, wanted));
    REQUIRE(to.getFaceVertexNormals(f, found));
    for (unsigned int k = 0; k < wanted.length(); ++k, ++corners) {
      CAPTURE(f);
      CHECK((wanted[k] - found[k]).length() < 0.02);
    }
  }
  CHECK(corners > 1000);
}

TEST_CASE("transfers stop when they are asked to, with everything as it was") {
  toolkitSession toolkit;
  toolkit.run(
      "polySphere -ch 0 -n shape -sx 500 -sy 400; polySphere -ch 0 -n target -r 1.3 -sx 300 -sy "
      "200; move -r 0.1 0 0 target.vtx[0:9000]; select -r shape target");
  for (const char* command : {"qxTransferTopology", "qxTransferVertexNormals"}) {
    CAPTURE(std::string(command));
    const std::uint64_t before = toolkit.hash();
    std::thread hand([] {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      host::requestCancel();
    });
    const std::string said = toolkit.failure(command);
    hand.join();
    host::clearCancel();
    CHECK(said.find("Interrupted") != std::string::npos);
    CHECK(toolkit.hash() == before);
  }
}
