#include <utility>

#include "host/builtins/common/command.h"
#include "host/edits/connect.h"

namespace host::builtins {

namespace {

using dg::Plug;

/// World-space attributes have an element for each instance; named without a number the first is
/// meant.
Plug firstInstance(const Plug& plug) {
  return plug.isArray() && plug.attribute()->worldSpace ? plug.element(0) : plug;
}

CommandResult connectAttr(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> names = args.objectNames();
  dg::Graph& graph = context.document.graph();
  auto source = context.document.plug(names[0]);
  if (!source) return failWith(std::move(source.error()));
  auto destination = context.document.plug(names[1]);
  if (!destination) return failWith(std::move(destination.error()));
  if (destination->isArray()) {
    if (!args.has("nextAvailable") && !source->isArray())
      return fail(ErrorKind::BadArgument,
                  "connectAttr: '{}' is an array: name an element or use -nextAvailable.",
                  names[1]);
    if (args.has("nextAvailable"))
      *destination = destination->element(graph.nextFreeIndex(*destination));
  }
  if (!destination->isArray()) *source = firstInstance(*source);
  if (graph.source(*destination) == *source)
    return fail("Failed to connect '{}' to '{}': they are connected already.", names[0], names[1]);
  const bool isForced = args.has("force");
  if (isForced && args.has("lock"))
    HOST_TRY(graph.setFlag(*destination, dg::Graph::PlugFlag::Locked, false));
  HOST_TRY(edits::connect(context.document, *source, *destination, isForced));
  if (args.has("lock"))
    HOST_TRY(graph.setFlag(*destination, dg::Graph::PlugFlag::Locked, args.boolean("lock")));
  return mel::Value(fmt::format("Connected {} to {}.", plugName(*source), plugName(*destination)));
}

CommandResult disconnectAttr(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> names = args.objectNames();
  dg::Graph& graph = context.document.graph();
  auto first = context.document.plug(names[0]);
  if (!first) return failWith(std::move(first.error()));
  if (names.size() == 1) {
    // One plug: whatever leaves or reaches it.
    if (const Plug source = graph.source(*first)) HOST_TRY(graph.disconnect(source, *first));
    for (const Plug& destination : graph.destinations(*first))
      HOST_TRY(graph.disconnect(*first, destination));
    return mel::Value();
  }
  auto second = context.document.plug(names[1]);
  if (!second) return failWith(std::move(second.error()));
  Plug destination = *second;
  if (!destination.isArray()) *first = firstInstance(*first);
  // What converts between the two goes with the connection.
  if (const Plug between = graph.source(destination);
      between && between.node()->type().name == "unitConversion" &&
      graph.source(between.node()->plug("input")) == *first) {
    HOST_TRY(graph.disconnect(between, destination));
    if (graph.destinations(between).empty())
      HOST_TRY(context.document.deleteNodes({between.node()}));
    return mel::Value(
        fmt::format("Disconnect {} from {}.", plugName(*first), plugName(destination)));
  }
  if (args.has("nextAvailable") && destination.isArray()) {
    for (const Index index : graph.elementIndices(*second))
      if (graph.source(second->element(index)) == *first) destination = second->element(index);
  }
  if (!(graph.source(destination) == *first))
    return fail(ErrorKind::NotFound, "There is no connection from '{}' to '{}' to disconnect",
                names[0], names[1]);
  HOST_TRY(graph.disconnect(*first, destination));
  return mel::Value(fmt::format("Disconnect {} from {}.", plugName(*first), plugName(destination)));
}

CommandResult isConnected(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> names = args.objectNames();
  auto source = context.document.plug(names[0]);
  if (!source) return failWith(std::move(source.error()));
  auto destination = context.document.plug(names[1]);
  if (!destination) return failWith(std::move(destination.error()));
  Plug arriving = context.document.graph().source(*destination);
  if (args.has("ignoreUnitConversion") && arriving && !(arriving == *source) &&
      arriving.node()->type().name == "unitConversion")
    arriving = context.document.graph().source(arriving.node()->plug("input"));
  return mel::Value(arriving == *source);
}

/// The plug itself or the nearest one above it of which `holds` is true; null when there is none.
template <class Condition>
Plug nearest(Plug at, const Condition& holds) {
  while (at && !holds(at)) at = at.isElement() ? at.array() : at.parent();
  return at;
}

CommandResult connectionInfo(Context& context, const ParsedArgs& args) {
  dg::Graph& graph = context.document.graph();
  auto plug = context.document.plug(args.firstObject());
  if (!plug) return failWith(std::move(plug.error()));
  const std::vector<Plug> destinations = graph.destinations(*plug);
  const Plug exactSource =
      nearest(*plug, [&](const Plug& at) { return !graph.destinations(at).empty(); });
  const Plug exactDestination =
      nearest(*plug, [&](const Plug& at) { return !graph.source(at).isNull(); });
  if (args.has("isSource")) return mel::Value(!exactSource.isNull());
  if (args.has("isDestination")) return mel::Value(!exactDestination.isNull());
  if (args.has("isExactSource")) return mel::Value(!destinations.empty());
  if (args.has("isExactDestination")) return mel::Value(!graph.source(*plug).isNull());
  if (args.has("isLocked")) return mel::Value(graph.isLockedHereOrAbove(*plug));
  if (args.has("sourceFromDestination")) {
    const Plug source = graph.source(*plug);
    return mel::Value(source ? plugName(source) : std::string{});
  }
  if (args.has("destinationFromSource")) {
    std::vector<std::string> names;
    for (const Plug& destination : destinations) names.push_back(plugName(destination));
    return toValue(std::move(names));
  }
  for (const auto& [flag, exact] : {std::pair{"getExactSource", exactSource},
                                    std::pair{"getExactDestination", exactDestination}})
    if (args.has(flag)) return mel::Value(exact ? plugName(exact) : std::string{});
  return fail("connectionInfo: say what to ask for.");
}

}  // namespace

void registerConnectAttr(CommandRegistry& registry) {
  define(registry, "connectAttr",
         Syntax()
             .flag("f", "force")
             .flag("na", "nextAvailable")
             .flag("l", "lock", {ArgType::Bool})
             .flag("rd", "referenceDest", {ArgType::String})
             .strings(2, 2),
         connectAttr);
  define(registry, "disconnectAttr", Syntax().flag("na", "nextAvailable").strings(1, 2),
         disconnectAttr);
  defineQuery(registry, "isConnected", Syntax().flag("iuc", "ignoreUnitConversion").strings(2, 2),
              isConnected);
  defineQuery(registry, "connectionInfo",
              Syntax()
                  .flag("is", "isSource")
                  .flag("id", "isDestination")
                  .flag("ies", "isExactSource")
                  .flag("ied", "isExactDestination")
                  .flag("il", "isLocked")
                  .flag("sfd", "sourceFromDestination")
                  .flag("dfs", "destinationFromSource")
                  .flag("ges", "getExactSource")
                  .flag("ged", "getExactDestination")
                  .strings(1, 1),
              connectionInfo);
}

}  // namespace host::builtins
