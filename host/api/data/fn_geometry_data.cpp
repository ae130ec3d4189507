#include <maya/MFnGeometryData.h>

#include "host/api/core/access.h"

using namespace host;
using api::setStatus;

// Geometry data here is always in object space and carries no groups: membership in sets is kept on
// the shape.

namespace {

bool isGeometry(const MObject& object, MStatus* status = nullptr) {
  const bool isThere = api::objectAs<api::DataRep>(object) != nullptr;
  setStatus(status, isThere ? MStatus::kSuccess : MStatus::kFailure);
  return isThere;
}

MStatus refuseGroups() {
  api::rememberError(Error{"Geometry data carries no groups here; sets are kept on the shape"});
  return MStatus::kFailure;
}

}  // namespace

MStatus MFnGeometryData::getMatrix(MMatrix& matrix) const {
  if (!isGeometry(object_)) return MStatus::kFailure;
  matrix = MMatrix();
  return MStatus::kSuccess;
}
MStatus MFnGeometryData::setMatrix(const MMatrix& matrix) {
  if (!isGeometry(object_)) return MStatus::kFailure;
  if (matrix == MMatrix()) return MStatus::kSuccess;
  api::rememberError(Error{"Geometry data has no matrix of its own here"});
  return MStatus::kFailure;
}
bool MFnGeometryData::isIdentity(MStatus* status) const {
  return isGeometry(object_, status);
}
bool MFnGeometryData::isNotIdentity(MStatus* status) const {
  (void)isGeometry(object_, status);
  return false;
}
unsigned int MFnGeometryData::objectGroupCount(MStatus* status) const {
  (void)isGeometry(object_, status);
  return 0;
}
unsigned int MFnGeometryData::objectGroup(unsigned int, MStatus* status) const {
  setStatus(status, MStatus::kInvalidParameter);
  return 0;
}
MFn::Type MFnGeometryData::objectGroupType(unsigned int, MStatus* status) const {
  setStatus(status, MStatus::kInvalidParameter);
  return MFn::kInvalid;
}
bool MFnGeometryData::hasObjectGroup(unsigned int, MStatus* status) const {
  (void)isGeometry(object_, status);
  return false;
}
MStatus MFnGeometryData::addObjectGroup(unsigned int) {
  return refuseGroups();
}
MStatus MFnGeometryData::removeObjectGroup(unsigned int) {
  return refuseGroups();
}
MStatus MFnGeometryData::changeObjectGroupId(unsigned int, unsigned int) {
  return refuseGroups();
}
MObject MFnGeometryData::objectGroupComponent(unsigned int, MStatus* status) const {
  setStatus(status, MStatus::kInvalidParameter);
  return MObject();
}
MStatus MFnGeometryData::setObjectGroupComponent(unsigned int, const MObject&) {
  return refuseGroups();
}
MStatus MFnGeometryData::addObjectGroupComponent(unsigned int, const MObject&) {
  return refuseGroups();
}
MStatus MFnGeometryData::removeObjectGroupComponent(unsigned int, const MObject&) {
  return refuseGroups();
}
