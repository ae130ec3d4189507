// rotate and scale: parse to edits.
#include "host/edits/rotate_scale.h"

#include "host/builtins/common/transform_args.h"
#include "host/builtins/tools/soft_select.h"
#include "host/edits/bounds.h"

namespace host::builtins {

namespace {

/// `neutral` is the value for the axes that the flags leave out.
Result<edits::TurnOptions> readTurn(const ParsedArgs& args, std::string_view command,
                                    const std::vector<double>& numbers, double neutral) {
  edits::TurnOptions turn;
  turn.isRelative = args.has("relative");
  turn.isWorld = args.has("worldSpace");
  turn.isEuler = args.has("euler");
  turn.componentsByObject = args.has("objectSpace");
  if (args.has("pivot")) turn.pivot = args.vec3("pivot");
  turn.axes = axesOf(args, command);
  auto amount = amountFor(command, "value", turn.axes, numbers, neutral);
  if (!amount) return failWith(std::move(amount.error()));
  turn.amount = *amount;
  return turn;
}

using Turn = Result<void> (*)(scene::Document&, const scene::SelectionList&,
                              const edits::TurnOptions&);

Result<math::Vec3> middleOf(const scene::SelectionList& list) {
  math::Box all;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag()) continue;
    const auto box =
        item.isObject() ? Result<math::Box>(edits::worldBox(item.path)) : edits::worldBox(item);
    if (!box) return failWith(box.error());
    all.add(*box);
  }
  return all.isEmpty() ? math::Vec3() : all.center();
}

/// -centerPivot turns about the middle of all, -objectCenterPivot each about its own.
Result<void> turnAll(Context& context, const ParsedArgs& args, const scene::SelectionList& list,
                     edits::TurnOptions turn, Turn run) {
  if (args.has("pivot") || !(args.has("centerPivot") || args.has("objectCenterPivot")))
    return run(context.document, list, turn);
  std::vector<scene::SelectionList> groups;
  if (args.has("centerPivot")) {
    groups.push_back(list);
  } else {
    for (const scene::SelectionItem& item : list.items()) groups.emplace_back().merge(item);
  }
  for (const scene::SelectionList& group : groups) {
    const auto middle = middleOf(group);
    if (!middle) return failWith(middle.error());
    turn.pivot = *middle;
    HOST_TRY(run(context.document, group, turn));
  }
  return {};
}

CommandResult rotate(Context& context, const ParsedArgs& args) {
  const NumbersAndNames words = splitNumbers(args, 3, ArgType::Angle, context.document.units());
  auto list = namedOrSelected(context, words.names, "rotate");
  if (!list) return failWith(std::move(list.error()));
  auto turn = readTurn(args, "rotate", words.numbers, 0.0);
  if (!turn) return failWith(std::move(turn.error()));
  turn->soft = &softSelectionOf(context.session);
  HOST_TRY(turnAll(context, args, *list, *turn, edits::rotate));
  return mel::Value();
}

CommandResult scale(Context& context, const ParsedArgs& args) {
  const NumbersAndNames words = splitNumbers(args, 3, ArgType::Double, context.document.units());
  auto list = namedOrSelected(context, words.names, "scale");
  if (!list) return failWith(std::move(list.error()));
  auto turn = readTurn(args, "scale", words.numbers, 1.0);
  if (!turn) return failWith(std::move(turn.error()));
  turn->soft = &softSelectionOf(context.session);
  HOST_TRY(turnAll(context, args, *list, *turn, edits::scale));
  return mel::Value();
}

Syntax turnSyntax(const std::string& prefix) {
  Syntax syntax;
  syntax.flag("a", "absolute")
      .flag("r", "relative")
      .flag("os", "objectSpace")
      .flag("ws", "worldSpace")
      .flag("p", "pivot", {ArgType::Distance, ArgType::Distance, ArgType::Distance})
      .flag("cp", "centerPivot")
      .flag("ocp", "objectCenterPivot")
      .flag("dph", "deletePriorHistory", {ArgType::Bool})
      .flag("pcp", "preserveChildPosition", {ArgType::Bool})
      .flag("puv", "preserveUV", {ArgType::Bool});
  for (const char* axes : {"X", "Y", "Z", "XY", "XZ", "YZ", "XYZ"}) {
    std::string shortName = axes;
    for (char& c : shortName) c = static_cast<char>(c - 'A' + 'a');
    syntax.flag(shortName, prefix + axes);
  }
  return syntax.strings(1);
}

}  // namespace

void registerRotateScale(CommandRegistry& registry) {
  define(registry, "rotate", turnSyntax("rotate").flag("eu", "euler").flag("fo", "forceOrderXYZ"),
         rotate);
  define(registry, "scale", turnSyntax("scale").flag("ls", "localSpace"), scale);
}

}  // namespace host::builtins
