#pragma once

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MFnAttribute.h>
#include <maya/MTime.h>
#include <maya/MTypes.h>

/// Works on attributes that hold an angle, a distance or a time.
class MFnUnitAttribute : public MFnAttribute {
 public:
  enum Type { kInvalid, kAngle, kDistance, kTime, kLast };

  MFnUnitAttribute() = default;
  MFnUnitAttribute(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kUnitAttribute; }

  MObject create(const MString& fullName, const MString& briefName, Type unitType,
                 double defaultValue = 0.0, MStatus* status = nullptr);
  MObject create(const MString& fullName, const MString& briefName, const MDistance& defaultValue,
                 MStatus* status = nullptr);
  MObject create(const MString& fullName, const MString& briefName, const MAngle& defaultValue,
                 MStatus* status = nullptr);
  MObject create(const MString& fullName, const MString& briefName, const MTime& defaultValue,
                 MStatus* status = nullptr);
  Type unitType(MStatus* status = nullptr) const;

  bool hasMin(MStatus* status = nullptr) const;
  bool hasMax(MStatus* status = nullptr) const;
  bool hasSoftMin(MStatus* status = nullptr) const;
  bool hasSoftMax(MStatus* status = nullptr) const;
  MStatus getMin(double& value) const;
  MStatus getMin(MDistance& value) const;
  MStatus getMin(MAngle& value) const;
  MStatus getMin(MTime& value) const;
  MStatus getMax(double& value) const;
  MStatus getMax(MDistance& value) const;
  MStatus getMax(MAngle& value) const;
  MStatus getMax(MTime& value) const;
  MStatus setMin(double value);
  MStatus setMin(const MDistance& value);
  MStatus setMin(const MAngle& value);
  MStatus setMin(const MTime& value);
  MStatus setMax(double value);
  MStatus setMax(const MDistance& value);
  MStatus setMax(const MAngle& value);
  MStatus setMax(const MTime& value);
  MStatus getSoftMin(double& value) const;
  MStatus getSoftMax(double& value) const;
  MStatus setSoftMin(double value);
  MStatus setSoftMin(const MDistance& value);
  MStatus setSoftMin(const MAngle& value);
  MStatus setSoftMin(const MTime& value);
  MStatus setSoftMax(double value);
  MStatus setSoftMax(const MDistance& value);
  MStatus setSoftMax(const MAngle& value);
  MStatus setSoftMax(const MTime& value);
  MStatus getDefault(double& value) const;
  MStatus getDefault(MDistance& value) const;
  MStatus getDefault(MAngle& value) const;
  MStatus getDefault(MTime& value) const;
  MStatus setDefault(double value);
  MStatus setDefault(const MDistance& value);
  MStatus setDefault(const MAngle& value);
  MStatus setDefault(const MTime& value);
};
