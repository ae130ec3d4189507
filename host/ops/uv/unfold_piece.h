#pragma once

#include "host/ops/uv/unfold_flatten.h"
#include "host/ops/uv/uv_topology.h"

namespace host::ops {

/// A UV shell as a piece of surface, and which UV each of its points is.
struct ShellPiece {
  flat::Piece piece;
  std::vector<UvId> uvs;       ///< per point
  std::vector<flat::Point> x;  ///< per point, where its UV is now
};

/// What all shells of one UV set are made pieces from; built once for all of them.
class PieceMaker {
 public:
  PieceMaker(const mesh::Mesh& mesh, int uvSet);
  [[nodiscard]] const UvTopology& topology() const { return topology_; }
  /// Makes a piece of one shell. May run for several shells at once.
  /// @return an error naming the shell by its first face where it cannot be laid flat: closed, with
  /// a handle, one-sided or wound both ways, more than two faces at an edge, several fans at a UV,
  /// a face without area, a point or UV that is no number, a UV at several vertices.
  [[nodiscard]] Result<ShellPiece> make(Index shell);

 private:
  [[nodiscard]] Result<void> checkFaces(Index shell) const;
  [[nodiscard]] Result<void> addBorder(Index shell, flat::Piece& piece) const;

  const mesh::Mesh& mesh_;
  int uvSet_;
  UvTopology topology_;
  std::vector<CornerId> twins_;
  std::vector<Index> localOf_;      // per UV its number in its shell
  std::vector<VertexId> vertexOf_;  // per UV its vertex; -2 when there are several
};

}  // namespace host::ops
