#include <fmt/format.h>

#include <cctype>

#include "host/api/command/args.h"

namespace host::api {
namespace {

using ArgType = MSyntax::MArgType;

bool isFlagWord(const mel::Value& word) {
  if (!word.isString()) return false;
  const std::string& text = word.string();
  return text.size() > 1 && text[0] == '-' &&
         std::isalpha(static_cast<unsigned char>(text[1])) != 0;
}

bool isNumberText(const std::string& text) {
  char* end = nullptr;
  (void)std::strtod(text.c_str(), &end);
  return !text.empty() && end == text.c_str() + text.size();
}

bool isTruthWord(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text == "on" || text == "off" || text == "yes" || text == "no" || text == "true" ||
         text == "false";
}

bool fits(const mel::Value& word, ArgType type) {
  if (type == MSyntax::kString || type == MSyntax::kSelectionItem)
    return !mel::isArray(word.type());
  const bool isNumber =
      word.isInt() || word.isFloat() || (word.isString() && isNumberText(word.string()));
  if (type == MSyntax::kBoolean) return isNumber || (word.isString() && isTruthWord(word.string()));
  if (type == MSyntax::kUnsigned) return isNumber && word.toFloat().value_or(-1.0) >= 0.0;
  return isNumber;
}

const char* wordFor(ArgType type) {
  switch (type) {
    case MSyntax::kBoolean:
      return "boolean";
    case MSyntax::kLong:
      return "int";
    case MSyntax::kUnsigned:
      return "unsigned int";
    case MSyntax::kDouble:
      return "double";
    case MSyntax::kDistance:
      return "distance";
    case MSyntax::kAngle:
      return "angle";
    case MSyntax::kTime:
      return "time";
    default:
      return "string";
  }
}

class WordSorter {
 public:
  explicit WordSorter(ParsedRep& rep) : rep_(rep) {}

  void run() {
    findMode();
    while (next_ < rep_.words.size()) {
      if (isFlagWord(rep_.words[next_]))
        takeFlag();
      else
        takePlain();
    }
    checkObjectCount();
  }

 private:
  void fault(std::string text) {
    if (rep_.error.empty()) rep_.error = std::move(text);
  }

  /// The mode decides how many words each flag takes, wherever it stands among them.
  void findMode() {
    for (const mel::Value& word : rep_.words) {
      if (!isFlagWord(word) || rep_.syntax.find(word.string())) continue;
      const std::string_view name = std::string_view(word.string()).substr(1);
      if (rep_.syntax.canQuery && (name == "q" || name == "query")) rep_.isQuery = true;
      if (rep_.syntax.canEdit && (name == "e" || name == "edit")) rep_.isEdit = true;
    }
    if (rep_.isQuery && rep_.isEdit) fault("The query and edit flags exclude each other.");
  }

  bool isModeFlag(std::string_view name) const {
    return (rep_.syntax.canQuery && (name == "-q" || name == "-query")) ||
           (rep_.syntax.canEdit && (name == "-e" || name == "-edit"));
  }

  void takeFlag() {
    const std::string& name = rep_.words[next_].string();
    const SyntaxRep::Flag* flag = rep_.syntax.find(name);
    ++next_;
    if (!flag) {
      if (!isModeFlag(name)) fault(fmt::format("Invalid flag '{}'.", name));
      return;
    }
    ParsedRep::Use use{flag, next_, 0};
    for (const ParsedRep::Use& earlier : rep_.uses)
      if (earlier.flag == flag && !flag->isMultiUse)
        fault(fmt::format("Flag '-{}' can't be given more than once.", flag->longName));
    if (!rep_.isQuery || flag->takesArgumentsInQuery) takeArguments(use);
    rep_.uses.push_back(use);
  }

  void takeArguments(ParsedRep::Use& use) {
    for (const ArgType type : use.flag->arguments) {
      const bool isThere =
          next_ < rep_.words.size() &&
          !(isFlagWord(rep_.words[next_]) && (rep_.syntax.find(rep_.words[next_].string()) ||
                                              isModeFlag(rep_.words[next_].string())));
      if (!isThere) {
        if (!(rep_.isQuery && use.flag->queryArgumentsAreOptional))
          fault(fmt::format("Flag '-{}' must be passed a {} argument when used in {} mode.",
                            use.flag->longName, wordFor(type),
                            rep_.isQuery  ? "query"
                            : rep_.isEdit ? "edit"
                                          : "create"));
        return;
      }
      const mel::Value& word = rep_.words[next_++];
      if (!fits(word, type)) {
        fault(fmt::format("Invalid arguments for flag '-{}'.  Expected {}, got {} {}",
                          use.flag->longName, wordFor(type), mel::typeName(word.type()),
                          word.resultText()));
        return;
      }
      ++use.argumentCount;
    }
  }

  void takePlain() {
    const mel::Value& word = rep_.words[next_++];
    const SyntaxRep& syntax = rep_.syntax;
    if (rep_.arguments.size() < syntax.arguments.size()) {
      const ArgType type = syntax.arguments[rep_.arguments.size()];
      if (!fits(word, type))
        fault(fmt::format("Invalid argument {}: expected {}, got {} {}", rep_.arguments.size() + 1,
                          wordFor(type), mel::typeName(word.type()), word.resultText()));
      rep_.arguments.push_back(word);
    } else if (syntax.objectFormat == MSyntax::kNone) {
      fault(fmt::format("Unexpected argument: {}", word.resultText()));
    } else {
      for (std::string& text : word.toTexts()) rep_.objects.push_back(std::move(text));
    }
  }

  void checkObjectCount() {
    const SyntaxRep& syntax = rep_.syntax;
    if (rep_.arguments.size() < syntax.arguments.size() && !rep_.isQuery && !rep_.isEdit)
      fault(fmt::format("{} argument(s) expected, {} given.", syntax.arguments.size(),
                        rep_.arguments.size()));
    if (rep_.objects.size() > syntax.maximumObjects)
      fault(fmt::format("At most {} object(s) can be given, {} were.", syntax.maximumObjects,
                        rep_.objects.size()));
    if (rep_.objects.size() < syntax.minimumObjects && !syntax.usesSelection)
      fault(fmt::format("At least {} object(s) must be given, {} were.", syntax.minimumObjects,
                        rep_.objects.size()));
  }

  ParsedRep& rep_;
  std::size_t next_ = 0;
};

}  // namespace

ParsedRep* parseWords(const SyntaxRep& syntax, const std::vector<mel::Value>& words) {
  auto* rep = new ParsedRep;
  rep->syntax = syntax;
  rep->words = words;
  WordSorter(*rep).run();
  return rep;
}

}  // namespace host::api
