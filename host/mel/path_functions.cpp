#include <algorithm>

#include "host/mel/builtin_support.h"

namespace host::mel {

namespace {

std::string_view fileNameOf(std::string_view path) {
  const std::size_t slash = path.find_last_of('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

/// basename(path, suffix): without folder, and without the suffix if it ends so.
Result<void> basenameFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(arguments,
                                          [&](const std::string& path, const std::string& suffix) {
                                            std::string_view name = fileNameOf(path);
                                            if (!suffix.empty() && name.ends_with(suffix))
                                              name.remove_suffix(suffix.size());
                                            result = Value(name);
                                          });
}

Result<void> basenameExFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& path) {
    const std::string_view name = fileNameOf(path);
    result = Value(name.substr(0, name.find_last_of('.')));
  });
}

Result<void> dirnameFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    result = Value(slash == std::string::npos ? std::string()
                                              : path.substr(0, std::max<std::size_t>(slash, 1)));
  });
}

Result<void> fileExtensionFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& path) {
    const std::string_view name = fileNameOf(path);
    const std::size_t dot = name.find_last_of('.');
    result = Value(dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1));
  });
}

Result<void> slashesFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](std::string& path) {
    std::ranges::replace(path, '\\', '/');
    result = Value(std::move(path));
  });
}

constexpr Builtin kPath[] = {
    {"basename", basenameFunction, 2, 2, Type::String},
    {"basenameEx", basenameExFunction, 1, 1, Type::String},
    {"dirname", dirnameFunction, 1, 1, Type::String},
    {"fileExtension", fileExtensionFunction, 1, 1, Type::String},
    {"fromNativePath", slashesFunction, 1, 1, Type::String},
    {"toNativePath", slashesFunction, 1, 1, Type::String},
};

}  // namespace

std::span<const Builtin> pathFunctions() {
  return kPath;
}

}  // namespace host::mel
