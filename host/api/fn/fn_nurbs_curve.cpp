#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>

#include <cmath>

#include "host/api/core/access.h"
#include "host/api/mesh/mesh_target.h"
#include "host/nodes/curve/curve_nodes.h"
#include "host/scene/curve_data.h"
#include "host/scene/name_index.h"

namespace host::api {
namespace {

/// Data that is to hold a curve and does not yet.
class NoCurveData final : public dg::Data {
 public:
  [[nodiscard]] std::string_view typeName() const override { return "nurbsCurve"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    return dynamic_cast<const NoCurveData*>(&other) != nullptr;
  }
  [[nodiscard]] std::uint64_t hash() const override { return 0; }
};

dg::Node* curveShape(const MObject& object) {
  dg::Node* node = nodeOf(object);
  if (!node || !node->isAlive()) return nullptr;
  if (node->type().isA("nurbsCurve")) return node;
  if (!scene::isDagNode(*node)) return nullptr;
  const scene::DagPath shape = scene::firstPath(*node).toShape();
  return !shape.isWorld() && shape.node()->type().isA("nurbsCurve") ? shape.node() : nullptr;
}

/// The curve that a function set is attached to; nothing, with the reason kept, without one.
std::optional<math::NurbsCurve> curveOf(const MObject& object, MStatus* status) {
  setStatus(status, MStatus::kFailure);
  if (const auto* data = objectAs<DataRep>(object)) {
    const auto* curve = dynamic_cast<const scene::CurveData*>(data->data.get());
    if (!curve) return std::nullopt;
    setStatus(status, MStatus::kSuccess);
    return curve->curve;
  }
  dg::Node* shape = curveShape(object);
  if (!shape) return std::nullopt;
  auto curve = nodes::evaluatedCurve(*shape);
  if (!curve) {
    rememberError(curve.error());
    return std::nullopt;
  }
  setStatus(status, MStatus::kSuccess);
  return *std::move(curve);
}

MStatus store(const MObject& object, math::NurbsCurve curve) {
  if (auto* data = objectAs<DataRep>(object)) {
    const auto good = math::check(curve);
    if (good) data->data = std::make_shared<scene::CurveData>(std::move(curve));
    return toStatus(good);
  }
  dg::Node* shape = curveShape(object);
  return shape ? toStatus(nodes::setStoredCurve(*shape, std::move(curve)))
               : MStatus(MStatus::kFailure);
}

/// Object space to `space`; world space needs a path. Data on its way between nodes is in no place:
/// all spaces are its own.
std::optional<math::Matrix4> matrixTo(const MFnDagNode& fn, MSpace::Space space, MStatus* status) {
  if (space != MSpace::kWorld || objectAs<DataRep>(fn.object())) return math::Matrix4();
  MStatus known;
  const MDagPath path = fn.dagPath(&known);
  if (known) return pathOf(path).inclusiveMatrix();
  setStatus(status, MStatus::kInvalidParameter);
  return std::nullopt;
}

std::optional<math::Vec3> intoCurve(const MPoint& point, const math::Matrix4& toSpace) {
  const auto back = math::inverse(toSpace);
  if (!back) return std::nullopt;
  return math::transformPoint(toVec3(point), *back);
}

/// The curve with its points in a space.
std::optional<math::NurbsCurve> curveIn(const MFnDagNode& fn, const MObject& object,
                                        MSpace::Space space, MStatus* status) {
  auto curve = curveOf(object, status);
  if (!curve) return curve;
  const auto matrix = matrixTo(fn, space, status);
  if (!matrix) return std::nullopt;
  for (math::Vec3& point : curve->points) point = math::transformPoint(point, *matrix);
  return curve;
}

MObject place(math::NurbsCurve curve, const MObject& owner, MStatus* status) {
  const auto good = math::check(curve);
  setStatus(status, toStatus(good).statusCode());
  if (!good) return {};
  if (objectAs<DataRep>(owner)) {
    setStatus(status, store(owner, std::move(curve)).statusCode());
    return owner;
  }
  scene::Document& scene = document();
  dg::Node* parent = nodeOf(owner);
  dg::NodePtr transform = parent ? parent->shared_from_this() : nullptr;
  if (!transform) {
    auto made = scene.createNode("transform", "curve#");
    if (!made) return {};
    transform = *made;
  }
  auto shape =
      scene.createNode("nurbsCurve", scene::shapeNameFor(transform->name()), transform.get());
  if (!shape) {
    setStatus(status, toStatus(shape).statusCode());
    return {};
  }
  setStatus(status, toStatus(nodes::setStoredCurve(**shape, std::move(curve))).statusCode());
  return wrap(parent ? shape->get() : transform.get());
}

math::CurveForm formOf(MFnNurbsCurve::Form form) {
  return form == MFnNurbsCurve::kPeriodic ? math::CurveForm::Periodic
         : form == MFnNurbsCurve::kClosed ? math::CurveForm::Closed
                                          : math::CurveForm::Open;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::curveIn;
using api::curveOf;
using api::setStatus;
using api::toMPoint;
using api::toMVector;

MObject MFnNurbsCurveData::create(MStatus* status) {
  object_ = api::wrap(dg::DataPtr(std::make_shared<api::NoCurveData>()));
  setStatus(status, MStatus::kSuccess);
  return object_;
}

MObject MFnNurbsCurve::create(const MPointArray& controlVertices, const MDoubleArray& knotSequences,
                              unsigned int degree, Form form, bool, bool createRational,
                              MObject parentOrOwner, MStatus* status) {
  math::NurbsCurve curve;
  curve.degree = static_cast<int>(degree);
  curve.form = api::formOf(form);
  for (unsigned int i = 0; i < controlVertices.length(); ++i) {
    const MPoint& point = controlVertices[i];
    curve.points.push_back(api::toVec3(point));
    if (createRational) curve.weights.push_back(point.w);
  }
  for (unsigned int i = 0; i < knotSequences.length(); ++i) curve.knots.push_back(knotSequences[i]);
  const MObject made = api::place(std::move(curve), parentOrOwner, status);
  if (!made.isNull()) (void)setObject(made);
  return made;
}
MObject MFnNurbsCurve::createWithEditPoints(const MPointArray& editPoints, unsigned int degree,
                                            Form, bool, bool, bool, MObject parentOrOwner,
                                            MStatus* status) {
  std::vector<math::Vec3> places;
  for (unsigned int i = 0; i < editPoints.length(); ++i)
    places.push_back(api::toVec3(editPoints[i]));
  auto curve = math::curveThrough(places, static_cast<int>(degree));
  setStatus(status, api::toStatus(curve).statusCode());
  if (!curve) return {};
  const MObject made = api::place(*std::move(curve), parentOrOwner, status);
  if (!made.isNull()) (void)setObject(made);
  return made;
}

MFnNurbsCurve::Form MFnNurbsCurve::form(MStatus* status) const {
  const auto curve = curveOf(object_, status);
  if (!curve) return kInvalid;
  return curve->form == math::CurveForm::Periodic ? kPeriodic
         : curve->form == math::CurveForm::Closed ? kClosed
                                                  : kOpen;
}
int MFnNurbsCurve::degree(MStatus* status) const {
  const auto curve = curveOf(object_, status);
  return curve ? curve->degree : 0;
}
int MFnNurbsCurve::numCVs(MStatus* status) const {
  const auto curve = curveOf(object_, status);
  return curve ? static_cast<int>(curve->points.size()) : 0;
}
int MFnNurbsCurve::numSpans(MStatus* status) const {
  const auto curve = curveOf(object_, status);
  return curve ? curve->spans() : 0;
}
int MFnNurbsCurve::numKnots(MStatus* status) const {
  const auto curve = curveOf(object_, status);
  return curve ? static_cast<int>(curve->knots.size()) : 0;
}
MStatus MFnNurbsCurve::getKnotDomain(double& start, double& end) const {
  MStatus status;
  const auto curve = curveOf(object_, &status);
  if (!curve) return status;
  start = curve->first();
  end = curve->last();
  return status;
}
MStatus MFnNurbsCurve::getKnots(MDoubleArray& array) const {
  MStatus status;
  array.clear();
  if (const auto curve = curveOf(object_, &status))
    for (const double each : curve->knots) array.append(each);
  return status;
}
double MFnNurbsCurve::knot(unsigned int index, MStatus* status) const {
  const auto curve = curveOf(object_, status);
  if (curve && index < curve->knots.size()) return curve->knots[index];
  setStatus(status, MStatus::kInvalidParameter);
  return 0;
}
MStatus MFnNurbsCurve::getCVs(MPointArray& array, MSpace::Space space) const {
  MStatus status;
  array.clear();
  const auto curve = curveIn(*this, object_, space, &status);
  if (!curve) return status;
  for (std::size_t i = 0; i < curve->points.size(); ++i) {
    MPoint point = toMPoint(curve->points[i]);
    if (curve->isRational()) point.w = curve->weights[i];
    array.append(point);
  }
  return status;
}
MStatus MFnNurbsCurve::setCVs(const MPointArray& array, MSpace::Space space) {
  MStatus status;
  auto curve = curveOf(object_, &status);
  if (!curve) return status;
  if (array.length() != curve->points.size()) return MStatus::kInvalidParameter;
  const auto matrix = api::matrixTo(*this, space, &status);
  if (!matrix) return status;
  for (unsigned int i = 0; i < array.length(); ++i) {
    const auto inside = api::intoCurve(array[i], *matrix);
    if (!inside) return MStatus::kFailure;
    curve->points[i] = *inside;
  }
  return api::store(object_, *std::move(curve));
}
MStatus MFnNurbsCurve::getCV(unsigned int index, MPoint& point, MSpace::Space space) const {
  MStatus status;
  const auto curve = curveIn(*this, object_, space, &status);
  if (!curve) return status;
  if (index >= curve->points.size()) return MStatus::kInvalidParameter;
  point = toMPoint(curve->points[index]);
  return status;
}
MStatus MFnNurbsCurve::setCV(unsigned int index, const MPoint& point, MSpace::Space space) {
  MPointArray points;
  const MStatus status = getCVs(points, space);
  if (!status) return status;
  if (index >= points.length()) return MStatus::kInvalidParameter;
  points[index] = point;
  return setCVs(points, space);
}
bool MFnNurbsCurve::isParamOnCurve(double param, MStatus* status) const {
  const auto curve = curveOf(object_, status);
  return curve && param >= curve->first() && param <= curve->last();
}
MStatus MFnNurbsCurve::getPointAtParam(double param, MPoint& point, MSpace::Space space) const {
  MStatus status;
  const auto curve = curveIn(*this, object_, space, &status);
  if (!curve) return status;
  if (param < curve->first() || param > curve->last()) return MStatus::kInvalidParameter;
  point = toMPoint(curve->at(param));
  return status;
}
double MFnNurbsCurve::getParamAtPoint(const MPoint& point, MSpace::Space space,
                                      MStatus* status) const {
  double param = 0;
  const MStatus found = getParamAtPoint(point, param, space);
  setStatus(status, found.statusCode());
  return param;
}
MStatus MFnNurbsCurve::getParamAtPoint(const MPoint& point, double& param,
                                       MSpace::Space space) const {
  return getParamAtPoint(point, param, kMFnNurbsEpsilon, space);
}
MStatus MFnNurbsCurve::getParamAtPoint(const MPoint& point, double& param, double tolerance,
                                       MSpace::Space space) const {
  MStatus status;
  const auto curve = curveIn(*this, object_, space, &status);
  if (!curve) return status;
  const double nearest = curve->closest(api::toVec3(point));
  if (math::length(curve->at(nearest) - api::toVec3(point)) > tolerance)
    return MStatus::kInvalidParameter;
  param = nearest;
  return status;
}
bool MFnNurbsCurve::isPointOnCurve(const MPoint& point, double tolerance, MSpace::Space space,
                                   MStatus* status) const {
  return distanceToPoint(point, space, status) <= tolerance;
}
MPoint MFnNurbsCurve::closestPoint(const MPoint& toThisPoint, double* param, double,
                                   MSpace::Space space, MStatus* status) const {
  const auto curve = curveIn(*this, object_, space, status);
  if (!curve) return {};
  const double nearest = curve->closest(api::toVec3(toThisPoint));
  if (param) *param = nearest;
  return toMPoint(curve->at(nearest));
}
MPoint MFnNurbsCurve::closestPoint(const MPoint& toThisPoint, bool, double* param, double tolerance,
                                   MSpace::Space space, MStatus* status) const {
  return closestPoint(toThisPoint, param, tolerance, space, status);
}
double MFnNurbsCurve::distanceToPoint(const MPoint& point, MSpace::Space space,
                                      MStatus* status) const {
  const auto curve = curveIn(*this, object_, space, status);
  if (!curve) return 0;
  return math::length(curve->at(curve->closest(api::toVec3(point))) - api::toVec3(point));
}
MVector MFnNurbsCurve::tangent(double param, MSpace::Space space, MStatus* status) const {
  const auto curve = curveIn(*this, object_, space, status);
  return curve ? toMVector(math::normalized(curve->derivative(param))) : MVector();
}
MVector MFnNurbsCurve::normal(double param, MSpace::Space space, MStatus* status) const {
  const auto curve = curveIn(*this, object_, space, status);
  if (!curve) return {};
  const math::Vec3 along = math::normalized(curve->derivative(param)),
                   bend = curve->derivative(param, 2);
  return toMVector(math::normalized(bend - along * math::dot(along, bend)));
}
MStatus MFnNurbsCurve::getDerivativesAtParm(double param, MPoint& pos, MVector& dU,
                                            MSpace::Space space, MVector* dUU) const {
  MStatus status;
  const auto curve = curveIn(*this, object_, space, &status);
  if (!curve) return status;
  pos = toMPoint(curve->at(param));
  dU = toMVector(curve->derivative(param));
  if (dUU) *dUU = toMVector(curve->derivative(param, 2));
  return status;
}
double MFnNurbsCurve::length(double, MStatus* status) const {
  // Of a node as it stands in the world when it has a path, as lengths are looked at.
  const auto curve = curveOf(object_, status);
  return curve ? curve->length() : 0;
}
double MFnNurbsCurve::findParamFromLength(double partLength, MStatus* status) const {
  const auto curve = curveOf(object_, status);
  return curve ? curve->parameterAtLength(partLength) : 0;
}
double MFnNurbsCurve::findLengthFromParam(double param, MStatus* status) const {
  const auto curve = curveOf(object_, status);
  return curve ? curve->length(curve->first(), param) : 0;
}
double MFnNurbsCurve::area(double, MStatus* status) const {
  const auto curve = curveOf(object_, status);
  if (!curve || curve->form == math::CurveForm::Open) {
    setStatus(status, MStatus::kFailure);
    return 0;
  }
  constexpr int kSteps = 2000;
  math::Vec3 sum;
  math::Vec3 before = curve->at(curve->first());
  const math::Vec3 origin = before;
  for (int i = 1; i <= kSteps; ++i) {
    const double t = curve->first() + (curve->last() - curve->first()) * i / kSteps;
    const math::Vec3 here = curve->at(t);
    sum = sum + math::cross(before - origin, here - origin);
    before = here;
  }
  return 0.5 * math::length(sum);
}
MStatus MFnNurbsCurve::updateCurve() {
  return object_.isNull() ? MStatus::kFailure : MStatus::kSuccess;
}
