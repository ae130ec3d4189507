// One command for each kind of control, made from the kind's table.
#include "host/builtins/ui/control_values.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

using workspace::workspaceOf;

namespace {

bool isRadioButton(const ui::ControlType& type) {
  return type.name == "radioButton" || type.name == "iconTextRadioButton";
}

/// A radio button joins the collection that was made last, unless it was told another one.
Result<void> joinDefaultCollection(ui::Tree& tree, ui::Control& control, const ParsedArgs& args) {
  if (!isRadioButton(*control.type) || args.has("collection")) return {};
  control.collection = tree.currentCollection(false);
  tree.touch(control);
  if (!control.collection)
    return fail(ErrorKind::NotFound,
                "'{}' is in no collection: make a radioCollection before it, or give -collection.",
                control.name);
  return {};
}

void moveAfter(ui::Control& item, const std::string& sibling) {
  ui::Control* const parent = item.parent;
  auto& items = parent->children;
  std::unique_ptr<ui::Control> own = std::move(items.back());
  items.pop_back();
  auto place = items.begin();
  for (auto it = items.begin(); !sibling.empty() && it != items.end(); ++it)
    if ((*it)->name == sibling || ui::Tree::path(**it) == sibling) place = it + 1;
  items.insert(place, std::move(own));
  item.tree->touch(*parent, ui::ControlChange::ChildrenChanged);
}

CommandResult create(Context& context, const ui::ControlType& type, const ParsedArgs& args) {
  ui::Tree& tree = workspaceOf(context.session).controls;
  if (type.kind == ui::Kind::Window && args.has("exists"))
    return mel::Value(tree.find(args.firstObject(), type).has_value());
  ui::Control* const parentBefore = tree.currentParent();
  ui::Control* const menuBefore = tree.currentMenu();
  const std::string parent = type.kind == ui::Kind::Window ? std::string() : args.text("parent");
  auto made = tree.create(type, args.firstObject(), parent);
  if (!made) return failWith(std::move(made.error()));
  ui::Control& control = **made;
  auto done = joinDefaultCollection(tree, control, args);
  if (done) done = applyFlags(tree, control, args);
  if (!done) {
    static_cast<void>(tree.remove(control));
    tree.setCurrentParent(parentBefore);
    tree.setCurrentMenu(menuBefore);
    return failWith(std::move(done.error()));
  }
  if (args.has("insertAfter") && type.find("insertAfter"))
    moveAfter(control, args.text("insertAfter"));
  return mel::Value(ui::Tree::path(control));
}

CommandResult run(Context& context, const ui::ControlType& type, const ParsedArgs& args) {
  ui::Tree& tree = workspaceOf(context.session).controls;
  if (args.has("exists") && !args.isEdit())
    return mel::Value(tree.find(args.firstObject(), type).has_value());
  if (args.isCreate()) return create(context, type, args);
  const std::string name = args.hasObjects() ? args.firstObject() : std::string();
  if (name.empty())
    return fail("{}: say which one to {}.", type.name, args.isEdit() ? "edit" : "query");
  auto control = tree.find(name, type);
  if (!control) return failAt(type.name, control.error());
  if (args.isEdit()) {
    auto done = applyFlags(tree, **control, args);
    if (!done) return failAt(type.name, done.error());
    return mel::Value(ui::Tree::path(**control));
  }
  const ui::Attribute* attribute = type.find(args.queried());
  if (!attribute) return fail("{}: say which flag to query.", type.name);
  return toScriptValue(*attribute, tree.get(**control, *attribute));
}

}  // namespace

void registerControlCommands(CommandRegistry& registry) {
  for (const ui::ControlType& type : ui::controlTypes())
    defineQuery(
        registry, std::string(type.name), controlSyntax(type),
        [&type](Context& context, const ParsedArgs& args) { return run(context, type, args); });
}

}  // namespace host::builtins
