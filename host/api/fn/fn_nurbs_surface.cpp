#include <maya/MFnMesh.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnNurbsSurfaceData.h>

#include <algorithm>
#include <cmath>

#include "host/api/fn/curved_target.h"
#include "host/api/mesh/mesh_target.h"
#include "host/nodes/curve/surface_nodes.h"
#include "host/nodes/mesh_shape.h"
#include "host/ops/primitives/surface_mesh.h"
#include "host/scene/display_rules.h"
#include "host/scene/name_index.h"
#include "host/scene/surface_data.h"

namespace host::api {
namespace {

/// Data that is to hold a surface and does not yet.
class NoSurfaceData final : public dg::Data {
 public:
  [[nodiscard]] std::string_view typeName() const override { return "nurbsSurface"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    return dynamic_cast<const NoSurfaceData*>(&other) != nullptr;
  }
};

CurvedTarget targetOf(const MFnNurbsSurface& fn, const MObject& object) {
  MStatus hasPath;
  const MDagPath path = objectAs<DataRep>(object) ? MDagPath() : fn.dagPath(&hasPath);
  return {object, hasPath ? path : MDagPath(), "nurbsSurface"};
}

using Surface = std::optional<math::NurbsSurface>;
Surface surfaceOf(const MFnNurbsSurface& fn, const MObject& object, MStatus* status) {
  return targetOf(fn, object).surface(status);
}
/// The surface with its points in a space.
Surface surfaceIn(const MFnNurbsSurface& fn, const MObject& object, MSpace::Space space,
                  MStatus* status) {
  const CurvedTarget target = targetOf(fn, object);
  Surface surface = target.surface(status);
  if (!surface) return surface;
  std::optional<math::Matrix4> toSpace;
  if (const MStatus known = target.spaceMatrix(space, toSpace); !known) {
    setStatus(status, known.statusCode());
    return std::nullopt;
  }
  if (toSpace)
    for (math::Vec3& point : surface->points) point = math::transformPoint(point, *toSpace);
  return surface;
}

bool isWithin(const math::NurbsSurface& surface, double u, double v) {
  return u >= surface.firstU() && u <= surface.lastU() && v >= surface.firstV() &&
         v <= surface.lastV();
}

MFnNurbsSurface::Form formOf(math::CurveForm form) {
  return form == math::CurveForm::Periodic ? MFnNurbsSurface::kPeriodic
         : form == math::CurveForm::Closed ? MFnNurbsSurface::kClosed
                                           : MFnNurbsSurface::kOpen;
}
math::CurveForm formOf(MFnNurbsSurface::Form form) {
  return form == MFnNurbsSurface::kPeriodic ? math::CurveForm::Periodic
         : form == MFnNurbsSurface::kClosed ? math::CurveForm::Closed
                                            : math::CurveForm::Open;
}

/// Puts a shape where `owner` says: under a transform, or under one of its own.
struct MadeShape {
  dg::NodePtr shape, transform;
  bool isUnderOwner = false;
};
Result<MadeShape> makeShape(const MObject& owner, const char* type, const char* name) {
  scene::Document& scene = document();
  MadeShape made;
  dg::Node* parent = nodeOf(owner);
  if (!owner.isNull() && (!parent || !scene::isTransform(*parent)))
    return fail(ErrorKind::BadArgument, "The parent of a shape must be a transform");
  made.isUnderOwner = parent != nullptr;
  if (parent) {
    made.transform = parent->shared_from_this();
  } else {
    auto transform = scene.createNode("transform", name);
    if (!transform) return failWith(transform.error());
    made.transform = *transform;
  }
  auto shape =
      scene.createNode(type, scene::shapeNameFor(made.transform->name()), made.transform.get());
  if (!shape) return failWith(shape.error());
  made.shape = *shape;
  return made;
}

MObject place(math::NurbsSurface surface, const MObject& owner, MStatus* status, MObject& shape) {
  if (const auto good = math::check(surface); !good) {
    setStatus(status, toStatus(good, MStatus::kInvalidParameter).statusCode());
    return {};
  }
  if (auto* data = objectAs<DataRep>(owner)) {
    const bool isFitting = !data->data || data->data->typeName() == "nurbsSurface";
    setStatus(status, isFitting ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!isFitting) return {};
    data->data = std::make_shared<scene::SurfaceData>(std::move(surface));
    return shape = owner;
  }
  const auto made = makeShape(owner, "nurbsSurface", "nurbsSurface#");
  setStatus(status, toStatus(made).statusCode());
  if (!made) return {};
  const auto done = nodes::setStoredSurface(*made->shape, std::move(surface));
  setStatus(status, toStatus(done).statusCode());
  shape = wrap(made->shape.get());
  return made->isUnderOwner ? shape : wrap(made->transform.get());
}

std::vector<double> numbersOf(const MDoubleArray& array) {
  return {array.begin(), array.end()};
}

/// Reads a number of the surface, zero without one.
template <class Number>
auto read(const MFnNurbsSurface& fn, const MObject& object, MStatus* status, Number number) {
  const Surface surface = surfaceOf(fn, object, status);
  return surface ? number(*surface) : decltype(number(*surface)){};
}

MStatus setKnots(const MFnNurbsSurface& fn, const MObject& object,
                 std::vector<double> math::NurbsSurface::*knots, const MDoubleArray& array,
                 unsigned int first, unsigned int last) {
  MStatus status;
  Surface surface = surfaceOf(fn, object, &status);
  if (!surface) return status;
  std::vector<double>& all = (*surface).*knots;
  if (last < first || last >= all.size() || array.length() < last - first + 1)
    return MStatus::kInvalidParameter;
  for (unsigned int i = first; i <= last; ++i) all[i] = array[i - first];
  return targetOf(fn, object).write(*std::move(surface));
}

int piecesOf(MTesselationParams::IsoparmType type, int count, int spans) {
  if (type == MTesselationParams::kSpanEquiSpaced) return std::max(1, count);
  return std::max(1, (count + spans - 1) / spans);
}

ops::SurfaceMeshOptions optionsOf(const MTesselationParams& params,
                                  const math::NurbsSurface& surface) {
  ops::SurfaceMeshOptions options;
  options.triangles = params.outputType() == MTesselationParams::kTriangles;
  if (params.formatType() == MTesselationParams::kTriangleCountFormat) {
    const double perSpan = std::sqrt(
        std::max(1.0, 0.5 * params.triangleCount() / surface.spansU() / surface.spansV()));
    options.divisionsU = options.divisionsV = std::max(1, static_cast<int>(std::lround(perSpan)));
  } else {
    options.divisionsU = piecesOf(params.uIsoparmType(), params.uNumber(), surface.spansU());
    options.divisionsV = piecesOf(params.vIsoparmType(), params.vNumber(), surface.spansV());
  }
  if (params.formatType() == MTesselationParams::kGeneralCVFormat)
    options.divisionsU = options.divisionsV = 1;
  return options;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;
using api::surfaceIn;
using api::surfaceOf;
using api::toMPoint;
using api::toMVector;
using api::toVec3;

MTesselationParams MTesselationParams::fsDefaultTesselationParams;

MObject MFnNurbsSurfaceData::create(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return object_ = api::wrap(dg::DataPtr(std::make_shared<api::NoSurfaceData>()));
}

MObject MFnNurbsSurface::create(const MPointArray& controlVertices,
                                const MDoubleArray& uKnotSequences,
                                const MDoubleArray& vKnotSequences, unsigned int degreeInU,
                                unsigned int degreeInV, Form formU, Form formV, bool createRational,
                                MObject parentOrOwner, MStatus* status) {
  math::NurbsSurface surface;
  surface.degreeU = static_cast<int>(std::min(degreeInU, 100U));
  surface.degreeV = static_cast<int>(std::min(degreeInV, 100U));
  surface.formU = api::formOf(formU);
  surface.formV = api::formOf(formV);
  surface.knotsU = api::numbersOf(uKnotSequences);
  surface.knotsV = api::numbersOf(vKnotSequences);
  for (const MPoint& point : controlVertices) {
    surface.points.push_back(toVec3(point));
    if (createRational) surface.weights.push_back(point.w);
  }
  MObject shape;
  const MObject made = api::place(std::move(surface), parentOrOwner, status, shape);
  if (!shape.isNull()) (void)setObject(shape);
  return made;
}

MObject MFnNurbsSurface::copy(const MObject& source, MObject parentOrOwner, MStatus* status) {
  auto surface = api::CurvedTarget(source, MDagPath(), "nurbsSurface").surface(status);
  if (!surface) return {};
  MObject shape;
  const MObject made = api::place(*std::move(surface), parentOrOwner, status, shape);
  if (!shape.isNull()) (void)setObject(shape);
  return made;
}

MFnNurbsSurface::Form MFnNurbsSurface::formInU(MStatus* status) const {
  return api::read(*this, object_, status, [](const auto& s) { return api::formOf(s.formU); });
}
MFnNurbsSurface::Form MFnNurbsSurface::formInV(MStatus* status) const {
  return api::read(*this, object_, status, [](const auto& s) { return api::formOf(s.formV); });
}

#define HOST_SURFACE_NUMBER(name, expression)                                     \
  int MFnNurbsSurface::name(MStatus* status) const {                              \
    return api::read(*this, object_, status,                                      \
                     [](const auto& s) { return static_cast<int>(expression); }); \
  }
HOST_SURFACE_NUMBER(degreeU, s.degreeU)
HOST_SURFACE_NUMBER(degreeV, s.degreeV)
HOST_SURFACE_NUMBER(numCVsInU, s.countU())
HOST_SURFACE_NUMBER(numCVsInV, s.countV())
HOST_SURFACE_NUMBER(numSpansInU, s.spansU())
HOST_SURFACE_NUMBER(numSpansInV, s.spansV())
HOST_SURFACE_NUMBER(numKnotsInU, s.knotsU.size())
HOST_SURFACE_NUMBER(numKnotsInV, s.knotsV.size())
HOST_SURFACE_NUMBER(numPatchesInU, math::breaksU(s).size() - 1)
HOST_SURFACE_NUMBER(numPatchesInV, math::breaksV(s).size() - 1)
HOST_SURFACE_NUMBER(numPatches, (math::breaksU(s).size() - 1) * (math::breaksV(s).size() - 1))
#undef HOST_SURFACE_NUMBER

bool MFnNurbsSurface::isBezier(MStatus* status) const {
  return api::read(*this, object_, status, [](const math::NurbsSurface& s) {
    const auto isRepeated = [](const std::vector<double>& knots, int degree) {
      for (const double knot : knots)
        if (std::ranges::count(knots, knot) != degree) return false;
      return true;
    };
    return isRepeated(s.knotsU, s.degreeU) && isRepeated(s.knotsV, s.degreeV);
  });
}
bool MFnNurbsSurface::isUniform(MStatus* status) const {
  return api::read(*this, object_, status, [](const math::NurbsSurface& s) {
    const auto isEven = [](const std::vector<double>& breaks) {
      const double step = breaks[1] - breaks[0];
      for (std::size_t i = 1; i < breaks.size(); ++i)
        if (std::abs(breaks[i] - breaks[i - 1] - step) > 1e-9 * step) return false;
      return true;
    };
    return isEven(math::breaksU(s)) && isEven(math::breaksV(s));
  });
}
bool MFnNurbsSurface::isTrimmedSurface(MStatus* status) const {
  return api::read(*this, object_, status, [](const auto&) { return false; });
}
bool MFnNurbsSurface::isFlipNorm(MStatus* status) const {
  dg::Node* shape = api::targetOf(*this, object_).shape();
  setStatus(status, object_.isNull() ? MStatus::kFailure : MStatus::kSuccess);
  return shape && scene::numberOr(*shape, "opposite", 0) != 0;
}
bool MFnNurbsSurface::hasHistoryOnCreate(MStatus* status) const {
  dg::Node* shape = api::targetOf(*this, object_).shape();
  setStatus(status, shape ? MStatus::kSuccess : MStatus::kFailure);
  return shape && shape->graph().source(shape->plug("create"));
}

#define HOST_SURFACE_KNOTS(U, field)                                                               \
  MStatus MFnNurbsSurface::getKnotsIn##U(MDoubleArray& array) const {                              \
    MStatus status;                                                                                \
    array.clear();                                                                                 \
    if (const auto surface = surfaceOf(*this, object_, &status))                                   \
      for (const double each : surface->field) array.append(each);                                 \
    return status;                                                                                 \
  }                                                                                                \
  MStatus MFnNurbsSurface::setKnotsIn##U(const MDoubleArray& array, unsigned int startIndex,       \
                                         unsigned int endIndex) {                                  \
    return api::setKnots(*this, object_, &math::NurbsSurface::field, array, startIndex, endIndex); \
  }                                                                                                \
  double MFnNurbsSurface::knotIn##U(unsigned int index, MStatus* status) const {                   \
    const auto surface = surfaceOf(*this, object_, status);                                        \
    if (surface && index < surface->field.size()) return surface->field[index];                    \
    setStatus(status, MStatus::kInvalidParameter);                                                 \
    return 0;                                                                                      \
  }                                                                                                \
  MStatus MFnNurbsSurface::setKnotIn##U(unsigned int index, double param) {                        \
    return setKnotsIn##U(MDoubleArray(1, param), index, index);                                    \
  }                                                                                                \
  bool MFnNurbsSurface::isKnot##U(double param, MStatus* status) const {                           \
    return api::read(*this, object_, status, [&](const math::NurbsSurface& s) {                    \
      return std::ranges::any_of(s.field,                                                          \
                                 [&](double knot) { return std::abs(knot - param) < 1e-9; });      \
    });                                                                                            \
  }
HOST_SURFACE_KNOTS(U, knotsU)
HOST_SURFACE_KNOTS(V, knotsV)
#undef HOST_SURFACE_KNOTS

MStatus MFnNurbsSurface::getKnotDomain(double& startU, double& endU, double& startV,
                                       double& endV) const {
  MStatus status;
  const auto surface = surfaceOf(*this, object_, &status);
  if (!surface) return status;
  startU = surface->firstU();
  endU = surface->lastU();
  startV = surface->firstV();
  endV = surface->lastV();
  return status;
}

MStatus MFnNurbsSurface::getCVs(MPointArray& array, MSpace::Space space) const {
  MStatus status;
  array.clear();
  const auto surface = surfaceIn(*this, object_, space, &status);
  if (!surface) return status;
  array.setLength(static_cast<unsigned int>(surface->points.size()));
  for (unsigned int i = 0; i < array.length(); ++i) {
    array[i] = toMPoint(surface->points[i]);
    if (surface->isRational()) array[i].w = surface->weights[i];
  }
  return status;
}
MStatus MFnNurbsSurface::setCVs(const MPointArray& array, MSpace::Space space) {
  const api::CurvedTarget target = api::targetOf(*this, object_);
  MStatus status;
  auto surface = target.surface(&status);
  if (!surface) return status;
  if (array.length() != surface->points.size()) return MStatus::kInvalidParameter;
  std::optional<math::Matrix4> toSpace;
  if (const MStatus known = target.spaceMatrix(space, toSpace); !known) return known;
  const auto back = toSpace ? math::inverse(*toSpace) : math::Matrix4();
  if (!back) return MStatus::kFailure;
  for (unsigned int i = 0; i < array.length(); ++i) {
    surface->points[i] = toSpace ? math::transformPoint(toVec3(array[i]), *back) : toVec3(array[i]);
    if (surface->isRational()) surface->weights[i] = array[i].w;
  }
  dg::Node* shape = target.shape();
  if (!shape || !shape->graph().source(shape->plug("create")))
    return target.write(*std::move(surface));
  return api::toStatus(nodes::moveSurfacePoints(*shape, surface->points));
}
MStatus MFnNurbsSurface::getCV(unsigned int indexU, unsigned int indexV, MPoint& point,
                               MSpace::Space space) const {
  MStatus status;
  const auto surface = surfaceIn(*this, object_, space, &status);
  if (!surface) return status;
  if (indexU >= at(surface->countU()) || indexV >= at(surface->countV()))
    return MStatus::kInvalidParameter;
  const std::size_t index = std::size_t{indexU} * at(surface->countV()) + indexV;
  point = toMPoint(surface->points[index]);
  if (surface->isRational()) point.w = surface->weights[index];
  return status;
}
MStatus MFnNurbsSurface::setCV(unsigned int indexU, unsigned int indexV, const MPoint& point,
                               MSpace::Space space) {
  MPointArray points;
  if (const MStatus status = getCVs(points, space); !status) return status;
  const auto rows = static_cast<unsigned int>(numCVsInU()),
             columns = static_cast<unsigned int>(numCVsInV());
  if (indexU >= rows || indexV >= columns) return MStatus::kInvalidParameter;
  points[indexU * columns + indexV] = point;
  return setCVs(points, space);
}

bool MFnNurbsSurface::isParamOnSurface(double paramU, double paramV, MStatus* status) const {
  return api::read(*this, object_, status,
                   [&](const auto& s) { return api::isWithin(s, paramU, paramV); });
}
MStatus MFnNurbsSurface::getPointAtParam(double paramU, double paramV, MPoint& point,
                                         MSpace::Space space) const {
  MStatus status;
  const auto surface = surfaceIn(*this, object_, space, &status);
  if (!surface) return status;
  if (!api::isWithin(*surface, paramU, paramV)) return MStatus::kInvalidParameter;
  point = toMPoint(surface->at(paramU, paramV));
  return status;
}
MStatus MFnNurbsSurface::getParamAtPoint(const MPoint& point, double& paramU, double& paramV,
                                         MSpace::Space space) const {
  return getParamAtPoint(point, true, paramU, paramV, space);
}
MStatus MFnNurbsSurface::getParamAtPoint(const MPoint& point, bool, double& paramU, double& paramV,
                                         MSpace::Space space, double tolerance) const {
  MStatus status;
  const auto surface = surfaceIn(*this, object_, space, &status);
  if (!surface) return status;
  const math::SurfaceParameter nearest = surface->closest(toVec3(point));
  if (math::length(surface->at(nearest.u, nearest.v) - toVec3(point)) > tolerance)
    return MStatus::kInvalidParameter;
  paramU = nearest.u;
  paramV = nearest.v;
  return status;
}
bool MFnNurbsSurface::isPointOnSurface(const MPoint& point, double tolerance, MSpace::Space space,
                                       MStatus* status) const {
  MStatus found;
  const double distance = distanceToPoint(point, space, &found);
  setStatus(status, found.statusCode());
  return found && distance <= tolerance;
}
MVector MFnNurbsSurface::normal(double paramU, double paramV, MSpace::Space space,
                                MStatus* status) const {
  const auto surface = surfaceIn(*this, object_, space, status);
  return surface ? toMVector(surface->frame(paramU, paramV).normal()) : MVector();
}
MStatus MFnNurbsSurface::getTangents(double paramU, double paramV, MVector& vectorInU,
                                     MVector& vectorInV, MSpace::Space space) const {
  MStatus status;
  const auto surface = surfaceIn(*this, object_, space, &status);
  if (!surface) return status;
  const math::SurfaceFrame frame = surface->frame(paramU, paramV);
  vectorInU = toMVector(math::normalized(frame.u));
  vectorInV = toMVector(math::normalized(frame.v));
  return status;
}
MStatus MFnNurbsSurface::getDerivativesAtParm(double paramU, double paramV, MPoint& pos,
                                              MVector& dU, MVector& dV, MSpace::Space space,
                                              MVector* dUU, MVector* dVV, MVector* dUV) const {
  MStatus status;
  const auto surface = surfaceIn(*this, object_, space, &status);
  if (!surface) return status;
  const math::SurfaceFrame frame = surface->frame(paramU, paramV);
  pos = toMPoint(frame.place);
  dU = toMVector(frame.u);
  dV = toMVector(frame.v);
  if (dUU) *dUU = toMVector(frame.uu);
  if (dVV) *dVV = toMVector(frame.vv);
  if (dUV) *dUV = toMVector(frame.uv);
  return status;
}
MPoint MFnNurbsSurface::closestPoint(const MPoint& toThisPoint, double* paramU, double* paramV,
                                     bool ignoreTrimBoundaries, double tolerance,
                                     MSpace::Space space, MStatus* status) const {
  return closestPoint(toThisPoint, false, paramU, paramV, ignoreTrimBoundaries, tolerance, space,
                      status);
}
MPoint MFnNurbsSurface::closestPoint(const MPoint& toThisPoint, bool paramAsStart, double* paramU,
                                     double* paramV, bool, double, MSpace::Space space,
                                     MStatus* status) const {
  const auto surface = surfaceIn(*this, object_, space, status);
  if (!surface) return {};
  const math::Vec3 place = toVec3(toThisPoint);
  const math::SurfaceParameter nearest = paramAsStart && paramU && paramV
                                             ? surface->closest(place, {*paramU, *paramV})
                                             : surface->closest(place);
  if (paramU) *paramU = nearest.u;
  if (paramV) *paramV = nearest.v;
  return toMPoint(surface->at(nearest.u, nearest.v));
}
double MFnNurbsSurface::distanceToPoint(const MPoint& point, MSpace::Space space,
                                        MStatus* status) const {
  MStatus found;
  const MPoint nearest =
      closestPoint(point, nullptr, nullptr, false, kMFnNurbsEpsilon, space, &found);
  setStatus(status, found.statusCode());
  return found ? nearest.distanceTo(point) : 0;
}
double MFnNurbsSurface::area(MSpace::Space space, MStatus* status) const {
  const auto surface = surfaceIn(*this, object_, space, status);
  return surface ? surface->area() : 0;
}

bool MFnNurbsSurface::intersect(const MPoint& rayStartingPoint, const MVector& alongThisDirection,
                                double& u, double& v, MPoint& point, double tolerance,
                                MSpace::Space space, bool calculateDistance, double* distance,
                                bool calculateExactHit, bool* wasExactHit, MStatus* status) const {
  MDoubleArray us, vs, distances;
  MPointArray points;
  if (!intersect(rayStartingPoint, alongThisDirection, us, vs, points, tolerance, space,
                 calculateDistance, &distances, calculateExactHit, wasExactHit, status))
    return false;
  u = us[0];
  v = vs[0];
  point = points[0];
  if (distance && calculateDistance) *distance = distances[0];
  return true;
}
bool MFnNurbsSurface::intersect(const MPoint& rayStartingPoint, const MVector& alongThisDirection,
                                MDoubleArray& uArray, MDoubleArray& vArray, MPointArray& points,
                                double, MSpace::Space space, bool calculateDistance,
                                MDoubleArray* distances, bool, bool* wasExactHit,
                                MStatus* status) const {
  for (MDoubleArray* array : {&uArray, &vArray, distances})
    if (array) array->clear();
  points.clear();
  const auto surface = surfaceIn(*this, object_, space, status);
  if (!surface) return false;
  const auto hits = math::intersect(*surface, toVec3(rayStartingPoint), toVec3(alongThisDirection));
  for (const math::SurfaceHit& hit : hits) {
    uArray.append(hit.parameter.u);
    vArray.append(hit.parameter.v);
    points.append(toMPoint(hit.place));
    if (distances && calculateDistance)
      distances->append(hit.distance * alongThisDirection.length());
  }
  if (wasExactHit) *wasExactHit = !hits.empty();
  return !hits.empty();
}

MObject MFnNurbsSurface::tesselate(MTesselationParams& parms, MObject parentOrOwner,
                                   MStatus* status) {
  const auto surface = surfaceOf(*this, object_, status);
  if (!surface) return {};
  auto mesh = ops::surfaceMesh(*surface, api::optionsOf(parms, *surface));
  setStatus(status, api::toStatus(mesh).statusCode());
  if (!mesh) return {};
  if (auto* data = api::objectAs<api::DataRep>(parentOrOwner)) {
    const bool isFitting = !data->data || data->data->typeName() == "mesh";
    setStatus(status, isFitting ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (isFitting) data->data = std::make_shared<scene::MeshData>(*std::move(mesh));
    return isFitting ? parentOrOwner : MObject();
  }
  const auto made = api::makeShape(parentOrOwner, "mesh", "polySurface#");
  setStatus(status, api::toStatus(made).statusCode());
  if (!made) return {};
  const auto done = nodes::setStoredMesh(*made->shape, *std::move(mesh));
  setStatus(status, api::toStatus(done).statusCode());
  return api::wrap(made->isUnderOwner ? made->shape.get() : made->transform.get());
}

MStatus MFnNurbsSurface::updateSurface() {
  return object_.isNull() ? MStatus::kFailure : MStatus::kSuccess;
}
