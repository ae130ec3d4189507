#pragma once

namespace MHWRender {

/// The graphics interfaces that a drawing class supports; values combine.
enum DrawAPI {
  kNone = 0,
  kOpenGL = 1 << 0,
  kDirectX11 = 1 << 1,
  kOpenGLCoreProfile = 1 << 2,
  kAllDevices = kOpenGL | kDirectX11 | kOpenGLCoreProfile
};

constexpr DrawAPI operator|(DrawAPI a, DrawAPI b) {
  return static_cast<DrawAPI>(static_cast<int>(a) | static_cast<int>(b));
}

}  // namespace MHWRender
