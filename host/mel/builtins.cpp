#include "host/mel/builtins.h"

#include <algorithm>
#include <unordered_map>

#include "host/mel/builtin_support.h"

namespace host::mel {

namespace {

using Table = std::unordered_map<std::string_view, const Builtin*>;

const Table& table() {
  static const Table kTable = [] {
    Table joined;
    for (const std::span<const Builtin> group :
         {stringFunctions(), patternFunctions(), arrayFunctions(), typedArrayFunctions(),
          mathFunctions(), vectorFunctions(), randomFunctions(), fileFunctions(), folderFunctions(),
          pathFunctions(), processFunctions(), systemFunctions()})
      for (const Builtin& builtin : group) joined.emplace(builtin.name, &builtin);
    return joined;
  }();
  return kTable;
}

}  // namespace

const Builtin* findBuiltin(std::string_view name) {
  const auto entry = table().find(name);
  return entry == table().end() ? nullptr : entry->second;
}

std::vector<std::string_view> builtinNames() {
  std::vector<std::string_view> names{"catch", "catchQuiet"};
  for (const auto& [name, builtin] : table()) names.push_back(name);
  return names;
}

const Value* FlaggedArguments::find(std::string_view longName, std::string_view shortName) const {
  for (const auto& [name, value] : flags)
    if (name == longName || name == shortName) return &value;
  return nullptr;
}

Result<FlaggedArguments> splitFlags(std::span<const Value> arguments,
                                    std::span<const std::string_view> valued,
                                    std::span<const std::string_view> bare) {
  FlaggedArguments result;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Value& argument = arguments[i];
    const bool isFlag = argument.isString() && argument.string().size() > 1 &&
                        argument.string()[0] == '-' &&
                        std::isalpha(static_cast<unsigned char>(argument.string()[1]));
    if (!isFlag) {
      result.plain.push_back(argument);
      continue;
    }
    const std::string name = argument.string().substr(1);
    if (std::ranges::find(bare, name) != bare.end()) {
      result.flags.emplace_back(name, Value(1));
    } else if (std::ranges::find(valued, name) == valued.end()) {
      // Text that merely begins with a dash, as in `error "-1 is too small"`.
      if (name.find(' ') == std::string::npos && arguments.size() > 1)
        return fail(ErrorKind::BadArgument, "Invalid flag '-{}'.", name);
      result.plain.push_back(argument);
    } else if (i + 1 >= arguments.size()) {
      return fail(ErrorKind::BadArgument, "Flag '-{}' must be passed a value.", name);
    } else {
      result.flags.emplace_back(name, arguments[++i]);
    }
  }
  return result;
}

}  // namespace host::mel
