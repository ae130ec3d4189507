#pragma once

#include <atomic>
#include <utility>

namespace host::api {

/// Lets the host's own code reach inside the API classes; every class that wraps host state
/// befriends it.
struct Access;

/// The host's side of an API object, counted by the handles that point to it.
class SharedRep {
 public:
  SharedRep() = default;
  /// Copies start uncounted, so that a shared representation can be detached by copying it.
  SharedRep(const SharedRep&) {}
  SharedRep& operator=(const SharedRep&) { return *this; }
  virtual ~SharedRep();

 private:
  friend class Handle;
  std::atomic<int> uses_{0};
};

/// A counted pointer to the host's side of an API object; null by default.
class Handle {
 public:
  Handle() = default;
  explicit Handle(SharedRep* rep) : rep_(rep) { retain(); }
  Handle(const Handle& other) : rep_(other.rep_) { retain(); }
  Handle(Handle&& other) noexcept : rep_(std::exchange(other.rep_, nullptr)) {}
  Handle& operator=(Handle other) noexcept {
    std::swap(rep_, other.rep_);
    return *this;
  }
  ~Handle() {
    if (rep_ && rep_->uses_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete rep_;
  }

  SharedRep* get() const { return rep_; }
  explicit operator bool() const { return rep_ != nullptr; }
  bool isShared() const { return rep_ && rep_->uses_.load(std::memory_order_acquire) > 1; }

 private:
  void retain() {
    if (rep_) rep_->uses_.fetch_add(1, std::memory_order_relaxed);
  }
  SharedRep* rep_ = nullptr;
};

}  // namespace host::api
