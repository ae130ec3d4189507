// hotkey and nameCommand: keys that run commands, wherever a hand is in a view.
#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {
namespace {

using workspace::Hotkeys;
using workspace::KeyStroke;
using workspace::workspaceOf;

Hotkeys& hotkeysOf(Context& context) {
  return workspaceOf(context.session).hotkeys;
}

/// The key is the argument, or what -keyShortcut says.
Result<KeyStroke> strokeOf(const ParsedArgs& args) {
  KeyStroke stroke;
  stroke.key = args.hasObjects() ? args.firstObject() : args.text("keyShortcut");
  if (stroke.key.empty()) return fail("hotkey: name the key, as in hotkey -k \"q\".");
  stroke.alt = args.has("altModifier");
  stroke.control = args.has("ctrlModifier");
  stroke.command = args.has("commandModifier");
  if (args.has("shiftModifier") && stroke.key.size() == 1 && stroke.key[0] >= 'a' &&
      stroke.key[0] <= 'z')
    stroke.key[0] = static_cast<char>(stroke.key[0] - 'a' + 'A');
  return stroke;
}

CommandResult queryHotkey(Context& context, const ParsedArgs& args) {
  const auto stroke = strokeOf(args);
  if (!stroke) return failWith(stroke.error());
  const Hotkeys& hotkeys = hotkeysOf(context);
  const auto found = hotkeys.bindings.find(*stroke);
  const Hotkeys::Binding bound =
      found == hotkeys.bindings.end() ? Hotkeys::Binding{} : found->second;
  if (args.has("name")) return mel::Value(bound.press);
  if (args.has("releaseName")) return mel::Value(bound.release);
  if (args.has("pressCommandRepeat")) return mel::Value(bound.pressRepeats ? 1 : 0);
  if (args.has("releaseCommandRepeat")) return mel::Value(bound.releaseRepeats ? 1 : 0);
  return fail("hotkey: say what to query: -name, -releaseName or whether they repeat.");
}

/// A name of nothing yet is taken: the command may be named later. An empty one unbinds.
CommandResult hotkey(Context& context, const ParsedArgs& args) {
  if (args.isQuery()) return queryHotkey(context, args);
  Hotkeys& hotkeys = hotkeysOf(context);
  if (args.has("factorySettings")) {
    hotkeys.bindFactory();
    return mel::Value();
  }
  const auto stroke = strokeOf(args);
  if (!stroke) return failWith(stroke.error());
  Hotkeys::Binding bound;
  if (const auto found = hotkeys.bindings.find(*stroke); found != hotkeys.bindings.end())
    bound = found->second;
  if (args.has("name")) bound.press = args.text("name");
  if (args.has("releaseName")) bound.release = args.text("releaseName");
  if (args.has("pressCommandRepeat")) bound.pressRepeats = args.boolean("pressCommandRepeat");
  if (args.has("releaseCommandRepeat")) bound.releaseRepeats = args.boolean("releaseCommandRepeat");
  if (bound.press.empty() && bound.release.empty())
    hotkeys.bindings.erase(*stroke);
  else
    hotkeys.bindings[*stroke] = std::move(bound);
  return mel::Value();
}

CommandResult nameCommand(Context& context, const ParsedArgs& args) {
  Hotkeys& hotkeys = hotkeysOf(context);
  const std::string name = args.firstObject();
  if (const std::string type = args.text("sourceType", "mel"); type != "mel")
    return fail("nameCommand: commands are MEL here; '{}' can't be run.", type);
  const auto found = hotkeys.commands.find(name);
  if (found != hotkeys.commands.end() && found->second.isFactory)
    return fail("nameCommand: '{}' is one of the host's own; give yours another name.", name);
  Hotkeys::Command& command = hotkeys.commands[name];
  if (args.has("annotation")) command.annotation = args.text("annotation");
  if (args.has("command")) command.line = args.text("command");
  return mel::Value(name);
}

}  // namespace

void registerHotkeys(CommandRegistry& registry) {
  Syntax keys;
  keys.flag("k", "keyShortcut", {ArgType::String})
      .queryArgs()
      .flag("n", "name", {ArgType::String})
      .flag("rn", "releaseName", {ArgType::String})
      .flag("alt", "altModifier")
      .flag("ctl", "ctrlModifier")
      .flag("cmd", "commandModifier")
      .flag("sht", "shiftModifier")
      .flag("pcr", "pressCommandRepeat", {ArgType::Bool})
      .flag("rcr", "releaseCommandRepeat", {ArgType::Bool})
      .flag("fs", "factorySettings")
      .queryable();
  defineQuery(registry, "hotkey", keys.strings(0, 1), hotkey);
  Syntax names;
  names.flag("ann", "annotation", {ArgType::String})
      .flag("c", "command", {ArgType::String})
      .flag("stp", "sourceType", {ArgType::String});
  defineQuery(registry, "nameCommand", names.strings(1, 1), nameCommand);
}

}  // namespace host::builtins
