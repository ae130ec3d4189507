#include "host/nodes/light_nodes.h"

#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerLights(dg::TypeRegistry& types) {
  constexpr double kRadiansPerDegree = 0.017453292519943295;
  TypeBuilder light(types, "light", "shape");
  light.setAbstract();
  light.type().classification = "light";
  light.add(keyable(
      numbers("color", "cl", "float3",
              {single("colorR", "cr", 1), single("colorG", "cg", 1), single("colorB", "cb", 1)})));
  light.add(keyable(single("intensity", "in", 1)));
  light.add(keyable(boolean("useRayTraceShadows", "urs")));
  light.add(keyable(color("shadowColor", "sc")));
  light.add(integer("shadowRays", "shr", 1));
  light.add(integer("rayDepthLimit", "rdl", 1));
  light.finish();
  TypeBuilder(types, "renderLight", "light").setAbstract().finish();

  TypeBuilder ambient(types, "ambientLight", "renderLight", typeCode("AMBL"));
  ambient.add(keyable(limited(single("ambientShade", "as", 0.45), 0, 1)));
  ambient.add(single("shadowRadius", "sr"));
  ambient.add(boolean("castSoftShadows", "cw"));
  ambient.add(boolean("receiveShadows", "gs", true));
  ambient.finish();

  TypeBuilder directed(types, "nonAmbientLightShapeNode", "renderLight");
  directed.setAbstract();
  directed.add(keyable(choice("decayRate", "de", {"No Decay", "Linear", "Quadratic", "Cubic"})));
  directed.add(keyable(boolean("emitDiffuse", "ed", true)));
  directed.add(keyable(boolean("emitSpecular", "sn", true)));
  directed.finish();
  TypeBuilder plain(types, "nonExtendedLightShapeNode", "nonAmbientLightShapeNode");
  plain.setAbstract();
  plain.add(boolean("useDepthMapShadows", "dms"));
  plain.add(integer("dmapResolution", "dr", 512));
  plain.finish();

  TypeBuilder directional(types, "directionalLight", "nonExtendedLightShapeNode", typeCode("DIRL"));
  directional.add(boolean("useLightPosition", "up"));
  directional.add(single("lightAngle", "lang"));
  directional.finish();
  TypeBuilder point(types, "pointLight", "nonExtendedLightShapeNode", typeCode("POIL"));
  point.add(single("fogRadius", "fr", 1));
  point.add(single("fogIntensity", "fin", 1));
  point.add(single("lightRadius", "lrad"));
  point.finish();
  TypeBuilder spot(types, "spotLight", "nonExtendedLightShapeNode", typeCode("SPTL"));
  spot.add(keyable(angle("coneAngle", "ca", 40 * kRadiansPerDegree)));
  spot.add(keyable(angle("penumbraAngle", "pa")));
  spot.add(keyable(atLeast(real("dropoff", "dro"), 0)));
  spot.add(boolean("barnDoors", "bd"));
  for (const auto& [longName, shortName] : {std::pair{"leftBarnDoor", "lbd"},
                                            {"rightBarnDoor", "rbd"},
                                            {"topBarnDoor", "tbd"},
                                            {"bottomBarnDoor", "bbd"}})
    spot.add(angle(longName, shortName, 20 * kRadiansPerDegree));
  spot.add(boolean("useDecayRegions", "udr"));
  spot.add(single("lightRadius", "lrad"));
  spot.finish();
  TypeBuilder(types, "areaLight", "nonExtendedLightShapeNode", typeCode("ARLT")).finish();
}

}  // namespace host::nodes
