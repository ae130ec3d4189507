#include <algorithm>

#include "host/mel/builtin_support.h"

namespace host::mel {

namespace {

Result<void> sizeFunction(Engine&, std::span<Value> arguments, Value& result) {
  result = Value(static_cast<std::int32_t>(arguments[0].size()));
  return {};
}

/// Empties the caller's own array.
Result<void> clearFunction(Engine&, std::span<Value> arguments, Value& result) {
  Value& array = arguments[0];
  switch (array.type()) {
    case Type::IntArray:
      array.mutableIntArray() = {};
      break;
    case Type::FloatArray:
      array.mutableFloatArray() = {};
      break;
    case Type::StringArray:
      array.mutableStringArray() = {};
      break;
    case Type::VectorArray:
      array.mutableVectorArray() = {};
      break;
    default:
      return invalidCall("clear");
  }
  result = Value(1);
  return {};
}

/// A sorted copy; vectors by length.
Result<void> sortFunction(Engine&, std::span<Value> arguments, Value& result) {
  Value sorted = arguments[0].clone();
  switch (sorted.type()) {
    case Type::IntArray:
      std::ranges::sort(sorted.mutableIntArray());
      break;
    case Type::FloatArray:
      // NaN is put last, since a plain comparison with it is no order.
      std::ranges::sort(sorted.mutableFloatArray(),
                        [](double a, double b) { return a < b || (a == a && b != b); });
      break;
    case Type::StringArray:
      std::ranges::sort(sorted.mutableStringArray());
      break;
    case Type::VectorArray: {
      const auto squared = [](const Vec3& v) { return v.x * v.x + v.y * v.y + v.z * v.z; };
      std::ranges::stable_sort(sorted.mutableVectorArray(), [&](const Vec3& a, const Vec3& b) {
        return squared(a) < squared(b);
      });
      break;
    }
    default:
      return invalidCall("sort");
  }
  result = std::move(sorted);
  return {};
}

/// `appendStringArray(target, source, count)`: in place, for scripts that avoid copies.
Result<void> appendFunction(Engine&, std::span<Value> arguments, Value& result) {
  const Result<std::int32_t> count = arguments[2].toInt();
  const bool areStrings =
      arguments[0].type() == Type::StringArray && arguments[1].type() == Type::StringArray;
  if (!count || !areStrings) return invalidCall("appendStringArray");
  const StringArray source = arguments[1].stringArray();
  StringArray& target = arguments[0].mutableStringArray();
  const auto taken = std::min(source.size(), static_cast<std::size_t>(std::max(*count, 0)));
  target.insert(target.end(), source.begin(), source.begin() + static_cast<std::ptrdiff_t>(taken));
  result = Value(static_cast<std::int32_t>(target.size()));
  return {};
}

Result<void> prefixed(std::span<Value> arguments, Value& result, const char* name,
                      std::string (*change)(const std::string&, const std::string&)) {
  if (arguments[0].type() != Type::StringArray || !arguments[1].isString())
    return invalidCall(name);
  StringArray texts = arguments[0].stringArray();
  for (std::string& text : texts) text = change(text, arguments[1].string());
  result = Value(std::move(texts));
  return {};
}
Result<void> addPrefixFunction(Engine&, std::span<Value> arguments, Value& result) {
  return prefixed(arguments, result, "stringArrayAddPrefix",
                  [](const std::string& text, const std::string& prefix) { return prefix + text; });
}
Result<void> removePrefixFunction(Engine&, std::span<Value> arguments, Value& result) {
  return prefixed(arguments, result, "stringArrayRemovePrefix",
                  [](const std::string& text, const std::string& prefix) {
                    return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
                  });
}

constexpr Builtin kArray[] = {
    {"size", sizeFunction, 1, 1, Type::Int},
    {"clear", clearFunction, 1, 1, Type::Int},
    {"sort", sortFunction, 1, 1, Type::None},
    {"appendStringArray", appendFunction, 3, 3, Type::Int},
    {"stringArrayAddPrefix", addPrefixFunction, 2, 2, Type::StringArray},
    {"stringArrayRemovePrefix", removePrefixFunction, 2, 2, Type::StringArray},
};

}  // namespace

std::span<const Builtin> arrayFunctions() {
  return kArray;
}

}  // namespace host::mel
