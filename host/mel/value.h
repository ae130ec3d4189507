#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/base/result.h"

namespace host::mel {

/// The language's data types. None is the result of a command or procedure that returns nothing.
enum class Type : std::uint8_t {
  None,
  Int,
  Float,
  String,
  Vector,
  Matrix,
  IntArray,
  FloatArray,
  StringArray,
  VectorArray,
};

/// Names a type as error messages do: `int`, `string[]`, `vector`; None is `void`.
[[nodiscard]] const char* typeName(Type type);
[[nodiscard]] constexpr bool isArray(Type type) {
  return type >= Type::IntArray;
}
[[nodiscard]] constexpr bool isNumber(Type type) {
  return type == Type::Int || type == Type::Float;
}
/// The type of an array's elements; other types are their own.
[[nodiscard]] Type elementType(Type type);
/// The array type with these elements; None when there is none (matrix, arrays).
[[nodiscard]] Type arrayType(Type element);

struct Vec3 {
  double x = 0.0, y = 0.0, z = 0.0;
  friend bool operator==(const Vec3&, const Vec3&) = default;
};

/// A matrix of any size, row by row.
struct Matrix {
  int rows = 0;
  int columns = 0;
  std::vector<double> cells;  ///< rows * columns
  friend bool operator==(const Matrix&, const Matrix&) = default;
};

using IntArray = std::vector<std::int32_t>;
using FloatArray = std::vector<double>;
using StringArray = std::vector<std::string>;
using VectorArray = std::vector<Vec3>;

/// One datum of the language: 16 bytes, numbers inline, everything else counted.
///
/// Integers are 32-bit two's complement and wrap; floats are doubles. A copy of a string is a value
/// of its own (shared until written). A copy of an *array or matrix shares it*, as the language
/// passes them to procedures by reference: whoever keeps one beyond a call takes `clone()`. Counts
/// are not atomic: values stay on one thread.
class Value {
 public:
  Value() noexcept : type_(Type::None) { payload_.integer = 0; }
  Value(std::int32_t value) noexcept : type_(Type::Int) { payload_.integer = value; }
  Value(bool value) noexcept : Value(std::int32_t{value}) {}
  Value(double value) noexcept : type_(Type::Float) { payload_.real = value; }
  Value(std::string value);
  Value(std::string_view value) : Value(std::string(value)) {}
  Value(const char* value) : Value(std::string(value)) {}
  Value(const Vec3& value);
  Value(Matrix value);
  Value(IntArray value);
  Value(FloatArray value);
  Value(StringArray value);
  Value(VectorArray value);

  Value(const Value& other) noexcept : type_(other.type_), payload_(other.payload_) { retain(); }
  Value(Value&& other) noexcept : type_(other.type_), payload_(other.payload_) {
    other.type_ = Type::None;
  }
  Value& operator=(const Value& other) noexcept {
    other.retain();
    release();
    type_ = other.type_;
    payload_ = other.payload_;
    return *this;
  }
  Value& operator=(Value&& other) noexcept {
    std::swap(type_, other.type_);
    std::swap(payload_, other.payload_);
    return *this;
  }
  ~Value() { release(); }

  /// The value a fresh variable of this type has: 0, 0.0, "", <<0, 0, 0>>, an empty array or
  /// matrix.
  [[nodiscard]] static Value defaultOf(Type type);

  [[nodiscard]] Type type() const noexcept { return type_; }
  [[nodiscard]] bool isNone() const noexcept { return type_ == Type::None; }
  [[nodiscard]] bool isInt() const noexcept { return type_ == Type::Int; }
  [[nodiscard]] bool isFloat() const noexcept { return type_ == Type::Float; }
  [[nodiscard]] bool isString() const noexcept { return type_ == Type::String; }

  /// Raw access; the value must have that type.
  [[nodiscard]] std::int32_t intValue() const noexcept { return payload_.integer; }
  [[nodiscard]] double floatValue() const noexcept { return payload_.real; }
  [[nodiscard]] const std::string& string() const noexcept { return boxed<std::string>(); }
  [[nodiscard]] const Vec3& vector() const noexcept { return boxed<Vec3>(); }
  [[nodiscard]] const Matrix& matrix() const noexcept { return boxed<Matrix>(); }
  [[nodiscard]] const IntArray& intArray() const noexcept { return boxed<IntArray>(); }
  [[nodiscard]] const FloatArray& floatArray() const noexcept { return boxed<FloatArray>(); }
  [[nodiscard]] const StringArray& stringArray() const noexcept { return boxed<StringArray>(); }
  [[nodiscard]] const VectorArray& vectorArray() const noexcept { return boxed<VectorArray>(); }

  /// Access for writing. Strings are made unique first; arrays and matrices change for all who
  /// share them.
  [[nodiscard]] std::string& mutableString();
  [[nodiscard]] Matrix& mutableMatrix() noexcept { return boxed<Matrix>(); }
  [[nodiscard]] IntArray& mutableIntArray() noexcept { return boxed<IntArray>(); }
  [[nodiscard]] FloatArray& mutableFloatArray() noexcept { return boxed<FloatArray>(); }
  [[nodiscard]] StringArray& mutableStringArray() noexcept { return boxed<StringArray>(); }
  [[nodiscard]] VectorArray& mutableVectorArray() noexcept { return boxed<VectorArray>(); }

  /// Number of elements of an array, bytes of a string, 1 for other types, 0 for None.
  [[nodiscard]] std::size_t size() const noexcept;
  /// A value that shares no array or matrix with this one.
  [[nodiscard]] Value clone() const;
  /// True when nobody else holds this value's array or string.
  [[nodiscard]] bool isUnique() const noexcept;

  /// Conversions by the language's rules: floats truncate, strings give their leading number or 0
  /// (so a word is 0), a vector gives its length. Arrays and matrices don't convert to scalars:
  /// `Cannot convert data of type string[] to type int.`
  [[nodiscard]] Result<std::int32_t> toInt() const;
  [[nodiscard]] Result<double> toFloat() const;
  /// As toInt() != 0, and additionally the words on, yes and true (any case) count as true.
  [[nodiscard]] Result<bool> toBool() const;
  [[nodiscard]] Result<Vec3> toVector() const;
  /// Scalars convert; arrays don't.
  [[nodiscard]] Result<std::string> toText() const;
  /// An array gives its elements as texts, a scalar one text, None nothing. Always succeeds.
  [[nodiscard]] StringArray toTexts() const;
  /// This value as another type (a clone when the type is the same array type).
  [[nodiscard]] Result<Value> convertedTo(Type type) const;

  /// The text `print` writes: arrays one element a line, matrices one row a line, vectors as `1 2
  /// 3`.
  [[nodiscard]] std::string printText() const;
  /// The text between `// Result: ` and ` //`: array elements separated by spaces, vectors as `<<1,
  /// 2, 3>>`, floats with 6 significant digits.
  [[nodiscard]] std::string resultText() const;

  /// Same type and equal content.
  friend bool operator==(const Value& a, const Value& b);

 private:
  template <class T>
  struct Box {
    std::uint32_t references;
    T data;
  };
  struct BoxHeader {
    std::uint32_t references;
  };
  union Payload {
    std::int32_t integer;
    double real;
    void* box;
  };
  template <class T>
  [[nodiscard]] T& boxed() const noexcept {
    return static_cast<Box<T>*>(payload_.box)->data;
  }
  template <class T>
  void adopt(Type type, T&& data);
  [[nodiscard]] bool isBoxed() const noexcept { return type_ >= Type::String; }
  void retain() const noexcept {
    if (isBoxed()) ++static_cast<BoxHeader*>(payload_.box)->references;
  }
  void release() noexcept {
    if (isBoxed() && --static_cast<BoxHeader*>(payload_.box)->references == 0) destroyBox();
  }
  void destroyBox() noexcept;

  friend class Machine;  // the evaluator writes numbers into registers of known type without the
                         // tag
  Type type_;
  Payload payload_;
};

/// A float as the language prints it: 10 significant digits, no trailing zeros.
[[nodiscard]] std::string formatFloat(double value, int significantDigits = 10);
/// Truncates towards zero; values beyond the integer range give its ends, NaN gives 0.
[[nodiscard]] std::int32_t truncateToInt(double value) noexcept;
/// The number at the start of a text (leading blanks allowed), 0 if there is none.
[[nodiscard]] double leadingFloat(std::string_view text) noexcept;
/// As leadingFloat, for whole numbers; accepts 0x digits.
[[nodiscard]] std::int32_t leadingInt(std::string_view text) noexcept;

}  // namespace host::mel
