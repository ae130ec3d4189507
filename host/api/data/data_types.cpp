#include "host/api/data/data_types.h"

#include "host/dg/numeric_data.h"

namespace host::api {
namespace {

struct DataName {
  MFnData::Type type;
  std::string_view name;
};
constexpr DataName kDataNames[] = {
    {MFnData::kString, "string"},
    {MFnData::kMatrix, "matrix"},
    {MFnData::kStringArray, "stringArray"},
    {MFnData::kDoubleArray, "doubleArray"},
    {MFnData::kFloatArray, "floatArray"},
    {MFnData::kIntArray, "Int32Array"},
    {MFnData::kPointArray, "pointArray"},
    {MFnData::kVectorArray, "vectorArray"},
    {MFnData::kMatrixArray, "matrixArray"},
    {MFnData::kComponentList, "componentList"},
    {MFnData::kMesh, "mesh"},
    {MFnData::kUInt64Array, "UInt64Array"},
    {MFnData::kNurbsCurve, "nurbsCurve"},
    {MFnData::kNurbsSurface, "nurbsSurface"},
    {MFnData::kLattice, "lattice"},
    {MFnData::kSubdSurface, "subd"},
    {MFnData::kDynArrayAttrs, "arrayAttrs"},
};

struct NumericName {
  MFnNumericData::Type type;
  NumericKind kind;
};
using dg::AttributeType;
constexpr NumericName kNumericNames[] = {
    {MFnNumericData::kBoolean, {AttributeType::Bool, 1, {}}},
    {MFnNumericData::kByte, {AttributeType::Byte, 1, {}}},
    {MFnNumericData::kChar, {AttributeType::Char, 1, {}}},
    {MFnNumericData::kShort, {AttributeType::Short, 1, {}}},
    {MFnNumericData::k2Short, {AttributeType::Short, 2, "short2"}},
    {MFnNumericData::k3Short, {AttributeType::Short, 3, "short3"}},
    {MFnNumericData::kLong, {AttributeType::Long, 1, {}}},
    {MFnNumericData::k2Long, {AttributeType::Long, 2, "long2"}},
    {MFnNumericData::k3Long, {AttributeType::Long, 3, "long3"}},
    {MFnNumericData::kInt64, {AttributeType::Int64, 1, {}}},
    {MFnNumericData::kFloat, {AttributeType::Float, 1, {}}},
    {MFnNumericData::k2Float, {AttributeType::Float, 2, "float2"}},
    {MFnNumericData::k3Float, {AttributeType::Float, 3, "float3"}},
    {MFnNumericData::kDouble, {AttributeType::Double, 1, {}}},
    {MFnNumericData::k2Double, {AttributeType::Double, 2, "double2"}},
    {MFnNumericData::k3Double, {AttributeType::Double, 3, "double3"}},
    {MFnNumericData::k4Double, {AttributeType::Double, 4, "double4"}},
    {MFnNumericData::kAddr, {AttributeType::Int64, 1, {}}},
};

}  // namespace

std::string_view dataTypeName(MFnData::Type type) {
  for (const DataName& entry : kDataNames)
    if (entry.type == type) return entry.name;
  return {};
}

MFnData::Type dataTypeOf(std::string_view typeName) {
  for (const DataName& entry : kDataNames)
    if (entry.name == typeName) return entry.type;
  if (dg::numericDataSize(typeName) > 0) return MFnData::kNumeric;
  return typeName.empty() ? MFnData::kAny : MFnData::kPlugin;
}

MFnData::Type dataTypeOf(const dg::Attribute& attribute) {
  switch (attribute.type) {
    case AttributeType::String:
      return MFnData::kString;
    case AttributeType::Matrix:
      return MFnData::kMatrix;
    case AttributeType::Typed:
      return dataTypeOf(std::string_view(attribute.dataType));
    case AttributeType::Generic:
      return MFnData::kAny;
    case AttributeType::Message:
      return MFnData::kInvalid;
    case AttributeType::Compound:
      return attribute.compoundType.empty() ? MFnData::kInvalid : MFnData::kNumeric;
    default:
      return MFnData::kNumeric;
  }
}

bool numericKind(MFnNumericData::Type type, NumericKind& kind) {
  for (const NumericName& entry : kNumericNames) {
    if (entry.type != type) continue;
    kind = entry.kind;
    return true;
  }
  return false;
}

MFnNumericData::Type numericTypeOf(std::string_view compound) {
  for (const NumericName& entry : kNumericNames)
    if (!compound.empty() && entry.kind.compound == compound) return entry.type;
  return MFnNumericData::kInvalid;
}

MFnNumericData::Type numericTypeOf(const dg::Attribute& attribute) {
  if (attribute.isCompound()) return numericTypeOf(std::string_view(attribute.compoundType));
  if (attribute.type == AttributeType::Enum) return MFnNumericData::kShort;
  if (!attribute.isNumeric()) return MFnNumericData::kInvalid;
  if (attribute.type >= AttributeType::Distance) return MFnNumericData::kDouble;
  for (const NumericName& entry : kNumericNames)
    if (entry.kind.count == 1 && entry.kind.leaf == attribute.type) return entry.type;
  return MFnNumericData::kInvalid;
}

}  // namespace host::api
