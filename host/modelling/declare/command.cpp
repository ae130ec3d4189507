// The commands of the declarations: create, edit and query mode.
#include "host/modelling/declare/command.h"

#include "host/base/assert.h"
#include "host/cmd/plug_values.h"
#include "host/modelling/declare/history_command.h"

namespace host::modelling {

namespace {

std::string helpOf(const Parameter& parameter) {
  if (parameter.effect == Parameter::Effect::Full) return parameter.meaning;
  return parameter.meaning + "; recorded, without effect";
}

void addFlags(cmd::Syntax& syntax, const Parameter& parameter) {
  constexpr std::pair<const char*, const char*> kAxes[] = {{"x", "X"}, {"y", "Y"}, {"z", "Z"}};
  const std::vector<ArgType> types = parameter.argTypes();
  for (const FlagNames& names : parameter.flags) {
    syntax.flag(names.shortName, names.longName, types).help(helpOf(parameter));
    // Pairs go by the names of their children, triples by the flag's own.
    if (types.size() == 2)
      for (const AttributePtr& child : parameter.attribute->children)
        syntax.flag(child->shortName, child->longName, {types.front()})
            .help("one number of -" + names.longName);
    if (types.size() != 3) continue;
    const std::string& child =
        names.childShortName.empty() ? names.shortName : names.childShortName;
    for (const auto& [small, large] : kAxes) {
      syntax.flag(child + small, names.longName + large, {types.front()})
          .help(std::string(large) + " of -" + names.longName);
    }
  }
}

void addFlag(cmd::Syntax& syntax, const ExtraFlag& flag) {
  syntax.flag(flag.shortName, flag.longName, flag.args, flag.modes).help(flag.meaning);
  if (flag.isMultiUse) syntax.multiUse();
  if (flag.hasOptionalArgs) syntax.optionalArgs();
}

/// What every modelling command has.
const std::vector<ExtraFlag>& commonFlags() {
  static const std::vector<ExtraFlag> flags = {
      {.shortName = "n",
       .longName = "name",
       .args = {ArgType::String},
       .meaning = "name of what is made"},
      {.shortName = "ch",
       .longName = "constructionHistory",
       .args = {ArgType::Bool},
       .meaning = "off bakes the result of a mesh that had no history"},
      {.shortName = "cch",
       .longName = "caching",
       .args = {ArgType::Bool},
       .meaning = "recorded on the node's outputs"},
      {.shortName = "nds",
       .longName = "nodeState",
       .args = {ArgType::Int},
       .meaning = "1 lets the mesh pass unchanged"}};
  return flags;
}

/// The plug that a queried flag reads; null when it stands for no attribute.
Plug plugOf(const Declaration& declaration, Node& node, std::string_view asked) {
  constexpr std::string_view kAxes[] = {"X", "Y", "Z"};
  if (asked == "nodeState" || asked == "caching") return node.plug(asked);
  for (const Parameter* parameter : declarations().parametersOf(declaration)) {
    const Plug plug = node.plug(parameter->attribute->longName);
    for (const FlagNames& names : parameter->flags) {
      if (names.longName == asked) return plug;
      for (int i = 0; i < 3 && plug.isCompound(); ++i)
        if (asked == names.longName + std::string(kAxes[i])) return plug.child(i);
      for (int i = 0; i < 2 && plug.isCompound(); ++i)
        if (plug.attribute()->children.size() == 2 && plug.child(i).attribute()->longName == asked)
          return plug.child(i);
    }
  }
  return {};
}

CommandResult query(Context& context, const ParsedArgs& args, const Declaration& declaration,
                    Node& node) {
  const std::string_view asked = args.queried();
  if (asked == "name") return mel::Value(node.name());
  if (asked == "constructionHistory") return mel::Value(true);
  const Plug plug = plugOf(declaration, node, asked);
  if (!plug) return fail("Say which flag to query of '{}'.", node.name());
  return cmd::readPlug(context.document.graph(), context.document.units(), plug);
}

CommandResult editOrQuery(Context& context, const ParsedArgs& args,
                          const Declaration& declaration) {
  auto found = findHistoryNode(context, args, declaration.nodeTypes.front().type);
  for (std::size_t i = 1; !found && i < declaration.nodeTypes.size(); ++i)
    if (auto other = findHistoryNode(context, args, declaration.nodeTypes[i].type)) found = other;
  if (!found) return failWith(std::move(found.error()));
  Node& node = **found;
  if (args.isQuery()) return query(context, args, declaration, node);
  HOST_TRY(setParameters(context, args, declaration, node));
  if (const Plug output = node.plug("output"); output && !output.isArray())
    HOST_TRY(context.document.graph().evaluate(output));
  return mel::Value();
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  if (declaration.create) return declaration.create(context, args, declaration);
  auto names = runHistoryCommand(context, args, declaration);
  if (!names) return failWith(std::move(names.error()));
  return mel::Value(std::move(*names));
}

}  // namespace

cmd::Syntax syntaxOf(const Declarations& all, const Declaration& declaration) {
  cmd::Syntax syntax;
  syntax.about(declaration.about);
  for (const Parameter* parameter : all.parametersOf(declaration)) addFlags(syntax, *parameter);
  for (const ExtraFlag& flag : declaration.extraFlags) addFlag(syntax, flag);
  for (const ExtraFlag& flag : commonFlags()) addFlag(syntax, flag);
  // What makes a mesh from nothing has no use for what is selected.
  const bool takesSelection = !(declaration.isPrimitive() && declaration.run);
  syntax.editable().queryable().objects(declaration.objectsMinimum, declaration.objectsMaximum,
                                        takesSelection);
  return syntax;
}

void registerCommands(cmd::CommandRegistry& registry) {
  const Declarations& all = declarations();
  for (const Declaration& declaration : all.list()) {
    if (declaration.command.empty()) continue;
    const cmd::Syntax syntax = syntaxOf(all, declaration);
    std::vector<std::string> names = declaration.aliases;
    names.insert(names.begin(), declaration.command);
    for (const std::string& name : names) {
      const Result<void> added = registry.add(cmd::CommandSpec{
          name, syntax, [&declaration](Context& context, const ParsedArgs& args) -> CommandResult {
            return args.isCreate() ? create(context, args, declaration)
                                   : editOrQuery(context, args, declaration);
          }});
      HOST_ASSERT(added.has_value(), "give every modelling command a name of its own");
    }
  }
}

}  // namespace host::modelling
