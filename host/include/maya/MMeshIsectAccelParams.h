#pragma once

#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// How a mesh's ray queries are accelerated; made by `MFnMesh::autoUniformGridParams` and its like.
class MMeshIsectAccelParams {
 public:
  MMeshIsectAccelParams() = default;

 private:
  friend class MFnMesh;
  friend struct host::api::Access;
  int divisions_[3] = {0, 0, 0};  // all 0: chosen by the host
};
