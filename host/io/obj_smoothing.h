#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/io/obj_scene.h"

namespace host::io {

/// The smoothing group of each face; faces outside the runs have group 0. Linear.
[[nodiscard]] std::vector<std::uint32_t> groupOfFaces(std::span<const ObjSmoothingRun> runs,
                                                      Index faceCount);

/// Runs of equal groups over consecutive faces. Linear.
[[nodiscard]] std::vector<ObjSmoothingRun> smoothingRuns(
    std::span<const std::uint32_t> groupOfFaces);

/// One flag an edge: 1 where all its faces share a group other than 0; edges without faces are
/// smooth. Linear.
[[nodiscard]] std::vector<std::uint8_t> smoothFlags(const mesh::Mesh& mesh,
                                                    std::span<const std::uint32_t> groupOfFaces);

struct DerivedSmoothing {
  std::vector<std::uint32_t> groupOfFaces;  ///< 0 for faces with hard edges only
  bool isExact =
      true;  ///< false when a hard edge lies inside a smooth region, which groups cannot say
};

/// Groups of faces joined across smooth edges, numbered by first face. Border edges have no say.
/// Linear.
[[nodiscard]] DerivedSmoothing deriveSmoothing(const mesh::Mesh& mesh);

}  // namespace host::io
