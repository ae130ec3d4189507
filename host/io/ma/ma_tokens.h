#pragma once

#include <deque>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/io/ma/ma_file.h"
#include "host/mel/lexer.h"

namespace host::io {

/// Whether a word is one of several, and whether it says yes.
[[nodiscard]] bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words);
[[nodiscard]] bool isOn(std::string_view word);

/// The words of a scene's statements, read by the lexer of MEL. After the first fault the rest
/// reads as nothing.
class MaTokens {
 public:
  explicit MaTokens(MaFile& file);

  [[nodiscard]] mel::Lexer& lexer() { return lexer_; }
  [[nodiscard]] mel::Token next() { return lexer_.nextWord(); }
  /// Tells where a statement begins: what faults and `rawStatement` go by.
  void begin(std::size_t offset) { start_ = offset; }
  [[nodiscard]] std::size_t start() const { return start_; }

  /// One word, number or string.
  [[nodiscard]] std::string_view text();
  [[nodiscard]] bool flagValue() { return isOn(text()); }
  /// All up to the semicolon, which is taken. Flags end up as words that begin with '-'.
  [[nodiscard]] std::vector<MaToken> restOfStatement();
  /// The text of a statement whose semicolon was the last to be read.
  [[nodiscard]] std::string_view rawStatement() const;

  [[nodiscard]] bool hasFault() const { return fault_.has_value(); }
  [[nodiscard]] MaFault takeFault() { return *std::move(fault_); }
  /// Only the first fault counts.
  void failAt(std::size_t offset, std::string reason);
  void fail(MaFault fault) { failAt(fault.offset, std::move(fault.reason)); }
  /// A token that has no place here.
  void refuse(const mel::Token& token, std::string_view expected);

 private:
  /// Strings that the arena of the lexer holds, and those that sums of strings made.
  struct Decoded {
    mel::Arena arena;
    std::deque<std::string> joined;
  };
  [[nodiscard]] std::string_view textOf(const mel::Token& token) const;
  void addString(std::vector<MaToken>& tokens, std::string_view text, bool joins);
  bool addToken(std::vector<MaToken>& tokens, const mel::Token& token, bool joins);

  std::string_view text_;
  std::shared_ptr<Decoded> decoded_;
  mel::Lexer lexer_;
  std::size_t start_ = 0;
  std::optional<MaFault> fault_;
};

}  // namespace host::io
