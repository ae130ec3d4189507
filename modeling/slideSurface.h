#pragma once

#include <maya/MDagPath.h>
#include <maya/MStatus.h>

/// The mesh on which sliding vertices move, when it is not their own: the one that was selected
/// when the window's "Load" was pressed. An invalid path when there is none, or it is gone.
MDagPath slideSurface();

/// What the windows' messages "setSlideDag" and "customFrame" do.
MStatus takeSlideSurface();
/// Frames the active view on the component under the cursor, on the object there, or on the
/// selection.
MStatus frameUnderCursor();

/// Has the messages answered, from load until unload.
void answerModelingMessages();
void forgetModelingMessages();
