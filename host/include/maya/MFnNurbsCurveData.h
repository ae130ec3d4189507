#pragma once

#include <maya/MFnGeometryData.h>
#include <maya/MTypes.h>

/// Works on data that holds a curve.
class MFnNurbsCurveData : public MFnGeometryData {
 public:
  MFnNurbsCurveData() = default;
  MFnNurbsCurveData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kNurbsCurveData; }

  /// Makes data without a curve; `MFnNurbsCurve::create` with it as parent fills it.
  MObject create(MStatus* status = nullptr);
};
