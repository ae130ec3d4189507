#include "host/nodes/sets.h"

#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/scene/selection_algebra.h"

namespace host::builtins {

namespace {

using scene::SelectionList;

Result<dg::Node*> setNamed(Context& context, const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return node;
  if (!nodes::isSet(**node)) return fail("'{}' is not a set.", name);
  return node;
}

/// Members with the sets among them replaced by theirs.
SelectionList flattened(const SelectionList& list) {
  SelectionList result;
  for (const scene::SelectionItem& item : list.items()) {
    if (item.isObject() && nodes::isSet(*item.node))
      result.merge(flattened(nodes::setMembers(*item.node)));
    else
      result.merge(item);
  }
  return result;
}

CommandResult query(Context& context, const ParsedArgs& args) {
  auto set = setNamed(context, args.firstObject());
  if (!set) return failWith(std::move(set.error()));
  SelectionList members = nodes::setMembers(**set);
  if (args.has("size")) return mel::Value(static_cast<std::int32_t>(members.length()));
  if (args.has("text")) {
    auto value = context.document.graph().get((*set)->plug("annotation"));
    const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return mel::Value(text ? *text : std::string());
  }
  if (args.has("renderable")) return mel::Value((*set)->type().isA("shadingEngine"));
  if (args.has("nodesOnly")) {
    std::vector<std::string> names;
    for (const dg::Node* node : nodesOf(members)) names.push_back(nodeName(*node));
    return toValue(std::move(names));
  }
  return toValue(members.names());
}

/// -union, -intersection, -subtract: lists of names, no set is changed.
CommandResult combine(Context& context, const ParsedArgs& args, std::string_view flag) {
  auto first = setNamed(context, args.text(flag));
  if (!first) return failWith(std::move(first.error()));
  SelectionList result = nodes::setMembers(**first);
  SelectionList others;
  auto given = args.resolveObjects(context.document);
  if (!given) return failWith(std::move(given.error()));
  others = flattened(*given);
  if (flag == "union")
    result = scene::unionOf(result, others);
  else
    result = flag == "subtract" ? scene::differenceOf(result, others)
                                : scene::intersectionOf(result, others);
  return toValue(result.names());
}

CommandResult isMember(Context& context, const ParsedArgs& args) {
  auto set = setNamed(context, args.text("isMember"));
  if (!set) return failWith(std::move(set.error()));
  auto wanted = args.resolveObjects(context.document);
  if (!wanted) return failWith(std::move(wanted.error()));
  const bool areIn = std::all_of(
      wanted->items().begin(), wanted->items().end(),
      [&](const scene::SelectionItem& item) { return nodes::isSetMember(**set, item); });
  return mel::Value(!wanted->isEmpty() && areIn);
}

/// -text: the note that goes with a set.
CommandResult annotate(Context& context, const ParsedArgs& args, const std::string& name) {
  auto set = setNamed(context, name);
  if (!set) return failWith(std::move(set.error()));
  HOST_TRY(context.document.graph().set((*set)->plug("annotation"), dg::Value(args.text("text"))));
  return mel::Value((*set)->name());
}

CommandResult create(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  SelectionList members;
  if (!args.has("empty")) {
    auto given = args.hasObjects() ? args.resolveObjects(document)
                                   : Result<SelectionList>(document.selection());
    if (!given) return failWith(std::move(given.error()));
    members = std::move(*given);
  }
  if (args.has("copy")) {
    auto source = setNamed(context, args.text("copy"));
    if (!source) return failWith(std::move(source.error()));
    members = nodes::setMembers(**source);
  }
  const bool isShading = args.boolean("renderable");
  auto node =
      document.createNode(isShading ? "shadingEngine" : "objectSet", args.text("name", "set#"));
  if (!node) return failWith(std::move(node.error()));
  if (isShading) {
    if (!document.nodesNamed("renderPartition").empty()) {
      const dg::Plug sets = document.nodesNamed("renderPartition").front()->plug("sets");
      HOST_TRY(document.graph().connect((*node)->plug("partition"),
                                        sets.element(document.graph().nextFreeIndex(sets))));
    }
  }
  HOST_TRY(nodes::addToSet(document, **node, members));
  if (args.has("text")) return annotate(context, args, (*node)->name());
  return mel::Value((*node)->name());
}

CommandResult sets(Context& context, const ParsedArgs& args) {
  if (args.isQuery()) return query(context, args);
  if (args.isEdit() && args.has("text")) return annotate(context, args, args.firstObject());
  if (args.has("isMember")) return isMember(context, args);
  for (const std::string_view flag : {"union", "intersection", "subtract"})
    if (args.has(flag)) return combine(context, args, flag);
  for (const std::string_view flag : {"addElement", "include", "forceElement", "remove", "clear"}) {
    if (!args.has(flag)) continue;
    auto set = setNamed(context, args.text(flag));
    if (!set) return failWith(std::move(set.error()));
    if (flag == "clear") {
      HOST_TRY(nodes::clearSet(context.document, **set));
      return mel::Value((*set)->name());
    }
    auto members = args.hasObjects() ? args.resolveObjects(context.document)
                                     : Result<SelectionList>(context.document.selection());
    if (!members) return failWith(std::move(members.error()));
    HOST_TRY(flag == "remove"
                 ? nodes::removeFromSet(context.document, **set, *members)
                 : nodes::addToSet(context.document, **set, *members, flag != "addElement"));
    return mel::Value((*set)->name());
  }
  return create(context, args);
}

}  // namespace

void registerSets(CommandRegistry& registry) {
  define(registry, "sets",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("em", "empty")
             .flag("r", "renderable", {ArgType::Bool})
             .flag("nss", "noSurfaceShader", {ArgType::Bool})
             .flag("add", "addElement", {ArgType::String})
             .flag("in", "include", {ArgType::String})
             .flag("fe", "forceElement", {ArgType::String})
             .flag("rm", "remove", {ArgType::String})
             .flag("cl", "clear", {ArgType::String})
             .flag("co", "copy", {ArgType::String})
             .flag("im", "isMember", {ArgType::String})
             .flag("un", "union", {ArgType::String})
             .flag("int", "intersection", {ArgType::String})
             .flag("sub", "subtract", {ArgType::String})
             .flag("s", "size")
             .flag("t", "text", {ArgType::String})
             .flag("no", "nodesOnly")
             .flag("fl", "flatten", {ArgType::String})
             .flag("v", "vertices")
             .flag("eg", "edges")
             .flag("fc", "facets")
             .editable()
             .queryable()
             .objects(),
         sets);
}

}  // namespace host::builtins
