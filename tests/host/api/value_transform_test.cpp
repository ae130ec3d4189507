#include <doctest/doctest.h>
#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MTransformationMatrix.h>

#include <cmath>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kClose = 1e-9;

MMatrix aboutAxis(int axis, double angle) {
  MMatrix m;
  const int a = (axis + 1) % 3, b = (axis + 2) % 3;
  m.matrix[a][a] = m.matrix[b][b] = std::cos(angle);
  m.matrix[a][b] = std::sin(angle);
  m.matrix[b][a] = -std::sin(angle);
  return m;
}

MMatrix moved(const MVector& by) {
  MMatrix m;
  for (unsigned int i = 0; i < 3; ++i) m.matrix[3][i] = by[i];
  return m;
}

/// The axes in the order in which each rotation order applies them.
constexpr int kAxes[6][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};

struct Random {
  std::mt19937 engine{7};
  double number(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine);
  }
  MVector vector(double size) {
    return {number(-size, size), number(-size, size), number(-size, size)};
  }
  MTransformationMatrix transform() {
    MTransformationMatrix t;
    const MSpace::Space space = MSpace::kTransform;
    const double scale[3] = {number(0.2, 3), number(0.2, 3), number(0.2, 3)};
    const double shear[3] = {number(-1, 1), number(-1, 1), number(-1, 1)};
    const double angles[3] = {number(-3, 3), number(-1.5, 1.5), number(-3, 3)};
    t.setScale(scale, space);
    t.setShear(shear, space);
    t.setRotation(angles, static_cast<MTransformationMatrix::RotationOrder>(1 + engine() % 6));
    t.setTranslation(vector(10), space);
    t.setRotatePivot(MPoint(vector(5)), space, false);
    t.setScalePivot(MPoint(vector(5)), space, false);
    t.setRotatePivotTranslation(vector(2), space);
    t.setScalePivotTranslation(vector(2), space);
    t.setRotationOrientation(MEulerRotation(vector(1)).asQuaternion());
    return t;
  }
};

/// The documented product, factor by factor.
MMatrix product(const MTransformationMatrix& t) {
  const MSpace::Space space = MSpace::kTransform;
  double s[3], sh[3], r[3];
  MTransformationMatrix::RotationOrder order;
  t.getScale(s, space);
  t.getShear(sh, space);
  t.getRotation(r, order);
  MMatrix scale, shear, rotation;
  for (int i = 0; i < 3; ++i) scale.matrix[i][i] = s[i];
  shear.matrix[1][0] = sh[0];
  shear.matrix[2][0] = sh[1];
  shear.matrix[2][1] = sh[2];
  for (const int axis : kAxes[order - 1]) rotation = rotation * aboutAxis(axis, r[axis]);
  const MVector sp(t.scalePivot(space)), rp(t.rotatePivot(space));
  return moved(-sp) * scale * shear * moved(sp) * moved(t.scalePivotTranslation(space)) *
         moved(-rp) * t.rotationOrientation().asMatrix() * rotation * moved(rp) *
         moved(t.rotatePivotTranslation(space)) * moved(t.translation(space));
}

}  // namespace

TEST_CASE("transforms: the matrix is the documented product of all parts") {
  Random random;
  for (int i = 0; i < 50; ++i) {
    const MTransformationMatrix t = random.transform();
    CHECK(t.asMatrix().isEquivalent(product(t), kClose));
    CHECK((t.asMatrix() * t.asMatrixInverse()).isEquivalent(MMatrix::identity, kClose));
    CHECK(t.asMatrix(1.0).isEquivalent(t.asMatrix(), kClose));
  }
}

TEST_CASE("transforms: a matrix taken apart gives itself back, mirrored ones too") {
  Random random;
  for (int i = 0; i < 50; ++i) {
    MTransformationMatrix t = random.transform();
    if (i % 3 == 0) {
      const double mirror[3] = {-1, 1, 1};
      t.addScale(mirror, MSpace::kTransform);
    }
    CHECK(MTransformationMatrix(t.asMatrix()).asMatrix().isEquivalent(t.asMatrix(), kClose));
  }
}

TEST_CASE("transforms: balanced pivots and reordered angles leave the matrix as it is") {
  Random random;
  for (int i = 0; i < 50; ++i) {
    MTransformationMatrix t = random.transform();
    const MMatrix before = t.asMatrix();
    t.setRotatePivot(MPoint(random.vector(5)), MSpace::kObject, true);
    t.setScalePivot(MPoint(random.vector(5)), MSpace::kWorld, true);
    t.reorderRotation(static_cast<MTransformationMatrix::RotationOrder>(1 + i % 6));
    CHECK(t.asMatrix().isEquivalent(before, kClose));
    const MPoint world = t.rotatePivot(MSpace::kWorld);
    CHECK(world.isEquivalent(t.rotatePivot(MSpace::kObject) * before, kClose));
  }
}

TEST_CASE("transforms: object-space changes come first, others last") {
  Random random;
  MTransformationMatrix t;
  const MQuaternion before = MEulerRotation(random.vector(2)).asQuaternion();
  t.rotateTo(before);
  t.setRotationOrientation(MEulerRotation(random.vector(1)).asQuaternion());
  const MMatrix matrix = t.asMatrix();
  const MQuaternion turn = MEulerRotation(random.vector(1)).asQuaternion();
  MTransformationMatrix inner(t), outer(t);
  inner.rotateBy(turn, MSpace::kObject);
  outer.rotateBy(turn, MSpace::kTransform);
  CHECK(inner.asMatrix().isEquivalent(turn.asMatrix() * matrix, kClose));
  CHECK(outer.asMatrix().isEquivalent(matrix * turn.asMatrix(), kClose));

  t = random.transform();
  const MPoint tip = MPoint::origin * t.asMatrix();
  const MVector step(1, 2, 3);
  MTransformationMatrix shifted(t);
  shifted.addTranslation(step, MSpace::kObject);
  CHECK((MPoint::origin * shifted.asMatrix()).isEquivalent(tip + step * t.asMatrix(), kClose));
}

TEST_CASE("rotations: angles, quaternions and matrices agree in all orders") {
  Random random;
  for (int i = 0; i < 60; ++i) {
    const auto order = static_cast<MEulerRotation::RotationOrder>(i % 6);
    const MEulerRotation e(random.vector(3), order);
    MMatrix expected;
    for (const int axis : kAxes[order])
      expected = expected * aboutAxis(axis, e[static_cast<unsigned int>(axis)]);
    CHECK(e.asMatrix().isEquivalent(expected, kClose));
    CHECK(e.asQuaternion().asMatrix().isEquivalent(expected, kClose));
    CHECK(MEulerRotation::decompose(expected, order).asMatrix().isEquivalent(expected, kClose));
    CHECK(e.alternateSolution().asMatrix().isEquivalent(expected, kClose));
    CHECK(e.bound().asMatrix().isEquivalent(expected, kClose));
    CHECK((e * e.inverse()).asMatrix().isEquivalent(MMatrix::identity, kClose));
    MEulerRotation far = e;
    far.y += 4 * kPi;
    CHECK(far.alternateSolution().closestSolution(e).isEquivalent(e, kClose));

    const MEulerRotation f(random.vector(3), order);
    CHECK((e.asQuaternion() * f.asQuaternion())
              .asMatrix()
              .isEquivalent(e.asMatrix() * f.asMatrix(), kClose));
    const MVector v = random.vector(4);
    CHECK(v.rotateBy(e).isEquivalent(v * expected, kClose));
    CHECK(v.rotateBy(e.asQuaternion()).isEquivalent(v * expected, kClose));
  }
}

TEST_CASE("quaternions: axis and angle, shortest arcs, logarithms") {
  Random random;
  for (int i = 0; i < 30; ++i) {
    const MVector a = random.vector(1), b = random.vector(1);
    CHECK(a.rotateBy(MQuaternion(a, b)).isParallel(b, kClose));
    CHECK(a.rotateBy(a.rotateTo(b)) * b > 0.0);
    const double angle = random.number(0.1, 3.0);
    MVector axis;
    double read = 0.0;
    MQuaternion(angle, a).getAxisAngle(axis, read);
    CHECK(read == doctest::Approx(angle));
    CHECK(axis.isEquivalent(a.normal(), kClose));
    const MQuaternion q(angle, a);
    CHECK(q.log().exp().isEquivalent(q, kClose));
    CHECK((q * q.inverse()).isEquivalent(MQuaternion::identity, kClose));
    CHECK(slerp(MQuaternion::identity, q, 0.25).isEquivalent(MQuaternion(angle / 4, a), kClose));
    CHECK(slerp(MQuaternion::identity, q, 1.0, 2).isEquivalent(q, kClose));
  }
  CHECK(MVector::xAxis.rotateBy(MQuaternion(MVector::xAxis, MVector::xNegAxis))
            .isEquivalent(MVector::xNegAxis, kClose));
}
