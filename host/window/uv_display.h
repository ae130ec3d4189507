#pragma once

#include "host/cmd/option_vars.h"

namespace host::window {

/// What the UV panel shows beside the lines of the map. It is kept in option variables, so that
/// scripts see and set it and the next run shows the same.
struct UvDisplay {
  enum class Fill { None, Shells, Stretch };
  Fill fill = Fill::Shells;  ///< `uvPanelFill`: 0 lines alone, 1 shells in colours, 2 stretch
  bool texture = false;      ///< `uvPanelTexture`: the picture that the mesh shows
  bool checker = false;      ///< `uvPanelChecker`: squares below the map
  bool borders = true;       ///< `uvPanelBorders`: where shells end
  bool pins = true;          ///< `uvPanelPins`: UVs that unfolding leaves where they are

  friend bool operator==(const UvDisplay&, const UvDisplay&) = default;
  [[nodiscard]] static UvDisplay read(const cmd::OptionVars& kept);
  void store(cmd::OptionVars& kept) const;
};

}  // namespace host::window
