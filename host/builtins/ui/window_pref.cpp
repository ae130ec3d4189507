#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::WindowPlace;
using workspace::workspaceOf;

CommandResult queryPlace(const WindowPlace& place, const ParsedArgs& args) {
  if (args.has("width")) return mel::Value(place.width);
  if (args.has("height")) return mel::Value(place.height);
  if (args.has("topEdge")) return mel::Value(place.top);
  if (args.has("leftEdge")) return mel::Value(place.left);
  if (args.has("widthHeight")) return mel::Value(mel::IntArray{place.width, place.height});
  if (args.has("topLeftCorner")) return mel::Value(mel::IntArray{place.top, place.left});
  return fail("windowPref: say which flag to query.");
}

CommandResult windowPref(Context& context, const ParsedArgs& args) {
  auto& places = workspaceOf(context.session).windowPlaces;
  const std::string name = args.firstObject();
  if (args.has("removeAll")) {
    places.clear();
    return mel::Value();
  }
  const auto found = places.find(name);
  if (args.has("exists")) return mel::Value(found != places.end());
  if (args.has("remove") || args.isQuery() || args.isEdit()) {
    if (found == places.end())
      return fail(ErrorKind::NotFound, "windowPref: Object '{}' not found.", name);
    if (args.has("remove")) {
      places.erase(found);
      return mel::Value();
    }
    if (args.isQuery()) return queryPlace(found->second, args);
  }
  WindowPlace& place = places[name];
  place.width = args.integer("width", args.integer("widthHeight", place.width));
  place.height = args.integer("height", args.integer("widthHeight", place.height, 1));
  place.top = args.integer("topEdge", args.integer("topLeftCorner", place.top));
  place.left = args.integer("leftEdge", args.integer("topLeftCorner", place.left, 1));
  return mel::Value(name);
}

}  // namespace

void registerWindowPref(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("w", "width", {ArgType::Int}).flag("h", "height", {ArgType::Int});
  syntax.flag("te", "topEdge", {ArgType::Int}).flag("le", "leftEdge", {ArgType::Int});
  syntax.flag("wh", "widthHeight", {ArgType::Int, ArgType::Int});
  syntax.flag("tlc", "topLeftCorner", {ArgType::Int, ArgType::Int});
  syntax.flag("ex", "exists").flag("r", "remove").flag("ra", "removeAll");
  defineQuery(registry, "windowPref", syntax.editable().queryable().strings(0, 1), windowPref);
}

}  // namespace host::builtins
