#pragma once

#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>

#include <string>
#include <string_view>

#include "host/dg/attribute.h"

namespace host::api {

/// The name that a payload of an API data type has in the graph; empty for kinds that it does not
/// know by name (numbers, plug-in data, anything).
[[nodiscard]] std::string_view dataTypeName(MFnData::Type type);
/// The reverse; kPlugin for names of no built-in kind.
[[nodiscard]] MFnData::Type dataTypeOf(std::string_view typeName);
[[nodiscard]] MFnData::Type dataTypeOf(const dg::Attribute& attribute);

/// The numbers behind a numeric type: how many and what an attribute of one of them is.
struct NumericKind {
  dg::AttributeType leaf = dg::AttributeType::Double;
  int count = 1;
  std::string_view compound;  ///< "double3", ...; empty for single numbers
};
/// False for kInvalid and numbers that are no type.
[[nodiscard]] bool numericKind(MFnNumericData::Type type, NumericKind& kind);
/// kInvalid for attributes that hold no numbers.
[[nodiscard]] MFnNumericData::Type numericTypeOf(const dg::Attribute& attribute);
[[nodiscard]] MFnNumericData::Type numericTypeOf(std::string_view compound);

}  // namespace host::api
