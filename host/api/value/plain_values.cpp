#include <maya/MDGContext.h>
#include <maya/MIteratorType.h>
#include <maya/MMeshSmoothOptions.h>
#include <maya/MTimer.h>
#include <maya/MTypeId.h>

#include <chrono>

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
