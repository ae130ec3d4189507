#include <numeric>

#include "host/builtins/mesh/set_command.h"

namespace host::builtins {

namespace {

using mesh::Mesh;

class UvSets final : public NamedSets {
 public:
  int count(const Mesh& mesh) const override { return mesh.uvSetCount(); }
  std::string name(const Mesh& mesh, int set) const override { return mesh.uvSet(set).name; }
  int find(const Mesh& mesh, std::string_view name) const override { return mesh.findUvSet(name); }
  int current(const Mesh& mesh) const override { return mesh.currentUvSet(); }
  void setCurrent(Mesh& mesh, int set) const override { mesh.setCurrentUvSet(set); }
  int add(Mesh& mesh, std::string name) const override {
    return mesh.addUvSet({std::move(name), {}, {}});
  }
  void rename(Mesh& mesh, int set, std::string name) const override {
    mesh.editUvSet(set).name = std::move(name);
  }
  void copy(Mesh& mesh, int from, int to) const override {
    mesh::UvSet copied = mesh.uvSet(from);
    copied.name = mesh.uvSet(to).name;
    mesh.setUvSet(to, std::move(copied));
  }
  Result<void> remove(Mesh& mesh, int set) const override {
    if (set == 0)
      return fail("polyUVSet: '{}' is the mesh's first UV set: it can't be deleted.",
                  mesh.uvSet(0).name);
    mesh.removeUvSet(set);
    return {};
  }
};

constexpr SetWords kWords = {"polyUVSet", "UV set",    "uvSet",       "newUVSet",
                             "uvSet",     "allUVSets", "currentUVSet"};

CommandResult polyUvSet(Context& context, const ParsedArgs& args) {
  if (!args.isQuery() || !args.has("allUVSetsIndices"))
    return runSetCommand(context, args, UvSets(), kWords);
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("polyUVSet: name or select polygon objects.");
  mel::IntArray indices(static_cast<std::size_t>(items->front().mesh.uvSetCount()));
  std::iota(indices.begin(), indices.end(), 0);
  return mel::Value(std::move(indices));
}

}  // namespace

void registerPolyUvSet(CommandRegistry& registry) {
  Syntax syntax;
  addSetFlags(syntax, kWords, {"uvs", "nuv", "auv", "cuv"})
      .flag("aui", "allUVSetsIndices")
      .flag("ch", "constructionHistory", {ArgType::Bool})
      .queryable()
      .objects(0, -1, true);
  define(registry, "polyUVSet", syntax, polyUvSet);
}

}  // namespace host::builtins
