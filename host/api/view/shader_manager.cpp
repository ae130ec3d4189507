#include <maya/MShaderManager.h>

#include <algorithm>
#include <string_view>

namespace MHWRender {

namespace {

using Stock = MShaderManager::MStockShader;

bool isSurface(int kind) {
  return kind == Stock::k3dBlinnShader || kind == Stock::k3dDefaultMaterialShader;
}

}  // namespace

void MShaderInstance::parameterList(MStringArray& list) const {
  list.clear();
  list.append(isSurface(kind_) ? "diffuseColor" : "solidColor");
  if (isSurface(kind_)) {
    list.append("specularColor");
    list.append("specularPower");
  }
  list.append("pointSize");
  list.append("lineWidth");
}
MStatus MShaderInstance::setParameter(const MString& name, const float* values) {
  if (!values) return MStatus::kInvalidParameter;
  const std::string_view wanted = name.asChar();
  if (wanted == "solidColor" || wanted == "diffuseColor" || wanted == "defaultColor")
    std::copy_n(values, 4, color_);
  else if (wanted == "specularColor")
    std::copy_n(values, 4, specular_);
  else if (wanted == "pointSize")
    pointSize_ = values[0];
  else if (wanted == "lineWidth")
    lineWidth_ = values[0];
  else
    return MStatus::kInvalidParameter;
  return MStatus::kSuccess;
}
MStatus MShaderInstance::setParameter(const MString& name, const MFloatVector& value) {
  const float values[4] = {value.x, value.y, value.z, 1};
  return setParameter(name, values);
}
MStatus MShaderInstance::setParameter(const MString& name, float value) {
  if (std::string_view(name.asChar()) == "specularPower") {
    specularPower_ = value;
    return MStatus::kSuccess;
  }
  const float values[4] = {value, value, value, 1};
  return setParameter(name, values);
}
MStatus MShaderInstance::setParameter(const MString& name, int value) {
  return setParameter(name, static_cast<float>(value));
}
MStatus MShaderInstance::setParameter(const MString&, bool) {
  return MStatus::kInvalidParameter;
}
MStatus MShaderInstance::setParameter(const MString&, const MMatrix&) {
  return MStatus::kInvalidParameter;
}
MStatus MShaderInstance::setIsTransparent(bool on) {
  isTransparent_ = on;
  return MStatus::kSuccess;
}
MShaderInstance* MShaderInstance::clone() const {
  return new MShaderInstance(*this);
}

MShaderManager::MShaderManager() = default;
MShaderManager::~MShaderManager() = default;

MShaderInstance* MShaderManager::getStockShader(MStockShader id, DrawCallback, DrawCallback) const {
  switch (id) {
    case k3dSolidShader:
    case k3dBlinnShader:
    case k3dDefaultMaterialShader:
    case k3dCPVFatPointShader:
    case k3dCPVSolidShader:
    case k3dFatPointShader:
    case k3dThickLineShader:
    case k3dCPVThickLineShader:
    case k3dDashLineShader:
    case k3dCPVDashLineShader:
    case k3dStippleShader:
    case k3dThickDashLineShader:
      break;
    default:
      return nullptr;
  }
  std::unique_ptr<MShaderInstance> shader(new MShaderInstance);
  shader->kind_ = id;
  if (isSurface(id)) std::fill_n(shader->color_, 3, 0.5F);
  shaders_.push_back(std::move(shader));
  return shaders_.back().get();
}
void MShaderManager::releaseShader(MShaderInstance* shader) const {
  const auto isIt = [shader](const auto& each) { return each.get() == shader; };
  const auto found = std::find_if(shaders_.begin(), shaders_.end(), isIt);
  if (found != shaders_.end())
    shaders_.erase(found);
  else
    delete shader;  // a clone is its caller's
}
bool MShaderManager::isSupportedShaderSource(const MString&) {
  return false;
}

}  // namespace MHWRender
