#pragma once

#include "host/base/result.h"
#include "host/nodes/mesh_components.h"
#include "host/scene/document.h"

namespace host::edits {

enum class SelectHow { Replace, Add, AddFirst, Toggle, Remove };

/// Changes the active selection. Where whole objects replace it the work on components of others
/// ends: nothing stays hilited, so that nothing which runs next takes those for chosen.
void select(scene::Document& document, scene::SelectionList list,
            SelectHow how = SelectHow::Replace);
/// Changes which objects have their components ready to be picked; an item stands for its object.
void hilite(scene::Document& document, const scene::SelectionList& list,
            SelectHow how = SelectHow::Replace);
/// The list with sets replaced by their members, those of sets within sets included.
[[nodiscard]] scene::SelectionList expandSets(const scene::SelectionList& list);

/// Components of one type on one mesh, by the mesh's own ids.
struct ComponentPick {
  const nodes::MeshItem* item = nullptr;
  scene::ComponentType type = scene::ComponentType::Vertex;
  std::vector<Index> ids;
};

/// The components of an item brought to one type, each by its own kind; an object gives all.
/// Sorted, each once.
[[nodiscard]] std::vector<Index> convertedIds(const nodes::MeshItem& item,
                                              scene::ComponentType type,
                                              mesh::Conversion how = mesh::Conversion::Connected);
/// The picks as a selection list; those without components are left out.
[[nodiscard]] scene::SelectionList pickedList(const std::vector<ComponentPick>& picks);
/// Makes the picks the selection, and hilites their objects.
void selectPicks(scene::Document& document, const std::vector<ComponentPick>& picks);

}  // namespace host::edits
