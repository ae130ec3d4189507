// renameAttr, removeMultiInstance, attributeExists and toggle.
#include <algorithm>

#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

using dg::AttributePtr;
using dg::Plug;

/// A name of an attribute that a script added.
class AttributeRename final : public dg::Change {
 public:
  AttributeRename(dg::Node& node, AttributePtr attribute, bool isShort, std::string name)
      : node_(node.shared_from_this()),
        attribute_(std::move(attribute)),
        isShort_(isShort),
        other_(std::move(name)) {}
  Result<void> undo() override {
    const dg::Attribute* taken = node_->findAttribute(other_);
    if (taken && taken != attribute_.get())
      return fail("Node '{}' has an attribute '{}' already", node_->name(), other_);
    std::swap(isShort_ ? attribute_->shortName : attribute_->longName, other_);
    return {};
  }
  Result<void> redo() override { return undo(); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }

 private:
  dg::NodePtr node_;
  AttributePtr attribute_;
  bool isShort_;
  std::string other_;
};

bool isAttributeName(const std::string& name) {
  const auto isWord = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
  };
  return !name.empty() && !std::isdigit(static_cast<unsigned char>(name.front())) &&
         std::ranges::all_of(name, isWord);
}

CommandResult renameAttr(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  auto plug = context.document.plug(words[0]);
  if (!plug) return failWith(std::move(plug.error()));
  const dg::Attribute& attribute = *plug->attribute();
  dg::Node& node = *plug->node();
  const std::string& name = words[1];
  if (!attribute.isDynamic)
    return fail("renameAttr: '{}' belongs to its node's type and keeps its name.", words[0]);
  if (!isAttributeName(name)) return fail("renameAttr: '{}' is no name for an attribute.", name);
  if (node.findAttribute(name))
    return fail("renameAttr: '{}' has an attribute '{}' already.", node.name(), name);
  // Whichever name it was called by.
  const std::string written = words[0].substr(words[0].find_last_of('.') + 1);
  const bool isShort = written != attribute.longName && written == attribute.shortName;
  auto change = std::make_unique<AttributeRename>(
      node, std::const_pointer_cast<dg::Attribute>(attribute.shared_from_this()), isShort, name);
  HOST_TRY(change->redo());
  dg::Graph& graph = context.document.graph();
  if (graph.isRecording()) graph.recorder()->record(std::move(change));
  return mel::Value(name);
}

CommandResult removeMultiInstance(Context& context, const ParsedArgs& args) {
  bool isRemoved = false;
  for (const std::string& name : args.objectNames()) {
    auto plug = context.document.plug(name);
    if (!plug) return failWith(std::move(plug.error()));
    dg::Graph& graph = context.document.graph();
    if (args.has("allChildren") && plug->isArray()) {
      for (const Index index : graph.elementIndices(*plug))
        HOST_TRY(graph.removeElement(plug->element(index), args.boolean("break")));
      isRemoved = true;
      continue;
    }
    if (!plug->isElement())
      return fail("removeMultiInstance: '{}' is no element of an array.", name);
    HOST_TRY(graph.removeElement(*plug, args.boolean("break")));
    isRemoved = true;
  }
  return mel::Value(isRemoved);
}

CommandResult attributeExists(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  const auto node = context.document.node(words[1]);
  return mel::Value(node && dg::parsePlug(**node, words[0]).has_value());
}

struct Toggle {
  const char *shortName, *longName, *attribute;
};
constexpr Toggle kToggles[] = {
    {"te", "template", "template"},
    {"la", "localAxis", "displayLocalAxis"},
    {"rp", "rotatePivot", "displayRotatePivot"},
    {"sp", "scalePivot", "displayScalePivot"},
    {"sh", "selectHandle", "displayHandle"},
    {"vt", "vertex", "displayVertices"},
    {"pt", "point", "displayVertices"},
    {"f", "facet", "displayNormal"},
    {"nr", "normal", "displayNormal"},
    {"uvt", "uvTopology", "displayUVs"},
    {"cv", "controlVertex", "dispCV"},
    {"hl", "hull", "dispHull"},
    {"ep", "editPoint", "dispEP"},
    {"gm", "geometry", "dispGeometry"},
};

CommandResult toggle(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  dg::Graph& graph = context.document.graph();
  int count = 0;
  for (const scene::SelectionItem& item : list->items()) {
    for (const Toggle& each : kToggles) {
      if (!args.has(each.longName)) continue;
      dg::Node* node = item.node.get();
      Plug plug = node->plug(each.attribute);
      if (!plug && item.isDag())
        if (const scene::DagPath shape = item.path.toShape(); !shape.isWorld())
          plug = shape.node()->plug(each.attribute);
      if (!plug) continue;
      const auto value = graph.get(plug);
      const auto* number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
      const bool isOn = number && *number != 0;
      if (args.isQuery()) return mel::Value(isOn);
      HOST_TRY(graph.set(plug, std::int64_t{args.boolean("state", !isOn)}));
      ++count;
    }
  }
  return mel::Value(count);
}

}  // namespace

void registerAttrExtras(CommandRegistry& registry) {
  define(registry, "renameAttr", Syntax().strings(2, 2), renameAttr);
  define(registry, "removeMultiInstance",
         Syntax().flag("b", "break", {ArgType::Bool}).flag("all", "allChildren").strings(1),
         removeMultiInstance);
  defineQuery(registry, "attributeExists", Syntax().strings(2, 2), attributeExists);
  Syntax syntax;
  for (const Toggle& each : kToggles) syntax.flag(each.shortName, each.longName);
  define(registry, "toggle",
         syntax.flag("st", "state", {ArgType::Bool}).queryable().objects(0, -1, true), toggle);
}

}  // namespace host::builtins
