#pragma once

#include "host/io/ma/ma_kept.h"
#include "host/scene/document.h"

namespace host::io {

/// Lets meshes through the unknown nodes of a file: a mesh that goes into one is connected to what
/// comes out of it, so that shapes behind it show at least what went in. Noted in `kept`, so that
/// the file that is saved has the nodes' own connections instead.
/// @return whether a type of unknown nodes lets meshes through, by name
[[nodiscard]] std::unordered_map<std::string, bool> passMeshesThrough(scene::Document& document,
                                                                      MaKept& kept);

/// Where the output of an unknown node belongs now: the pass's own destination, or what an edit has
/// put in front of it since. Null when the mesh goes another way now.
[[nodiscard]] dg::Plug currentEnd(const dg::Graph& graph, const MaKept::Pass& pass);

}  // namespace host::io
