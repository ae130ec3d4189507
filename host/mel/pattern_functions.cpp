#include <algorithm>

#include "host/mel/builtin_support.h"
#include "host/mel/regex.h"

namespace host::mel {

namespace {

Result<void> matchFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(
      arguments, [&](const std::string& pattern, const std::string& text) -> Result<void> {
        const Result<Regex> regex = Regex::compile(pattern);
        if (!regex) return failWith(regex.error());
        const auto found = regex->search(text);
        result =
            Value(found ? text.substr(found->first, found->second - found->first) : std::string());
        return {};
      });
}

/// Replaces the first match only.
Result<void> substituteFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string, std::string>(
      arguments,
      [&](const std::string& pattern, std::string& text,
          const std::string& replacement) -> Result<void> {
        const Result<Regex> regex = Regex::compile(pattern);
        if (!regex) return failWith(regex.error());
        if (const auto found = regex->search(text))
          text.replace(found->first, found->second - found->first, replacement);
        result = Value(std::move(text));
        return {};
      });
}

Result<void> gmatchFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(arguments,
                                          [&](const std::string& text, const std::string& pattern) {
                                            result = Value(globMatches(text, pattern));
                                          });
}

StringArray tokens(std::string_view text, std::string_view delimiters) {
  StringArray parts;
  std::size_t begin = 0;
  while ((begin = text.find_first_not_of(delimiters, begin)) != std::string_view::npos) {
    const std::size_t end = std::min(text.find_first_of(delimiters, begin), text.size());
    parts.emplace_back(text.substr(begin, end - begin));
    begin = end;
  }
  return parts;
}

constexpr std::string_view kBlanks = " \t\r\n\v\f";

/// tokenize(text, array) and tokenize(text, delimiters, array): fills the array, gives the number
/// of tokens.
Result<void> tokenizeFunction(Engine&, std::span<Value> arguments, Value& result) {
  Value& target = arguments.back();
  if (target.type() != Type::StringArray) return invalidCall("tokenize");
  const bool hasDelimiters = arguments.size() == 3;
  return unpack<std::string, std::string>(
      arguments.first(arguments.size() - 1),
      [&](const std::string& text, const std::string& delimiters) {
        StringArray parts = tokens(text, hasDelimiters ? delimiters : kBlanks);
        result = Value(static_cast<std::int32_t>(parts.size()));
        target.mutableStringArray() = std::move(parts);
      });
}

Result<void> numTokensFunction(Engine&, std::span<Value> arguments, Value& result) {
  const bool hasDelimiters = arguments.size() == 2;
  return unpack<std::string, std::string>(arguments, [&](const std::string& text,
                                                         const std::string& delimiters) {
    result =
        Value(static_cast<std::int32_t>(tokens(text, hasDelimiters ? delimiters : kBlanks).size()));
  });
}

Result<void> splitFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(
      arguments, [&](const std::string& text, const std::string& delimiters) {
        result = Value(tokens(text, delimiters));
      });
}

/// format(-stringArg a -stringArg b "^1s and ^2s"): `^^` is a caret, a number without argument
/// stays as it is.
Result<void> formatFunction(Engine&, std::span<Value> arguments, Value& result) {
  constexpr std::string_view kValued[] = {"s", "stringArg"};
  const Result<FlaggedArguments> given = splitFlags(arguments, kValued, {});
  if (!given) return failWith(given.error());
  if (given->plain.size() != 1) return invalidCall("format");
  return unpack<std::string>(given->plain, [&](const std::string& pattern) -> Result<void> {
    std::string text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
      if (pattern[i] == '^' && i + 1 < pattern.size() && pattern[i + 1] == '^') {
        text += pattern[++i];
        continue;
      }
      std::size_t end = i + 1;
      while (end < pattern.size() && std::isdigit(static_cast<unsigned char>(pattern[end]))) ++end;
      const bool isPlace =
          pattern[i] == '^' && end > i + 1 && end < pattern.size() && pattern[end] == 's';
      const auto number =
          isPlace ? static_cast<std::size_t>(leadingInt(std::string_view(pattern).substr(i + 1)))
                  : 0;
      if (number < 1 || number > given->flags.size()) {
        text += pattern[i];
        continue;
      }
      const Result<std::string> inserted = given->flags[number - 1].second.toText();
      if (!inserted) return failWith(inserted.error());
      text += *inserted;
      i = end;
    }
    result = Value(std::move(text));
    return {};
  });
}

constexpr Builtin kPattern[] = {
    {"match", matchFunction, 2, 2, Type::String},
    {"substitute", substituteFunction, 3, 3, Type::String},
    {"gmatch", gmatchFunction, 2, 2, Type::Int},
    {"tokenize", tokenizeFunction, 2, 3, Type::Int},
    {"tokenizeList", tokenizeFunction, 2, 2, Type::Int},
    {"numTokens", numTokensFunction, 1, 2, Type::Int},
    {"stringToStringArray", splitFunction, 2, 2, Type::StringArray},
    {"format", formatFunction, 1, -1, Type::String},
};

}  // namespace

std::span<const Builtin> patternFunctions() {
  return kPattern;
}

}  // namespace host::mel
