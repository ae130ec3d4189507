// setKeyframe and cutKey.
#include "host/builtins/anim/key_args.h"
#include "host/cmd/plug_values.h"

namespace host::builtins {

namespace {

CommandResult setKeyframe(Context& context, const ParsedArgs& args) {
  const auto plugs = keyedPlugs(context, args);
  if (!plugs) return failWith(plugs.error());
  if (args.has("float"))
    return fail("setKeyframe: -float is of keys over another attribute: use setDrivenKeyframe.");
  const scene::Units& units = context.document.units();
  edits::KeyOptions options;
  options.inserts = args.has("insert");
  options.onlyAnimated = args.has("animated") && args.boolean("animated", true);
  for (const auto& [flag, slot] :
       {std::pair{"inTangentType", &options.in}, std::pair{"outTangentType", &options.out}}) {
    if (!args.has(flag)) continue;
    const auto tangent = tangentNamed(args.text(flag));
    if (!tangent) return fail("setKeyframe: {}", tangent.error().message);
    *slot = *tangent;
  }
  const auto range = keyRange(context, args);
  if (!range) return fail("setKeyframe: {}", range.error().message);
  std::vector<std::optional<double>> times;
  for (const edits::KeyRange::Times& each : range->times) {
    if (each.first != each.last) return fail("setKeyframe: -time is one time, not a range.");
    times.emplace_back(each.first);
  }
  if (times.empty()) times.emplace_back();
  int count = 0;
  std::string refused;
  for (const dg::Plug& plug : *plugs) {
    for (const std::optional<double>& time : times) {
      options.time = time;
      if (args.has("value"))
        options.value = args.real("value") * cmd::unitFactor(plug.attribute()->type, units);
      const auto done = edits::setKey(context.document, plug, options);
      if (!done) {
        // What is driven by something else is passed over when an object is keyed as a whole.
        if (plugs->size() == 1) return fail("setKeyframe: {}", done.error().message);
        refused = done.error().message;
        continue;
      }
      count += *done ? 1 : 0;
    }
  }
  if (count == 0 && !refused.empty()) return fail("setKeyframe: {}", refused);
  return mel::Value(count);
}

CommandResult cutKey(Context& context, const ParsedArgs& args) {
  const auto curves = keyedCurves(context, args);
  if (!curves) return failWith(curves.error());
  const auto range = keyRange(context, args);
  if (!range) return fail("cutKey: {}", range.error().message);
  int count = 0;
  for (dg::Node* curve : *curves) {
    const auto gone = edits::cutKeys(context.document, *curve, *range);
    if (!gone) return fail("cutKey: {}", gone.error().message);
    count += *gone > 0 ? 1 : 0;
  }
  return mel::Value(count);
}

}  // namespace

void registerSetKeyframe(CommandRegistry& registry) {
  define(registry, "setKeyframe",
         keySyntax()
             .flag("v", "value", {ArgType::Double})
             .flag("i", "insert")
             .flag("an", "animated", {ArgType::Bool})
             .optionalArgs()
             .flag("itt", "inTangentType", {ArgType::String})
             .flag("ott", "outTangentType", {ArgType::String})
             .flag("bd", "breakdown", {ArgType::Bool})
             .optionalArgs()
             .flag("rk", "respectKeyable", {ArgType::Bool})
             .optionalArgs()
             .flag("dd", "dirtyDG", {ArgType::Bool})
             .flag("mr", "minimizeRotation", {ArgType::Bool})
             .optionalArgs()
             .flag("id", "identity", {ArgType::Bool})
             .optionalArgs(),
         setKeyframe);
  define(registry, "cutKey",
         keySyntax()
             .flag("cl", "clear")
             .flag("o", "option", {ArgType::String})
             .flag("an", "animation", {ArgType::String})
             .flag("sl", "selectKey"),
         cutKey);
}

}  // namespace host::builtins
