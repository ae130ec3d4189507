#pragma once

#include <maya/MDrawContext.h>
#include <maya/MDrawRegistry.h>
#include <maya/MFrameContext.h>
#include <maya/MHWGeometry.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxGeometryOverride.h>
#include <maya/MShaderManager.h>
#include <maya/MStateManager.h>
#include <maya/MTypes.h>
#include <maya/MUIDrawManager.h>
#include <maya/MViewport2Renderer.h>
