#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/detail/Handle.h>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace host::api {

/// Where an array's elements are.
template <class T>
struct ArrayFields {
  T* data_ = nullptr;
  unsigned int length_ = 0;
  unsigned int capacity_ = 0;
};

/// Elements that several arrays show, each seeing at once what another does to them. They belong to
/// none of the arrays and go with the last that holds them.
template <class T>
class SharedElements final : public SharedRep {
 public:
  SharedElements() = default;
  SharedElements(const SharedElements&) = delete;
  SharedElements& operator=(const SharedElements&) = delete;
  ~SharedElements() override {
    if (!own_.data_) return;
    std::destroy_n(own_.data_, own_.length_);
    std::allocator<T>().deallocate(own_.data_, own_.capacity_);
  }

  const T* begin() const { return own_.data_; }
  const T* end() const { return own_.data_ + own_.length_; }

 private:
  template <class, class>
  friend class Array;
  void publish(const ArrayFields<T>& from) {
    own_ = from;
    for (ArrayFields<T>* user : users_) *user = own_;
  }
  ArrayFields<T> own_;
  std::vector<ArrayFields<T>*> users_;
};

/// What all API arrays share: contiguous elements, geometric growth, unsigned lengths.
///
/// `Self` is the array class that derives from it. Indices are not checked by `operator[]`; the
/// calls that return a status refuse an index out of range and change nothing.
///
/// An array that the host hands out by reference shows elements that others show, too: what is
/// written to it or assigned to it is theirs. A copy of it has elements of its own.
template <class Self, class T>
class Array : private ArrayFields<T> {
 public:
  Array() = default;
  Array(const Array& other) : ArrayFields<T>() { assign(other.data_, other.length_); }
  Array(Array&& other) noexcept : ArrayFields<T>() {
    if (other.sharing_)
      show(other.sharing_);
    else
      swap(other);
  }
  Array& operator=(const Array& other) {
    if (this != &other && (!data_ || data_ != other.data_)) assign(other.data_, other.length_);
    return *this;
  }
  Array& operator=(Array&& other) noexcept {
    if (sharing_ || other.sharing_) return *this = std::as_const(other);
    swap(other);
    return *this;
  }
  ~Array() {
    if (sharing_) {
      leave();
    } else {
      destroyFrom(0);
      release();
    }
  }

  T& operator[](unsigned int index) { return data_[index]; }
  const T& operator[](unsigned int index) const { return data_[index]; }
  unsigned int length() const { return length_; }

  /// Grows or shrinks to `length`; elements that appear have their type's default value.
  MStatus setLength(unsigned int length) {
    if (length > length_) {
      reserveExactly(length);
      std::uninitialized_value_construct_n(data_ + length_, length - length_);
    } else {
      destroyFrom(length);
    }
    length_ = length;
    publish();
    return MStatus::kSuccess;
  }
  MStatus set(const T& element, unsigned int index) {
    if (index >= length_) return MStatus::kInvalidParameter;
    data_[index] = element;
    return MStatus::kSuccess;
  }
  MStatus copy(const Self& source) {
    static_cast<Self&>(*this) = source;
    return MStatus::kSuccess;
  }
  MStatus clear() { return setLength(0); }
  MStatus append(const T& element) {
    if (length_ == capacity_) {
      T kept(element);  // the element may live in the block that growing gives up
      grow();
      ::new (static_cast<void*>(data_ + length_)) T(std::move(kept));
    } else {
      ::new (static_cast<void*>(data_ + length_)) T(element);
    }
    ++length_;
    publish();
    return MStatus::kSuccess;
  }
  /// Puts `element` before the one at `index`; `index` equal to the length appends.
  MStatus insert(const T& element, unsigned int index) {
    if (index > length_) return MStatus::kInvalidParameter;
    append(element);
    std::rotate(data_ + index, data_ + length_ - 1, data_ + length_);
    return MStatus::kSuccess;
  }
  MStatus remove(unsigned int index) {
    if (index >= length_) return MStatus::kInvalidParameter;
    std::move(data_ + index + 1, data_ + length_, data_ + index);
    destroyFrom(length_ - 1);
    --length_;
    publish();
    return MStatus::kSuccess;
  }

  /// Growth is geometric; the increment is kept for callers that query it.
  void setSizeIncrement(unsigned int increment) { sizeIncrement_ = increment; }
  unsigned int sizeIncrement() const { return sizeIncrement_; }

  T* begin() { return data_; }
  T* end() { return data_ + length_; }
  const T* begin() const { return data_; }
  const T* end() const { return data_ + length_; }
  const T* cbegin() const { return data_; }
  const T* cend() const { return data_ + length_; }

 protected:
  Array(unsigned int length, const T& value) {
    reserveExactly(length);
    std::uninitialized_fill_n(data_, length, value);
    length_ = length;
  }
  Array(const T* source, unsigned int length) { assign(source, length); }

  template <class Component, unsigned int N>
  void readTuples(const Component (*source)[N], unsigned int count) {
    setLength(count);
    for (unsigned int i = 0; i < count; ++i) data_[i] = T(source[i]);
  }
  template <class Component, unsigned int N>
  MStatus writeTuples(Component (*target)[N]) const {
    for (unsigned int i = 0; i < length_; ++i) data_[i].get(target[i]);
    return MStatus::kSuccess;
  }

 private:
  friend struct Access;
  using Elements = SharedElements<T>;
  using ArrayFields<T>::data_;
  using ArrayFields<T>::length_;
  using ArrayFields<T>::capacity_;

  /// Gives up what it has and shows elements that others show, too.
  void show(const Handle& elements) {
    if (sharing_) {
      leave();
    } else {
      destroyFrom(0);
      release();
    }
    sharing_ = elements;
    auto* shared = static_cast<Elements*>(sharing_.get());
    shared->users_.push_back(this);
    static_cast<ArrayFields<T>&>(*this) = shared->own_;
  }
  void leave() {
    auto& users = static_cast<Elements*>(sharing_.get())->users_;
    users.erase(std::find(users.begin(), users.end(), static_cast<ArrayFields<T>*>(this)));
    static_cast<ArrayFields<T>&>(*this) = {};
    sharing_ = Handle();
  }
  /// To be called after the fields have changed.
  void publish() {
    if (sharing_) static_cast<Elements*>(sharing_.get())->publish(*this);
  }
  /// Makes room for `length` elements that the caller writes at once; what was there is gone.
  T* overwrite(unsigned int length) {
    static_assert(std::is_trivially_copyable_v<T>, "elements are not constructed");
    length_ = 0;
    reserveExactly(length);
    length_ = length;
    publish();
    return data_;
  }
  void swap(Array& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(length_, other.length_);
    std::swap(capacity_, other.capacity_);
    std::swap(sizeIncrement_, other.sizeIncrement_);
  }
  void assign(const T* source, unsigned int count) {
    destroyFrom(0);
    length_ = 0;
    reserveExactly(count);
    std::uninitialized_copy_n(source, count, data_);
    length_ = count;
    publish();
  }
  void destroyFrom(unsigned int first) {
    if (first < length_) std::destroy(data_ + first, data_ + length_);
  }
  void release() {
    if (data_) std::allocator<T>().deallocate(data_, capacity_);
  }
  void grow() { reallocate(capacity_ < 8 ? 8 : capacity_ + capacity_ / 2); }
  void reserveExactly(unsigned int capacity) {
    if (capacity > capacity_) reallocate(capacity);
  }
  void reallocate(unsigned int capacity) {
    T* block = std::allocator<T>().allocate(capacity);
    std::uninitialized_move_n(data_, length_, block);
    destroyFrom(0);
    release();
    data_ = block;
    capacity_ = capacity;
  }

  Handle sharing_;  ///< to the shared elements, in an array that was handed out by reference
  unsigned int sizeIncrement_ = 8;
};

template <class Self, class T>
std::ostream& operator<<(std::ostream& os, const Array<Self, T>& array) {
  os << "[";
  for (unsigned int i = 0; i < array.length(); ++i) os << (i ? ", " : "") << array[i];
  return os << "]";
}

}  // namespace host::api
