#include <charconv>
#include <optional>

#include "host/builtins/common/command.h"
#include "host/builtins/common/vertex_names.h"
#include "host/cmd/plug_values.h"
#include "host/dg/foreign_data.h"
#include "host/io/ma/ma_attributes.h"

namespace host::builtins {

using cmd::leafCount;
using cmd::unitFactor;
using cmd::writeNumbers;
using cmd::writeTyped;

namespace {

using dg::Plug;

/// "node.pnts[3:9]" or "...[0:2].pntx": the text before and after the range, and the range.
struct ElementRange {
  std::string before, after;
  Index first = 0, last = 0;
};

std::optional<ElementRange> splitRange(std::string_view name) {
  const std::size_t colon = name.rfind(':');
  const std::size_t open = colon == std::string_view::npos ? colon : name.rfind('[', colon);
  const std::size_t close = open == std::string_view::npos ? open : name.find(']', colon);
  if (close == std::string_view::npos) return std::nullopt;
  ElementRange range;
  const char* begin = name.data();
  const auto firstEnd = std::from_chars(begin + open + 1, begin + colon, range.first);
  const auto lastEnd = std::from_chars(begin + colon + 1, begin + close, range.last);
  if (firstEnd.ptr != begin + colon || lastEnd.ptr != begin + close || range.first < 0 ||
      range.last < range.first)
    return std::nullopt;
  range.before = name.substr(0, open);
  range.after = name.substr(close + 1);
  return range;
}

/// The values after the name, arrays and vectors spread out where numbers are wanted.
std::vector<mel::Value> spread(std::span<const mel::Value> values) {
  std::vector<mel::Value> result;
  result.reserve(values.size());
  for (const mel::Value& value : values) {
    switch (value.type()) {
      case mel::Type::IntArray:
        result.insert(result.end(), value.intArray().begin(), value.intArray().end());
        break;
      case mel::Type::FloatArray:
        result.insert(result.end(), value.floatArray().begin(), value.floatArray().end());
        break;
      case mel::Type::StringArray:
        for (const std::string& text : value.stringArray()) result.emplace_back(text);
        break;
      case mel::Type::Vector:
        for (const double x : {value.vector().x, value.vector().y, value.vector().z})
          result.emplace_back(x);
        break;
      case mel::Type::VectorArray:
        for (const mel::Vec3& v : value.vectorArray()) result.insert(result.end(), {v.x, v.y, v.z});
        break;
      default:
        result.push_back(value);
    }
  }
  return result;
}

void clampToLimits(const Plug& plug, const scene::Units& units, mel::Value& value) {
  const dg::Attribute& attribute = *plug.attribute();
  if (!attribute.isNumeric() || (!attribute.minimum && !attribute.maximum)) return;
  const double factor = unitFactor(attribute.type, units);
  double number = value.toFloat().value_or(0);
  if (attribute.minimum) number = std::max(number, *attribute.minimum / factor);
  if (attribute.maximum) number = std::min(number, *attribute.maximum / factor);
  value = number;
}

Result<void> checkLimits(const Plug& plug, const scene::Units& units, const mel::Value& value) {
  const dg::Attribute& attribute = *plug.attribute();
  if (!attribute.isNumeric() || (!attribute.minimum && !attribute.maximum)) return {};
  const double stored = value.toFloat().value_or(0) * unitFactor(attribute.type, units);
  if ((attribute.minimum && stored < *attribute.minimum) ||
      (attribute.maximum && stored > *attribute.maximum))
    return fail("setAttr: Cannot set the attribute '{}' past its minimum or maximum value.",
                plugName(plug));
  return {};
}

Result<void> setRange(Context& context, const ElementRange& range,
                      std::span<const mel::Value> values) {
  scene::Document& document = context.document;
  std::size_t taken = 0;
  for (Index i = range.first; i <= range.last; ++i) {
    if (taken >= values.size())
      return fail("setAttr: there are values for {} elements only.", i - range.first);
    auto plug = document.plug(fmt::format("{}[{}]{}", range.before, i, range.after));
    if (!plug) return failWith(std::move(plug.error()));
    auto count = writeNumbers(document.graph(), document.units(), *plug, values.subspan(taken));
    if (!count) return failWith(std::move(count.error()));
    taken += *count;
  }
  if (taken < values.size())
    return fail("setAttr: {} values are left over.", values.size() - taken);
  return {};
}

Result<void> setFlags(Context& context, const ParsedArgs& args, const Plug& plug) {
  using PlugFlag = dg::Graph::PlugFlag;
  dg::Graph& graph = context.document.graph();
  // Unlocking goes first and locking last, so that one call can do it together with a value.
  if (args.has("lock") && !args.boolean("lock"))
    HOST_TRY(graph.setFlag(plug, PlugFlag::Locked, false));
  if (args.has("keyable"))
    HOST_TRY(graph.setFlag(plug, PlugFlag::Keyable, args.boolean("keyable")));
  if (args.has("channelBox"))
    HOST_TRY(graph.setFlag(plug, PlugFlag::ChannelBox, args.boolean("channelBox")));
  if (args.has("caching"))
    HOST_TRY(graph.setFlag(plug, PlugFlag::Caching, args.boolean("caching")));
  return {};
}

/// Payloads whose words are those of scene files.
bool isOfFiles(std::string_view type) {
  return type == "nurbsCurve" || type == "nurbsSurface" || type == "arrayAttrs";
}

Result<dg::Value> readAsFiles(const std::string& type, std::span<const mel::Value> values) {
  std::vector<std::string> texts;
  for (const mel::Value& value : spread(values)) texts.push_back(value.toText().value_or(""));
  std::vector<io::MaToken> tokens;
  for (const std::string& text : texts) tokens.push_back({io::MaToken::Kind::Number, text});
  std::size_t budget = 0;
  return io::readPayload(type, tokens, budget);
}

Result<void> setValues(Context& context, const ParsedArgs& args, const Plug& plug,
                       std::span<const mel::Value> values) {
  scene::Document& document = context.document;
  if (auto settable = document.graph().settable(plug); !settable) {
    if (plug.attribute()->writable)
      return fail("setAttr: The attribute '{}' is locked or connected and cannot be modified.",
                  plugName(plug));
    return settable;
  }
  if (args.has("type") && dg::hasForeignReader(args.text("type"))) {
    std::vector<dg::ForeignWord> words;
    for (const mel::Value& value : spread(values))
      words.push_back(
          {value.toTexts().empty() ? std::string() : value.toTexts().front(), !value.isString()});
    auto data = dg::readForeign(args.text("type"), words);
    if (!data) return fail("setAttr: {}.", data.error().message);
    return document.graph().set(plug, dg::Value(*std::move(data)));
  }
  if (args.has("type") && isOfFiles(args.text("type"))) {
    auto data = readAsFiles(args.text("type"), values);
    if (!data) return fail("setAttr: {}.", data.error().message);
    return document.graph().set(plug, *std::move(data));
  }
  if (args.has("type"))
    return writeTyped(document.graph(), document.units(), plug, args.text("type"), values);
  std::vector<mel::Value> flat = spread(values);
  if (plug.attribute()->type == dg::AttributeType::String)
    return fail("setAttr: '{}' is not numeric: use -type \"string\".", plugName(plug));
  if (plug.isArray())
    return fail("setAttr: '{}' is an array: say which elements to set.", plugName(plug));
  if (!plug.isCompound() && flat.size() == 1) {
    if (args.has("clamp"))
      clampToLimits(plug, document.units(), flat.front());
    else
      HOST_TRY(checkLimits(plug, document.units(), flat.front()));
  }
  if (flat.size() != leafCount(*plug.attribute()))
    return fail("setAttr: Error reading data for '{}': it takes {} values, not {}.", plugName(plug),
                leafCount(*plug.attribute()), flat.size());
  auto count = writeNumbers(document.graph(), document.units(), plug, flat);
  if (!count) return failWith(std::move(count.error()));
  return {};
}

CommandResult setAttr(Context& context, const ParsedArgs& args) {
  const std::vector<mel::Value>& words = args.arguments();
  const std::string name = offsetOfVertex(context.document, words.front().toTexts().empty()
                                                                ? std::string{}
                                                                : words.front().toTexts().front());
  const std::span<const mel::Value> values(words.data() + 1, words.size() - 1);
  auto plug = context.document.plug(name);
  if (!plug) {
    const std::optional<ElementRange> range = splitRange(name);
    if (!range) return failWith(std::move(plug.error()));
    HOST_TRY(setRange(context, *range, spread(values)));
    return mel::Value();
  }
  HOST_TRY(setFlags(context, args, *plug));
  const bool hasValue = !values.empty() || (args.has("type") && args.text("type") == "string");
  if (hasValue) HOST_TRY(setValues(context, args, *plug, values));
  const bool hasFlagOnly = args.has("lock") || args.has("keyable") || args.has("channelBox") ||
                           args.has("caching") || args.has("size") || args.has("alteredValue") ||
                           args.has("capacityHint");
  if (!hasValue && !hasFlagOnly) return fail("setAttr: there is no value for '{}'.", name);
  if (args.boolean("lock"))
    HOST_TRY(context.document.graph().setFlag(*plug, dg::Graph::PlugFlag::Locked, true));
  return mel::Value();
}

}  // namespace

void registerSetAttr(CommandRegistry& registry) {
  define(registry, "setAttr",
         Syntax()
             .flag("typ", "type", {ArgType::String})
             .flag("l", "lock", {ArgType::Bool})
             .flag("k", "keyable", {ArgType::Bool})
             .flag("cb", "channelBox", {ArgType::Bool})
             .flag("ca", "caching", {ArgType::Bool})
             .flag("s", "size", {ArgType::Unsigned})
             .flag("c", "clamp")
             .flag("av", "alteredValue")
             .flag("ch", "capacityHint", {ArgType::Unsigned})
             .strings(1)
             .editable(),
         setAttr);
}

}  // namespace host::builtins
