#pragma once

#include "host/viewport/draw_list.h"

namespace host::viewport {

/// The colours of the built-in display, chosen to stay apart on the mid-grey surface, in light and
/// in shade.
struct DisplayColors {
  Rgba backgroundTop{0.36f, 0.40f, 0.45f, 1};
  Rgba backgroundBottom{0.16f, 0.175f, 0.20f, 1};
  Rgba surface{0.62f, 0.64f, 0.67f, 1};
  float xrayAlpha = 0.32f;

  Rgba wire{0.09f, 0.11f, 0.17f, 0.62f};     ///< on a surface
  Rgba wireOnly{0.72f, 0.77f, 0.84f, 0.9f};  ///< without one
  Rgba wireSelected{0.99f, 0.98f, 0.95f, 0.9f};
  Rgba wireLead{0.36f, 0.94f, 0.66f, 0.95f};
  Rgba wireHilited{0.13f, 0.24f, 0.42f, 0.72f};  ///< on a surface
  Rgba wireHilitedOnly{0.55f, 0.80f, 0.98f, 0.95f};
  Rgba wireTemplate{0.55f, 0.57f, 0.60f, 0.5f};
  Rgba hardEdge{0.05f, 0.06f, 0.10f, 0.95f};
  Rgba borderEdge{0.16f, 0.62f, 0.60f, 1};

  Rgba vertex{0.30f, 0.15f, 0.37f, 1};
  Rgba vertexSelected{1.0f, 0.82f, 0.12f, 1};
  Rgba uvSelected{0.30f, 0.86f, 0.42f, 1};
  Rgba normal{0.98f, 0.88f, 0.30f, 0.9f};
  Rgba faceCenter{0.20f, 0.32f, 0.62f, 1};
  Rgba uvBorder{0.22f, 0.48f, 0.86f, 1};
  Rgba vertexRim{0.12f, 0.09f, 0.04f, 0.85f};
  Rgba edgeSelected{1.0f, 0.52f, 0.08f, 1};
  Rgba faceSelected{1.0f, 0.55f, 0.10f, 0.52f};
  Rgba hover{0.93f, 0.22f, 0.26f, 1};
  Rgba faceHover{0.93f, 0.22f, 0.26f, 0.40f};
  float ghostAlpha = 0.28f;  ///< of selected components that are hidden

  Rgba grid{0.62f, 0.66f, 0.72f, 0.16f};
  Rgba gridStrong{0.62f, 0.66f, 0.72f, 0.34f};
  Rgba gridAxis{0.06f, 0.07f, 0.09f, 0.8f};
  Rgba axis[3] = {{0.90f, 0.32f, 0.30f, 1}, {0.50f, 0.80f, 0.32f, 1}, {0.34f, 0.58f, 0.96f, 1}};
};

[[nodiscard]] const DisplayColors& displayColors();

}  // namespace host::viewport
