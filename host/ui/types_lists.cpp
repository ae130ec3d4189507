// Lists of texts to choose from.
#include <algorithm>

#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

std::vector<std::string> texts(const Control& list, std::string_view what) {
  std::vector<std::string> all;
  if (const auto found = list.values.find(what); found != list.values.end())
    for (const Atom& atom : found->second) all.push_back(asText(atom));
  return all;
}

void keep(Control& list, std::string_view what, const std::vector<std::string>& items) {
  Values values;
  for (const std::string& item : items) values.emplace_back(item);
  list.setValue(what, std::move(values));
}

Result<void> append(Tree&, Control& list, const Attribute&, const Values& values) {
  std::vector<std::string> items = texts(list, "allItems");
  for (const Atom& atom : values) items.push_back(asText(atom));
  keep(list, "allItems", items);
  return {};
}

/// Position 1 is the first; 0 appends.
Result<void> appendAt(Tree&, Control& list, const Attribute&, const Values& values) {
  std::vector<std::string> items = texts(list, "allItems");
  const int position = asInt(values);
  const std::size_t at =
      position < 1 ? items.size() : std::min(items.size(), static_cast<std::size_t>(position) - 1);
  items.insert(items.begin() + static_cast<std::ptrdiff_t>(at), asText(values, 1));
  keep(list, "allItems", items);
  return {};
}

Result<void> choose(Control& list, const std::string& item) {
  if (!list.isOn("allowMultiSelection")) {
    keep(list, "selected", {item});
    return {};
  }
  std::vector<std::string> selected = texts(list, "selected");
  if (std::find(selected.begin(), selected.end(), item) == selected.end()) selected.push_back(item);
  keep(list, "selected", selected);
  return {};
}

Result<void> selectItem(Tree&, Control& list, const Attribute&, const Values& values) {
  const std::vector<std::string> items = texts(list, "allItems");
  if (std::find(items.begin(), items.end(), asText(values)) == items.end())
    return fail(ErrorKind::NotFound, "Item not found in {}: '{}'.", list.name, asText(values));
  return choose(list, asText(values));
}

Result<std::string> itemAt(const Control& list, int position) {
  const std::vector<std::string> items = texts(list, "allItems");
  if (position < 1 || static_cast<std::size_t>(position) > items.size())
    return fail("{} has no item {}.", list.name, position);
  return items[static_cast<std::size_t>(position) - 1];
}

Result<void> selectPosition(Tree&, Control& list, const Attribute&, const Values& values) {
  auto item = itemAt(list, asInt(values));
  if (!item) return failWith(std::move(item.error()));
  return choose(list, *item);
}

Result<void> deselectAll(Tree&, Control& list, const Attribute&, const Values&) {
  keep(list, "selected", {});
  return {};
}

void erase(Control& list, std::string_view what, const std::string& item) {
  std::vector<std::string> items = texts(list, what);
  std::erase(items, item);
  keep(list, what, items);
}

Result<void> deselectItem(Tree&, Control& list, const Attribute&, const Values& values) {
  erase(list, "selected", asText(values));
  return {};
}

Result<void> removeItem(Tree&, Control& list, const Attribute&, const Values& values) {
  erase(list, "allItems", asText(values));
  erase(list, "selected", asText(values));
  return {};
}

Result<void> removePosition(Tree& tree, Control& list, const Attribute& attribute,
                            const Values& values) {
  auto item = itemAt(list, asInt(values));
  if (!item) return failWith(std::move(item.error()));
  return removeItem(tree, list, attribute, {*item});
}

Result<void> removeAll(Tree&, Control& list, const Attribute&, const Values&) {
  keep(list, "allItems", {});
  keep(list, "selected", {});
  return {};
}

/// In the list's order.
Values selectedItems(const Tree&, const Control& list, const Attribute&) {
  const std::vector<std::string> selected = texts(list, "selected");
  Values found;
  for (const std::string& item : texts(list, "allItems"))
    if (std::find(selected.begin(), selected.end(), item) != selected.end())
      found.emplace_back(item);
  return found;
}

Values selectedPositions(const Tree&, const Control& list, const Attribute&) {
  const std::vector<std::string> selected = texts(list, "selected"),
                                 items = texts(list, "allItems");
  Values found;
  for (std::size_t i = 0; i < items.size(); ++i)
    if (std::find(selected.begin(), selected.end(), items[i]) != selected.end())
      found.emplace_back(static_cast<int>(i) + 1);
  return found;
}

template <Getter getter>
Values countOf(const Tree& tree, const Control& list, const Attribute& attribute) {
  return {static_cast<int>(getter(tree, list, attribute).size())};
}

Values allItemsOrNone(const Tree&, const Control& list, const Attribute&) {
  const auto found = list.values.find("allItems");
  return found == list.values.end() ? Values{} : found->second;
}

/// What is given, by text or by position, is selected then, and nothing else.
Result<std::vector<std::string>> listGesture(Tree& tree, Control& list, const Values& values) {
  if (values.size() > 1 && !list.isOn("allowMultiSelection"))
    return fail("{} takes one item at a time.", list.name);
  const Values before = list.value("selected");
  keep(list, "selected", {});
  for (const Atom& each : values) {
    const bool isPosition = !std::holds_alternative<std::string>(each);
    const auto done = (isPosition ? selectPosition : selectItem)(
        tree, list, *list.type->find("selectItem"), {each});
    if (done) continue;
    list.setValue("selected", before);
    return failWith(done.error());
  }
  return scriptsOf(list, {"selectCommand"});
}

constexpr Attribute kTextScrollList[] = {
    {"a", "append", "s", "", kCreateEdit, kMulti, append},
    {"ap", "appendPosition", "is", "", kCreateEdit, kMulti, appendAt},
    {"ams", "allowMultiSelection", "b"},
    {"si", "selectItem", "s", "", kAll, kMulti | kLate | kList, selectItem, selectedItems},
    {"sii", "selectIndexedItem", "i", "", kAll, kMulti | kLate | kList, selectPosition,
     selectedPositions},
    {"da", "deselectAll", "", "", kEdit, 0, deselectAll},
    {"di", "deselectItem", "s", "", kEdit, kMulti, deselectItem},
    {"ri", "removeItem", "s", "", kEdit, kMulti, removeItem},
    {"rii", "removeIndexedItem", "i", "", kEdit, kMulti, removePosition},
    {"ra", "removeAll", "", "", kEdit, 0, removeAll},
    {"ai", "allItems", "", "", kQuery, kList, nullptr, allItemsOrNone},
    {"ni", "numberOfItems", "", "", kQuery, 0, nullptr, countOf<allItemsOrNone>},
    {"nsi", "numberOfSelectedItems", "", "", kQuery, 0, nullptr, countOf<selectedItems>},
    {"selected", "selected", "", "", kQuery, kList, nullptr, selectedItems},
    {"sc", "selectCommand", "c"},
    {"dcc", "doubleClickCommand", "c"},
    {"dkc", "deleteKeyCommand", "c"},
    {"nr", "numberOfRows", "i"},
    {"shi", "showIndexedItem", "i"},
    {"fn", "font", "s", "plainLabelFont"},
    {"uti", "uniqueTag", "s", "", kCreateEdit, kMulti | kKeyed},
};

}  // namespace

void addListTypes(std::vector<ControlType>& types) {
  types.push_back(
      {"textScrollList", Kind::Control, {kTextScrollList, commonAttributes()}, listGesture});
}

}  // namespace host::ui
