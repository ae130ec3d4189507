#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

/// Whether the faces at an edge hang together in a UV set: both have UVs, share one at an end at
/// least, and are wound alike. Edges of one face or of three and more never do.
[[nodiscard]] bool isUvJoined(const mesh::Mesh& mesh, int uvSet, EdgeId edge);
/// The same, sharing both ends.
[[nodiscard]] bool isUvClosed(const mesh::Mesh& mesh, int uvSet, EdgeId edge);
/// Whether an edge has exactly two faces, walking it in opposite directions, both with UVs.
[[nodiscard]] bool isUvSewable(const mesh::Mesh& mesh, int uvSet, EdgeId edge);

/// The UV shells around some faces, found by growing all of them in step until at most one is left
/// unfinished. So the largest costs no more than the others together, be it the whole mesh.
class ShellGrowth {
 public:
  ShellGrowth(const mesh::Mesh& mesh, int uvSet, std::span<const FaceId> seeds);

  [[nodiscard]] Index count() const { return static_cast<Index>(faces_.size()); }
  /// The shell of a seed face.
  [[nodiscard]] Index ofFace(FaceId face) const;
  /// The faces of a shell; of the unfinished one those that were met.
  [[nodiscard]] const std::vector<FaceId>& faces(Index shell) const { return faces_[at(shell)]; }
  /// The shell that was left unfinished because all others are smaller, -1 when none was.
  [[nodiscard]] Index unfinished() const { return unfinished_; }

 private:
  struct Front {
    std::vector<FaceId> done, waiting;
    std::size_t next = 0;  ///< the first of `waiting` that still waits
    [[nodiscard]] std::size_t size() const { return done.size() + waiting.size() - next; }
    [[nodiscard]] bool isFinished() const { return next == waiting.size(); }
  };
  void grow(const mesh::Mesh& mesh, int uvSet);
  void step(const mesh::Mesh& mesh, int uvSet, Index front);
  void unite(Index a, Index b);
  Index find(Index front);

  std::vector<Front> fronts_;
  std::vector<Index> parent_, label_;  // a front; a face
  std::vector<std::vector<FaceId>> faces_;
  std::vector<Index> shellOfFront_;
  Index unfinished_ = kNone;
};

}  // namespace host::ops
