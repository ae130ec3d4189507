#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/mel/ast.h"

namespace host::mel {

enum class TokenKind : std::uint8_t {
  End,
  Int,
  Float,
  String,
  Variable,  ///< text without the `$`
  Identifier,
  Word,    ///< a bare word of a command line; flags begin with `-`
  Symbol,  ///< operator or bracket, in `text`
  Bad,     ///< `text` says what is wrong
};

/// What a Bad token says when the text ended inside of it.
inline constexpr const char* kOpenString = "a string without its closing quote";
inline constexpr const char* kOpenComment = "a comment without its closing */";

/// Where a token begins; the lexer can go back to it to read the text anew in the other mode.
struct Position {
  std::size_t offset = 0;
  std::uint32_t line = 1;
  std::size_t lineStart = 0;
  [[nodiscard]] std::uint32_t column() const {
    return static_cast<std::uint32_t>(offset - lineStart + 1);
  }
};

struct Token {
  TokenKind kind = TokenKind::End;
  Position begin;
  std::string_view text;
  std::int32_t integer = 0;
  double number = 0.0;
  [[nodiscard]] bool is(std::string_view symbol) const {
    return kind == TokenKind::Symbol && text == symbol;
  }
};

/// Reads tokens on demand, since the language has two lexical modes: expressions, and command lines
/// made of bare words.
class Lexer {
 public:
  Lexer(std::string_view source, Arena& arena);

  /// The next token of an expression or statement.
  [[nodiscard]] Token next();
  /// The next token of a command line that is a literal, a flag or a bare word.
  [[nodiscard]] Token nextWord();
  /// Skips blanks and comments and returns the character there, 0 at the end.
  [[nodiscard]] char peek();
  /// The character `ahead` places after the current one, without skipping; 0 past the end.
  [[nodiscard]] char at(std::size_t ahead) const {
    return position_.offset + ahead < source_.size() ? source_[position_.offset + ahead] : '\0';
  }
  [[nodiscard]] bool isAtEnd() const { return position_.offset >= source_.size(); }
  /// True when no blank stands before that place.
  [[nodiscard]] bool isGlued(const Position& place) const;
  void rewind(const Position& position) { position_ = position; }
  [[nodiscard]] const Position& position() const { return position_; }

 private:
  void skipBlanks();
  void newLine();
  [[nodiscard]] Token take(TokenKind kind, std::size_t length);
  [[nodiscard]] Token bad(const char* reason);
  [[nodiscard]] Token readNumber();
  [[nodiscard]] Token readString();
  [[nodiscard]] Token readSymbol();
  [[nodiscard]] std::size_t numberLength() const;
  [[nodiscard]] std::size_t wordLength(std::size_t from) const;
  [[nodiscard]] std::size_t fusedFlagLength(std::size_t nameLength) const;
  void setNumber(Token& token) const;

  std::string_view source_;
  Arena& arena_;
  Position position_;
  std::string decoded_;
};

}  // namespace host::mel
