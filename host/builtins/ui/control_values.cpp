#include "host/builtins/ui/control_values.h"

#include "host/workspace/workspace.h"

namespace host::builtins {

using workspace::workspaceOf;

ui::Atom toAtom(const mel::Value& value) {
  if (value.isInt()) return value.intValue();
  if (value.isFloat()) return value.floatValue();
  return value.toText().value_or("");
}

ui::Values toUiValues(std::span<const mel::Value> values) {
  ui::Values atoms;
  for (const mel::Value& value : values) atoms.push_back(toAtom(value));
  return atoms;
}

namespace {

mel::Value arrayOf(const ui::Attribute& attribute, const ui::Values& values) {
  const auto allAre = [&](char kind) {
    return !attribute.kinds.empty() &&
           attribute.kinds.find_first_not_of(kind) == std::string_view::npos;
  };
  const auto areInts = [&] {
    for (const ui::Atom& atom : values)
      if (!std::holds_alternative<int>(atom)) return false;
    return !values.empty();
  };
  if (allAre('f')) {
    mel::FloatArray reals;
    for (std::size_t i = 0; i < values.size(); ++i) reals.push_back(ui::asReal(values, i));
    return mel::Value(std::move(reals));
  }
  if (allAre('i') || allAre('b') || areInts()) {
    mel::IntArray integers;
    for (std::size_t i = 0; i < values.size(); ++i) integers.push_back(ui::asInt(values, i));
    return mel::Value(std::move(integers));
  }
  mel::StringArray texts;
  for (const ui::Atom& atom : values) texts.push_back(ui::asText(atom));
  return mel::Value(std::move(texts));
}

ArgType argType(char kind) {
  switch (kind) {
    case 'b':
      return ArgType::Bool;
    case 'i':
      return ArgType::Int;
    case 'f':
      return ArgType::Double;
    case 'c':
      return ArgType::Script;
    default:
      return ArgType::String;
  }
}

}  // namespace

mel::Value toScriptValue(const ui::Attribute& attribute, const ui::Values& values) {
  const bool isArray =
      attribute.kinds.size() > 1 || (attribute.traits & (ui::kList | ui::kKeyed)) != 0;
  if (isArray) return arrayOf(attribute, values);
  if (values.empty()) return mel::Value();
  if (const int* integer = std::get_if<int>(&values.front()))
    return attribute.kinds == "f" ? mel::Value(static_cast<double>(*integer))
                                  : mel::Value(*integer);
  if (const double* real = std::get_if<double>(&values.front())) return mel::Value(*real);
  return mel::Value(std::get<std::string>(values.front()));
}

Syntax controlSyntax(const ui::ControlType& type) {
  Syntax syntax;
  for (const ui::AttributeTable table : type.tables) {
    for (const ui::Attribute& attribute : table) {
      if (syntax.find(attribute.longName))
        continue;  // a kind's own flag stands before the common one
      std::vector<ArgType> args;
      for (const char kind : attribute.kinds) args.push_back(argType(kind));
      syntax.flag(std::string(attribute.shortName), std::string(attribute.longName),
                  std::move(args), attribute.modes);
      if (attribute.traits & (ui::kMulti | ui::kKeyed)) syntax.multiUse();
      if (attribute.traits & ui::kOptionalArgs) syntax.optionalArgs();
    }
  }
  syntax.flag("ex", "exists")
      .flag("dt", "defineTemplate", {ArgType::String})
      .flag("ut", "useTemplate", {ArgType::String});
  return syntax.editable().queryable().strings(0, 1);
}

Result<void> applyFlags(ui::Tree& tree, ui::Control& control, const ParsedArgs& args) {
  for (const bool isLatePass : {false, true}) {
    for (const ParsedArgs::FlagUse& use : args.flagUses()) {
      const ui::Attribute* attribute = control.type->find(use.spec->longName);
      if (!attribute || ((attribute->traits & ui::kLate) != 0) != isLatePass) continue;
      if (args.isCreate() && attribute->longName == "parent") continue;
      HOST_TRY(tree.set(control, *attribute, toUiValues(args.values(use))));
    }
  }
  return {};
}

void runCallbacks(Context& context, const std::vector<std::string>& scripts) {
  for (const std::string& script : scripts) context.session.executeLine(script);
}

void announceRemoved(Context& context, const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    context.session.scriptJobs().uiDeleted(path);
    const std::size_t bar = path.rfind('|');
    if (bar != std::string::npos) context.session.scriptJobs().uiDeleted(path.substr(bar + 1));
  }
}

Result<void> removeControl(Context& context, ui::Control& control) {
  auto gone = workspaceOf(context.session).controls.remove(control);
  if (!gone) return failWith(std::move(gone.error()));
  announceRemoved(context, *gone);
  return {};
}

}  // namespace host::builtins
