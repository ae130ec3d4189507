#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "host/cmd/registry.h"
#include "host/nodes/history/history_node.h"
#include "host/nodes/mesh_components.h"

namespace host::modelling {

using cmd::ArgType;
using cmd::Context;
using cmd::kCreate;
using cmd::ParsedArgs;
using nodes::Attribute;
using nodes::AttributePtr;
using nodes::AttributeType;
using nodes::Computed;
using nodes::DataBlock;
using nodes::HistoryContext;
using nodes::MeshItem;
using nodes::Node;
using nodes::Plug;
using nodes::TypeBuilder;
using scene::ComponentType;
using CommandResult = Result<mel::Value>;

// Attributes are declared in the words of the type builder.
using nodes::angle;
using nodes::array;
using nodes::atLeast;
using nodes::boolean;
using nodes::choice;
using nodes::compound;
using nodes::distance;
using nodes::hidden;
using nodes::integer;
using nodes::keyable;
using nodes::limited;
using nodes::notStored;
using nodes::numbers;
using nodes::real;
using nodes::shortInteger;
using nodes::single;
using nodes::text;
using nodes::triple;
using nodes::typeCode;

/// What is selected once a command has run. Objects that were selected stay selected.
enum class Leaves : std::uint8_t {
  Selection,  ///< what was selected before
  Made,       ///< the components that the nodes made
  Nothing,    ///< no component of the meshes that were edited
};

struct FlagNames {
  std::string shortName, longName;
  std::string childShortName;  ///< of triples: "r" makes -rx -ry -rz
};

/// An attribute of the command's node and the flag that sets it. Everything that differs between
/// the two stands here; what is not said is the attribute's.
struct Parameter {
  enum class Effect : std::uint8_t {
    Full,     ///< the operation reads it
    Recorded  ///< nothing reads it: stored for files and scripts
  };

  AttributePtr attribute;              ///< belongs to nothing; each node type gets a copy
  std::string meaning;                 ///< a phrase for help and the page
  std::vector<FlagNames> flags;        ///< empty: only setAttr and files reach it
  std::optional<double> commandValue;  ///< what the command sets when no flag says otherwise
  Effect effect = Effect::Full;
  /// Recorded parameters: the numbers beside the default that change nothing in the original
  /// behaviour either. A command refuses other numbers, because its result would silently differ.
  std::vector<double> harmless;
  bool takesAnything = false;  ///< recorded, and no number would change the result

  /// The number that a new node has when the command was given no flag; none for what is no number.
  [[nodiscard]] std::optional<double> commandDefault() const;
  [[nodiscard]] std::vector<ArgType> argTypes() const;
};

/// A flag that stands for no attribute.
struct ExtraFlag {
  std::string shortName, longName;
  std::vector<ArgType> args = {};
  std::uint8_t modes = cmd::kAnyMode;
  bool isMultiUse = false;
  bool hasOptionalArgs = false;
  std::string meaning = {};
};

/// A command line that the tests run on every zoo mesh.
struct Trial {
  std::string flags;       ///< after the command's name
  std::string components;  ///< selected at random: "f", "e", "vtx", "e vtx", "map"; "border": all
                           ///< border edges; "object": the whole mesh
};

/// One modelling command: its node, their parameters, what it works on, what it leaves selected,
/// how it is tried. The node type, the command with its create, edit and query mode, undo, `help`,
/// the rows of docs/modelling.md and the zoo tests all come from here.
///
/// A file host/modelling/<command>.cpp defines `void <command>(Declarations& add)`, named like the
/// file in camel case; the build finds it, there is no list to add it to:
///
///     void polyPoke(Declarations& add) {
///       add("polyPoke", "Replaces each face by triangles around a new vertex.")
///           .node("polyPoke", typeCode("PPOK"), "polyModifierWorld")
///           .takes(ComponentType::Face)
///           .leaves(Leaves::Made)
///           .parameter(triple("localTranslate", "lt", AttributeType::Distance), "moves ...")
///           .trial("-ltz 0.1", "f")
///           .operation(poke);
///     }
class Declaration {
 public:
  using Create =
      std::function<CommandResult(Context&, const ParsedArgs&, const Declaration& declaration)>;
  using AfterFlags =
      std::function<Result<void>(Context& context, const ParsedArgs& args, Node& node,
                                 const MeshItem& item, const std::vector<Index>& ids)>;
  using NodeBuilder = std::function<void(TypeBuilder&, const std::vector<const Attribute*>&)>;

  /// An empty command declares a node alone.
  Declaration(std::string commandIn, std::string aboutIn)
      : command(std::move(commandIn)), about(std::move(aboutIn)) {}

  /// A further name of the command.
  Declaration& alias(std::string name);
  Declaration& node(std::string type, std::uint32_t id, std::string base = "polyModifier");
  /// A further node type of the same attributes and operation, for older scenes.
  Declaration& nodeAlias(std::string type, std::uint32_t id);
  /// What new nodes are called, without the number, where that is not the type.
  Declaration& nodesCalled(std::string name);
  /// Components of other types are converted to `type`, but for those of `also`.
  Declaration& takes(ComponentType type, std::vector<ComponentType> also = {});
  Declaration& leaves(Leaves what);

  Declaration& parameter(AttributePtr attribute, std::string meaning);
  // These adjust the parameter added last.
  Declaration& flag(std::string shortName, std::string longName = {},
                    std::string childShortName = {});  ///< names of its own instead
  Declaration& alsoFlag(std::string shortName, std::string longName);
  Declaration& noFlag();
  /// What the command sets where that is not the node's default. Angles in radians, lengths in cm.
  Declaration& commandSets(double value);
  /// Nothing reads it; only the default and these numbers are taken.
  Declaration& withoutEffect(std::vector<double> harmless = {});
  /// Nothing reads it, and nothing it could say would change the result.
  Declaration& recordedOnly();

  /// A flag that `create` or `afterFlags` reads.
  Declaration& extraFlag(ExtraFlag flag);

  Declaration& operation(nodes::HistoryOperation run);
  /// In place of an operation: completes a node type whose parameters are in it.
  Declaration& builtBy(NodeBuilder build);
  /// What the command sets on each node beside its flags, when these are set.
  Declaration& afterFlags(AfterFlags run);
  /// In place of putting a node in front of each mesh. The command runs this in create mode.
  Declaration& creates(Create run);
  /// How many names may stand after the flags; -1: any number.
  Declaration& objects(int minimum, int maximum);

  Declaration& trial(std::string flags, std::string components);

  /// What `-name` gives: the name asked for, else the node's with "#".
  [[nodiscard]] std::string wantedName(const ParsedArgs& args) const;
  [[nodiscard]] bool isPrimitive() const {
    return base == "polyPrimitive" || base == "polyCreator";
  }

  struct NodeNames {
    std::string type;
    std::uint32_t id = 0;
  };

  std::string command, about;
  std::vector<std::string> aliases;
  std::vector<NodeNames> nodeTypes;  ///< the first is the one that the command makes
  std::string base = "polyModifier", nodeName;
  ComponentType works = ComponentType::Face;
  std::vector<ComponentType> alsoTakes;
  Leaves selected = Leaves::Selection;
  std::vector<Parameter> parameters;
  std::vector<ExtraFlag> extraFlags;
  nodes::HistoryOperation run;
  NodeBuilder build;
  AfterFlags after;
  Create create;
  int objectsMinimum = 0, objectsMaximum = -1;
  std::vector<Trial> trials;

 private:
  Parameter& last() { return parameters.back(); }
};

/// Collects what the command files declare; references stay valid.
class Declarations {
 public:
  Declaration& operator()(std::string command, std::string about) {
    return list_.emplace_back(std::move(command), std::move(about));
  }
  [[nodiscard]] const std::list<Declaration>& list() const { return list_; }
  /// The declaration of a node type; null when none declares it.
  [[nodiscard]] const Declaration* ofNode(std::string_view type) const;
  /// The declaration of a command or one of its aliases; null when none declares it.
  [[nodiscard]] const Declaration* ofCommand(std::string_view command) const;
  /// The parameters of a declaration's node, those of declared base types first.
  [[nodiscard]] std::vector<const Parameter*> parametersOf(const Declaration& declaration) const;

 private:
  std::list<Declaration> list_;
};

/// All modelling commands, in order of the files' names.
[[nodiscard]] const Declarations& declarations();

/// Registers the node types of all declarations. The history base types come first.
void registerTypes(dg::TypeRegistry& types);
/// Registers the commands of all declarations.
void registerCommands(cmd::CommandRegistry& registry);

}  // namespace host::modelling
