#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/mel/command_host.h"
#include "host/mel/value.h"

namespace host::mel {

struct Builtin;
struct Function;

/// Register machine: every variable and intermediate of a procedure has a register of its own.
/// Registers of class Int and Float always hold that type, so arithmetic on them neither tests nor
/// writes type tags.
enum class Op : std::uint16_t {
  // a = b ...
  Move,
  MoveInt,
  MoveFloat,
  IntToFloat,
  FloatToInt,
  LoadInt,       ///< a = bc
  LoadConstant,  ///< a = constants[bc]
  AddInt,
  SubtractInt,
  MultiplyInt,
  DivideInt,
  ModuloInt,
  AddImmediate,  ///< a = b + int16(c)
  NegateInt,
  LessInt,
  LessEqualInt,
  EqualInt,
  NotEqualInt,
  AddFloat,
  SubtractFloat,
  MultiplyFloat,
  DivideFloat,
  ModuloFloat,
  NegateFloat,
  LessFloat,
  LessEqualFloat,
  EqualFloat,
  NotEqualFloat,
  // jumps; conditional ones are followed by a Target word and taken when the condition equals c
  Target,  ///< bc is a place in the code
  Jump,    ///< to bc
  JumpLessInt,
  JumpLessEqualInt,
  JumpEqualInt,
  JumpLessFloat,
  JumpLessEqualFloat,
  JumpEqualFloat,
  StepJumpLess,  ///< a += int16(c); taken if a < b, all integers: the end of a counting loop
  JumpInt,       ///< a != 0
  JumpTest,      ///< truth of any value a
  // values of any type; BinaryFirst + BinaryOp: a = b op c
  BinaryFirst,
  BinaryLast = BinaryFirst + 12,
  Negate,
  Append,         ///< string a += b
  Convert,        ///< a = b as Type(c)
  ConvertMove,    ///< the same, b is not used again
  AssignDynamic,  ///< a = b; a keeps its type once it has one
  Default,        ///< a = fresh value of Type(c)
  DeclareArray,   ///< a = array of Type(c) with b elements
  DeclareMatrix,  ///< a = matrix of b by c (registers)
  AssignMatrix,   ///< a = b; a keeps its size
  Size,
  IndexInt,  ///< typed: a = b[c]
  IndexFloat,
  Index,
  SetIndexInt,  ///< typed: a[b] = c
  SetIndexFloat,
  SetIndex,
  IndexMatrix,     ///< a = b[c][next.a]
  SetIndexMatrix,  ///< a[b][c] = next.a
  Component,       ///< a = component c of b
  MakeVector,      ///< a = vector of registers b, b + 1, b + 2
  MakeMatrix,      ///< a = matrix of registers from b; next: a rows, b columns
  MakeArray,       ///< a = array of c registers from b; next.a is its Type, None to infer
  ExtendArray,     ///< appends c registers from b to array a
  FloatFunction,   ///< a = function c of float b
  // variables of global scope: bc is the index into globals
  GetGlobal,
  GetGlobalInt,
  GetGlobalFloat,
  SetGlobal,
  SetGlobalInt,
  SetGlobalFloat,
  AppendGlobal,
  InitGlobal,  ///< goes on at the next Target if the variable was initialised before
  // calls: a = result (kNoRegister to drop it), arguments are the c registers from b; next.bc is
  // the index
  CallSymbol,
  CallBuiltin,
  Return,
  ReturnNone,
  TryBegin,  ///< a receives 1 after an error, c says quiet; next is the Target to go on at
  TryEnd,
  DefineProcedure,  ///< bc is the index into procedures
  NextElement,  ///< a = list b at position c, which advances; past the end goes to the next Target
};

inline constexpr std::uint16_t kNoRegister = 0xffff;

struct Instruction {
  Op op;
  std::uint16_t a = 0;
  std::uint16_t b = 0;
  std::uint16_t c = 0;
  [[nodiscard]] std::uint32_t wide() const { return b | (std::uint32_t{c} << 16); }
  void setWide(std::uint32_t value) {
    b = static_cast<std::uint16_t>(value);
    c = static_cast<std::uint16_t>(value >> 16);
  }
};

/// A callable name and what it means at present; call sites hold its address.
struct Symbol {
  std::string name;
  std::shared_ptr<const Function> procedure;
  const CommandHandle* command = nullptr;
  std::uint32_t commandGeneration = 0;  ///< of the host when `command` was looked up
};

struct GlobalVariable {
  std::string name;
  Type type = Type::None;  ///< None: taken from the first value
  bool isInitialised = false;
  Value value;
};

/// A procedure definition inside a function's code.
struct ProcedureDefinition {
  Symbol* symbol;
  std::shared_ptr<const Function> function;
  bool isHoisted;  ///< defined before the code runs, so that calls may precede it
};

/// A stretch of code at global scope that keeps numeric global variables in registers. Nothing in
/// it can reach those variables otherwise; an error in it writes them back.
struct CachedGlobals {
  struct Entry {
    std::uint16_t reg;
    GlobalVariable* variable;
  };
  std::size_t begin = 0;
  std::size_t end = 0;
  std::vector<Entry> entries;
};

/// Compiled code of a procedure or of a whole source text.
struct Function {
  std::string name;  ///< empty for a source text
  std::string file;  ///< empty for entered text
  std::vector<Type> parameters;
  Type returnType = Type::None;
  std::vector<Instruction> code;
  std::vector<std::uint32_t> lines;  ///< source line of each instruction
  std::vector<Value> registers;      ///< content on entry: numbers and None only
  std::vector<Value> constants;
  std::vector<GlobalVariable*> globals;
  std::vector<Symbol*> symbols;
  std::vector<const Builtin*> builtins;
  std::vector<ProcedureDefinition> procedures;
  std::vector<CachedGlobals> cachedGlobals;
  /// The text's own procedures, which nothing else names; they stay as long as what can call them:
  /// the text itself and its global procedures. Null in the text's own ones.
  std::shared_ptr<std::deque<Symbol>> locals;
};

}  // namespace host::mel
