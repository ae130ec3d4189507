#pragma once

#include <span>
#include <vector>

#include "host/base/result.h"
#include "host/mesh/mesh.h"
#include "host/scene/document.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

/// How a mesh shape node is read and written by commands and the API. The shape's `inMesh` holds
/// the stored mesh when nothing drives it; `outMesh` is that mesh plus the tweaks in `pnts`. What a
/// person moves are tweaks, with history or without (move_points.h); they are worked into the
/// stored mesh when history is deleted or a command replaces the mesh.

/// The evaluated mesh (tweaks included), shared, not copied. Fails when the history fails.
[[nodiscard]] Result<mesh::Mesh> evaluatedMesh(dg::Node& shape);
/// What arrives at or is stored in `inMesh`, before tweaks.
[[nodiscard]] Result<mesh::Mesh> untweakedMesh(dg::Node& shape);
[[nodiscard]] bool hasHistory(dg::Node& shape);  ///< something drives inMesh

/// Replaces the stored mesh and clears the tweaks. Fails when the shape has history.
Result<void> setStoredMesh(dg::Node& shape, mesh::Mesh mesh);

/// Moves points so that the evaluated mesh has exactly `points` (object space, one a vertex): as
/// tweaks in `pnts` when there is history and for vertices that have one, else written into the
/// stored mesh. What is not moved keeps its bits, tweaks included. Recorded.
Result<void> setEvaluatedPoints(dg::Node& shape, std::vector<math::Vec3f> points);
Result<void> setEvaluatedPoints(dg::Node& shape, std::span<const math::Vec3f> points);

/// Replaces everything but positions and topology (UVs, smoothness, creases, colours, normals) of
/// the evaluated mesh. Without history it is stored, below the tweaks; with history the shape keeps
/// the edit as an override of its output; what the history brings anew after that replaces the
/// part of the edit that it is about, and all of it ends when the topology has other counts.
Result<void> setEvaluatedMesh(dg::Node& shape, mesh::Mesh mesh);

/// Inserts a history node with mesh plugs `input` and `output` just before the shape. A shape
/// without history first gets an intermediate original ("...Orig") under its transform that holds
/// the stored mesh. Tweaks move into a polyTweak node in front of the inserted one (an override of
/// the output: into an intermediate shape), so that what arrives at `input` is the mesh as it was
/// seen.
Result<void> insertHistoryNode(scene::Document& document, dg::Node& shape, const dg::Plug& input,
                               const dg::Plug& output);
/// Bakes the evaluated mesh, tweaks included, into the shape and deletes the history nodes that
/// only fed it, with the intermediate shapes among them; transforms stay.
Result<void> deleteHistory(scene::Document& document, dg::Node& shape);

/// The mesh shape nodes a name argument stands for: shapes as they are, transforms by their shapes;
/// others give none.
[[nodiscard]] std::vector<scene::DagPath> meshPaths(const scene::DagPath& path);

/// Registers every built-in node type and installs the new-scene hook's default nodes.
void registerBuiltinTypes(dg::TypeRegistry& types);
void installNewScene(scene::Document& document);

}  // namespace host::nodes
