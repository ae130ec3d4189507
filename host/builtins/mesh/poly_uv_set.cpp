#include <algorithm>
#include <numeric>

#include "host/builtins/mesh/set_command.h"
#include "host/nodes/mesh_shape.h"

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

Result<std::vector<MeshItem>> objects(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (items && items->empty()) return fail("polyUVSet: name or select polygon objects.");
  return items;
}

/// Two sets change places; the current one stays current.
Result<std::string> reorder(const ParsedArgs& args, Mesh& mesh) {
  const std::string first = args.text("uvSet"), second = args.text("newUVSet");
  const int a = mesh.findUvSet(first), b = mesh.findUvSet(second);
  if (a < 0 || b < 0)
    return fail("polyUVSet: -reorder needs -uvSet and -newUVSet, two sets that are there.");
  const std::string current = mesh.uvSet(mesh.currentUvSet()).name;
  mesh::UvSet held = mesh.uvSet(a);
  mesh.setUvSet(a, mesh.uvSet(b));
  mesh.setUvSet(b, std::move(held));
  mesh.setCurrentUvSet(mesh.findUvSet(current));
  return first;
}

Result<std::string> chooseLast(const ParsedArgs&, Mesh& mesh) {
  mesh.setCurrentUvSet(mesh.uvSetCount() - 1);
  return mesh.uvSet(mesh.currentUvSet()).name;
}

/// A set of a name that is free, whatever -uvSet says: a new one, or with -copy a copy of that one.
Result<std::string> generate(const ParsedArgs& args, Mesh& mesh) {
  const std::string from = args.text("uvSet");
  const int source = from.empty() ? mesh.currentUvSet() : mesh.findUvSet(from);
  if (args.has("copy") && source < 0) return fail("polyUVSet: there is no UV set '{}'.", from);
  std::string wanted = args.text("newUVSet");
  if (wanted.empty()) wanted = from.empty() ? "uvSet" : from;
  std::string name = wanted;
  for (int number = 1; mesh.findUvSet(name) >= 0; ++number) name = wanted + std::to_string(number);
  const int made = mesh.addUvSet({name, {}, {}});
  if (args.has("copy")) UvSets().copy(mesh, source, made);
  mesh.setCurrentUvSet(made);
  return name;
}

/// The nodes in the history that project into a set, the latest first.
CommandResult projections(Context& context, const ParsedArgs& args) {
  auto items = objects(context, args);
  if (!items) return failWith(std::move(items.error()));
  const MeshItem& item = items->front();
  const std::string wanted = args.text("uvSet");
  const std::string& first = item.mesh.uvSet(0).name;
  const std::string set = wanted.empty() ? item.mesh.uvSet(item.mesh.currentUvSet()).name : wanted;
  if (item.mesh.findUvSet(set) < 0) return fail("polyUVSet: there is no UV set '{}'.", set);
  dg::Graph& graph = context.document.graph();
  std::vector<std::string> names;
  for (dg::Plug source = graph.source(item.path.node()->plug("inMesh")); source;) {
    auto& node = *source.node();
    const std::string& type = node.type().name;
    if (type == "polyPlanarProj" || type == "polyCylProj" || type == "polySphProj" ||
        type == "polyAutoProj") {
      const auto filled = graph.get(node.plug("uvSetName"));
      const auto* text = filled ? std::get_if<std::string>(&*filled) : nullptr;
      if (text && (*text == set || (text->empty() && set == first)))
        names.push_back(nodeName(node));
    }
    const dg::Plug input = node.plug("inputPolymesh");
    source = input ? graph.source(input) : dg::Plug();
  }
  return toValue(std::move(names));
}

CommandResult editEach(Context& context, const ParsedArgs& args,
                       Result<std::string> (*edit)(const ParsedArgs&, Mesh&)) {
  auto items = objects(context, args);
  if (!items) return failWith(std::move(items.error()));
  std::vector<std::string> names;
  std::vector<const dg::Node*> done;
  for (const MeshItem& item : *items) {
    if (std::ranges::find(done, item.path.node()) != done.end()) continue;
    done.push_back(item.path.node());
    Mesh mesh = item.mesh;
    auto name = edit(args, mesh);
    if (!name) return failWith(std::move(name.error()));
    names.push_back(std::move(*name));
    HOST_TRY(nodes::setEvaluatedMesh(*item.path.node(), std::move(mesh)));
  }
  return toValue(std::move(names));
}

CommandResult query(Context& context, const ParsedArgs& args) {
  auto items = objects(context, args);
  if (!items) return failWith(std::move(items.error()));
  const Mesh& mesh = items->front().mesh;
  if (args.has("allUVSetsIndices")) {
    mel::IntArray indices(at(mesh.uvSetCount()));
    std::iota(indices.begin(), indices.end(), 0);
    return mel::Value(std::move(indices));
  }
  std::vector<std::string> names;
  for (int set = 0; set < mesh.uvSetCount(); ++set) names.push_back(mesh.uvSet(set).name);
  if (args.has("currentLastUVSet")) names.erase(names.begin(), names.end() - 1);
  if (args.has("currentPerInstanceUVSet")) names = {mesh.uvSet(mesh.currentUvSet()).name};
  return toValue(std::move(names));
}

CommandResult polyUvSet(Context& context, const ParsedArgs& args) {
  if (args.boolean("perInstance") || args.has("shareInstances") || args.has("unshared"))
    return fail("polyUVSet: instances share their UV sets here.");
  if (args.isQuery() && args.has("projections")) return projections(context, args);
  if (args.isQuery()) {
    for (const char* flag :
         {"allUVSetsIndices", "allUVSetsWithCount", "currentLastUVSet", "currentPerInstanceUVSet"})
      if (args.has(flag)) return query(context, args);
  } else {
    if (args.has("genNewUVSet")) return editEach(context, args, generate);
    if (args.has("reorder")) return editEach(context, args, reorder);
    if (args.has("currentLastUVSet")) return editEach(context, args, chooseLast);
  }
  return runSetCommand(context, args, UvSets(), kWords);
}

}  // namespace

void registerPolyUvSet(CommandRegistry& registry) {
  Syntax syntax;
  addSetFlags(syntax, kWords, {"uvs", "nuv", "auv", "cuv"})
      .flag("aui", "allUVSetsIndices")
      .flag("awc", "allUVSetsWithCount")
      .flag("luv", "currentLastUVSet")
      .flag("cpi", "currentPerInstanceUVSet")
      .flag("ro", "reorder")
      .flag("gnu", "genNewUVSet")
      .flag("pr", "projections")
      .flag("pi", "perInstance", {ArgType::Bool})
      .flag("si", "shareInstances")
      .flag("us", "unshared")
      .flag("ch", "constructionHistory", {ArgType::Bool})
      .queryable()
      .editable()
      .objects(0, -1, true);
  define(registry, "polyUVSet", syntax, polyUvSet);
}

}  // namespace host::builtins
