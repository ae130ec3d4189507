#pragma once

#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Base of the function sets: classes that read and change the object that they are attached to.
class MFnBase {
 public:
  MFnBase() = default;
  virtual ~MFnBase();

  virtual MFn::Type type() const;
  /// Tells whether the set works on such objects.
  bool hasObj(MFn::Type type) const;
  bool hasObj(const MObject& object) const;
  MObject object(MStatus* status = nullptr) const;
  /// Attaches the set; an object of another kind is refused and leaves the set without one.
  virtual MStatus setObject(MObject& object);
  virtual MStatus setObject(const MObject& object);

 protected:
  friend struct host::api::Access;
  /// Attaches in a constructor of a derived set: the status goes to `status` if there is one.
  void attach(const MObject& object, MStatus* status);

  MObject object_;
  /// Kept by the host for the attached object; null until it is needed, and after `setObject`.
  host::api::Handle handle_;
};
