#pragma once

#include <maya/MMessage.h>
#include <maya/MStatus.h>

#include <vector>

/// Registered callbacks that are taken back with their owner, so that none can call into something
/// that is gone.
class ownedCallbacks {
 public:
  ownedCallbacks() = default;
  ownedCallbacks(const ownedCallbacks&) = delete;
  ownedCallbacks& operator=(const ownedCallbacks&) = delete;
  ~ownedCallbacks() { removeAll(); }

  /// Takes over what a registration returned. An id of 0 (the registration failed) is passed over.
  /// @return whether there is a callback now
  bool add(MCallbackId id);
  void removeAll();
  bool isEmpty() const { return ids.empty(); }

 private:
  std::vector<MCallbackId> ids;
};
