#include "host/ui/behaviours.h"
#include "host/ui/tree.h"

namespace host::ui {

namespace {

/// A control works when nothing above it is disabled; the error names what is.
Result<void> checkEnabled(const Control& control) {
  for (const Control* each = &control; each; each = each->parent)
    if (each->type->find("enable") && !each->isOn("enable"))
      return fail("'{}' is disabled.", each->name);
  return {};
}

}  // namespace

Result<std::vector<std::string>> Tree::userSets(Control& control, const Values& values) {
  if (!control.type->gesture)
    return fail("A {} like '{}' can't be changed by hand.", control.type->name, control.name);
  HOST_TRY(checkEnabled(control));
  auto scripts = control.type->gesture(*this, control, values);
  if (scripts) touch(control);
  return scripts;
}

Result<std::vector<std::string>> Tree::userDrags(Control& control, const Values& values) {
  if (!control.type->find("dragCommand"))
    return fail("A {} like '{}' can't be dragged.", control.type->name, control.name);
  HOST_TRY(userSets(control, values));
  return scriptsOf(control, {"dragCommand"},
                   control.type->find("numberOfFields")
                       ? getFields(*this, control, *control.type->find("value"))
                       : control.value("value"));
}

Result<std::vector<std::string>> Tree::userCloses(Control& window) {
  if (!window.isKind(Kind::Window)) return fail("'{}' is not a window.", window.name);
  std::vector<std::string> scripts = scriptsOf(window, {"closeCommand"});
  if (window.isOn("retain"))
    window.setValue("visible", {0});
  else
    HOST_TRY(remove(window));
  return scripts;
}

}  // namespace host::ui
