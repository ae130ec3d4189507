#include "host/edits/select.h"

#include <algorithm>

#include "host/nodes/sets.h"

namespace host::edits {

using scene::SelectionItem;
using scene::SelectionList;
using scene::SelectionMerge;

namespace {

SelectionList changed(const SelectionList& before, SelectionList list, SelectHow how) {
  if (how == SelectHow::Replace) return list;
  if (how == SelectHow::AddFirst) {
    list.merge(before);
    return list;
  }
  SelectionList merged = before;
  merged.merge(list, how == SelectHow::Add      ? SelectionMerge::Add
                     : how == SelectHow::Toggle ? SelectionMerge::Toggle
                                                : SelectionMerge::Remove);
  return merged;
}

}  // namespace

void select(scene::Document& document, SelectionList list, SelectHow how) {
  const bool hasObject = std::ranges::any_of(
      list.items(), [](const SelectionItem& item) { return item.isDag() && item.isObject(); });
  if (how == SelectHow::Replace && hasObject && !document.hilite().isEmpty())
    document.setHilite({});
  document.setSelection(changed(document.selection(), std::move(list), how));
}

void hilite(scene::Document& document, const SelectionList& list, SelectHow how) {
  SelectionList objects;
  for (const SelectionItem& item : list.items())
    if (item.isDag()) objects.add(scene::isShape(*item.node) ? item.path.transform() : item.path);
  document.setHilite(changed(document.hilite(), std::move(objects), how));
}

SelectionList expandSets(const SelectionList& list) {
  SelectionList expanded;
  for (const SelectionItem& item : list.items()) {
    if (item.isObject() && nodes::isSet(*item.node))
      expanded.merge(expandSets(nodes::setMembers(*item.node)));
    else
      expanded.merge(item);
  }
  return expanded;
}

std::vector<Index> convertedIds(const nodes::MeshItem& item, scene::ComponentType type,
                                mesh::Conversion how) {
  if (item.isObject()) return nodes::componentIds(item.mesh, scene::Component::all(type));
  std::vector<Index> all;
  for (const scene::Component& component : item.components) {
    const std::vector<Index> own = nodes::componentIds(item.mesh, component);
    const std::vector<Index> more = mesh::convertComponents(item.mesh, component.type(), own, type,
                                                            how, item.mesh.currentUvSet());
    all.insert(all.end(), more.begin(), more.end());
  }
  mesh::sortUnique(all);
  return all;
}

SelectionList pickedList(const std::vector<ComponentPick>& picks) {
  SelectionList list;
  for (const ComponentPick& pick : picks)
    if (!pick.ids.empty())
      list.add(pick.item->path, nodes::componentFromIds(pick.item->mesh, pick.type, pick.ids));
  return list;
}

void selectPicks(scene::Document& document, const std::vector<ComponentPick>& picks) {
  SelectionList objects;
  for (const ComponentPick& pick : picks) objects.add(pick.item->path.transform());
  document.setHilite(std::move(objects));
  document.setSelection(pickedList(picks));
}

}  // namespace host::edits
