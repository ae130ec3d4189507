#include "host/dg/data_block.h"

#include <maya/MDataBlock.h>
#include <maya/MPlug.h>

#include "host/api/data/data_handle.h"

namespace host::api {
namespace {

BlockRep* blockOf(const MDataBlock& block) {
  return Access::rep<BlockRep>(block);
}

/// A plug of the block's node that names one value; null, with the status saying so, for others.
dg::Plug plugIn(const BlockRep* block, const dg::Plug& plug, MStatus* status) {
  const bool fits = block && plug && plug.node() == block->node.get() &&
                    isOwn(*plug.node(), *plug.attribute()) && (plug.isComplete() || plug.isArray());
  setStatus(status, fits ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return fits ? plug : dg::Plug();
}
dg::Plug plugIn(const BlockRep* block, const MObject& attribute, MStatus* status) {
  const dg::Attribute* description = attributeOf(attribute);
  const bool fits = block && description && isOwn(*block->node, *description);
  return plugIn(block, fits ? dg::Plug(block->node.get(), description) : dg::Plug(), status);
}

bool bringUpToDate(const dg::Plug& plug, MStatus* status) {
  const auto done = plug.node()->graph().evaluate(plug);
  setStatus(status, toStatus(done).statusCode());
  return static_cast<bool>(done);
}

const StorePtr& storeOf(const MDataBlock& block) {
  const BlockRep* rep = blockOf(block);
  return rep && rep->isEdit ? editStore() : outputStore();
}

MDataHandle handleAt(const MDataBlock& block, const dg::Plug& plug, bool isInput, MStatus* status) {
  if (plug.isNull()) return {};
  if (isInput && !bringUpToDate(plug, status)) return {};
  MDataHandle handle =
      wrapHandle(new HandleRep(storeOf(block), plug, !isInput, Access::handle(block)));
  if (BlockRep* rep = blockOf(block); isInput && rep && rep->keepsInputs)
    rep->inputs.push_back(Access::handle(handle));
  return handle;
}

MArrayDataHandle arrayAt(const MDataBlock& block, const dg::Plug& plug, bool isInput,
                         MStatus* status) {
  const auto nothing = [&] {
    return Access::make<MArrayDataHandle>(static_cast<SharedRep*>(nullptr));
  };
  if (plug.isNull()) return nothing();
  if (!plug.isArray()) {
    setStatus(status, MStatus::kInvalidParameter);
    return nothing();
  }
  if (isInput && !bringUpToDate(plug, status)) return nothing();
  return Access::make<MArrayDataHandle>(
      new ArrayRep(storeOf(block), plug, !isInput, Access::handle(block)));
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::blockOf;
using api::plugIn;
using api::plugOf;
using api::setStatus;

#define HOST_BLOCK_VALUE(Name, Type, At, isInput)                                    \
  Type MDataBlock::Name(const MPlug& plug, MStatus* status) {                        \
    return At(*this, plugIn(blockOf(*this), plugOf(plug), status), isInput, status); \
  }                                                                                  \
  Type MDataBlock::Name(const MObject& attribute, MStatus* status) {                 \
    return At(*this, plugIn(blockOf(*this), attribute, status), isInput, status);    \
  }
HOST_BLOCK_VALUE(inputValue, MDataHandle, api::handleAt, true)
HOST_BLOCK_VALUE(outputValue, MDataHandle, api::handleAt, false)
HOST_BLOCK_VALUE(inputArrayValue, MArrayDataHandle, api::arrayAt, true)
HOST_BLOCK_VALUE(outputArrayValue, MArrayDataHandle, api::arrayAt, false)
#undef HOST_BLOCK_VALUE

MStatus MDataBlock::setClean(const MPlug& plug) {
  MStatus status;
  const dg::Plug own = plugIn(blockOf(*this), plugOf(plug), &status);
  if (own) dg::DataBlock(own.node()->graph(), *own.node()).setClean(own);
  return status;
}
MStatus MDataBlock::setClean(const MObject& attribute) {
  MStatus status;
  const dg::Plug own = plugIn(blockOf(*this), attribute, &status);
  if (own) dg::DataBlock(own.node()->graph(), *own.node()).setClean(own);
  return status;
}
bool MDataBlock::isClean(const MPlug& plug, MStatus* status) const {
  const dg::Plug own = plugIn(blockOf(*this), plugOf(plug), status);
  return own && !own.node()->graph().isDirty(own);
}
bool MDataBlock::isClean(const MObject& attribute, MStatus* status) const {
  const dg::Plug own = plugIn(blockOf(*this), attribute, status);
  return own && !own.node()->graph().isDirty(own);
}
MDGContext MDataBlock::context(MStatus* status) const {
  const api::BlockRep* block = blockOf(*this);
  setStatus(status, block ? MStatus::kSuccess : MStatus::kFailure);
  return block ? block->context : MDGContext();
}
MStatus MDataBlock::setContext(const MDGContext& context) {
  api::BlockRep* block = blockOf(*this);
  if (!block) return MStatus::kFailure;
  block->context = context;
  return MStatus::kSuccess;
}
