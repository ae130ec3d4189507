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
  const Attribute* attribute = type->find(longName);
  if (!attribute) return;
  values[attribute->longName] = std::move(newValues);
  if (tree) tree->touch(*this);
}

Tree::Tree() {
  mainWindow_ = &attach(*findControlType("window"), std::string(kMainWindowName), nullptr);
  mainWindow_->setValue("menuBar", {1});
  mainWindow_->setValue("visible", {1});
  currentParent_ = mainWindow_;
}

Tree::~Tree() {
  destroy(std::move(windows_));
}

void Tree::destroy(std::vector<std::unique_ptr<Control>> controls) {
  while (!controls.empty()) {
    const std::unique_ptr<Control> last = std::move(controls.back());
    controls.pop_back();
    for (auto& child : last->children) controls.push_back(std::move(child));
    last->children.clear();
  }
}

void Tree::touch(Control& control, ControlChange change) {
  control.revision = ++revision_;
  changed(control, change);
}

std::string Tree::path(const Control& control) {
  std::vector<const Control*> chain;
  std::size_t length = 0;
  for (const Control* each = &control; each; each = each->parent) {
    chain.push_back(each);
    length += each->name.size() + 1;
  }
  std::string path;
  path.reserve(length);
  for (auto each = chain.rbegin(); each != chain.rend(); ++each) {
    if (!path.empty()) path += '|';
    path += (*each)->name;
  }
  return path;
}

namespace {

/// Takes the first name off a path.
std::string_view takeFirst(std::string_view& path) {
  const std::size_t end = std::min(path.find('|'), path.size());
  const std::string_view first = path.substr(0, end);
  path.remove_prefix(std::min(end + 1, path.size()));
  return first;
}

/// Whether `path` is the end of the control's path.
bool fitsPath(const Control& control, std::string_view path) {
  const Control* each = &control;
  for (; !path.empty(); each = each->parent) {
    if (!each) return false;
    const std::size_t bar = path.rfind('|');
    const std::string_view name = bar == path.npos ? path : path.substr(bar + 1);
    if (name != each->name) return false;
    if (bar == 0) return !each->parent;  // a leading bar begins at the window
    path = bar == path.npos ? std::string_view() : path.substr(0, bar);
  }
  return true;
}

}  // namespace

Control* Tree::atPath(std::string_view path) const {
  if (path.starts_with('|')) path.remove_prefix(1);
  if (path.empty()) return nullptr;
  Control* at = nullptr;
  do {
    at = childAt(at, takeFirst(path));
  } while (at && !path.empty());
  return at;
}

void Tree::forEachThatFits(std::string_view path, const std::function<bool(Control&)>& use) const {
  const auto named = [&](std::string_view name) -> const std::vector<Control*>& {
    static const std::vector<Control*> none;
    const auto found = byName_.find(name);
    return found == byName_.end() ? none : found->second;
  };
  std::string_view rest = path;
  const std::string_view first = takeFirst(rest);
  const std::vector<Control*>& tops = named(first);
  const std::vector<Control*>& ends = named(path.substr(path.rfind('|') + 1));
  // From the end of the path up, or down from its first name: from where there are fewer.
  if (rest.empty() || first.empty() || ends.size() <= tops.size()) {
    for (Control* control : ends)
      if (fitsPath(*control, path) && !use(*control)) return;
    return;
  }
  for (Control* at : tops) {
    for (std::string_view names = rest; at && !names.empty();) at = childAt(at, takeFirst(names));
    if (at && !use(*at)) return;
  }
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
  } while (byName_.contains(name));
  return name;
}

Control& Tree::attach(const ControlType& type, std::string name, Control* parent) {
  auto& siblings = parent ? parent->children : windows_;
  Control& control = *siblings.emplace_back(std::make_unique<Control>());
  control.type = &type;
  control.name = std::move(name);
  control.parent = parent;
  control.tree = this;
  std::vector<Control*>& namesakes = byName_[control.name];
  control.nameSlot = namesakes.size();
  namesakes.push_back(&control);
  byPlace_.emplace(Place{parent, control.name}, &control);
  return control;
}

Result<Control*> Tree::create(const ControlType& type, std::string_view name,
                              std::string_view parentName) {
  auto parent = parentFor(type, parentName);
  if (!parent) return parent;
  const bool isBlank = name.find_first_not_of(' ') == std::string_view::npos;
  std::string own = isBlank ? freshName(type) : cleanName(name);
  if (childAt(*parent, own))
    return fail(ErrorKind::BadArgument, "Object's name '{}' is not unique.", own);
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
  if (control.parent) touch(*control.parent, ControlChange::ChildrenChanged);
  touch(control, ControlChange::Added);
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
  if (attribute.set) {
    HOST_TRY(attribute.set(*this, control, attribute, values));
  } else if (attribute.traits & kKeyed) {
    std::vector<Values>& entries = control.entries[attribute.longName];
    const auto old = std::find_if(entries.begin(), entries.end(), [&](const Values& entry) {
      return asText(entry) == asText(values);
    });
    if (old != entries.end())
      *old = values;
    else
      entries.push_back(values);
  } else {
    control.values[attribute.longName] = values.empty() ? Values{1} : values;
  }
  touch(control);
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
  bool hasCollection = false;
  visit(removed, [&](const Control& gone) {
    const auto namesakes = byName_.find(gone.name);
    HOST_ASSERT(namesakes != byName_.end() && namesakes->second[gone.nameSlot] == &gone,
                "keep the name index in step with the tree");
    // The index's key is the name of one of them: it mustn't be of one that goes.
    std::vector<Control*> others = std::move(namesakes->second);
    byName_.erase(namesakes);
    others.back()->nameSlot = gone.nameSlot;
    others[gone.nameSlot] = others.back();
    others.pop_back();
    if (!others.empty()) {
      const std::string_view key = others.front()->name;
      byName_.emplace(key, std::move(others));
    }
    byPlace_.erase({gone.parent, gone.name});
    if (currentParent_ == &gone) setCurrentParent(removed.parent);
    if (currentMenu_ == &gone) currentMenu_ = nullptr;
    if (currentCollection_ == &gone) currentCollection_ = nullptr;
    for (Control* holder : {gone.collection, gone.parent})
      if (holder && holder->selected == &gone) {
        holder->selected = nullptr;
        touch(*holder);
      }
    hasCollection = hasCollection || gone.isKind(Kind::Collection) ||
                    gone.type->find("shareCollection") != nullptr;
  });
  if (!hasCollection) return;
  // Buttons anywhere may have been of a collection that goes.
  const auto isGone = [&](const Control* control) {
    for (; control; control = control->parent)
      if (control == &removed) return true;
    return false;
  };
  for (const auto& [place, control] : byPlace_) {
    if (!control->collection || !isGone(control->collection)) continue;
    control->collection = nullptr;
    touch(*control);
  }
}

Result<std::vector<std::string>> Tree::remove(Control& control) {
  if (&control == mainWindow_) return fail("The main window can't be deleted.");
  std::vector<std::string> gone;
  visit(control, [&](const Control& each) { gone.push_back(path(each)); });
  changed(control, ControlChange::Removing);
  forget(control);
  Control* const parent = control.parent;
  auto& siblings = parent ? parent->children : windows_;
  const auto own = std::find_if(siblings.begin(), siblings.end(),
                                [&](const auto& each) { return each.get() == &control; });
  std::vector<std::unique_ptr<Control>> last;
  last.push_back(std::move(*own));
  siblings.erase(own);
  destroy(std::move(last));
  ++revision_;
  if (parent) touch(*parent, ControlChange::ChildrenChanged);
  return gone;
}

}  // namespace host::ui
