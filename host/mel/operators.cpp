#include "host/mel/operators.h"

#include <algorithm>
#include <cmath>

namespace host::mel {

namespace {

tl::unexpected<Error> illegal(BinaryOp op, const Value& left, const Value& right) {
  const bool isLeftFine = isNumber(left.type());
  return fail("Illegal operation \"{}\" on data of type {}.", operatorText(op),
              typeName(isLeftFine ? right.type() : left.type()));
}

std::int32_t wrapped(std::int64_t value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}

template <class T>
bool compare(BinaryOp op, const T& left, const T& right) {
  switch (op) {
    case BinaryOp::Less:
      return left < right;
    case BinaryOp::LessEqual:
      return left <= right;
    case BinaryOp::Greater:
      return left > right;
    case BinaryOp::GreaterEqual:
      return left >= right;
    case BinaryOp::Equal:
      return left == right;
    default:
      return !(left == right);
  }
}

Result<void> applyInts(BinaryOp op, std::int64_t a, std::int64_t b, Value& result) {
  if (isComparison(op)) {
    result = Value(compare(op, a, b));
    return {};
  }
  switch (op) {
    case BinaryOp::Add:
      result = Value(wrapped(a + b));
      return {};
    case BinaryOp::Subtract:
      result = Value(wrapped(a - b));
      return {};
    case BinaryOp::Multiply:
      result = Value(wrapped(a * b));
      return {};
    case BinaryOp::Divide:
      if (b == 0) return fail("Division by zero error.");
      result = Value(wrapped(a / b));
      return {};
    case BinaryOp::Modulo:
      if (b == 0) return fail("Division by zero error.");
      result = Value(wrapped(a % b));
      return {};
    default:
      return fail("Illegal operation \"{}\" on data of type int.", operatorText(op));
  }
}

Result<double> applyFloat(BinaryOp op, double a, double b) {
  switch (op) {
    case BinaryOp::Add:
      return a + b;
    case BinaryOp::Subtract:
      return a - b;
    case BinaryOp::Multiply:
      return a * b;
    case BinaryOp::Divide:
      if (b == 0.0) return fail("Division by zero error.");
      return a / b;
    case BinaryOp::Modulo:
      if (b == 0.0) return fail("Division by zero error.");
      return std::fmod(a, b);
    default:
      return fail("Illegal operation \"{}\" on data of type float.", operatorText(op));
  }
}

Result<void> applyFloats(BinaryOp op, double a, double b, Value& result) {
  if (isComparison(op)) {
    result = Value(compare(op, a, b));
    return {};
  }
  const Result<double> number = applyFloat(op, a, b);
  if (!number) return failWith(number.error());
  result = Value(*number);
  return {};
}

Result<void> applyStrings(BinaryOp op, const Value& left, const Value& right, Value& result) {
  const Result<std::string> a = left.toText();
  const Result<std::string> b = right.toText();
  if (!a || !b || (op != BinaryOp::Add && !isComparison(op))) return illegal(op, left, right);
  if (op != BinaryOp::Add) {
    result = Value(compare(op, *a, *b));
    return {};
  }
  if (a->size() + b->size() > kMaxStringBytes) return fail("The string is too long.");
  result = Value(*a + *b);
  return {};
}

double squaredLength(const Vec3& v) {
  return v.x * v.x + v.y * v.y + v.z * v.z;
}

/// A number next to a vector stands for a vector of three such components; `*` of two vectors is
/// the dot product.
Result<void> applyVectors(BinaryOp op, const Value& left, const Value& right, Value& result) {
  const Result<Vec3> first = left.toVector();
  const Result<Vec3> second = right.toVector();
  if (!first || !second || isArray(left.type()) || isArray(right.type()))
    return illegal(op, left, right);
  const Vec3 a = *first;
  const Vec3 b = *second;
  if (op == BinaryOp::Equal || op == BinaryOp::NotEqual) {
    result = Value((a == b) == (op == BinaryOp::Equal));
  } else if (isComparison(op)) {
    result = Value(compare(op, squaredLength(a), squaredLength(b)));
  } else if (op == BinaryOp::Multiply && left.type() == right.type()) {
    result = Value(a.x * b.x + a.y * b.y + a.z * b.z);
  } else if (op == BinaryOp::Cross) {
    result = Value(Vec3{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x});
  } else {
    const Result<double> x = applyFloat(op, a.x, b.x);
    const Result<double> y = applyFloat(op, a.y, b.y);
    const Result<double> z = applyFloat(op, a.z, b.z);
    if (!x || !y || !z) return fail("Division by zero error.");
    result = Value(Vec3{*x, *y, *z});
  }
  return {};
}

Result<void> multiplyMatrices(const Matrix& a, const Matrix& b, Value& result) {
  if (a.columns != b.rows)
    return fail("A matrix of {} columns cannot be multiplied by one of {} rows.", a.columns,
                b.rows);
  Matrix product{a.rows, b.columns,
                 std::vector<double>(std::size_t(a.rows) * std::size_t(b.columns))};
  for (int row = 0; row < a.rows; ++row)
    for (int column = 0; column < b.columns; ++column)
      for (int k = 0; k < a.columns; ++k)
        product.cells[std::size_t(row * b.columns + column)] +=
            a.cells[std::size_t(row * a.columns + k)] *
            b.cells[std::size_t(k * b.columns + column)];
  result = Value(std::move(product));
  return {};
}

Result<void> applyMatrices(BinaryOp op, const Value& left, const Value& right, Value& result) {
  const bool areBoth = left.type() == right.type();
  if (areBoth && op == BinaryOp::Multiply)
    return multiplyMatrices(left.matrix(), right.matrix(), result);
  if (areBoth && (op == BinaryOp::Equal || op == BinaryOp::NotEqual)) {
    result = Value((left.matrix() == right.matrix()) == (op == BinaryOp::Equal));
    return {};
  }
  if (areBoth && (op == BinaryOp::Add || op == BinaryOp::Subtract)) {
    Matrix sum = left.matrix();
    const Matrix& other = right.matrix();
    if (sum.rows != other.rows || sum.columns != other.columns)
      return fail("Matrices of {}x{} and {}x{} cannot be added.", sum.rows, sum.columns, other.rows,
                  other.columns);
    const double sign = op == BinaryOp::Add ? 1.0 : -1.0;
    for (std::size_t i = 0; i < sum.cells.size(); ++i) sum.cells[i] += sign * other.cells[i];
    result = Value(std::move(sum));
    return {};
  }
  const Value& factor = left.type() == Type::Matrix ? right : left;
  if (areBoth || op != BinaryOp::Multiply || !isNumber(factor.type()))
    return illegal(op, left, right);
  Matrix scaled = left.type() == Type::Matrix ? left.matrix() : right.matrix();
  for (double& cell : scaled.cells) cell *= *factor.toFloat();
  result = Value(std::move(scaled));
  return {};
}

tl::unexpected<Error> outOfRange(std::int64_t index) {
  return fail(ErrorKind::BadArgument, "Array index {} is out of range.", index);
}

template <class T, class V>
Result<void> writeGrowing(std::vector<T>& array, std::int64_t index, V&& element) {
  const auto place = static_cast<std::size_t>(index);
  if (place == array.size()) {
    array.push_back(std::forward<V>(element));
    return {};
  }
  if (place > array.size()) {
    if (place >= kMaxArrayElements) return outOfRange(index);
    // One slip of an index must not take all memory: a gap of that size is no array that anybody
    // means. What grows element by element may be as large.
    constexpr std::size_t kLargestGap = (std::size_t{256} << 20) / sizeof(T);
    if (place - array.size() > kLargestGap)
      return fail(
          ErrorKind::BadArgument,
          "Array index {} is too far behind the {} elements there are: an array grows by at "
          "most {} elements at once.",
          index, array.size(), kLargestGap);
    array.resize(place + 1);
  }
  array[place] = std::forward<V>(element);
  return {};
}

}  // namespace

Result<void> applyBinary(BinaryOp op, const Value& left, const Value& right, Value& result) {
  const Type a = left.type();
  const Type b = right.type();
  if (a == Type::Int && b == Type::Int)
    return applyInts(op, left.intValue(), right.intValue(), result);
  if (isNumber(a) && isNumber(b)) return applyFloats(op, *left.toFloat(), *right.toFloat(), result);
  if (isArray(a) || isArray(b)) {
    if (a == b && (op == BinaryOp::Equal || op == BinaryOp::NotEqual)) {
      result = Value((left == right) == (op == BinaryOp::Equal));
      return {};
    }
    return isArray(a) ? illegal(op, left, left) : illegal(op, right, right);
  }
  if (a == Type::Matrix || b == Type::Matrix) return applyMatrices(op, left, right, result);
  if (a == Type::String || b == Type::String) return applyStrings(op, left, right, result);
  if (a == Type::Vector || b == Type::Vector) return applyVectors(op, left, right, result);
  return fail("Illegal operation \"{}\" on a command or procedure that returned no value.",
              operatorText(op));
}

Type binaryType(BinaryOp op, Type left, Type right) {
  if (isComparison(op)) return Type::Int;
  const bool hasText = left == Type::String || right == Type::String;
  if (op == BinaryOp::Add && hasText && (left == Type::None || right == Type::None))
    return Type::String;
  if (left == Type::None || right == Type::None || isArray(left) || isArray(right))
    return Type::None;
  if (left == Type::Int && right == Type::Int) return Type::Int;
  if (isNumber(left) && isNumber(right)) return Type::Float;
  if (left == Type::Matrix || right == Type::Matrix) return Type::Matrix;
  if (left == Type::String || right == Type::String) return Type::String;
  if (left == right && op == BinaryOp::Multiply) return Type::Float;
  return Type::Vector;
}

Result<void> applyNegate(const Value& operand, Value& result) {
  switch (operand.type()) {
    case Type::Int:
      result = Value(wrapped(-std::int64_t{operand.intValue()}));
      return {};
    case Type::Float:
      result = Value(-operand.floatValue());
      return {};
    case Type::Vector: {
      const Vec3 v = operand.vector();
      result = Value(Vec3{-v.x, -v.y, -v.z});
      return {};
    }
    case Type::Matrix:
      return applyMatrices(BinaryOp::Multiply, operand, Value(-1), result);
    default:
      return fail("Illegal operation \"-\" on data of type {}.", typeName(operand.type()));
  }
}

Result<void> readElement(const Value& array, std::int64_t index, Value& result) {
  if (index < 0) return outOfRange(index);
  const auto place = static_cast<std::size_t>(index);
  const bool isInside = place < array.size();
  switch (array.type()) {
    case Type::IntArray:
      result = Value(isInside ? array.intArray()[place] : 0);
      return {};
    case Type::FloatArray:
      result = Value(isInside ? array.floatArray()[place] : 0.0);
      return {};
    case Type::StringArray:
      result = isInside ? Value(array.stringArray()[place]) : Value(std::string());
      return {};
    case Type::VectorArray:
      result = Value(isInside ? Vec3(array.vectorArray()[place]) : Vec3{});
      return {};
    default:
      return fail(ErrorKind::NotFound, "Data of type {} is not an array and has no element [{}].",
                  typeName(array.type()), index);
  }
}

namespace {

Result<std::size_t> cellPlace(const Value& matrix, std::int64_t row, std::int64_t column) {
  if (matrix.type() != Type::Matrix)
    return fail("Data of type {} is not a matrix.", typeName(matrix.type()));
  const Matrix& m = matrix.matrix();
  if (row < 0 || row >= m.rows || column < 0 || column >= m.columns)
    return fail(ErrorKind::BadArgument, "Matrix index [{}][{}] is out of the range of [{}][{}].",
                row, column, m.rows, m.columns);
  return static_cast<std::size_t>(row * m.columns + column);
}

}  // namespace

Result<void> readCell(const Value& matrix, std::int64_t row, std::int64_t column, Value& result) {
  const Result<std::size_t> place = cellPlace(matrix, row, column);
  if (!place) return failWith(place.error());
  result = Value(double(matrix.matrix().cells[*place]));
  return {};
}

Result<void> writeCell(Value& matrix, std::int64_t row, std::int64_t column, const Value& cell) {
  const Result<std::size_t> place = cellPlace(matrix, row, column);
  if (!place) return failWith(place.error());
  const Result<double> number = cell.toFloat();
  if (!number) return failWith(number.error());
  matrix.mutableMatrix().cells[*place] = *number;
  return {};
}

Result<void> writeElement(Value& array, std::int64_t index, const Value& element) {
  if (!isArray(array.type()))
    return fail(ErrorKind::NotFound, "Data of type {} is not an array and has no element [{}].",
                typeName(array.type()), index);
  if (index < 0 || static_cast<std::uint64_t>(index) >= kMaxArrayElements) return outOfRange(index);
  switch (array.type()) {
    case Type::IntArray: {
      const Result<std::int32_t> number = element.toInt();
      if (!number) return failWith(number.error());
      return writeGrowing(array.mutableIntArray(), index, *number);
    }
    case Type::FloatArray: {
      const Result<double> number = element.toFloat();
      if (!number) return failWith(number.error());
      return writeGrowing(array.mutableFloatArray(), index, *number);
    }
    case Type::StringArray: {
      if (element.isString())
        return writeGrowing(array.mutableStringArray(), index, element.string());
      Result<std::string> text = element.toText();
      if (!text) return failWith(text.error());
      return writeGrowing(array.mutableStringArray(), index, std::move(*text));
    }
    default: {
      const Result<Vec3> vector = element.toVector();
      if (!vector) return failWith(vector.error());
      return writeGrowing(array.mutableVectorArray(), index, *vector);
    }
  }
}

Result<void> readComponent(const Value& vector, int component, Value& result) {
  if (vector.type() != Type::Vector)
    return fail("Data of type {} has no component .{}.", typeName(vector.type()), "xyz"[component]);
  const Vec3& v = vector.vector();
  result = Value(component == 0 ? v.x : component == 1 ? v.y : v.z);
  return {};
}

}  // namespace host::mel
