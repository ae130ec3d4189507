#pragma once

#include <maya/MFloatMatrix.h>
#include <maya/MFnAttribute.h>
#include <maya/MMatrix.h>
#include <maya/MTypes.h>

/// Works on attributes that hold a matrix.
class MFnMatrixAttribute : public MFnAttribute {
 public:
  enum Type { kFloat, kDouble };

  MFnMatrixAttribute() = default;
  MFnMatrixAttribute(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kMatrixAttribute; }

  MObject create(const MString& fullName, const MString& briefName, Type matrixType = kDouble,
                 MStatus* status = nullptr);
  bool isDoublePrecision(MStatus* status = nullptr) const;
  MStatus getDefault(MMatrix& defaultMatrix) const;
  MStatus getDefault(MFloatMatrix& defaultMatrix) const;
  MStatus setDefault(const MMatrix& defaultMatrix);
  MStatus setDefault(const MFloatMatrix& defaultMatrix);
};
