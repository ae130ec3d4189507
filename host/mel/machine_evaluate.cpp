#include <cmath>

#include "host/mel/builtins.h"
#include "host/mel/engine.h"
#include "host/mel/machine.h"
#include "host/mel/operators.h"

namespace host::mel {

namespace {

std::int32_t wrap(std::int64_t value) {
  return static_cast<std::int32_t>(static_cast<std::uint64_t>(value));
}
std::uint32_t bits(std::int32_t value) {
  return static_cast<std::uint32_t>(value);
}

}  // namespace

// The instruction's registers as integers and floats of known type.
#define INT(x) registers[x].payload_.integer
#define REAL(x) registers[x].payload_.real
// A conditional jump: the next word is its target. Loops close with backward jumps, where an
// interrupt is seen.
#define JUMP_IF(condition)                               \
  if ((condition) == (in.c != 0)) {                      \
    const Instruction* const target = code + pc->wide(); \
    if (target < pc && mustEnd()) goto interrupted;      \
    pc = target;                                         \
  } else {                                               \
    ++pc;                                                \
  }                                                      \
  break
#define CHECK(operation)         \
  if (!(operation)) goto failed; \
  break

/// The evaluation loop. One function, because splitting the switch would put the registers and the
/// program counter behind a call for every instruction.
bool Machine::evaluate(std::size_t baseFrame, Value& result) {
  const Function* function;
  const Instruction* code;
  const Instruction* pc;
  Value* registers;
  GlobalVariable* const* globals;
  Value returned;
  const auto enter = [&] {
    const Frame& frame = frames_.back();
    function = frame.function;
    code = function->code.data();
    pc = frame.pc;
    registers = frame.registers;
    globals = function->globals.data();
  };
  enter();

  while (true) {
    const Instruction in = *pc++;
    switch (in.op) {
      case Op::Move:
        registers[in.a] = registers[in.b];
        break;
      case Op::MoveInt:
        INT(in.a) = INT(in.b);
        break;
      case Op::MoveFloat:
        REAL(in.a) = REAL(in.b);
        break;
      case Op::IntToFloat:
        REAL(in.a) = INT(in.b);
        break;
      case Op::FloatToInt:
        INT(in.a) = truncateToInt(REAL(in.b));
        break;
      case Op::LoadInt:
        INT(in.a) = static_cast<std::int32_t>(in.wide());
        break;
      case Op::LoadConstant:
        registers[in.a] = function->constants[in.wide()];
        break;

      case Op::AddInt:
        INT(in.a) = static_cast<std::int32_t>(bits(INT(in.b)) + bits(INT(in.c)));
        break;
      case Op::SubtractInt:
        INT(in.a) = static_cast<std::int32_t>(bits(INT(in.b)) - bits(INT(in.c)));
        break;
      case Op::MultiplyInt:
        INT(in.a) = static_cast<std::int32_t>(bits(INT(in.b)) * bits(INT(in.c)));
        break;
      case Op::DivideInt:
        if (INT(in.c) == 0) goto dividedByZero;
        INT(in.a) = wrap(std::int64_t{INT(in.b)} / INT(in.c));
        break;
      case Op::ModuloInt:
        if (INT(in.c) == 0) goto dividedByZero;
        INT(in.a) = wrap(std::int64_t{INT(in.b)} % INT(in.c));
        break;
      case Op::AddImmediate:
        INT(in.a) =
            static_cast<std::int32_t>(bits(INT(in.b)) + bits(static_cast<std::int16_t>(in.c)));
        break;
      case Op::NegateInt:
        INT(in.a) = static_cast<std::int32_t>(0u - bits(INT(in.b)));
        break;
      case Op::LessInt:
        INT(in.a) = INT(in.b) < INT(in.c);
        break;
      case Op::LessEqualInt:
        INT(in.a) = INT(in.b) <= INT(in.c);
        break;
      case Op::EqualInt:
        INT(in.a) = INT(in.b) == INT(in.c);
        break;
      case Op::NotEqualInt:
        INT(in.a) = INT(in.b) != INT(in.c);
        break;

      case Op::AddFloat:
        REAL(in.a) = REAL(in.b) + REAL(in.c);
        break;
      case Op::SubtractFloat:
        REAL(in.a) = REAL(in.b) - REAL(in.c);
        break;
      case Op::MultiplyFloat:
        REAL(in.a) = REAL(in.b) * REAL(in.c);
        break;
      case Op::DivideFloat:
        if (REAL(in.c) == 0.0) goto dividedByZero;
        REAL(in.a) = REAL(in.b) / REAL(in.c);
        break;
      case Op::ModuloFloat:
        if (REAL(in.c) == 0.0) goto dividedByZero;
        REAL(in.a) = std::fmod(REAL(in.b), REAL(in.c));
        break;
      case Op::NegateFloat:
        REAL(in.a) = -REAL(in.b);
        break;
      case Op::LessFloat:
        INT(in.a) = REAL(in.b) < REAL(in.c);
        break;
      case Op::LessEqualFloat:
        INT(in.a) = REAL(in.b) <= REAL(in.c);
        break;
      case Op::EqualFloat:
        INT(in.a) = REAL(in.b) == REAL(in.c);
        break;
      case Op::NotEqualFloat:
        INT(in.a) = REAL(in.b) != REAL(in.c);
        break;

      case Op::Target:
        break;
      case Op::Jump: {
        const Instruction* const target = code + in.wide();
        if (target < pc && mustEnd()) goto interrupted;
        pc = target;
        break;
      }
      case Op::JumpLessInt:
        JUMP_IF(INT(in.a) < INT(in.b));
      case Op::JumpLessEqualInt:
        JUMP_IF(INT(in.a) <= INT(in.b));
      case Op::JumpEqualInt:
        JUMP_IF(INT(in.a) == INT(in.b));
      case Op::JumpLessFloat:
        JUMP_IF(REAL(in.a) < REAL(in.b));
      case Op::JumpLessEqualFloat:
        JUMP_IF(REAL(in.a) <= REAL(in.b));
      case Op::JumpEqualFloat:
        JUMP_IF(REAL(in.a) == REAL(in.b));
      case Op::StepJumpLess: {
        const auto next =
            static_cast<std::int32_t>(bits(INT(in.a)) + bits(static_cast<std::int16_t>(in.c)));
        INT(in.a) = next;
        if (next >= INT(in.b)) {
          ++pc;
          break;
        }
        pc = code + pc->wide();
        if (mustEnd()) goto interrupted;
        break;
      }
      case Op::JumpInt:
        JUMP_IF(INT(in.a) != 0);
      case Op::JumpTest: {
        const Result<bool> truth = registers[in.a].toBool();
        if (!truth) {
          fail(truth.error().message);
          goto failed;
        }
        JUMP_IF(*truth);
      }

      case Op::Negate:
        CHECK(fail(applyNegate(registers[in.b], registers[in.a])));
      case Op::Append:
        CHECK(appendText(registers[in.a], registers[in.b]));
      case Op::Convert:
        if (registers[in.b].type_ == static_cast<Type>(in.c) &&
            registers[in.b].type_ <= Type::Float) {
          registers[in.a] = registers[in.b];
          break;
        }
        CHECK(convert(registers[in.a], registers[in.b], static_cast<Type>(in.c), false));
      case Op::ConvertMove:
        if (registers[in.b].type_ == static_cast<Type>(in.c) &&
            registers[in.b].type_ <= Type::Float) {
          registers[in.a] = registers[in.b];
          break;
        }
        CHECK(convert(registers[in.a], registers[in.b], static_cast<Type>(in.c), true));
      case Op::AssignDynamic:
        CHECK(assignDynamic(registers[in.a], registers[in.b], in.c != 0));
      case Op::Default:
        registers[in.a] = Value::defaultOf(static_cast<Type>(in.c));
        break;
      case Op::DeclareArray:
        CHECK(declareArray(registers[in.a], INT(in.b), static_cast<Type>(in.c)));
      case Op::DeclareMatrix:
        CHECK(declareMatrix(registers[in.a], INT(in.b), INT(in.c)));
      case Op::AssignMatrix:
        CHECK(assignMatrix(registers[in.a], registers[in.b]));
      case Op::Size:
        INT(in.a) = static_cast<std::int32_t>(registers[in.b].size());
        break;

      case Op::IndexInt: {
        const IntArray& array = registers[in.b].intArray();
        const auto index = static_cast<std::uint32_t>(INT(in.c));
        if (index >= array.size()) {
          CHECK(fail(readElement(registers[in.b], INT(in.c), registers[in.a])));
        }
        INT(in.a) = array[index];
        break;
      }
      case Op::IndexFloat: {
        const FloatArray& array = registers[in.b].floatArray();
        const auto index = static_cast<std::uint32_t>(INT(in.c));
        if (index >= array.size()) {
          CHECK(fail(readElement(registers[in.b], INT(in.c), registers[in.a])));
        }
        REAL(in.a) = array[index];
        break;
      }
      case Op::Index:
        CHECK(fail(readElement(registers[in.b], INT(in.c), registers[in.a])));
      case Op::SetIndexInt: {
        IntArray& array = registers[in.a].mutableIntArray();
        const auto index = static_cast<std::uint32_t>(INT(in.b));
        if (index >= array.size()) {
          CHECK(fail(writeElement(registers[in.a], INT(in.b), registers[in.c])));
        }
        array[index] = INT(in.c);
        break;
      }
      case Op::SetIndexFloat: {
        FloatArray& array = registers[in.a].mutableFloatArray();
        const auto index = static_cast<std::uint32_t>(INT(in.b));
        if (index >= array.size()) {
          CHECK(fail(writeElement(registers[in.a], INT(in.b), registers[in.c])));
        }
        array[index] = REAL(in.c);
        break;
      }
      case Op::SetIndex:
        CHECK(fail(writeElement(registers[in.a], INT(in.b), registers[in.c])));
      case Op::IndexMatrix: {
        const Instruction extra = *pc++;
        CHECK(fail(readCell(registers[in.b], INT(in.c), INT(extra.a), registers[in.a])));
      }
      case Op::SetIndexMatrix: {
        const Instruction extra = *pc++;
        CHECK(fail(writeCell(registers[in.a], INT(in.b), INT(in.c), registers[extra.a])));
      }
      case Op::Component:
        CHECK(fail(readComponent(registers[in.b], in.c, registers[in.a])));
      case Op::MakeVector:
        CHECK(makeVector(registers[in.a], registers + in.b));
      case Op::MakeMatrix: {
        const Instruction extra = *pc++;
        CHECK(makeMatrix(registers[in.a], registers + in.b, extra.a, extra.b));
      }
      case Op::MakeArray: {
        const Instruction extra = *pc++;
        CHECK(makeArray(registers[in.a], {registers + in.b, in.c}, static_cast<Type>(extra.a)));
      }
      case Op::ExtendArray:
        CHECK(extendArray(registers[in.a], {registers + in.b, in.c}));
      case Op::FloatFunction:
        REAL(in.a) = callFloatFunction(in.c, REAL(in.b));
        break;

      case Op::GetGlobal:
        registers[in.a] = globals[in.wide()]->value;
        break;
      case Op::GetGlobalInt:
        INT(in.a) = globals[in.wide()]->value.payload_.integer;
        break;
      case Op::GetGlobalFloat:
        REAL(in.a) = globals[in.wide()]->value.payload_.real;
        break;
      case Op::SetGlobal:
        CHECK(storeGlobal(*globals[in.wide()], registers[in.a]));
      case Op::SetGlobalInt:
        globals[in.wide()]->value.payload_.integer = INT(in.a);
        break;
      case Op::SetGlobalFloat:
        globals[in.wide()]->value.payload_.real = REAL(in.a);
        break;
      case Op::AppendGlobal:
        CHECK(appendText(globals[in.wide()]->value, registers[in.a]));
      case Op::InitGlobal: {
        GlobalVariable& variable = *globals[in.wide()];
        pc = variable.isInitialised ? code + pc->wide() : pc + 1;
        variable.isInitialised = true;
        break;
      }

      case Op::CallSymbol: {
        frames_.back().pc = ++pc;
        if (mustEnd()) goto interrupted;
        const std::span<Value> arguments(registers + in.b, in.c);
        const CallResult outcome =
            callSymbol(*function->symbols[pc[-1].wide()], arguments, in.a, returned);
        if (outcome == CallResult::Failed) goto failed;
        if (outcome == CallResult::Entered) {
          enter();
          break;
        }
        if (in.a != kNoRegister) registers[in.a] = std::move(returned);
        returned = Value();
        break;
      }
      case Op::CallBuiltin: {
        frames_.back().pc = ++pc;
        if (mustEnd()) goto interrupted;
        const std::span<Value> arguments(registers + in.b, in.c);
        if (!callBuiltin(*function->builtins[pc[-1].wide()], arguments, returned)) goto failed;
        if (in.a != kNoRegister) registers[in.a] = std::move(returned);
        returned = Value();
        break;
      }
      case Op::Return:
      case Op::ReturnNone: {
        if (in.op == Op::ReturnNone) {
          returned = Value::defaultOf(function->returnType);
        } else if (registers[in.a].type_ <= Type::Float) {
          returned = registers[in.a];
        } else if (!convert(returned, registers[in.a], Type::None, true)) {
          goto failed;
        }
        const std::uint16_t resultRegister = frames_.back().resultRegister;
        popFrame();
        if (frames_.size() == baseFrame) {
          result = std::move(returned);
          return true;
        }
        enter();
        if (resultRegister != kNoRegister) registers[resultRegister] = std::move(returned);
        returned = Value();
        break;
      }
      case Op::TryBegin:
        handlers_.push_back({frames_.size() - 1, code + pc->wide(), in.a, in.c != 0});
        ++pc;
        break;
      case Op::TryEnd:
        handlers_.pop_back();
        break;
      case Op::DefineProcedure: {
        const ProcedureDefinition& definition = function->procedures[in.wide()];
        engine_.define(*definition.symbol, definition.function);
        break;
      }
      case Op::NextElement: {
        bool isDone = false;
        if (!nextElement(registers[in.a], registers[in.b], INT(in.c), isDone)) goto failed;
        pc = isDone ? code + pc->wide() : pc + 1;
        break;
      }
      default: {
        const auto op =
            static_cast<BinaryOp>(static_cast<int>(in.op) - static_cast<int>(Op::BinaryFirst));
        const bool areInts =
            registers[in.b].type_ == Type::Int && registers[in.c].type_ == Type::Int;
        if (areInts && op == BinaryOp::Add) {
          registers[in.a] = Value(static_cast<std::int32_t>(bits(INT(in.b)) + bits(INT(in.c))));
          break;
        }
        CHECK(fail(applyBinary(op, registers[in.b], registers[in.c], registers[in.a])));
      }
    }
    continue;

  dividedByZero:
    fail("Division by zero error.");
    goto failed;
  interrupted:
    fail("Interrupted.");
    isFatal_ = true;
  failed:
    frames_.back().pc = pc;
    returned = Value();
    if (!handleError(baseFrame)) return false;
    enter();
  }
}

#undef INT
#undef REAL
#undef JUMP_IF
#undef CHECK

}  // namespace host::mel
