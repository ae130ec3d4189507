#pragma once

#include <memory>
#include <utility>

namespace host::mesh {

/// A value shared by all its copies until one of them is written. Copying is O(1).
template <class T>
class Cow {
 public:
  Cow() = default;
  explicit Cow(T value) : data_(std::make_shared<T>(std::move(value))) {}

  [[nodiscard]] const T& read() const { return data_ ? *data_ : emptyValue(); }
  const T* operator->() const { return &read(); }
  const T& operator*() const { return read(); }

  /// Makes the value this copy's own and returns it for writing.
  [[nodiscard]] T& write() {
    if (!data_)
      data_ = std::make_shared<T>();
    else if (data_.use_count() > 1)
      data_ = std::make_shared<T>(*data_);
    return *data_;
  }

  /// True when both share one allocation: equal without comparing.
  [[nodiscard]] bool sharesWith(const Cow& other) const { return data_ == other.data_; }
  friend bool operator==(const Cow& a, const Cow& b) {
    return a.sharesWith(b) || a.read() == b.read();
  }

 private:
  static const T& emptyValue() {
    static const T empty{};
    return empty;
  }
  std::shared_ptr<T> data_;
};

}  // namespace host::mesh
