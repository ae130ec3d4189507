#pragma once

#include <memory>
#include <utility>

/// Owns an object together with other pointers to it.
template <class T>
class MSharedPtr {
 public:
  MSharedPtr() = default;
  explicit MSharedPtr(T* object) : object_(object) {}
  template <class... Arguments>
  static MSharedPtr<T> make(Arguments&&... arguments) {
    return MSharedPtr<T>(new T(std::forward<Arguments>(arguments)...));
  }

  T* get() const { return object_.get(); }
  T* operator->() const { return object_.get(); }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }
  bool operator!() const { return !object_; }
  void reset(T* object = nullptr) { object_.reset(object); }
  bool operator==(const MSharedPtr& other) const { return object_ == other.object_; }
  bool operator!=(const MSharedPtr& other) const { return object_ != other.object_; }

 private:
  std::shared_ptr<T> object_;
};
