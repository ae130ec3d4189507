#include "host/mel/lexer.h"

#include <algorithm>
#include <limits>

namespace host::mel {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isHexDigit(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool isNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool isNameChar(char c) {
  return isNameStart(c) || isDigit(c);
}
bool isWordChar(char c) {
  return isNameChar(c) || c == '.' || c == ':' || c == '|' || c == '*' || c == '?' || c == '#' ||
         c == '@';
}
/// Inside the brackets of a bare component word: `[0:5]`, `[*]`, `[1, 2]`.
bool isComponentChar(char c) {
  return isWordChar(c) || c == ' ' || c == ',' || c == '-';
}

}  // namespace

Lexer::Lexer(std::string_view source, Arena& arena) : source_(source), arena_(arena) {
  if (source_.starts_with("\xEF\xBB\xBF")) position_.offset = position_.lineStart = 3;
  // The first line of a script that the system starts names the program to run it with.
  if (source_.substr(position_.offset).starts_with("#!"))
    position_.offset = std::min(source_.find('\n', position_.offset), source_.size());
}

void Lexer::newLine() {
  ++position_.line;
  position_.lineStart = position_.offset;
}

void Lexer::skipBlanks() {
  while (!isAtEnd()) {
    const char c = at(0);
    if (c == '\n') {
      ++position_.offset;
      newLine();
    } else if (c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v') {
      ++position_.offset;
    } else if (c == '/' && at(1) == '/') {
      while (!isAtEnd() && at(0) != '\n') ++position_.offset;
    } else if (c == '/' && at(1) == '*') {
      const std::size_t end = source_.find("*/", position_.offset + 2);
      if (end == std::string_view::npos) return;  // readSymbol reports it
      while (position_.offset < end + 2) {
        const bool isBreak = at(0) == '\n';
        ++position_.offset;
        if (isBreak) newLine();
      }
    } else {
      return;
    }
  }
}

bool Lexer::isGlued(const Position& place) const {
  if (place.offset == 0 || place.offset > source_.size()) return false;
  return std::string_view(" \t\r\n").find(source_[place.offset - 1]) == std::string_view::npos;
}

char Lexer::peek() {
  skipBlanks();
  return at(0);
}

Token Lexer::take(TokenKind kind, std::size_t length) {
  Token token;
  token.kind = kind;
  token.begin = position_;
  token.text = source_.substr(position_.offset, length);
  position_.offset += length;
  return token;
}

Token Lexer::bad(const char* reason) {
  Token token;
  token.kind = TokenKind::Bad;
  token.begin = position_;
  token.text = reason;
  return token;
}

std::size_t Lexer::numberLength() const {
  std::size_t length = 0;
  if (at(0) == '0' && (at(1) == 'x' || at(1) == 'X') && isHexDigit(at(2))) {
    length = 2;
    while (isHexDigit(at(length))) ++length;
    return length;
  }
  while (isDigit(at(length))) ++length;
  if (at(length) == '.' && at(length + 1) != '.') ++length;
  while (isDigit(at(length))) ++length;
  if (at(length) == 'e' || at(length) == 'E') {
    const std::size_t sign = at(length + 1) == '-' || at(length + 1) == '+' ? 2 : 1;
    if (isDigit(at(length + sign))) {
      length += sign;
      while (isDigit(at(length))) ++length;
    }
  }
  return length;
}

/// Whole numbers beyond 32 bits become floats; hexadecimal ones keep their low 32 bits.
void Lexer::setNumber(Token& token) const {
  const bool isHex = token.text.size() > 2 && (token.text[1] == 'x' || token.text[1] == 'X');
  if (isHex) {
    std::uint32_t bits = 0;
    for (const char c : token.text.substr(2))
      bits = bits * 16 + static_cast<std::uint32_t>(isDigit(c) ? c - '0' : (c | 0x20) - 'a' + 10);
    token.integer = static_cast<std::int32_t>(bits);
    token.kind = TokenKind::Int;
    return;
  }
  token.number = leadingFloat(token.text);
  const bool isWhole = token.text.find_first_of(".eE") == std::string_view::npos;
  if (isWhole && token.number <= std::numeric_limits<std::int32_t>::max()) {
    token.integer = static_cast<std::int32_t>(token.number);
    token.kind = TokenKind::Int;
  } else {
    token.kind = TokenKind::Float;
  }
}

Token Lexer::readNumber() {
  Token token = take(TokenKind::Float, numberLength());
  setNumber(token);
  return token;
}

Token Lexer::readString() {
  Token token;
  token.kind = TokenKind::String;
  token.begin = position_;
  const std::size_t plain = source_.find_first_of("\"\\\n", position_.offset + 1);
  if (plain != std::string_view::npos && source_[plain] == '"') {
    const std::size_t first = position_.offset + 1;
    token.text = source_.substr(first, plain - first);
    position_.offset = plain + 1;
    return token;
  }
  decoded_.clear();
  for (++position_.offset; !isAtEnd() && at(0) != '"'; ++position_.offset) {
    char c = at(0);
    if (c == '\n') break;
    if (c == '\\') {
      ++position_.offset;
      c = at(0);
      if (c == '\r' && at(1) == '\n') {
        ++position_.offset;
        c = '\n';
      }
      if (c == '\n') {  // a continued line
        ++position_.line;
        position_.lineStart = position_.offset + 1;
        continue;
      }
      if (c == 'n') c = '\n';
      if (c == 't') c = '\t';
      if (c == 'r') c = '\r';
      if (isAtEnd()) break;
    }
    decoded_ += c;
  }
  if (at(0) != '"') {
    position_ = token.begin;
    return bad(kOpenString);
  }
  ++position_.offset;
  const std::span<const char> characters(decoded_.data(), decoded_.size());
  const std::span<char> kept = arena_.copy(characters);
  token.text = std::string_view(kept.data(), kept.size());
  return token;
}

Token Lexer::readSymbol() {
  if (at(0) == '/' && at(1) == '*') return bad(kOpenComment);
  static constexpr std::string_view kPairs[] = {"<<", ">>", "<=", ">=", "==", "!=", "&&", "||",
                                                "++", "--", "+=", "-=", "*=", "/=", "%=", "^="};
  const std::string_view two = source_.substr(position_.offset, 2);
  for (const std::string_view pair : kPairs)
    if (two == pair) return take(TokenKind::Symbol, 2);
  if (std::string_view("+-*/%^<>=!?:;,.(){}[]`").find(at(0)) != std::string_view::npos)
    return take(TokenKind::Symbol, 1);
  return bad("an unexpected character");
}

Token Lexer::next() {
  skipBlanks();
  if (isAtEnd()) return take(TokenKind::End, 0);
  const char c = at(0);
  if (isDigit(c) || (c == '.' && isDigit(at(1)))) return readNumber();
  if (c == '"') return readString();
  if (isNameStart(c)) {
    std::size_t length = 1;
    while (isNameChar(at(length))) ++length;
    return take(TokenKind::Identifier, length);
  }
  if (c == '$') {
    if (!isNameStart(at(1))) return bad("a $ without a variable name");
    std::size_t length = 2;
    while (isNameChar(at(length))) ++length;
    Token token = take(TokenKind::Variable, length);
    token.text.remove_prefix(1);
    return token;
  }
  return readSymbol();
}

/// Length of the bare word that starts `from` characters ahead: names, paths, patterns, components.
std::size_t Lexer::wordLength(std::size_t from) const {
  std::size_t length = from;
  while (true) {
    if (isWordChar(at(length))) {
      ++length;
    } else if (at(length) == '[') {
      std::size_t inner = length + 1;
      while (isComponentChar(at(inner))) ++inner;
      if (at(inner) != ']') return length - from;
      length = inner + 1;
    } else {
      return length - from;
    }
  }
}

/// Length of a flag whose number follows without a blank, as in `-sv0.5` and `-sv1e-05`; no flag
/// has a point or a sign in its name.
std::size_t Lexer::fusedFlagLength(std::size_t nameLength) const {
  std::size_t digits = 0;
  while (digits < nameLength && !isDigit(at(digits))) ++digits;
  std::size_t end = digits;
  while (end < nameLength && isDigit(at(end))) ++end;
  if (digits == 0 || digits == end) return nameLength;
  if (end == nameLength && at(end) == '.' && isDigit(at(end + 1))) {
    ++end;
    while (isDigit(at(end))) ++end;
  }
  const bool isExponent =
      at(end) == 'e' && (at(end + 1) == '-' || at(end + 1) == '+') && isDigit(at(end + 2));
  if (!isExponent) return std::max(end, nameLength);
  end += 2;
  while (isDigit(at(end))) ++end;
  return end;
}

Token Lexer::nextWord() {
  skipBlanks();
  if (at(0) == '"') return readString();
  if (at(0) == '-' || at(0) == '+') {
    const bool isMinus = at(0) == '-';
    if (isDigit(at(1)) || (at(1) == '.' && isDigit(at(2)))) {
      const Position begin = position_;
      ++position_.offset;
      Token token = readNumber();
      token.begin = begin;
      if (isMinus) {
        token.integer = static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(token.integer));
        token.number = -token.number;
      }
      return token;
    }
    if (!isMinus) return bad("an unexpected +");
    const Position begin = position_;
    ++position_.offset;
    skipBlanks();
    std::size_t length = 0;
    while (isNameChar(at(length))) ++length;
    length = fusedFlagLength(length);
    if (length == 0 || !isNameStart(at(0))) return bad("a - without a flag name or a number");
    Token token = take(TokenKind::Word, length);
    token.begin = begin;
    std::string flag = "-" + std::string(token.text);
    const std::span<char> kept = arena_.copy(std::span<const char>(flag.data(), flag.size()));
    token.text = std::string_view(kept.data(), kept.size());
    return token;
  }
  const std::size_t length = wordLength(0);
  if (length == 0) return next();
  if ((isDigit(at(0)) || (at(0) == '.' && isDigit(at(1)))) && numberLength() >= length)
    return readNumber();
  const std::string_view word = source_.substr(position_.offset, length);
  if (word.find_first_not_of('|') == std::string_view::npos) return bad("a bare |");
  return take(TokenKind::Word, length);
}

}  // namespace host::mel
