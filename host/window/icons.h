#pragma once

#include <QIcon>
#include <string>

namespace host::window {

/// The picture that a script names for a button: a file by its path, or by its name in the folders
/// of XBMLANGPATH; else one of those that are drawn here. Null for names of nothing.
[[nodiscard]] QIcon iconFor(const std::string& name);

/// The icons that are drawn here, in the colour of texts.
enum class DrawnIcon {
  Select,
  Move,
  Rotate,
  Scale,
  Frame,
  Wireframe,
  Shaded,
  Textured,
  Lights,
  Grid,
  Panes,
  Object,
  Vertex,
  Edge,
  Face
};
[[nodiscard]] QIcon drawnIcon(DrawnIcon which);

}  // namespace host::window
