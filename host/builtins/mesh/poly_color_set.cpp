#include <array>

#include "host/builtins/mesh/corner_record.h"
#include "host/builtins/mesh/set_command.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

namespace {

using mesh::Mesh;

struct Representation {
  const char* name;
  int channels;
};
constexpr std::array kRepresentations = {Representation{"A", 1}, Representation{"RGB", 3},
                                         Representation{"RGBA", 4}};

class ColorSets final : public NamedSets {
 public:
  ColorSets(int channels, bool isClamped) : channels_(channels), isClamped_(isClamped) {}
  int count(const Mesh& mesh) const override { return mesh.colorSetCount(); }
  std::string name(const Mesh& mesh, int set) const override { return mesh.colorSet(set).name; }
  int find(const Mesh& mesh, std::string_view name) const override {
    return mesh.findColorSet(name);
  }
  int current(const Mesh& mesh) const override { return mesh.currentColorSet(); }
  void setCurrent(Mesh& mesh, int set) const override { mesh.setCurrentColorSet(set); }
  int add(Mesh& mesh, std::string name) const override {
    return mesh.addColorSet({std::move(name), channels_, isClamped_, {}, {}});
  }
  void rename(Mesh& mesh, int set, std::string name) const override {
    mesh.editColorSet(set).name = std::move(name);
  }
  void copy(Mesh& mesh, int from, int to) const override {
    mesh::ColorSet copied = mesh.colorSet(from);
    copied.name = mesh.colorSet(to).name;
    mesh.setColorSet(to, std::move(copied));
  }
  Result<void> remove(Mesh& mesh, int set) const override {
    mesh.removeColorSet(set);
    return {};
  }
  /// A first set is one that a node can make: it is the current one by itself.
  Result<bool> record(scene::Document& document, dg::Node& shape, const Mesh& before,
                      const Mesh& after) const override {
    if (!nodes::hasHistory(shape) || before.colorSetCount() > 0 || after.colorSetCount() != 1)
      return false;
    HOST_TRY(
        insertCornerNode(document, shape, "createColorSet", [&](dg::Node& node) -> Result<void> {
          dg::Graph& graph = document.graph();
          HOST_TRY(graph.set(node.plug("colorSetName"), dg::Value(after.colorSet(0).name)));
          HOST_TRY(graph.set(node.plug("clamped"), std::int64_t{isClamped_}));
          return graph.set(node.plug("representation"), std::int64_t{channels_});
        }));
    return true;
  }

 private:
  int channels_;
  bool isClamped_;
};

constexpr SetWords kWords = {"polyColorSet", "colour set",   "colorSet",       "newColorSet",
                             "colorSet",     "allColorSets", "currentColorSet"};

/// -query -representation or -clamped: of the current set of the first mesh.
CommandResult queryFormat(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty() || items->front().mesh.currentColorSet() < 0)
    return fail("polyColorSet: there is no colour set.");
  const Mesh& mesh = items->front().mesh;
  const mesh::ColorSet& set = mesh.colorSet(mesh.currentColorSet());
  if (args.has("clamped")) return mel::Value(set.clamped);
  for (const Representation& each : kRepresentations)
    if (each.channels == set.representation) return mel::Value(each.name);
  return mel::Value("RGBA");
}

CommandResult polyColorSet(Context& context, const ParsedArgs& args) {
  if (args.isQuery() && (args.has("representation") || args.has("clamped")))
    return queryFormat(context, args);
  const std::string wanted = args.text("representation", "RGBA");
  for (const Representation& each : kRepresentations)
    if (wanted == each.name)
      return runSetCommand(context, args, ColorSets(each.channels, args.boolean("clamped")),
                           kWords);
  return fail("polyColorSet: -representation is A, RGB or RGBA.");
}

}  // namespace

void registerPolyColorSet(CommandRegistry& registry) {
  Syntax syntax;
  addSetFlags(syntax, kWords, {"cs", "nc", "acs", "ccs"})
      .flag("rpt", "representation", {ArgType::String})
      .flag("cla", "clamped", {ArgType::Bool})
      .flag("ch", "constructionHistory", {ArgType::Bool})
      .queryable()
      .objects(0, -1, true);
  define(registry, "polyColorSet", syntax, polyColorSet);
}

}  // namespace host::builtins
