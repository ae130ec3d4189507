#pragma once

#include <maya/MFnAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MTypes.h>

/// Works on attributes that hold one to four numbers.
class MFnNumericAttribute : public MFnAttribute {
 public:
  MFnNumericAttribute() = default;
  MFnNumericAttribute(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kNumericAttribute; }

  MObject create(const MString& fullName, const MString& briefName, MFnNumericData::Type unitType,
                 double defaultValue = 0, MStatus* status = nullptr);
  MObject create(const MString& fullName, const MString& briefName, const MObject& child1,
                 const MObject& child2 = MObject::kNullObj,
                 const MObject& child3 = MObject::kNullObj, MStatus* status = nullptr);
  MObject create(const MString& fullName, const MString& briefName, const MObject& child1,
                 const MObject& child2, const MObject& child3, const MObject& child4,
                 MStatus* status = nullptr);
  /// Makes a colour: three floats with children R, G and B.
  MObject createColor(const MString& fullName, const MString& briefName, MStatus* status = nullptr);
  /// Makes a point: three floats with children X, Y and Z.
  MObject createPoint(const MString& fullName, const MString& briefName, MStatus* status = nullptr);
  MObject createAddr(const MString& fullName, const MString& briefName, MStatus* status = nullptr);
  MObject createAddr(const MString& fullName, const MString& briefName, void* defaultValue,
                     MStatus* status = nullptr);
  MObject child(unsigned int index, MStatus* status = nullptr) const;
  MFnNumericData::Type unitType(MStatus* status = nullptr) const;

  bool hasMin(MStatus* status = nullptr) const;
  bool hasMax(MStatus* status = nullptr) const;
  bool hasSoftMin(MStatus* status = nullptr) const;
  bool hasSoftMax(MStatus* status = nullptr) const;
  MStatus getMin(double& minValue) const;
  MStatus getMin(double& minValue1, double& minValue2) const;
  MStatus getMin(double& minValue1, double& minValue2, double& minValue3) const;
  MStatus getMax(double& maxValue) const;
  MStatus getMax(double& maxValue1, double& maxValue2) const;
  MStatus getMax(double& maxValue1, double& maxValue2, double& maxValue3) const;
  MStatus getSoftMin(double& minValue) const;
  MStatus getSoftMax(double& maxValue) const;
  MStatus setMin(double minValue);
  MStatus setMin(double minValue1, double minValue2);
  MStatus setMin(double minValue1, double minValue2, double minValue3);
  MStatus setMin(double minValue1, double minValue2, double minValue3, double minValue4);
  MStatus setMax(double maxValue);
  MStatus setMax(double maxValue1, double maxValue2);
  MStatus setMax(double maxValue1, double maxValue2, double maxValue3);
  MStatus setMax(double maxValue1, double maxValue2, double maxValue3, double maxValue4);
  MStatus setSoftMin(double minValue);
  MStatus setSoftMax(double maxValue);

  MStatus getDefault(bool& value) const;
  MStatus getDefault(char& value) const;
  MStatus getDefault(short& value) const;
  MStatus getDefault(int& value) const;
  MStatus getDefault(float& value) const;
  MStatus getDefault(double& value) const;
  MStatus getDefault(int& value1, int& value2) const;
  MStatus getDefault(float& value1, float& value2) const;
  MStatus getDefault(double& value1, double& value2) const;
  MStatus getDefault(int& value1, int& value2, int& value3) const;
  MStatus getDefault(float& value1, float& value2, float& value3) const;
  MStatus getDefault(double& value1, double& value2, double& value3) const;
  MStatus getDefault(double& value1, double& value2, double& value3, double& value4) const;
  MStatus setDefault(bool value);
  MStatus setDefault(char value);
  MStatus setDefault(short value);
  MStatus setDefault(int value);
  MStatus setDefault(float value);
  MStatus setDefault(double value);
  MStatus setDefault(int value1, int value2);
  MStatus setDefault(float value1, float value2);
  MStatus setDefault(double value1, double value2);
  MStatus setDefault(int value1, int value2, int value3);
  MStatus setDefault(float value1, float value2, float value3);
  MStatus setDefault(double value1, double value2, double value3);
  MStatus setDefault(double value1, double value2, double value3, double value4);
};
