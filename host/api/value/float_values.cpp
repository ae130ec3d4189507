#include <maya/MFloatMatrix.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include <algorithm>
#include <cmath>

// The single-precision classes compute through their double-precision sisters.

namespace {

MMatrix widened(const MFloatMatrix& m) {
  return MMatrix(m.matrix);
}
MFloatMatrix narrowed(const MMatrix& m) {
  return MFloatMatrix(m.matrix);
}

}  // namespace

const MFloatVector MFloatVector::zero(0.0F, 0.0F, 0.0F);
const MFloatVector MFloatVector::one(1.0F, 1.0F, 1.0F);
const MFloatVector MFloatVector::xAxis(1.0F, 0.0F, 0.0F);
const MFloatVector MFloatVector::yAxis(0.0F, 1.0F, 0.0F);
const MFloatVector MFloatVector::zAxis(0.0F, 0.0F, 1.0F);
const MFloatVector MFloatVector::xNegAxis(-1.0F, 0.0F, 0.0F);
const MFloatVector MFloatVector::yNegAxis(0.0F, -1.0F, 0.0F);
const MFloatVector MFloatVector::zNegAxis(0.0F, 0.0F, -1.0F);

MFloatVector::MFloatVector(const MVector& v)
    : x(static_cast<float>(v.x)), y(static_cast<float>(v.y)), z(static_cast<float>(v.z)) {}
MFloatVector::MFloatVector(const MFloatPoint& p) : MFloatVector(MVector(MPoint(p))) {}
MFloatVector::MFloatVector(const MPoint& p) : MFloatVector(MVector(p)) {}

MStatus MFloatVector::get(float dest[3]) const {
  for (unsigned int i = 0; i < 3; ++i) dest[i] = (*this)[i];
  return MStatus::kSuccess;
}
MStatus MFloatVector::get(double dest[3]) const {
  return MVector(*this).get(dest);
}
MFloatVector MFloatVector::operator*(const MFloatMatrix& m) const {
  return MFloatVector(MVector(*this) * widened(m));
}
MFloatVector operator*(const MFloatMatrix& m, const MFloatVector& v) {
  return MFloatVector(widened(m) * MVector(v));
}
float MFloatVector::length() const {
  return static_cast<float>(MVector(*this).length());
}
MFloatVector MFloatVector::normal() const {
  return MFloatVector(MVector(*this).normal());
}
MStatus MFloatVector::normalize() {
  MVector wide(*this);
  const MStatus status = wide.normalize();
  *this = MFloatVector(wide);
  return status;
}
float MFloatVector::angle(const MFloatVector& other) const {
  return static_cast<float>(MVector(*this).angle(MVector(other)));
}
bool MFloatVector::isEquivalent(const MFloatVector& other, float tolerance) const {
  return MVector(*this).isEquivalent(MVector(other), tolerance);
}
bool MFloatVector::isParallel(const MFloatVector& other, float tolerance) const {
  return MVector(*this).isParallel(MVector(other), tolerance);
}
MFloatVector MFloatVector::transformAsNormal(const MFloatMatrix& matrix) const {
  return MFloatVector(MVector(*this).transformAsNormal(widened(matrix)));
}
std::ostream& operator<<(std::ostream& os, const MFloatVector& v) {
  return os << '[' << v.x << ", " << v.y << ", " << v.z << ']';
}

const MFloatPoint MFloatPoint::origin(0.0F, 0.0F, 0.0F, 1.0F);

MFloatPoint::MFloatPoint(const MPoint& p) {
  setCast(p);
}
void MFloatPoint::setCast(const MPoint& p) {
  x = static_cast<float>(p.x);
  y = static_cast<float>(p.y);
  z = static_cast<float>(p.z);
  w = static_cast<float>(p.w);
}
MStatus MFloatPoint::get(float dest[4]) const {
  for (unsigned int i = 0; i < 4; ++i) dest[i] = (*this)[i];
  return MStatus::kSuccess;
}
MStatus MFloatPoint::get(double dest[4]) const {
  return MPoint(*this).get(dest);
}
MFloatVector MFloatPoint::operator-(const MFloatPoint& r) const {
  return MFloatVector(MPoint(*this) - MPoint(r));
}
MFloatPoint MFloatPoint::operator*(const MFloatMatrix& m) const {
  return MFloatPoint(MPoint(*this) * widened(m));
}
MFloatPoint operator*(const MFloatMatrix& m, const MFloatPoint& p) {
  return MFloatPoint(widened(m) * MPoint(p));
}
MFloatPoint& MFloatPoint::cartesianize() {
  return *this = MFloatPoint(MPoint(*this).cartesianize());
}
MFloatPoint& MFloatPoint::rationalize() {
  return *this = MFloatPoint(MPoint(*this).rationalize());
}
MFloatPoint& MFloatPoint::homogenize() {
  return *this = MFloatPoint(MPoint(*this).homogenize());
}
float MFloatPoint::distanceTo(const MFloatPoint& other) const {
  return static_cast<float>(MPoint(*this).distanceTo(MPoint(other)));
}
bool MFloatPoint::isEquivalent(const MFloatPoint& other, float tolerance) const {
  return MPoint(*this).isEquivalent(MPoint(other), tolerance);
}
std::ostream& operator<<(std::ostream& os, const MFloatPoint& p) {
  return os << '[' << p.x << ", " << p.y << ", " << p.z << ", " << p.w << ']';
}

void MFloatPointArray::setCast(const MPointArray& source) {
  setLength(source.length());
  for (unsigned int i = 0; i < source.length(); ++i) (*this)[i].setCast(source[i]);
}

const MFloatMatrix MFloatMatrix::identity;

MFloatMatrix::MFloatMatrix(const float m[4][4]) {
  std::copy_n(&m[0][0], 16, &matrix[0][0]);
}
MFloatMatrix::MFloatMatrix(const double m[4][4]) {
  std::transform(&m[0][0], &m[0][0] + 16, &matrix[0][0],
                 [](double v) { return static_cast<float>(v); });
}
MStatus MFloatMatrix::get(float dest[4][4]) const {
  std::copy_n(&matrix[0][0], 16, &dest[0][0]);
  return MStatus::kSuccess;
}
MStatus MFloatMatrix::get(double dest[4][4]) const {
  return widened(*this).get(dest);
}
MFloatMatrix& MFloatMatrix::operator+=(const MFloatMatrix& right) {
  return *this = *this + right;
}
MFloatMatrix MFloatMatrix::operator+(const MFloatMatrix& right) const {
  return narrowed(widened(*this) + widened(right));
}
MFloatMatrix& MFloatMatrix::operator-=(const MFloatMatrix& right) {
  return *this = *this - right;
}
MFloatMatrix MFloatMatrix::operator-(const MFloatMatrix& right) const {
  return narrowed(widened(*this) - widened(right));
}
MFloatMatrix& MFloatMatrix::operator*=(const MFloatMatrix& right) {
  return *this = *this * right;
}
MFloatMatrix MFloatMatrix::operator*(const MFloatMatrix& right) const {
  return narrowed(widened(*this) * widened(right));
}
MFloatMatrix& MFloatMatrix::operator*=(float s) {
  return *this = *this * s;
}
MFloatMatrix MFloatMatrix::operator*(float s) const {
  return narrowed(widened(*this) * static_cast<double>(s));
}
bool MFloatMatrix::operator==(const MFloatMatrix& other) const {
  return std::equal(&matrix[0][0], &matrix[0][0] + 16, &other.matrix[0][0]);
}
MFloatMatrix& MFloatMatrix::setToIdentity() {
  return *this = MFloatMatrix();
}
MFloatMatrix& MFloatMatrix::setToProduct(const MFloatMatrix& left, const MFloatMatrix& right) {
  return *this = left * right;
}
MFloatMatrix MFloatMatrix::transpose() const {
  return narrowed(widened(*this).transpose());
}
MFloatMatrix MFloatMatrix::inverse() const {
  return narrowed(widened(*this).inverse());
}
MFloatMatrix MFloatMatrix::adjoint() const {
  return narrowed(widened(*this).adjoint());
}
MFloatMatrix MFloatMatrix::homogenize() const {
  return narrowed(widened(*this).homogenize());
}
float MFloatMatrix::det4x4() const {
  return static_cast<float>(widened(*this).det4x4());
}
float MFloatMatrix::det3x3() const {
  return static_cast<float>(widened(*this).det3x3());
}
bool MFloatMatrix::isSingular() const {
  return widened(*this).isSingular();
}
bool MFloatMatrix::isEquivalent(const MFloatMatrix& other, float tolerance) const {
  return widened(*this).isEquivalent(widened(other), tolerance);
}
std::ostream& operator<<(std::ostream& os, const MFloatMatrix& m) {
  return os << widened(m);
}
