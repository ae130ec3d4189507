#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/base/result.h"
#include "host/base/signal.h"
#include "host/ui/control_type.h"

namespace host::ui {

/// A window, layout, control, menu, item or collection. Owned by its parent; the tree's pointers
/// stay valid until the control is removed.
struct Control {
  const ControlType* type = nullptr;
  std::string name;
  Control* parent = nullptr;
  std::vector<std::unique_ptr<Control>> children;
  std::map<std::string_view, Values> values;  ///< what was set, by the attribute's long name
  std::map<std::string_view, std::vector<Values>> entries;  ///< keyed attributes, a use each
  Control* collection = nullptr;                            ///< of a radio button
  Control* selected = nullptr;  ///< of a collection: its button; of a tab layout: its tab
  Tree* tree = nullptr;
  std::uint64_t revision = 0;  ///< the tree's when this last changed, its children apart
  std::size_t nameSlot = 0;    ///< the tree's own

  /// What was set, else the initial value; empty for an unknown attribute.
  [[nodiscard]] Values value(std::string_view longName) const;
  [[nodiscard]] bool isOn(std::string_view longName) const { return asInt(value(longName)) != 0; }
  [[nodiscard]] std::string text(std::string_view longName) const {
    return asText(value(longName));
  }
  void setValue(std::string_view longName,
                Values values);  ///< of an attribute of this type, else ignored
  [[nodiscard]] bool isKind(Kind kind) const { return type->kind == kind; }
};

/// What happened to a control.
enum class ControlChange : std::uint8_t {
  Added,
  Changed,          ///< a value, or what a group of buttons has selected
  ChildrenChanged,  ///< one came or went, or they stand in another order
  Removing,         ///< it goes now with all in it, which isn't told of
};

/// The control tree of the program: plain data, whether or not something shows it.
///
/// Names are unique among siblings. A control is found by its path `window|layout|name` or by any
/// end of it that fits one control only. New controls go to the current parent, new items to the
/// current menu.
class Tree {
 public:
  Tree();
  ~Tree();
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  /// Counts changes: what was read at one revision still holds at the same one.
  [[nodiscard]] std::uint64_t revision() const { return revision_; }
  /// Tells of every change, once it is made; of removals just before.
  Signal<const Control&, ControlChange> changed;
  /// Notes a change that was made to a control directly.
  void touch(Control& control, ControlChange change = ControlChange::Changed);

  /// The program's own window, in which menus and docked layouts go.
  [[nodiscard]] Control& mainWindow() { return *mainWindow_; }
  static constexpr std::string_view kMainWindowName = "MayaWindow";

  /// Makes a control. An empty name gives the type's with a number that was not used before;
  /// characters that can't stand in a name become '_'. Layouts, windows and menus become the
  /// current parent of what follows.
  /// @return an error naming what is wrong: the name is taken, the parent is missing or can't hold
  /// it
  Result<Control*> create(const ControlType& type, std::string_view name,
                          std::string_view parentName = {});

  /// The control of a name among those that `accepts` lets pass. Fails: `Object 'x' not found.`, or
  /// that the name is not unique.
  template <class Accept>
  [[nodiscard]] Result<Control*> findIf(std::string_view name, const Accept& accepts) const {
    if (Control* exact = atPath(name); exact && accepts(*exact)) return exact;
    Control* found = nullptr;
    bool isUnique = true;
    forEachThatFits(name, [&](Control& control) {
      if (!accepts(control)) return true;
      isUnique = found == nullptr;
      found = &control;
      return isUnique;
    });
    if (!isUnique) return fail(ErrorKind::BadArgument, "Object's name '{}' is not unique.", name);
    if (!found) return fail(ErrorKind::NotFound, "Object '{}' not found.", name);
    return found;
  }
  [[nodiscard]] Result<Control*> find(std::string_view name) const {
    return findIf(name, [](const Control&) { return true; });
  }
  [[nodiscard]] Result<Control*> find(std::string_view name, const ControlType& type) const {
    return findIf(name, [&](const Control& control) { return control.type == &type; });
  }

  /// A control's child by its name; null without one.
  [[nodiscard]] Control* childOf(const Control& parent, std::string_view name) const {
    return childAt(&parent, name);
  }

  /// "window1|columnLayout1|button3".
  [[nodiscard]] static std::string path(const Control& control);
  [[nodiscard]] const std::vector<std::unique_ptr<Control>>& windows() const { return windows_; }

  /// Sets one flag. On failure nothing has changed.
  Result<void> set(Control& control, const Attribute& attribute, const Values& values);
  /// What querying the flag gives.
  [[nodiscard]] Values get(const Control& control, const Attribute& attribute) const;

  /// Does what a person does: presses a button (no values), or gives a control another value: a
  /// truth value, number, text, label or place in a list; groups take the number of the field
  /// before it. Fails for a control that is disabled.
  /// @return the control's scripts that this sets off, in order; `#1` in them is replaced by the
  /// value
  Result<std::vector<std::string>> userSets(Control& control, const Values& values);
  /// A drag: sets the value and gives the drag scripts only.
  Result<std::vector<std::string>> userDrags(Control& control, const Values& values);
  /// Closes a window as its frame's button does: it is removed, or hidden when it is to be
  /// retained.
  Result<std::vector<std::string>> userCloses(Control& window);

  /// Removes a control with all in it; returns the paths of what went, itself first. The main
  /// window stays.
  Result<std::vector<std::string>> remove(Control& control);

  [[nodiscard]] Control* currentParent() const { return currentParent_; }
  [[nodiscard]] Control* currentMenu() const { return currentMenu_; }
  void setCurrentParent(Control* control);
  void setCurrentMenu(Control* control) { currentMenu_ = control; }
  /// The collection that new radio buttons join: the latest one made under the current parent or
  /// above it.
  [[nodiscard]] Control* currentCollection(bool ofMenuItems) const;

  /// Visits a control and all below it, parents first; nesting costs no stack.
  template <class Visit>
  static void visit(const Control& control, const Visit& visitor) {
    std::vector<const Control*> pending{&control};
    while (!pending.empty()) {
      const Control& next = *pending.back();
      pending.pop_back();
      visitor(next);
      for (auto child = next.children.rbegin(); child != next.children.rend(); ++child)
        pending.push_back(child->get());
    }
  }

 private:
  /// A control's name under its parent; no parent: a window.
  struct Place {
    const Control* parent;
    std::string_view name;  ///< of the control, as long as that lives
    friend bool operator==(const Place&, const Place&) = default;
  };
  struct PlaceHash {
    std::size_t operator()(const Place& place) const {
      return std::hash<const void*>{}(place.parent) * 31 +
             std::hash<std::string_view>{}(place.name);
    }
  };
  /// The control of that full path, with or without a leading bar; null without one.
  [[nodiscard]] Control* atPath(std::string_view path) const;
  [[nodiscard]] Control* childAt(const Control* parent, std::string_view name) const {
    const auto found = byPlace_.find({parent, name});
    return found == byPlace_.end() ? nullptr : found->second;
  }
  /// Calls `use` for the controls whose path ends in `path`, until it returns false.
  void forEachThatFits(std::string_view path, const std::function<bool(Control&)>& use) const;
  [[nodiscard]] Result<Control*> parentFor(const ControlType& type,
                                           std::string_view parentName) const;
  [[nodiscard]] std::string freshName(const ControlType& type);
  Control& attach(const ControlType& type, std::string name, Control* parent);
  void forget(const Control& removed);
  /// Destroys controls without a call of a destructor for each level of nesting.
  static void destroy(std::vector<std::unique_ptr<Control>> controls);

  std::uint64_t revision_ = 0;
  std::vector<std::unique_ptr<Control>> windows_;
  std::unordered_map<std::string_view, std::vector<Control*>> byName_;
  std::unordered_map<Place, Control*, PlaceHash> byPlace_;
  std::unordered_map<std::string_view, int> numbers_;  ///< last number given to a name of each type
  Control* mainWindow_ = nullptr;
  Control* currentParent_ = nullptr;
  Control* currentMenu_ = nullptr;
  Control* currentCollection_ = nullptr;
};

}  // namespace host::ui
