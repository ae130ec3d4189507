#pragma once

#include <maya/MArgList.h>
#include <maya/MSyntax.h>

#include <span>
#include <string>
#include <vector>

#include "host/api/core/access.h"
#include "host/mel/value.h"

namespace host::api {

/// The words of a call, as the script gave them.
struct ArgListRep final : SharedRep {
  std::vector<mel::Value> words;
};

[[nodiscard]] MArgList wrap(std::vector<mel::Value> words);
[[nodiscard]] const std::vector<mel::Value>& wordsOf(const MArgList& list);

/// What a command accepts.
struct SyntaxRep final : SharedRep {
  struct Flag {
    std::string shortName, longName;  ///< without '-'
    std::vector<MSyntax::MArgType> arguments;
    bool isMultiUse = false;
    bool takesArgumentsInQuery = false, queryArgumentsAreOptional = false;
  };
  std::vector<Flag> flags;
  std::vector<MSyntax::MArgType> arguments;
  MSyntax::MObjectFormat objectFormat = MSyntax::kNone;
  unsigned int minimumObjects = 0, maximumObjects = ~0u;
  bool usesSelection = false, canQuery = false, canEdit = false;

  [[nodiscard]] const Flag* find(
      std::string_view name) const;  ///< short or long, with or without '-'
};

[[nodiscard]] const SyntaxRep& syntaxOf(const MSyntax& syntax);

/// A call's words sorted by a syntax. What could not be sorted is remembered as the first error;
/// the flags that were recognised stay readable, so that a command can report a bad argument in its
/// own words.
struct ParsedRep final : SharedRep {
  struct Use {
    const SyntaxRep::Flag* flag = nullptr;
    std::size_t firstArgument = 0;  ///< index into the words
    std::size_t argumentCount = 0;  ///< how many readable arguments follow
  };
  SyntaxRep syntax;
  std::vector<mel::Value> words;
  std::vector<Use> uses;
  std::vector<mel::Value> arguments;
  std::vector<std::string> objects;
  bool isQuery = false, isEdit = false;
  std::string error;               ///< empty: all words fit
  scene::SelectionList selection;  ///< the objects resolved, filled by MArgDatabase
};

/// Sorts `words`. Never fails: see ParsedRep::error.
[[nodiscard]] ParsedRep* parseWords(const SyntaxRep& syntax, const std::vector<mel::Value>& words);

/// The text that `help` prints for a plug-in's command.
[[nodiscard]] std::string synopsisOf(const std::string& command, const MSyntax& syntax);

}  // namespace host::api
