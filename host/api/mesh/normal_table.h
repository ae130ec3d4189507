#pragma once

#include <memory>

#include "host/ops/query/normal_ids.h"
#include "host/ops/query/tangents.h"
#include "host/scene/mesh_data.h"

namespace host::api {

/// The numbering of a mesh's normals, kept until another mesh is asked for.
[[nodiscard]] std::shared_ptr<const ops::NormalIds> normalIdsOf(const scene::MeshDataPtr& data);
/// The tangents of one of its UV sets, kept likewise. Tangents are numbered like corners.
[[nodiscard]] std::shared_ptr<const ops::CornerTangents> tangentsOf(const scene::MeshDataPtr& data,
                                                                    int uvSet);

}  // namespace host::api
