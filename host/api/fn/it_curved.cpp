#include <maya/MItCurveCV.h>
#include <maya/MItSurfaceCV.h>

#include <algorithm>

#include "host/api/fn/curved_target.h"

namespace host::api {
namespace {

/// Some control points and where the walk over them stands.
struct CurvedWalk final : SharedRep {
  CurvedWalk(const MObject& object, const MDagPath& path, bool isSurface, bool useSeam)
      : points(object, path) {
    if (points.isThere() && points.isSurface() == isSurface) {
      if (isSurface)
        visitSurface(useSeam);
      else
        for (std::size_t i = 0; i < points.size(); ++i) visited.push_back(i);
      isThere = true;
    }
  }
  CurvedWalk(const CurvedWalk&) = delete;
  ~CurvedWalk() override { (void)points.flush(); }

  void visitSurface(bool useSeam) {
    const math::NurbsSurface& surface = points.surface();
    const auto repeated = [&](math::CurveForm form, int degree) {
      return useSeam && form == math::CurveForm::Periodic ? degree : 0;
    };
    columns = at(surface.countV());
    rows = at(surface.countU() - repeated(surface.formU, surface.degreeU));
    rowLength = columns - at(repeated(surface.formV, surface.degreeV));
    for (std::size_t u = 0; u < rows; ++u)
      for (std::size_t v = 0; v < rowLength; ++v) visited.push_back(u * columns + v);
  }
  [[nodiscard]] bool isAtEnd() const { return position >= visited.size(); }
  [[nodiscard]] std::size_t here() const { return visited[position]; }

  MStatus moveTo(const MPoint& place, MSpace::Space space) {
    if (isAtEnd()) return MStatus::kFailure;
    const MStatus done = points.setPoint(here(), place, space);
    if (!done || columns == 0) return done;
    // What a periodic direction repeats goes along.
    const std::size_t allRows = points.size() / columns;
    for (std::size_t u = here() / columns; u < allRows; u += rows)
      for (std::size_t v = here() % columns; v < columns; v += rowLength)
        if (const std::size_t twin = u * columns + v; twin != here())
          (void)points.setPoint(twin, place, space);
    return done;
  }
  MStatus next() {
    if (isAtEnd()) return MStatus::kFailure;
    ++position;
    isRowDone = rowLength > 0 && position % rowLength == 0;
    return isAtEnd() ? points.flush() : MStatus(MStatus::kSuccess);
  }
  MStatus nextRow() {
    if (isAtEnd() && !isRowDone) return MStatus::kFailure;
    if (!isRowDone) position = std::min(visited.size(), (position / rowLength + 1) * rowLength);
    isRowDone = false;
    return isAtEnd() ? points.flush() : MStatus(MStatus::kSuccess);
  }
  MStatus reset() {
    position = 0;
    isRowDone = false;
    return points.flush();
  }

  CurvedPoints points;
  std::vector<std::size_t> visited;
  std::size_t position = 0;
  std::size_t rows = 0, columns = 0, rowLength = 0;  ///< of a surface
  bool isThere = false, isRowDone = false;
};

CurvedWalk* walkOf(const Handle& handle) {
  return static_cast<CurvedWalk*>(handle.get());
}

Handle begin(const MObject& object, const MDagPath& path, bool isSurface, bool useSeam,
             MStatus* status) {
  auto* walk = new CurvedWalk(object, path, isSurface, useSeam);
  setStatus(status, walk->isThere ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return Handle(walk);
}

/// Begins another walk; what the one before moved is written first.
MStatus beginAgain(Handle& handle, const MObject& object, const MDagPath& path, bool isSurface,
                   bool useSeam) {
  handle = Handle();
  MStatus status;
  handle = begin(object, path, isSurface, useSeam, &status);
  return status;
}

bool hasMaker(const CurvedWalk& walk, MStatus* status) {
  dg::Node* shape = walk.points.target().shape();
  setStatus(status, shape ? MStatus::kSuccess : MStatus::kFailure);
  return shape && shape->isAlive() && shape->graph().source(shape->plug("create"));
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;
using api::walkOf;

#define HOST_CONTROL_POINTS(Class, update)                                         \
  bool Class::isDone(MStatus* status) const {                                      \
    setStatus(status, MStatus::kSuccess);                                          \
    return walkOf(handle_)->isAtEnd();                                             \
  }                                                                                \
  MStatus Class::next() {                                                          \
    return walkOf(handle_)->next();                                                \
  }                                                                                \
  MStatus Class::reset() {                                                         \
    return walkOf(handle_)->reset();                                               \
  }                                                                                \
  int Class::index(MStatus* status) const {                                        \
    const api::CurvedWalk* walk = walkOf(handle_);                                 \
    setStatus(status, walk->isAtEnd() ? MStatus::kFailure : MStatus::kSuccess);    \
    return static_cast<int>(walk->isAtEnd() ? walk->points.size() : walk->here()); \
  }                                                                                \
  MPoint Class::position(MSpace::Space space, MStatus* status) const {             \
    const api::CurvedWalk* walk = walkOf(handle_);                                 \
    if (!walk->isAtEnd()) return walk->points.point(walk->here(), space, status);  \
    setStatus(status, MStatus::kFailure);                                          \
    return {};                                                                     \
  }                                                                                \
  MStatus Class::setPosition(const MPoint& point, MSpace::Space space) {           \
    return walkOf(handle_)->moveTo(point, space);                                  \
  }                                                                                \
  MStatus Class::translateBy(const MVector& vector, MSpace::Space space) {         \
    MStatus status;                                                                \
    const MPoint before = position(space, &status);                                \
    return status ? setPosition(before + vector, space) : status;                  \
  }                                                                                \
  MStatus Class::update() {                                                        \
    return walkOf(handle_)->points.flush();                                        \
  }                                                                                \
  bool Class::hasHistoryOnCreate(MStatus* status) const {                          \
    return api::hasMaker(*walkOf(handle_), status);                                \
  }
HOST_CONTROL_POINTS(MItCurveCV, updateCurve)
HOST_CONTROL_POINTS(MItSurfaceCV, updateSurface)
#undef HOST_CONTROL_POINTS

MItCurveCV::MItCurveCV(MObject& curve, MStatus* status)
    : handle_(api::begin(curve, MDagPath(), false, false, status)) {}
MItCurveCV::MItCurveCV(const MDagPath& curve, const MObject&, MStatus* status)
    : handle_(api::begin(curve.node(), curve, false, false, status)) {}
MStatus MItCurveCV::reset(MObject& curve) {
  return api::beginAgain(handle_, curve, MDagPath(), false, false);
}
MStatus MItCurveCV::reset(const MDagPath& curve, const MObject&) {
  return api::beginAgain(handle_, curve.node(), curve, false, false);
}

MItSurfaceCV::MItSurfaceCV(MObject& surface, bool useSeam, MStatus* status)
    : handle_(api::begin(surface, MDagPath(), true, useSeam, status)) {}
MItSurfaceCV::MItSurfaceCV(const MDagPath& surface, const MObject&, bool useSeam, MStatus* status)
    : handle_(api::begin(surface.node(), surface, true, useSeam, status)) {}
MStatus MItSurfaceCV::reset(MObject& surface, bool useSeam) {
  return api::beginAgain(handle_, surface, MDagPath(), true, useSeam);
}
MStatus MItSurfaceCV::reset(const MDagPath& surface, const MObject&, bool useSeam) {
  return api::beginAgain(handle_, surface.node(), surface, true, useSeam);
}
MStatus MItSurfaceCV::nextRow() {
  return walkOf(handle_)->nextRow();
}
bool MItSurfaceCV::isRowDone(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return walkOf(handle_)->isRowDone || walkOf(handle_)->isAtEnd();
}
MStatus MItSurfaceCV::getIndex(int& indexU, int& indexV) const {
  const api::CurvedWalk* walk = walkOf(handle_);
  if (walk->isAtEnd()) return MStatus::kFailure;
  indexU = static_cast<int>(walk->here() / walk->columns);
  indexV = static_cast<int>(walk->here() % walk->columns);
  return MStatus::kSuccess;
}
