#include <algorithm>

#include "host/mel/engine.h"
#include "host/mel/machine.h"
#include "host/mel/operators.h"

namespace host::mel {

bool Machine::fail(std::string message) {
  error_ = std::move(message);
  return false;
}

bool Machine::fail(Result<void> result) {
  if (result) return true;
  error_ = std::move(result).error().message;
  return false;
}

/// Type None keeps the source's type; an array or matrix is then copied unless it may be moved.
bool Machine::convert(Value& target, Value& source, Type type, bool mayMove) {
  if (type == Type::None || source.type() == type) {
    const bool isShareable = !isArray(source.type()) && source.type() != Type::Matrix;
    if (isShareable) {
      target = source;
    } else if (mayMove && source.isUnique()) {
      Value moved = std::move(source);
      target = std::move(moved);
    } else {
      target = source.clone();
    }
    return true;
  }
  Result<Value> converted = source.convertedTo(type);
  if (!converted) return fail(std::move(converted).error().message);
  target = std::move(*converted);
  return true;
}

/// The first value other than None fixes the type of a variable declared by a command's result.
bool Machine::assignDynamic(Value& target, Value& source, bool mayMove) {
  return convert(target, source, target.type(), mayMove);
}

bool Machine::assignMatrix(Value& target, Value& source) {
  if (source.type() != Type::Matrix)
    return fail(
        fmt::format("Cannot convert data of type {} to type matrix.", typeName(source.type())));
  if (target.type() == Type::Matrix && !target.matrix().cells.empty()) {
    const Matrix& to = target.matrix();
    const Matrix& from = source.matrix();
    if (to.rows != from.rows || to.columns != from.columns)
      return fail(fmt::format(
          "Cannot assign data of type matrix[{}][{}] to a variable of type matrix[{}][{}].",
          from.rows, from.columns, to.rows, to.columns));
  }
  target = source.clone();
  return true;
}

bool Machine::storeGlobal(GlobalVariable& variable, Value& source) {
  if (variable.type == Type::Matrix) return assignMatrix(variable.value, source);
  if (variable.type == Type::None) variable.type = source.type();
  return convert(variable.value, source, variable.type, true);
}

bool Machine::appendText(Value& target, const Value& suffix) {
  std::string converted;
  if (!suffix.isString()) {
    if (isArray(suffix.type()) || suffix.type() == Type::Matrix)
      return fail(
          fmt::format("Illegal operation \"+\" on data of type {}.", typeName(suffix.type())));
    converted = *suffix.toText();
  }
  const std::size_t length = suffix.isString() ? suffix.string().size() : converted.size();
  if (target.string().size() + length > kMaxStringBytes) return fail("The string is too long.");
  if (suffix.isString()) {
    const Value held = suffix;  // the target may be the suffix
    target.mutableString() += held.string();
  } else {
    target.mutableString() += converted;
  }
  return true;
}

bool Machine::makeVector(Value& target, const Value* parts) {
  double numbers[3];
  for (int i = 0; i < 3; ++i) {
    const Result<double> number = parts[i].toFloat();
    if (!number) return fail(number.error().message);
    numbers[i] = *number;
  }
  target = Value(Vec3{numbers[0], numbers[1], numbers[2]});
  return true;
}

bool Machine::makeMatrix(Value& target, const Value* cells, int rows, int columns) {
  Matrix matrix{rows, columns, {}};
  const auto count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
  matrix.cells.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const Result<double> number = cells[i].toFloat();
    if (!number) return fail(number.error().message);
    matrix.cells.push_back(*number);
  }
  target = Value(std::move(matrix));
  return true;
}

/// Without a given type the elements decide: any string makes strings, any vector vectors, any
/// float floats.
bool Machine::makeArray(Value& target, std::span<const Value> elements, Type type) {
  if (type == Type::None) {
    Type widest = Type::Int;
    for (const Value& element : elements) {
      if (isArray(element.type()) || element.type() == Type::Matrix)
        return fail(fmt::format("An array cannot hold data of type {}.", typeName(element.type())));
      const auto rank = [](Type t) {
        return t == Type::String ? 3 : t == Type::Vector ? 2 : t == Type::Float ? 1 : 0;
      };
      if (rank(element.type()) > rank(widest)) widest = element.type();
    }
    type = arrayType(widest);
  }
  target = Value::defaultOf(type);
  return extendArray(target, elements);
}

bool Machine::extendArray(Value& target, std::span<const Value> elements) {
  for (const Value& element : elements)
    if (!fail(writeElement(target, static_cast<std::int64_t>(target.size()), element)))
      return false;
  return true;
}

bool Machine::declareArray(Value& target, std::int32_t size, Type type) {
  if (size < 0 || static_cast<std::size_t>(size) > kMaxArrayElements)
    return fail(fmt::format("Array size {} is out of range.", size));
  const auto count = static_cast<std::size_t>(size);
  switch (type) {
    case Type::IntArray:
      target = Value(IntArray(count));
      break;
    case Type::FloatArray:
      target = Value(FloatArray(count));
      break;
    case Type::StringArray:
      target = Value(StringArray(count));
      break;
    default:
      target = Value(VectorArray(count));
  }
  return true;
}

bool Machine::declareMatrix(Value& target, std::int32_t rows, std::int32_t columns) {
  constexpr std::int32_t kMaxSide = 4096;
  if (rows < 1 || columns < 1 || rows > kMaxSide || columns > kMaxSide)
    return fail(fmt::format("Matrix size [{}][{}] is out of range.", rows, columns));
  const auto count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
  target = Value(Matrix{rows, columns, std::vector<double>(count)});
  return true;
}

bool Machine::nextElement(Value& target, const Value& list, std::int32_t& position, bool& isDone) {
  if (!list.isNone() && !isArray(list.type()))
    return fail(fmt::format("A for-in loop needs an array but was given data of type {}.",
                            typeName(list.type())));
  isDone = list.isNone() || static_cast<std::size_t>(position) >= list.size();
  return isDone || fail(readElement(list, position++, target));
}

}  // namespace host::mel
