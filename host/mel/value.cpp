#include "host/mel/value.h"

namespace host::mel {

const char* typeName(Type type) {
  switch (type) {
    case Type::None:
      return "void";
    case Type::Int:
      return "int";
    case Type::Float:
      return "float";
    case Type::String:
      return "string";
    case Type::Vector:
      return "vector";
    case Type::Matrix:
      return "matrix";
    case Type::IntArray:
      return "int[]";
    case Type::FloatArray:
      return "float[]";
    case Type::StringArray:
      return "string[]";
    case Type::VectorArray:
      return "vector[]";
  }
  return "void";
}

Type elementType(Type type) {
  switch (type) {
    case Type::IntArray:
      return Type::Int;
    case Type::FloatArray:
      return Type::Float;
    case Type::StringArray:
      return Type::String;
    case Type::VectorArray:
      return Type::Vector;
    default:
      return type;
  }
}

Type arrayType(Type element) {
  switch (element) {
    case Type::Int:
      return Type::IntArray;
    case Type::Float:
      return Type::FloatArray;
    case Type::String:
      return Type::StringArray;
    case Type::Vector:
      return Type::VectorArray;
    default:
      return Type::None;
  }
}

template <class T>
void Value::adopt(Type type, T&& data) {
  using Data = std::decay_t<T>;
  payload_.box = new Box<Data>{1, std::forward<T>(data)};
  type_ = type;
}

Value::Value(std::string value) {
  adopt(Type::String, std::move(value));
}
Value::Value(const Vec3& value) {
  adopt(Type::Vector, Vec3(value));
}
Value::Value(Matrix value) {
  adopt(Type::Matrix, std::move(value));
}
Value::Value(IntArray value) {
  adopt(Type::IntArray, std::move(value));
}
Value::Value(FloatArray value) {
  adopt(Type::FloatArray, std::move(value));
}
Value::Value(StringArray value) {
  adopt(Type::StringArray, std::move(value));
}
Value::Value(VectorArray value) {
  adopt(Type::VectorArray, std::move(value));
}

void Value::destroyBox() noexcept {
  switch (type_) {
    case Type::String:
      delete static_cast<Box<std::string>*>(payload_.box);
      break;
    case Type::Vector:
      delete static_cast<Box<Vec3>*>(payload_.box);
      break;
    case Type::Matrix:
      delete static_cast<Box<Matrix>*>(payload_.box);
      break;
    case Type::IntArray:
      delete static_cast<Box<IntArray>*>(payload_.box);
      break;
    case Type::FloatArray:
      delete static_cast<Box<FloatArray>*>(payload_.box);
      break;
    case Type::StringArray:
      delete static_cast<Box<StringArray>*>(payload_.box);
      break;
    case Type::VectorArray:
      delete static_cast<Box<VectorArray>*>(payload_.box);
      break;
    default:
      break;
  }
}

Value Value::defaultOf(Type type) {
  switch (type) {
    case Type::None:
      return {};
    case Type::Int:
      return Value(0);
    case Type::Float:
      return Value(0.0);
    case Type::String:
      return Value(std::string());
    case Type::Vector:
      return Value(Vec3{});
    case Type::Matrix:
      return Value(Matrix{});
    case Type::IntArray:
      return Value(IntArray{});
    case Type::FloatArray:
      return Value(FloatArray{});
    case Type::StringArray:
      return Value(StringArray{});
    case Type::VectorArray:
      return Value(VectorArray{});
  }
  return {};
}

std::string& Value::mutableString() {
  if (!isUnique()) *this = Value(string());
  return boxed<std::string>();
}

std::size_t Value::size() const noexcept {
  switch (type_) {
    case Type::None:
      return 0;
    case Type::String:
      return string().size();
    case Type::IntArray:
      return intArray().size();
    case Type::FloatArray:
      return floatArray().size();
    case Type::StringArray:
      return stringArray().size();
    case Type::VectorArray:
      return vectorArray().size();
    default:
      return 1;
  }
}

Value Value::clone() const {
  switch (type_) {
    case Type::Matrix:
      return Value(Matrix(matrix()));
    case Type::IntArray:
      return Value(IntArray(intArray()));
    case Type::FloatArray:
      return Value(FloatArray(floatArray()));
    case Type::StringArray:
      return Value(StringArray(stringArray()));
    case Type::VectorArray:
      return Value(VectorArray(vectorArray()));
    default:
      return *this;
  }
}

bool Value::isUnique() const noexcept {
  return !isBoxed() || static_cast<BoxHeader*>(payload_.box)->references == 1;
}

bool operator==(const Value& a, const Value& b) {
  if (a.type_ != b.type_) return false;
  switch (a.type_) {
    case Type::None:
      return true;
    case Type::Int:
      return a.intValue() == b.intValue();
    case Type::Float:
      return a.floatValue() == b.floatValue();
    case Type::String:
      return a.string() == b.string();
    case Type::Vector:
      return a.vector() == b.vector();
    case Type::Matrix:
      return a.matrix() == b.matrix();
    case Type::IntArray:
      return a.intArray() == b.intArray();
    case Type::FloatArray:
      return a.floatArray() == b.floatArray();
    case Type::StringArray:
      return a.stringArray() == b.stringArray();
    case Type::VectorArray:
      return a.vectorArray() == b.vectorArray();
  }
  return false;
}

}  // namespace host::mel
