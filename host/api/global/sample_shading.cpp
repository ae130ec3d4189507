#include <maya/MDynamicsUtil.h>
#include <maya/MPlugArray.h>
#include <maya/MRenderUtil.h>

#include <filesystem>

#include "host/api/core/access.h"
#include "host/cmd/session.h"
#include "host/nodes/shading/shade_network.h"
#include "host/scene/display_rules.h"
#include "host/workspace/pictures.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

/// Finds files' pictures, which are kept for the session.
nodes::PicturePtr pictureOf(dg::Node& node) {
  const dg::Plug name = node.plug("fileTextureName");
  const auto path = name ? node.graph().get(name) : Result<dg::Value>(dg::Value());
  const auto* text = path ? std::get_if<std::string>(&*path) : nullptr;
  if (!text || scene::numberOr(node, "disableFileLoad", 0) != 0) return nullptr;
  auto& pictures = workspace::workspaceOf(cmd::currentSession()).kept<workspace::Pictures>();
  const std::filesystem::path scene(document().fileName());
  return pictures.find(*text, scene.parent_path().string());
}

Result<dg::Plug> plugToSample(const std::string& name) {
  const std::size_t dot = name.find('.');
  auto node = document().node(name.substr(0, dot));
  if (!node) return failWith(node.error());
  const std::string attribute = dot == std::string::npos ? "outColor" : name.substr(dot + 1);
  const dg::Plug plug = (*node)->plug(attribute);
  if (!plug) return fail("'{}' has no attribute '{}'", (*node)->name(), attribute);
  if ((*node)->type().isA("lambert") || (*node)->type().isA("surfaceShader"))
    return fail("'{}' is a shader, which needs light; sample what feeds it", (*node)->name());
  return plug;
}

bool isColor(const dg::Plug& plug) {
  return plug.isCompound() && plug.attribute()->children.size() == 3;
}

/// Colours of a plug and what of the light its node lets through.
struct Sampler {
  explicit Sampler(const dg::Plug& plug) : network(pictureOf) {
    if (isColor(plug)) {
      color = network.addColor(plug);
    } else {
      const auto number = network.addNumber(plug);
      color = {number, number, number};
    }
    const dg::Plug through = plug.node()->plug("outTransparency");
    if (through && isColor(through)) transparency = network.addColor(through);
  }
  nodes::ShadeNetwork network;
  nodes::ShadeNetwork::Color color{}, transparency{};
};

Result<void> sample(const dg::Plug& plug, unsigned int count, const auto& us, const auto& vs,
                    const auto& put) {
  Sampler sampler(plug);
  for (unsigned int i = 0; i < count; ++i) {
    sampler.network.moveTo(us[i], vs[i]);
    put(i, sampler.network.color(sampler.color), sampler.network.color(sampler.transparency));
  }
  return {};
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;

MStatus MRenderUtil::sampleShadingNetwork(MString shadingNodeName, int numSamples, bool, bool,
                                          MFloatMatrix&, MFloatPointArray*, MFloatArray* uCoords,
                                          MFloatArray* vCoords, MFloatVectorArray*,
                                          MFloatPointArray*, MFloatVectorArray*, MFloatVectorArray*,
                                          MFloatArray*, MFloatVectorArray& resultColors,
                                          MFloatVectorArray& resultTransparencies) {
  const auto count = static_cast<unsigned int>(std::max(numSamples, 0));
  const MFloatArray none(count, 0.0F);
  const MFloatArray& us = uCoords ? *uCoords : none;
  const MFloatArray& vs = vCoords ? *vCoords : none;
  if (numSamples < 0 || us.length() < count || vs.length() < count)
    return MStatus::kInvalidParameter;
  const auto plug = api::plugToSample(api::toStd(shadingNodeName));
  if (!plug) return api::toStatus(plug, MStatus::kInvalidParameter);
  resultColors.setLength(count);
  resultTransparencies.setLength(count);
  const auto vectorOf = [](const math::Vec3& v) {
    return MFloatVector(static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z));
  };
  return api::toStatus(
      api::sample(*plug, count, us, vs,
                  [&](unsigned int i, const math::Vec3& color, const math::Vec3& transparency) {
                    resultColors[i] = vectorOf(color);
                    resultTransparencies[i] = vectorOf(transparency);
                  }));
}

namespace {

/// The texture that drives a colour or number of a node; null without one.
dg::Plug textureOf(const MObject& object, const MObject& attribute) {
  dg::Node* node = api::nodeOf(object);
  const dg::Attribute* known = api::attributeOf(attribute);
  if (!node || !known) return {};
  const dg::Plug plug = node->plug(known->longName);
  const dg::Plug source = plug ? node->graph().source(plug) : dg::Plug();
  if (!source || !source.node()->type().isA("texture2d")) return {};
  return source;
}

}  // namespace

bool MDynamicsUtil::hasValidDynamics2dTexture(const MObject& node, const MObject& attribute,
                                              MStatus* status) {
  const bool isKnown = api::nodeOf(node) && api::attributeOf(attribute);
  setStatus(status, isKnown ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return !textureOf(node, attribute).isNull();
}
MStatus MDynamicsUtil::evalDynamics2dTexture(const MObject& node, const MObject& attribute,
                                             MDoubleArray& uCoords, MDoubleArray& vCoords,
                                             MVectorArray* resultColors,
                                             MDoubleArray* resultAlphas) {
  const dg::Plug texture = textureOf(node, attribute);
  if (texture.isNull()) return MStatus::kFailure;
  const unsigned int count = uCoords.length();
  if (vCoords.length() != count) return MStatus::kInvalidParameter;
  const dg::Plug color = texture.node()->plug("outColor"), alpha = texture.node()->plug("outAlpha");
  if (resultColors) {
    resultColors->setLength(count);
    const auto done = api::sample(color, count, uCoords, vCoords,
                                  [&](unsigned int i, const math::Vec3& c, const math::Vec3&) {
                                    (*resultColors)[i] = MVector(c.x, c.y, c.z);
                                  });
    if (!done) return api::toStatus(done);
  }
  if (resultAlphas) {
    resultAlphas->setLength(count);
    const auto done = api::sample(
        alpha, count, uCoords, vCoords,
        [&](unsigned int i, const math::Vec3& c, const math::Vec3&) { (*resultAlphas)[i] = c.x; });
    if (!done) return api::toStatus(done);
  }
  return MStatus::kSuccess;
}
