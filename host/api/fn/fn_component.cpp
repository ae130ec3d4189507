#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MFnTripleIndexedComponent.h>

#include <algorithm>

#include "host/api/core/access.h"
#include "host/api/core/fn_types.h"

namespace host::api {
namespace {

ComponentRep* componentIn(const MObject& object, MStatus* status = nullptr) {
  auto* rep = objectAs<ComponentRep>(object);
  setStatus(status, rep ? MStatus::kSuccess : MStatus::kFailure);
  return rep;
}

/// Elements that the list names; of a complete one those that setCompleteData spoke of.
std::size_t countOf(ComponentRep& rep) {
  const scene::Component& component = rep.settled();
  return component.isComplete() ? at(rep.completeCount)
                                : std::max(component.indices().size(), component.pairs().size());
}

MObject makeComponent(MFn::Type wanted, bool isDouble, MStatus* status) {
  scene::ComponentType type = scene::ComponentType::Vertex;
  const bool isKnown =
      toComponentType(wanted, type) && (type == scene::ComponentType::VertexFace) == isDouble;
  setStatus(status, isKnown ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return isKnown ? wrap(scene::Component(type)) : MObject();
}

MStatus refuseTriple() {
  rememberError(Error{"Meshes have no components with three indices"});
  return MStatus::kInvalidParameter;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::componentIn;
using api::setStatus;

int MFnComponent::elementCount(MStatus* status) const {
  auto* rep = componentIn(object_, status);
  return rep ? static_cast<int>(api::countOf(*rep)) : 0;
}
MFn::Type MFnComponent::componentType(MStatus* status) const {
  const auto* rep = componentIn(object_, status);
  return rep ? rep->apiType() : MFn::kInvalid;
}
bool MFnComponent::isEmpty() const {
  auto* rep = componentIn(object_);
  return !rep || rep->settled().isEmpty();
}
bool MFnComponent::isEqual(const MObject& other, MStatus* status) const {
  auto* rep = componentIn(object_, status);
  const scene::Component* second = api::componentOf(other);
  return rep && second && rep->settled() == *second;
}
bool MFnComponent::isComplete(MStatus* status) const {
  auto* rep = componentIn(object_, status);
  return rep && rep->settled().isComplete();
}
MStatus MFnComponent::setComplete(bool complete) {
  auto* rep = componentIn(object_);
  if (!rep) return MStatus::kFailure;
  const scene::ComponentType type = rep->settled().type();
  if (complete)
    rep->component = scene::Component::all(type);
  else if (rep->component.isComplete())
    rep->component = type == scene::ComponentType::VertexFace
                         ? scene::Component(type)
                         : scene::Component(type, rep->component.expanded(rep->completeCount));
  return MStatus::kSuccess;
}
bool MFnComponent::hasWeights() const {
  return false;
}
MWeight MFnComponent::weight(int index, MStatus* status) const {
  const bool isThere = index >= 0 && index < elementCount(status);
  setStatus(status, isThere ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return {};
}
// Component lists here say which, not how much: only the weight that every component has is
// accepted.
MStatus MFnComponent::setWeight(int index, const MWeight& weight) {
  if (index < 0 || index >= elementCount()) return MStatus::kInvalidParameter;
  return weight.influence() == 1.0f && weight.seam() == 1.0f ? MStatus::kSuccess
                                                             : MStatus::kFailure;
}

MObject MFnSingleIndexedComponent::create(MFn::Type componentType, MStatus* status) {
  return object_ = api::makeComponent(componentType, false, status);
}
MStatus MFnSingleIndexedComponent::addElement(int element) {
  auto* rep = componentIn(object_);
  if (!rep || element < 0) return MStatus::kInvalidParameter;
  if (!rep->component.isComplete()) rep->pending.push_back(element);
  return MStatus::kSuccess;
}
MStatus MFnSingleIndexedComponent::addElements(const MIntArray& elements) {
  auto* rep = componentIn(object_);
  if (!rep) return MStatus::kInvalidParameter;
  for (unsigned int i = 0; i < elements.length(); ++i)
    if (elements[i] < 0) return MStatus::kInvalidParameter;
  if (rep->component.isComplete()) return MStatus::kSuccess;
  for (unsigned int i = 0; i < elements.length(); ++i) rep->pending.push_back(elements[i]);
  return MStatus::kSuccess;
}
int MFnSingleIndexedComponent::element(int index, MStatus* status) const {
  auto* rep = componentIn(object_, status);
  if (!rep) return 0;
  if (index < 0 || at(index) >= api::countOf(*rep)) {
    setStatus(status, MStatus::kInvalidParameter);
    return 0;
  }
  return rep->component.isComplete() ? index : rep->component.indices()[at(index)];
}
MStatus MFnSingleIndexedComponent::getElements(MIntArray& elements) const {
  elements.clear();
  auto* rep = componentIn(object_);
  if (!rep) return MStatus::kFailure;
  const scene::Component& component = rep->settled();
  const std::vector<Index> all =
      component.isComplete() ? component.expanded(rep->completeCount) : std::vector<Index>();
  const auto indices = component.isComplete() ? std::span<const Index>(all) : component.indices();
  elements = MIntArray(indices.data(), static_cast<unsigned int>(indices.size()));
  return MStatus::kSuccess;
}
MStatus MFnSingleIndexedComponent::setCompleteData(int numElements) {
  auto* rep = componentIn(object_);
  if (!rep || numElements < 0) return MStatus::kInvalidParameter;
  rep->pending.clear();
  rep->component = scene::Component::all(rep->component.type());
  rep->completeCount = numElements;
  return MStatus::kSuccess;
}
MStatus MFnSingleIndexedComponent::getCompleteData(int& numElements) const {
  auto* rep = componentIn(object_);
  if (!rep || !rep->settled().isComplete()) return MStatus::kFailure;
  numElements = rep->completeCount;
  return MStatus::kSuccess;
}

MObject MFnDoubleIndexedComponent::create(MFn::Type componentType, MStatus* status) {
  return object_ = api::makeComponent(componentType, true, status);
}
MStatus MFnDoubleIndexedComponent::addElement(int uIndex, int vIndex) {
  return addElements(MIntArray(1u, uIndex), MIntArray(1u, vIndex));
}
MStatus MFnDoubleIndexedComponent::addElements(const MIntArray& uIndices,
                                               const MIntArray& vIndices) {
  auto* rep = componentIn(object_);
  if (!rep || rep->component.type() != scene::ComponentType::VertexFace ||
      uIndices.length() != vIndices.length())
    return MStatus::kInvalidParameter;
  std::vector<scene::Component::VertexFace> pairs;
  for (unsigned int i = 0; i < uIndices.length(); ++i) {
    if (uIndices[i] < 0 || vIndices[i] < 0) return MStatus::kInvalidParameter;
    pairs.push_back({uIndices[i], vIndices[i]});
  }
  if (!rep->component.isComplete()) rep->component.unite(scene::Component(std::move(pairs)));
  return MStatus::kSuccess;
}
MStatus MFnDoubleIndexedComponent::getElement(int index, int& uIndex, int& vIndex) const {
  auto* rep = componentIn(object_);
  if (!rep) return MStatus::kFailure;
  const auto pairs = rep->settled().pairs();
  if (index < 0 || at(index) >= pairs.size()) return MStatus::kInvalidParameter;
  uIndex = pairs[at(index)].vertex;
  vIndex = pairs[at(index)].face;
  return MStatus::kSuccess;
}
MStatus MFnDoubleIndexedComponent::getElements(MIntArray& uIndices, MIntArray& vIndices) const {
  uIndices.clear();
  vIndices.clear();
  auto* rep = componentIn(object_);
  if (!rep) return MStatus::kFailure;
  for (const auto& pair : rep->settled().pairs()) {
    uIndices.append(pair.vertex);
    vIndices.append(pair.face);
  }
  return MStatus::kSuccess;
}
// A complete list of face corners has no two sizes to speak of: how many there are follows from the
// mesh.
MStatus MFnDoubleIndexedComponent::setCompleteData(int, int) {
  return setComplete(true);
}
MStatus MFnDoubleIndexedComponent::getCompleteData(int&, int&) const {
  return MStatus::kFailure;
}

MObject MFnTripleIndexedComponent::create(MFn::Type, MStatus* status) {
  setStatus(status, api::refuseTriple().statusCode());
  return object_ = MObject();
}
MStatus MFnTripleIndexedComponent::addElement(int, int, int) {
  return api::refuseTriple();
}
MStatus MFnTripleIndexedComponent::addElements(const MIntArray&, const MIntArray&,
                                               const MIntArray&) {
  return api::refuseTriple();
}
MStatus MFnTripleIndexedComponent::getElement(int, int&, int&, int&) const {
  return api::refuseTriple();
}
MStatus MFnTripleIndexedComponent::getElements(MIntArray& s, MIntArray& t, MIntArray& u) const {
  s.clear();
  t.clear();
  u.clear();
  return api::refuseTriple();
}
MStatus MFnTripleIndexedComponent::setCompleteData(int, int, int) {
  return api::refuseTriple();
}
MStatus MFnTripleIndexedComponent::getCompleteData(int&, int&, int&) const {
  return api::refuseTriple();
}
