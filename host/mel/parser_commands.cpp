#include <algorithm>
#include <iterator>
#include <string>

#include "host/mel/parser.h"

namespace host::mel {

namespace {

/// What can follow `name(arguments)` at the start of a statement only if the call is part of an
/// expression; - and * may begin a further word of a command line.
bool continuesExpression(const Token& token) {
  constexpr std::string_view kSymbols[] = {"+", "/",  "%",  "^",  "==", "!=", "<",
                                           ">", "<=", ">=", "&&", "||", "?",  "["};
  return token.kind == TokenKind::Symbol &&
         std::ranges::find(kSymbols, token.text) != std::end(kSymbols);
}

}  // namespace

/// True before the token that ends a command line: `;`, the end of the text, or the closing
/// backquote.
bool Parser::isCommandEnd() {
  const char c = lexer_.peek();
  return c == '\0' ? lexer_.isAtEnd()
                   : c == ';' || c == '}' || c == ')' || (c == '`' && isInBackquotes_);
}

/// The words after a command's name, or `name(arguments)` if nothing follows the closing
/// parenthesis. On entry the name is the current token and nothing beyond it has been read; on
/// return the token after the call is current.
Node* Parser::command(bool isBackquoted) {
  const Token name = token_;
  Node* node = make(NodeKind::Call, name);
  node->text = name.text;
  node->flag = true;
  std::vector<Node*> arguments;
  const bool wasInBackquotes = std::exchange(isInBackquotes_, isBackquoted);
  if (lexer_.peek() == '(') {
    const Position begin = lexer_.position();
    advance();
    advance();
    const bool isCast = typeKeyword() && lexer_.peek() == ')';
    lexer_.rewind(begin);
    if (!isCast) {
      advance();
      if (!argumentList(arguments)) return nullptr;
      lexer_.rewind(token_.begin);
      if (!isBackquoted && continuesExpression(token_)) {
        isInBackquotes_ = wasInBackquotes;
        lexer_.rewind(name.begin);
        advance();
        return expression();
      }
      if (arguments.size() != 1 && !isCommandEnd()) return fault("\";\"");
    }
  }
  while (!isCommandEnd()) {
    Node* argument = commandArgument();
    if (!argument) return nullptr;
    arguments.push_back(argument);
  }
  isInBackquotes_ = wasInBackquotes;
  advance();
  setChildren(node, arguments);
  return node;
}

Node* Parser::commandArgument() {
  const char c = lexer_.peek();
  const bool isNegated = c == '-' && (lexer_.at(1) == '$' || lexer_.at(1) == '(');
  if (c == '$' || c == '(' || c == '{' || c == '`' || (c == '<' && lexer_.at(1) == '<') ||
      isNegated)
    return operandArgument();
  token_ = lexer_.nextWord();
  switch (token_.kind) {
    case TokenKind::Int:
    case TokenKind::Float: {
      Node* node = make(
          token_.kind == TokenKind::Int ? NodeKind::IntLiteral : NodeKind::FloatLiteral, token_);
      node->integer = token_.integer;
      node->number = token_.number;
      return node;
    }
    case TokenKind::String:
    case TokenKind::Word:
      break;
    default:
      return fault("an argument or \";\"");
  }
  const std::string_view text = token_.text;
  if (token_.kind == TokenKind::Word) {
    const bool isTrue = text == "true" || text == "yes" || text == "on";
    if (isTrue || text == "false" || text == "no" || text == "off") {
      Node* node = make(NodeKind::IntLiteral, token_);
      node->integer = isTrue;
      return node;
    }
  }
  Node* node = make(NodeKind::StringLiteral, token_);
  node->text = text;
  const bool isWord = token_.kind == TokenKind::Word && !text.starts_with('-');
  return isWord && lexer_.at(0) == '[' ? gluedWord(node) : node;
}

Node* Parser::joined(Node* left, Node* right) {
  if (!left || !right) return nullptr;
  Node* node = make(NodeKind::Binary, token_);
  node->op = BinaryOp::Add;
  setChildren(node, {left, right});
  return node;
}

/// What stands without a blank behind a bare word or a variable: `obj.vtx[$i]`,
/// `$obj.plug[$i].x` are one word each, put together when the command runs.
Node* Parser::gluedWord(Node* word) {
  const auto piece = [&](std::string_view text) {
    Node* node = make(NodeKind::StringLiteral, token_);
    node->text = text;
    return node;
  };
  while (word) {
    const char c = lexer_.at(0);
    if (c == '[') {
      advance();
      advance();
      Node* inside = joined(joined(word, piece("[")), expression());
      if (!inside) return nullptr;
      if (!token_.is("]")) return fault("\"]\"");
      word = joined(inside, piece("]"));
      Position behind = token_.begin;
      ++behind.offset;
      lexer_.rewind(behind);
    } else if (c == '.') {
      token_ = lexer_.nextWord();
      if (token_.kind != TokenKind::Word) return fault("an attribute or a component");
      word = joined(word, piece(token_.text));
    } else {
      return word;
    }
  }
  return word;
}

/// An argument that is an expression by its first character. It ends with its last bracket: what
/// follows is the next argument, so the token read beyond it is given back.
Node* Parser::operandArgument() {
  const Depth depth(*this);
  if (!depth) return tooDeep();
  advance();
  const Token at = token_;
  if (at.is("-")) {
    advance();
    Node* operand = token_.is("(") ? parenthesised() : suffixes(primary());
    if (!operand) return nullptr;
    lexer_.rewind(token_.begin);
    Node* node = make(NodeKind::Negate, at);
    setChildren(node, {operand});
    return node;
  }
  Node* node = primary();
  if (!node) return nullptr;
  if (at.kind == TokenKind::Variable) {
    while (node && token_.is("[")) node = subscript(node);
    // `$v.x` is a component, `$v .x` a further argument.
    const bool isGlued = token_.is(".") && lexer_.isGlued(token_.begin);
    const bool isComponent =
        isGlued && lexer_.at(0) >= 'x' && lexer_.at(0) <= 'z' && !isNameChar(lexer_.at(1));
    if (node && isGlued && !isComponent && isNameStart(lexer_.at(0))) {
      lexer_.rewind(token_.begin);
      Node* empty = make(NodeKind::StringLiteral, token_);
      empty->text = "";
      return gluedWord(joined(empty, node));
    }
    if (node && isComponent) {
      Node* component = make(NodeKind::Component, token_);
      component->flag = true;  // of a text it is an attribute
      component->integer = lexer_.at(0) - 'x';
      advance();
      advance();
      setChildren(component, {node});
      node = component;
    }
  }
  if (node) lexer_.rewind(token_.begin);
  return node;
}

}  // namespace host::mel
