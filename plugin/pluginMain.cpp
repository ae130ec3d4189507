#include "plugin/pluginMain.h"

#include <maya/M3dView.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

#include <cstdint>

#include "brushes/alphaImage.h"
#include "brushes/tabletInput.h"
#include "plugin/helpTexts.h"
#include "plugin/iconFolder.h"
#include "plugin/licence.h"
#include "plugin/registration.h"
#include "shared/selection/pickOrder.h"
#include "shared/settings/toolSettings.h"
#include "shared/tool/toolRun.h"
#include "uv/uvLinks.h"

MString pluginLoadPath;

namespace {

constexpr const char* kVendor = "qxmt developers";
constexpr const char* kVersion = "2008";
constexpr const char* kApiVersion = "Any";

void hookTabletInput() {
  MStatus status;
  const auto window = M3dView::applicationShell(&status);
  if (status != MS::kSuccess) MGlobal::displayInfo("cannot get hwnd ");
  tabletInput::instance().attach((std::uintptr_t)window, 0);  // a pointer or a number, by platform
}

}  // namespace

PLUGIN_EXPORT MStatus initializePlugin(MObject object) {
  toolSettings::reset();
  pluginLoadPath.clear();
  MGlobal::executeCommand("source qx_modeling_tool_ui", false, false);
  const MStatus licence = takeLicence();
  if (licence != MS::kSuccess) return MS::kFailure;
  hookTabletInput();

  MFnPlugin plugin(object, kVendor, kVersion, kApiVersion);
  pluginLoadPath = plugin.loadPath();
  addIconFolder(pluginLoadPath);
  alphaImage::setFolder(dataFolder(pluginLoadPath, "data/modelingToolAlphas").asChar());
  pickOrder::begin();
  const MStatus registered = registerAll(plugin);
  if (registered == MS::kSuccess) registerHelpTexts();
  return registered;
}

PLUGIN_EXPORT MStatus uninitializePlugin(MObject object) {
  pickOrder::end();
  leaveActiveTools();  // a tool in the user's hand would lose its code
  uvLinks::dropAll();  // and so would the callbacks of linked meshes
  tabletInput::instance().detach();
  releaseLicence();
  removeHelpTexts();
  MFnPlugin plugin(object);
  return deregisterAll(plugin);
}
