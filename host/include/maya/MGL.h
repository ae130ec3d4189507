#pragma once

// OpenGL as plug-ins call it.
#include <GL/gl.h>
#include <GL/glext.h>

typedef GLenum MGLenum;
typedef GLboolean MGLboolean;
typedef GLbitfield MGLbitfield;
typedef GLint MGLint;
typedef GLuint MGLuint;
typedef GLfloat MGLfloat;
typedef GLdouble MGLdouble;
typedef GLsizei MGLsizei;
