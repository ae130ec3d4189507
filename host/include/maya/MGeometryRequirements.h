#pragma once

#include <maya/MHWGeometry.h>
