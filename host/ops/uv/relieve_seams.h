#pragma once

#include "host/ops/uv/seams.h"

namespace host::ops {

/// Takes back seams that end inside a piece: from their free ends on, until what is left joins
/// borders or goes around something. Linear.
/// @param isAsked per face; edges with a face that is not asked for stay as they are
void dropSlits(const mesh::Mesh& mesh, const std::vector<std::uint8_t>& isAsked, SeamFlags& seams);

/// Cuts pieces that were laid flat with much stretch further, each at up to four places: from where
/// faces are stretched most, ends of arms and horns mostly, along the shortest way to the piece's
/// border (Gu, Gortler and Hoppe 2002); a piece with several borders first between two of them.
/// Linear in the faces of the pieces, n log n for the ways.
/// @param stretch per face, at least 4 (symmetric Dirichlet); 0 for faces not asked for
/// @return how many pieces were cut
Index relieveSeams(const mesh::Mesh& mesh, const std::vector<double>& stretch, SeamFlags& seams);

}  // namespace host::ops
