// Cameras: lens, frustum and projection agree with each other and with what a view shows.
#include <maya/M3dView.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFnCamera.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <cmath>

#include "host/workspace/workspace.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Cameras : ApiScene {
  Cameras() {
    run("createNode transform -n above; setAttr above.t 1 2 3; setAttr above.ry 35;"
        "createNode transform -n holder -p above; createNode camera -n eye -p holder;");
    camera.setObject(path("eye"));
  }
  MFnCamera camera;
};

bool isNear(const MVector& a, const MVector& b) {
  return (a - b).length() < 1e-6;
}

}  // namespace

TEST_CASE_FIXTURE(
    Cameras, "placing a camera below a turned parent puts eye and axes where they were asked") {
  const MPoint eye(4, 5, 6);
  const MVector view = MVector(-4, -5, -6).normal(), up(0, 1, 0);
  REQUIRE(camera.set(eye, view, up, 0.9, 1.5));
  CHECK(camera.eyePoint(MSpace::kWorld).isEquivalent(eye, 1e-6));
  CHECK(isNear(camera.viewDirection(MSpace::kWorld), view));
  CHECK(std::abs(camera.upDirection(MSpace::kWorld) * view) < 1e-6);
  CHECK(camera.upDirection(MSpace::kWorld).y > 0);
  CHECK(isNear(view ^ camera.upDirection(MSpace::kWorld), camera.rightDirection(MSpace::kWorld)));
  CHECK(camera.horizontalFieldOfView() == doctest::Approx(0.9));
  CHECK(camera.aspectRatio() == doctest::Approx(1.5));
  CHECK(isNear(camera.viewDirection(), MVector(0, 0, -1)));

  REQUIRE(camera.setCenterOfInterestPoint(MPoint(0, 0, 0), MSpace::kWorld));
  CHECK(camera.centerOfInterest() == doctest::Approx(std::sqrt(77.0)));
  CHECK(camera.centerOfInterestPoint(MSpace::kWorld).isEquivalent(MPoint(0, 0, 0), 1e-6));
  REQUIRE(camera.setCenterOfInterestPoint(MPoint(4, 9, 0), MSpace::kWorld));
  CHECK(camera.centerOfInterestPoint(MSpace::kWorld).isEquivalent(MPoint(4, 9, 0), 1e-6));
  CHECK(camera.eyePoint(MSpace::kWorld).isEquivalent(eye, 1e-6));
  CHECK_FALSE(camera.setCenterOfInterestPoint(eye, MSpace::kWorld));
  MStatus status;
  const MFnCamera bare(node("eye"));
  bare.eyePoint(MSpace::kWorld, &status);
  CHECK_FALSE(status);
}

TEST_CASE_FIXTURE(Cameras,
                  "lens: fields of view follow aperture and focal length; nonsense is refused") {
  REQUIRE(camera.setFocalLength(50));
  REQUIRE(camera.setHorizontalFilmAperture(1));
  REQUIRE(camera.setVerticalFilmAperture(0.5));
  CHECK(camera.horizontalFieldOfView() == doctest::Approx(2 * std::atan(25.4 / 100)));
  CHECK(camera.verticalFieldOfView() == doctest::Approx(2 * std::atan(12.7 / 100)));
  REQUIRE(camera.setVerticalFieldOfView(0.5));
  CHECK(camera.verticalFieldOfView() == doctest::Approx(0.5));
  CHECK(camera.focalLength() == doctest::Approx(12.7 / 2 / std::tan(0.25)));
  const double focal = camera.focalLength();
  for (const double bad : {0.0, -1.0, 4.0, std::nan("")}) {
    CAPTURE(bad);
    CHECK_FALSE(camera.setHorizontalFieldOfView(bad));
  }
  CHECK_FALSE(camera.setFocalLength(-3));
  CHECK_FALSE(camera.setAspectRatio(0));
  CHECK_FALSE(camera.setNearClippingPlane(0));
  CHECK_FALSE(camera.setFilmFit(MFnCamera::kInvalid));
  CHECK(camera.focalLength() == focal);
}

TEST_CASE_FIXTURE(Cameras,
                  "frustum and projection: the frustum's corners land on the picture's corners") {
  REQUIRE(camera.setHorizontalFieldOfView(0.8));
  REQUIRE(camera.setNearClippingPlane(0.5));
  REQUIRE(camera.setFarClippingPlane(200));
  REQUIRE(camera.setFilmFit(MFnCamera::kHorizontalFilmFit));
  for (const bool isOrtho : {false, true}) {
    CAPTURE(isOrtho);
    REQUIRE(camera.setIsOrtho(isOrtho, 10));
    double left = 0, right = 0, bottom = 0, top = 0;
    REQUIRE(camera.getViewingFrustum(camera.aspectRatio(), left, right, bottom, top));
    CHECK(right == doctest::Approx((isOrtho ? 10 : 0.5) * std::tan(0.4)));
    CHECK(left == doctest::Approx(-right));
    CHECK(right / top == doctest::Approx(camera.aspectRatio()));
    const MFloatMatrix projection = camera.projectionMatrix();
    MMatrix matrix;
    for (unsigned int row = 0; row < 4; ++row)
      for (unsigned int column = 0; column < 4; ++column)
        matrix[row][column] = static_cast<double>(projection[row][column]);
    MPoint corner = MPoint(right, top, -0.5) * matrix;
    corner.cartesianize();
    CHECK(corner.x == doctest::Approx(1).epsilon(1e-4));
    CHECK(corner.y == doctest::Approx(1).epsilon(1e-4));
    MPoint far = MPoint(0, 0, -200) * matrix;
    far.cartesianize();
    CHECK(far.z == doctest::Approx(1).epsilon(1e-3));
    CHECK((far.z > corner.z && std::abs(far.x) < 1e-6));
    double wide = 0;
    REQUIRE(camera.getViewingFrustum(2 * camera.aspectRatio(), left, wide, bottom, top));
    CHECK(wide == doctest::Approx(right));
    CHECK(wide / top == doctest::Approx(2 * camera.aspectRatio()));
  }
  double unused = 0;
  CHECK_FALSE(camera.getViewingFrustum(0, unused, unused, unused, unused));
}

TEST_CASE_FIXTURE(Cameras,
                  "a view through the camera: rays start at the eye and pass what they show") {
  REQUIRE(camera.set(MPoint(4, 5, 6), MVector(-4, -5, -6), MVector(0, 1, 0), 0.9, 1.5));
  auto& views = host::workspace::workspaceOf(*session).views;
  for (host::workspace::View& each : views.all()) each.port = {900, 600};
  M3dView view = M3dView::active3dView();
  MDagPath eye = path("eye");
  REQUIRE(view.setCamera(eye));
  MDagPath shown;
  REQUIRE(view.getCamera(shown));
  CHECK(shown == eye);
  short x = 0, y = 0;
  REQUIRE(view.worldToView(MPoint(0, 0, 0), x, y));
  CHECK((std::abs(x - 450) <= 1 && std::abs(y - 300) <= 1));
  MMatrix move;
  move[3][0] = 7;
  for (const MPoint& point : {MPoint(1, 0, 0), MPoint(0, 1, 1), MPoint(-1, 0.5, 0.25)}) {
    REQUIRE(view.worldToView(point, x, y));
    MPoint start, local;
    MVector along, localAlong;
    REQUIRE(view.viewToWorld(x, y, start, along));
    CHECK(((point - start) ^ along).length() < 0.03);
    REQUIRE(view.viewToObjectSpace(x, y, move.inverse(), local, localAlong));
    CHECK((MVector(local) + MVector(7, 0, 0) - MVector(start)).length() < 1e-4);
    CHECK(isNear(localAlong.normal(), along));
    MPoint nearEnd, farEnd;
    REQUIRE(view.viewToWorld(x, y, nearEnd, farEnd));
    CHECK(((farEnd - nearEnd) ^ along).length() < 0.2);
    CHECK((nearEnd - camera.eyePoint(MSpace::kWorld)) * camera.viewDirection(MSpace::kWorld) ==
          doctest::Approx(camera.nearClippingPlane()).epsilon(1e-3));
  }
}
