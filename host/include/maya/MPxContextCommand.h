#pragma once

#include <maya/MArgParser.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MSyntax.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

class MDoubleArray;
class MIntArray;
class MPxContext;

/// Base of the commands that make, edit and query tool contexts.
class MPxContextCommand {
 public:
  MPxContextCommand();
  virtual ~MPxContextCommand();
  MPxContextCommand(const MPxContextCommand&) = delete;
  MPxContextCommand& operator=(const MPxContextCommand&) = delete;

  virtual MStatus doEditFlags();
  virtual MStatus doQueryFlags();
  virtual MPxContext* makeObj();
  /// Adds flags to `syntax()`.
  virtual MStatus appendSyntax();

  MStatus setResult(bool result);
  MStatus setResult(int result);
  MStatus setResult(double result);
  MStatus setResult(const MString& result);
  MStatus setResult(const MIntArray& result);
  MStatus setResult(const MDoubleArray& result);
  MStatus setResult(const MStringArray& result);

 protected:
  MArgParser parser(MStatus* status = nullptr) const;
  /// Returns the command's own syntax: flags added to a copy are added to it.
  MSyntax syntax(MStatus* status = nullptr) const;

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
