#pragma once

#include <memory>
#include <set>
#include <string>

#include "host/dg/node.h"
#include "host/nodes/type_builder.h"

namespace host::builtins {

/// The expression node: `internalExpression` with .I[n] for what it reads and .O[n] for what it
/// writes. It runs when somebody asks for an output, and only when it is trusted.
void registerExpressionType(dg::TypeRegistry& types);

/// Expressions that may run: those that were written here, and those of scenes that were opened
/// with trust. What a scene brings along otherwise keeps the values that it was saved with.
class ExpressionTrust {
 public:
  void trust(const dg::NodePtr& node) { trusted_.insert(node); }
  [[nodiscard]] bool has(dg::Node& node) const { return trusted_.contains(node.weak_from_this()); }

 private:
  std::set<std::weak_ptr<dg::Node>, std::owner_less<>> trusted_;
};

/// Runs an expression for what it does beside its outputs.
Result<void> runExpression(dg::Node& node);

/// Runs the expressions that go by the time and drive nothing; those that drive something run when
/// that is asked for.
Result<void> runTimedExpressions(dg::Graph& graph);

/// Gives the outputs of an expression that may not run the values that what they drive has.
void holdOutputs(dg::Node& node);

}  // namespace host::builtins
