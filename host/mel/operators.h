#pragma once

#include "host/base/result.h"
#include "host/mel/ast.h"
#include "host/mel/value.h"

namespace host::mel {

/// Applies a binary operator to any two values. Comparisons give 0 or 1; a string on either side of
/// + joins texts. `result` may be one of the operands.
Result<void> applyBinary(BinaryOp op, const Value& left, const Value& right, Value& result);
/// The type applyBinary gives for operands of these types; None if it depends on the values or is
/// an error.
[[nodiscard]] Type binaryType(BinaryOp op, Type left, Type right);
Result<void> applyNegate(const Value& operand, Value& result);

/// Reads an element of an array (a row and column of a matrix). Past the end gives the element
/// type's default.
Result<void> readElement(const Value& array, std::int64_t index, Value& result);
Result<void> readCell(const Value& matrix, std::int64_t row, std::int64_t column, Value& result);
/// Writes an element, converting it to the array's type and growing the array as needed, up to a
/// bound.
Result<void> writeElement(Value& array, std::int64_t index, const Value& element);
Result<void> writeCell(Value& matrix, std::int64_t row, std::int64_t column, const Value& cell);
Result<void> readComponent(const Value& vector, int component, Value& result);

/// Bounds against scripts that eat all memory.
inline constexpr std::size_t kMaxStringBytes = std::size_t{1} << 28;
inline constexpr std::size_t kMaxArrayElements = std::size_t{1} << 27;

}  // namespace host::mel
