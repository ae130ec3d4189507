#include "host/builtins/common/command.h"
#include "host/builtins/common/vertex_names.h"
#include "host/cmd/plug_values.h"
#include "host/edits/at_time.h"
#include "host/nodes/mesh_parts.h"

namespace host::builtins {

using cmd::readEnumField;
using cmd::readPlug;

namespace {

using dg::Plug;

/// The first array at or above a plug; null when there is none.
Plug arrayOf(Plug plug) {
  for (; plug; plug = plug.parent()) {
    if (plug.isArray()) return plug;
    if (plug.isElement()) return plug.array();
  }
  return {};
}

/// "attr[*].child" or "attr[0:3]": the values of the elements, one after the other.
CommandResult readRange(Context& context, const std::string& name, std::size_t open,
                        std::size_t close) {
  const Plug array = context.document.plug(name.substr(0, open)).value_or(Plug());
  if (!array || !array.isArray())
    return fail(ErrorKind::NotFound, "No object matches name: {}", name);
  const std::string range = name.substr(open + 1, close - open - 1);
  Index first = 0, last = std::numeric_limits<Index>::max();
  if (const std::size_t colon = range.find(':'); colon != std::string::npos) {
    first = mel::leadingInt(range.substr(0, colon));
    last = mel::leadingInt(range.substr(colon + 1));
  }
  mel::FloatArray reals;
  mel::StringArray texts;
  for (const Index index : nodes::elementsOf(array)) {
    if (index < first || index > last) continue;
    auto plug = context.document.plug(
        fmt::format("{}[{}]{}", name.substr(0, open), index, name.substr(close + 1)));
    if (!plug) return failWith(std::move(plug.error()));
    auto value = readPlug(context.document.graph(), context.document.units(), *plug);
    if (!value) return value;
    if (value->isString()) texts.push_back(value->string());
    if (value->isInt() || value->isFloat()) reals.push_back(value->toFloat().value_or(0));
    if (value->type() == mel::Type::FloatArray)
      reals.insert(reals.end(), value->floatArray().begin(), value->floatArray().end());
  }
  if (!texts.empty()) return mel::Value(std::move(texts));
  return mel::Value(std::move(reals));
}

CommandResult readFlags(Context& context, const ParsedArgs& args, const Plug& plug) {
  using PlugFlag = dg::Graph::PlugFlag;
  dg::Graph& graph = context.document.graph();
  if (args.has("type")) return mel::Value(plug.attribute()->typeWord());
  if (args.has("lock")) return mel::Value(graph.isLockedHereOrAbove(plug));
  if (args.has("keyable")) return mel::Value(graph.flag(plug, PlugFlag::Keyable));
  if (args.has("channelBox")) return mel::Value(graph.flag(plug, PlugFlag::ChannelBox));
  if (args.has("caching")) return mel::Value(graph.flag(plug, PlugFlag::Caching));
  if (args.has("settable")) return mel::Value(graph.settable(plug).has_value());
  if (args.has("size")) {
    const Plug array = arrayOf(plug);
    if (const auto parts = nodes::meshPartCount(array)) return mel::Value(*parts);
    return mel::Value(array ? graph.elementCount(array) : Index{1});
  }
  const Plug array = arrayOf(plug);
  if (!array) return fail(ErrorKind::BadArgument, "'{}' is not an array.", plugName(plug));
  HOST_TRY(graph.evaluate(array));
  return mel::Value(mel::IntArray(nodes::elementsOf(array)));
}

/// The value that the attribute has at another time; the scene's own time stays what it is.
CommandResult readAt(Context& context, const Plug& plug, double seconds) {
  const edits::AtTime then(context.document, seconds);
  if (!then.isThere()) return fail("getAttr: the scene has no time node.");
  return readPlug(context.document.graph(), context.document.units(), plug);
}

CommandResult getAttr(Context& context, const ParsedArgs& args) {
  const std::string name = offsetOfVertex(context.document, args.firstObject());
  if (name.empty()) {
    const std::vector<std::string> selected = context.document.selection().names();
    return fail("getAttr: name an attribute{}.",
                selected.empty() ? "" : ", as in " + selected.front() + ".visibility");
  }
  auto plug = context.document.plug(name);
  if (!plug) {
    const std::size_t open = name.rfind('['),
                      close = name.find(']', open == std::string::npos ? 0 : open);
    if (open != std::string::npos && close != std::string::npos &&
        name.substr(open, close - open).find_first_of(":*") != std::string::npos)
      return readRange(context, name, open, close);
    return failWith(std::move(plug.error()));
  }
  for (const std::string_view flag :
       {"type", "lock", "keyable", "channelBox", "caching", "settable", "size", "multiIndices"})
    if (args.has(flag)) return readFlags(context, args, *plug);
  dg::Graph& graph = context.document.graph();
  if (args.has("asString") && plug->attribute()->type == dg::AttributeType::Enum) {
    auto field = readEnumField(graph, *plug);
    if (!field) return failWith(std::move(field.error()));
    return mel::Value(std::move(*field));
  }
  auto value = args.has("time") ? readAt(context, *plug, args.real("time"))
                                : readPlug(graph, context.document.units(), *plug);
  if (!value || !value->isNone() || args.has("silent")) return value;
  if (plug->attribute()->type == dg::AttributeType::Message)
    return fail("getAttr: '{}' is a message attribute and carries no value.", name);
  return value;
}

}  // namespace

void registerGetAttr(CommandRegistry& registry) {
  defineQuery(registry, "getAttr",
              Syntax()
                  .flag("typ", "type")
                  .flag("l", "lock")
                  .flag("k", "keyable")
                  .flag("cb", "channelBox")
                  .flag("ca", "caching")
                  .flag("se", "settable")
                  .flag("s", "size")
                  .flag("mi", "multiIndices")
                  .flag("as", "asString")
                  .flag("sl", "silent")
                  .flag("x", "expandEnvironmentVariables")
                  .flag("t", "time", {ArgType::Time})
                  .strings(0, 1),
              getAttr);
}

}  // namespace host::builtins
