#pragma once

#include <cstdint>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

/// The borders of a map that are to be closed, and what becomes of each. Lists go by slot: the
/// position in `edges`.
struct SewPlan {
  std::vector<EdgeId> edges;            ///< sewable, sorted
  std::vector<Index> slotOfEdge;        ///< an edge of the mesh; -1: not to be closed
  std::vector<double> hiding;           ///< 1 for edges in the flat, more for folds and creases
  std::vector<double> openCost;         ///< how little an edge wants to stay open
  std::vector<std::uint8_t> isClosed;   ///< will be sewn
  std::vector<std::uint8_t> isRefused;  ///< must not be
};

/// Starts a plan: the edges, and what it costs to leave them open (length over how much of a
/// crease they are).
[[nodiscard]] SewPlan startSewPlan(const mesh::Mesh& mesh, std::vector<EdgeId> edges);

/// The slots in the order in which shells should be joined across them, so that what is left open
/// when each shell was joined once is short: first the edges whose shortest loop through the rest
/// is longest, last those on shortest ways to a border that stays. (Tree and cotree after
/// J. Erickson and K. Whittlesey, Greedy optimal homotopy and homology generators, 2005.)
[[nodiscard]] std::vector<Index> joiningOrder(const mesh::Mesh& mesh, int uvSet,
                                              const SewPlan& plan);

/// Once shells are joined: closes what does not close a surface or a handle. Along each border, two
/// sides of an edge pair like brackets; a pair that no other pair crosses can be closed. A shell
/// that would lose its last border keeps the longest way of its cuts.
void closeWithinShells(const mesh::Mesh& mesh, int uvSet, SewPlan& plan);

}  // namespace host::ops
