#pragma once

#include <cstdint>
#include <span>

#include "host/viewport/draw_list.h"
#include "host/viewport/projection.h"

namespace host::viewport {

// State of the fixed-function pipeline, for who draws in a direct section without knowing OpenGL
// itself. Outside a section, or without a driver, these do nothing.

void setDirectColor(const Rgba& color);
/// Lower left corner and size in pixels.
void setDirectViewport(int x, int y, int width, int height);
/// What is drawn goes through these matrices, until the section ends.
void setDirectView(const Matrix4& modelView, const Matrix4& projection);
/// Lights what follows from the viewer's side, until the section ends.
void setDirectMaterial(const Rgba& color, const Rgba& specular, float shininess);
/// Leaves out faces that are turned away, or those turned to the viewer, until the section ends.
void setDirectCulling(bool isOn, bool cullsFront);
/// Draws what follows over everything; until the section ends.
void beginDirectOverlay();
/// Inverts what is below instead of painting over it; until endDirectXor.
void beginDirectXor(bool stippled, bool depthTested, float lineWidth, const Rgba& color);
void endDirectXor();

/// Lets what is drawn report hits into `buffer` instead of painting, as the pipeline's selection
/// mode does.
void beginDirectSelect(std::span<std::uint32_t> buffer);
/// Ends that. @return the number of hit records, -1 when the buffer was too small
[[nodiscard]] int endDirectSelect();
void initDirectNames();
void loadDirectName(std::uint32_t name);
void pushDirectName(std::uint32_t name);
void popDirectName();

}  // namespace host::viewport
