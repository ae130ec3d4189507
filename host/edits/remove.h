#pragma once

#include <string>
#include <vector>

#include "host/base/result.h"
#include "host/scene/document.h"

namespace host::edits {

/// Deletes what a list names: objects and nodes with all below them; of several instances only the
/// named one; components by a history node a mesh; for a plug the connection that drives it.
/// @return an error naming what can't be deleted, with the document as it was
Result<void> remove(scene::Document& document, scene::SelectionList list);

/// Deletes the components that a list names, by one deleteComponent node a mesh: faces, then edges
/// (their faces are joined), then vertices. Instances of one mesh count as one. Objects in the list
/// stay.
/// @return the names of the nodes, or an error with the document as it was
Result<std::vector<std::string>> removeComponents(scene::Document& document,
                                                  const scene::SelectionList& list);

/// Bakes what the meshes at and below the objects look like and deletes the history that made them.
Result<void> removeHistory(scene::Document& document, scene::SelectionList list);

/// The top objects of the scene; without the cameras of a new scene unless `withDefaults`.
[[nodiscard]] scene::SelectionList topObjects(const scene::Document& document, bool withDefaults);

}  // namespace host::edits
