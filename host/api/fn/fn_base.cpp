#include <maya/MFnBase.h>

#include "host/api/core/access.h"
#include "host/api/core/fn_types.h"

using host::api::setStatus;

MFnBase::~MFnBase() = default;

MFn::Type MFnBase::type() const {
  return MFn::kBase;
}
bool MFnBase::hasObj(MFn::Type wanted) const {
  return object_.hasFn(wanted);
}
bool MFnBase::hasObj(const MObject& object) const {
  return object.hasFn(type());
}

MObject MFnBase::object(MStatus* status) const {
  setStatus(status, object_.isNull() ? MStatus::kFailure : MStatus::kSuccess);
  return object_;
}

MStatus MFnBase::setObject(MObject& object) {
  return setObject(static_cast<const MObject&>(object));
}

MStatus MFnBase::setObject(const MObject& object) {
  MStatus status;
  attach(object, &status);
  return status;
}

void MFnBase::attach(const MObject& object, MStatus* status) {
  handle_ = host::api::Handle();
  const bool fits = object.hasFn(type());
  object_ = fits ? object : MObject();
  setStatus(status, fits ? MStatus::kSuccess : MStatus::kInvalidParameter);
}
