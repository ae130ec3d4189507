#include "host/nodes/camera_node.h"

#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerCamera(dg::TypeRegistry& types) {
  TypeBuilder camera(types, "camera", "shape", typeCode("DCAM"));
  camera.add(boolean("renderable", "rnd", true));
  camera.add(numbers("cameraAperture", "cap", "double2",
                     {keyable(real("horizontalFilmAperture", "hfa", 1.41732)),
                      keyable(real("verticalFilmAperture", "vfa", 0.94488))}));
  camera.add(keyable(atLeast(real("focalLength", "fl", 35), 2.5)));
  camera.add(keyable(atLeast(real("lensSqueezeRatio", "lsr", 1), 0.0001)));
  camera.add(keyable(atLeast(real("cameraScale", "cs", 1), 0.0001)));
  camera.add(choice("filmFit", "ff", {"Fill", "Horizontal", "Vertical", "Overscan"}, 1));
  camera.add(real("filmFitOffset", "ffo"));
  camera.add(keyable(atLeast(distance("nearClipPlane", "ncp", 0.1), 0.00001)));
  camera.add(keyable(atLeast(distance("farClipPlane", "fcp", 10000), 0.00001)));
  camera.add(numbers("filmOffset", "fio", "double2",
                     {real("horizontalFilmOffset", "hfo"), real("verticalFilmOffset", "vfo")}));
  camera.add(real("overscan", "ovr", 1));
  camera.add(boolean("panZoomEnabled", "pze"));
  camera.add(
      numbers("pan", "pn", "double2", {real("horizontalPan", "hpn"), real("verticalPan", "vpn")}));
  camera.add(real("zoom", "zom", 1));
  camera.add(boolean("displayResolution", "dr"));
  camera.add(boolean("displayFilmGate", "dfg"));
  camera.add(boolean("displayGateMask", "dgm"));
  camera.add(boolean("depthOfField", "dof"));
  camera.add(distance("focusDistance", "fd", 5));
  camera.add(real("fStop", "fs", 5.6));
  camera.add(keyable(distance("centerOfInterest", "coi", 5)));
  camera.add(triple("tumblePivot", "tp", AttributeType::Distance));
  camera.add(boolean("usePivotAsLocalSpace", "uls"));
  camera.add(text("imageName", "imn"));
  camera.add(text("depthName", "den"));
  camera.add(text("maskName", "man"));
  camera.add(boolean("orthographic", "o"));
  camera.add(distance("orthographicWidth", "ow", 10));
  camera.add(text("homeCommand", "hc"));
  camera.add(color("backgroundColor", "col"));
  camera.add(boolean("bestFitClippingPlanes", "bfc", true));
  camera.finish();
}

}  // namespace host::nodes
