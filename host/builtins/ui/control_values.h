#pragma once

#include <span>

#include "host/builtins/common/command.h"
#include "host/ui/tree.h"

namespace host::builtins {

[[nodiscard]] ui::Atom toAtom(const mel::Value& value);
[[nodiscard]] ui::Values toUiValues(std::span<const mel::Value> values);
/// What querying a flag gives a script: an array where the flag has several arguments or lists
/// things.
[[nodiscard]] mel::Value toScriptValue(const ui::Attribute& attribute, const ui::Values& values);

/// The flags of a kind of control, and those that every control command has.
[[nodiscard]] Syntax controlSyntax(const ui::ControlType& type);

/// Sets the flags given, values after what limits them.
Result<void> applyFlags(ui::Tree& tree, ui::Control& control, const ParsedArgs& args);

/// Runs what a person's action set off; an error ends that script and is shown, the others run.
void runCallbacks(Context& context, const std::vector<std::string>& scripts);

/// Removes a control and tells the jobs that wait for it.
Result<void> removeControl(Context& context, ui::Control& control);
/// Tells the jobs which controls went.
void announceRemoved(Context& context, const std::vector<std::string>& paths);

}  // namespace host::builtins
