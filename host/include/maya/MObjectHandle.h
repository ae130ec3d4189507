#pragma once

#include <maya/MObject.h>
#include <maya/MTypes.h>

/// Remembers an object without keeping it alive, and tells whether it still exists.
class MObjectHandle {
 public:
  MObjectHandle() = default;
  MObjectHandle(const MObject& object) : object_(object) {}
  MObjectHandle& operator=(const MObject& object) {
    object_ = object;
    return *this;
  }

  MObject object() const { return object_; }
  const MObject& objectRef() const { return object_; }
  bool isNull() const { return object_.isNull(); }
  /// True while the object exists, in the document or on the undo queue.
  bool isAlive() const;
  /// True while the object is part of the document.
  bool isValid() const;
  unsigned int hashCode() const;
  static unsigned int objectHashCode(const MObject& object) {
    return MObjectHandle(object).hashCode();
  }

  bool operator==(const MObjectHandle& other) const { return object_ == other.object_; }
  bool operator==(const MObject& other) const { return object_ == other; }
  bool operator!=(const MObjectHandle& other) const { return object_ != other.object_; }
  bool operator!=(const MObject& other) const { return object_ != other; }

 private:
  MObject object_;
};
