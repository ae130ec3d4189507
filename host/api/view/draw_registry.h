#pragma once

#include <maya/MDrawRegistry.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxGeometryOverride.h>

#include "host/api/view/override_table.h"

namespace host::api {

/// Overrides that draw; what they prepared stays for the drawing that follows.
using DrawRegistry = OverrideTable<MHWRender::MPxDrawOverride, MUserData>;
/// Overrides that give geometry; their items stay from frame to frame.
using GeometryRegistry = OverrideTable<MHWRender::MPxGeometryOverride, MHWRender::MRenderItemList>;

/// The process's registries: creators live in modules, not in sessions.
[[nodiscard]] DrawRegistry& drawRegistry();
[[nodiscard]] GeometryRegistry& geometryRegistry();

}  // namespace host::api
