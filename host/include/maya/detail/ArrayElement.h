#pragma once

#include <type_traits>

namespace host::api {

/// An element of array data that can be written to: what is assigned goes into the data at once.
template <class Set, class T, bool isClass = std::is_class_v<T>>
class ArrayElement {
 public:
  ArrayElement(Set& set, unsigned int index, T value) : set_(set), index_(index), value_(value) {}
  operator T() const { return value_; }
  ArrayElement& operator=(T value) {
    value_ = value;
    set_.set(value, index_);
    return *this;
  }
  ArrayElement& operator=(const ArrayElement& other) { return *this = other.value_; }
  ArrayElement(const ArrayElement&) = default;
  ArrayElement& operator+=(T value) { return *this = static_cast<T>(value_ + value); }
  ArrayElement& operator-=(T value) { return *this = static_cast<T>(value_ - value); }
  ArrayElement& operator*=(T value) { return *this = static_cast<T>(value_ * value); }

 private:
  Set& set_;
  unsigned int index_;
  T value_;
};

template <class Set, class T>
class ArrayElement<Set, T, true> : public T {
 public:
  ArrayElement(Set& set, unsigned int index, const T& value) : T(value), set_(set), index_(index) {}
  ArrayElement& operator=(const T& value) {
    T::operator=(value);
    set_.set(value, index_);
    return *this;
  }
  ArrayElement& operator=(const ArrayElement& other) {
    return *this = static_cast<const T&>(other);
  }
  ArrayElement(const ArrayElement&) = default;

 private:
  Set& set_;
  unsigned int index_;
};

}  // namespace host::api
