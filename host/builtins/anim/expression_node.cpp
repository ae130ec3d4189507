#include "host/builtins/anim/expression_node.h"

#include <algorithm>
#include <memory>
#include <set>

#include "host/builtins/anim/time_limit.h"
#include "host/cmd/session.h"
#include "host/dg/graph.h"
#include "host/nodes/anim/anim_curve.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using dg::Computed;
using dg::DataBlock;
using dg::Node;
using dg::Plug;

/// What was made of an expression's text: a procedure of the interpreter.
struct CompiledExpressions {
  std::map<std::string, std::string> procedures;  ///< by text
  std::set<std::string> stopped;                  ///< texts that ran for too long
  std::unique_ptr<TimeLimit> limit;
};

/// Seconds of the program's own time that one expression may take. A view that asks at every frame
/// would stand still long before.
constexpr double kMostSeconds = 2;

/// ".I[3]" as "$readValues[3]", ".O[0]" as "$writtenValues[0]"; time and frame as variables.
std::string asProcedure(const std::string& text, const std::string& name) {
  std::string body;
  bool inString = false, inWord = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool isWordChar = std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$';
    if (inString) {
      body += c;
      if (c == '\\' && i + 1 < text.size()) body += text[++i];
      if (c == '"') inString = false;
      continue;
    }
    inString = c == '"';
    const std::string_view rest = std::string_view(text).substr(i);
    if (!inWord && (rest.starts_with(".I[") || rest.starts_with(".O["))) {
      body += c == '.' && text[i + 1] == 'I' ? "$readValues" : "$writtenValues";
      ++i;
      continue;
    }
    const auto isKeyword = [&](std::string_view word) {
      if (inWord || !rest.starts_with(word)) return false;
      const char next = rest.size() > word.size() ? rest[word.size()] : ' ';
      return !std::isalnum(static_cast<unsigned char>(next)) && next != '_' && next != '(';
    };
    if (isKeyword("time") || isKeyword("frame")) body += '$';
    body += c;
    inWord = isWordChar;
  }
  return "global proc float[] " + name +
         "(float $readValues[], float $writtenValues[], float $time, float $frame) {\n" + body +
         "\n;return $writtenValues; }";
}

Result<std::string> procedureFor(cmd::Session& session, const std::string& text) {
  auto& compiled = workspace::workspaceOf(session).kept<CompiledExpressions>();
  const auto found = compiled.procedures.find(text);
  if (found != compiled.procedures.end()) return found->second;
  const std::string name = fmt::format("runExpression{}", compiled.procedures.size() + 1);
  const auto defined = session.interpreter().execute(asProcedure(text, name));
  if (!defined) return failWith(defined.error());
  compiled.procedures.emplace(text, name);
  return name;
}

double numberOf(const dg::Value& value) {
  if (const auto* real = std::get_if<double>(&value)) return *real;
  const auto* whole = std::get_if<std::int64_t>(&value);
  return whole ? static_cast<double>(*whole) : 0;
}

/// An array's values as scripts index them; elements that are not there are 0.
mel::FloatArray spread(dg::Graph& graph, const Plug& array, bool evaluates) {
  mel::FloatArray values;
  for (const Index index : graph.elementIndices(array)) {
    if (index < 0 || index > 10000) continue;
    const Plug element = array.element(index);
    const auto value = evaluates ? graph.get(element) : Result<dg::Value>(graph.stored(element));
    values.resize(std::max(values.size(), at(index) + 1));
    if (value) values[at(index)] = numberOf(*value);
  }
  return values;
}

Result<mel::FloatArray> evaluate(Node& node) {
  cmd::Session& session = cmd::currentSession();
  dg::Graph& graph = node.graph();
  const dg::Value stored = graph.stored(node.plug("internalExpression"));
  const auto* text = std::get_if<std::string>(&stored);
  if (!text || text->empty()) return mel::FloatArray();
  const auto procedure = procedureFor(session, *text);
  if (!procedure) return fail("{}: {}", node.name(), procedure.error().message);
  const Plug time = node.plug("time");
  const double seconds = graph.source(time) ? numberOf(graph.get(time).value_or(dg::Value()))
                                            : nodes::sceneTime(graph);
  const double rate = session.document().units().framesPerSecond();
  std::vector<mel::Value> arguments{mel::Value(spread(graph, node.plug("input"), true)),
                                    mel::Value(spread(graph, node.plug("output"), false)),
                                    mel::Value(seconds), mel::Value(seconds * rate)};
  auto& compiled = workspace::workspaceOf(session).kept<CompiledExpressions>();
  if (compiled.stopped.contains(*text))
    return fail("{}: it was stopped because it ran for too long; change it to run it again",
                node.name());
  if (!compiled.limit)
    compiled.limit = std::make_unique<TimeLimit>(
        kMostSeconds, [&interpreter = session.interpreter()] { interpreter.interrupt(); });
  const TimeLimit::Watch watch(*compiled.limit);
  auto result = session.interpreter().callProcedure(*procedure, arguments);
  if (!result && watch.isOver()) {
    compiled.stopped.insert(*text);
    return fail("{}: the expression ran for {} seconds without an end and was stopped", node.name(),
                kMostSeconds);
  }
  if (!result) return fail("{}: {}", node.name(), result.error().message);
  return result->type() == mel::Type::FloatArray ? result->floatArray() : mel::FloatArray();
}

}  // namespace

void registerExpressionType(dg::TypeRegistry& types) {
  using namespace nodes;
  TypeBuilder builder(types, "expression", {}, typeCode("DEXP"));
  const Attribute* text = builder.add(nodes::text("internalExpression", "ixp"));
  const Attribute* input = builder.add(array(notStored(real("input", "in"))));
  const Attribute* time = builder.add(notStored(timeValue("time", "tim")));
  builder.add(notStored(real("frame", "f")));
  builder.add(integer("animated", "ani", 1));
  builder.add(choice("unitOption", "uo", {"all", "none", "angularOnly"}));
  builder.add(message("object", "obm"));
  builder.add(notStored(real("lastTimeEvaluated", "lte")));
  const Attribute* results = builder.add(array(output(real("output", "out"))));
  builder.affects({text, input, time}, {results});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != results) return Computed::Unhandled;
    auto& trust = workspace::workspaceOf(cmd::currentSession()).kept<ExpressionTrust>();
    if (!trust.has(node)) return Computed::Unhandled;
    const auto values = builtins::evaluate(node);
    if (!values) return failWith(values.error());
    const Plug all(&node, results);
    for (const Index index : block.graph().elementIndices(all)) {
      const auto at = static_cast<std::size_t>(index);
      block.output(all.element(index), dg::Value(at < values->size() ? (*values)[at] : 0.0));
    }
    return Computed::Done;
  };
  builder.finish();
}

Result<void> runExpression(Node& node) {
  if (!workspace::workspaceOf(cmd::currentSession()).kept<ExpressionTrust>().has(node)) return {};
  const auto values = evaluate(node);
  return values ? Result<void>() : failWith(values.error());
}

Result<void> runTimedExpressions(dg::Graph& graph) {
  std::vector<dg::NodePtr> found;
  for (const dg::NodePtr& node : graph.nodes())
    if (node->type().name == "expression" && graph.source(node->plug("time")) &&
        graph.elementCount(node->plug("output")) == 0)
      found.push_back(node);
  for (const dg::NodePtr& node : found)
    if (node->isAlive()) HOST_TRY(runExpression(*node));
  return {};
}

void holdOutputs(Node& node) {
  dg::Graph& graph = node.graph();
  const Plug all = node.plug("output");
  for (const Index index : graph.elementIndices(all)) {
    const Plug output = all.element(index);
    for (const Plug& driven : graph.destinations(output)) {
      double value = numberOf(graph.stored(driven));
      if (driven.node()->type().name == "unitConversion") {
        const double factor = numberOf(graph.stored(driven.node()->plug("conversionFactor")));
        const auto beyond = graph.destinations(driven.node()->plug("output"));
        if (beyond.empty() || factor == 0) continue;
        value = numberOf(graph.stored(beyond.front())) / factor;
      }
      graph.storeOutput(output, value);
      break;
    }
  }
}

}  // namespace host::builtins
