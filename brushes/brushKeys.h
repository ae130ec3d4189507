#pragma once

#include <maya/MString.h>

/// The keys that are held for a drag to set the radius or the strength of the brush in hand. They
/// are bound while the brush is in hand; what they did before comes back, unless somebody has bound
/// them anew.
class brushKeys {
 public:
  /// @param command the context command whose current tool the keys adjust
  explicit brushKeys(const char* command) : contextCommand(command) {}
  ~brushKeys() = default;
  void bind();
  void unbind();

 private:
  struct key {
    const char* letter;
    const char* what;
    MString press, release;  ///< what it did before
  };
  MString nameOf(const key& one) const;
  void give(const key& one, const MString& press, const MString& release) const;

  const char* contextCommand;
  key keys[2] = {{"b", "radius", {}, {}}, {"m", "strength", {}, {}}};
  bool isBound = false;
};
