#pragma once

#include <maya/MStatus.h>
#include <maya/MTypes.h>

namespace MHWRender {

class MStateManager;
struct MBlendStateDesc;
struct MRasterizerStateDesc;
struct MDepthStencilStateDesc;

/// How what is drawn mixes with what is there.
class MBlendState {
 public:
  enum BlendOption {
    kZero,
    kOne,
    kSourceColor,
    kInvSourceColor,
    kSourceAlpha,
    kInvSourceAlpha,
    kDestinationAlpha,
    kInvDestinationAlpha,
    kDestinationColor,
    kInvDestinationColor,
    kBothSourceAlpha,
    kBothInvSourceAlpha,
    kBlendFactor,
    kInvBlendFactor
  };
  enum BlendOperation { kAdd, kSubtract, kReverseSubtract, kMin, kMax };
  enum ChannelMask {
    kNoChannels = 0,
    kRedChannel = 1,
    kGreenChannel = 2,
    kBlueChannel = 4,
    kAlphaChannel = 8,
    kRGBAChannels = 15
  };
  const MBlendStateDesc& desc() const { return *desc_; }
  void* resourceHandle() const { return nullptr; }

 private:
  friend class MStateManager;
  const MBlendStateDesc* desc_ = nullptr;
};

struct MTargetBlendDesc {
  void setDefaults() { *this = MTargetBlendDesc(); }
  bool blendEnable = false;
  MBlendState::BlendOption sourceBlend = MBlendState::kOne;
  MBlendState::BlendOption destinationBlend = MBlendState::kZero;
  MBlendState::BlendOperation blendOperation = MBlendState::kAdd;
  MBlendState::BlendOption alphaSourceBlend = MBlendState::kOne;
  MBlendState::BlendOption alphaDestinationBlend = MBlendState::kZero;
  MBlendState::BlendOperation alphaBlendOperation = MBlendState::kAdd;
  int targetWriteMask = MBlendState::kRGBAChannels;
};

/// Only the first target is drawn into.
struct MBlendStateDesc {
  enum { kMaxTargets = 8 };
  void setDefaults() { *this = MBlendStateDesc(); }
  MTargetBlendDesc targetBlends[kMaxTargets];
  bool independentBlendEnable = false;
  bool alphaToCoverageEnable = false;
  float blendFactor[4] = {1, 1, 1, 1};
  unsigned int multiSampleMask = 0xffffffffU;
};

/// How triangles are filled, and which are left out.
class MRasterizerState {
 public:
  enum FillMode { kFillSolid, kFillWireFrame };
  enum CullMode { kCullNone, kCullFront, kCullBack };
  const MRasterizerStateDesc& desc() const { return *desc_; }
  void* resourceHandle() const { return nullptr; }

 private:
  friend class MStateManager;
  const MRasterizerStateDesc* desc_ = nullptr;
};

struct MRasterizerStateDesc {
  void setDefaults() { *this = MRasterizerStateDesc(); }
  MRasterizerState::FillMode fillMode = MRasterizerState::kFillSolid;
  MRasterizerState::CullMode cullMode = MRasterizerState::kCullBack;
  bool frontCounterClockwise = false;
  bool depthBiasIsFloat = true;
  float depthBias = 0;
  float slopeScaledDepthBias = 0;
  bool depthClipEnable = true;
  bool scissorEnable = false;
  bool multiSampleEnable = false;
  bool antialiasedLineEnable = false;
};

/// Which pixels are hidden by what was drawn before. Stencils are kept and unused: views have none.
class MDepthStencilState {
 public:
  enum StencilOperation {
    kKeepStencil,
    kZeroStencil,
    kReplaceStencil,
    kIncrementStencilSat,
    kDecrementStencilSat,
    kInvertStencil,
    kIncrementStencil,
    kDecrementStencil
  };
  const MDepthStencilStateDesc& desc() const { return *desc_; }
  void* resourceHandle() const { return nullptr; }

 private:
  friend class MStateManager;
  const MDepthStencilStateDesc* desc_ = nullptr;
};

/// Sets the states that a draw callback draws with; they end with the callback.
class MStateManager {
 public:
  enum CompareMode {
    kCompareNever,
    kCompareLess,
    kCompareEqual,
    kCompareLessEqual,
    kCompareGreater,
    kCompareNotEqual,
    kCompareGreaterEqual,
    kCompareAlways
  };

  /// The state of a description, the same for the same one; it lives as long as the program.
  static const MBlendState* acquireBlendState(const MBlendStateDesc& desc);
  static const MRasterizerState* acquireRasterizerState(const MRasterizerStateDesc& desc);
  static const MDepthStencilState* acquireDepthStencilState(const MDepthStencilStateDesc& desc);
  static void releaseBlendState(const MBlendState*) {}
  static void releaseRasterizerState(const MRasterizerState*) {}
  static void releaseDepthStencilState(const MDepthStencilState*) {}

  /// Fails outside of a draw callback.
  MStatus setBlendState(const MBlendState* state);
  MStatus setRasterizerState(const MRasterizerState* state);
  MStatus setDepthStencilState(const MDepthStencilState* state);
  const MBlendState* getBlendState(MStatus* status = nullptr) const;
  const MRasterizerState* getRasterizerState(MStatus* status = nullptr) const;
  const MDepthStencilState* getDepthStencilState(MStatus* status = nullptr) const;

 private:
  const MBlendState* blend_ = nullptr;
  const MRasterizerState* rasterizer_ = nullptr;
  const MDepthStencilState* depth_ = nullptr;
};

struct MDepthStencilStateDesc {
  void setDefaults() { *this = MDepthStencilStateDesc(); }
  bool depthEnable = true;
  bool depthWriteEnable = true;
  MStateManager::CompareMode depthFunc = MStateManager::kCompareLess;
  bool stencilEnable = false;
  unsigned char stencilReadMask = 0xff;
  unsigned char stencilWriteMask = 0xff;
  int stencilReferenceVal = 0;
};

}  // namespace MHWRender
