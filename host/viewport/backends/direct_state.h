#pragma once

namespace host::viewport {

/// States of drawing for what is left of an open direct section (Backend::beginDirect); only there
/// may they be set. Numbers are those of OpenGL.
struct DirectBlend {
  bool isOn = false;
  unsigned int source = 1, destination = 0, alphaSource = 1, alphaDestination = 0;
  unsigned int operation = 0x8006, alphaOperation = 0x8006;  ///< GL_FUNC_ADD
  bool writes[4] = {true, true, true, true};                 ///< red, green, blue, alpha
  float factor[4] = {1, 1, 1, 1};
};
struct DirectRaster {
  bool fills = true, cullsFront = false, cullsBack = true, frontIsCounterClockwise = true;
  float bias = 0, slopeBias = 0;
  bool smoothsLines = false;
};
struct DirectDepth {
  bool isOn = true, writes = true;
  unsigned int compare = 0x0201;  ///< GL_LESS
};
void setDirectState(const DirectBlend& blend);
void setDirectState(const DirectRaster& raster);
void setDirectState(const DirectDepth& depth);

}  // namespace host::viewport
