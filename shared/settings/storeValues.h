#pragma once

struct toolSettings;

/// Reads the option controls of the toolkit's windows into the settings. The controls of a window
/// that is closed are not asked and their settings stay; so does a setting whose control can't be
/// read or gives an answer that it does not know.
void storeValues(toolSettings& settings);
