#pragma once

// The one place that includes OpenGL: library entry points beyond 1.x are linked, not loaded.
#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES 1
#endif
#include <GL/gl.h>
#include <GL/glext.h>
