#pragma once

#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// A mouse or key event in a view; positions are in pixels from the lower left corner.
class MEvent {
 public:
  enum MouseButtonType { kLeftMouse = 1 << 6, kMiddleMouse = 1 << 7 };
  enum ModifierType { shiftKey = 1 << 0, controlKey = 1 << 2 };

  MEvent() = default;

  MouseButtonType mouseButton(MStatus* status = nullptr) const;
  MStatus getPosition(short& x_pos, short& y_pos) const;
  MStatus setPosition(short& x_pos, short& y_pos);
  MStatus getWindowPosition(short& x_pos, short& y_pos) const;
  ModifierType modifiers(MStatus* status = nullptr) const;
  MStatus setModifiers(const ModifierType& modifierType);
  bool isModifierNone(MStatus* status = nullptr) const;
  bool isModifierShift(MStatus* status = nullptr) const;
  bool isModifierControl(MStatus* status = nullptr) const;
  bool isModifierLeftMouseButton(MStatus* status = nullptr) const;
  bool isModifierMiddleMouseButton(MStatus* status = nullptr) const;
  bool isModifierKeyRelease(MStatus* status = nullptr) const;

 private:
  friend struct host::api::Access;
  int button_ = 0;
  int modifiers_ = 0;
  short x_ = 0;
  short y_ = 0;
  bool isRelease_ = false;
};
