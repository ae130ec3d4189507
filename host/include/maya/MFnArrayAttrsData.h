#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MFnData.h>
#include <maya/MIntArray.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>
#include <maya/MVectorArray.h>

/// Works on data that holds arrays by name, as emitters hand them to instancers.
///
/// The arrays that it returns are those of the data: what is written to one, appended or assigned,
/// is in the data at once. A copy of one has elements of its own.
class MFnArrayAttrsData : public MFnData {
 public:
  enum Type { kInvalid = 0, kVectorArray, kDoubleArray, kIntArray, kStringArray, kLast };

  MFnArrayAttrsData() = default;
  MFnArrayAttrsData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kDynArrayAttrsData; }

  MObject create(MStatus* status = nullptr);
  MStatus clear();
  unsigned int count() const;
  MStringArray list(MStatus* status = nullptr) const;
  bool checkArrayExist(const MString& attrName, Type& arrayType, MStatus* status = nullptr) const;

  /// The array of a name, made empty when there is none; one of another type is a failure.
  MVectorArray vectorArray(const MString& attrName, MStatus* status = nullptr);
  MDoubleArray doubleArray(const MString& attrName, MStatus* status = nullptr);
  MIntArray intArray(const MString& attrName, MStatus* status = nullptr);
  MStringArray stringArray(const MString& attrName, MStatus* status = nullptr);

  /// The array of a name that is there.
  MVectorArray getVectorData(const MString& attrName, MStatus* status = nullptr);
  MDoubleArray getDoubleData(const MString& attrName, MStatus* status = nullptr);
  MIntArray getIntData(const MString& attrName, MStatus* status = nullptr);
  MStringArray getStringData(const MString& attrName, MStatus* status = nullptr);
};
