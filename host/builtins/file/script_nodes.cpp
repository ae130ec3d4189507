#include "host/builtins/file/script_nodes.h"

#include "host/base/messages.h"
#include "host/builtins/anim/expression_node.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

enum ScriptType : std::int64_t { Demand, OpenClose, InterfaceOpenClose };

std::int64_t integerOf(dg::Node& node, const char* attribute) {
  const dg::Value value = node.graph().stored(node.plug(attribute));
  const auto* number = std::get_if<std::int64_t>(&value);
  return number ? *number : 0;
}

std::string textOf(dg::Node& node, const char* attribute) {
  const dg::Value value = node.graph().stored(node.plug(attribute));
  const auto* text = std::get_if<std::string>(&value);
  return text ? *text : std::string();
}

bool runsOnOpening(Context& context, dg::Node& node) {
  const std::int64_t type = integerOf(node, "scriptType");
  return !textOf(node, "before").empty() &&
         (type == OpenClose || (type == InterfaceOpenClose && !context.session.isBatch));
}

}  // namespace

void admitExpressions(Context& context, bool allowed) {
  auto& trust = workspace::workspaceOf(context.session).kept<ExpressionTrust>();
  std::size_t held = 0;
  for (const dg::NodePtr& node : context.document.graph().nodes()) {
    if (node->type().name != "expression" || trust.has(*node)) continue;
    if (allowed) {
      trust.trust(node);
    } else {
      holdOutputs(*node);
      ++held;
    }
  }
  if (held == 0) return;
  postMessage(MessageKind::Warning,
              fmt::format("The scene brings {}: what they drive keeps its values. Open it with "
                          "'file -open -executeScriptNodes 1' if you trust it.",
                          held == 1 ? "an expression, which does not run"
                                    : fmt::format("{} expressions, which do not run", held)));
}

void runScriptNodes(Context& context, bool allowed) {
  admitExpressions(context, allowed);
  std::vector<dg::NodePtr> scripts;
  for (const dg::NodePtr& node : context.document.graph().nodes())
    if (node->type().name == "script" && runsOnOpening(context, *node)) scripts.push_back(node);
  if (scripts.empty()) return;
  if (!allowed) {
    postMessage(
        MessageKind::Warning,
        fmt::format("The scene brings {} that would run when it is opened ({}{}). Nothing "
                    "was run: open it with 'file -open -executeScriptNodes 1' if you trust "
                    "it.",
                    scripts.size() == 1 ? "a script" : fmt::format("{} scripts", scripts.size()),
                    scripts.front()->name(), scripts.size() > 1 ? ", ..." : ""));
    return;
  }
  for (const dg::NodePtr& node : scripts) {
    if (!node->isAlive()) continue;
    if (integerOf(*node, "sourceType") != 0) {
      postMessage(MessageKind::Warning,
                  fmt::format("The script of '{}' is not MEL: it was not run", node->name()));
      continue;
    }
    (void)context.session.executeLine(textOf(*node, "before"), {.undo = false});
  }
}

}  // namespace host::builtins
