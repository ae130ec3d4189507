// Commands for any control: show, delete, set the parent, list, and ask what holds for all.
#include <algorithm>

#include "host/builtins/ui/control_values.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

using workspace::workspaceOf;

namespace {

ui::Tree& treeOf(Context& context) {
  return workspaceOf(context.session).controls;
}

CommandResult showWindow(Context& context, const ParsedArgs& args) {
  ui::Tree& tree = treeOf(context);
  ui::Control* window = tree.currentParent();
  while (window->parent) window = window->parent;
  if (args.hasObjects()) {
    auto found = tree.find(args.firstObject(), *ui::findControlType("window"));
    if (!found) return failAt("showWindow", found.error());
    window = *found;
  }
  window->setValue("visible", {1});
  window->setValue("iconify", {0});
  return mel::Value();
}

bool isWanted(const ui::Control& control, const ParsedArgs& args) {
  static constexpr struct {
    const char* flag;
    ui::Kind kind;
  } kKinds[] = {{"window", ui::Kind::Window},
                {"layout", ui::Kind::Layout},
                {"control", ui::Kind::Control},
                {"menu", ui::Kind::Menu},
                {"menuItem", ui::Kind::MenuItem},
                {"collection", ui::Kind::Collection},
                {"radioMenuItemCollection", ui::Kind::Collection}};
  bool isRestricted = false;
  for (const auto& entry : kKinds) {
    if (!args.has(entry.flag)) continue;
    isRestricted = true;
    if (control.isKind(entry.kind)) return true;
    if (entry.kind == ui::Kind::Control && control.isKind(ui::Kind::Layout)) return true;
  }
  return !isRestricted;
}

/// Takes a view away that a script has added; a gesture that began in it is given up.
Result<void> closeView(workspace::Workspace& work, const std::string& panel) {
  constexpr std::ptrdiff_t kOfLayout = 4;
  std::vector<workspace::View>& views = work.views.all();
  const auto found = std::ranges::find(views, panel, &workspace::View::panel);
  if (found - views.begin() < kOfLayout)
    return fail("deleteUI: the view '{}' is one of the layout's four, which stay.", panel);
  if (work.toolbox.lastEvent().panel == panel) work.toolbox.current()->abort();
  const std::string active = work.views.active().panel;
  std::erase_if(views, [&](const workspace::View& view) { return view.panel == panel; });
  work.views.setActive(active == panel ? views.front().panel : active);
  return {};
}

CommandResult deleteUi(Context& context, const ParsedArgs& args) {
  ui::Tree& tree = treeOf(context);
  for (const std::string& name : args.objectNames()) {
    if (args.has("toolContext")) {
      HOST_TRY(workspaceOf(context.session).toolbox.remove(name));
      continue;
    }
    if (args.has("panel") && workspaceOf(context.session).views.find(name)) {
      HOST_TRY(closeView(workspaceOf(context.session), name));
      continue;
    }
    auto control = tree.findIf(name, [&](const ui::Control& each) { return isWanted(each, args); });
    if (!control) return failAt("deleteUI", control.error());
    HOST_TRY(removeControl(context, **control));
  }
  return mel::Value();
}

CommandResult setMenuParent(ui::Tree& tree, const ParsedArgs& args) {
  const std::string name = args.firstObject();
  if (args.isQuery())
    return mel::Value(tree.currentMenu() ? ui::Tree::path(*tree.currentMenu()) : std::string());
  if (args.has("upLevel") || name == "..") {
    ui::Control* up = tree.currentMenu() ? tree.currentMenu()->parent : nullptr;
    const bool isMenu = up && (up->type->holdsMenuItems || up->isKind(ui::Kind::MenuItem));
    tree.setCurrentMenu(isMenu ? up : nullptr);
  } else {
    auto menu = tree.findIf(name, [](const ui::Control& each) {
      return each.type->holdsMenuItems || (each.isKind(ui::Kind::MenuItem) && each.isOn("subMenu"));
    });
    if (!menu) return failAt("setParent", menu.error());
    tree.setCurrentMenu(*menu);
  }
  return mel::Value(tree.currentMenu() ? ui::Tree::path(*tree.currentMenu()) : std::string());
}

CommandResult setParent(Context& context, const ParsedArgs& args) {
  ui::Tree& tree = treeOf(context);
  if (args.has("menu")) return setMenuParent(tree, args);
  if (args.isQuery()) return mel::Value(ui::Tree::path(*tree.currentParent()));
  const std::string name = args.firstObject();
  ui::Control* parent = tree.currentParent();
  if (args.has("topLevel")) {
    while (parent->parent) parent = parent->parent;
  } else if (args.has("upLevel") || name == "..") {
    if (parent->parent) parent = parent->parent;
  } else {
    auto found = tree.findIf(name, [](const ui::Control& each) {
      return each.isKind(ui::Kind::Window) || each.isKind(ui::Kind::Layout);
    });
    if (!found) return failAt("setParent", found.error());
    parent = *found;
  }
  tree.setCurrentParent(parent);
  return mel::Value(ui::Tree::path(*parent));
}

CommandResult lsUi(Context& context, const ParsedArgs& args) {
  const bool isLong = args.has("long");
  const std::vector<std::string> types = args.texts("type");
  const auto isListed = [&](const ui::Control& control) {
    if (args.has("windows") && control.isKind(ui::Kind::Window)) return true;
    if (args.has("menus") && control.isKind(ui::Kind::Menu)) return true;
    if (args.has("menuItems") && control.isKind(ui::Kind::MenuItem)) return true;
    if (args.has("controls") && control.isKind(ui::Kind::Control)) return true;
    if (args.has("controlLayouts") && control.isKind(ui::Kind::Layout)) return true;
    if (args.has("collection") && control.isKind(ui::Kind::Collection)) return true;
    return std::find(types.begin(), types.end(), control.type->name) != types.end();
  };
  std::vector<std::string> names;
  for (const auto& window : treeOf(context).windows())
    ui::Tree::visit(*window, [&](const ui::Control& control) {
      if (isListed(control)) names.push_back(isLong ? ui::Tree::path(control) : control.name);
    });
  return toValue(std::move(names));
}

/// `control`, `layout` and the like: what all of a kind have, whichever of them it is.
CommandResult anyControl(Context& context, const ParsedArgs& args, const char* command,
                         const std::function<bool(const ui::Control&)>& accepts) {
  ui::Tree& tree = treeOf(context);
  auto control = tree.findIf(args.firstObject(), accepts);
  if (args.has("exists")) return mel::Value(control.has_value());
  if (!control) return failAt(command, control.error());
  if (args.isEdit()) {
    HOST_TRY(applyFlags(tree, **control, args));
    return mel::Value(ui::Tree::path(**control));
  }
  if (!args.isQuery()) return fail("{}: use -edit or -query.", command);
  if (args.queried() == "type") return mel::Value(std::string((*control)->type->name));
  const ui::Attribute* attribute = (*control)->type->find(args.queried());
  if (!attribute)
    return fail("{}: '{}' has no flag '-{}'.", command, (*control)->name, args.queried());
  return toScriptValue(*attribute, tree.get(**control, *attribute));
}

void defineAny(CommandRegistry& registry, const char* name, std::vector<ui::AttributeTable> tables,
               std::function<bool(const ui::Control&)> accepts) {
  ui::ControlType any;
  any.tables = std::move(tables);
  defineQuery(registry, name, controlSyntax(any),
              [name, accepts = std::move(accepts)](Context& context, const ParsedArgs& args) {
                return anyControl(context, args, name, accepts);
              });
}

CommandResult objectTypeUi(Context& context, const ParsedArgs& args) {
  auto control = treeOf(context).find(args.firstObject());
  if (!control) return failAt("objectTypeUI", control.error());
  return mel::Value(std::string((*control)->type->name));
}

}  // namespace

void registerControlTree(CommandRegistry& registry) {
  defineQuery(registry, "showWindow", Syntax().strings(0, 1), showWindow);
  Syntax deletes;
  deletes.flag("wnd", "window")
      .flag("lay", "layout")
      .flag("ctl", "control")
      .flag("m", "menu")
      .flag("mi", "menuItem");
  deletes.flag("cl", "collection")
      .flag("rm", "radioMenuItemCollection")
      .flag("pnl", "panel")
      .flag("ed", "editor");
  deletes.flag("tc", "toolContext");
  defineQuery(registry, "deleteUI", deletes.strings(1), deleteUi);
  defineQuery(registry, "setParent",
              Syntax()
                  .flag("m", "menu")
                  .flag("top", "topLevel")
                  .flag("u", "upLevel")
                  .flag("dt", "defineTemplate", {ArgType::String})
                  .flag("ut", "useTemplate", {ArgType::String})
                  .queryable()
                  .strings(0, 1),
              setParent);
  Syntax lists;
  lists.flag("wnd", "windows").flag("m", "menus").flag("mi", "menuItems").flag("ctl", "controls");
  lists.flag("cl", "controlLayouts").flag("col", "collection").flag("l", "long");
  lists.flag("typ", "type", {ArgType::String}).multiUse();
  defineQuery(registry, "lsUI", lists, lsUi);
  defineQuery(registry, "objectTypeUI", Syntax().strings(1, 1), objectTypeUi);
  defineAny(registry, "control", {ui::commonAttributes()}, [](const ui::Control& each) {
    return each.isKind(ui::Kind::Control) || each.isKind(ui::Kind::Layout);
  });
  defineAny(registry, "layout", {ui::layoutAttributes(), ui::commonAttributes()},
            [](const ui::Control& each) { return each.isKind(ui::Kind::Layout); });
}

}  // namespace host::builtins
