#include "host/api/data/data_handle.h"

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MTime.h>
#include <maya/MUintArray.h>

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "host/api/data/data_types.h"
#include "host/api/data/numeric_data.h"
#include "host/api/data/plugin_data.h"
#include "host/api/data/time_value.h"
#include "host/dg/data_block.h"

namespace host::api {
namespace {

constexpr int kMost = 16;

template <class T>
struct IsNumbers : std::false_type {};
template <class T, std::size_t Count>
struct IsNumbers<Numbers<T, Count>> : std::true_type {};

template <class T>
int spread(const T& form, double* out) {
  if constexpr (std::is_same_v<T, std::monostate> || std::is_same_v<T, MString> ||
                std::is_same_v<T, void*>) {
    return 0;
  } else if constexpr (std::is_arithmetic_v<T>) {
    out[0] = static_cast<double>(form);
    return 1;
  } else if constexpr (std::is_same_v<T, MVector> || std::is_same_v<T, MFloatVector>) {
    out[0] = form.x, out[1] = form.y, out[2] = form.z;
    return 3;
  } else if constexpr (IsNumbers<T>::value) {
    const int count = static_cast<int>(std::extent_v<typename T::Array>);
    for (int i = 0; i < count; ++i) out[i] = static_cast<double>(form.n[i]);
    return count;
  } else {
    for (int i = 0; i < kMost; ++i) out[i] = static_cast<double>((&form.matrix[0][0])[i]);
    return kMost;
  }
}

/// A double as an integer type, without the undefined ends of a plain cast.
template <class T>
T number(double value) {
  if constexpr (std::is_same_v<T, bool>) {
    return value != 0;
  } else if constexpr (std::is_integral_v<T>) {
    if (std::isnan(value)) return 0;
    constexpr double kLow = static_cast<double>(std::numeric_limits<T>::min());
    constexpr double kHigh = static_cast<double>(std::numeric_limits<T>::max());
    if (value <= kLow) return std::numeric_limits<T>::min();
    if (value >= kHigh) return std::numeric_limits<T>::max();
    return static_cast<T>(value);
  } else {
    return static_cast<T>(value);
  }
}

template <class T>
void gather(T& form, const double* in, int count) {
  if constexpr (std::is_arithmetic_v<T>) {
    form = count > 0 ? number<T>(in[0]) : T{};
  } else if constexpr (std::is_same_v<T, MVector> || std::is_same_v<T, MFloatVector>) {
    using Part = std::remove_reference_t<decltype(form.x)>;
    form = T(static_cast<Part>(count > 0 ? in[0] : 0), static_cast<Part>(count > 1 ? in[1] : 0),
             static_cast<Part>(count > 2 ? in[2] : 0));
  } else if constexpr (IsNumbers<T>::value) {
    using Part = std::remove_extent_t<typename T::Array>;
    for (int i = 0; i < static_cast<int>(std::extent_v<typename T::Array>); ++i)
      form.n[i] = i < count ? number<Part>(in[i]) : Part{};
  } else {
    using Part = std::remove_reference_t<decltype(form.matrix[0][0])>;
    for (int i = 0; count == kMost && i < kMost; ++i)
      (&form.matrix[0][0])[i] = static_cast<Part>(in[i]);
  }
}

std::int64_t integerOf(const dg::Value& value) {
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return *integer;
  const auto* real = std::get_if<double>(&value);
  return real ? number<std::int64_t>(*real) : 0;
}

std::string textOf(const dg::Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  const auto* data = std::get_if<dg::DataPtr>(&value);
  const std::string* text = data ? stringOf(*data) : nullptr;
  return text ? *text : std::string();
}

template <class T>
void fill(const HandleRep& rep, T& form) {
  if constexpr (std::is_same_v<T, MString>) {
    form = toMString(textOf(rep.store->read(rep.plug)));
  } else if constexpr (std::is_same_v<T, MInt64>) {
    form = integerOf(rep.plug.isCompound() ? dg::Value() : rep.store->read(rep.plug));
  } else if constexpr (std::is_same_v<T, void*>) {
    form =
        reinterpret_cast<void*>(static_cast<std::intptr_t>(integerOf(rep.store->read(rep.plug))));
  } else if constexpr (!std::is_same_v<T, std::monostate>) {
    double numbers[kMost] = {};
    const int count = rep.readNumbers(numbers);
    gather(form, numbers, count);
  }
}

bool isLeaf(const dg::Plug& plug) {
  return plug && !plug.isArray() && !plug.isCompound();
}

}  // namespace

HandleRep::HandleRep(StorePtr storeIn, const dg::Plug& plugIn, bool isWritableIn, Handle blockIn)
    : store(std::move(storeIn)),
      node(plugIn.node() ? plugIn.node()->shared_from_this() : nullptr),
      plug(plugIn),
      isWritable(isWritableIn),
      block(std::move(blockIn)) {}

HandleRep::~HandleRep() {
  const auto* open = static_cast<const BlockRep*>(block.get());
  if (!open || open->isOpen) flush();
}

template <class T>
T& HandleRep::as() {
  if (auto* ready = std::get_if<T>(&buffer_)) return *ready;
  flush();
  T& form = buffer_.emplace<T>();
  if (!plug.isArray()) fill(*this, form);
  return form;
}

void HandleRep::flush() {
  if (!isWritable || plug.isNull() || plug.isArray()) return;
  flushNumbers();
  if (!isLeaf(plug) || object_.isNull()) return;
  const auto* rep = objectAs<DataRep>(object_);
  if (!rep || !rep->data) return;
  const dg::Value now = store->read(plug);
  const auto* data = std::get_if<dg::DataPtr>(&now);
  if (!data || *data != rep->data) (void)setObject(object_);
}

void HandleRep::flushNumbers() {
  if (const auto* text = std::get_if<MString>(&buffer_)) {
    if (isLeaf(plug) && textOf(store->read(plug)) != text->asChar())
      (void)store->write(plug, toStd(*text));
    return;
  }
  if (const auto* wide = std::get_if<MInt64>(&buffer_)) {
    if (isLeaf(plug) && integerOf(store->read(plug)) != *wide)
      (void)store->write(plug, std::int64_t{*wide});
    return;
  }
  if (const auto* address = std::get_if<void*>(&buffer_)) {
    const auto value = static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(*address));
    if (isLeaf(plug) && integerOf(store->read(plug)) != value) (void)store->write(plug, value);
    return;
  }
  // Only what was changed through a reference goes back: a value that was merely looked at stays
  // uncomputed.
  double present[kMost] = {}, numbers[kMost] = {};
  const int count = std::visit([&](const auto& form) { return spread(form, numbers); }, buffer_);
  if (count == 0) return;
  std::visit(
      [&](const auto& form) {
        auto unchanged = form;
        fill(*this, unchanged);
        (void)spread(unchanged, present);
      },
      buffer_);
  const auto isSame = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
  if (!std::equal(numbers, numbers + count, present, isSame)) writeNumbers(numbers, count);
}

/// After a value was set: a buffer that somebody may hold a reference to follows, in place.
void HandleRep::reload() {
  std::visit([&](auto& form) { fill(*this, form); }, buffer_);
}

void HandleRep::write(dg::Value value) {
  if (!isLeaf(plug)) return;
  object_ = MObject();
  if (const auto done = store->write(plug, std::move(value)); !done) rememberError(done.error());
  reload();
}

void HandleRep::writeNumbers(const double* numbers, int count) {
  if (plug.isNull() || plug.isArray()) return;
  if (plug.isCompound()) {
    const int children = static_cast<int>(plug.attribute()->children.size());
    for (int i = 0; i < std::min(children, count); ++i) {
      const dg::Plug child = plug.child(i);
      if (!isLeaf(child)) continue;
      if (const auto done = store->write(child, numbers[i]); !done) rememberError(done.error());
    }
    reload();
    return;
  }
  if (count == kMost) {
    math::Matrix4 matrix;
    std::copy_n(numbers, kMost, &matrix.m[0][0]);
    write(dg::DataPtr(std::make_shared<dg::MatrixData>(matrix)));
    return;
  }
  if (count == 1) {
    write(numbers[0]);
    return;
  }
  static constexpr const char* kKinds[] = {"double2", "double3", "double4"};
  // What an attribute of such data says; without a plug or for other kinds plain doubles.
  const std::string& declared = plug.attribute()->dataType;
  if (dg::numericDataSize(declared) == count) {
    write(makeNumericData(declared, std::vector<double>(numbers, numbers + count)));
    return;
  }
  write(makeNumericData(kKinds[std::clamp(count, 2, 4) - 2],
                        std::vector<double>(numbers, numbers + count)));
}

int HandleRep::readNumbers(double* numbers) const {
  if (plug.isNull() || plug.isArray()) return 0;
  if (plug.isCompound()) {
    const int count = std::min(kMost, static_cast<int>(plug.attribute()->children.size()));
    for (int i = 0; i < count; ++i) {
      const dg::Plug child = plug.child(i);
      const dg::Value value = isLeaf(child) ? store->read(child) : dg::Value();
      const auto* real = std::get_if<double>(&value);
      numbers[i] = real ? *real : static_cast<double>(integerOf(value));
    }
    return count;
  }
  const dg::Value value = store->read(plug);
  if (const auto* matrix = dg::dataAs<dg::MatrixData>(value)) {
    std::copy_n(&matrix->value.m[0][0], kMost, numbers);
    return kMost;
  }
  if (const auto* data = dg::dataAs<NumericData>(value)) {
    const int count = std::min(kMost, static_cast<int>(data->values.size()));
    std::copy_n(data->values.begin(), count, numbers);
    return count;
  }
  const auto* real = std::get_if<double>(&value);
  numbers[0] = real ? *real : static_cast<double>(integerOf(value));
  return 1;
}

double HandleRep::firstNumber() const {
  double numbers[kMost] = {};
  return readNumbers(numbers) > 0 ? numbers[0] : 0.0;
}

MObject HandleRep::object() {
  flushNumbers();
  if (plug.isNull() || plug.isArray()) return MObject();
  if (plug.isCompound()) {
    if (plug.attribute()->compoundType.empty()) return MObject();
    double numbers[kMost] = {};
    const int count = readNumbers(numbers);
    return wrap(makeNumericData(plug.attribute()->compoundType,
                                std::vector<double>(numbers, numbers + count)));
  }
  if (isWritable && !object_.isNull()) return object_;
  const dg::Value value = store->read(plug);
  MObject result;
  if (const auto* data = std::get_if<dg::DataPtr>(&value); data && *data) result = wrap(*data);
  if (const auto* text = std::get_if<std::string>(&value)) result = wrap(makeStringData(*text));
  if (isWritable) object_ = result;
  return result;
}

MStatus HandleRep::setObject(const MObject& data) {
  if (plug.isNull() || plug.isArray()) return MStatus::kFailure;
  if (data.isNull()) {
    write(dg::Value());
    return MStatus::kSuccess;
  }
  const auto* rep = objectAs<DataRep>(data);
  if (!rep || !rep->data) return MStatus::kInvalidParameter;
  if (const auto* numbers = dynamic_cast<const NumericData*>(rep->data.get());
      numbers && plug.isCompound()) {
    writeNumbers(numbers->values.data(), static_cast<int>(numbers->values.size()));
    return MStatus::kSuccess;
  }
  if (!isLeaf(plug)) return MStatus::kInvalidParameter;
  const std::string* text = stringOf(rep->data);
  const bool isText = text && plug.attribute()->type == dg::AttributeType::String;
  const auto done = store->write(plug, isText ? dg::Value(*text) : dg::Value(rep->data));
  if (!done) return toStatus(done, MStatus::kInvalidParameter);
  object_ = data;
  reload();
  return MStatus::kSuccess;
}

MDataHandle wrapHandle(HandleRep* rep) {
  return Access::make<MDataHandle>(rep);
}

MDataHandle copyOfPlug(const dg::Plug& plug) {
  auto store = std::make_shared<LooseStore>();
  (void)plug.node()->graph().evaluate(plug);
  (void)copyValues(*outputStore(), plug, *store, plug);
  return wrapHandle(new HandleRep(store, plug, true));
}

MDataHandle looseHandle(const dg::Plug& plug, const dg::Value& value) {
  auto store = std::make_shared<LooseStore>();
  (void)store->write(plug, value);
  return wrapHandle(new HandleRep(store, plug, true));
}

MDataHandle HandleRep::child(const dg::Plug& childPlug) {
  MDataHandle handle = wrapHandle(new HandleRep(store, childPlug, isWritable, block));
  if (!isWritable) children_.push_back(Access::handle(handle));
  return handle;
}

dg::Value valueOf(const MDataHandle& handle) {
  HandleRep* rep = repOf(handle);
  if (!rep || !isLeaf(rep->plug)) return {};
  rep->flush();
  return rep->store->read(rep->plug);
}
// What MDataHandle hands out references to.
template bool& HandleRep::as<bool>();
template char& HandleRep::as<char>();
template unsigned char& HandleRep::as<unsigned char>();
template short& HandleRep::as<short>();
template int& HandleRep::as<int>();
template MInt64& HandleRep::as<MInt64>();
template void*& HandleRep::as<void*>();
template float& HandleRep::as<float>();
template double& HandleRep::as<double>();
template Numbers<short, 2>& HandleRep::as<Numbers<short, 2>>();
template Numbers<short, 3>& HandleRep::as<Numbers<short, 3>>();
template Numbers<int, 2>& HandleRep::as<Numbers<int, 2>>();
template Numbers<int, 3>& HandleRep::as<Numbers<int, 3>>();
template Numbers<float, 2>& HandleRep::as<Numbers<float, 2>>();
template Numbers<float, 3>& HandleRep::as<Numbers<float, 3>>();
template Numbers<double, 2>& HandleRep::as<Numbers<double, 2>>();
template Numbers<double, 3>& HandleRep::as<Numbers<double, 3>>();
template Numbers<double, 4>& HandleRep::as<Numbers<double, 4>>();
template MVector& HandleRep::as<MVector>();
template MFloatVector& HandleRep::as<MFloatVector>();
template MMatrix& HandleRep::as<MMatrix>();
template MFloatMatrix& HandleRep::as<MFloatMatrix>();
template MString& HandleRep::as<MString>();

}  // namespace host::api
