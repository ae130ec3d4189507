#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/base/result.h"
#include "host/mel/bytecode.h"

namespace host::mel {

class Engine;

/// Evaluates compiled code. Procedure calls live on a stack of its own, so the depth of a script
/// never reaches the native stack; only text that runs from within a command or `eval` nests
/// natively, which is bounded too.
class Machine {
 public:
  /// @param stackValues how many values the frames of all running procedures may hold together
  explicit Machine(Engine& engine, std::size_t stackValues);
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  /// Runs a function with arguments already counted. An error's message begins with its place.
  Result<void> run(const Function& function, std::span<const Value> arguments, Value& result);

  void interrupt() noexcept { asked_.fetch_or(kStop, std::memory_order_relaxed); }
  [[nodiscard]] bool isInterrupted() const noexcept {
    return isRunning() && (asked_.load(std::memory_order_relaxed) & kStop) != 0;
  }
  /// Ends each later run after so many loop turns and calls, as interrupt() does; 0: none. Unlike
  /// one that the clock ends, such a run does the same each time.
  void limitTurns(std::uint32_t turns) noexcept { mostTurns_ = turns; }
  /// Code that runs asks isCancelled() between two instructions.
  void ring() noexcept { asked_.fetch_or(kBell, std::memory_order_relaxed); }
  [[nodiscard]] bool isRunning() const noexcept { return nesting_ > 0; }
  /// The file of the innermost running code; empty if that was entered.
  [[nodiscard]] const std::string& currentFile() const;
  /// `file: f line n: ` or `line n: ` of the innermost running instruction; empty when nothing
  /// runs.
  [[nodiscard]] std::string currentPlace() const;
  /// The running procedures, innermost first, one a line.
  [[nodiscard]] std::string backtrace() const;
  /// Says that this message names its place already.
  void markPlaced(std::string message) {
    placedError_ = std::move(message);
    errorStack_ = callStack();
  }
  [[nodiscard]] int nesting() const { return nesting_; }

 private:
  struct Frame {
    const Function* function;
    const Instruction* pc;  ///< of the call that left the frame
    Value* registers;
    std::uint16_t resultRegister;  ///< of the caller
  };
  struct Handler {
    std::size_t frame;
    const Instruction* target;
    std::uint16_t resultRegister;
    bool isQuiet;
  };
  bool evaluate(std::size_t baseFrame, Value& result);
  void writeBackGlobals(const Frame& frame) const;
  bool handleError(std::size_t baseFrame);
  bool pushFrame(const Function& function, std::uint16_t resultRegister);
  void popFrame();
  void unwind(std::size_t frameCount);
  bool bindArguments(const Function& function, std::span<Value> arguments);
  enum class CallResult { Entered, Returned, Failed };
  CallResult callSymbol(Symbol& symbol, std::span<Value> arguments, std::uint16_t resultRegister,
                        Value& result);
  bool callBuiltin(const Builtin& builtin, std::span<Value> arguments, Value& result);
  bool fail(std::string message);
  bool fail(Result<void> result);
  [[nodiscard]] std::string placeOf(const Frame& frame) const;
  [[nodiscard]] std::string callStack() const;

  // operations on values of any type; false after fail()
  bool assignDynamic(Value& target, Value& source, bool mayMove);
  bool assignMatrix(Value& target, Value& source);
  bool convert(Value& target, Value& source, Type type, bool mayMove);
  bool storeGlobal(GlobalVariable& variable, Value& source);
  bool appendText(Value& target, const Value& suffix);
  bool makeVector(Value& target, const Value* parts);
  bool makeMatrix(Value& target, const Value* cells, int rows, int columns);
  bool makeArray(Value& target, std::span<const Value> elements, Type type);
  bool extendArray(Value& target, std::span<const Value> elements);
  bool declareArray(Value& target, std::int32_t size, Type type);
  bool declareMatrix(Value& target, std::int32_t rows, std::int32_t columns);
  bool nextElement(Value& target, const Value& list, std::int32_t& position, bool& isDone);

  static constexpr std::size_t kMaxFrames = 20000;
  static constexpr int kMaxNesting = 150;

  Engine& engine_;
  std::size_t stackValues_;
  Value* stack_;
  Value* stackTop_;
  std::vector<Frame> frames_;
  std::vector<Handler> handlers_;
  std::string error_;
  std::string placedError_;
  std::string errorStack_;  ///< of the error that was placed last
  int nesting_ = 0;
  bool isFatal_ = false;  ///< the pending error passes every catch
  /// What others ask of the running code, seen at every call and where a loop closes.
  static constexpr std::uint8_t kStop = 1, kBell = 2;
  std::atomic<std::uint8_t> asked_ = 0;
  std::uint32_t mostTurns_ = 0, turns_ = 0;  ///< the bell rings all the time where turns count
  /// Whether the code is to end here.
  [[nodiscard]] bool mustEnd() {
    return asked_.load(std::memory_order_relaxed) != 0 && answerBell();
  }
  bool answerBell();
};

}  // namespace host::mel
