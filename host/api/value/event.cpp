#include <maya/MCursor.h>
#include <maya/MEvent.h>

namespace {

void setStatus(MStatus* status) {
  if (status) *status = MStatus::kSuccess;
}

enum CursorId { kDefaultCursor, kCrossHair, kDoubleCrossHair, kEdit, kPencil, kHand, kFirstCustom };

}  // namespace

const MCursor MCursor::defaultCursor(kDefaultCursor);
const MCursor MCursor::crossHairCursor(kCrossHair);
const MCursor MCursor::doubleCrossHairCursor(kDoubleCrossHair);
const MCursor MCursor::editCursor(kEdit);
const MCursor MCursor::pencilCursor(kPencil);
const MCursor MCursor::handCursor(kHand);

MCursor::MCursor(short, short, short, short, unsigned char*, unsigned char*) {
  // Windows show their system's pointers only: a bitmap gets an identity of its own and shows as
  // the default.
  static int next = kFirstCustom;
  id_ = next++;
}

MEvent::MouseButtonType MEvent::mouseButton(MStatus* status) const {
  setStatus(status);
  return static_cast<MouseButtonType>(button_);
}
MStatus MEvent::getPosition(short& x_pos, short& y_pos) const {
  x_pos = x_;
  y_pos = y_;
  return MStatus::kSuccess;
}
MStatus MEvent::setPosition(short& x_pos, short& y_pos) {
  x_ = x_pos;
  y_ = y_pos;
  return MStatus::kSuccess;
}
MStatus MEvent::getWindowPosition(short& x_pos, short& y_pos) const {
  return getPosition(x_pos, y_pos);
}
MEvent::ModifierType MEvent::modifiers(MStatus* status) const {
  setStatus(status);
  return static_cast<ModifierType>(modifiers_);
}
MStatus MEvent::setModifiers(const ModifierType& modifierType) {
  modifiers_ = modifierType;
  return MStatus::kSuccess;
}
bool MEvent::isModifierNone(MStatus* status) const {
  setStatus(status);
  return (modifiers_ & (shiftKey | controlKey)) == 0;
}
bool MEvent::isModifierShift(MStatus* status) const {
  setStatus(status);
  return (modifiers_ & shiftKey) != 0;
}
bool MEvent::isModifierControl(MStatus* status) const {
  setStatus(status);
  return (modifiers_ & controlKey) != 0;
}
bool MEvent::isModifierLeftMouseButton(MStatus* status) const {
  setStatus(status);
  return button_ == kLeftMouse;
}
bool MEvent::isModifierMiddleMouseButton(MStatus* status) const {
  setStatus(status);
  return button_ == kMiddleMouse;
}
bool MEvent::isModifierKeyRelease(MStatus* status) const {
  setStatus(status);
  return isRelease_;
}
