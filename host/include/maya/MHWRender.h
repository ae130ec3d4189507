#pragma once

#include <maya/MDrawContext.h>
#include <maya/MDrawRegistry.h>
#include <maya/MFrameContext.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MTypes.h>
#include <maya/MUIDrawManager.h>
#include <maya/MViewport2Renderer.h>
