#include "host/viewport/backends/egl_context.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>

#include "host/base/assert.h"

namespace host::viewport {

namespace {

EGLDisplay openDisplay() {
  const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  const auto getPlatformDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
      eglGetProcAddress("eglGetPlatformDisplayEXT"));
  if (extensions && getPlatformDisplay && std::strstr(extensions, "EGL_MESA_platform_surfaceless"))
    return getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
  return eglGetDisplay(EGL_DEFAULT_DISPLAY);
}

}  // namespace

Result<std::unique_ptr<EglContext>> EglContext::create() {
  const EGLDisplay display = openDisplay();
  if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr))
    return fail("No OpenGL driver for drawing without a display was found (EGL error 0x{:x}).",
                eglGetError());
  if (!eglBindAPI(EGL_OPENGL_API))
    return fail("The EGL driver has no desktop OpenGL (error 0x{:x}).", eglGetError());
  const EGLint wanted[] = {EGL_CONTEXT_MAJOR_VERSION,
                           3,
                           EGL_CONTEXT_MINOR_VERSION,
                           2,
                           EGL_CONTEXT_OPENGL_PROFILE_MASK,
                           EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT,
                           EGL_NONE};
  const EGLContext context = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, wanted);
  if (context == EGL_NO_CONTEXT)
    return fail("The OpenGL driver has no compatibility profile of version 3.2 (EGL error 0x{:x}).",
                eglGetError());
  std::unique_ptr<EglContext> result(new EglContext(display, context));
  if (!eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context))
    return fail("The OpenGL driver can't draw without a window (EGL error 0x{:x}).", eglGetError());
  return result;
}

EglContext::~EglContext() {
  release();
  eglDestroyContext(display_, context_);
  // The display is the process's: others may have contexts on it, so it is not terminated.
}

void EglContext::makeCurrent() const {
  eglBindAPI(EGL_OPENGL_API);
  const EGLBoolean done = eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_);
  HOST_ASSERT(done == EGL_TRUE, "use the offscreen context on the thread that made it");
}

void EglContext::release() const {
  if (eglGetCurrentContext() == context_)
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

}  // namespace host::viewport
