#include <algorithm>
#include <unordered_set>

#include "host/mel/builtin_support.h"

namespace host::mel {

namespace {

/// What the functions of one family (stringArray..., intArray..., floatArray...) need to know of
/// their element type.
template <class T>
struct Family;

template <>
struct Family<std::string> {
  static constexpr Type kArray = Type::StringArray;
  static constexpr std::string_view kName = "stringArray";
  static StringArray& of(Value& value) { return value.mutableStringArray(); }
  static std::string text(const std::string& item) { return item; }
};
template <>
struct Family<std::int32_t> {
  static constexpr Type kArray = Type::IntArray;
  static constexpr std::string_view kName = "intArray";
  static IntArray& of(Value& value) { return value.mutableIntArray(); }
  static std::string text(std::int32_t item) { return std::to_string(item); }
};
template <>
struct Family<double> {
  static constexpr Type kArray = Type::FloatArray;
  static constexpr std::string_view kName = "floatArray";
  static FloatArray& of(Value& value) { return value.mutableFloatArray(); }
  static std::string text(double item) { return formatFloat(item); }
};

/// The array argument; an array of another kind that converts is taken as a copy.
template <class T>
Result<Value> arrayAt(std::span<Value> arguments, std::size_t index, std::string_view function) {
  if (arguments[index].type() == Family<T>::kArray) return arguments[index];
  Result<Value> converted = arguments[index].convertedTo(Family<T>::kArray);
  if (!converted) return invalidCall(std::string(Family<T>::kName) + std::string(function));
  return converted;
}

template <class T>
Result<void> catenate(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> first = arrayAt<T>(arguments, 0, "Catenate");
  Result<Value> second = arrayAt<T>(arguments, 1, "Catenate");
  if (!first || !second) return failWith(first ? second.error() : first.error());
  Value joined = first->clone();
  const std::vector<T>& tail = Family<T>::of(*second);
  Family<T>::of(joined).insert(Family<T>::of(joined).end(), tail.begin(), tail.end());
  result = std::move(joined);
  return {};
}

template <class T>
Result<void> count(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> array = arrayAt<T>(arguments, 1, "Count");
  if (!array) return failWith(array.error());
  return unpack<T>(arguments, [&](const T& item) {
    result = Value(static_cast<std::int32_t>(std::ranges::count(Family<T>::of(*array), item)));
  });
}

template <class T>
Result<void> contains(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> array = arrayAt<T>(arguments, 1, "Contains");
  if (!array) return failWith(array.error());
  return unpack<T>(arguments, [&](const T& item) {
    const std::vector<T>& items = Family<T>::of(*array);
    result = Value(std::ranges::find(items, item) != items.end());
  });
}

/// Find(item, from, array): the place of the first such item from there on, or -1.
template <class T>
Result<void> findItem(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> array = arrayAt<T>(arguments, 2, "Find");
  if (!array) return failWith(array.error());
  return unpack<T, std::int32_t>(arguments, [&](const T& item, std::int32_t from) {
    const std::vector<T>& items = Family<T>::of(*array);
    const auto start = std::min(items.size(), static_cast<std::size_t>(std::max(from, 0)));
    const auto found =
        std::find(items.begin() + static_cast<std::ptrdiff_t>(start), items.end(), item);
    result = Value(found == items.end() ? -1 : static_cast<std::int32_t>(found - items.begin()));
  });
}

/// InsertAtIndex(index, array, item), in place: 1 if the index is within the array or just past its
/// end.
template <class T>
Result<void> insertAt(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> array = arrayAt<T>(arguments, 1, "InsertAtIndex");
  Result<T> item = argumentAs<T>(arguments[2]);
  if (!array || !item) return failWith(array ? item.error() : array.error());
  return unpack<std::int32_t>(arguments, [&](std::int32_t index) {
    std::vector<T>& items = Family<T>::of(*array);
    const bool isInside = index >= 0 && static_cast<std::size_t>(index) <= items.size();
    if (isInside) items.insert(items.begin() + index, *item);
    result = Value(isInside);
  });
}

/// RemoveAtIndex(index, array), in place: 1 if there was such an element.
template <class T>
Result<void> removeAt(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> array = arrayAt<T>(arguments, 1, "RemoveAtIndex");
  if (!array) return failWith(array.error());
  return unpack<std::int32_t>(arguments, [&](std::int32_t index) {
    std::vector<T>& items = Family<T>::of(*array);
    const bool isInside = index >= 0 && static_cast<std::size_t>(index) < items.size();
    if (isInside) items.erase(items.begin() + index);
    result = Value(isInside);
  });
}

/// Remove(items, array): a copy without any of the items.
template <class T>
Result<void> removeAll(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> unwanted = arrayAt<T>(arguments, 0, "Remove");
  Result<Value> array = arrayAt<T>(arguments, 1, "Remove");
  if (!unwanted || !array) return failWith(array ? unwanted.error() : array.error());
  const std::unordered_set<T> dropped(Family<T>::of(*unwanted).begin(),
                                      Family<T>::of(*unwanted).end());
  std::vector<T> kept = Family<T>::of(*array);
  std::erase_if(kept, [&](const T& item) { return dropped.contains(item); });
  result = Value(std::move(kept));
  return {};
}

/// RemoveExact(items, array): each item takes away one equal element.
template <class T>
Result<void> removeExact(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> unwanted = arrayAt<T>(arguments, 0, "RemoveExact");
  Result<Value> array = arrayAt<T>(arguments, 1, "RemoveExact");
  if (!unwanted || !array) return failWith(array ? unwanted.error() : array.error());
  std::unordered_multiset<T> dropped(Family<T>::of(*unwanted).begin(),
                                     Family<T>::of(*unwanted).end());
  std::vector<T> kept;
  for (const T& item : Family<T>::of(*array)) {
    const auto found = dropped.find(item);
    if (found == dropped.end()) {
      kept.push_back(item);
    } else {
      dropped.erase(found);
    }
  }
  result = Value(std::move(kept));
  return {};
}

/// The first of equal elements stays.
template <class T>
Result<void> removeDuplicates(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> array = arrayAt<T>(arguments, 0, "RemoveDuplicates");
  if (!array) return failWith(array.error());
  std::unordered_set<T> seen;
  std::vector<T> kept;
  for (const T& item : Family<T>::of(*array))
    if (seen.insert(item).second) kept.push_back(item);
  result = Value(std::move(kept));
  return {};
}

template <class T>
Result<void> toText(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> array = arrayAt<T>(arguments, 0, "ToString");
  if (!array) return failWith(array.error());
  return unpack<std::string>(arguments.subspan(1), [&](const std::string& separator) {
    std::string text;
    bool isFirst = true;
    for (const T& item : Family<T>::of(*array)) {
      if (!isFirst) text += separator;
      text += Family<T>::text(item);
      isFirst = false;
    }
    result = Value(std::move(text));
  });
}

template <class T>
Result<void> append(Engine&, std::span<Value> arguments, Value& result) {
  Result<Value> array = arrayAt<T>(arguments, 0, "Append");
  if (!array) return failWith(array.error());
  return unpack<T>(arguments.subspan(1), [&](const T& item) {
    Family<T>::of(*array).push_back(item);
    result = *array;
  });
}

constexpr Builtin kTyped[] = {
    {"stringArrayCatenate", catenate<std::string>, 2, 2, Type::StringArray},
    {"stringArrayContains", contains<std::string>, 2, 2, Type::Int},
    {"stringArrayCount", count<std::string>, 2, 2, Type::Int},
    {"stringArrayFind", findItem<std::string>, 3, 3, Type::Int},
    {"stringArrayInsertAtIndex", insertAt<std::string>, 3, 3, Type::Int},
    {"stringArrayRemove", removeAll<std::string>, 2, 2, Type::StringArray},
    {"stringArrayRemoveAtIndex", removeAt<std::string>, 2, 2, Type::Int},
    {"stringArrayRemoveDuplicates", removeDuplicates<std::string>, 1, 1, Type::StringArray},
    {"stringArrayRemoveExact", removeExact<std::string>, 2, 2, Type::StringArray},
    {"stringArrayToString", toText<std::string>, 2, 2, Type::String},
    {"intArrayAppend", append<std::int32_t>, 2, 2, Type::IntArray},
    {"intArrayCatenate", catenate<std::int32_t>, 2, 2, Type::IntArray},
    {"intArrayContains", contains<std::int32_t>, 2, 2, Type::Int},
    {"intArrayCount", count<std::int32_t>, 2, 2, Type::Int},
    {"intArrayFind", findItem<std::int32_t>, 3, 3, Type::Int},
    {"intArrayInsertAtIndex", insertAt<std::int32_t>, 3, 3, Type::Int},
    {"intArrayRemove", removeAll<std::int32_t>, 2, 2, Type::IntArray},
    {"intArrayRemoveAtIndex", removeAt<std::int32_t>, 2, 2, Type::Int},
    {"intArrayRemoveDuplicates", removeDuplicates<std::int32_t>, 1, 1, Type::IntArray},
    {"intArrayRemoveExact", removeExact<std::int32_t>, 2, 2, Type::IntArray},
    {"intArrayToString", toText<std::int32_t>, 2, 2, Type::String},
    {"floatArrayAppend", append<double>, 2, 2, Type::FloatArray},
    {"floatArrayCatenate", catenate<double>, 2, 2, Type::FloatArray},
    {"floatArrayContains", contains<double>, 2, 2, Type::Int},
    {"floatArrayCount", count<double>, 2, 2, Type::Int},
    {"floatArrayFind", findItem<double>, 3, 3, Type::Int},
    {"floatArrayInsertAtIndex", insertAt<double>, 3, 3, Type::Int},
    {"floatArrayRemove", removeAll<double>, 2, 2, Type::FloatArray},
    {"floatArrayRemoveAtIndex", removeAt<double>, 2, 2, Type::Int},
    {"floatArrayRemoveDuplicates", removeDuplicates<double>, 1, 1, Type::FloatArray},
    {"floatArrayRemoveExact", removeExact<double>, 2, 2, Type::FloatArray},
    {"floatArrayToString", toText<double>, 2, 2, Type::String},
};

}  // namespace

std::span<const Builtin> typedArrayFunctions() {
  return kTyped;
}

}  // namespace host::mel
