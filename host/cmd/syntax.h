#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"

namespace host::cmd {

/// What a flag's argument may be. Distances, angles and times are given in the units of the scene
/// and arrive in a ParsedArgs as cm, radians and seconds.
enum class ArgType : std::uint8_t {
  Bool,
  Int,
  Unsigned,
  Double,
  Distance,
  Angle,
  Time,
  String,
  Name,
  Script,
  Any
};

/// The word for it in messages and help texts: "on|off", "Int", "Length", ...
[[nodiscard]] std::string_view argTypeHelpWord(ArgType type);

enum Mode : std::uint8_t { kCreate = 1, kEdit = 2, kQuery = 4, kAnyMode = 7 };

/// Whether a flag takes its arguments in query mode as well.
enum class QueryArgs : std::uint8_t { None, Optional, Full };

struct FlagSpec {
  std::string shortName, longName;  ///< without '-'
  std::vector<ArgType> args;
  std::uint8_t modes = kAnyMode;
  bool isMultiUse = false;
  QueryArgs queryArgs = QueryArgs::None;
  /// Arguments may be left out, from the last to the first; then `ParsedArgs` has fewer of them.
  bool hasOptionalArgs = false;
  std::string help;  ///< a phrase for the help text; may be empty

  [[nodiscard]] bool isNamed(std::string_view name) const {
    return name == shortName || name == longName;
  }
};

/// What stands after the flags.
struct ObjectsSpec {
  enum class Kind : std::uint8_t {
    None,     ///< nothing may stand there
    Strings,  ///< words and numbers, taken as they are
    List,     ///< names to be resolved: objects, components, plugs, wildcards
  };
  Kind kind = Kind::None;
  int minimum = 0;
  int maximum = -1;  ///< -1: any number
  bool useSelectionAsDefault = false;
};

/// The flags and arguments of a command, built once by chained calls:
///
///   Syntax().flag("n", "name", {ArgType::String}).flag("ch", "constructionHistory",
///   {ArgType::Bool}, kAnyMode)
///           .editable().queryable().objects(0, 1)
class Syntax {
 public:
  Syntax& flag(std::string shortName, std::string longName, std::vector<ArgType> args = {},
               std::uint8_t modes = kAnyMode);
  /// Adjust the flag added last.
  Syntax& multiUse();
  Syntax& queryArgs(QueryArgs how = QueryArgs::Full);
  Syntax& optionalArgs();
  Syntax& help(std::string phrase);

  /// What the command does, a sentence for the help text.
  Syntax& about(std::string sentence);
  /// A phrase for the flag of that long name, unless it has one.
  void describeFlag(std::string_view longName, const std::string& phrase);

  /// Lets `-e -edit` and `-q -query` stand; a flag of its own of that name goes before.
  Syntax& editable();
  Syntax& queryable();

  Syntax& strings(int minimum = 0, int maximum = -1);
  /// Names; counted as words, before wildcards are resolved. `maximum` -1: any number.
  Syntax& objects(int minimum = 0, int maximum = -1, bool useSelectionAsDefault = false);

  [[nodiscard]] const std::vector<FlagSpec>& flags() const { return flags_; }
  [[nodiscard]] const FlagSpec* find(
      std::string_view name) const;  ///< exact short or long name, without '-'
  [[nodiscard]] bool isEditable() const { return isEditable_; }
  [[nodiscard]] bool isQueryable() const { return isQueryable_; }
  [[nodiscard]] const ObjectsSpec& objectsSpec() const { return objects_; }
  [[nodiscard]] const std::string& about() const { return about_; }

  /// The help text: "Synopsis: name [flags] [String...]", then a line a flag.
  [[nodiscard]] std::string synopsis(std::string_view commandName) const;

 private:
  std::vector<FlagSpec> flags_;
  ObjectsSpec objects_;
  std::string about_;
  bool isEditable_ = false, isQueryable_ = false;
};

}  // namespace host::cmd
