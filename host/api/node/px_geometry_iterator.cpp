#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MIntArray.h>
#include <maya/MPxGeometryIterator.h>

#include <algorithm>

MPxGeometryIterator::MPxGeometryIterator(void* userGeometry, MObjectArray& components)
    : geometry_(userGeometry) {
  for (unsigned int i = 0; i < components.length(); ++i) take(components[i]);
}
MPxGeometryIterator::MPxGeometryIterator(void* userGeometry, MObject& components)
    : geometry_(userGeometry) {
  take(components);
}
MPxGeometryIterator::~MPxGeometryIterator() = default;

void MPxGeometryIterator::take(const MObject& component) {
  if (!component.hasFn(MFn::kSingleIndexedComponent)) return;
  const MFnSingleIndexedComponent indices(component);
  // One that is complete, or of another kind than points, is for the class to walk.
  if (indices.isComplete() || component.apiType() != MFn::kMeshVertComponent) return;
  MIntArray elements;
  indices.getElements(elements);
  isSome_ = true;
  for (unsigned int i = 0; i < elements.length(); ++i) some_.push_back(elements[i]);
  std::sort(some_.begin(), some_.end());
  some_.erase(std::unique(some_.begin(), some_.end()), some_.end());
}

bool MPxGeometryIterator::isDone() const {
  return current_ >= iteratorCount();
}
void MPxGeometryIterator::next() {
  if (!isDone()) ++current_;
}
void MPxGeometryIterator::reset() {
  current_ = 0;
}
void MPxGeometryIterator::component(MObject& component) {
  MFnSingleIndexedComponent indices;
  component = indices.create(MFn::kMeshVertComponent);
  indices.addElement(index());
}
bool MPxGeometryIterator::hasPoints() const {
  return true;
}
int MPxGeometryIterator::iteratorCount() const {
  if (!isSome_) return max_;
  // Components may outlive points that they name.
  const auto end = std::lower_bound(some_.begin(), some_.end(), max_);
  return static_cast<int>(end - some_.begin());
}
MPoint MPxGeometryIterator::point() const {
  return {};
}
void MPxGeometryIterator::setPoint(const MPoint&) const {}
int MPxGeometryIterator::setPointGetNext(MPoint& point) {
  setPoint(point);
  next();
  return isDone() ? -1 : index();
}
int MPxGeometryIterator::index() const {
  if (!isSome_) return current_;
  const auto place = static_cast<std::size_t>(current_);
  return place < some_.size() ? some_[place] : -1;
}
bool MPxGeometryIterator::hasNormals() const {
  return false;
}
int MPxGeometryIterator::indexUnsimplified() const {
  return index();
}
