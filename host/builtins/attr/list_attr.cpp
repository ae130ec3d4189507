#include <algorithm>

#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

using dg::Attribute;
using dg::AttributeType;
using PlugFlag = dg::Graph::PlugFlag;

/// '*' and '?' as in names.
bool matches(std::string_view pattern, std::string_view text) {
  if (pattern.empty()) return text.empty();
  if (pattern.front() == '*') {
    for (std::size_t skip = 0; skip <= text.size(); ++skip)
      if (matches(pattern.substr(1), text.substr(skip))) return true;
    return false;
  }
  return !text.empty() && (pattern.front() == '?' || pattern.front() == text.front()) &&
         matches(pattern.substr(1), text.substr(1));
}

class AttributeLister {
 public:
  AttributeLister(Context& context, const ParsedArgs& args)
      : graph_(context.document.graph()),
        args_(args),
        patterns_(args.texts("string")),
        usesShort_(args.has("shortNames")) {}

  void list(dg::Node& node) {
    for (const dg::AttributePtr& attribute : node.type().attributes())
      visit(node.plug(attribute.get()));
    for (const dg::AttributePtr& attribute : node.dynamicAttributes())
      visit(node.plug(attribute.get()));
  }
  void listBelow(const dg::Plug& plug) { visit(plug); }
  [[nodiscard]] std::vector<std::string> takeNames() { return std::move(names_); }

 private:
  void visit(const dg::Plug& plug) {
    const Attribute& attribute = *plug.attribute();
    if (passes(plug)) names_.push_back(name(plug));
    if (!attribute.isCompound()) return;
    if (plug.isArray()) {
      // The children of an array are listed once, under the array, unless its elements are asked
      // for.
      const auto indices = args_.has("multi") ? graph_.elementIndices(plug) : std::vector<Index>{};
      for (const Index index : indices) visitChildren(plug.element(index));
      if (indices.empty()) visitChildren(plug);
      return;
    }
    visitChildren(plug);
  }

  void visitChildren(const dg::Plug& plug) {
    for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i) {
      const dg::Attribute* child = plug.attribute()->children[i].get();
      visit(plug.child(child));
    }
  }

  [[nodiscard]] bool passes(const dg::Plug& plug) const {
    const Attribute& attribute = *plug.attribute();
    const auto needs = [&](std::string_view flag, bool holds) { return !args_.has(flag) || holds; };
    if (!needs("userDefined", attribute.isDynamic)) return false;
    // What takes keys are the values: a compound's children, never the compound.
    if (!needs("keyable", !attribute.isCompound() && graph_.flag(plug, PlugFlag::Keyable)))
      return false;
    if (!needs("channelBox", graph_.flag(plug, PlugFlag::ChannelBox))) return false;
    if (!needs("locked", graph_.isLockedHereOrAbove(plug))) return false;
    if (!needs("unlocked", !graph_.isLockedHereOrAbove(plug))) return false;
    if (!needs("visible", !attribute.hidden)) return false;
    if (!needs("write", attribute.writable)) return false;
    if (!needs("read", attribute.readable)) return false;
    if (!needs("array", attribute.isArray)) return false;
    if (!needs("scalar", attribute.isNumeric() && !attribute.isArray)) return false;
    if (!needs("connectable", attribute.connectable)) return false;
    if (!needs("settable",
               attribute.writable && !graph_.isLockedHereOrAbove(plug) && !graph_.isDriven(plug)))
      return false;
    if (!needs("inUse", graph_.source(plug) || attribute.storable)) return false;
    if (!needs("usedAsFilename", attribute.usedAsFilename)) return false;
    if (!needs("leaf", !attribute.isCompound())) return false;
    if (!needs("hasData", hasData(plug)) || !needs("hasNullData", !hasData(plug))) return false;
    if (patterns_.empty()) return true;
    return std::any_of(patterns_.begin(), patterns_.end(), [&](const std::string& pattern) {
      return matches(pattern, attribute.longName) || matches(pattern, attribute.shortName);
    });
  }

  /// Numbers and texts always have data; what carries a payload may have none.
  [[nodiscard]] bool hasData(const dg::Plug& plug) const {
    const Attribute& attribute = *plug.attribute();
    if (attribute.type == AttributeType::Message) return false;
    if (attribute.type != AttributeType::Typed || plug.isArray()) return true;
    const auto value = graph_.get(plug);
    const auto* data = value ? std::get_if<dg::DataPtr>(&*value) : nullptr;
    return data && *data;
  }

  [[nodiscard]] std::string name(const dg::Plug& plug) const {
    return args_.has("fullPath") ? plug.attributePath(usesShort_) : attributeName(plug, usesShort_);
  }

  dg::Graph& graph_;
  const ParsedArgs& args_;
  std::vector<std::string> patterns_;
  bool usesShort_;
  std::vector<std::string> names_;
};

CommandResult listAttr(Context& context, const ParsedArgs& args) {
  auto objects = args.resolveObjects(context.document);
  if (!objects) return failWith(std::move(objects.error()));
  if (objects->isEmpty()) return fail("listAttr: name or select a node.");
  AttributeLister lister(context, args);
  for (const scene::SelectionItem& item : objects->items())
    item.plug ? lister.listBelow(item.plug) : lister.list(*item.node);
  return toValue(lister.takeNames());
}

}  // namespace

void registerListAttr(CommandRegistry& registry) {
  defineQuery(registry, "listAttr",
              Syntax()
                  .flag("ud", "userDefined")
                  .flag("k", "keyable")
                  .flag("cb", "channelBox")
                  .flag("l", "locked")
                  .flag("u", "unlocked")
                  .flag("v", "visible")
                  .flag("w", "write")
                  .flag("r", "read")
                  .flag("a", "array")
                  .flag("s", "scalar")
                  .flag("c", "connectable")
                  .flag("se", "settable")
                  .flag("iu", "inUse")
                  .flag("uf", "usedAsFilename")
                  .flag("lf", "leaf")
                  .flag("hd", "hasData")
                  .flag("hnd", "hasNullData")
                  .flag("m", "multi")
                  .flag("sn", "shortNames")
                  .flag("fp", "fullPath")
                  .flag("st", "string", {ArgType::String})
                  .multiUse()
                  .objects(0, -1, true),
              listAttr);
}

}  // namespace host::builtins
