#include <cctype>

#include "host/builtins/common/command.h"
#include "host/cmd/plug_values.h"

namespace host::builtins {

using cmd::enumText;
using cmd::unitFactor;

namespace {

using dg::Attribute;
using dg::AttributeType;

/// "translateX" becomes "Translate X".
std::string niceName(const Attribute& attribute) {
  if (!attribute.niceName.empty()) return attribute.niceName;
  std::string text;
  for (const char c : attribute.longName) {
    if (text.empty()) {
      text += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      continue;
    }
    if (std::isupper(static_cast<unsigned char>(c)) &&
        std::islower(static_cast<unsigned char>(text.back())))
      text += ' ';
    text += c;
  }
  return text;
}

mel::Value range(const std::optional<double>& low, const std::optional<double>& high,
                 double factor) {
  return mel::FloatArray{low.value_or(0) / factor, high.value_or(0) / factor};
}

std::vector<std::string> names(const std::vector<dg::AttributePtr>& attributes) {
  std::vector<std::string> result;
  for (const dg::AttributePtr& attribute : attributes) result.push_back(attribute->longName);
  return result;
}

mel::Value defaults(const Attribute& attribute, const scene::Units& units) {
  mel::FloatArray result;
  if (attribute.isCompound()) {
    for (const dg::AttributePtr& child : attribute.children) {
      const mel::Value value = defaults(*child, units);
      result.insert(result.end(), value.floatArray().begin(), value.floatArray().end());
    }
    return result;
  }
  const dg::Value value = attribute.initialValue();
  if (const auto* real = std::get_if<double>(&value))
    result.push_back(*real / unitFactor(attribute.type, units));
  if (const auto* integer = std::get_if<std::int64_t>(&value))
    result.push_back(static_cast<double>(*integer));
  return result;
}

CommandResult answer(Context& context, const ParsedArgs& args, dg::Node* node,
                     const Attribute& attribute) {
  const double factor = unitFactor(attribute.type, context.document.units());
  dg::Graph& graph = context.document.graph();
  const auto flag = [&](dg::Graph::PlugFlag which, bool fallback) {
    return node ? graph.flag(node->plug(&attribute), which) : fallback;
  };
  const std::string_view what = args.flagUses().back().spec->longName;
  if (what == "longName") return mel::Value(attribute.longName);
  if (what == "shortName") return mel::Value(attribute.shortName);
  if (what == "niceName") return mel::Value(niceName(attribute));
  if (what == "attributeType") return mel::Value(attribute.typeWord());
  if (what == "keyable") return mel::Value(flag(dg::Graph::PlugFlag::Keyable, attribute.keyable));
  if (what == "channelBox")
    return mel::Value(flag(dg::Graph::PlugFlag::ChannelBox, attribute.channelBox));
  if (what == "hidden") return mel::Value(attribute.hidden);
  if (what == "multi") return mel::Value(attribute.isArray);
  if (what == "indexMatters") return mel::Value(attribute.indexMatters);
  if (what == "readable") return mel::Value(attribute.readable);
  if (what == "writable") return mel::Value(attribute.writable);
  if (what == "connectable") return mel::Value(attribute.connectable);
  if (what == "storable") return mel::Value(attribute.storable);
  if (what == "enum") return mel::Value(attribute.type == AttributeType::Enum);
  if (what == "message") return mel::Value(attribute.type == AttributeType::Message);
  if (what == "usedAsColor") return mel::Value(attribute.usedAsColor);
  if (what == "usedAsFilename") return mel::Value(attribute.usedAsFilename);
  if (what == "worldSpace") return mel::Value(attribute.worldSpace);
  if (what == "minExists") return mel::Value(attribute.minimum.has_value());
  if (what == "maxExists") return mel::Value(attribute.maximum.has_value());
  if (what == "rangeExists") return mel::Value(attribute.minimum && attribute.maximum);
  if (what == "softRangeExists") return mel::Value(attribute.softMinimum && attribute.softMaximum);
  if (what == "minimum") return mel::Value(mel::FloatArray{attribute.minimum.value_or(0) / factor});
  if (what == "maximum") return mel::Value(mel::FloatArray{attribute.maximum.value_or(0) / factor});
  if (what == "range") return range(attribute.minimum, attribute.maximum, factor);
  if (what == "softRange") return range(attribute.softMinimum, attribute.softMaximum, factor);
  if (what == "listDefault") return defaults(attribute, context.document.units());
  if (what == "listChildren") return toValue(names(attribute.children));
  if (what == "numberOfChildren")
    return mel::Value(mel::IntArray{static_cast<int>(attribute.children.size())});
  if (what == "listParent")
    return toValue(attribute.parent ? std::vector<std::string>{attribute.parent->longName}
                                    : std::vector<std::string>{});
  if (what == "listEnum") return toValue({enumText(attribute)});
  return fail("attributeQuery: say what to ask for.");
}

CommandResult attributeQuery(Context& context, const ParsedArgs& args) {
  const std::string name = args.firstObject();
  dg::Node* node = nullptr;
  const Attribute* attribute = nullptr;
  if (args.has("node")) {
    auto found = context.document.node(args.text("node"));
    if (!found) return failWith(std::move(found.error()));
    node = *found;
    attribute = node->findAttribute(name);
    if (!attribute) attribute = dg::parsePlug(*node, name).value_or(dg::Plug()).attribute();
  } else if (args.has("type")) {
    const dg::NodeType* type = context.document.types().find(args.text("type"));
    if (!type) return fail("attributeQuery: unknown node type '{}'.", args.text("type"));
    attribute = type->find(name);
  } else {
    return fail("attributeQuery: say which -node or which -type the attribute belongs to.");
  }
  if (args.has("exists")) return mel::Value(attribute != nullptr);
  if (!attribute)
    return fail(ErrorKind::NotFound, "attributeQuery: attribute '{}' not found.", name);
  return answer(context, args, node, *attribute);
}

}  // namespace

void registerAttributeQuery(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("n", "node", {ArgType::String}).flag("typ", "type", {ArgType::String});
  static constexpr std::pair<const char*, const char*> kQuestions[] = {
      {"ex", "exists"},
      {"ln", "longName"},
      {"sn", "shortName"},
      {"nn", "niceName"},
      {"at", "attributeType"},
      {"k", "keyable"},
      {"ch", "channelBox"},
      {"h", "hidden"},
      {"m", "multi"},
      {"im", "indexMatters"},
      {"r", "readable"},
      {"w", "writable"},
      {"c", "connectable"},
      {"s", "storable"},
      {"e", "enum"},
      {"msg", "message"},
      {"uac", "usedAsColor"},
      {"uaf", "usedAsFilename"},
      {"ws", "worldSpace"},
      {"mne", "minExists"},
      {"mxe", "maxExists"},
      {"re", "rangeExists"},
      {"sre", "softRangeExists"},
      {"min", "minimum"},
      {"max", "maximum"},
      {"rng", "range"},
      {"sr", "softRange"},
      {"ld", "listDefault"},
      {"lc", "listChildren"},
      {"nc", "numberOfChildren"},
      {"lp", "listParent"},
      {"le", "listEnum"},
  };
  for (const auto& [shortName, longName] : kQuestions) syntax.flag(shortName, longName);
  defineQuery(registry, "attributeQuery", syntax.strings(1, 1), attributeQuery);
}

}  // namespace host::builtins
