#pragma once

#include <maya/MFnData.h>
#include <maya/MTypes.h>

/// Works on data that holds two to four numbers.
class MFnNumericData : public MFnData {
 public:
  enum Type {
    kInvalid,
    kBoolean,
    kByte,
    kChar,
    kShort,
    k2Short,
    k3Short,
    kLong,
    kInt = kLong,
    k2Long,
    k2Int = k2Long,
    k3Long,
    k3Int = k3Long,
    kInt64,
    kFloat,
    k2Float,
    k3Float,
    kDouble,
    k2Double,
    k3Double,
    k4Double,
    kAddr,
    kLast
  };

  MFnNumericData() = default;
  MFnNumericData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kNumericData; }

  MObject create(Type dataType, MStatus* status = nullptr);
  Type numericType();
  MStatus getData(short& x, short& y);
  MStatus getData(int& x, int& y);
  MStatus getData(float& x, float& y);
  MStatus getData(double& x, double& y);
  MStatus getData(short& x, short& y, short& z);
  MStatus getData(int& x, int& y, int& z);
  MStatus getData(float& x, float& y, float& z);
  MStatus getData(double& x, double& y, double& z);
  MStatus getData(double& x, double& y, double& z, double& w);
  MStatus setData(short x, short y);
  MStatus setData(int x, int y);
  MStatus setData(float x, float y);
  MStatus setData(double x, double y);
  MStatus setData(short x, short y, short z);
  MStatus setData(int x, int y, int z);
  MStatus setData(float x, float y, float z);
  MStatus setData(double x, double y, double z);
  MStatus setData(double x, double y, double z, double w);
  MStatus getData2Short(short& x, short& y) { return getData(x, y); }
  MStatus getData2Int(int& x, int& y) { return getData(x, y); }
  MStatus getData2Float(float& x, float& y) { return getData(x, y); }
  MStatus getData2Double(double& x, double& y) { return getData(x, y); }
  MStatus getData3Short(short& x, short& y, short& z) { return getData(x, y, z); }
  MStatus getData3Int(int& x, int& y, int& z) { return getData(x, y, z); }
  MStatus getData3Float(float& x, float& y, float& z) { return getData(x, y, z); }
  MStatus getData3Double(double& x, double& y, double& z) { return getData(x, y, z); }
  MStatus getData4Double(double& x, double& y, double& z, double& w) { return getData(x, y, z, w); }
  MStatus setData2Short(short x, short y) { return setData(x, y); }
  MStatus setData2Int(int x, int y) { return setData(x, y); }
  MStatus setData2Float(float x, float y) { return setData(x, y); }
  MStatus setData2Double(double x, double y) { return setData(x, y); }
  MStatus setData3Short(short x, short y, short z) { return setData(x, y, z); }
  MStatus setData3Int(int x, int y, int z) { return setData(x, y, z); }
  MStatus setData3Float(float x, float y, float z) { return setData(x, y, z); }
  MStatus setData3Double(double x, double y, double z) { return setData(x, y, z); }
  MStatus setData4Double(double x, double y, double z, double w) { return setData(x, y, z, w); }
};
