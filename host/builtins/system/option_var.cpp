#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

mel::Value toMel(const cmd::OptionVars::Value& value) {
  return std::visit([](const auto& held) { return mel::Value(held); }, value);
}

CommandResult queryVar(const cmd::OptionVars& vars, const ParsedArgs& args) {
  const std::string name = args.text("query");
  const cmd::OptionVars::Value* value = vars.find(name);
  return value ? toMel(*value) : mel::Value(0);
}

CommandResult optionVar(Context& context, const ParsedArgs& args) {
  cmd::OptionVars& vars = context.session.optionVars();
  if (args.has("query")) return queryVar(vars, args);
  if (args.has("list")) return toValue(vars.names());
  if (args.has("exists")) return mel::Value(vars.find(args.text("exists")) != nullptr);
  if (args.has("arraySize")) {
    const cmd::OptionVars::Value* value = vars.find(args.text("arraySize"));
    return mel::Value(value ? static_cast<std::int32_t>(toMel(*value).size()) : 0);
  }
  for (const cmd::ParsedArgs::FlagUse& use : args.flagUses()) {
    const std::string& flag = use.spec->longName;
    const std::span<const mel::Value> values = args.values(use);
    const std::string name = values.empty() ? std::string{} : values[0].toText().value_or("");
    if (flag == "intValue") vars.set(name, values[1].intValue());
    if (flag == "floatValue") vars.set(name, values[1].floatValue());
    if (flag == "stringValue") vars.set(name, values[1].string());
    if (flag == "intValueAppend") vars.append(name, values[1].intValue());
    if (flag == "floatValueAppend") vars.append(name, values[1].floatValue());
    if (flag == "stringValueAppend") vars.append(name, values[1].string());
    if (flag == "intArray") vars.set(name, std::vector<int>{});
    if (flag == "floatArray") vars.set(name, std::vector<double>{});
    if (flag == "stringArray") vars.set(name, std::vector<std::string>{});
    if (flag == "clearArray") vars.set(name, std::vector<int>{});
    if (flag == "removeFromArray") HOST_TRY(vars.removeElement(name, values[1].intValue()));
    if (flag == "remove") vars.remove(name);
  }
  return mel::Value();
}

}  // namespace

void registerOptionVar(CommandRegistry& registry) {
  // Here -query is a flag with a value of its own, not a mode.
  defineQuery(registry, "optionVar",
              Syntax()
                  .flag("q", "query", {ArgType::String})
                  .flag("iv", "intValue", {ArgType::String, ArgType::Int})
                  .multiUse()
                  .flag("fv", "floatValue", {ArgType::String, ArgType::Double})
                  .multiUse()
                  .flag("sv", "stringValue", {ArgType::String, ArgType::String})
                  .multiUse()
                  .flag("iva", "intValueAppend", {ArgType::String, ArgType::Int})
                  .multiUse()
                  .flag("fva", "floatValueAppend", {ArgType::String, ArgType::Double})
                  .multiUse()
                  .flag("sva", "stringValueAppend", {ArgType::String, ArgType::String})
                  .multiUse()
                  .flag("ia", "intArray", {ArgType::String})
                  .multiUse()
                  .flag("fa", "floatArray", {ArgType::String})
                  .multiUse()
                  .flag("sa", "stringArray", {ArgType::String})
                  .multiUse()
                  .flag("ca", "clearArray", {ArgType::String})
                  .multiUse()
                  .flag("rfa", "removeFromArray", {ArgType::String, ArgType::Int})
                  .multiUse()
                  .flag("rm", "remove", {ArgType::String})
                  .multiUse()
                  .flag("ex", "exists", {ArgType::String})
                  .flag("as", "arraySize", {ArgType::String})
                  .flag("l", "list"),
              optionVar);
}

}  // namespace host::builtins
