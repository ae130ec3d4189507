#pragma once

#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// The shape of the mouse pointer.
class MCursor {
 public:
  MCursor() = default;
  /// Makes a pointer from a bitmap and its mask, a bit a pixel, rows padded to bytes.
  MCursor(short width, short height, short hotSpotX, short hotSpotY, unsigned char* bits,
          unsigned char* mask);

  bool operator==(const MCursor& other) const { return id_ == other.id_; }
  bool operator!=(const MCursor& other) const { return id_ != other.id_; }

  static const MCursor defaultCursor;
  static const MCursor crossHairCursor;
  static const MCursor doubleCrossHairCursor;
  static const MCursor editCursor;
  static const MCursor pencilCursor;
  static const MCursor handCursor;

 private:
  friend struct host::api::Access;
  explicit MCursor(int id) : id_(id) {}
  int id_ = 0;
};
