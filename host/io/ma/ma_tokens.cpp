#include "host/io/ma/ma_tokens.h"

#include <fmt/format.h>

#include <algorithm>

namespace host::io {
namespace {

using mel::Token;
using mel::TokenKind;

/// What may follow the plus of a sum of strings; before a number it is a sign.
bool comesAfterPlus(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '"';
}

bool isNotFinite(std::string_view word) {
  return isOneOf(word, {"nan", "inf", "NaN", "Inf", "NAN", "INF", "infinity"});
}

}  // namespace

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::ranges::find(words, word) != words.end();
}

bool isOn(std::string_view word) {
  return isOneOf(word, {"on", "yes", "true", "1"});
}

MaTokens::MaTokens(MaFile& file)
    : text_(file.text), decoded_(std::make_shared<Decoded>()), lexer_(file.text, decoded_->arena) {
  file.decoded = decoded_;
}

void MaTokens::failAt(std::size_t offset, std::string reason) {
  if (!fault_) fault_ = MaFault{offset, std::move(reason)};
}

void MaTokens::refuse(const Token& token, std::string_view expected) {
  if (token.kind == TokenKind::End)
    failAt(start_, "the statement that begins here has no end");
  else if (token.kind == TokenKind::Bad)
    failAt(token.begin.offset, std::string(token.text));
  else
    failAt(token.begin.offset, fmt::format("{}, not '{}'", expected, textOf(token).substr(0, 40)));
}

std::string_view MaTokens::textOf(const Token& token) const {
  return text_.substr(token.begin.offset, lexer_.position().offset - token.begin.offset);
}

std::string_view MaTokens::text() {
  const Token token = next();
  if (token.kind == TokenKind::String) return token.text;
  if (token.kind == TokenKind::Word || token.kind == TokenKind::Int ||
      token.kind == TokenKind::Float)
    return textOf(token);
  refuse(token, "a name or a value should stand here");
  return {};
}

std::vector<MaToken> MaTokens::restOfStatement() {
  std::vector<MaToken> tokens;
  bool joins = false;
  while (!fault_) {
    if (lexer_.peek() == '+' && comesAfterPlus(lexer_.at(1))) {
      mel::Position after = lexer_.position();
      ++after.offset;
      lexer_.rewind(after);
      joins = true;
      continue;
    }
    const Token token = next();
    if (token.is(";")) break;
    if (token.is("(") || token.is(")") || token.is("{") || token.is("}") || token.is(",")) continue;
    if (!addToken(tokens, token, joins)) refuse(token, "a value should stand here");
    joins = false;
  }
  return tokens;
}

void MaTokens::addString(std::vector<MaToken>& tokens, std::string_view text, bool joins) {
  if (!joins || tokens.empty() || tokens.back().kind != MaToken::Kind::String) {
    tokens.push_back({MaToken::Kind::String, text});
    return;
  }
  // A sum of strings: the longest ones have thousands of terms, all added to one text.
  std::deque<std::string>& joined = decoded_->joined;
  if (joined.empty() || joined.back().data() != tokens.back().text.data())
    joined.emplace_back(tokens.back().text);
  joined.back() += text;
  tokens.back().text = joined.back();
}

bool MaTokens::addToken(std::vector<MaToken>& tokens, const Token& token, bool joins) {
  if (token.kind == TokenKind::String) {
    addString(tokens, token.text, joins);
    return true;
  }
  if (token.kind == TokenKind::Int || token.kind == TokenKind::Float) {
    const std::string_view number = textOf(token);
    double value = 0;
    MaRow row(number);
    if (!row.read(value) || !row.isAtEnd()) return false;
    tokens.push_back({MaToken::Kind::Number, number});
    return true;
  }
  if (token.kind != TokenKind::Word) return false;
  if (isNotFinite(token.text) || isNotFinite(token.text.substr(1))) return false;
  tokens.push_back({MaToken::Kind::Word, token.text});
  return true;
}

std::string_view MaTokens::rawStatement() const {
  return text_.substr(start_, lexer_.position().offset - 1 - start_);
}

}  // namespace host::io
