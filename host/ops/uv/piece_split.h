#pragma once

#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

/// Connected faces with places of their vertices in the plane.
struct FlatPiece {
  std::vector<FaceId> faces;
  /// One a corner, faces in order.
  struct Place {
    double x = 0, y = 0;
    friend bool operator==(const Place&, const Place&) = default;
  };
  std::vector<Place> places;
};

/// Whether borders of a piece cross each other; where all faces lie face up, that is whether it
/// covers itself. Near-linear in the border.
[[nodiscard]] bool coversItself(const mesh::Mesh& mesh, const FlatPiece& piece);

/// Parts a piece into connected ones that don't cover themselves, each grown as far as it goes.
/// Near-linear.
[[nodiscard]] std::vector<FlatPiece> splitOverlaps(const mesh::Mesh& mesh, FlatPiece piece);

}  // namespace host::ops
