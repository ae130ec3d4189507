#include <chrono>

#include "host/mel/builtin_support.h"

namespace host::mel {

namespace {

Result<void> printFunction(Engine& engine, std::span<Value> arguments, Value&) {
  engine.host().message(MessageKind::Print, arguments[0].printText());
  return {};
}

/// `-n/-noContext` of warning and `-sl/-showLineNumber` of both change how the place is shown.
Result<std::string> messageText(Engine& engine, std::span<Value> arguments, std::string_view name,
                                bool wantsPlace) {
  constexpr std::string_view kValued[] = {"sl", "showLineNumber"};
  constexpr std::string_view kBare[] = {"n", "noContext"};
  const Result<FlaggedArguments> given = splitFlags(arguments, kValued, kBare);
  if (!given) return failWith(given.error());
  if (given->plain.size() != 1) return invalidCall(name);
  const Result<std::string> text = given->plain[0].toText();
  if (!text) return failWith(text.error());
  if (const Value* shows = given->find("showLineNumber", "sl"))
    wantsPlace = shows->toBool().value_or(false);
  return wantsPlace ? engine.machine().currentPlace() + *text : *text;
}

Result<void> errorFunction(Engine& engine, std::span<Value> arguments, Value&) {
  const Result<std::string> text = messageText(engine, arguments, "error", false);
  return tl::unexpected<Error>(text ? Error{*text} : text.error());
}

Result<void> warningFunction(Engine& engine, std::span<Value> arguments, Value&) {
  const Result<std::string> text = messageText(engine, arguments, "warning", false);
  if (!text) return failWith(text.error());
  engine.host().message(MessageKind::Warning, *text);
  return {};
}

/// trace(-where text): prints a line, with `-where` the place as well.
Result<void> traceFunction(Engine& engine, std::span<Value> arguments, Value&) {
  constexpr std::string_view kBare[] = {"w", "where"};
  const Result<FlaggedArguments> given = splitFlags(arguments, {}, kBare);
  if (!given) return failWith(given.error());
  if (given->plain.size() != 1) return invalidCall("trace");
  const std::string place =
      given->find("where", "w") ? engine.machine().currentPlace() : std::string();
  engine.host().message(MessageKind::Print, place + given->plain[0].printText() + "\n");
  return {};
}

Result<std::string> joinedWords(std::span<const Value> words) {
  std::string text;
  for (const Value& word : words) {
    const Result<std::string> part = word.toText();
    if (!part) return failWith(part.error());
    if (!text.empty()) text += ' ';
    text += *part;
  }
  return text;
}

Result<void> evalText(Engine& engine, const std::string& text, Value& result) {
  Result<Value> value = engine.execute(text, "");
  if (!value) return failWith(std::move(value).error());
  result = std::move(*value);
  return {};
}

Result<void> evalFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const Result<std::string> text = joinedWords(arguments);
  if (!text) return failWith(text.error());
  return evalText(engine, *text, result);
}

Result<void> evalEchoFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const Result<std::string> text = joinedWords(arguments);
  if (!text) return failWith(text.error());
  engine.host().message(MessageKind::Print, *text + "\n");
  return evalText(engine, *text, result);
}

Result<void> evalDeferredFunction(Engine& engine, std::span<Value> arguments, Value&) {
  constexpr std::string_view kBare[] = {"lp",  "lowestPriority", "en", "evaluateNext",
                                        "low", "lowPriority"};
  constexpr std::string_view kValued[] = {"list", "ls"};
  const Result<FlaggedArguments> given = splitFlags(arguments, kValued, kBare);
  if (!given) return failWith(given.error());
  Result<std::string> text = joinedWords(given->plain);
  if (!text) return failWith(std::move(text).error());
  const bool isLow = given->find("lowestPriority", "lp") || given->find("lowPriority", "low");
  engine.host().defer(std::move(*text), isLow);
  return {};
}

Result<void> whatIsFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments,
                             [&](const std::string& name) { result = Value(engine.whatIs(name)); });
}
Result<void> existsFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments,
                             [&](const std::string& name) { result = Value(engine.exists(name)); });
}
Result<void> envFunction(Engine& engine, std::span<Value>, Value& result) {
  result = Value(engine.globalNames());
  return {};
}

double seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
/// timerX() gives a time, timerX(-startTime t) the seconds since then.
Result<void> timerFunction(Engine&, std::span<Value> arguments, Value& result) {
  constexpr std::string_view kValued[] = {"st", "startTime"};
  const Result<FlaggedArguments> given = splitFlags(arguments, kValued, {});
  if (!given) return failWith(given.error());
  if (!given->plain.empty()) return invalidCall("timerX");
  const Value* start = given->find("startTime", "st");
  const Result<double> since = start ? start->toFloat() : 0.0;
  if (!since) return failWith(since.error());
  result = Value(seconds() - *since);
  return {};
}

constexpr Builtin kSystem[] = {
    {"print", printFunction, 1, 1, Type::None},
    {"error", errorFunction, 1, 3, Type::None},
    {"warning", warningFunction, 1, 4, Type::None},
    {"trace", traceFunction, 1, 2, Type::None},
    {"eval", evalFunction, 1, -1, Type::None},
    {"evalEcho", evalEchoFunction, 1, -1, Type::None},
    {"evalDeferred", evalDeferredFunction, 1, -1, Type::None},
    {"whatIs", whatIsFunction, 1, 1, Type::String},
    {"exists", existsFunction, 1, 1, Type::Int},
    {"env", envFunction, 0, 0, Type::StringArray},
    {"timerX", timerFunction, 0, 2, Type::Float},
};

}  // namespace

std::span<const Builtin> systemFunctions() {
  return kSystem;
}

}  // namespace host::mel
