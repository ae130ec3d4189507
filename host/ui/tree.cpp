#include "host/ui/tree.h"

#include <algorithm>
#include <cctype>

#include "host/base/assert.h"

namespace host::ui {

namespace {

std::string cleanName(std::string_view name) {
  std::string clean(name);
  for (char& c : clean)
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_' && c != ':') c = '_';
  if (!clean.empty() && std::isdigit(static_cast<unsigned char>(clean[0]))) clean.insert(0, 1, '_');
  return clean;
}

bool isParentOf(const ControlType& type, const Control& parent) {
  switch (type.kind) {
    case Kind::Window:
      return false;
    case Kind::Layout:
      return parent.isKind(Kind::Layout) || parent.isKind(Kind::Window);
    case Kind::Control:
    case Kind::Collection:
      return parent.isKind(Kind::Layout) ||
             (type.kind == Kind::Collection && parent.isKind(Kind::Menu));
    case Kind::Menu:
      if (type.name == "popupMenu")
        return !parent.isKind(Kind::Menu) && !parent.isKind(Kind::MenuItem);
      return parent.isKind(Kind::Window) || parent.isKind(Kind::Layout);
    case Kind::MenuItem:
      return parent.type->holdsMenuItems ||
             (parent.isKind(Kind::MenuItem) && parent.isOn("subMenu"));
  }
  return false;
}

}  // namespace

Values Control::value(std::string_view longName) const {
  if (const auto found = values.find(longName); found != values.end()) return found->second;
  const Attribute* attribute = type->find(longName);
  if (!attribute) return {};
  if (attribute->kinds == "s" || attribute->kinds == "c") return {std::string(attribute->initial)};
  Values initial;
  std::string_view rest = attribute->initial;
  for (const char kind : attribute->kinds.empty() ? std::string_view("b") : attribute->kinds) {
    const std::string word(rest.substr(0, rest.find(' ')));
    rest.remove_prefix(std::min(rest.size(), word.size() + 1));
    if (kind == 's' || kind == 'c')
      initial.emplace_back(word);
    else if (kind == 'f')
      initial.emplace_back(asReal({word}));
    else
      initial.emplace_back(asInt({word}));
  }
  return initial;
}

void Control::setValue(std::string_view longName, Values newValues) {
  if (const Attribute* attribute = type->find(longName))
    values[attribute->longName] = std::move(newValues);
}

Tree::Tree() {
  mainWindow_ = &attach(*findControlType("window"), std::string(kMainWindowName), nullptr);
  mainWindow_->setValue("menuBar", {1});
  mainWindow_->setValue("visible", {1});
  currentParent_ = mainWindow_;
}

std::string Tree::path(const Control& control) {
  return control.parent ? path(*control.parent) + "|" + control.name : control.name;
}

bool Tree::fitsPath(const Control& control, std::string_view path) {
  const std::string_view name = lastName(path);
  if (name != control.name) return false;
  if (name.size() == path.size()) return true;
  const std::string_view rest = path.substr(0, path.size() - name.size() - 1);
  if (rest.empty()) return !control.parent;  // a leading bar begins at the window
  return control.parent && fitsPath(*control.parent, rest);
}

Result<Control*> Tree::parentFor(const ControlType& type, std::string_view parentName) const {
  if (type.kind == Kind::Window) return nullptr;
  if (!parentName.empty()) {
    auto parent = find(parentName);
    if (!parent) return parent;
    if (isParentOf(type, **parent)) return parent;
    if (type.kind == Kind::Control && (*parent)->isKind(Kind::Window))
      return fail("Controls must have a layout.  No layout found in window: {}", (*parent)->name);
    return fail("'{}' can't hold a {}.", parentName, type.name);
  }
  if (type.kind == Kind::MenuItem) {
    if (!currentMenu_)
      return fail("No menu found to hold the {}: make a menu first, or give -parent.", type.name);
    return currentMenu_;
  }
  if (type.kind == Kind::Collection && currentMenu_ && type.name == "radioMenuItemCollection")
    return currentMenu_;
  if (type.name == "menu") {
    for (Control* control = currentParent_; control; control = control->parent)
      if (control->isKind(Kind::Window) || control->type->name == "menuBarLayout") return control;
  }
  if (type.name == "popupMenu" && !currentParent_->children.empty()) {
    for (auto child = currentParent_->children.rbegin(); child != currentParent_->children.rend();
         ++child)
      if ((*child)->isKind(Kind::Control)) return child->get();
  }
  if (!isParentOf(type, *currentParent_))
    return fail("Controls must have a layout.  No layout found in window: {}",
                currentParent_->name);
  return currentParent_;
}

std::string Tree::freshName(const ControlType& type) {
  int& number = numbers_[type.name];
  std::string name;
  do {
    name = std::string(type.name) + std::to_string(++number);
  } while (byName_.count(name) > 0);
  return name;
}

Control& Tree::attach(const ControlType& type, std::string name, Control* parent) {
  auto& siblings = parent ? parent->children : windows_;
  Control& control = *siblings.emplace_back(std::make_unique<Control>());
  control.type = &type;
  control.name = std::move(name);
  control.parent = parent;
  byName_.emplace(control.name, &control);
  return control;
}

Result<Control*> Tree::create(const ControlType& type, std::string_view name,
                              std::string_view parentName) {
  auto parent = parentFor(type, parentName);
  if (!parent) return parent;
  std::string own = name.empty() ? freshName(type) : cleanName(name);
  for (const auto& sibling : *parent ? (*parent)->children : windows_)
    if (sibling->name == own) return fail("Object's name '{}' is not unique.", own);
  if (*parent && (*parent)->type->name == "rowLayout" && type.kind != Kind::Menu &&
      type.kind != Kind::Collection) {
    const auto columns =
        static_cast<std::size_t>(std::max(1, asInt((*parent)->value("numberOfColumns"))));
    const auto& row = (*parent)->children;
    const auto used = std::count_if(row.begin(), row.end(), [](const auto& child) {
      return child->isKind(Kind::Control) || child->isKind(Kind::Layout);
    });
    if (static_cast<std::size_t>(used) >= columns)
      return fail("Too many children in layout: {}", (*parent)->name);
  }
  Control& control = attach(type, std::move(own), *parent);
  if (type.kind == Kind::Window || type.kind == Kind::Layout) setCurrentParent(&control);
  if (type.holdsMenuItems) currentMenu_ = &control;
  if (type.kind == Kind::Collection) currentCollection_ = &control;
  return &control;
}

void Tree::setCurrentParent(Control* control) {
  currentParent_ = control ? control : mainWindow_;
}

Control* Tree::currentCollection(bool ofMenuItems) const {
  if (!currentCollection_) return nullptr;
  const bool isMenus = currentCollection_->type->name == "radioMenuItemCollection";
  if (isMenus != ofMenuItems) return nullptr;
  const Control* place = ofMenuItems ? currentMenu_ : currentParent_;
  for (; place; place = place->parent)
    if (place == currentCollection_->parent) return currentCollection_;
  return nullptr;
}

Result<void> Tree::set(Control& control, const Attribute& attribute, const Values& values) {
  if (attribute.set) return attribute.set(*this, control, attribute, values);
  if (attribute.traits & kKeyed) {
    std::vector<Values>& entries = control.entries[attribute.longName];
    const auto old = std::find_if(entries.begin(), entries.end(), [&](const Values& entry) {
      return asText(entry) == asText(values);
    });
    if (old != entries.end())
      *old = values;
    else
      entries.push_back(values);
    return {};
  }
  control.values[attribute.longName] = values.empty() ? Values{1} : values;
  return {};
}

Values Tree::get(const Control& control, const Attribute& attribute) const {
  if (attribute.get) return attribute.get(*this, control, attribute);
  if (attribute.traits & kKeyed) {
    Values all;
    if (const auto found = control.entries.find(attribute.longName); found != control.entries.end())
      for (const Values& entry : found->second)
        for (const Atom& atom : entry) all.emplace_back(asText(atom));
    return all;
  }
  return control.value(attribute.longName);
}

void Tree::forget(const Control& removed) {
  visit(removed, [&](const Control& gone) {
    const auto [begin, end] = byName_.equal_range(gone.name);
    const auto entry =
        std::find_if(begin, end, [&](const auto& each) { return each.second == &gone; });
    HOST_ASSERT(entry != end, "keep the name index in step with the tree");
    byName_.erase(entry);
    if (currentParent_ == &gone) setCurrentParent(removed.parent);
    if (currentMenu_ == &gone) currentMenu_ = nullptr;
    if (currentCollection_ == &gone) currentCollection_ = nullptr;
  });
  const auto isGone = [&](const Control* control) {
    for (; control; control = control->parent)
      if (control == &removed) return true;
    return false;
  };
  for (const auto& [name, control] : byName_) {
    if (isGone(control->collection)) control->collection = nullptr;
    if (isGone(control->selected)) control->selected = nullptr;
  }
}

Result<std::vector<std::string>> Tree::remove(Control& control) {
  if (&control == mainWindow_) return fail("The main window can't be deleted.");
  std::vector<std::string> gone;
  visit(control, [&](const Control& each) { gone.push_back(path(each)); });
  forget(control);
  auto& siblings = control.parent ? control.parent->children : windows_;
  std::erase_if(siblings, [&](const auto& each) { return each.get() == &control; });
  return gone;
}

}  // namespace host::ui
