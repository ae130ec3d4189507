#include "host/nodes/shading_nodes.h"

#include "host/nodes/shading/projection_nodes.h"
#include "host/nodes/shading/texture_nodes.h"
#include "host/nodes/shading/utility_nodes.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

namespace {

/// Shading nodes hand on their plain colour: what a viewer shows of them.
void passColor(TypeBuilder& builder, const Attribute* from, const Attribute* to) {
  builder.affects({from}, {to});
  builder.type().compute = [from, to](Node& node, const Plug& plug,
                                      DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != to && plug.attribute()->parent != to) return Computed::Unhandled;
    const math::Vec3 value = block.vec3(from);
    for (int channel = 0; channel < 3; ++channel)
      block.output(Plug(&node, to).child(channel), value[channel]);
    return Computed::Done;
  };
}

void registerLambert(dg::TypeRegistry& types) {
  TypeBuilder lambert(types, "lambert", {}, typeCode("RLAM"));
  lambert.type().classification = "shader/surface";
  const Attribute* base = lambert.add(keyable(color("color", "c", {0.5, 0.5, 0.5})));
  lambert.add(keyable(color("transparency", "it")));
  lambert.add(keyable(color("ambientColor", "ambc", {}, "ac")));
  lambert.add(keyable(color("incandescence", "ic", {}, "i")));
  lambert.add(keyable(limited(single("diffuse", "dc", 0.8), 0, 1)));
  lambert.add(keyable(softLimited(single("translucence", "tc"), 0, 1)));
  lambert.add(keyable(single("translucenceDepth", "trsd", 0.5)));
  lambert.add(numbers("normalCamera", "n", "float3",
                      {single("normalCameraX", "nx"), single("normalCameraY", "ny"),
                       single("normalCameraZ", "nz")}));
  lambert.add(keyable(limited(single("glowIntensity", "gi"), 0, 1)));
  lambert.add(boolean("hideSource", "hs"));
  const Attribute* out = lambert.add(output(color("outColor", "oc")));
  lambert.add(output(color("outTransparency", "ot")));
  lambert.add(output(color("outGlowColor", "ogc", {}, "og")));
  passColor(lambert, base, out);
  lambert.finish();

  TypeBuilder reflective(types, "reflect", "lambert");
  reflective.setAbstract();
  reflective.add(keyable(color("specularColor", "sc", {0.5, 0.5, 0.5}, "s")));
  reflective.add(keyable(limited(single("reflectivity", "rfl", 0.5), 0, 1)));
  reflective.add(keyable(color("reflectedColor", "rc", {}, "r")));
  reflective.finish();
  TypeBuilder blinn(types, "blinn", "reflect", typeCode("RBLN"));
  blinn.add(keyable(limited(single("eccentricity", "ec", 0.3), 0, 1)));
  blinn.add(keyable(atLeast(single("specularRollOff", "sro", 0.7), 0)));
  blinn.finish();
  TypeBuilder phong(types, "phong", "reflect", typeCode("RPHO"));
  phong.add(keyable(atLeast(single("cosinePower", "cp", 20), 2)));
  phong.finish();
  TypeBuilder broad(types, "phongE", "reflect", typeCode("RPHE"));
  broad.add(keyable(limited(single("roughness", "rn", 0.5), 0, 1)));
  broad.add(keyable(limited(single("highlightSize", "hls", 0.5), 0, 1)));
  broad.add(keyable(color("whiteness", "wn", {0.5, 0.5, 0.5})));
  broad.finish();
}

}  // namespace

void registerShadingNodes(dg::TypeRegistry& types) {
  registerLambert(types);
  registerTextureNodes(types);
  registerProjection(types);
  registerUtilityNodes(types);

  // Kept for files and renderers: no surface is moved by it here.
  TypeBuilder displacement(types, "displacementShader", {}, typeCode("DISP"));
  displacement.type().classification = "shader/displacement";
  displacement.add(keyable(single("displacement", "d")));
  displacement.finish();

  TypeBuilder background(types, "useBackground", {}, typeCode("USBK"));
  background.type().classification = "shader/surface";
  background.add(keyable(color("specularColor", "sc", {0.5, 0.5, 0.5}, "s")));
  background.add(keyable(single("reflectivity", "rfl", 0.5)));
  background.add(shortInteger("reflectionLimit", "fll", 2));
  background.add(keyable(single("shadowMask", "sm", 1)));
  background.add(output(color("outColor", "oc")));
  background.add(output(color("outTransparency", "ot")));
  background.finish();

  TypeBuilder surface(types, "surfaceShader", {}, typeCode("RSSH"));
  surface.type().classification = "shader/surface";
  surface.add(keyable(color("outColor", "oc")));
  surface.add(keyable(color("outTransparency", "ot")));
  surface.finish();

  TypeBuilder cloud(types, "particleCloud", {}, typeCode("PCLD"));
  cloud.type().classification = "shader/volume";
  const Attribute* base = cloud.add(keyable(color("color", "c", {0.5, 0.5, 0.5})));
  const Attribute* out = cloud.add(output(color("outColor", "oc")));
  passColor(cloud, base, out);
  cloud.finish();

  TypeBuilder linker(types, "lightLinker", {}, typeCode("RLLK"));
  linker.add(
      unordered(compound("link", "lnk", {message("light", "llnk"), message("object", "olnk")})));
  linker.add(unordered(compound(
      "ignore", "ign", {message("lightIgnored", "lign"), message("objectIgnored", "oign")})));
  linker.add(unordered(compound(
      "shadowLink", "slnk", {message("shadowLight", "sllk"), message("shadowObject", "solk")})));
  linker.finish();

  TypeBuilder info(types, "materialInfo", {}, typeCode("DMTI"));
  info.add(message("shadingGroup", "sg"));
  info.add(message("material", "m"));
  info.add(unordered(message("texture", "t")));
  info.finish();
}

}  // namespace host::nodes
