// move: parses to edits::move.
#include "host/edits/move.h"

#include "host/builtins/common/transform_args.h"
#include "host/builtins/tools/soft_select.h"

namespace host::builtins {

namespace {

/// The numbers are in cm.
Result<edits::MoveOptions> readMove(const ParsedArgs& args, const std::vector<double>& numbers) {
  edits::MoveOptions move;
  move.isRelative = args.has("relative");
  if (args.has("objectSpace")) move.space = edits::MoveSpace::Object;
  if (args.has("localSpace")) move.space = edits::MoveSpace::Local;
  move.byRotatePivot = args.has("rotatePivotRelative");
  move.byScalePivot = args.has("scalePivotRelative");
  move.axes = axesOf(args, "move");
  auto amount = amountFor("move", "distance", move.axes, numbers, 0);
  if (!amount) return failWith(std::move(amount.error()));
  move.amount = *amount;
  return move;
}

CommandResult move(Context& context, const ParsedArgs& args) {
  const NumbersAndNames words = splitNumbers(args, 3, ArgType::Distance, context.document.units());
  auto list = namedOrSelected(context, words.names, "move");
  if (!list) return failWith(std::move(list.error()));
  auto options = readMove(args, words.numbers);
  if (!options) return failWith(std::move(options.error()));
  options->soft = &softSelectionOf(context.session);
  HOST_TRY(edits::move(context.document, *list, *options));
  return mel::Value();
}

}  // namespace

void registerMove(CommandRegistry& registry) {
  define(registry, "move",
         Syntax()
             .flag("a", "absolute")
             .flag("r", "relative")
             .flag("os", "objectSpace")
             .flag("ws", "worldSpace")
             .flag("ls", "localSpace")
             .flag("wd", "worldSpaceDistance")
             .flag("x", "moveX")
             .flag("y", "moveY")
             .flag("z", "moveZ")
             .flag("xy", "moveXY")
             .flag("xz", "moveXZ")
             .flag("yz", "moveYZ")
             .flag("xyz", "moveXYZ")
             .flag("rpr", "rotatePivotRelative")
             .flag("spr", "scalePivotRelative")
             .flag("pcp", "preserveChildPosition", {ArgType::Bool})
             .flag("puv", "preserveUV", {ArgType::Bool})
             .strings(1),
         move);
}

}  // namespace host::builtins
