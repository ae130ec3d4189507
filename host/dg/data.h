#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "host/math/matrix4.h"
#include "host/math/vec.h"

namespace host::dg {

/// An immutable payload that travels through the graph by reference: a mesh, an array, a matrix,
/// plug-in data. The graph knows nothing of what is inside. Change it by making a new one (payloads
/// that are values with shared arrays, like meshes, make that cheap).
class Data {
 public:
  virtual ~Data() = default;
  /// The name used by `setAttr -type` and typed attributes: "mesh", "matrix", "doubleArray", ...
  [[nodiscard]] virtual std::string_view typeName() const = 0;
  [[nodiscard]] virtual bool equals(const Data& other) const = 0;
  /// A digest of the content, bit for bit: what undo is checked with. Zero tells payloads apart by
  /// type only.
  [[nodiscard]] virtual std::uint64_t hash() const { return 0; }
};
using DataPtr = std::shared_ptr<const Data>;

/// The value of a leaf plug. Booleans, enums and all integer widths are int64; all reals are double
/// (a float attribute's value is rounded to float when it is set); distances are cm, angles
/// radians, times seconds. monostate: a typed attribute without data.
using Value = std::variant<std::monostate, std::int64_t, double, std::string, DataPtr>;

/// Same kind and same content; not-a-number equals itself, payloads compare by `equals`.
[[nodiscard]] bool equal(const Value& a, const Value& b);
[[nodiscard]] std::uint64_t hashBytes(const void* bytes, std::size_t count, std::uint64_t seed = 0);
[[nodiscard]] std::uint64_t hash(const Value& value);

/// A payload that is a plain value with a name.
template <class T, class Tag>
class ValueData final : public Data {
 public:
  explicit ValueData(T valueIn) : value(std::move(valueIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return Tag::kName; }
  [[nodiscard]] bool equals(const Data& other) const override {
    const auto* same = dynamic_cast<const ValueData*>(&other);
    return same && same->value == value;
  }
  [[nodiscard]] std::uint64_t hash() const override {
    if constexpr (std::is_trivially_copyable_v<T>) {
      return hashBytes(&value, sizeof(T));
    } else if constexpr (std::is_trivially_copyable_v<typename T::value_type>) {
      return hashBytes(value.data(), value.size() * sizeof(typename T::value_type));
    } else {
      std::uint64_t result = value.size();
      for (const auto& item : value) result = hashBytes(item.data(), item.size(), result);
      return result;
    }
  }
  const T value;
};

#define HOST_DG_DATA_TAG(Tag, text)                 \
  struct Tag {                                      \
    static constexpr std::string_view kName = text; \
  }
HOST_DG_DATA_TAG(MatrixTag, "matrix");
HOST_DG_DATA_TAG(IntArrayTag, "Int32Array");
HOST_DG_DATA_TAG(DoubleArrayTag, "doubleArray");
HOST_DG_DATA_TAG(FloatArrayTag, "floatArray");
HOST_DG_DATA_TAG(StringArrayTag, "stringArray");
HOST_DG_DATA_TAG(VectorArrayTag, "vectorArray");
HOST_DG_DATA_TAG(PointArrayTag, "pointArray");
HOST_DG_DATA_TAG(MatrixArrayTag, "matrixArray");
#undef HOST_DG_DATA_TAG

/// x y z w.
struct Point4 {
  double x = 0, y = 0, z = 0, w = 1;
  friend bool operator==(const Point4&, const Point4&) = default;
};

using MatrixData = ValueData<math::Matrix4, MatrixTag>;
using IntArrayData = ValueData<std::vector<std::int32_t>, IntArrayTag>;
using DoubleArrayData = ValueData<std::vector<double>, DoubleArrayTag>;
using FloatArrayData = ValueData<std::vector<float>, FloatArrayTag>;
using StringArrayData = ValueData<std::vector<std::string>, StringArrayTag>;
using VectorArrayData = ValueData<std::vector<math::Vec3>, VectorArrayTag>;
using PointArrayData = ValueData<std::vector<Point4>, PointArrayTag>;
using MatrixArrayData = ValueData<std::vector<math::Matrix4>, MatrixArrayTag>;

/// The payload as type T, or null when there is none or it is of another type.
template <class T>
[[nodiscard]] const T* dataAs(const Value& value) {
  const auto* data = std::get_if<DataPtr>(&value);
  return data ? dynamic_cast<const T*>(data->get()) : nullptr;
}

}  // namespace host::dg
