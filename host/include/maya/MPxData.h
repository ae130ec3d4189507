#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

class MArgList;
class MFnData;
class MObject;

/// Base of the data types that a plug-in adds.
class MPxData {
 public:
  enum Type { kData, kGeometryData, kLast };

  MPxData();
  virtual ~MPxData();

  virtual MStatus readASCII(const MArgList& args, unsigned int& lastElement);
  virtual MStatus readBinary(std::istream& in, unsigned int length);
  virtual MStatus writeASCII(std::ostream& out);
  virtual MStatus writeBinary(std::ostream& out);
  virtual void copy(const MPxData& src) = 0;
  virtual MTypeId typeId() const = 0;
  virtual MString name() const = 0;
  MObject thisMObject() const;

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
