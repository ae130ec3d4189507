#include "host/cmd/parsed_args.h"

#include <cctype>
#include <charconv>

namespace host::cmd {

const ParsedArgs::FlagUse* ParsedArgs::findUse(std::string_view flag, int use) const {
  for (const FlagUse& entry : uses_)
    if (entry.spec->isNamed(flag) && use-- == 0) return &entry;
  return nullptr;
}

const mel::Value* ParsedArgs::value(std::string_view flag, int argument) const {
  const FlagUse* use = findUse(flag, 0);
  if (!use || static_cast<std::size_t>(argument) >= use->valueCount) return nullptr;
  return &values_[use->firstValue + static_cast<std::size_t>(argument)];
}

int ParsedArgs::uses(std::string_view flag) const {
  int count = 0;
  for (const FlagUse& entry : uses_) count += entry.spec->isNamed(flag) ? 1 : 0;
  return count;
}

std::span<const mel::Value> ParsedArgs::values(std::string_view flag, int use) const {
  const FlagUse* entry = findUse(flag, use);
  return entry ? values(*entry) : std::span<const mel::Value>{};
}

bool ParsedArgs::boolean(std::string_view flag, bool fallback) const {
  const mel::Value* found = value(flag, 0);
  return found ? found->toBool().value_or(fallback) : fallback;
}

int ParsedArgs::integer(std::string_view flag, int fallback, int argument) const {
  const mel::Value* found = value(flag, argument);
  return found ? found->toInt().value_or(fallback) : fallback;
}

double ParsedArgs::real(std::string_view flag, double fallback, int argument) const {
  const mel::Value* found = value(flag, argument);
  return found ? found->toFloat().value_or(fallback) : fallback;
}

std::string ParsedArgs::text(std::string_view flag, std::string fallback, int argument) const {
  const mel::Value* found = value(flag, argument);
  return found ? found->toText().value_or(fallback) : fallback;
}

std::vector<std::string> ParsedArgs::texts(std::string_view flag, int argument) const {
  std::vector<std::string> result;
  for (const FlagUse& use : uses_) {
    if (!use.spec->isNamed(flag) || static_cast<std::size_t>(argument) >= use.valueCount) continue;
    result.push_back(
        values_[use.firstValue + static_cast<std::size_t>(argument)].toText().value_or(""));
  }
  return result;
}

math::Vec3 ParsedArgs::vec3(std::string_view flag, const math::Vec3& fallback, int first) const {
  return {real(flag, fallback.x, first), real(flag, fallback.y, first + 1),
          real(flag, fallback.z, first + 2)};
}

std::string_view ParsedArgs::queried() const {
  return uses_.empty() ? std::string_view{} : std::string_view(uses_.front().spec->longName);
}

std::vector<std::string> ParsedArgs::objectNames() const {
  std::vector<std::string> names;
  names.reserve(wordCount_);
  for (const mel::Value& argument : arguments_) {
    if (argument.isString()) {
      names.push_back(argument.string());
      continue;
    }
    for (std::string& text : argument.toTexts()) names.push_back(std::move(text));
  }
  return names;
}

std::string ParsedArgs::firstObject() const {
  for (const mel::Value& argument : arguments_) {
    if (argument.isString()) return argument.string();
    mel::StringArray texts = argument.toTexts();
    if (!texts.empty()) return texts.front();
  }
  return {};
}

Result<scene::SelectionList> ParsedArgs::resolveObjects(scene::Document& document) const {
  if (wordCount_ == 0) {
    if (syntax_->objectsSpec().useSelectionAsDefault) return document.selection();
    return scene::SelectionList{};
  }
  if (arguments_.size() == 1 && arguments_.front().type() == mel::Type::StringArray)
    return document.resolveAll(arguments_.front().stringArray());
  return document.resolveAll(objectNames());
}

bool isFlagWord(const mel::Value& value) {
  if (!value.isString()) return false;
  const std::string& text = value.string();
  return text.size() >= 2 && text[0] == '-' &&
         (std::isalpha(static_cast<unsigned char>(text[1])) || text[1] == '_');
}

/// One pass over the words; arrays are walked element by element only where a flag asks for
/// arguments.
class ArgParser {
 public:
  ArgParser(const Syntax& syntax, std::span<const mel::Value> words, const scene::Units& units)
      : syntax_(syntax), words_(words), units_(units) {
    parsed_.syntax_ = &syntax;
  }

  Result<ParsedArgs> run() {
    HOST_TRY(findMode());
    while (word_ < words_.size()) {
      const mel::Value& word = words_[word_];
      if (isFlagWord(word)) {
        HOST_TRY(takeFlag(word.string()));
      } else {
        if (word.type() == mel::Type::None) return fail("An argument has no value.");
        parsed_.wordCount_ += mel::isArray(word.type()) ? word.size() : 1;
        parsed_.arguments_.push_back(word);
        ++word_;
      }
    }
    HOST_TRY(checkObjects());
    return std::move(parsed_);
  }

 private:
  [[nodiscard]] bool isModeFlag(std::string_view name, Mode mode) const {
    if (mode == kQuery)
      return syntax_.isQueryable() && (name == "q" || name == "query") && !syntax_.find(name);
    return syntax_.isEditable() && (name == "e" || name == "edit") && !syntax_.find(name);
  }

  Result<void> findMode() {
    if (!syntax_.isEditable() && !syntax_.isQueryable()) return {};
    for (const mel::Value& word : words_) {
      if (!isFlagWord(word)) continue;
      const std::string_view name = std::string_view(word.string()).substr(1);
      const Mode mode = isModeFlag(name, kQuery)  ? kQuery
                        : isModeFlag(name, kEdit) ? kEdit
                                                  : kCreate;
      if (mode == kCreate) continue;
      if (parsed_.mode_ != kCreate && parsed_.mode_ != mode)
        return fail("The edit and query flags exclude each other.");
      parsed_.mode_ = mode;
    }
    return {};
  }

  Result<void> takeFlag(std::string_view word) {
    const std::string_view name = word.substr(1);
    ++word_;
    const FlagSpec* spec = syntax_.find(name);
    std::string_view fused;
    if (!spec) {
      if (isModeFlag(name, kQuery) || isModeFlag(name, kEdit)) return {};
      spec = findFused(name, fused);
      if (!spec) return fail(ErrorKind::BadArgument, "Invalid flag '{}'.", word);
    }
    if ((spec->modes & parsed_.mode_) == 0) {
      static constexpr std::string_view kModeNames[] = {"", "create", "edit", "", "query"};
      return fail(ErrorKind::BadArgument, "Invalid flag '{}': it can't be used in {} mode.", word,
                  kModeNames[parsed_.mode_]);
    }
    if (!spec->isMultiUse && parsed_.findUse(spec->longName, 0)) {
      // The last one counts, as when a script appends to a list of options.
      std::erase_if(parsed_.uses_,
                    [spec](const ParsedArgs::FlagUse& use) { return use.spec == spec; });
    }
    ParsedArgs::FlagUse use{spec, parsed_.values_.size(), 0};
    if (!fused.empty()) {
      auto converted = convert(mel::Value(std::string(fused)), spec->args.front());
      if (!converted) return fail(ErrorKind::BadArgument, "Invalid flag '{}'.", word);
      parsed_.values_.push_back(std::move(*converted));
      use.valueCount = 1;
    } else if (parsed_.mode_ != kQuery || spec->queryArgs != QueryArgs::None)
      HOST_TRY(takeFlagValues(*spec, word, use));
    parsed_.uses_.push_back(use);
    // An array is as many uses as it has elements.
    while (element_ != 0) {
      ParsedArgs::FlagUse more{spec, parsed_.values_.size(), 0};
      HOST_TRY(takeFlagValues(*spec, word, more));
      parsed_.uses_.push_back(more);
    }
    return {};
  }

  /// The flag of a word that goes on with its number, as `-sv0.5` does.
  [[nodiscard]] const FlagSpec* findFused(std::string_view name, std::string_view& number) const {
    const std::size_t digit = name.find_first_of("0123456789");
    if (digit == 0 || digit == std::string_view::npos) return nullptr;
    const FlagSpec* spec = syntax_.find(name.substr(0, digit));
    if (!spec || spec->args.size() != 1 || spec->args[0] == ArgType::String ||
        spec->args[0] == ArgType::Name || spec->args[0] == ArgType::Script)
      return nullptr;
    number = name.substr(digit);
    return spec;
  }

  Result<void> takeFlagValues(const FlagSpec& spec, std::string_view word,
                              ParsedArgs::FlagUse& use) {
    const bool mayStop =
        spec.hasOptionalArgs || (parsed_.mode_ == kQuery && spec.queryArgs == QueryArgs::Optional);
    for (const ArgType type : spec.args) {
      if (atEnd() || (element_ == 0 && isEndOfValues(words_[word_], type))) {
        if (mayStop) return {};
        return fail(ErrorKind::BadArgument, "Flag '{}' needs {} argument{}.", word,
                    spec.args.size(), spec.args.size() == 1 ? "" : "s");
      }
      const std::size_t wordBefore = word_, elementBefore = element_;
      const mel::Value given = next();
      auto converted = convert(given, type);
      if (!converted && mayStop && elementBefore == 0) {  // an object's name, say
        word_ = wordBefore;
        element_ = elementBefore;
        return {};
      }
      if (!converted)
        return fail(ErrorKind::BadArgument,
                    "Invalid arguments for flag '{}'.  Expected {}, got {}.", word,
                    converted.error().message, describe(given));
      parsed_.values_.push_back(std::move(*converted));
      ++use.valueCount;
    }
    if (element_ != 0 && !spec.isMultiUse)
      return fail(ErrorKind::BadArgument, "Flag '{}' was given too many values.", word);
    return {};
  }

  /// A flag-like text is a value where a text is wanted, unless it is one of the command's own
  /// flags.
  [[nodiscard]] bool isEndOfValues(const mel::Value& value, ArgType type) const {
    if (!isFlagWord(value)) return false;
    if (type != ArgType::String && type != ArgType::Script && type != ArgType::Any) return true;
    const std::string_view name = std::string_view(value.string()).substr(1);
    return syntax_.find(name) || isModeFlag(name, kQuery) || isModeFlag(name, kEdit);
  }

  [[nodiscard]] bool atEnd() {
    while (word_ < words_.size() && mel::isArray(words_[word_].type()) && words_[word_].size() == 0)
      ++word_;
    return word_ >= words_.size();
  }

  mel::Value next() {
    const mel::Value& word = words_[word_];
    mel::Value result;
    std::size_t count = word.size();
    switch (word.type()) {
      case mel::Type::IntArray:
        result = word.intArray()[element_];
        break;
      case mel::Type::FloatArray:
        result = word.floatArray()[element_];
        break;
      case mel::Type::StringArray:
        result = word.stringArray()[element_];
        break;
      case mel::Type::VectorArray:
        result = word.vectorArray()[element_];
        break;
      case mel::Type::Vector: {
        const mel::Vec3& v = word.vector();
        result = element_ == 0 ? v.x : element_ == 1 ? v.y : v.z;
        count = 3;
        break;
      }
      default:
        result = word;
        count = 1;
        break;
    }
    if (++element_ >= count) {
      element_ = 0;
      ++word_;
    }
    return result;
  }

  /// The error's message is what was expected.
  [[nodiscard]] Result<mel::Value> convert(const mel::Value& value, ArgType type) const {
    switch (type) {
      case ArgType::Any:
        return value;
      case ArgType::String:
      case ArgType::Name:
      case ArgType::Script: {
        if (value.isString()) return value;
        auto text = value.toText();
        return text ? Result<mel::Value>(mel::Value(std::move(*text))) : fail("string");
      }
      case ArgType::Bool:
        return toBoolean(value);
      case ArgType::Int:
      case ArgType::Unsigned: {
        auto number = toNumber(value, type);
        if (!number) return fail("int");
        const std::int32_t integer = value.isInt() ? value.intValue() : mel::truncateToInt(*number);
        if (type == ArgType::Unsigned && integer < 0) return fail("unsigned int");
        return mel::Value(integer);
      }
      case ArgType::Double:
      case ArgType::Distance:
      case ArgType::Angle:
      case ArgType::Time: {
        auto number = toNumber(value, type);
        if (!number)
          return fail("{}", type == ArgType::Double     ? "double"
                            : type == ArgType::Distance ? "distance"
                            : type == ArgType::Angle    ? "angle"
                                                        : "time");
        return mel::Value(*number);
      }
    }
    return value;
  }

  [[nodiscard]] static Result<mel::Value> toBoolean(const mel::Value& value) {
    if (value.isInt()) return mel::Value(value.intValue() != 0);
    if (value.isFloat()) return mel::Value(value.floatValue() != 0);
    if (value.isString()) {
      const std::string& text = value.string();
      if (text == "on" || text == "yes" || text == "true" || text == "1") return mel::Value(true);
      if (text == "off" || text == "no" || text == "false" || text == "0") return mel::Value(false);
    }
    return fail("boolean");
  }

  [[nodiscard]] Result<double> toNumber(const mel::Value& value, ArgType type) const {
    double number = 0;
    bool hasUnit = false;
    if (value.isInt()) {
      number = value.intValue();
    } else if (value.isFloat()) {
      number = value.floatValue();
    } else if (value.isString()) {
      const std::string& text = value.string();
      const char* end = text.data() + text.size();
      const auto [rest, problem] = std::from_chars(text.data(), end, number);
      if (problem != std::errc{}) return fail("not a number");
      const std::string_view unitName(rest, static_cast<std::size_t>(end - rest));
      if (!unitName.empty()) {
        if (!applyUnit(unitName, type, number)) return fail("not a number");
        hasUnit = true;
      }
    } else {
      return fail("not a number");
    }
    if (hasUnit) return number;
    if (type == ArgType::Distance) return units_.toCentimeters(number);
    if (type == ArgType::Angle) return units_.toRadians(number);
    if (type == ArgType::Time) return number / units_.framesPerSecond();
    return number;
  }

  [[nodiscard]] static bool applyUnit(std::string_view name, ArgType type, double& number) {
    if (type == ArgType::Distance) {
      scene::LinearUnit unit{};
      if (!scene::parseLinearUnit(name, unit)) return false;
      number *= scene::centimetersPer(unit);
      return true;
    }
    if (type == ArgType::Angle) {
      scene::Units units;
      if (!scene::parseAngularUnit(name, units.angular)) return false;
      number = units.toRadians(number);
      return true;
    }
    const double rate = type == ArgType::Time ? scene::framesPerSecondOf(name) : 0;
    if (rate <= 0) return false;
    number /= rate;
    return true;
  }

  [[nodiscard]] static std::string describe(const mel::Value& value) {
    if (value.isString()) return fmt::format("string \"{}\"", value.string());
    return fmt::format("{} {}", mel::typeName(value.type()), value.toText().value_or(""));
  }

  Result<void> checkObjects() const {
    const ObjectsSpec& spec = syntax_.objectsSpec();
    const auto count = static_cast<std::int64_t>(parsed_.wordCount_);
    if (spec.kind == ObjectsSpec::Kind::None) {
      if (count > 0)
        return fail(ErrorKind::BadArgument, "Too many objects or values: '{}' is not expected.",
                    parsed_.firstObject());
      return {};
    }
    if (spec.maximum >= 0 && count > spec.maximum)
      return fail(ErrorKind::BadArgument, "Too many objects or values.");
    if (count < spec.minimum && !(spec.useSelectionAsDefault && count == 0))
      return fail(ErrorKind::BadArgument, "Not enough objects or values.");
    return {};
  }

  const Syntax& syntax_;
  std::span<const mel::Value> words_;
  const scene::Units& units_;
  ParsedArgs parsed_;
  std::size_t word_ = 0, element_ = 0;
};

Result<ParsedArgs> parseArguments(const Syntax& syntax, std::span<const mel::Value> words,
                                  const scene::Units& units) {
  return ArgParser(syntax, words, units).run();
}

}  // namespace host::cmd
