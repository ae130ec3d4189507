#pragma once

#include "host/viewport/projection.h"

namespace host::viewport {

/// Turns the camera about `pivot`: `azimuthDegrees` about the world's vertical, then
/// `elevationDegrees` about the camera's right axis. The distance to the pivot stays; the elevation
/// stops short of the poles, where the horizon would flip.
void tumble(Camera& camera, const Vec3& pivot, double azimuthDegrees, double elevationDegrees);

/// What a camera turns about: its tumble pivot, or its centre of interest while no pivot was set.
///
/// With `aboutInterest` it is the centre of interest in any case. A pivot at the depth of the
/// centre of interest was set together with it and says where at that depth it lies; without one it
/// lies in the middle of the view.
[[nodiscard]] Vec3 tumbleCentre(const Camera& camera, bool aboutInterest);

/// Slides the camera so that what lies at the depth of the centre of interest follows the cursor by
/// (dx, dy) pixels. A tumble pivot that is set goes along, so that the middle of the view stays
/// what a later tumble turns about (whether the real host carries it along isn't documented).
void track(Camera& camera, PortSize port, double dx, double dy);

/// Moves towards the centre of interest (perspective) or narrows the view (orthographic) by a
/// factor: 2 shows things twice as large. The centre of interest stays in place and is never
/// reached.
void dolly(Camera& camera, double factor);

/// How far a drag of one pixel turns a camera.
[[nodiscard]] double tumbleDegreesPerPixel(PortSize port);

/// Gestures of a drag by (dx, dy) pixels, at the speed a modeller is used to: half a turn across
/// the port, a factor of about 4.
void tumbleByDrag(Camera& camera, PortSize port, const Vec3& pivot, double dx, double dy);
void dollyByDrag(Camera& camera, PortSize port, double dx, double dy);

}  // namespace host::viewport
