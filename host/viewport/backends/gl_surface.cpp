#include "host/viewport/backends/gl_surface.h"

#include <algorithm>
#include <string>

namespace host::viewport {

namespace {

void setPlacement(const GlProgram& program, const math::Placement& p) {
  program.set("placing", p == math::Placement{} ? 0 : 1);
  program.set("frame", p.coverageU, p.coverageV, p.translateFrameU, p.translateFrameV);
  program.set("repeat", p.repeatU, p.repeatV, p.offsetU, p.offsetV);
  program.set("turns", static_cast<float>(p.rotateFrame), static_cast<float>(p.rotateUv));
  const auto bits = [](bool wraps, bool mirrors) { return (wraps ? 1 : 0) | (mirrors ? 2 : 0); };
  program.setWhole("wrapping", bits(p.wrapU, p.mirrorU), bits(p.wrapV, p.mirrorV),
                   p.stagger ? 1 : 0, 0);
}

}  // namespace

TexturePtr shownTexture(const DrawItem& item) {
  return item.material && item.showsTexture ? item.material->texture : item.texture;
}

void setMaterial(const GlProgram& program, const DrawItem& item) {
  const Material* material = item.material.get();
  program.set("hasMaterial", material ? 1 : 0);
  // The plain surface is of soft plastic.
  constexpr float kPlainGloss = 28;
  constexpr double kPlainShine = 0.16;
  if (!material) {
    program.set("glossPower", kPlainGloss);
    program.set("specular", Vec3{kPlainShine, kPlainShine, kPlainShine});
    program.set("ambient", Vec3{});
    program.set("incandescence", Vec3{});
    return;
  }
  const auto withAlpha = [&](const char* name, const Vec3& color, double alpha) {
    program.set(name, color.x, color.y, color.z, alpha);
  };
  withAlpha("materialColor", material->color, material->opacity);
  withAlpha("outsideColor", material->outsideColor, material->outsideOpacity);
  program.set("diffuse", static_cast<float>(material->diffuse));
  program.set("ambient", material->ambient);
  program.set("incandescence", material->incandescence);
  program.set("specular", material->specular);
  program.set("glossPower", static_cast<float>(material->gloss));
  if (!material->lit) program.set("lit", 0);
  if (item.showsTexture) setPlacement(program, material->placement);
}

void setLighting(const GlProgram& program, const Lighting& lighting, const Matrix4& view) {
  program.set("lighting", static_cast<int>(lighting.mode));
  const std::size_t count = std::min(lighting.lights.size(), Lighting::kMaxLights);
  program.set("lightCount", static_cast<int>(count));
  for (std::size_t i = 0; i < count; ++i) {
    const Light& light = lighting.lights[i];
    const auto name = [&](const char* array) {
      return std::string(array) + "[" + std::to_string(i) + "]";
    };
    program.setWhole(name("lightKind").c_str(), static_cast<int>(light.kind), 0, 0, 0);
    program.set(name("lightColor").c_str(), light.color);
    program.set(name("lightPosition").c_str(), math::transformPoint(light.position, view));
    program.set(name("lightDirection").c_str(),
                math::normalized(math::transformVector(light.direction, view)));
    const bool isAmbient = light.kind == Light::Kind::Ambient;
    program.set(name("lightShape").c_str(), light.decay, light.cosInner, light.cosOuter,
                isAmbient ? light.ambientShade : light.dropoff);
  }
}

}  // namespace host::viewport
