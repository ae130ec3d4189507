#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>

#include <algorithm>

#include "host/api/data/data_handle.h"
#include "host/dg/data_block.h"

namespace host::api {
namespace {

ArrayRep* arrayOf(const MArrayDataHandle& handle) {
  return Access::rep<ArrayRep>(handle);
}
BuilderRep* builderOf(const MArrayDataBuilder& builder) {
  return Access::rep<BuilderRep>(builder);
}

ArrayRep* atElement(const MArrayDataHandle& handle, MStatus* status) {
  ArrayRep* rep = arrayOf(handle);
  const bool isThere = rep && rep->position < rep->indices.size();
  setStatus(status, isThere ? MStatus::kSuccess : MStatus::kFailure);
  return isThere ? rep : nullptr;
}

MArrayDataHandle noArray(MStatus* status) {
  setStatus(status, MStatus::kInvalidParameter);
  return Access::make<MArrayDataHandle>(static_cast<SharedRep*>(nullptr));
}

}  // namespace

ArrayRep::ArrayRep(StorePtr storeIn, const dg::Plug& plugIn, bool isWritableIn, Handle blockIn)
    : store(std::move(storeIn)),
      node(plugIn.node() ? plugIn.node()->shared_from_this() : nullptr),
      plug(plugIn),
      isWritable(isWritableIn),
      block(std::move(blockIn)),
      indices(store->elements(plugIn)) {}

}  // namespace host::api

using namespace host;
using api::arrayOf;
using api::atElement;
using api::builderOf;
using api::setStatus;

MArrayDataHandle::MArrayDataHandle(const MDataHandle& handle, MStatus* status) {
  const api::HandleRep* rep = api::repOf(handle);
  const bool isArray = rep && rep->plug && rep->plug.isArray();
  setStatus(status, isArray ? MStatus::kSuccess : MStatus::kInvalidParameter);
  if (isArray)
    handle_ = api::Handle(new api::ArrayRep(rep->store, rep->plug, rep->isWritable, rep->block));
}

unsigned int MArrayDataHandle::elementCount(MStatus* status) const {
  const api::ArrayRep* rep = arrayOf(*this);
  setStatus(status, rep ? MStatus::kSuccess : MStatus::kFailure);
  return rep ? static_cast<unsigned int>(rep->indices.size()) : 0;
}
unsigned int MArrayDataHandle::elementIndex(MStatus* status) const {
  const api::ArrayRep* rep = atElement(*this, status);
  return rep ? static_cast<unsigned int>(rep->indices[rep->position]) : 0;
}
MStatus MArrayDataHandle::next() {
  api::ArrayRep* rep = arrayOf(*this);
  if (!rep || rep->position >= rep->indices.size()) return MStatus::kFailure;
  return ++rep->position < rep->indices.size() ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus MArrayDataHandle::jumpToElement(unsigned int logicalIndex) {
  api::ArrayRep* rep = arrayOf(*this);
  if (!rep) return MStatus::kFailure;
  const auto wanted = static_cast<Index>(logicalIndex);
  const auto found = std::lower_bound(rep->indices.begin(), rep->indices.end(), wanted);
  if (found == rep->indices.end() || *found != wanted) return MStatus::kInvalidParameter;
  rep->position = static_cast<std::size_t>(found - rep->indices.begin());
  return MStatus::kSuccess;
}
MStatus MArrayDataHandle::jumpToArrayElement(unsigned int physicalIndex) {
  api::ArrayRep* rep = arrayOf(*this);
  if (!rep || physicalIndex >= rep->indices.size()) return MStatus::kInvalidParameter;
  rep->position = physicalIndex;
  return MStatus::kSuccess;
}
MDataHandle MArrayDataHandle::inputValue(MStatus* status) {
  api::ArrayRep* rep = atElement(*this, status);
  if (!rep) return {};
  const dg::Plug element = rep->plug.element(rep->indices[rep->position]);
  if (!rep->isWritable && rep->store->isInGraph()) {
    const auto done = rep->node->graph().evaluate(element);
    setStatus(status, api::toStatus(done).statusCode());
    if (!done) return {};
  }
  MDataHandle handle =
      api::wrapHandle(new api::HandleRep(rep->store, element, rep->isWritable, rep->block));
  if (!rep->isWritable) rep->lastInput = api::Access::handle(handle);
  return handle;
}
MDataHandle MArrayDataHandle::outputValue(MStatus* status) {
  api::ArrayRep* rep = atElement(*this, status);
  if (!rep) return {};
  return api::wrapHandle(new api::HandleRep(
      rep->store, rep->plug.element(rep->indices[rep->position]), true, rep->block));
}
// An element is never itself an array here: arrays nest through compounds, whose children are
// reached by handles.
MArrayDataHandle MArrayDataHandle::inputArrayValue(MStatus* status) {
  return api::noArray(status);
}
MArrayDataHandle MArrayDataHandle::outputArrayValue(MStatus* status) {
  return api::noArray(status);
}

MArrayDataBuilder MArrayDataHandle::builder(MStatus* status) {
  const api::ArrayRep* rep = arrayOf(*this);
  setStatus(status, rep ? MStatus::kSuccess : MStatus::kFailure);
  auto* made = new api::BuilderRep;
  const api::Handle handle(made);
  if (rep) {
    made->node = rep->node;
    made->plug = rep->plug;
    const auto copied = api::copyValues(*rep->store, rep->plug, *made->store, made->plug);
    setStatus(status, api::toStatus(copied).statusCode());
  }
  return MArrayDataBuilder(handle);
}
MStatus MArrayDataHandle::set(const MArrayDataBuilder& builder) {
  api::ArrayRep* rep = arrayOf(*this);
  api::BuilderRep* from = builderOf(builder);
  if (!rep || !from || from->plug.isNull() || from->plug.attribute() != rep->plug.attribute())
    return MStatus::kInvalidParameter;
  if (auto* last = static_cast<api::HandleRep*>(from->last.get())) last->flush();
  const auto done = api::copyValues(*from->store, from->plug, *rep->store, rep->plug);
  rep->indices = rep->store->elements(rep->plug);
  rep->position = 0;
  return api::toStatus(done);
}
MStatus MArrayDataHandle::setClean() {
  const api::ArrayRep* rep = atElement(*this, nullptr);
  if (!rep) return MStatus::kFailure;
  if (rep->store->isInGraph())
    dg::DataBlock(rep->node->graph(), *rep->node)
        .setClean(rep->plug.element(rep->indices[rep->position]));
  return MStatus::kSuccess;
}
MStatus MArrayDataHandle::setAllClean() {
  const api::ArrayRep* rep = arrayOf(*this);
  if (!rep) return MStatus::kFailure;
  if (rep->store->isInGraph()) dg::DataBlock(rep->node->graph(), *rep->node).setClean(rep->plug);
  return MStatus::kSuccess;
}

MArrayDataBuilder::MArrayDataBuilder(const MObject& attribute, unsigned int count, MStatus* status)
    : MArrayDataBuilder(nullptr, attribute, count, status) {}
MArrayDataBuilder::MArrayDataBuilder(MDataBlock* block, const MObject& attribute, unsigned int,
                                     MStatus* status) {
  const dg::Attribute* description = api::attributeOf(attribute);
  const auto* owner = block ? api::Access::rep<api::BlockRep>(*block) : nullptr;
  const bool isArray = description && description->isArray;
  setStatus(status, isArray ? MStatus::kSuccess : MStatus::kInvalidParameter);
  auto* rep = new api::BuilderRep;
  handle_ = api::Handle(rep);
  if (!isArray) return;
  if (owner) rep->node = owner->node;
  rep->plug = dg::Plug(rep->node.get(), description);
}

MDataHandle MArrayDataBuilder::addElement(unsigned int index, MStatus* status) {
  api::BuilderRep* rep = builderOf(*this);
  if (!rep || rep->plug.isNull() || index > 0x7fffffffu) {
    setStatus(status, MStatus::kFailure);
    return {};
  }
  if (auto* last = static_cast<api::HandleRep*>(rep->last.get())) last->flush();
  const dg::Plug element = rep->plug.element(static_cast<Index>(index));
  setStatus(status, api::toStatus(rep->store->makeElement(element)).statusCode());
  const MDataHandle handle = api::wrapHandle(new api::HandleRep(rep->store, element, true));
  rep->last = api::Access::handle(handle);
  return handle;
}
MDataHandle MArrayDataBuilder::addLast(MStatus* status) {
  const api::BuilderRep* rep = builderOf(*this);
  if (!rep || rep->plug.isNull()) return addElement(0, status);
  const auto indices = rep->store->elements(rep->plug);
  return addElement(indices.empty() ? 0u : static_cast<unsigned int>(indices.back()) + 1, status);
}
MArrayDataHandle MArrayDataBuilder::addElementArray(unsigned int, MStatus* status) {
  return api::noArray(status);
}
MArrayDataHandle MArrayDataBuilder::addLastArray(MStatus* status) {
  return api::noArray(status);
}
MStatus MArrayDataBuilder::removeElement(unsigned int index) {
  api::BuilderRep* rep = builderOf(*this);
  if (!rep || rep->plug.isNull()) return MStatus::kFailure;
  rep->last = api::Handle();
  return api::toStatus(rep->store->dropElement(rep->plug.element(static_cast<Index>(index))),
                       MStatus::kInvalidParameter);
}
unsigned int MArrayDataBuilder::elementCount(MStatus* status) const {
  const api::BuilderRep* rep = builderOf(*this);
  const bool isThere = rep && rep->plug;
  setStatus(status, isThere ? MStatus::kSuccess : MStatus::kFailure);
  return isThere ? static_cast<unsigned int>(rep->store->elements(rep->plug).size()) : 0;
}
MStatus MArrayDataBuilder::growArray(unsigned int amount) {
  for (unsigned int i = 0; i < amount; ++i) {
    MStatus status;
    (void)addLast(&status);
    if (!status) return status;
  }
  return MStatus::kSuccess;
}
// Elements are made one at a time and take no more room than they need.
MStatus MArrayDataBuilder::setGrowSize(unsigned int) {
  return MStatus::kSuccess;
}
