#include <algorithm>
#include <map>

#include "host/builtins/common/command.h"
#include "host/cmd/plug_values.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

using cmd::enumText;
using cmd::unitFactor;

namespace {

using dg::AttributePtr;
using dg::AttributeType;

const std::map<std::string, AttributeType, std::less<>>& numericTypes() {
  static const std::map<std::string, AttributeType, std::less<>> types = {
      {"bool", AttributeType::Bool},
      {"char", AttributeType::Char},
      {"byte", AttributeType::Byte},
      {"short", AttributeType::Short},
      {"long", AttributeType::Long},
      {"int", AttributeType::Long},
      {"float", AttributeType::Float},
      {"double", AttributeType::Double},
      {"doubleLinear", AttributeType::Distance},
      {"doubleAngle", AttributeType::Angle},
      {"floatLinear", AttributeType::Distance},
      {"floatAngle", AttributeType::Angle},
      {"time", AttributeType::Time},
      {"message", AttributeType::Message},
      {"matrix", AttributeType::Matrix},
      {"fltMatrix", AttributeType::Matrix},
  };
  return types;
}

using workspace::PendingCompound;

bool isTuple(std::string_view type) {
  return type == "double2" || type == "double3" || type == "float2" || type == "float3" ||
         type == "long2" || type == "long3" || type == "short2" || type == "short3" ||
         type == "double4";
}

/// "red:green=5:blue".
std::vector<dg::EnumField> parseEnum(const std::string& text) {
  std::vector<dg::EnumField> fields;
  std::int64_t next = 0;
  std::size_t start = 0;
  while (start <= text.size() && !text.empty()) {
    const std::size_t end = std::min(text.find(':', start), text.size());
    std::string field = text.substr(start, end - start);
    if (const std::size_t equals = field.find('='); equals != std::string::npos) {
      next = mel::leadingInt(field.substr(equals + 1));
      field.resize(equals);
    }
    if (!field.empty()) fields.push_back({field, next++});
    start = end + 1;
  }
  return fields;
}

void applyRange(const ParsedArgs& args, const scene::Units& units, dg::Attribute& attribute) {
  const double factor = unitFactor(attribute.type, units);
  const auto limit = [&](std::string_view flag, std::optional<double>& slot) {
    if (args.has(flag)) slot = args.real(flag) * factor;
  };
  limit("minValue", attribute.minimum);
  limit("maxValue", attribute.maximum);
  limit("softMinValue", attribute.softMinimum);
  limit("softMaxValue", attribute.softMaximum);
  if (!args.has("defaultValue")) return;
  const double value = args.real("defaultValue") * factor;
  const bool isReal =
      attribute.type >= AttributeType::Float && attribute.type <= AttributeType::Time;
  attribute.defaultValue = isReal ? dg::Value(value) : dg::Value(static_cast<std::int64_t>(value));
}

void applyFlags(const ParsedArgs& args, dg::Attribute& attribute) {
  attribute.isArray = args.has("multi");
  attribute.indexMatters = args.boolean("indexMatters", true);
  attribute.keyable = args.boolean("keyable");
  attribute.hidden = args.boolean("hidden");
  attribute.readable = args.boolean("readable", true);
  attribute.writable = args.boolean("writable", true);
  attribute.storable = args.boolean("storable", true);
  attribute.cached = args.boolean("cachedInternally", true);
  attribute.usedAsColor = args.has("usedAsColor");
  attribute.usedAsFilename = args.has("usedAsFilename");
  if (args.has("niceName")) attribute.niceName = args.text("niceName");
}

Result<AttributePtr> describe(const ParsedArgs& args, const scene::Units& units) {
  std::string longName = args.text("longName"), shortName = args.text("shortName");
  if (longName.empty()) longName = shortName;
  if (shortName.empty()) shortName = longName;
  if (longName.empty()) return fail("addAttr: give the attribute a -longName or a -shortName.");
  const std::string dataType = args.text("dataType");
  const std::string type = args.text("attributeType", dataType.empty() ? "double" : "");
  AttributePtr attribute;
  if (isTuple(type)) {
    attribute = dg::makeCompound(longName, shortName, {});
    attribute->compoundType = type;
  } else if (type == "compound") {
    attribute = dg::makeCompound(longName, shortName, {});
  } else if (type == "enum") {
    std::vector<dg::EnumField> fields = parseEnum(args.text("enumName"));
    attribute =
        dg::makeEnum(longName, shortName, fields, fields.empty() ? 0 : fields.front().value);
  } else if (dataType == "string") {
    attribute = dg::makeAttribute(longName, shortName, AttributeType::String);
  } else if (dataType == "matrix") {
    attribute = dg::makeAttribute(longName, shortName, AttributeType::Matrix);
  } else if (!dataType.empty()) {
    attribute = dg::makeTyped(longName, shortName, dataType);
  } else if (const auto found = numericTypes().find(type); found != numericTypes().end()) {
    attribute = dg::makeAttribute(longName, shortName, found->second);
  } else {
    return fail("addAttr: there is no attribute type '{}'.", type);
  }
  applyFlags(args, *attribute);
  applyRange(args, units, *attribute);
  return attribute;
}

std::size_t expectedChildren(const ParsedArgs& args, const dg::Attribute& attribute) {
  if (!attribute.compoundType.empty()) return at(attribute.compoundType.back() - '0');
  return at(std::max(1, args.integer("numberOfChildren", 1)));
}

bool isComplete(const std::map<std::string, PendingCompound>& pending, const std::string& prefix,
                const dg::Attribute& attribute) {
  const auto found = pending.find(prefix + attribute.longName);
  if (found != pending.end() && attribute.children.size() < found->second.childCount) return false;
  return std::all_of(
      attribute.children.begin(), attribute.children.end(),
      [&](const AttributePtr& child) { return isComplete(pending, prefix, *child); });
}

Result<void> addTo(Context& context, const ParsedArgs& args, dg::Node& node) {
  auto described = describe(args, context.document.units());
  if (!described) return failWith(std::move(described.error()));
  AttributePtr attribute = std::move(*described);
  if (node.findAttribute(attribute->longName) || node.findAttribute(attribute->shortName))
    return fail("Found no valid items to add the attribute to: '{}' has an attribute '{}' already.",
                node.name(), attribute->longName);
  auto& pending = workspace::workspaceOf(context.session).pendingCompounds;
  const std::string prefix = node.uuid() + ".";
  AttributePtr root = attribute;
  if (args.has("parent")) {
    const std::string parentName = args.text("parent");
    auto parent = std::find_if(pending.begin(), pending.end(), [&](const auto& entry) {
      return entry.first.starts_with(prefix) && entry.second.attribute->isNamed(parentName);
    });
    if (parent == pending.end())
      return fail("addAttr: '{}' has no compound '{}' that waits for children.", node.name(),
                  parentName);
    attribute->parent = parent->second.attribute.get();
    attribute->childIndex = static_cast<int>(attribute->parent->children.size());
    attribute->parent->children.push_back(attribute);
    root = parent->second.attribute;
    while (root->parent) root = pending.at(prefix + root->parent->longName).attribute;
  }
  if (attribute->isCompound())
    pending[prefix + attribute->longName] = {attribute, expectedChildren(args, *attribute)};
  if (!isComplete(pending, prefix, *root)) return {};
  auto added = context.document.graph().addAttribute(node, root);
  if (!added) return failWith(std::move(added.error()));
  std::erase_if(pending, [&](const auto& entry) {
    const dg::Attribute* up = entry.second.attribute.get();
    while (up->parent) up = up->parent;
    return entry.first.starts_with(prefix) && up == root.get();
  });
  return {};
}

CommandResult queryAttr(Context& context, const ParsedArgs& args) {
  auto plug = context.document.plug(args.firstObject());
  if (!plug) return failWith(std::move(plug.error()));
  const dg::Attribute& attribute = *plug->attribute();
  const double factor = unitFactor(attribute.type, context.document.units());
  const std::string_view what = args.queried();
  const auto limit = [&](const std::optional<double>& value) {
    return mel::Value(value.value_or(0) / factor);
  };
  if (what == "longName") return mel::Value(attribute.longName);
  if (what == "shortName") return mel::Value(attribute.shortName);
  if (what == "niceName") return mel::Value(attribute.niceName);
  if (what == "attributeType") return mel::Value(attribute.typeWord());
  if (what == "dataType") return mel::Value(attribute.typeWord());
  if (what == "minValue") return limit(attribute.minimum);
  if (what == "maxValue") return limit(attribute.maximum);
  if (what == "softMinValue") return limit(attribute.softMinimum);
  if (what == "softMaxValue") return limit(attribute.softMaximum);
  if (what == "hasMinValue") return mel::Value(attribute.minimum.has_value());
  if (what == "hasMaxValue") return mel::Value(attribute.maximum.has_value());
  if (what == "keyable") return mel::Value(attribute.keyable);
  if (what == "hidden") return mel::Value(attribute.hidden);
  if (what == "multi") return mel::Value(attribute.isArray);
  if (what == "defaultValue") {
    const dg::Value value = attribute.initialValue();
    if (const auto* real = std::get_if<double>(&value)) return mel::Value(*real / factor);
    if (const auto* integer = std::get_if<std::int64_t>(&value))
      return mel::Value(static_cast<double>(*integer));
    return mel::Value(0.0);
  }
  if (what == "enumName") return mel::Value(enumText(attribute));
  return fail("addAttr: '{}' can't be queried.", what);
}

/// Other words, limits or default of an attribute that a script added.
class AttributeEdit final : public dg::Change {
 public:
  AttributeEdit(dg::Node& node, AttributePtr attribute, AttributePtr other)
      : node_(node.shared_from_this()), attribute_(std::move(attribute)), other_(std::move(other)) {
    exchange();
  }
  Result<void> undo() override {
    exchange();
    return {};
  }
  Result<void> redo() override { return undo(); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }

 private:
  void exchange() {
    std::swap(attribute_->niceName, other_->niceName);
    std::swap(attribute_->minimum, other_->minimum);
    std::swap(attribute_->maximum, other_->maximum);
    std::swap(attribute_->softMinimum, other_->softMinimum);
    std::swap(attribute_->softMaximum, other_->softMaximum);
    std::swap(attribute_->defaultValue, other_->defaultValue);
    std::swap(attribute_->enumFields, other_->enumFields);
    std::swap(attribute_->keyable, other_->keyable);
    std::swap(attribute_->hidden, other_->hidden);
    std::swap(attribute_->storable, other_->storable);
  }
  dg::NodePtr node_;
  AttributePtr attribute_, other_;
};

Result<void> editAttr(Context& context, const ParsedArgs& args, const std::string& name) {
  auto plug = context.document.plug(name);
  if (!plug) return failWith(std::move(plug.error()));
  const dg::Attribute* const wanted = plug->attribute();
  if (!wanted->isDynamic)
    return fail("addAttr: '{}' belongs to its node's type and can't be edited.", name);
  const AttributePtr attribute = std::const_pointer_cast<dg::Attribute>(wanted->shared_from_this());
  AttributePtr other = attribute->clone();
  applyRange(args, context.document.units(), *other);
  if (args.has("hasMinValue") && !args.boolean("hasMinValue")) other->minimum.reset();
  if (args.has("hasMaxValue") && !args.boolean("hasMaxValue")) other->maximum.reset();
  if (args.has("niceName")) other->niceName = args.text("niceName");
  if (args.has("enumName")) other->enumFields = parseEnum(args.text("enumName"));
  other->keyable = args.boolean("keyable", other->keyable);
  other->hidden = args.boolean("hidden", other->hidden);
  other->storable = args.boolean("storable", other->storable);
  auto edit = std::make_unique<AttributeEdit>(*plug->node(), attribute, std::move(other));
  dg::Graph& graph = context.document.graph();
  if (graph.isRecording()) graph.recorder()->record(std::move(edit));
  return {};
}

CommandResult addAttr(Context& context, const ParsedArgs& args) {
  if (args.isQuery()) return queryAttr(context, args);
  if (args.isEdit()) {
    if (!args.hasObjects()) return fail("addAttr: name the attribute to edit, as in pCube1.size.");
    for (const std::string& name : args.objectNames()) HOST_TRY(editAttr(context, args, name));
    return mel::Value();
  }
  auto objects = args.resolveObjects(context.document);
  if (!objects) return failWith(std::move(objects.error()));
  const std::vector<dg::Node*> nodes = nodesOf(*objects);
  if (nodes.empty()) return fail("addAttr: name or select a node to add the attribute to.");
  for (dg::Node* node : nodes) HOST_TRY(addTo(context, args, *node));
  return mel::Value();
}

CommandResult deleteAttr(Context& context, const ParsedArgs& args) {
  const auto remove = [&](dg::Node& node, const std::string& name) -> Result<void> {
    const dg::Attribute* attribute = node.findAttribute(name);
    if (!attribute)
      return fail(ErrorKind::NotFound, "No attribute '{}' on node '{}'", name, node.name());
    if (!attribute->isDynamic)
      return fail("deleteAttr: '{}.{}' can't be deleted.", node.name(), name);
    return context.document.graph().removeAttribute(node, attribute);
  };
  const std::string attributeName = args.text("attribute");
  if (attributeName.empty() || args.hasObjects()) {
    for (const std::string& name : args.objectNames()) {
      if (!attributeName.empty()) {
        auto node = context.document.node(name);
        if (!node) return failWith(std::move(node.error()));
        HOST_TRY(remove(**node, attributeName));
        continue;
      }
      auto plug = context.document.plug(name);
      if (!plug) return failWith(std::move(plug.error()));
      HOST_TRY(remove(*plug->node(), plug->attribute()->longName));
    }
    return mel::Value();
  }
  for (dg::Node* node : nodesOf(context.document.selection()))
    HOST_TRY(remove(*node, attributeName));
  return mel::Value();
}

}  // namespace

void registerAddAttr(CommandRegistry& registry) {
  define(registry, "addAttr",
         Syntax()
             .flag("ln", "longName", {ArgType::String})
             .flag("sn", "shortName", {ArgType::String})
             .flag("nn", "niceName", {ArgType::String})
             .flag("at", "attributeType", {ArgType::String})
             .flag("dt", "dataType", {ArgType::String})
             .flag("en", "enumName", {ArgType::String})
             .flag("p", "parent", {ArgType::String})
             .flag("nc", "numberOfChildren", {ArgType::Unsigned})
             .flag("dv", "defaultValue", {ArgType::Double})
             .flag("min", "minValue", {ArgType::Double})
             .flag("max", "maxValue", {ArgType::Double})
             .flag("smn", "softMinValue", {ArgType::Double})
             .flag("smx", "softMaxValue", {ArgType::Double})
             .flag("hnv", "hasMinValue", {ArgType::Bool})
             .flag("hxv", "hasMaxValue", {ArgType::Bool})
             .flag("k", "keyable", {ArgType::Bool})
             .flag("h", "hidden", {ArgType::Bool})
             .flag("r", "readable", {ArgType::Bool})
             .flag("w", "writable", {ArgType::Bool})
             .flag("s", "storable", {ArgType::Bool})
             .flag("ci", "cachedInternally", {ArgType::Bool})
             .flag("m", "multi")
             .flag("im", "indexMatters", {ArgType::Bool})
             .flag("uac", "usedAsColor")
             .flag("uaf", "usedAsFilename")
             .flag("ct", "category", {ArgType::String})
             .multiUse()
             .queryable()
             .editable()
             .objects(0, -1, true),
         addAttr);
  define(registry, "deleteAttr", Syntax().flag("at", "attribute", {ArgType::String}).strings(),
         deleteAttr);
}

}  // namespace host::builtins
