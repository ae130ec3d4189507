#pragma once

#include <maya/MStatus.h>

/// The licence step at load. The toolkit is free software, so it always succeeds; the data
/// directory and the update check are asked for all the same, because the interface script may act
/// on them.
MStatus takeLicence();
/// Gives back what `takeLicence` took.
void releaseLicence();
