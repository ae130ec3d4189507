#pragma once

#include "shared/settings/toolSettings.h"

/// One option of the tools: the control that shows it, how its answer reads, where it is kept. What
/// it is at first stands with the setting, in `toolSettings`.
struct toolOption {
  const char* query;  ///< asks the control
  /// The answers of a choice, for 0, 1, ...; null for boxes and fields, which answer with numbers.
  const char* const* answers;
  /// Keeps an answer; -1 stands for one that is none of `answers`.
  void (*store)(toolSettings& settings, int answer);
  /// A setting that must be on for the control to be asked; while it is off `store` gets -1.
  bool toolSettings::*onlyWhile = nullptr;

  /// Asks the control. @return false when a box or a field gives no answer
  bool ask(int& answer) const;
};

/// The options that other than the settings command ask for by themselves.
enum modelingOption { kMirrorBox = 7, kMirrorAxis = 12, kMirrorSpace = 15 };

constexpr unsigned int kModelingOptionCount = 16, kUvOptionCount = 3;
/// Those of the modeling window and of the UV window, in the order in which they are read.
extern const toolOption kModelingOptions[kModelingOptionCount];
extern const toolOption kUvOptions[kUvOptionCount];

bool modelingWindowIsOpen();
bool uvWindowIsOpen();
