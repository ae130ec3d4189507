#include <doctest/doctest.h>
#include <maya/MAngle.h>
#include <maya/MBoundingBox.h>
#include <maya/MColor.h>
#include <maya/MDistance.h>
#include <maya/MFileObject.h>
#include <maya/MFloatMatrix.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MSelectionMask.h>
#include <maya/MTime.h>

TEST_CASE("points: homogeneous forms name the same place") {
  const MPoint p(2, 4, 6, 2);
  CHECK(MPoint(p).cartesianize() == MPoint(1, 2, 3, 1));
  CHECK(MPoint(p).rationalize() == MPoint(1, 2, 3, 2));
  CHECK(MPoint(p).rationalize().homogenize() == p);
  CHECK(p.isEquivalent(MPoint(1, 2, 3)));
  CHECK(p.distanceTo(MPoint(1, 2, 0)) == 3.0);
  CHECK(MVector(p) == MVector(1, 2, 3));
  CHECK(MVector(1e-9, 0, 1).angle(MVector::zAxis) == doctest::Approx(1e-9));
  MVector none;
  CHECK_FALSE(none.normalize());
  CHECK(none == MVector::zero);
}

TEST_CASE("matrices: adjoint, inverse and determinant agree; singular ones are told") {
  const double rows[4][4] = {{2, 1, 0, 0}, {-1, 3, 0.5, 0}, {0, 0.25, 1, 0}, {4, -5, 6, 1}};
  const MMatrix m(rows);
  CHECK((m.inverse() * m.det4x4()).isEquivalent(m.adjoint(), 1e-12));
  CHECK(m.det3x3() == doctest::Approx(m.det4x4()));
  CHECK_FALSE(m.isSingular());
  MMatrix flat(m);
  flat[2][0] = flat[2][1] = flat[2][2] = 0.0;
  CHECK(flat.isSingular());
  const MPoint p(1, 2, 3);
  CHECK((p * m * m.inverse()).isEquivalent(p, 1e-12));
  CHECK((m * p).isEquivalent(p * m.transpose()));
  // A normal stays perpendicular to the plane that was transformed with it.
  const MVector inPlane(1, -1, 0), normal(1, 1, 0);
  CHECK(normal.transformAsNormal(m) * (inPlane * m) == doctest::Approx(0.0));
  CHECK(MFloatMatrix(rows).inverse().isEquivalent(MFloatMatrix(m.inverse().matrix), 1e-6F));
}

TEST_CASE("boxes: empty ones add nothing, transformed ones hold the transformed corners") {
  MBoundingBox box;
  CHECK(box.width() == 0.0);
  box.expand(MBoundingBox());
  CHECK(box.max() == MPoint::origin);
  box.expand(MPoint(5, 5, 5));
  CHECK(box.center() == MPoint(5, 5, 5));
  box.expand(MPoint(7, 1, 5));
  MMatrix turned;  // x to y, y to -x, moved up
  turned[0][0] = turned[1][1] = 0;
  turned[0][1] = 1;
  turned[1][0] = -1;
  turned[3][2] = 10;
  box.transformUsing(turned);
  CHECK(box.min().isEquivalent(MPoint(-5, 5, 15)));
  CHECK(box.max().isEquivalent(MPoint(-1, 7, 15)));
  CHECK(box.intersects(MBoundingBox(MPoint(-0.5, 6, 15), MPoint(3, 6, 15)), 0.6));
  CHECK_FALSE(box.intersects(MBoundingBox(MPoint(-0.5, 6, 15), MPoint(3, 6, 15))));
}

TEST_CASE("colours: every model gives the colour back") {
  const MColor given(0.2F, 0.7F, 0.4F, 0.5F);
  for (const auto model : {MColor::kRGB, MColor::kHSV, MColor::kCMY, MColor::kCMYK}) {
    CAPTURE(model);
    float c[4];
    REQUIRE(given.get(model, c[0], c[1], c[2], c[3]));
    MColor back;
    back.set(model, c[0], c[1], c[2], c[3]);
    CHECK(back.r == doctest::Approx(given.r));
    CHECK(back.g == doctest::Approx(given.g));
    CHECK(back.b == doctest::Approx(given.b));
  }
  CHECK(MColor(MColor::kHSV, 120.0F, 1.0F, 1.0F) == MColor(0.0F, 1.0F, 0.0F));
}

TEST_CASE("units: a quantity is the same in every unit") {
  CHECK(MTime(1.0, MTime::kSeconds) == MTime(24.0, MTime::kFilm));
  CHECK(MTime(1.0, MTime::kHours).as(MTime::kPALFrame) == doctest::Approx(90000.0));
  CHECK(MTime(10.0, MTime::kFilm) < MTime(0.5, MTime::kSeconds));
  CHECK((MTime(12.0, MTime::kFilm) + MTime(1.0, MTime::kSeconds)).value() == doctest::Approx(36.0));
  CHECK(MAngle(180.0, MAngle::kDegrees).asRadians() == doctest::Approx(3.14159265358979));
  CHECK(MAngle(1.0, MAngle::kDegrees).asAngSeconds() == doctest::Approx(3600.0));
  CHECK(MDistance(1.0, MDistance::kFeet).asInches() == doctest::Approx(12.0));
  CHECK(MDistance(2.0, MDistance::kKilometers).asMeters() == doctest::Approx(2000.0));
  CHECK(MDistance(2.0, MDistance::kMillimeters).asCentimeters() == doctest::Approx(0.2));
}

TEST_CASE("selection masks: the collective masks hold their kinds and not the others") {
  const MSelectionMask components(MSelectionMask::kSelectComponentsMask);
  CHECK(components.intersects(MSelectionMask::kSelectMeshUVs));
  CHECK(components.intersects(MSelectionMask("vertexFace")));
  CHECK_FALSE(components.intersects(MSelectionMask::kSelectMeshes));
  MSelectionMask mask(MSelectionMask::kSelectMeshEdges);
  mask |= MSelectionMask::kSelectMeshFaces;
  CHECK(mask.intersects(MSelectionMask("facet")));
  mask.setMask(MSelectionMask::kSelectMeshVerts);
  CHECK_FALSE(mask.intersects(MSelectionMask("edge")));
}

TEST_CASE("file objects: name and directory come apart and together") {
  MFileObject file;
  file.setRawFullName("/tmp/../models/cow.obj");
  CHECK(file.rawName() == "cow.obj");
  CHECK(file.rawPath() == "/tmp/../models");
  CHECK(file.resolvedFullName() == "/models/cow.obj");
  file.setRawName("bunny.obj");
  CHECK(file.rawFullName() == "/tmp/../models/bunny.obj");
  CHECK_FALSE(file.exists());
}
