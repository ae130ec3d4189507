#include "host/builtins/anim/expression_node.h"
#include "host/builtins/common/command.h"
#include "host/edits/time.h"

namespace host::builtins {

namespace {

CommandResult queryUnit(const scene::Units& units, const ParsedArgs& args) {
  const bool isLong = args.has("fullName");
  if (args.has("linear")) return mel::Value(scene::linearUnitName(units.linear, isLong));
  if (args.has("angle")) return mel::Value(scene::angularUnitName(units.angular, isLong));
  if (args.has("time")) return mel::Value(units.time);
  return fail("currentUnit: say which unit to query.");
}

CommandResult currentUnit(Context& context, const ParsedArgs& args) {
  scene::Units units = context.document.units();
  if (args.isQuery()) return queryUnit(units, args);
  if (args.has("linear") && !scene::parseLinearUnit(args.text("linear"), units.linear))
    return fail("currentUnit: '{}' is no unit of length.", args.text("linear"));
  if (args.has("angle") && !scene::parseAngularUnit(args.text("angle"), units.angular))
    return fail("currentUnit: '{}' is no unit of angle.", args.text("angle"));
  if (args.has("time")) {
    if (scene::framesPerSecondOf(args.text("time")) <= 0)
      return fail("currentUnit: '{}' is no unit of time.", args.text("time"));
    units.time = args.text("time");
  }
  context.document.setUnits(units);
  return mel::Value();
}

CommandResult currentTime(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const double rate = document.units().framesPerSecond();
  if (!args.isQuery() && args.wordCount() > 0) {
    const double frame = mel::leadingFloat(args.firstObject());
    HOST_TRY(edits::setCurrentTime(document, frame / rate));
    HOST_TRY(runTimedExpressions(document.graph()));
    context.session.scriptJobs().triggerEvent("timeChanged");
  }
  const auto seconds = edits::currentTime(document);
  if (!seconds) return failWith(seconds.error());
  return mel::Value(*seconds * rate);
}

}  // namespace

void registerUnitsAndTime(CommandRegistry& registry) {
  define(registry, "currentUnit",
         Syntax()
             .flag("l", "linear", {ArgType::String})
             .flag("a", "angle", {ArgType::String})
             .flag("t", "time", {ArgType::String})
             .flag("f", "fullName")
             .flag("ua", "updateAnimation", {ArgType::Bool})
             .queryable(),
         currentUnit);
  define(registry, "currentTime",
         Syntax().flag("u", "update", {ArgType::Bool}).editable().queryable().strings(0, 1),
         currentTime);
}

}  // namespace host::builtins
