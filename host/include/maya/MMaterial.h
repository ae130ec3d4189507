#pragma once

#include <maya/M3dView.h>
#include <maya/MColor.h>
#include <maya/MDagPath.h>
#include <maya/MStatus.h>

/// The look of a surface for classes that draw with OpenGL: the plain grey of shapes that have no
/// shader.
class MMaterial {
 public:
  enum MtlAttr {
    kColor,
    kTransparency,
    kAmbientColor,
    kIncandescence,
    kDiffuse,
    kSpecularColor,
    kShininess
  };

  MMaterial() = default;
  static MMaterial defaultMaterial() { return {}; }
  MStatus evaluateMaterial(M3dView& view, const MDagPath& path);
  MStatus evaluateShininess() { return MStatus::kSuccess; }
  MStatus evaluateDiffuse() { return MStatus::kSuccess; }
  bool materialIsTextured() const { return false; }
  MStatus getHasTransparency(bool& hasTransparency) {
    hasTransparency = false;
    return MStatus::kSuccess;
  }
  MStatus getColor(MColor& color) const;
  MStatus getDiffuse(MColor& color) const { return getColor(color); }
  MStatus getSpecular(MColor& color) const;
  MStatus getShininess(float& shininess) const;
  /// Makes it what the fixed-function pipeline lights with, two lights on, until the request is
  /// drawn.
  MStatus setMaterial(const MDagPath& path, bool hasTransparency);
};
