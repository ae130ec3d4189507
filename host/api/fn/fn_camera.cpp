#include <maya/MFnCamera.h>

#include <cmath>

#include "host/api/core/access.h"
#include "host/api/value/convert.h"
#include "host/nodes/transform.h"
#include "host/viewport/camera.h"

namespace host::api {
namespace {

constexpr double kMillimetersPerInch = 25.4;

double number(const MObject& object, const char* attribute, MStatus* status) {
  dg::Node* node = nodeOf(object);
  const dg::Plug plug = node ? node->plug(attribute) : dg::Plug();
  setStatus(status, plug.isNull() ? MStatus::kFailure : MStatus::kSuccess);
  return plug.isNull() ? 0.0 : wrap(plug).asDouble(status);
}
MStatus setNumber(const MObject& object, const char* attribute, double value) {
  dg::Node* node = nodeOf(object);
  const dg::Plug plug = node ? node->plug(attribute) : dg::Plug();
  return plug.isNull() ? MStatus(MStatus::kFailure) : wrap(plug).setDouble(value);
}
MStatus setPositive(const MObject& object, const char* attribute, double value) {
  return value > 0 && std::isfinite(value) ? setNumber(object, attribute, value)
                                           : MStatus(MStatus::kInvalidParameter);
}

/// Camera to world; the identity in object space. World space needs a path.
MStatus toSpace(const MDagPath& path, MSpace::Space space, math::Matrix4& matrix) {
  if (space != MSpace::kWorld) return MStatus::kSuccess;
  const scene::DagPath& inner = pathOf(path);
  if (inner.isWorld()) {
    rememberError(Error{"World space needs a function set that was given a DAG path"});
    return MStatus::kInvalidParameter;
  }
  matrix = inner.inclusiveMatrix();
  return MStatus::kSuccess;
}

MVector direction(const MDagPath& path, const MVector& local, MSpace::Space space,
                  MStatus* status) {
  math::Matrix4 matrix;
  setStatus(status, toSpace(path, space, matrix).statusCode());
  return (local * matrixOf(matrix)).normal();
}

viewport::Camera lensOf(const MFnCamera& camera) {
  viewport::Camera lens;
  lens.orthographic = camera.isOrtho();
  lens.focalLength = camera.focalLength();
  lens.horizontalFilmAperture = camera.horizontalFilmAperture();
  lens.verticalFilmAperture = camera.verticalFilmAperture();
  lens.filmFit = static_cast<viewport::FilmFit>(camera.filmFit());
  lens.nearClip = camera.nearClippingPlane();
  lens.farClip = camera.farClippingPlane();
  lens.orthographicWidth = camera.orthoWidth();
  lens.centerOfInterest = camera.centerOfInterest();
  return lens;
}

double fieldOfView(double apertureInches, double focalMillimeters) {
  return focalMillimeters > 0
             ? 2 * std::atan(apertureInches * kMillimetersPerInch / (2 * focalMillimeters))
             : 0.0;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::number;
using api::setNumber;
using api::setPositive;
using api::setStatus;

MObject MFnCamera::create(MStatus* status) {
  return create(MObject::kNullObj, status);
}
MObject MFnCamera::create(const MObject& parent, MStatus* status) {
  const MObject made = MFnDagNode::create(MString("camera"), MString(), parent, status);
  dg::Node* node = api::nodeOf(made);
  // Below no parent the new transform comes back; the set works on the camera.
  if (node && scene::isTransform(*node))
    object_ = api::wrap(scene::firstPath(*node).toShape().node());
  return made;
}

MPoint MFnCamera::eyePoint(MSpace::Space space, MStatus* status) const {
  math::Matrix4 matrix;
  setStatus(status, api::toSpace(path_, space, matrix).statusCode());
  return MPoint() * api::matrixOf(matrix);
}
MVector MFnCamera::viewDirection(MSpace::Space space, MStatus* status) const {
  return api::direction(path_, MVector(0, 0, -1), space, status);
}
MVector MFnCamera::upDirection(MSpace::Space space, MStatus* status) const {
  return api::direction(path_, MVector(0, 1, 0), space, status);
}
MVector MFnCamera::rightDirection(MSpace::Space space, MStatus* status) const {
  return api::direction(path_, MVector(1, 0, 0), space, status);
}
MPoint MFnCamera::centerOfInterestPoint(MSpace::Space space, MStatus* status) const {
  math::Matrix4 matrix;
  setStatus(status, api::toSpace(path_, space, matrix).statusCode());
  return MPoint(0, 0, -centerOfInterest()) * api::matrixOf(matrix);
}
double MFnCamera::centerOfInterest(MStatus* status) const {
  return number(object_, "centerOfInterest", status);
}
MStatus MFnCamera::setCenterOfInterest(double dist) {
  return setPositive(object_, "centerOfInterest", dist);
}
MStatus MFnCamera::setCenterOfInterestPoint(const MPoint& point, MSpace::Space space) {
  const MVector offset = point - eyePoint(space);
  const MVector up = upDirection(space);
  // What rounding leaves of no distance is no direction to look in.
  if (offset.length() <= 1e-9 * (1 + MVector(point).length())) return MStatus::kInvalidParameter;
  if (space != MSpace::kWorld) return setCenterOfInterest(offset.length());
  const MStatus turned = set(eyePoint(space), offset, up, horizontalFieldOfView(), aspectRatio());
  return turned ? setCenterOfInterest(offset.length()) : turned;
}
MStatus MFnCamera::set(const MPoint& wsEyeLocation, const MVector& wsViewDirection,
                       const MVector& wsUpDirection, double horizFieldOfView, double aspect) {
  const scene::DagPath path = api::pathOf(path_).transform();
  if (path.isWorld()) return MStatus::kInvalidParameter;
  viewport::Camera placed;
  viewport::lookAt(placed, api::mathOf(wsEyeLocation), api::mathOf(wsEyeLocation + wsViewDirection),
                   api::mathOf(wsUpDirection));
  const MMatrix parent = api::matrixOf(path.exclusiveMatrix());
  const MMatrix local = api::matrixOf(placed.world) * parent.inverse();
  const auto moved = nodes::setLocalMatrix(*path.node(), api::mathOf(local));
  if (!moved) return api::toStatus(moved);
  const MStatus shaped = setAspectRatio(aspect);
  return shaped ? setHorizontalFieldOfView(horizFieldOfView) : shaped;
}

bool MFnCamera::isOrtho(MStatus* status) const {
  return number(object_, "orthographic", status) != 0;
}
MStatus MFnCamera::setIsOrtho(bool orthoState) {
  return setNumber(object_, "orthographic", orthoState ? 1 : 0);
}
MStatus MFnCamera::setIsOrtho(bool orthoState, double useDist) {
  // The picture keeps its width at that distance.
  const MStatus status = orthoState
                             ? setOrthoWidth(2 * useDist * std::tan(horizontalFieldOfView() / 2))
                             : MStatus(MStatus::kSuccess);
  return status ? setIsOrtho(orthoState) : status;
}
double MFnCamera::orthoWidth(MStatus* status) const {
  return number(object_, "orthographicWidth", status);
}
MStatus MFnCamera::setOrthoWidth(double width) {
  return setPositive(object_, "orthographicWidth", width);
}
double MFnCamera::horizontalFieldOfView(MStatus* status) const {
  return api::fieldOfView(horizontalFilmAperture(status), focalLength(status));
}
double MFnCamera::verticalFieldOfView(MStatus* status) const {
  return api::fieldOfView(verticalFilmAperture(status), focalLength(status));
}
MStatus MFnCamera::setHorizontalFieldOfView(double fov) {
  if (!(fov > 0 && fov < M_PI)) return MStatus::kInvalidParameter;
  return setFocalLength(horizontalFilmAperture() * api::kMillimetersPerInch /
                        (2 * std::tan(fov / 2)));
}
MStatus MFnCamera::setVerticalFieldOfView(double fov) {
  if (!(fov > 0 && fov < M_PI)) return MStatus::kInvalidParameter;
  return setFocalLength(verticalFilmAperture() * api::kMillimetersPerInch /
                        (2 * std::tan(fov / 2)));
}
#define HOST_LENS(get, set, attribute)             \
  double MFnCamera::get(MStatus* status) const {   \
    return number(object_, attribute, status);     \
  }                                                \
  MStatus MFnCamera::set(double value) {           \
    return setPositive(object_, attribute, value); \
  }
HOST_LENS(focalLength, setFocalLength, "focalLength")
HOST_LENS(horizontalFilmAperture, setHorizontalFilmAperture, "horizontalFilmAperture")
HOST_LENS(verticalFilmAperture, setVerticalFilmAperture, "verticalFilmAperture")
HOST_LENS(overscan, setOverscan, "overscan")
HOST_LENS(cameraScale, setCameraScale, "cameraScale")
HOST_LENS(nearClippingPlane, setNearClippingPlane, "nearClipPlane")
HOST_LENS(farClippingPlane, setFarClippingPlane, "farClipPlane")
#undef HOST_LENS
double MFnCamera::horizontalFilmOffset(MStatus* status) const {
  return number(object_, "horizontalFilmOffset", status);
}
double MFnCamera::verticalFilmOffset(MStatus* status) const {
  return number(object_, "verticalFilmOffset", status);
}
MFnCamera::FilmFit MFnCamera::filmFit(MStatus* status) const {
  const auto fit = static_cast<int>(number(object_, "filmFit", status));
  return fit >= 0 && fit < kInvalid ? static_cast<FilmFit>(fit) : kInvalid;
}
MStatus MFnCamera::setFilmFit(FilmFit fit) {
  return fit >= 0 && fit < kInvalid ? setNumber(object_, "filmFit", fit)
                                    : MStatus(MStatus::kInvalidParameter);
}
double MFnCamera::aspectRatio(MStatus* status) const {
  const double vertical = verticalFilmAperture(status);
  return vertical > 0 ? horizontalFilmAperture(status) * lensSqueezeRatio() / vertical : 1.0;
}
MStatus MFnCamera::setAspectRatio(double ratio) {
  if (!(ratio > 0) || !std::isfinite(ratio)) return MStatus::kInvalidParameter;
  return setVerticalFilmAperture(horizontalFilmAperture() * lensSqueezeRatio() / ratio);
}
double MFnCamera::lensSqueezeRatio(MStatus* status) const {
  return number(object_, "lensSqueezeRatio", status);
}

MStatus MFnCamera::getViewingFrustum(double windowAspect, double& left, double& right,
                                     double& bottom, double& top, bool applyOverscan, bool,
                                     bool) const {
  if (object_.isNull() || !(windowAspect > 0)) return MStatus::kInvalidParameter;
  const viewport::Camera lens = api::lensOf(*this);
  const viewport::ViewExtents extents = viewport::viewExtents(lens, windowAspect);
  const double scale =
      (lens.orthographic ? 1.0 : lens.nearClip) * (applyOverscan ? overscan() : 1.0);
  right = extents.halfWidth * scale;
  top = extents.halfHeight * scale;
  left = -right;
  bottom = -top;
  return MStatus::kSuccess;
}
MFloatMatrix MFnCamera::projectionMatrix(MStatus* status) const {
  MFloatMatrix result;
  setStatus(status, object_.isNull() ? MStatus::kFailure : MStatus::kSuccess);
  if (object_.isNull()) return result;
  const math::Matrix4 matrix = viewport::projectionMatrix(api::lensOf(*this), aspectRatio());
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column)
      result.matrix[row][column] = static_cast<float>(matrix.m[row][column]);
  return result;
}
double MFnCamera::tumblePivotDistance(MStatus* status) const {
  return (tumblePivot(status) - eyePoint(MSpace::kWorld)) * viewDirection(MSpace::kWorld);
}
MPoint MFnCamera::tumblePivot(MStatus* status) const {
  return {number(object_, "tumblePivotX", status), number(object_, "tumblePivotY", status),
          number(object_, "tumblePivotZ", status)};
}
MStatus MFnCamera::setTumblePivot(const MPoint& point) const {
  MStatus status = setNumber(object_, "tumblePivotX", point.x);
  if (status) status = setNumber(object_, "tumblePivotY", point.y);
  return status ? setNumber(object_, "tumblePivotZ", point.z) : status;
}
