#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/cmd/syntax.h"
#include "host/mel/value.h"
#include "host/scene/document.h"
#include "host/scene/selection.h"

namespace host::cmd {

/// A command's words, checked against its syntax and sorted into flags and arguments.
///
/// Flags are asked for by their short or long name. Values are converted: Bool 0/1, integers Int,
/// reals Float (distances cm, angles radians, times seconds), the rest String; Any stays as it
/// came.
class ParsedArgs {
 public:
  [[nodiscard]] Mode mode() const { return mode_; }
  [[nodiscard]] bool isCreate() const { return mode_ == kCreate; }
  [[nodiscard]] bool isEdit() const { return mode_ == kEdit; }
  [[nodiscard]] bool isQuery() const { return mode_ == kQuery; }

  [[nodiscard]] bool has(std::string_view flag) const { return findUse(flag, 0) != nullptr; }
  [[nodiscard]] int uses(std::string_view flag) const;
  /// The arguments of the flag's n-th use; empty when it was not given, or given without arguments.
  [[nodiscard]] std::span<const mel::Value> values(std::string_view flag, int use = 0) const;

  // One argument of a flag, or the fallback when it is not there.
  [[nodiscard]] bool boolean(std::string_view flag, bool fallback = false) const;
  [[nodiscard]] int integer(std::string_view flag, int fallback = 0, int argument = 0) const;
  [[nodiscard]] double real(std::string_view flag, double fallback = 0, int argument = 0) const;
  [[nodiscard]] std::string text(std::string_view flag, std::string fallback = {},
                                 int argument = 0) const;
  /// Argument `argument` of every use, in order of appearance.
  [[nodiscard]] std::vector<std::string> texts(std::string_view flag, int argument = 0) const;
  /// Three real arguments from `first` on.
  [[nodiscard]] math::Vec3 vec3(std::string_view flag, const math::Vec3& fallback = {},
                                int first = 0) const;

  /// All flags given, in order of appearance, but for the mode flags.
  struct FlagUse {
    const FlagSpec* spec = nullptr;
    std::size_t firstValue = 0, valueCount = 0;
  };
  [[nodiscard]] const std::vector<FlagUse>& flagUses() const { return uses_; }
  [[nodiscard]] std::span<const mel::Value> values(const FlagUse& use) const {
    return {values_.data() + use.firstValue, use.valueCount};
  }
  /// Query mode: the long name of the first flag given; empty when there is none.
  [[nodiscard]] std::string_view queried() const;

  /// The arguments after the flags as they came; arrays are not spread out.
  [[nodiscard]] const std::vector<mel::Value>& arguments() const { return arguments_; }
  /// The same as words, arrays spread out.
  [[nodiscard]] std::vector<std::string> objectNames() const;
  [[nodiscard]] bool hasObjects() const { return wordCount_ > 0; }
  [[nodiscard]] std::size_t wordCount() const { return wordCount_; }
  /// The first word, or nothing.
  [[nodiscard]] std::string firstObject() const;
  /// The objects named, else the active selection when the syntax says so.
  /// @return an error `No object matches name: x`
  [[nodiscard]] Result<scene::SelectionList> resolveObjects(scene::Document& document) const;

 private:
  friend class ArgParser;
  [[nodiscard]] const FlagUse* findUse(std::string_view flag, int use) const;
  [[nodiscard]] const mel::Value* value(std::string_view flag, int argument) const;

  const Syntax* syntax_ = nullptr;
  Mode mode_ = kCreate;
  std::vector<FlagUse> uses_;
  std::vector<mel::Value> values_;
  std::vector<mel::Value> arguments_;
  std::size_t wordCount_ = 0;
};

/// Whether a value is a flag word: a string that starts with '-' and a letter. Negative numbers are
/// not flags.
[[nodiscard]] bool isFlagWord(const mel::Value& value);

/// Sorts the words of one call. Arrays and vectors given to a flag or as objects count as their
/// elements.
/// @return an error that names the flag and what is wrong with it; the syntax must outlive the
/// result
[[nodiscard]] Result<ParsedArgs> parseArguments(const Syntax& syntax,
                                                std::span<const mel::Value> words,
                                                const scene::Units& units);

}  // namespace host::cmd
