// listSets: the sets that objects and components are members of.
#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/nodes/sets.h"

namespace host::builtins {

namespace {

CommandResult listSets(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const int kind = args.integer("type", 0);  // 1: rendering sets, 2: the others, 0: all
  const auto fits = [&](const dg::Node& set) {
    return kind == 0 || nodes::isShadingGroup(set) == (kind == 1);
  };
  std::vector<std::string> names;
  const auto take = [&](const dg::Node& set) {
    if (fits(set) && std::find(names.begin(), names.end(), set.name()) == names.end())
      names.push_back(set.name());
  };
  if (args.has("allSets")) {
    for (const dg::NodePtr& node : document.graph().nodes())
      if (nodes::isSet(*node)) take(*node);
    return toValue(std::move(names));
  }
  auto wanted =
      args.has("object") ? document.resolve(args.text("object")) : args.resolveObjects(document);
  if (!wanted) return failWith(std::move(wanted.error()));
  if (wanted->isEmpty()) return fail("listSets: name an object with -object, or select one.");
  for (const scene::SelectionItem& item : wanted->items()) {
    for (dg::Node* set : nodes::setsOf(document, item))
      if (item.components.empty() || nodes::isSetMember(*set, item)) take(*set);
    if (!args.boolean("extendToShape") || !item.isObject() || !item.isDag()) continue;
    for (const scene::DagPath& shape : item.path.shapes()) {
      scene::SelectionList list;
      list.add(shape);
      for (const dg::Node* set : nodes::setsOf(document, list.items().front())) take(*set);
    }
  }
  return toValue(std::move(names));
}

}  // namespace

void registerListSets(CommandRegistry& registry) {
  defineQuery(registry, "listSets",
              Syntax()
                  .flag("as", "allSets")
                  .flag("o", "object", {ArgType::String})
                  .flag("t", "type", {ArgType::Unsigned})
                  .flag("ets", "extendToShape", {ArgType::Bool})
                  .objects(0, -1, true),
              listSets);
}

}  // namespace host::builtins
