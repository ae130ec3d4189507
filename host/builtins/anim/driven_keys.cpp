// setDrivenKeyframe: keys of an attribute over the value of another one.
#include <algorithm>

#include "host/builtins/anim/key_args.h"
#include "host/cmd/plug_values.h"
#include "host/edits/keys.h"

namespace host::builtins {

namespace {

/// What drives a plug through a curve over a number: plugs, as scripts name them.
std::vector<std::string> driversOf(Context& context, const dg::Plug& plug) {
  const auto driver = edits::driverOf(context.document, plug);
  return driver ? std::vector{plugName(driver)} : std::vector<std::string>();
}

CommandResult query(Context& context, const ParsedArgs& args, const std::vector<dg::Plug>& plugs) {
  std::vector<std::string> names;
  for (const dg::Plug& plug : plugs) {
    for (std::string& name : driversOf(context, plug))
      if (std::ranges::find(names, name) == names.end()) {
        if (args.has("driven"))
          names.push_back(plugName(plug));
        else
          names.push_back(std::move(name));
      }
  }
  if (!args.has("driver") && !args.has("currentDriver") && !args.has("driven"))
    return fail("setDrivenKeyframe: say which flag to query: -driver, -currentDriver or -driven.");
  if (names.empty()) names.emplace_back("No drivers");
  return toValue(std::move(names));
}

CommandResult setDrivenKeyframe(Context& context, const ParsedArgs& args) {
  const auto plugs = keyedPlugs(context, args);
  if (!plugs) return failAt("setDrivenKeyframe", plugs.error());
  if (args.isQuery()) return query(context, args, *plugs);
  if (plugs->empty()) return fail("setDrivenKeyframe: name or select what is to be driven.");
  const std::string name = args.text("currentDriver");
  const scene::Units& units = context.document.units();
  dg::Plug driver;
  if (!name.empty()) {
    auto found = context.document.plug(name);
    if (!found) return failAt("setDrivenKeyframe", found.error());
    driver = *found;
    if (driver.isArray() || driver.isCompound() || !driver.attribute()->isNumeric())
      return fail("setDrivenKeyframe: '{}' is no number and drives nothing.", name);
  }
  edits::KeyOptions options;
  options.in = options.out = math::KeyTangent::Auto;
  for (const auto& [flag, slot] :
       {std::pair{"inTangentType", &options.in}, std::pair{"outTangentType", &options.out}}) {
    if (!args.has(flag)) continue;
    const auto tangent = tangentNamed(args.text(flag));
    if (!tangent) return failAt("setDrivenKeyframe", tangent.error());
    *slot = *tangent;
  }
  if (args.has("driverValue")) options.time = args.real("driverValue");
  int count = 0;
  for (const dg::Plug& plug : *plugs) {
    const dg::Plug own = driver ? driver : edits::driverOf(context.document, plug);
    if (!own)
      return fail("setDrivenKeyframe: nothing drives '{}' yet: name it with -currentDriver.",
                  plugName(plug));
    if (args.has("value"))
      options.value = args.real("value") * cmd::unitFactor(plug.attribute()->type, units);
    HOST_TRY(edits::setDrivenKey(context.document, plug, own, options));
    ++count;
  }
  return mel::Value(count);
}

}  // namespace

void registerDrivenKeys(CommandRegistry& registry) {
  define(registry, "setDrivenKeyframe",
         keySyntax()
             .flag("cd", "currentDriver", {ArgType::String})
             .flag("dr", "driver", {})
             .flag("dn", "driven", {})
             .flag("dv", "driverValue", {ArgType::Double})
             .flag("v", "value", {ArgType::Double})
             .flag("itt", "inTangentType", {ArgType::String})
             .flag("ott", "outTangentType", {ArgType::String})
             .queryable(),
         setDrivenKeyframe);
}

}  // namespace host::builtins
