#pragma once

#include <maya/MFloatVector.h>
#include <maya/MMatrix.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>

#include <memory>
#include <vector>

namespace host::api {
struct DrawDoor;
}

namespace MHWRender {

class MDrawContext;
class MRenderItemList;

/// How items look: one of the stock shaders with its parameters.
///
/// Parameters that mean something: `solidColor` and `diffuseColor` (four floats), `specularColor`,
/// `specularPower`, `pointSize` and `lineWidth` (two floats: across and down, pixels). Others are
/// refused. There are no effects of other files and no fragments.
class MShaderInstance {
 public:
  MStatus setParameter(const MString& name, bool value);
  MStatus setParameter(const MString& name, int value);
  MStatus setParameter(const MString& name, float value);
  MStatus setParameter(const MString& name, const float* values);
  MStatus setParameter(const MString& name, const MFloatVector& value);
  MStatus setParameter(const MString& name, const MMatrix& value);
  void parameterList(MStringArray& list) const;
  MStatus setIsTransparent(bool on);
  bool isTransparent() const { return isTransparent_; }
  MShaderInstance* clone() const;

 private:
  friend struct host::api::DrawDoor;
  friend class MShaderManager;
  MShaderInstance() = default;
  int kind_ = 0;
  bool isTransparent_ = false;
  float color_[4] = {1, 1, 1, 1};
  float specular_[4] = {0, 0, 0, 1};
  float specularPower_ = 20;
  float pointSize_ = 1, lineWidth_ = 1;
};

/// Hands out shaders. What is not released goes with the manager.
class MShaderManager {
 public:
  enum MStockShader {
    k3dSolidShader,
    k3dBlinnShader,
    k3dDefaultMaterialShader,
    k3dSolidTextureShader,
    k3dCPVFatPointShader,
    k3dColorLookupFatPointShader,
    k3dCPVSolidShader,
    k3dColorLookupSolidShader,
    k3dShadowerShader,
    k3dFatPointShader,
    k3dThickLineShader,
    k3dCPVThickLineShader,
    k3dColorLookupThickLineShader,
    k3dPointLightShader,
    k3dDashLineShader,
    k3dCPVDashLineShader,
    k3dStippleShader,
    k3dThickDashLineShader
  };
  typedef void (*DrawCallback)(MDrawContext& context, const MRenderItemList& items,
                               MShaderInstance* shader);

  MShaderManager();
  ~MShaderManager();
  MShaderManager(const MShaderManager&) = delete;
  MShaderManager& operator=(const MShaderManager&) = delete;

  /// Null for shaders that there are none of here: those of shadows, of lights, with textures or
  /// colour tables. Callbacks around drawing are not called.
  MShaderInstance* getStockShader(MStockShader id, DrawCallback before = nullptr,
                                  DrawCallback after = nullptr) const;
  void releaseShader(MShaderInstance* shader) const;
  static bool isSupportedShaderSource(const MString& file);

 private:
  friend class MShaderInstance;
  mutable std::vector<std::unique_ptr<MShaderInstance>> shaders_;
};

}  // namespace MHWRender
