#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "host/base/ids.h"

namespace host::mesh {

class Adjacency;

/// The two end vertices of an edge, in stored direction.
struct EdgeVertices {
  VertexId a = kNone, b = kNone;
  /// The end that is not `v`.
  [[nodiscard]] VertexId other(VertexId v) const { return v == a ? b : a; }
  [[nodiscard]] bool has(VertexId v) const { return v == a || v == b; }
  friend bool operator==(const EdgeVertices&, const EdgeVertices&) = default;
};

/// Face loops and edges. Face f owns corners [faceOffsets[f], faceOffsets[f+1]); corner c starts at
/// vertex cornerVertices[c] and walks edge cornerEdges[c] to the next corner's vertex.
struct Topology {
  PerElement<FaceId, CornerId> faceOffsets{CornerId(0)};  ///< and where the last face ends
  PerElement<CornerId, VertexId> cornerVertices;
  PerElement<CornerId, EdgeId> cornerEdges;
  PerElement<EdgeId, EdgeVertices> edges;
  friend bool operator==(const Topology&, const Topology&) = default;
};

/// A topology that never changes, with the adjacency built from it on first use. Safe to read from
/// any thread.
class TopologyBlock {
 public:
  TopologyBlock();
  explicit TopologyBlock(Topology topologyIn);
  ~TopologyBlock();
  TopologyBlock(const TopologyBlock&) = delete;
  TopologyBlock& operator=(const TopologyBlock&) = delete;

  /// The adjacency for meshes of `vertexCount` points; isolated vertices make that more than the
  /// faces tell.
  [[nodiscard]] const Adjacency& adjacency(Index vertexCount) const;

  /// The shared block without faces.
  [[nodiscard]] static const std::shared_ptr<const TopologyBlock>& empty();

  const Topology topology{};  // braces for clang, which wants a const member initialised

 private:
  struct Entry;
  mutable std::atomic<const Entry*> newest_{
      nullptr};  // a list; more than one only if point counts differ
  mutable std::mutex building_;
};

}  // namespace host::mesh
