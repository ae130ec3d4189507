// expression and scriptNode.
#include <algorithm>
#include <cctype>

#include "host/builtins/anim/expression_node.h"
#include "host/builtins/common/command.h"
#include "host/edits/connect.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using dg::Plug;

/// What an expression's text comes to: its inner form and the plugs that it reads and writes.
struct Reading {
  std::string text;
  std::vector<Plug> inputs, outputs;
  bool usesTime = false;
};

/// Goes through an expression's text and puts .I[n] and .O[n] for the attributes in it.
class ExpressionReader {
 public:
  ExpressionReader(scene::Document& document, const std::string& text, std::string object)
      : document_(document), text_(text), object_(std::move(object)) {}

  Result<Reading> read() {
    HOST_TRY(scan(true));  // what is written is known before what is read is numbered
    at_ = 0;
    reading_.text.clear();
    HOST_TRY(scan(false));
    return std::move(reading_);
  }

 private:
  static bool isWord(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }
  [[nodiscard]] char peek(std::size_t ahead = 0) const {
    return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
  }
  void take() { reading_.text += text_[at_++]; }

  Result<void> scan(bool onlyOutputs) {
    while (at_ < text_.size()) {
      const char c = peek();
      if (c == '"') {
        takeString();
      } else if (c == '/' && (peek(1) == '/' || peek(1) == '*')) {
        skipComment();
      } else if (std::isdigit(static_cast<unsigned char>(c)) || c == '$') {
        take();
        while (isWord(peek()) || (c != '$' && peek() == '.')) take();
      } else if (isWord(c) || c == '|' || (c == ':' && isWord(peek(1)))) {
        HOST_TRY(takeName(onlyOutputs));
      } else {
        take();
      }
    }
    return {};
  }
  void takeString() {
    take();
    while (at_ < text_.size() && peek() != '"') {
      if (peek() == '\\') take();
      if (at_ < text_.size()) take();
    }
    if (at_ < text_.size()) take();
  }
  void skipComment() {
    const bool isLine = peek(1) == '/';
    const std::size_t end = isLine ? text_.find('\n', at_) : text_.find("*/", at_ + 2);
    at_ = end == std::string::npos ? text_.size() : isLine ? end : end + 2;
  }

  Result<void> takeName(bool onlyOutputs) {
    const std::size_t begin = at_;
    std::size_t end = at_;
    const auto isPath = [&](std::size_t i) {
      return isWord(text_[i]) || text_[i] == ':' || text_[i] == '|';
    };
    while (end < text_.size() && isPath(end)) ++end;
    // "a || b" and "c ? d : e" are operators.
    while (end > begin && (text_[end - 1] == ':' || text_[end - 1] == '|')) --end;
    if (end == begin) {
      take();
      return {};
    }
    const bool hasDot = end + 1 < text_.size() && text_[end] == '.' &&
                        (std::isalpha(static_cast<unsigned char>(text_[end + 1])) != 0);
    if (hasDot)
      for (++end; end < text_.size(); ++end) {
        const bool isIndex = text_[end] == '[' || text_[end] == ']';
        if (!isWord(text_[end]) && text_[end] != '.' && !isIndex) break;
      }
    const std::string name = text_.substr(begin, end - begin);
    std::string plugName = hasDot ? name : std::string();
    if (!hasDot && !object_.empty() && document_.plug(object_ + "." + name))
      plugName = object_ + "." + name;
    if (plugName.empty()) {
      reading_.usesTime = reading_.usesTime || name == "time" || name == "frame";
      while (at_ < end) take();
      return {};
    }
    const auto plug = document_.plug(plugName);
    if (!plug) return failWith(plug.error());
    if (!plug->attribute()->isNumeric() || plug->isArray())
      return fail("'{}' is no number.", plugName);
    at_ = end;
    return place(*plug, onlyOutputs);
  }

  /// Whether what follows assigns to the name that ends here.
  [[nodiscard]] bool isAssigned() const {
    std::size_t i = at_;
    while (i < text_.size() && std::isspace(static_cast<unsigned char>(text_[i]))) ++i;
    if (i >= text_.size()) return false;
    const std::string_view rest = std::string_view(text_).substr(i);
    if (rest[0] == '=') return rest.size() < 2 || rest[1] != '=';
    return rest.starts_with("+=") || rest.starts_with("-=") || rest.starts_with("*=") ||
           rest.starts_with("/=") || rest.starts_with("++") || rest.starts_with("--");
  }

  static std::size_t numberOf(std::vector<Plug>& plugs, const Plug& plug) {
    const auto found = std::ranges::find(plugs, plug);
    if (found != plugs.end()) return static_cast<std::size_t>(found - plugs.begin());
    plugs.push_back(plug);
    return plugs.size() - 1;
  }

  Result<void> place(const Plug& plug, bool onlyOutputs) {
    if (onlyOutputs) {
      if (isAssigned()) numberOf(reading_.outputs, plug);
      return {};
    }
    // What an expression writes itself it reads as it left it.
    const bool isOutput = std::ranges::find(reading_.outputs, plug) != reading_.outputs.end();
    reading_.text += isOutput ? fmt::format(".O[{}]", numberOf(reading_.outputs, plug))
                              : fmt::format(".I[{}]", numberOf(reading_.inputs, plug));
    return {};
  }

  scene::Document& document_;
  const std::string& text_;
  std::string object_;
  std::size_t at_ = 0;
  Reading reading_;
};

Result<void> unwire(scene::Document& document, dg::Node& node) {
  dg::Graph& graph = document.graph();
  // Nodes that convert units were made with the connection, and go with it.
  std::vector<dg::Node*> converters;
  const auto cut = [&](const dg::Graph::Connection& connection, dg::Node& other) -> Result<void> {
    if (other.type().name == "unitConversion") {
      converters.push_back(&other);
      return {};
    }
    return graph.disconnect(connection.source, connection.destination);
  };
  for (const auto& connection : graph.incoming(node))
    HOST_TRY(cut(connection, *connection.source.node()));
  for (const auto& connection : graph.outgoing(node))
    HOST_TRY(cut(connection, *connection.destination.node()));
  if (!converters.empty()) HOST_TRY(document.deleteNodes(converters));
  for (const char* name : {"input", "output"}) {
    const Plug all = node.plug(name);
    for (const Index index : graph.elementIndices(all))
      HOST_TRY(graph.removeElement(all.element(index), true));
  }
  return {};
}

Result<void> wire(Context& context, dg::Node& node, const Reading& reading) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  HOST_TRY(unwire(document, node));
  HOST_TRY(graph.set(node.plug("internalExpression"), reading.text));
  for (std::size_t i = 0; i < reading.inputs.size(); ++i)
    HOST_TRY(edits::connect(document, reading.inputs[i],
                            node.plug("input").element(static_cast<Index>(i))));
  if (reading.usesTime)
    for (const dg::NodePtr& each : graph.nodes())
      if (each->type().name == "time")
        HOST_TRY(graph.connect(each->plug("outTime"), node.plug("time"), true));
  for (std::size_t i = 0; i < reading.outputs.size(); ++i) {
    const Plug output = node.plug("output").element(static_cast<Index>(i));
    HOST_TRY(graph.addElement(output));
    HOST_TRY(graph.settable(reading.outputs[i]));
    HOST_TRY(edits::connect(document, output, reading.outputs[i]));
  }
  workspace::workspaceOf(context.session).kept<ExpressionTrust>().trust(node.shared_from_this());
  if (reading.outputs.empty()) return runExpression(node);
  return graph.evaluate(node.plug("output"));
}

/// The text as its author wrote it, with the names that the attributes have now.
std::string shownText(dg::Graph& graph, dg::Node& node) {
  const dg::Value stored = graph.stored(node.plug("internalExpression"));
  const auto* inner = std::get_if<std::string>(&stored);
  if (!inner) return {};
  std::string text;
  for (std::size_t i = 0; i < inner->size(); ++i) {
    const std::string_view rest = std::string_view(*inner).substr(i);
    const bool isInput = rest.starts_with(".I["), isOutput = rest.starts_with(".O[");
    const std::size_t close = rest.find(']');
    if ((!isInput && !isOutput) || close == std::string_view::npos) {
      text += (*inner)[i];
      continue;
    }
    const Plug element = node.plug(isInput ? "input" : "output")
                             .element(mel::leadingInt(std::string(rest.substr(3, close - 3))));
    Plug plug;
    if (isInput) {
      plug = graph.source(element);
      if (plug && plug.node()->type().name == "unitConversion")
        plug = graph.source(plug.node()->plug("input"));
    } else if (const auto driven = graph.destinations(element); !driven.empty()) {
      plug = driven.front();
      if (plug.node()->type().name == "unitConversion") {
        const auto beyond = graph.destinations(plug.node()->plug("output"));
        if (!beyond.empty()) plug = beyond.front();
      }
    }
    text += plug ? plugName(plug) : std::string(rest.substr(0, close + 1));
    i += close;
  }
  return text;
}

Result<dg::Node*> expressionNamed(Context& context, const ParsedArgs& args) {
  const std::string name = args.hasObjects() ? args.firstObject() : args.text("name");
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  if ((*node)->type().name != "expression") return fail("expression: '{}' is none.", name);
  return *node;
}

CommandResult expression(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  if (args.isQuery()) {
    const auto node = expressionNamed(context, args);
    if (!node) return failWith(node.error());
    if (args.has("string")) return mel::Value(shownText(document.graph(), **node));
    if (args.has("name")) return mel::Value((*node)->name());
    if (args.has("timeDependent"))
      return mel::Value(!document.graph().source((*node)->plug("time")).isNull());
    return fail("expression: query -string, -name or -timeDependent.");
  }
  if (args.isCreate() && !args.has("string") && !args.hasObjects())
    return fail("expression: give its text with -string.");
  const std::string text = args.has("string") ? args.text("string") : args.firstObject();
  auto reading = ExpressionReader(document, text, args.text("object")).read();
  if (!reading) return fail("expression: {}", reading.error().message);
  dg::Node* node = nullptr;
  if (args.isEdit()) {
    const auto found = expressionNamed(context, args);
    if (!found) return failWith(found.error());
    node = *found;
  } else {
    auto made = document.createNode("expression", args.text("name", "expression#"));
    if (!made) return failWith(std::move(made.error()));
    node = made->get();
  }
  HOST_TRY(wire(context, *node, *reading));
  return mel::Value(node->name());
}

// scriptNode
// -----------------------------------------------------------------------------------------------

struct ScriptFlag {
  const char *flag, *attribute;
};
constexpr ScriptFlag kScriptTexts[] = {{"beforeScript", "before"}, {"afterScript", "after"}};

Result<void> setScriptNode(Context& context, const ParsedArgs& args, dg::Node& node) {
  dg::Graph& graph = context.document.graph();
  for (const ScriptFlag& each : kScriptTexts)
    if (args.has(each.flag)) HOST_TRY(graph.set(node.plug(each.attribute), args.text(each.flag)));
  if (args.has("scriptType"))
    HOST_TRY(graph.set(node.plug("scriptType"), std::int64_t{args.integer("scriptType")}));
  if (args.has("sourceType"))
    HOST_TRY(graph.set(node.plug("sourceType"),
                       std::int64_t{args.text("sourceType") == "python" ? 1 : 0}));
  return {};
}

CommandResult scriptNode(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  if (args.isCreate() && !args.has("executeBefore") && !args.has("executeAfter")) {
    auto made = document.createNode("script", args.text("name", "script#"));
    if (!made) return failWith(std::move(made.error()));
    HOST_TRY(setScriptNode(context, args, **made));
    return mel::Value((*made)->name());
  }
  auto node = document.node(args.firstObject());
  if (!node) return failWith(std::move(node.error()));
  if ((*node)->type().name != "script") return fail("scriptNode: '{}' is none.", (*node)->name());
  const auto textOf = [&](const char* attribute) {
    const dg::Value value = document.graph().stored((*node)->plug(attribute));
    const auto* text = std::get_if<std::string>(&value);
    return text ? *text : std::string();
  };
  if (args.isQuery()) {
    for (const ScriptFlag& each : kScriptTexts)
      if (args.has(each.flag)) return mel::Value(textOf(each.attribute));
    const dg::Value type = document.graph().stored((*node)->plug("scriptType"));
    if (args.has("scriptType"))
      return mel::Value(static_cast<std::int32_t>(std::get<std::int64_t>(type)));
    return fail("scriptNode: say which flag to query.");
  }
  if (args.has("executeBefore") || args.has("executeAfter")) {
    // A person asks for it by name: that is the trust it takes.
    return context.session.executeLine(textOf(args.has("executeBefore") ? "before" : "after"));
  }
  HOST_TRY(setScriptNode(context, args, **node));
  return mel::Value((*node)->name());
}

}  // namespace

void registerExpression(CommandRegistry& registry) {
  define(registry, "expression",
         Syntax()
             .flag("s", "string", {ArgType::String})
             .flag("n", "name", {ArgType::String})
             .flag("o", "object", {ArgType::String})
             .flag("ae", "alwaysEvaluate", {ArgType::Bool})
             .flag("uc", "unitConversion", {ArgType::String})
             .flag("td", "timeDependent")
             .flag("sf", "safe")
             .flag("sn", "shortNames")
             .editable()
             .queryable()
             .strings(0, 1),
         expression);
  define(registry, "scriptNode",
         Syntax()
             .flag("bs", "beforeScript", {ArgType::String})
             .flag("as", "afterScript", {ArgType::String})
             .flag("st", "scriptType", {ArgType::Int})
             .flag("stp", "sourceType", {ArgType::String})
             .flag("n", "name", {ArgType::String})
             .flag("eb", "executeBefore")
             .flag("ea", "executeAfter")
             .flag("ire", "ignoreReferenceEdits", {ArgType::Bool})
             .editable()
             .queryable()
             .strings(0, 1),
         scriptNode);
}

}  // namespace host::builtins
