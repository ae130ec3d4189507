#pragma once

#include <memory>
#include <mutex>

#include "host/scene/mesh_data.h"

namespace host::api {

/// Keeps what was last computed from a mesh, so that calls that ask about one component after the
/// other don't compute it anew each time. It keeps no mesh alive; safe to use from several threads.
template <class T, class Key = int>
class LatestDerived {
 public:
  template <class Make>
  [[nodiscard]] std::shared_ptr<const T> of(const scene::MeshDataPtr& data, const Key& key,
                                            Make make) {
    const std::lock_guard lock(mutex_);
    if (!value_ || !(key_ == key) || mesh_.lock() != data) {
      value_ = std::make_shared<const T>(make(data->mesh));
      mesh_ = data;
      key_ = key;
    }
    return value_;
  }

 private:
  std::mutex mutex_;
  std::weak_ptr<const scene::MeshData> mesh_;
  Key key_{};
  std::shared_ptr<const T> value_;
};

}  // namespace host::api
