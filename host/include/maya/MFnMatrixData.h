#pragma once

#include <maya/MFnData.h>
#include <maya/MMatrix.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MTypes.h>

/// Works on data that holds a matrix or a transform.
class MFnMatrixData : public MFnData {
 public:
  MFnMatrixData() = default;
  MFnMatrixData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kMatrixData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MMatrix& matrix, MStatus* status = nullptr);
  MObject create(const MTransformationMatrix& transform, MStatus* status = nullptr);
  bool isTransformation(MStatus* status = nullptr) const;
  MTransformationMatrix transformation(MStatus* status = nullptr) const;
  const MMatrix& matrix(MStatus* status = nullptr) const;
  MStatus set(const MMatrix& matrix);
  MStatus set(const MTransformationMatrix& transform);
};
