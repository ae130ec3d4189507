#include <algorithm>

#include "host/mel/builtins.h"
#include "host/mel/compiler.h"
#include "host/mel/engine.h"

namespace host::mel {

namespace {

/// Functions of the language that can run other script text.
bool runsScripts(std::string_view name) {
  return name == "eval" || name == "evalEcho" || name == "source";
}

}  // namespace

/// Collects the numeric globals named in a statement; false if code elsewhere could see or change
/// them meanwhile.
bool Compiler::collectGlobals(const Node& node, std::vector<GlobalVariable*>& globals) const {
  if (node.kind == NodeKind::Procedure) return false;
  if (node.kind == NodeKind::Call) {
    const bool isCatch = node.text == "catch" || node.text == "catchQuiet";
    const bool isCast = node.text == "int" || node.text == "float" || node.text == "string" ||
                        node.text == "vector";
    if (!isCatch && !isCast && (runsScripts(node.text) || !builtinFor(node.text))) return false;
  }
  if (node.kind == NodeKind::Variable || node.kind == NodeKind::Declarator) {
    GlobalVariable* global = engine_.findGlobal(node.text);
    if (global && isNumber(global->type) && std::ranges::find(globals, global) == globals.end())
      globals.push_back(global);
  }
  return std::ranges::all_of(
      node.children, [&](const Node* child) { return !child || collectGlobals(*child, globals); });
}

/// Starts to keep numeric globals in registers for the length of a loop, where that can't be
/// noticed.
bool Compiler::beginCachedGlobals(const Node& loop) {
  if (body_->isProcedure || body_->cached) return false;
  std::vector<GlobalVariable*> globals;
  if (!collectGlobals(loop, globals)) return false;
  body_->cached.emplace();
  for (GlobalVariable* global : globals) cacheGlobal(global, true);
  body_->cached->begin = here();
  return true;
}

void Compiler::cacheGlobal(GlobalVariable* global, bool isLoaded) {
  if (!isNumber(global->type)) return;
  const std::uint16_t reg = newRegister(global->type);
  body_->cached->entries.push_back({reg, global});
  const Op op = global->type == Type::Int ? Op::GetGlobalInt : Op::GetGlobalFloat;
  if (isLoaded) emitWide(op, reg, globalIndex(global));
}

Compiler::Variable Compiler::cachedVariable(GlobalVariable* global) {
  if (body_->cached)
    for (const CachedGlobals::Entry& entry : body_->cached->entries)
      if (entry.variable == global) return {nullptr, entry.reg, global->type};
  return {global, 0, global->type};
}

void Compiler::writeBackGlobals() {
  if (!body_->cached) return;
  for (const CachedGlobals::Entry& entry : body_->cached->entries)
    emitWide(entry.variable->type == Type::Int ? Op::SetGlobalInt : Op::SetGlobalFloat, entry.reg,
             globalIndex(entry.variable));
}

void Compiler::endCachedGlobals() {
  body_->cached->end = here();
  writeBackGlobals();
  body_->function->cachedGlobals.push_back(std::move(*body_->cached));
  body_->cached.reset();
}

}  // namespace host::mel
