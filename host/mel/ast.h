#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <vector>

#include "host/mel/value.h"

namespace host::mel {

enum class NodeKind : std::uint8_t {
  // expressions
  IntLiteral,
  FloatLiteral,
  StringLiteral,
  VectorLiteral,  ///< 1 to 3 children
  MatrixLiteral,  ///< all cells; `integer` is the number of rows
  ArrayLiteral,
  Variable,
  Index,      ///< base, one or two subscripts
  Component,  ///< base; `integer` is 0..2
  Negate,
  Not,
  Binary,  ///< `op`
  And,
  Or,
  Ternary,
  Assign,  ///< target, value; `op` is None for plain `=`
  Step,    ///< ++ and --: target; `integer` is +1 or -1, `flag` says prefix
  Call,    ///< `text` is the name; flag: written as a statement of its own or in backquotes
  Cast,    ///< `type`
  // statements
  Block,
  Expression,
  Declare,     ///< children are Declarators; `flag` says global, `type` is the element type
  Declarator,  ///< `text`; `flag` says array; children: initialiser or null, then dimensions
  If,          ///< condition, branch, condition, branch ..., [else]
  While,
  DoWhile,
  For,     ///< init block, condition or null, step block, body
  ForIn,   ///< Declarator or Variable, list, body
  Switch,  ///< subject, then Case/Default labels and statements in order
  Case,
  Default,
  Break,
  Continue,
  Return,
  Procedure,  ///< `text`, `type`, `flag` says global; children: parameter Declarators, then the
              ///< body
  Empty,
};

enum class BinaryOp : std::uint8_t {
  None,
  Add,
  Subtract,
  Multiply,
  Divide,
  Modulo,
  Cross,
  Less,
  LessEqual,
  Greater,
  GreaterEqual,
  Equal,
  NotEqual,
};

[[nodiscard]] const char* operatorText(BinaryOp op);
[[nodiscard]] constexpr bool isComparison(BinaryOp op) {
  return op >= BinaryOp::Less;
}

struct Node {
  NodeKind kind = NodeKind::Empty;
  BinaryOp op = BinaryOp::None;
  Type type = Type::None;
  bool flag = false;
  bool assigns = false;  ///< an expression that changes a variable somewhere in it
  std::int32_t integer = 0;
  std::uint32_t line = 0;
  std::uint32_t column = 0;
  double number = 0.0;
  std::string_view text;
  std::span<Node*> children;
};

/// Owns the nodes and decoded strings of one source text; nothing in it is destroyed one by one.
class Arena {
 public:
  template <class T>
  [[nodiscard]] T* make() {
    return new (allocate(sizeof(T), alignof(T))) T();
  }
  template <class T>
  [[nodiscard]] std::span<T> copy(std::span<const T> items) {
    if (items.empty()) return {};
    T* first = static_cast<T*>(allocate(items.size_bytes(), alignof(T)));
    std::uninitialized_copy(items.begin(), items.end(), first);
    return {first, items.size()};
  }

 private:
  [[nodiscard]] void* allocate(std::size_t bytes, std::size_t alignment);

  static constexpr std::size_t kChunkBytes = 64 * 1024;
  std::vector<std::unique_ptr<std::byte[]>> chunks_;
  std::size_t used_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace host::mel
