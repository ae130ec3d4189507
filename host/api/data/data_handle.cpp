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

}  // namespace host::api

using namespace host;
using api::HandleRep;
using api::repOf;

namespace {

/// What a handle of nothing gives references to; written values are forgotten.
template <class T>
T& form(const MDataHandle& handle) {
  static api::Handle nothing;
  if (HandleRep* rep = repOf(handle)) return rep->as<T>();
  nothing = api::Handle(new HandleRep(std::make_shared<api::LooseStore>(), dg::Plug(), false));
  return static_cast<HandleRep*>(nothing.get())->as<T>();
}

void put(const MDataHandle& handle, dg::Value value) {
  if (HandleRep* rep = repOf(handle)) rep->write(std::move(value));
}

template <class... Parts>
void putNumbers(const MDataHandle& handle, Parts... parts) {
  const double numbers[] = {static_cast<double>(parts)...};
  if (HandleRep* rep = repOf(handle))
    rep->writeNumbers(numbers, static_cast<int>(sizeof...(parts)));
}

MObject objectOfKind(const MDataHandle& handle, MFn::Type kind) {
  HandleRep* rep = repOf(handle);
  const MObject object = rep ? rep->object() : MObject();
  return object.hasFn(kind) ? object : MObject();
}

}  // namespace

MFnData::Type MDataHandle::type() const {
  const HandleRep* rep = repOf(*this);
  if (!rep || rep->plug.isNull()) return MFnData::kInvalid;
  const MFnData::Type type = api::dataTypeOf(*rep->plug.attribute());
  if (type != MFnData::kAny || rep->plug.isArray() || rep->plug.isCompound()) return type;
  const dg::Value value = rep->store->read(rep->plug);
  if (const auto* data = std::get_if<dg::DataPtr>(&value); data && *data)
    return api::dataTypeOf((*data)->typeName());
  if (std::holds_alternative<std::string>(value)) return MFnData::kString;
  return std::holds_alternative<std::monostate>(value) ? MFnData::kAny : MFnData::kNumeric;
}
MTypeId MDataHandle::typeId() const {
  MPxData* data = asPluginData();
  return data ? data->typeId() : MTypeId();
}
bool MDataHandle::isNumeric() const {
  return type() == MFnData::kNumeric;
}
MFnNumericData::Type MDataHandle::numericType() const {
  const HandleRep* rep = repOf(*this);
  return rep && rep->plug ? api::numericTypeOf(*rep->plug.attribute()) : MFnNumericData::kInvalid;
}
bool MDataHandle::isGeneric(bool& isNumber, bool& isNull) const {
  const HandleRep* rep = repOf(*this);
  if (!rep || rep->plug.isNull() || rep->plug.attribute()->type != dg::AttributeType::Generic)
    return false;
  const dg::Value value = rep->store->read(rep->plug);
  isNumber = std::holds_alternative<double>(value) || std::holds_alternative<std::int64_t>(value);
  isNull = std::holds_alternative<std::monostate>(value);
  return true;
}
MDataHandle MDataHandle::child(const MPlug& plug) const {
  const dg::Plug wanted = api::plugOf(plug);
  return wanted.isNull() ? MDataHandle() : child(api::wrap(wanted.attribute()));
}
MDataHandle MDataHandle::child(const MObject& attribute) const {
  HandleRep* rep = repOf(*this);
  const dg::Attribute* wanted = api::attributeOf(attribute);
  if (!rep || !wanted || rep->plug.isNull() || !rep->plug.isCompound() ||
      wanted->parent != rep->plug.attribute())
    return {};
  rep->flush();
  return rep->child(rep->plug.child(wanted));
}
MObject MDataHandle::attribute() const {
  const HandleRep* rep = repOf(*this);
  return rep ? api::wrap(rep->plug.attribute()) : MObject();
}
bool MDataHandle::datablock(MDataBlock& block) const {
  const HandleRep* rep = repOf(*this);
  if (!rep || !rep->block) return false;
  api::Access::handle(block) = rep->block;
  return true;
}
void MDataHandle::setClean() {
  HandleRep* rep = repOf(*this);
  if (!rep) return;
  rep->flush();
  if (rep->node && rep->store->isInGraph())
    dg::DataBlock(rep->node->graph(), *rep->node).setClean(rep->plug);
}
MStatus MDataHandle::copy(const MDataHandle& source) {
  HandleRep* from = repOf(source);
  HandleRep* rep = repOf(*this);
  if (!from || from->plug.isNull()) return MStatus::kFailure;
  from->flush();
  if (!rep) {
    handle_ = from->store->isInGraph() ? api::Access::handle(api::copyOfPlug(from->plug))
                                       : source.handle_;
    return MStatus::kSuccess;
  }
  if (from->plug.isCompound() || from->plug.isArray() || rep->plug.isCompound() ||
      rep->plug.isArray())
    return api::toStatus(api::copyValues(*from->store, from->plug, *rep->store, rep->plug),
                         MStatus::kInvalidParameter);
  const dg::Value value = from->store->read(from->plug);
  const auto* data = std::get_if<dg::DataPtr>(&value);
  // A payload gets an object of its own here, so that edits of it change this handle and not the
  // source.
  if (data && *data) return rep->setObject(api::wrap(*data));
  rep->write(value);
  return MStatus::kSuccess;
}
MStatus MDataHandle::copyWritable(const MDataHandle& source) {
  return copy(source);
}
bool MDataHandle::acceptedTypeIds(MUintArray& ids) const {
  ids.clear();
  const HandleRep* rep = repOf(*this);
  if (!rep || rep->plug.isNull()) return false;
  for (const std::string& name : rep->plug.attribute()->acceptedTypes)
    if (const auto* type = api::findPluginDataType(name)) ids.append(type->id);
  return true;
}

MObject MDataHandle::data() const {
  HandleRep* rep = repOf(*this);
  return rep ? rep->object() : MObject();
}
MPxData* MDataHandle::asPluginData() const {
  HandleRep* rep = repOf(*this);
  return rep ? api::pluginDataOf(rep->object()) : nullptr;
}
bool& MDataHandle::asBool() const {
  return form<bool>(*this);
}
char& MDataHandle::asChar() const {
  return form<char>(*this);
}
unsigned char& MDataHandle::asUChar() const {
  return form<unsigned char>(*this);
}
short& MDataHandle::asShort() const {
  return form<short>(*this);
}
int& MDataHandle::asLong() const {
  return form<int>(*this);
}
int& MDataHandle::asInt() const {
  return form<int>(*this);
}
MInt64& MDataHandle::asInt64() const {
  return form<MInt64>(*this);
}
void*& MDataHandle::asAddr() const {
  return form<void*>(*this);
}
float& MDataHandle::asFloat() const {
  return form<float>(*this);
}
double& MDataHandle::asDouble() const {
  return form<double>(*this);
}
#define HOST_AS_NUMBERS(Name, Type, Count)           \
  Type##Count& MDataHandle::Name() const {           \
    return form<api::Numbers<Type, Count>>(*this).n; \
  }
HOST_AS_NUMBERS(asShort2, short, 2)
HOST_AS_NUMBERS(asShort3, short, 3)
HOST_AS_NUMBERS(asLong2, int, 2)
HOST_AS_NUMBERS(asLong3, int, 3)
HOST_AS_NUMBERS(asInt2, int, 2)
HOST_AS_NUMBERS(asInt3, int, 3)
HOST_AS_NUMBERS(asFloat2, float, 2)
HOST_AS_NUMBERS(asFloat3, float, 3)
HOST_AS_NUMBERS(asDouble2, double, 2)
HOST_AS_NUMBERS(asDouble3, double, 3)
HOST_AS_NUMBERS(asDouble4, double, 4)
#undef HOST_AS_NUMBERS
MVector& MDataHandle::asVector() const {
  return form<MVector>(*this);
}
MFloatVector& MDataHandle::asFloatVector() const {
  return form<MFloatVector>(*this);
}
MMatrix& MDataHandle::asMatrix() const {
  return form<MMatrix>(*this);
}
MFloatMatrix& MDataHandle::asFloatMatrix() const {
  return form<MFloatMatrix>(*this);
}
MString& MDataHandle::asString() const {
  return form<MString>(*this);
}
MDistance MDataHandle::asDistance() const {
  return MDistance(asDouble(), MDistance::kCentimeters);
}
MAngle MDataHandle::asAngle() const {
  return MAngle(asDouble(), MAngle::kRadians);
}
MTime MDataHandle::asTime() const {
  return api::timeOf(asDouble());
}
MObject MDataHandle::asMesh() const {
  return objectOfKind(*this, MFn::kMeshData);
}
MObject MDataHandle::asMeshTransformed() const {
  return asMesh();
}
MObject MDataHandle::asNurbsCurve() const {
  return objectOfKind(*this, MFn::kNurbsCurveData);
}
MObject MDataHandle::asNurbsCurveTransformed() const {
  return asNurbsCurve();
}
MObject MDataHandle::asNurbsSurface() const {
  return objectOfKind(*this, MFn::kNurbsSurfaceData);
}
MObject MDataHandle::asSubdSurface() const {
  return objectOfKind(*this, MFn::kSubdivData);
}
const MMatrix& MDataHandle::geometryTransformMatrix() const {
  return MMatrix::identity;
}
bool MDataHandle::asGenericBool() const {
  return asGenericDouble() != 0;
}
int MDataHandle::asGenericInt() const {
  return static_cast<int>(asGenericDouble());
}
double MDataHandle::asGenericDouble() const {
  const HandleRep* rep = repOf(*this);
  return rep ? rep->firstNumber() : 0.0;
}

void MDataHandle::set(bool value) {
  put(*this, std::int64_t{value});
}
void MDataHandle::set(char value) {
  put(*this, std::int64_t{value});
}
void MDataHandle::set(short value) {
  put(*this, std::int64_t{value});
}
void MDataHandle::set(int value) {
  put(*this, std::int64_t{value});
}
void MDataHandle::set(MInt64 value) {
  put(*this, std::int64_t{value});
}
void MDataHandle::set(float value) {
  put(*this, static_cast<double>(value));
}
void MDataHandle::set(double value) {
  put(*this, value);
}
void MDataHandle::set(const MVector& value) {
  putNumbers(*this, value.x, value.y, value.z);
}
void MDataHandle::set(const MFloatVector& value) {
  putNumbers(*this, value.x, value.y, value.z);
}
void MDataHandle::set(const MMatrix& value) {
  if (HandleRep* rep = repOf(*this)) rep->writeNumbers(&value.matrix[0][0], 16);
}
void MDataHandle::set(const MFloatMatrix& value) {
  double numbers[16];
  std::copy_n(&value.matrix[0][0], 16, numbers);
  if (HandleRep* rep = repOf(*this)) rep->writeNumbers(numbers, 16);
}
void MDataHandle::set(const MString& value) {
  put(*this, api::toStd(value));
}
void MDataHandle::set(const MDistance& value) {
  put(*this, value.asCentimeters());
}
void MDataHandle::set(const MAngle& value) {
  put(*this, value.asRadians());
}
void MDataHandle::set(const MTime& value) {
  put(*this, value.as(MTime::kSeconds));
}
MStatus MDataHandle::set(const MObject& data) {
  HandleRep* rep = repOf(*this);
  return rep ? rep->setObject(data) : MStatus(MStatus::kFailure);
}
void MDataHandle::set(MPxData* data) {
  if (data) (void)set(api::wrapPluginData(data));
}
void MDataHandle::set(short x, short y) {
  putNumbers(*this, x, y);
}
void MDataHandle::set(int x, int y) {
  putNumbers(*this, x, y);
}
void MDataHandle::set(float x, float y) {
  putNumbers(*this, x, y);
}
void MDataHandle::set(double x, double y) {
  putNumbers(*this, x, y);
}
void MDataHandle::set(short x, short y, short z) {
  putNumbers(*this, x, y, z);
}
void MDataHandle::set(int x, int y, int z) {
  putNumbers(*this, x, y, z);
}
void MDataHandle::set(float x, float y, float z) {
  putNumbers(*this, x, y, z);
}
void MDataHandle::set(double x, double y, double z) {
  putNumbers(*this, x, y, z);
}
void MDataHandle::set(double x, double y, double z, double w) {
  putNumbers(*this, x, y, z, w);
}
void MDataHandle::set2Short(short x, short y) {
  set(x, y);
}
void MDataHandle::set2Int(int x, int y) {
  set(x, y);
}
void MDataHandle::set2Float(float x, float y) {
  set(x, y);
}
void MDataHandle::set2Double(double x, double y) {
  set(x, y);
}
void MDataHandle::set3Short(short x, short y, short z) {
  set(x, y, z);
}
void MDataHandle::set3Int(int x, int y, int z) {
  set(x, y, z);
}
void MDataHandle::set3Float(float x, float y, float z) {
  set(x, y, z);
}
void MDataHandle::set3Double(double x, double y, double z) {
  set(x, y, z);
}
void MDataHandle::set4Double(double x, double y, double z, double w) {
  set(x, y, z, w);
}
void MDataHandle::setBool(bool value) {
  set(value);
}
void MDataHandle::setChar(char value) {
  set(value);
}
void MDataHandle::setShort(short value) {
  set(value);
}
void MDataHandle::setInt(int value) {
  set(value);
}
void MDataHandle::setInt64(MInt64 value) {
  set(value);
}
void MDataHandle::setFloat(float value) {
  set(value);
}
void MDataHandle::setDouble(double value) {
  set(value);
}
void MDataHandle::setString(const MString& value) {
  set(value);
}
void MDataHandle::setMVector(const MVector& value) {
  set(value);
}
void MDataHandle::setMFloatVector(const MFloatVector& value) {
  set(value);
}
void MDataHandle::setMMatrix(const MMatrix& value) {
  set(value);
}
void MDataHandle::setMFloatMatrix(const MFloatMatrix& value) {
  set(value);
}
void MDataHandle::setMDistance(const MDistance& value) {
  set(value);
}
void MDataHandle::setMAngle(const MAngle& value) {
  set(value);
}
void MDataHandle::setMTime(const MTime& value) {
  set(value);
}
void MDataHandle::setMPxData(MPxData* value) {
  set(value);
}
MStatus MDataHandle::setMObject(const MObject& data) {
  return set(data);
}
void MDataHandle::setGenericBool(bool value, bool) {
  set(value);
}
void MDataHandle::setGenericInt(int value, bool) {
  set(value);
}
void MDataHandle::setGenericDouble(double value, bool) {
  set(value);
}
