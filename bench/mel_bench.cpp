// The script language next to Lua 5.4, each pair the same program; and the price of reaching a
// command from text.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

extern "C" {
#include <lauxlib.h>
#include <lua.h>
#include <lualib.h>
}

#include "host/mel/interpreter.h"

namespace {

using namespace host;

struct NumberCommand : mel::CommandHandle {};

/// A world with one command, which returns a number.
class OneCommandHost final : public mel::CommandHost {
 public:
  const mel::CommandHandle* findCommand(std::string_view name) override {
    return name == "getAttr" ? &command_ : nullptr;
  }
  Result<void> invoke(const mel::CommandHandle&, std::span<const mel::Value> arguments,
                      mel::Value& result) override {
    result = mel::Value(static_cast<double>(arguments.size()));
    return {};
  }
  void defer(std::string, bool) override {}
  void completeCommand(std::string_view, std::vector<std::string>&) override {}

 private:
  NumberCommand command_;
};

void require(bool isRight, const char* what) {
  if (isRight) return;
  std::fprintf(stderr, "mel_bench: wrong answer: %s\n", what);
  std::exit(1);
}

struct Program {
  const char* name;
  const char* mel;  ///< defines `run(int $n)`
  const char* lua;  ///< defines `run(n)`
  double (*expected)(std::int64_t);
  std::int64_t sizes[3];
};

constexpr Program kPrograms[] = {
    {"add_integers",
     "global proc float run(int $n) { int $s = 0; for ($i = 0; $i < $n; $i++) $s += $i % 7; return "
     "$s; }",
     "function run(n) local s = 0; for i = 0, n - 1 do s = s + i % 7 end return s end",
     [](std::int64_t n) {
       double sum = 0;
       for (std::int64_t i = 0; i < n; ++i) sum += static_cast<double>(i % 7);
       return sum;
     },
     {100000, 1000000, 10000000}},
    {"add_integers_only",
     "global proc float run(int $n) { int $s = 0; for ($i = 0; $i < $n; $i++) $s += 3; return $s; "
     "}",
     "function run(n) local s = 0; for i = 0, n - 1 do s = s + 3 end return s end",
     [](std::int64_t n) { return 3.0 * static_cast<double>(n); },
     {100000, 1000000, 10000000}},
    {"add_floats",
     "global proc float run(int $n) { float $s = 0; for ($i = 0; $i < $n; $i++) $s = $s + 0.5 * "
     "$i; return $s; }",
     "function run(n) local s = 0.0; for i = 0, n - 1 do s = s + 0.5 * i end return s end",
     [](std::int64_t n) { return 0.25 * static_cast<double>(n) * static_cast<double>(n - 1); },
     {100000, 1000000, 10000000}},
    {"call_procedures",
     "global proc int next(int $x) { return $x + 1; }"
     "global proc float run(int $n) { int $s = 0; for ($i = 0; $i < $n; $i++) $s = next($s); "
     "return $s; }",
     "function next1(x) return x + 1 end "
     "function run(n) local s = 0; for i = 0, n - 1 do s = next1(s) end return s end",
     [](std::int64_t n) { return static_cast<double>(n); },
     {10000, 100000, 1000000}},
    {"append_elements",
     "global proc float run(int $n) { int $a[]; for ($i = 0; $i < $n; $i++) $a[size($a)] = $i; "
     "return size($a); }",
     "function run(n) local a = {}; for i = 0, n - 1 do a[#a + 1] = i end return #a end",
     [](std::int64_t n) { return static_cast<double>(n); },
     {10000, 100000, 1000000}},
    {"build_string",
     "global proc float run(int $n) { string $s = \"\"; for ($i = 0; $i < $n; $i++) $s += \"word "
     "\"; return size($s); }",
     "function run(n) local t = {}; for i = 1, n do t[i] = 'word ' end return #table.concat(t) end",
     [](std::int64_t n) { return 5.0 * static_cast<double>(n); },
     {10000, 100000, 1000000}},
};

void runMel(benchmark::State& state, const Program& program) {
  OneCommandHost host;
  mel::Interpreter interpreter(host);
  require(interpreter.execute(program.mel).has_value(), program.name);
  const mel::Value arguments[] = {mel::Value(static_cast<std::int32_t>(state.range(0)))};
  double answer = 0;
  for (auto _ : state) answer = interpreter.callProcedure("run", arguments)->floatValue();
  require(answer == program.expected(state.range(0)), program.name);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void runLua(benchmark::State& state, const Program& program) {
  lua_State* lua = luaL_newstate();
  luaL_openlibs(lua);
  require(luaL_dostring(lua, program.lua) == LUA_OK, program.name);
  double answer = 0;
  for (auto _ : state) {
    lua_getglobal(lua, "run");
    lua_pushinteger(lua, state.range(0));
    require(lua_pcall(lua, 1, 1, 0) == LUA_OK, program.name);
    answer = lua_tonumber(lua, -1);
    lua_pop(lua, 1);
  }
  require(answer == program.expected(state.range(0)), program.name);
  state.SetItemsProcessed(state.iterations() * state.range(0));
  lua_close(lua);
}

/// The loop as a person types it, over global variables.
void runTyped(benchmark::State& state) {
  OneCommandHost host;
  mel::Interpreter interpreter(host);
  const std::string source =
      "int $s = 0; for ($i = 0; $i < " + std::to_string(state.range(0)) + "; $i++) $s += 3; $s";
  std::int32_t answer = 0;
  for (auto _ : state) answer = interpreter.execute(source)->intValue();
  require(answer == 3 * state.range(0), "typed loop");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// The same few texts again and again, as plug-ins send them.
void executeText(benchmark::State& state) {
  OneCommandHost host;
  mel::Interpreter interpreter(host);
  std::vector<std::string> texts;
  for (int i = 0; i < 16; ++i) texts.push_back("getAttr pCube" + std::to_string(i) + ".tx");
  double sum = 0;
  for (auto _ : state)
    for (std::int64_t i = 0; i < state.range(0); ++i)
      sum += interpreter.execute(texts[static_cast<std::size_t>(i) & 15])->floatValue();
  require(sum > 0, "execute");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// A command called from a loop.
void dispatch(benchmark::State& state) {
  OneCommandHost host;
  mel::Interpreter interpreter(host);
  const std::string source = "{ float $s = 0; for ($i = 0; $i < " + std::to_string(state.range(0)) +
                             "; $i++) $s += `getAttr pCube1.tx`; }";
  for (auto _ : state) require(interpreter.execute(source).has_value(), "dispatch");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Reading a script file of that many lines.
void compileLines(benchmark::State& state) {
  OneCommandHost host;
  mel::Interpreter interpreter(host);
  std::string source = "global proc body(string $n) {\n";
  for (std::int64_t i = 0; i < state.range(0); ++i)
    source +=
        "  if (size($n) > " + std::to_string(i) + ") getAttr -time 3 ($n + \".tx\"); // line\n";
  source += "}\n";
  for (auto _ : state) require(interpreter.execute(source, {"long.mel"}).has_value(), "compile");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

const bool kRegistered = [] {
  for (const Program& program : kPrograms) {
    for (const std::int64_t size : program.sizes) {
      const std::string name = program.name;
      benchmark::RegisterBenchmark((name + "/mel").c_str(),
                                   [&program](benchmark::State& s) { runMel(s, program); })
          ->Arg(size)
          ->Unit(benchmark::kMillisecond);
      benchmark::RegisterBenchmark((name + "/lua").c_str(),
                                   [&program](benchmark::State& s) { runLua(s, program); })
          ->Arg(size)
          ->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}();

BENCHMARK(runTyped)
    ->Name("add_integers_only/typed_at_global_scope")
    ->Arg(100000)
    ->Arg(1000000)
    ->Arg(10000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(executeText)
    ->Name("execute_text/command")
    ->Arg(3000)
    ->Arg(30000)
    ->Arg(300000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(dispatch)
    ->Name("dispatch/command_in_loop")
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(compileLines)
    ->Name("compile/script_lines")
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
