#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/mel/ast.h"
#include "host/mel/bytecode.h"
#include "host/mel/parser.h"

namespace host::mel {

class Engine;

/// Turns the tree of one source text into code.
///
/// Types are static where the text fixes them (declarations, literals, the language's functions)
/// and numbers then run on typed registers; results of commands and procedures have no static type
/// and are converted where they are used.
class Compiler {
 public:
  Compiler(Engine& engine, const std::string& file);

  /// The code of the whole text, or null with `diagnostic()` set; then no global variable was
  /// created.
  [[nodiscard]] std::shared_ptr<const Function> compile(const Node& root);
  [[nodiscard]] const Diagnostic& diagnostic() const { return diagnostic_; }

 private:
  /// Where an expression's value is.
  struct Operand {
    std::uint16_t reg = 0;
    Type type = Type::None;  ///< None: known only when running
    bool isTemporary = false;
  };
  struct Variable {
    GlobalVariable* global = nullptr;  ///< else a register of the function
    std::uint16_t reg = 0;
    Type type = Type::None;
  };
  struct Loop {
    bool isSwitch = false;
    std::vector<std::size_t> breaks;
    std::vector<std::size_t> continues;
  };
  using Scope = std::unordered_map<std::string_view, Variable>;

  static constexpr std::size_t kNoStep = static_cast<std::size_t>(-1);

  /// What is known of the function being compiled.
  struct Body {
    std::shared_ptr<Function> function;
    std::vector<Scope> scopes;
    std::vector<std::size_t> switchScopes;  ///< which of `scopes` are the braces of a switch
    std::vector<Loop> loops;
    std::vector<std::uint16_t> freeInts, freeFloats, freeOthers;
    std::map<std::size_t, std::vector<std::uint16_t>> freeBlocks;
    std::unordered_map<std::int32_t, std::uint16_t> intRegisters;
    std::unordered_map<std::uint64_t, std::uint16_t> floatRegisters;
    std::unordered_map<std::string_view, std::uint32_t> texts;
    std::unordered_map<const void*, std::uint32_t> references;
    bool isProcedure = false;
    bool isSkippable =
        false;  ///< a declaration here may be jumped over while its variable stays visible
    std::vector<Variable> skippable;
    std::optional<CachedGlobals> cached;
    std::size_t stepAt =
        kNoStep;  ///< the increment that ends a loop's body, if it is the last instruction
  };

  // compiler.cpp: procedures, registers, code, scopes
  void declareProcedures(const Node& root);
  Symbol& makeLocalSymbol(std::string_view name);  ///< of this text alone
  std::shared_ptr<Function> finish();
  void procedure(const Node& node);
  std::size_t emit(Op op, std::uint16_t a = 0, std::uint16_t b = 0, std::uint16_t c = 0);
  std::size_t emitWide(Op op, std::uint16_t a, std::uint32_t wide);
  std::size_t emitTarget() { return emit(Op::Target); }
  void patch(std::size_t at, std::size_t target);
  void patch(const std::vector<std::size_t>& places, std::size_t target);
  [[nodiscard]] std::size_t here() const { return body_->function->code.size(); }
  std::uint16_t newRegister(Type type);
  Operand temporary(Type type);
  Operand destination(const Operand* wanted, Type type);
  void release(const Operand& operand);
  std::uint16_t allocateBlock(std::size_t count);
  void releaseBlock(std::uint16_t base, std::size_t count);
  Operand intConstant(std::int32_t value);
  Operand floatConstant(double value);
  std::uint32_t textConstant(std::string_view text);
  std::uint32_t globalIndex(GlobalVariable* variable);
  void beginBody();
  void openScope() { body_->scopes.emplace_back(); }
  void closeScope() { body_->scopes.pop_back(); }
  std::optional<Variable> findVariable(std::string_view name);
  Variable declareVariable(const Node& node, Type type, bool isGlobal, bool& isNew);
  [[nodiscard]] std::size_t scopeFor(const Node& node) const;
  [[nodiscard]] bool isGlobalScope() const {
    return !body_->isProcedure && body_->scopes.size() == 1;
  }
  Operand fault(const Node& at, std::string text);
  Operand undeclared(const Node& at);

  // compiler_statements.cpp
  void statement(const Node& node);
  void statements(std::span<Node* const> nodes);
  Operand resultStatement(const Node& node);
  void blockStatement(const Node& node);
  void branch(const Node& node);
  void declaration(const Node& node);
  void declareOne(const Node& declaration, const Node& node);
  void declareSized(const Variable& variable, const Node& node);
  void loopStatement(const Node& node);
  void ifStatement(const Node& node);
  void whileStatement(const Node& node);
  void doStatement(const Node& node);
  void forStatement(const Node& node);
  void forInStatement(const Node& node);
  void switchStatement(const Node& node);
  void jumpStatement(const Node& node);
  void returnStatement(const Node& node);

  // compiler_globals.cpp
  bool beginCachedGlobals(const Node& loop);
  void endCachedGlobals();
  void writeBackGlobals();
  Variable cachedVariable(GlobalVariable* global);
  void cacheGlobal(GlobalVariable* global, bool isLoaded);
  bool collectGlobals(const Node& node, std::vector<GlobalVariable*>& globals) const;

  // compiler_expressions.cpp
  Operand expression(const Node& node, const Operand* wanted = nullptr);
  void discard(const Node& node);
  Operand expressionAs(const Node& node, Type type, const Operand* wanted = nullptr);
  void expressionInto(const Node& node, std::uint16_t slot);
  Operand asInt(Operand operand);
  Operand asFloat(Operand operand);
  Operand readVariable(const Variable& variable);
  Operand binaryChain(const Node& node, const Operand* wanted);
  Operand combine(BinaryOp op, Operand left, const Node& right, const Operand* wanted);
  Operand apply(BinaryOp op, Operand left, Operand right, const Operand* wanted);
  Operand applyNumbers(BinaryOp op, const Operand& left, const Operand& right,
                       const Operand* wanted);
  Operand negate(const Node& node, const Operand* wanted);
  Operand truth(const Node& node);
  Operand ternary(const Node& node);
  Operand vectorLiteral(const Node& node, const Operand* wanted);
  Operand matrixLiteral(const Node& node);
  Operand arrayLiteral(const Node& node, Type hint);
  Operand index(const Node& node, const Operand* wanted);
  Operand component(const Node& node, const Operand* wanted);
  Operand cast(const Node& node, Type type, const Operand* wanted);
  /// Jumps when the truth of `node` equals `sense`; the places to patch are appended.
  void jumpIf(const Node& node, bool sense, std::vector<std::size_t>& places);
  void jumpIfComparison(const Node& node, bool sense, std::vector<std::size_t>& places);
  void emitJumpIf(Op op, const Operand& a, std::uint16_t b, bool sense,
                  std::vector<std::size_t>& places);

  // compiler_assignments.cpp
  Operand assignment(const Node& node, bool isDiscarded);
  Operand assignVariable(const Node& node, bool isDiscarded);
  Operand assignElement(const Node& node, bool isDiscarded);
  Operand step(const Node& node, bool isDiscarded);
  Operand stepVariable(const Node& node, const Variable& variable, bool isDiscarded);
  void store(const Variable& variable, const Operand& value);
  void moveTo(const Operand& target, const Operand& value);
  Operand copied(const Operand& value);
  struct Element {
    Operand base, row, column;
    bool isCell = false;
    Type type = Type::None;
  };
  std::optional<Element> element(const Node& node);
  Operand loadElement(const Element& element, const Operand* wanted);
  void storeElement(const Element& element, const Operand& value);
  void releaseElement(const Element& element);

  // compiler_calls.cpp
  Operand call(const Node& node, const Operand* wanted, bool isDiscarded);
  void callInto(const Node& node, std::uint16_t slot);
  void emitCall(const Node& node, const Builtin* builtin, std::uint16_t result);
  Operand catchCall(const Node& node);
  Operand sizeCall(const Node& node, const Operand* wanted);
  std::uint16_t arguments(const Node& node);
  [[nodiscard]] Symbol& resolve(std::string_view name);
  [[nodiscard]] const Builtin* builtinFor(std::string_view name) const;

  static constexpr std::size_t kMaxPinnedConstants = 200;
  static constexpr std::size_t kMaxRegisters = 60000;

  Engine& engine_;
  std::string file_;
  Diagnostic diagnostic_;
  bool hasFault_ = false;
  std::uint32_t line_ = 1;
  Body* body_ = nullptr;
  std::unordered_map<std::string_view, Symbol*> localProcedures_;
  std::shared_ptr<std::deque<Symbol>> locals_ = std::make_shared<std::deque<Symbol>>();
  std::unordered_set<std::string_view> globalProcedures_;
  std::vector<std::string> createdGlobals_;
};

}  // namespace host::mel
