#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MTime.h>
#include <maya/MUintArray.h>

#include "host/api/data/data_handle.h"
#include "host/api/data/data_types.h"
#include "host/api/data/numeric_data.h"
#include "host/api/data/plugin_data.h"
#include "host/api/data/time_value.h"
#include "host/dg/data_block.h"

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
