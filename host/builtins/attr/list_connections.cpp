#include <algorithm>

#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

using dg::Plug;

/// Whether `plug` is `top` or lies below it.
bool isAtOrBelow(Plug plug, const Plug& top) {
  for (; plug; plug = plug.isElement() ? plug.array() : plug.parent())
    if (plug == top) return true;
  return false;
}

class Lister {
 public:
  Lister(Context& context, const ParsedArgs& args)
      : document_(context.document),
        args_(args),
        asPlugs_(args.boolean("plugs")),
        withOwn_(args.boolean("connections")),
        asShapes_(args.boolean("shapes")),
        skipsConversion_(args.boolean("skipConversionNodes")),
        wantsSources_(args.boolean("source", true)),
        wantsDestinations_(args.boolean("destination", true)) {}

  void list(dg::Node& node, const Plug& only) {
    dg::Graph& graph = document_.graph();
    if (wantsSources_) {
      for (const dg::Graph::Connection& connection : graph.incoming(node))
        if (!only || isAtOrBelow(connection.destination, only)) addIncoming(connection);
    }
    if (wantsDestinations_) {
      for (const dg::Graph::Connection& connection : graph.outgoing(node))
        if (!only || isAtOrBelow(connection.source, only)) addOutgoing(connection);
    }
  }

  [[nodiscard]] std::vector<std::string> takeNames() { return std::move(names_); }

 private:
  static bool isConversion(const dg::Node& node) { return node.type().isA("unitConversion"); }

  void addIncoming(const dg::Graph::Connection& connection) {
    Plug other = connection.source;
    if (skipsConversion_ && isConversion(*other.node())) {
      const Plug before = document_.graph().source(other.node()->plug("input"));
      if (before) other = before;
    }
    add(connection.destination, other);
  }

  void addOutgoing(const dg::Graph::Connection& connection) {
    if (skipsConversion_ && isConversion(*connection.destination.node())) {
      for (const Plug& after :
           document_.graph().destinations(connection.destination.node()->plug("output")))
        add(connection.source, after);
      return;
    }
    add(connection.source, connection.destination);
  }

  void add(const Plug& own, const Plug& other) {
    const dg::Node& node = *other.node();
    if (args_.has("type")) {
      const std::string type = args_.text("type");
      const bool fits =
          args_.boolean("exactType") ? node.type().name == type : node.type().isA(type);
      if (!fits) return;
    }
    if (withOwn_) names_.push_back(plugName(own));
    names_.push_back(asPlugs_ ? plugName(other) : shownNode(node));
  }

  /// Without -shapes a shape is shown as its transform.
  [[nodiscard]] std::string shownNode(const dg::Node& node) const {
    if (asShapes_ || !scene::isShape(node)) return nodeName(node, args_.boolean("fullNodeName"));
    const scene::DagPath transform = scene::firstPath(node).transform();
    if (transform.isWorld()) return nodeName(node);
    return args_.boolean("fullNodeName") ? transform.fullName() : transform.partialName();
  }

  scene::Document& document_;
  const ParsedArgs& args_;
  bool asPlugs_, withOwn_, asShapes_, skipsConversion_, wantsSources_, wantsDestinations_;
  std::vector<std::string> names_;
};

CommandResult listConnections(Context& context, const ParsedArgs& args) {
  auto objects = args.resolveObjects(context.document);
  if (!objects) return failWith(std::move(objects.error()));
  if (objects->isEmpty()) return fail("listConnections: name or select a node or an attribute.");
  Lister lister(context, args);
  for (const scene::SelectionItem& item : objects->items()) lister.list(*item.node, item.plug);
  return toValue(lister.takeNames());
}

}  // namespace

void registerListConnections(CommandRegistry& registry) {
  defineQuery(registry, "listConnections",
              Syntax()
                  .flag("s", "source", {ArgType::Bool})
                  .flag("d", "destination", {ArgType::Bool})
                  .flag("c", "connections", {ArgType::Bool})
                  .flag("p", "plugs", {ArgType::Bool})
                  .flag("sh", "shapes", {ArgType::Bool})
                  .flag("t", "type", {ArgType::String})
                  .flag("et", "exactType", {ArgType::Bool})
                  .flag("scn", "skipConversionNodes", {ArgType::Bool})
                  .flag("fnn", "fullNodeName", {ArgType::Bool})
                  .objects(0, -1, true),
              listConnections);
}

}  // namespace host::builtins
