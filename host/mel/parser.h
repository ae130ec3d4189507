#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/mel/ast.h"
#include "host/mel/lexer.h"

namespace host::mel {

/// A message with the place it refers to.
struct Diagnostic {
  std::uint32_t line = 0;
  std::uint32_t column = 0;  ///< 0 when only the line is known
  std::string text;
};

/// Recursive descent over one source text. The first fault ends the parse; nesting is bounded, so
/// that no source can exhaust the stack.
class Parser {
 public:
  Parser(std::string_view source, Arena& arena);

  /// Parses the whole text into a Block whose nodes live in the arena, or returns null and sets
  /// `diagnostic()`. Linear in the text.
  [[nodiscard]] Node* parse();
  [[nodiscard]] const Diagnostic& diagnostic() const { return diagnostic_; }
  /// Whether the parse failed because the text ended too soon: more text could make it whole.
  [[nodiscard]] bool endedTooSoon() const { return hasFault_ && faultIsAtEnd_; }

 private:
  // parser_statements.cpp
  Node* statement();
  Node* nestedStatement();
  Node* keywordStatement(std::string_view word);
  Node* block();
  Node* expressionStatement();
  Node* commandStatement();
  Node* declaration(bool isGlobal);
  Node* declarator(Type element, bool isParameter);
  Node* procedure(bool isGlobal);
  Node* ifStatement();
  Node* whileStatement();
  Node* doStatement();
  Node* forStatement();
  Node* forInStatement(const Token& keyword);
  Node* forHeaderPart(std::string_view terminator);
  Node* switchStatement();
  Node* caseLabel();
  Node* jump(NodeKind kind);
  Node* returnStatement();
  std::optional<Type> typeKeyword() const;

  // parser_expressions.cpp
  Node* expression();
  Node* assignment();
  Node* ternary();
  Node* binary(int minPrecedence);
  Node* unary();
  Node* postfix();
  Node* suffixes(Node* base);
  Node* subscript(Node* base);
  Node* primary();
  Node* number();
  Node* identifierExpression();
  Node* parenthesised();
  Node* vectorLiteral();
  Node* arrayLiteral();
  Node* backquoted();
  bool argumentList(std::vector<Node*>& arguments);

  // parser_commands.cpp
  Node* command(bool isBackquoted);
  Node* commandArgument();
  Node* operandArgument();
  [[nodiscard]] bool isCommandEnd();

  void advance() {
    previous_ = token_.begin;
    token_ = lexer_.next();
  }
  bool accept(std::string_view symbol);
  bool expect(std::string_view symbol);
  Node* fault(std::string_view expected);
  Node* faultAt(const Position& where, std::string text);
  [[nodiscard]] std::string describe(const Token& token) const;
  Node* make(NodeKind kind, const Token& at);
  void setChildren(Node* node, std::span<Node* const> children);
  void setChildren(Node* node, std::initializer_list<Node*> children);

  /// Counts nesting while it lives; false when the bound is reached.
  class Depth {
   public:
    explicit Depth(Parser& parser) : parser_(parser) { ++parser_.depth_; }
    ~Depth() { --parser_.depth_; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;
    explicit operator bool() const { return parser_.depth_ <= kMaxDepth; }

   private:
    Parser& parser_;
  };
  Node* tooDeep();

  static constexpr int kMaxDepth = 400;
  Lexer lexer_;
  Arena& arena_;
  Token token_;
  Position previous_;  ///< where the token before the current one begins
  Diagnostic diagnostic_;
  int depth_ = 0;
  bool isInBackquotes_ = false;
  bool hasFault_ = false, faultIsAtEnd_ = false;
};

}  // namespace host::mel
