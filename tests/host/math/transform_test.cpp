#include "host/math/transform.h"

#include <doctest/doctest.h>

#include <cmath>
#include <random>

#include "host/math/tolerance.h"

using namespace host::math;

namespace {

constexpr RotateOrder kOrders[] = {RotateOrder::XYZ, RotateOrder::YZX, RotateOrder::ZXY,
                                   RotateOrder::XZY, RotateOrder::YXZ, RotateOrder::ZYX};

double difference(const Matrix4& a, const Matrix4& b) {
  double largest = 0;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) largest = std::max(largest, std::abs(a[i][j] - b[i][j]));
  return largest;
}

class Random {
 public:
  double operator()(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }
  Vec3 vec(double low, double high) {
    return {(*this)(low, high), (*this)(low, high), (*this)(low, high)};
  }

 private:
  std::mt19937 engine_{99};
};

/// One turn about an axis, from the textbook: y goes to z about x, z to x about y, x to y about z.
Matrix4 turn(int axis, double angle) {
  Matrix4 m;
  const int j = (axis + 1) % 3, k = (axis + 2) % 3;
  m[j][j] = m[k][k] = std::cos(angle);
  m[j][k] = std::sin(angle);
  m[k][j] = -std::sin(angle);
  return m;
}

TransformComponents randomComponents(Random& random, RotateOrder order) {
  TransformComponents c;
  c.translate = random.vec(-9, 9);
  c.rotate = random.vec(-3, 3);
  c.rotateOrder = order;
  c.scale = random.vec(0.2, 3);
  c.shear = random.vec(-1, 1);
  c.rotatePivot = random.vec(-4, 4);
  c.rotatePivotTranslate = random.vec(-4, 4);
  c.scalePivot = random.vec(-4, 4);
  c.scalePivotTranslate = random.vec(-4, 4);
  c.rotateAxis = random.vec(-3, 3);
  return c;
}

}  // namespace

TEST_CASE("euler: each order multiplies its turns in its own sequence, and all forms agree") {
  const int sequences[6][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};
  Random random;
  for (int o = 0; o < 6; ++o) {
    const auto order = static_cast<RotateOrder>(o);
    for (int i = 0; i < 50; ++i) {
      const Vec3 angles = random.vec(-4, 4);
      const int* s = sequences[o];
      const Matrix4 expected =
          turn(s[0], angles[s[0]]) * turn(s[1], angles[s[1]]) * turn(s[2], angles[s[2]]);
      const Matrix4 m = eulerToMatrix(angles, order);
      CHECK(difference(m, expected) < 1e-14);
      CHECK(difference(eulerToMatrix(matrixToEuler(m, order), order), m) < 1e-13);
      const Quaternion q = eulerToQuaternion(angles, order);
      CHECK(difference(toMatrix(q), m) < 1e-14);
      CHECK(difference(toMatrix(toQuaternion(m)), m) < 1e-14);
      CHECK(length(rotate({1, 2, 3}, q) - transformVector({1, 2, 3}, m)) < 1e-14);
      const auto other = static_cast<RotateOrder>((o + 1 + i % 5) % 6);
      CHECK(difference(eulerToMatrix(reorderEuler(angles, order, other), other), m) < 1e-13);
    }
  }
}

TEST_CASE("euler: gimbal lock gives a triple for the same rotation with a zero last angle") {
  for (RotateOrder order : kOrders)
    for (double middle : {kPi / 2, -kPi / 2}) {
      Vec3 angles{0.3, 0.3, 0.3};
      angles[axesOf(order).second] = middle;
      const Matrix4 m = eulerToMatrix(angles, order);
      const Vec3 found = matrixToEuler(m, order);
      CHECK(difference(eulerToMatrix(found, order), m) < 1e-9);
      CHECK(found[axesOf(order).third] == 0);
    }
}

TEST_CASE("closestEuler: follows a rotation past half turns without jumping") {
  for (RotateOrder order : kOrders) {
    Vec3 previous{0.2, 0.1, -0.1};
    for (int step = 1; step < 200; ++step) {
      const Vec3 wanted = Vec3{0.2, 0.1, -0.1} + Vec3{0.07, 0.05, -0.03} * step;
      const Vec3 folded = matrixToEuler(eulerToMatrix(wanted, order), order);
      const Vec3 found = closestEuler(folded, order, previous);
      CHECK(length(found - wanted) < 1e-6);
      previous = found;
    }
  }
}

TEST_CASE("quaternion: shortest turns between directions, opposite ones included") {
  Random random;
  for (int i = 0; i < 50; ++i) {
    const Vec3 a = random.vec(-1, 1), b = i % 5 == 0 ? a * -2.0 : random.vec(-1, 1);
    const Quaternion q = rotationBetween(a, b);
    CHECK(length(rotate(normalized(a), q) - normalized(b)) < 1e-7);
    const Quaternion half = slerp({}, q, 0.5);
    CHECK(std::abs(std::abs(dot(half * half, q)) - 1) < 1e-12);
  }
}

TEST_CASE("toMatrix: puts a point through the documented steps one after the other") {
  Random random;
  for (RotateOrder order : kOrders) {
    const TransformComponents c = randomComponents(random, order);
    const Vec3 p = random.vec(-5, 5);
    Vec3 q = p - c.scalePivot;
    q = {q.x * c.scale.x, q.y * c.scale.y, q.z * c.scale.z};
    q = {q.x + c.shear.x * q.y + c.shear.y * q.z, q.y + c.shear.z * q.z, q.z};
    q += c.scalePivot + c.scalePivotTranslate - c.rotatePivot;
    q = transformVector(q, eulerToMatrix(c.rotateAxis, RotateOrder::XYZ));
    q = transformVector(q, eulerToMatrix(c.rotate, order));
    q += c.rotatePivot + c.rotatePivotTranslate + c.translate;
    CHECK(length(transformPoint(p, toMatrix(c)) - q) < 1e-12);
  }
}

TEST_CASE("decompose: gives components whose matrix is the one taken apart") {
  Random random;
  for (int i = 0; i < 300; ++i) {
    TransformComponents c = randomComponents(random, kOrders[i % 6]);
    const bool isMirrored = i % 3 == 0;
    if (isMirrored) c.scale[i % 2] *= -1;
    const Matrix4 m = toMatrix(c);
    const TransformComponents kept = decompose(m, c);
    CHECK(difference(toMatrix(kept), m) < 1e-11);
    CHECK(kept.rotatePivot == c.rotatePivot);
    CHECK(kept.rotateAxis == c.rotateAxis);
    CHECK((kept.scale.x < 0) == isMirrored);
    CHECK(difference(toMatrix(decompose(m)), m) < 1e-11);
    if (!isMirrored) {
      CHECK(length(kept.scale - c.scale) < 1e-10);
      CHECK(length(kept.shear - c.shear) < 1e-9);
    }
  }
}

TEST_CASE("decompose: survives zero scales") {
  for (int zeros = 1; zeros < 8; ++zeros) {
    CAPTURE(zeros);
    TransformComponents c;
    c.rotate = {0.4, -0.7, 1.1};
    c.translate = {1, 2, 3};
    c.scale = {zeros & 1 ? 0.0 : 2.0, zeros & 2 ? 0.0 : 1.5, zeros & 4 ? 0.0 : 0.5};
    const Matrix4 m = toMatrix(c);
    CHECK(difference(toMatrix(decompose(m)), m) < 1e-12);
  }
}

TEST_CASE("pivots: move without moving what hangs on them") {
  Random random;
  for (RotateOrder order : kOrders) {
    const TransformComponents c = randomComponents(random, order);
    const Matrix4 m = toMatrix(c);
    CHECK(difference(toMatrix(withRotatePivot(c, {5, -6, 7})), m) < 1e-11);
    CHECK(difference(toMatrix(withScalePivot(c, {5, -6, 7})), m) < 1e-11);
  }
}
