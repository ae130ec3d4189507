#include <maya/MCommonSystemUtils.h>
#include <maya/MCursor.h>
#include <maya/MDGContext.h>
#include <maya/MEvent.h>
#include <maya/MFileObject.h>
#include <maya/MIteratorType.h>
#include <maya/MMeshSmoothOptions.h>
#include <maya/MTimer.h>
#include <maya/MTypeId.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

// Values that only hold what they were given.

namespace {

void setStatus(MStatus* status) {
  if (status) *status = MStatus::kSuccess;
}

template <class T>
MStatus assign(T& member, const T& value) {
  member = value;
  return MStatus::kSuccess;
}

template <class T>
const T& report(const T& value, MStatus* status) {
  setStatus(status);
  return value;
}

double secondsNow() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace

std::ostream& operator<<(std::ostream& os, const MTypeId& typeId) {
  return os << "0x" << std::hex << typeId.id() << std::dec;
}

void MTimer::beginTimer() {
  begin_ = secondsNow();
}
void MTimer::endTimer() {
  elapsed_ = secondsNow() - begin_;
}
double MTimer::elapsedTime() const {
  return elapsed_;
}
void MTimer::clear() {
  begin_ = elapsed_ = 0.0;
}

MDGContext MDGContext::fsNormal;
bool MDGContext::isNormal(MStatus* status) const {
  return report(isNormal_, status);
}
MStatus MDGContext::getTime(MTime& time) const {
  return assign(time, time_);
}

MFn::Type MIteratorType::getFilterType(MStatus* status) const {
  return report(type_, status);
}
MStatus MIteratorType::getFilterList(MIntArray& filterList) const {
  return assign(filterList, list_);
}
MIteratorType::objFilterType MIteratorType::getObjectType(MStatus* status) const {
  return report(objectType_, status);
}
bool MIteratorType::filterListEnabled(MStatus* status) const {
  return report(usesList_, status);
}
MStatus MIteratorType::setFilterType(MFn::Type filter) {
  usesList_ = false;
  return assign(type_, filter);
}
MStatus MIteratorType::setFilterList(const MIntArray& filterList) {
  usesList_ = true;
  return assign(list_, filterList);
}
MStatus MIteratorType::setObjectType(objFilterType type) {
  return assign(objectType_, type);
}

namespace {
enum CursorId { kDefaultCursor, kCrossHair, kDoubleCrossHair, kEdit, kPencil, kHand, kFirstCustom };
}  // namespace

const MCursor MCursor::defaultCursor(kDefaultCursor);
const MCursor MCursor::crossHairCursor(kCrossHair);
const MCursor MCursor::doubleCrossHairCursor(kDoubleCrossHair);
const MCursor MCursor::editCursor(kEdit);
const MCursor MCursor::pencilCursor(kPencil);
const MCursor MCursor::handCursor(kHand);

MCursor::MCursor(short, short, short, short, unsigned char*, unsigned char*) {
  // Windows show their system's pointers only: a bitmap gets an identity of its own and shows as
  // the default.
  static int next = kFirstCustom;
  id_ = next++;
}

MEvent::MouseButtonType MEvent::mouseButton(MStatus* status) const {
  setStatus(status);
  return static_cast<MouseButtonType>(button_);
}
MStatus MEvent::getPosition(short& x_pos, short& y_pos) const {
  x_pos = x_;
  y_pos = y_;
  return MStatus::kSuccess;
}
MStatus MEvent::setPosition(short& x_pos, short& y_pos) {
  x_ = x_pos;
  y_ = y_pos;
  return MStatus::kSuccess;
}
MStatus MEvent::getWindowPosition(short& x_pos, short& y_pos) const {
  return getPosition(x_pos, y_pos);
}
MEvent::ModifierType MEvent::modifiers(MStatus* status) const {
  setStatus(status);
  return static_cast<ModifierType>(modifiers_);
}
MStatus MEvent::setModifiers(const ModifierType& modifierType) {
  return assign(modifiers_, static_cast<int>(modifierType));
}
bool MEvent::isModifierNone(MStatus* status) const {
  setStatus(status);
  return (modifiers_ & (shiftKey | controlKey)) == 0;
}
bool MEvent::isModifierShift(MStatus* status) const {
  setStatus(status);
  return (modifiers_ & shiftKey) != 0;
}
bool MEvent::isModifierControl(MStatus* status) const {
  setStatus(status);
  return (modifiers_ & controlKey) != 0;
}
bool MEvent::isModifierLeftMouseButton(MStatus* status) const {
  setStatus(status);
  return button_ == kLeftMouse;
}
bool MEvent::isModifierMiddleMouseButton(MStatus* status) const {
  setStatus(status);
  return button_ == kMiddleMouse;
}
bool MEvent::isModifierKeyRelease(MStatus* status) const {
  return report(isRelease_, status);
}

int MMeshSmoothOptions::divisions(MStatus* status) const {
  return report(divisions_, status);
}
MStatus MMeshSmoothOptions::setDivisions(int divisions) {
  return divisions < 0 ? MStatus(MStatus::kInvalidParameter) : assign(divisions_, divisions);
}
float MMeshSmoothOptions::smoothness(MStatus* status) const {
  return report(smoothness_, status);
}
MStatus MMeshSmoothOptions::setSmoothness(float smoothness) {
  return assign(smoothness_, smoothness);
}
bool MMeshSmoothOptions::smoothUVs(MStatus* status) const {
  return report(smoothUVs_, status);
}
MStatus MMeshSmoothOptions::setSmoothUVs(bool smoothUVs) {
  return assign(smoothUVs_, smoothUVs);
}
bool MMeshSmoothOptions::propEdgeHardness(MStatus* status) const {
  return report(propEdgeHardness_, status);
}
MStatus MMeshSmoothOptions::setPropEdgeHardness(bool propagate) {
  return assign(propEdgeHardness_, propagate);
}
bool MMeshSmoothOptions::keepBorderEdge(MStatus* status) const {
  return report(keepBorderEdge_, status);
}
MStatus MMeshSmoothOptions::setKeepBorderEdge(bool keep) {
  return assign(keepBorderEdge_, keep);
}
bool MMeshSmoothOptions::keepHardEdge(MStatus* status) const {
  return report(keepHardEdge_, status);
}
MStatus MMeshSmoothOptions::setKeepHardEdge(bool keep) {
  return assign(keepHardEdge_, keep);
}
MMeshSmoothOptions::BoundaryRule MMeshSmoothOptions::boundaryRule(MStatus* status) const {
  return report(boundaryRule_, status);
}
MStatus MMeshSmoothOptions::setBoundaryRule(BoundaryRule rule) {
  return assign(boundaryRule_, rule);
}

MStatus MFileObject::setRawFullName(const MString& name) {
  return assign(fullName_, name);
}
MStatus MFileObject::setRawName(const MString& name) {
  const MString path = rawPath();
  return assign(fullName_, path.length() ? path + "/" + name : name);
}
MStatus MFileObject::setRawPath(const MString& path) {
  return assign(fullName_, path + "/" + rawName());
}
MString MFileObject::rawName() const {
  return fullName_.substring(fullName_.rindex('/') + 1, static_cast<int>(fullName_.length()) - 1);
}
MString MFileObject::rawPath() const {
  return fullName_.substring(0, fullName_.rindex('/') - 1);
}
MString MFileObject::rawFullName() const {
  return fullName_;
}
MString MFileObject::resolvedName() const {
  return rawName();
}
MString MFileObject::resolvedPath() const {
  const MString full = resolvedFullName();
  return full.substring(0, full.rindex('/') - 1);
}
MString MFileObject::resolvedFullName() const {
  return isSet() ? fullName_.expandFilePath() : MString();
}
bool MFileObject::isSet() const {
  return fullName_.length() > 0;
}
bool MFileObject::exists() const {
  std::error_code error;
  return isSet() && std::filesystem::exists(resolvedFullName().asChar(), error);
}

MString MCommonSystemUtils::getEnv(const MString& variable, MStatus* status) {
  setStatus(status);
  return MString(std::getenv(variable.asChar()));
}
MStatus MCommonSystemUtils::putEnv(const MString& variable, const MString& value) {
  return ::setenv(variable.asChar(), value.asChar(), 1) == 0 ? MStatus::kSuccess
                                                             : MStatus::kInvalidParameter;
}
MStatus MCommonSystemUtils::makeDirectory(const MString& path) {
  std::error_code error;
  std::filesystem::create_directories(path.asChar(), error);
  return error ? MStatus::kFailure : MStatus::kSuccess;
}
