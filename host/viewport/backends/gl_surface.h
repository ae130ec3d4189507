#pragma once

#include "host/viewport/backends/gl_program.h"

namespace host::viewport {

/// Tells the surface program in use how an item's surface looks; a plain one where it has no
/// material.
void setMaterial(const GlProgram& program, const DrawItem& item);

/// Tells it what lights there are, in view space.
void setLighting(const GlProgram& program, const Lighting& lighting, const Matrix4& view);

/// The picture that an item shows, its own or its material's; null for none.
[[nodiscard]] TexturePtr shownTexture(const DrawItem& item);

}  // namespace host::viewport
