#include "host/mel/machine.h"

#include <fmt/format.h>

#include <cstring>
#include <new>

#include "host/base/cancel.h"
#include "host/mel/bell.h"
#include "host/mel/builtins.h"
#include "host/mel/engine.h"

namespace host::mel {
namespace {

/// The machine whose code runs; others ring at its door.
std::atomic<Machine*> atWork = nullptr;

}  // namespace

void ringBell() noexcept {
  // One that has just come to its end gets a ring that nobody hears.
  if (Machine* machine = atWork.load()) machine->ring();
}

Machine::Machine(Engine& engine, std::size_t stackValues)
    : engine_(engine),
      stackValues_(stackValues),
      stack_(static_cast<Value*>(::operator new(stackValues * sizeof(Value)))),
      stackTop_(stack_) {}

Machine::~Machine() {
  ::operator delete(stack_);
}

bool Machine::pushFrame(const Function& function, std::uint16_t resultRegister) {
  const std::size_t count = function.registers.size();
  const auto free = stackValues_ - static_cast<std::size_t>(stackTop_ - stack_);
  if (frames_.size() >= kMaxFrames || count > free)
    return fail("Stack overflow: procedure calls are nested too deeply.");
  // A frame's initial registers hold numbers and None only, so their bytes are the values.
  if (count > 0)
    std::memcpy(static_cast<void*>(stackTop_), function.registers.data(), count * sizeof(Value));
  frames_.push_back({&function, function.code.data(), stackTop_, resultRegister});
  stackTop_ += count;
  return true;
}

void Machine::popFrame() {
  Value* const first = frames_.back().registers;
  for (Value* value = first; value != stackTop_; ++value) value->~Value();
  stackTop_ = first;
  frames_.pop_back();
}

void Machine::unwind(std::size_t frameCount) {
  while (frames_.size() > frameCount) popFrame();
  while (!handlers_.empty() && handlers_.back().frame >= frameCount) handlers_.pop_back();
}

bool Machine::bindArguments(const Function& function, std::span<Value> arguments) {
  Value* registers = frames_.back().registers;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Type type = function.parameters[i];
    if (arguments[i].type() == type) {  // arrays go by reference
      registers[i] = std::move(arguments[i]);
      continue;
    }
    Result<Value> converted = arguments[i].convertedTo(type);
    if (!converted) return fail(std::move(converted).error().message);
    registers[i] = std::move(*converted);
  }
  return true;
}

Machine::CallResult Machine::callSymbol(Symbol& symbol, std::span<Value> arguments,
                                        std::uint16_t resultRegister, Value& result) {
  if (!symbol.procedure) {
    if (const CommandHandle* command = engine_.commandOf(symbol)) {
      const bool isDone = fail(engine_.host().invoke(*command, arguments, result));
      for (Value& argument : arguments) argument = Value();
      return isDone ? CallResult::Returned : CallResult::Failed;
    }
    const Result<bool> isLoaded = engine_.loadProcedure(symbol);
    if (!isLoaded || !*isLoaded) {
      fail(isLoaded ? fmt::format("Cannot find procedure \"{}\".{}", symbol.name,
                                  handlers_.empty() ? engine_.suggestion(symbol.name) : "")
                    : isLoaded.error().message);
      return CallResult::Failed;
    }
  }
  const Function& function = *symbol.procedure;
  if (function.parameters.size() != arguments.size()) {
    fail(fmt::format("Wrong number of arguments on call to {}.", symbol.name));
    return CallResult::Failed;
  }
  if (!pushFrame(function, resultRegister)) return CallResult::Failed;
  if (bindArguments(function, arguments)) return CallResult::Entered;
  popFrame();
  return CallResult::Failed;
}

bool Machine::callBuiltin(const Builtin& builtin, std::span<Value> arguments, Value& result) {
  const auto given = static_cast<int>(arguments.size());
  const bool hasTooMany = builtin.maxArguments >= 0 && given > builtin.maxArguments;
  if (given < builtin.minArguments || hasTooMany)
    return fail(
        fmt::format("Invalid call to \"{}\".  Check number and types of arguments "
                    "expected by the procedure.",
                    builtin.name));
  const bool isDone = fail(builtin.function(engine_, arguments, result));
  for (Value& argument : arguments) argument = Value();
  if (!isDone || builtin.result == Type::None || result.type() == builtin.result) return isDone;
  Result<Value> converted = result.convertedTo(builtin.result);
  if (!converted) return fail(std::move(converted).error().message);
  result = std::move(*converted);
  return true;
}

std::string Machine::placeOf(const Frame& frame) const {
  const Function& function = *frame.function;
  const auto next = static_cast<std::size_t>(frame.pc - function.code.data());
  const std::uint32_t line = function.lines[next > 0 ? next - 1 : 0];
  if (function.file.empty()) return fmt::format("line {}: ", line);
  return fmt::format("file: {} line {}: ", function.file, line);
}

const std::string& Machine::currentFile() const {
  static const std::string kNone;
  return frames_.empty() ? kNone : frames_.back().function->file;
}

std::string Machine::currentPlace() const {
  return frames_.empty() ? std::string() : placeOf(frames_.back());
}

std::string Machine::backtrace() const {
  std::string text;
  for (auto frame = frames_.rbegin(); frame != frames_.rend(); ++frame) {
    if (frame->function->name.empty()) continue;
    const std::string place = placeOf(*frame);
    text += fmt::format("{}{}\n", place, frame->function->name);
  }
  return text;
}

/// The procedures that are at work and where each was called, the innermost first, a line each;
/// empty at global scope.
std::string Machine::callStack() const {
  constexpr int kMostLines = 20;
  std::string text;
  int lines = 0;
  for (std::size_t i = frames_.size(); i-- > 1;) {
    const Function& function = *frames_[i].function;
    if (function.name.empty()) continue;
    if (lines++ == kMostLines) return text + "\n//   ...";
    std::string place = placeOf(frames_[i - 1]);
    place.resize(place.size() - 2);
    text += fmt::format("\n//   in {}, called from {}", function.name, place);
  }
  return text;
}

/// After an error in a stretch that keeps globals in registers.
void Machine::writeBackGlobals(const Frame& frame) const {
  const auto at = static_cast<std::size_t>(frame.pc - frame.function->code.data());
  for (const CachedGlobals& stretch : frame.function->cachedGlobals) {
    if (at <= stretch.begin || at > stretch.end) continue;
    for (const CachedGlobals::Entry& entry : stretch.entries)
      entry.variable->value = frame.registers[entry.reg];
  }
}

/// Gives the pending error its place and goes to the nearest `catch` of this run; false if there is
/// none.
bool Machine::handleError(std::size_t baseFrame) {
  writeBackGlobals(frames_.back());
  if (error_ != placedError_) {
    error_ = currentPlace() + error_;
    placedError_ = error_;
    errorStack_ = callStack();
  }
  if (isFatal_ || handlers_.empty() || handlers_.back().frame < baseFrame) return false;
  const Handler handler = handlers_.back();
  handlers_.pop_back();
  while (frames_.size() > handler.frame + 1) popFrame();
  Frame& frame = frames_.back();
  frame.pc = handler.target;
  frame.registers[handler.resultRegister] = Value(1);
  if (!handler.isQuiet) engine_.host().message(MessageKind::Error, error_);
  return true;
}

bool Machine::answerBell() {
  const std::uint8_t asked = asked_.fetch_and(static_cast<std::uint8_t>(~kBell));
  if ((asked & kBell) != 0 && isCancelled()) interrupt();
  if (mostTurns_ > 0) {
    ring();
    if (++turns_ > mostTurns_) interrupt();
  }
  return (asked_.load(std::memory_order_relaxed) & kStop) != 0;
}

Result<void> Machine::run(const Function& function, std::span<const Value> arguments,
                          Value& result) {
  if (nesting_ >= kMaxNesting)
    return host::fail("Stack overflow: scripts evaluate each other too deeply.");
  if (nesting_ == 0) {
    asked_.store(mostTurns_ > 0 ? kBell : 0, std::memory_order_relaxed);
    turns_ = 0;
    atWork = this;
    isFatal_ = false;
    placedError_.clear();
  }
  ++nesting_;
  const std::size_t baseFrame = frames_.size();
  bool isDone = false;
  try {
    std::vector<Value> copies(arguments.begin(), arguments.end());
    isDone = pushFrame(function, kNoRegister) && bindArguments(function, copies) &&
             evaluate(baseFrame, result);
  } catch (const std::bad_alloc&) {
    fail("Out of memory.");
  }
  unwind(baseFrame);
  if (--nesting_ == 0) atWork = nullptr;
  if (isDone) return {};
  // Who called what is told once, with the error that nobody caught.
  const bool tellsStack = nesting_ == 0 && error_ == placedError_;
  return host::fail("{}{}", error_, tellsStack ? errorStack_ : std::string());
}

}  // namespace host::mel
