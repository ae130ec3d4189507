#include "host/nodes/scene_nodes.h"

#include "host/nodes/type_builder.h"

namespace host::nodes {

namespace {

AttributePtr list(const std::string& longName, const std::string& shortName) {
  AttributePtr attribute = unordered(message(longName, shortName));
  attribute->disconnectBehavior = dg::DisconnectBehavior::Delete;
  return attribute;
}

void registerLists(dg::TypeRegistry& types) {
  const auto registerList = [&](const char* type, const char* longName, const char* shortName) {
    TypeBuilder builder(types, type);
    builder.add(list(longName, shortName));
    builder.finish();
  };
  registerList("shaderList", "shaders", "s");
  registerList("postProcessList", "postProcesses", "p");
  registerList("renderGlobalsList", "renderGlobals", "r");
  registerList("defaultRenderUtilityList", "utilities", "u");
  registerList("renderingList", "rendering", "r");
  registerList("lightList", "lights", "l");
  registerList("defaultTextureList", "textures", "tx");
  registerList("sequenceManager", "sequences", "seqts");
}

void registerRenderSettings(dg::TypeRegistry& types) {
  TypeBuilder globals(types, "renderGlobals", {}, typeCode("RGLB"));
  globals.add(text("currentRenderer", "ren"));
  globals.add(boolean("animation", "an"));
  globals.add(timeValue("startFrame", "fs", 1.0 / 24));
  globals.add(timeValue("endFrame", "ef", 10.0 / 24));
  globals.add(single("byFrame", "bfs", 1));
  globals.add(text("imageFilePrefix", "ifp"));
  globals.add(integer("imageFormat", "outf", 7));
  globals.add(boolean("useFrameExt", "ufe"));
  globals.add(message("resolution", "res"));
  globals.finish();

  TypeBuilder resolution(types, "resolution", {}, typeCode("RRES"));
  resolution.add(integer("width", "w", 640));
  resolution.add(integer("height", "h", 480));
  resolution.add(single("deviceAspectRatio", "dar", 1.3333333));
  resolution.add(single("pixelAspect", "pa", 1));
  resolution.add(boolean("lockDeviceAspectRatio", "ldar"));
  resolution.finish();

  TypeBuilder quality(types, "renderQuality");
  quality.add(choice("edgeAntiAliasing", "eaa", {"Highest", "High", "Medium", "Low"}, 3));
  quality.add(integer("shadingSamples", "ss", 1));
  quality.finish();

  TypeBuilder hardware(types, "hardwareRenderGlobals");
  hardware.add(integer("frameBufferFormat", "fbf"));
  hardware.add(integer("edgeSmoothing", "esm"));
  hardware.finish();
  TypeBuilder rendering(types, "hardwareRenderingGlobals");
  rendering.add(boolean("lineAAEnable", "laa"));
  rendering.add(boolean("multiSampleEnable", "mse"));
  rendering.add(integer("multiSampleCount", "msc", 8));
  rendering.add(boolean("ssaoEnable", "aoe"));
  rendering.add(integer("renderMode", "rm", 4));
  rendering.finish();
  TypeBuilder dof(types, "renderDOF");
  dof.add(boolean("depthOfField", "dof"));
  dof.finish();
}

void registerLayers(dg::TypeRegistry& types) {
  TypeBuilder manager(types, "displayLayerManager", {}, typeCode("DPLM"));
  manager.add(shortInteger("currentDisplayLayer", "cdl"));
  manager.add(unordered(integer("displayLayerId", "dli")));
  manager.finish();

  TypeBuilder layer(types, "displayLayer", {}, typeCode("DSPL"));
  layer.add(compound(
      "drawInfo", "di",
      {choice("displayType", "dt", {"Normal", "Template", "Reference"}),
       choice("levelOfDetail", "lod", {"Full", "Bounding Box"}), boolean("shading", "s", true),
       boolean("texturing", "t", true), boolean("playback", "p", true),
       boolean("enabled", "e", true), boolean("visibility", "v", true),
       boolean("hideOnPlayback", "hpb"), boolean("overrideRGBColors", "ovrgbf"),
       dg::makeAttribute("color", "c", AttributeType::Byte), color("overrideColorRGB", "ovrgb"),
       single("overrideColorA", "ova", 1)}));
  layer.add(integer("identification", "id"));
  layer.add(integer("displayOrder", "do"));
  layer.finish();

  TypeBuilder renderManager(types, "renderLayerManager", {}, typeCode("RLMN"));
  renderManager.add(shortInteger("currentRenderLayer", "crl"));
  renderManager.add(unordered(integer("renderLayerId", "rlmi")));
  renderManager.finish();
  TypeBuilder renderLayer(types, "renderLayer", {}, typeCode("RNDL"));
  renderLayer.add(integer("identification", "rlid"));
  renderLayer.add(boolean("global", "g"));
  renderLayer.add(boolean("renderable", "rndr", true));
  renderLayer.add(integer("displayOrder", "do"));
  renderLayer.finish();
}

}  // namespace

void registerSceneNodes(dg::TypeRegistry& types) {
  registerLists(types);
  registerRenderSettings(types);
  registerLayers(types);

  TypeBuilder time(types, "time", {}, typeCode("TIME"));
  time.add(keyable(timeValue("outTime", "o", 1.0 / 24)));
  time.add(boolean("enableTimewarp", "ewa"));
  time.finish();

  // Scripts that a scene brings along. They are values like others; who opens the scene says
  // whether they run.
  TypeBuilder script(types, "script", {}, typeCode("SCRP"));
  script.add(text("before", "b"));
  script.add(text("after", "a"));
  script.add(
      choice("scriptType", "st",
             {"Demand", "Open/Close", "GUI Open/Close", "UI Configuration", "Software Render",
              "Software Frame Render", "Scene Configuration", "Time Changed"}));
  script.add(choice("sourceType", "stp", {"MEL", "Python"}));
  script.add(boolean("ignoreReferenceEdits", "ire", true));
  script.finish();

  TypeBuilder views(types, "viewColorManager");
  views.add(boolean("imageColorProfile", "icp"));
  views.finish();
  TypeBuilder management(types, "colorManagementGlobals");
  management.add(boolean("cmEnabled", "cme", true));
  management.add(text("workingSpaceName", "wsn"));
  management.add(text("configFilePath", "cfp"));
  management.finish();
  TypeBuilder strokes(types, "strokeGlobals");
  strokes.add(single("sceneScale", "scn", 1));
  strokes.finish();
}

}  // namespace host::nodes
