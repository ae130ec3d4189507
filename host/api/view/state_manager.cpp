#include <maya/MDrawContext.h>
#include <maya/MStateManager.h>

#include <algorithm>
#include <deque>

#include "host/api/core/access.h"
#include "host/api/view/direct_target.h"
#include "host/viewport/backends/direct_state.h"

using namespace host;
using api::setStatus;

namespace MHWRender {

namespace {

// In the order of the enumerations.
constexpr unsigned int kFactors[] = {0,      1,      0x0300, 0x0301, 0x0302, 0x0303, 0x0304,
                                     0x0305, 0x0306, 0x0307, 0x0302, 0x0303, 0x8001, 0x8002};
constexpr unsigned int kOperations[] = {0x8006, 0x800A, 0x800B, 0x8007, 0x8008};
constexpr unsigned int kFirstComparison = 0x0200;

/// Descriptions stay where they are, so that states may point to them.
template <class State, class Desc>
struct Kept {
  State state;
  Desc desc;
};

bool isSame(const MTargetBlendDesc& a, const MTargetBlendDesc& b) {
  return a.blendEnable == b.blendEnable && a.sourceBlend == b.sourceBlend &&
         a.destinationBlend == b.destinationBlend && a.blendOperation == b.blendOperation &&
         a.alphaSourceBlend == b.alphaSourceBlend &&
         a.alphaDestinationBlend == b.alphaDestinationBlend &&
         a.alphaBlendOperation == b.alphaBlendOperation && a.targetWriteMask == b.targetWriteMask;
}
bool isSame(const MBlendStateDesc& a, const MBlendStateDesc& b) {
  return std::equal(std::begin(a.targetBlends), std::end(a.targetBlends), b.targetBlends,
                    [](const auto& x, const auto& y) { return isSame(x, y); }) &&
         std::equal(a.blendFactor, a.blendFactor + 4, b.blendFactor) &&
         a.independentBlendEnable == b.independentBlendEnable &&
         a.alphaToCoverageEnable == b.alphaToCoverageEnable &&
         a.multiSampleMask == b.multiSampleMask;
}
bool isSame(const MRasterizerStateDesc& a, const MRasterizerStateDesc& b) {
  return a.fillMode == b.fillMode && a.cullMode == b.cullMode &&
         a.frontCounterClockwise == b.frontCounterClockwise &&
         a.depthBiasIsFloat == b.depthBiasIsFloat && a.depthBias == b.depthBias &&
         a.slopeScaledDepthBias == b.slopeScaledDepthBias &&
         a.depthClipEnable == b.depthClipEnable && a.scissorEnable == b.scissorEnable &&
         a.multiSampleEnable == b.multiSampleEnable &&
         a.antialiasedLineEnable == b.antialiasedLineEnable;
}
bool isSame(const MDepthStencilStateDesc& a, const MDepthStencilStateDesc& b) {
  return a.depthEnable == b.depthEnable && a.depthWriteEnable == b.depthWriteEnable &&
         a.depthFunc == b.depthFunc && a.stencilEnable == b.stencilEnable &&
         a.stencilReadMask == b.stencilReadMask && a.stencilWriteMask == b.stencilWriteMask &&
         a.stencilReferenceVal == b.stencilReferenceVal;
}

/// The same description gives the same state, so that asking each frame makes no more of them.
template <class Table, class Desc>
auto* keep(Table& table, const Desc& desc) {
  for (auto& each : table)
    if (isSame(each.desc, desc)) return &each;
  table.emplace_back();
  table.back().desc = desc;
  return &table.back();
}

}  // namespace

const MBlendState* MStateManager::acquireBlendState(const MBlendStateDesc& desc) {
  static std::deque<Kept<MBlendState, MBlendStateDesc>> all;
  auto* kept = keep(all, desc);
  kept->state.desc_ = &kept->desc;
  return &kept->state;
}
const MRasterizerState* MStateManager::acquireRasterizerState(const MRasterizerStateDesc& desc) {
  static std::deque<Kept<MRasterizerState, MRasterizerStateDesc>> all;
  auto* kept = keep(all, desc);
  kept->state.desc_ = &kept->desc;
  return &kept->state;
}
const MDepthStencilState* MStateManager::acquireDepthStencilState(
    const MDepthStencilStateDesc& desc) {
  static std::deque<Kept<MDepthStencilState, MDepthStencilStateDesc>> all;
  auto* kept = keep(all, desc);
  kept->state.desc_ = &kept->desc;
  return &kept->state;
}

MStatus MStateManager::setBlendState(const MBlendState* state) {
  if (!state) return MStatus::kInvalidParameter;
  if (!api::directTarget().isDrawing()) return MStatus::kFailure;
  const MTargetBlendDesc& target = state->desc().targetBlends[0];
  viewport::DirectBlend blend;
  blend.isOn = target.blendEnable;
  blend.source = kFactors[target.sourceBlend];
  blend.destination = kFactors[target.destinationBlend];
  blend.alphaSource = kFactors[target.alphaSourceBlend];
  blend.alphaDestination = kFactors[target.alphaDestinationBlend];
  blend.operation = kOperations[target.blendOperation];
  blend.alphaOperation = kOperations[target.alphaBlendOperation];
  for (int i = 0; i < 4; ++i) {
    blend.writes[i] = (target.targetWriteMask & 1 << i) != 0;
    blend.factor[i] = state->desc().blendFactor[i];
  }
  viewport::setDirectState(blend);
  blend_ = state;
  return MStatus::kSuccess;
}
MStatus MStateManager::setRasterizerState(const MRasterizerState* state) {
  if (!state) return MStatus::kInvalidParameter;
  if (!api::directTarget().isDrawing()) return MStatus::kFailure;
  const MRasterizerStateDesc& desc = state->desc();
  viewport::setDirectState(viewport::DirectRaster{
      desc.fillMode == MRasterizerState::kFillSolid, desc.cullMode == MRasterizerState::kCullFront,
      desc.cullMode == MRasterizerState::kCullBack, desc.frontCounterClockwise, desc.depthBias,
      desc.slopeScaledDepthBias, desc.antialiasedLineEnable});
  rasterizer_ = state;
  return MStatus::kSuccess;
}
MStatus MStateManager::setDepthStencilState(const MDepthStencilState* state) {
  if (!state) return MStatus::kInvalidParameter;
  if (!api::directTarget().isDrawing()) return MStatus::kFailure;
  const MDepthStencilStateDesc& desc = state->desc();
  viewport::setDirectState(
      viewport::DirectDepth{desc.depthEnable, desc.depthWriteEnable,
                            kFirstComparison + static_cast<unsigned int>(desc.depthFunc)});
  depth_ = state;
  return MStatus::kSuccess;
}

// What the host's own drawing set is not told: before the callback sets a state there is the
// ordinary one.
const MBlendState* MStateManager::getBlendState(MStatus* status) const {
  static const MBlendState* const ordinary = acquireBlendState({});
  setStatus(status, MStatus::kSuccess);
  return blend_ ? blend_ : ordinary;
}
const MRasterizerState* MStateManager::getRasterizerState(MStatus* status) const {
  static const MRasterizerState* const ordinary = [] {
    MRasterizerStateDesc desc;
    desc.cullMode = MRasterizerState::kCullNone;
    desc.frontCounterClockwise = true;
    return acquireRasterizerState(desc);
  }();
  setStatus(status, MStatus::kSuccess);
  return rasterizer_ ? rasterizer_ : ordinary;
}
const MDepthStencilState* MStateManager::getDepthStencilState(MStatus* status) const {
  static const MDepthStencilState* const ordinary = acquireDepthStencilState({});
  setStatus(status, MStatus::kSuccess);
  return depth_ ? depth_ : ordinary;
}

MStateManager* MDrawContext::getStateManager() const {
  // One for each callback: what it set ends with it.
  if (!states_) states_ = std::make_shared<MStateManager>();
  return states_.get();
}

}  // namespace MHWRender
