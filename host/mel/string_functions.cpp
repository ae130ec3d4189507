#include <algorithm>
#include <cctype>

#include "host/mel/builtin_support.h"
#include "host/mel/operators.h"

namespace host::mel {

namespace {

char lower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}
char upper(char c) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}
bool isNameCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

Result<void> strcmpFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(arguments,
                                          [&](const std::string& a, const std::string& b) {
                                            const int order = a.compare(b);
                                            result = Value(order < 0 ? -1 : order > 0 ? 1 : 0);
                                          });
}

Result<void> tolowerFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](std::string& text) {
    std::ranges::transform(text, text.begin(), lower);
    result = Value(std::move(text));
  });
}
Result<void> toupperFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](std::string& text) {
    std::ranges::transform(text, text.begin(), upper);
    result = Value(std::move(text));
  });
}
Result<void> capitalizeFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](std::string& text) {
    if (!text.empty()) text[0] = upper(text[0]);
    result = Value(std::move(text));
  });
}

/// Characters first to last, counted from 1, both included; what lies outside of the text is left
/// out.
Result<void> substringFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::int32_t, std::int32_t>(
      arguments, [&](const std::string& text, std::int32_t first, std::int32_t last) {
        const auto size = static_cast<std::int64_t>(text.size());
        const std::int64_t begin = std::max<std::int64_t>(first, 1);
        const std::int64_t end = std::min<std::int64_t>(last, size);
        result = Value(begin > end ? std::string()
                                   : text.substr(static_cast<std::size_t>(begin - 1),
                                                 static_cast<std::size_t>(end - begin + 1)));
      });
}

Result<void> startStringFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::int32_t>(
      arguments, [&](const std::string& text, std::int32_t count) {
        result = Value(text.substr(0, static_cast<std::size_t>(std::max(count, 0))));
      });
}
Result<void> endStringFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::int32_t>(
      arguments, [&](const std::string& text, std::int32_t count) {
        const auto wanted = std::min(text.size(), static_cast<std::size_t>(std::max(count, 0)));
        result = Value(text.substr(text.size() - wanted));
      });
}
Result<void> startsWithFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(arguments,
                                          [&](const std::string& text, const std::string& start) {
                                            result = Value(text.starts_with(start));
                                          });
}
Result<void> endsWithFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(arguments,
                                          [&](const std::string& text, const std::string& end) {
                                            result = Value(text.ends_with(end));
                                          });
}

Result<void> stripFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    const std::size_t end = text.find_last_not_of(" \t\r\n");
    result =
        Value(begin == std::string::npos ? std::string() : text.substr(begin, end - begin + 1));
  });
}

Result<void> substituteAllFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string, std::string>(
      arguments,
      [&](const std::string& text, const std::string& from, const std::string& to) -> Result<void> {
        std::string replaced;
        std::size_t at = 0;
        while (!from.empty()) {
          const std::size_t found = text.find(from, at);
          if (found == std::string::npos) break;
          replaced.append(text, at, found - at).append(to);
          at = found + from.size();
          if (replaced.size() > kMaxStringBytes) return fail("The string is too long.");
        }
        result = Value(replaced.append(text, at));
        return {};
      });
}

Result<void> addPrefixFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(
      arguments,
      [&](const std::string& prefix, const std::string& text) { result = Value(prefix + text); });
}
Result<void> removePrefixFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(
      arguments, [&](const std::string& text, const std::string& prefix) {
        result = Value(text.starts_with(prefix) ? text.substr(prefix.size()) : text);
      });
}

/// The text as it would stand between quotes in a script.
Result<void> encodeFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& text) {
    std::string encoded;
    for (const char c : text) {
      if (c == '\n' || c == '\t' || c == '\r') {
        encoded += c == '\n' ? "\\n" : c == '\t' ? "\\t" : "\\r";
        continue;
      }
      if (c == '"' || c == '\\') encoded += '\\';
      encoded += c;
    }
    result = Value(std::move(encoded));
  });
}

Result<void> validNameFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& text) {
    const bool startsWell = !text.empty() && !std::isdigit(static_cast<unsigned char>(text[0]));
    result = Value(startsWell && std::ranges::all_of(text, isNameCharacter));
  });
}
Result<void> makeValidNameFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](std::string& text) {
    std::ranges::replace_if(
        text, [](char c) { return !isNameCharacter(c); }, '_');
    if (!text.empty() && std::isdigit(static_cast<unsigned char>(text[0]))) text[0] = '_';
    result = Value(std::move(text));
  });
}

/// `rotatePivot` as `Rotate Pivot`.
Result<void> interToUiFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& text) {
    std::string label;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const auto isUpper = [&](std::size_t at) {
        return std::isupper(static_cast<unsigned char>(text[at])) != 0;
      };
      if (i > 0 && isUpper(i) && !isUpper(i - 1)) label += ' ';
      label += i == 0 ? upper(text[i]) : text[i];
    }
    result = Value(std::move(label));
  });
}

constexpr Builtin kString[] = {
    {"strcmp", strcmpFunction, 2, 2, Type::Int},
    {"tolower", tolowerFunction, 1, 1, Type::String},
    {"toupper", toupperFunction, 1, 1, Type::String},
    {"capitalizeString", capitalizeFunction, 1, 1, Type::String},
    {"substring", substringFunction, 3, 3, Type::String},
    {"startString", startStringFunction, 2, 2, Type::String},
    {"endString", endStringFunction, 2, 2, Type::String},
    {"startsWith", startsWithFunction, 2, 2, Type::Int},
    {"endsWith", endsWithFunction, 2, 2, Type::Int},
    {"strip", stripFunction, 1, 1, Type::String},
    {"substituteAllString", substituteAllFunction, 3, 3, Type::String},
    {"stringAddPrefix", addPrefixFunction, 2, 2, Type::String},
    {"stringRemovePrefix", removePrefixFunction, 2, 2, Type::String},
    {"encodeString", encodeFunction, 1, 1, Type::String},
    {"isValidObjectName", validNameFunction, 1, 1, Type::Int},
    {"formValidObjectName", makeValidNameFunction, 1, 1, Type::String},
    {"interToUI", interToUiFunction, 1, 1, Type::String},
};

}  // namespace

std::span<const Builtin> stringFunctions() {
  return kString;
}

}  // namespace host::mel
