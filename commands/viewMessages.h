#pragma once

#include <maya/MStatus.h>

class MString;

/// Takes the selected object as the one on which sliding vertices move.
MStatus setSlideDag(const MString& message);

/// Frames the view under the cursor on the component that the cursor is on. Where it is on nothing,
/// nothing happens. The selection stays.
MStatus customFrame(const MString& message);
