#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/mel/value.h"

namespace host::mel {

class Engine;

using BuiltinFunction = Result<void> (*)(Engine& engine, std::span<Value> arguments, Value& result);

/// A function of the language itself. Its arguments have been counted but not converted; arrays are
/// the caller's own.
struct Builtin {
  std::string_view name;
  BuiltinFunction function;
  int minArguments;
  int maxArguments;  ///< -1: any number
  Type result;       ///< None: depends on the arguments, or nothing
};

/// The function of that name, or null.
[[nodiscard]] const Builtin* findBuiltin(std::string_view name);
/// All names, unsorted.
[[nodiscard]] std::vector<std::string_view> builtinNames();

/// Functions of one float that the compiler calls directly; -1 if there is none of that name.
[[nodiscard]] int findFloatFunction(std::string_view name);
[[nodiscard]] double callFloatFunction(int index, double argument);

// One table a group, joined by findBuiltin. What reaches beyond the program's memory (files,
// folders, other processes, the environment) has sources and tables of its own, so that a program
// that links others in their place has a language that reaches nothing.
[[nodiscard]] std::span<const Builtin> stringFunctions();
[[nodiscard]] std::span<const Builtin> patternFunctions();
[[nodiscard]] std::span<const Builtin> arrayFunctions();
[[nodiscard]] std::span<const Builtin> typedArrayFunctions();
[[nodiscard]] std::span<const Builtin> mathFunctions();
[[nodiscard]] std::span<const Builtin> vectorFunctions();
[[nodiscard]] std::span<const Builtin> randomFunctions();
[[nodiscard]] std::span<const Builtin> fileFunctions();
[[nodiscard]] std::span<const Builtin> folderFunctions();
[[nodiscard]] std::span<const Builtin> pathFunctions();
[[nodiscard]] std::span<const Builtin> processFunctions();
[[nodiscard]] std::span<const Builtin> systemFunctions();

}  // namespace host::mel
