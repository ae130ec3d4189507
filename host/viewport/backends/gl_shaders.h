#pragma once

#include <string>

namespace host::viewport::shaders {

// Shader sources. View space is the camera's: x right, y up, z towards the viewer.
[[nodiscard]] std::string surfaceVertex();
/// Without `drops` it lets no pixel out: the driver can then test depth before it shades.
[[nodiscard]] std::string surfaceFragment(bool drops);
/// Vertex stage of lines and points.
[[nodiscard]] std::string strokeVertex();
[[nodiscard]] std::string lineGeometry();
[[nodiscard]] std::string lineFragment();
[[nodiscard]] std::string pointGeometry();
[[nodiscard]] std::string pointFragment();
/// One triangle over the whole port.
[[nodiscard]] std::string screenVertex();
[[nodiscard]] std::string backgroundFragment();
[[nodiscard]] std::string occlusionFragment();
[[nodiscard]] std::string occlusionBlurFragment();

}  // namespace host::viewport::shaders
