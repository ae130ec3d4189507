#include "host/nodes/history/history_node.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "host/base/assert.h"
#include "host/base/cancel_poll.h"
#include "host/mesh/provenance.h"
#include "host/nodes/history/group_carry.h"

namespace host::nodes {

namespace {

using scene::Component;
using scene::ComponentType;
using scene::MeshData;

Index countOf(const mesh::Mesh& mesh, ComponentType type) {
  switch (type) {
    case ComponentType::Vertex:
      return mesh.vertexCount();
    case ComponentType::Edge:
      return mesh.edgeCount();
    case ComponentType::Face:
      return mesh.faceCount();
    case ComponentType::Uv:
      return static_cast<Index>(mesh.uvSet(mesh.currentUvSet()).points.size());
    case ComponentType::VertexFace:
      return mesh.cornerCount();
  }
  return 0;
}

constexpr const char* kMemo = "operationMemo";

/// What an evaluation leaves for the next one and for the command that made the node. No more than
/// a cache: it is not saved, not compared and not undone.
class HistoryMemo final : public dg::Data {
 public:
  /// The groups that came in and went out, with the meshes that they were of.
  struct Groups {
    scene::MeshDataPtr from, to;
  };
  HistoryMemo(std::vector<Component> madeIn, std::shared_ptr<const void> planIn, Groups groupsIn)
      : made(std::move(madeIn)), plan(std::move(planIn)), groups(std::move(groupsIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "historyMemo"; }
  [[nodiscard]] bool equals(const Data& other) const override { return this == &other; }
  const std::vector<Component> made;
  const std::shared_ptr<const void> plan;
  const Groups groups;
};

std::shared_ptr<const HistoryMemo> memoOf(Node& node) {
  const Plug plug = node.plug(kMemo);
  if (!plug) return nullptr;
  const dg::Value value = node.graph().stored(plug);
  const auto* data = std::get_if<dg::DataPtr>(&value);
  return data ? std::dynamic_pointer_cast<const HistoryMemo>(*data) : nullptr;
}

Result<Computed> finish(const HistoryOperation& operation, HistoryContext& context,
                        const Attribute* output) {
  if (auto done = operation(context); !done) return failAt(context.node().name(), done.error());
  context.block.output(output, dg::DataPtr(std::make_shared<MeshData>(std::move(context.mesh))));
  return Computed::Done;
}

/// An operation that follows its own plan rebuilds nothing and tells of no origins: the groups are
/// then those that it came to last, as long as the faces are.
const HistoryMemo::Groups* lastGroups(const HistoryMemo* memo, const scene::MeshDataPtr& input,
                                      const mesh::Mesh& made) {
  if (!memo || !memo->groups.from || !memo->groups.to) return nullptr;
  const HistoryMemo::Groups& last = memo->groups;
  const bool isSame = last.from->groups == input->groups &&
                      last.from->mesh.sharesTopologyWith(input->mesh) &&
                      last.to->mesh.sharesTopologyWith(made);
  return isSame ? &last : nullptr;
}

/// Whether the input comes from a mesh shape: one that has no mesh is an empty one, to which faces
/// may be added.
bool isFromShape(const Plug& input) {
  const Plug source = input.node()->graph().source(input);
  return source && source.node()->type().isA("mesh");
}

Result<Computed> modify(const HistoryOperation& operation, DataBlock& block,
                        const Attribute* output, scene::MeshDataPtr input) {
  HistoryContext context(block, input->mesh);
  context.input = input;
  const auto memo = memoOf(block.node());
  if (memo) context.plan = memo->plan;
  std::optional<mesh::ProvenanceTrail> trail;
  if (input->groups) trail.emplace(input->mesh);
  if (auto done = operation(context); !done)
    return fail("{}: {}", context.node().name(), done.error().message);
  scene::MeshGroupsPtr groups;
  if (input->groups) {
    const HistoryMemo::Groups* last = lastGroups(memo.get(), input, context.mesh);
    groups = last ? last->to->groups
                  : carriedGroups(input->groups, context.mesh, trail->to(context.mesh));
  }
  auto result = std::make_shared<MeshData>(std::move(context.mesh), std::move(groups));
  HistoryMemo::Groups kept;
  if (input->groups) kept = {std::move(input), result};
  block.output(output, dg::DataPtr(result));
  block.output(block.node().type().find(kMemo),
               dg::DataPtr(std::make_shared<HistoryMemo>(
                   std::move(context.made), std::move(context.plan), std::move(kept))));
  return Computed::Done;
}

}  // namespace

const Attribute* HistoryContext::find(std::string_view attribute) const {
  const Attribute* found = node().type().find(attribute);
  HOST_ASSERT(found, "declare the parameter before it is read");
  return found;
}

Result<int> HistoryContext::choice(std::string_view attribute, int count) const {
  const int value = integer(attribute);
  if (value >= 0 && value < count) return value;
  return fail(ErrorKind::BadArgument, "{} must be 0 to {}, not {}", attribute, count - 1, value);
}

void HistoryContext::makes(ComponentType type, std::vector<Index> ids) {
  // All of a large mesh takes no list to remember.
  const bool isAll = !ids.empty() && static_cast<Index>(ids.size()) == countOf(mesh, type);
  made.push_back(isAll ? Component::all(type) : Component(type, std::move(ids)));
}

void HistoryContext::packed(std::string_view attribute, std::vector<Index>& indices,
                            std::vector<double>& values) const {
  block.graph().getPacked(Plug(&node(), find(attribute)), indices, values);
}

std::vector<Component> HistoryContext::inputComponents() const {
  const auto list = componentList();
  return list ? list->value : std::vector<Component>();
}

bool HistoryContext::names(ComponentType type) const {
  const std::vector<Component> list = inputComponents();
  return std::any_of(list.begin(), list.end(),
                     [&](const Component& each) { return each.type() == type; });
}

std::vector<Index> HistoryContext::components(ComponentType type) const {
  const Index count = countOf(mesh, type);
  Component all(type);
  for (const Component& each : inputComponents())
    if (each.type() == type) all.unite(each);
  std::vector<Index> indices = all.expanded(count);
  // Ascending: what an earlier edit took away is at the end.
  indices.erase(std::lower_bound(indices.begin(), indices.end(), count), indices.end());
  return indices;
}

std::vector<Component::VertexFace> HistoryContext::vertexFaces() const {
  std::vector<Component::VertexFace> kept;
  for (const Component& each : inputComponents()) {
    if (each.type() != ComponentType::VertexFace) continue;
    for (const Component::VertexFace& pair : each.pairs()) {
      if (pair.face >= mesh.faceCount()) continue;
      const auto corners = mesh.faceVertices(pair.face);
      if (std::find(corners.begin(), corners.end(), pair.vertex) != corners.end())
        kept.push_back(pair);
    }
    if (!each.isComplete()) continue;
    for (FaceId f = 0; f < mesh.faceCount(); ++f)
      for (const VertexId v : mesh.faceVertices(f)) kept.push_back({v, f});
  }
  return kept;
}

std::vector<Component> componentsMade(Node& node) {
  const auto memo = memoOf(node);
  return memo ? memo->made : std::vector<Component>();
}

HistoryNodeBuilder::HistoryNodeBuilder(dg::TypeRegistry& types, std::string_view name,
                                       std::uint32_t id, std::string_view base)
    : builder_(types, name, base, id) {}

HistoryNodeBuilder& HistoryNodeBuilder::parameter(AttributePtr attribute) {
  builder_.affects({builder_.add(std::move(attribute))}, {builder_["output"]});
  return *this;
}

void HistoryNodeBuilder::operation(HistoryOperation operation) {
  const Attribute* input = builder_["inputPolymesh"];
  const Attribute* output = builder_["output"];
  const Attribute* state = builder_["nodeState"];
  builder_.type().compute = [input, output, state, operation = std::move(operation)](
                                Node& node, const Plug& plug,
                                DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != output) return Computed::Unhandled;
    auto arriving = block.input(Plug(&node, input));
    if (!arriving) return failWith(arriving.error());
    const auto* payload = std::get_if<dg::DataPtr>(&*arriving);
    auto data = payload ? std::dynamic_pointer_cast<const MeshData>(*payload) : nullptr;
    if (!data && isFromShape(Plug(&node, input))) data = std::make_shared<MeshData>(mesh::Mesh());
    if (!data || block.integer(state) == 1) {
      block.output(output, *arriving);
      return Computed::Done;
    }
    return cancellable([&] { return modify(operation, block, output, std::move(data)); });
  };
  builder_.finish();
}

PrimitiveNodeBuilder::PrimitiveNodeBuilder(dg::TypeRegistry& types, std::string_view name,
                                           std::uint32_t id, std::string_view base)
    : builder_(types, name, base, id) {}

PrimitiveNodeBuilder& PrimitiveNodeBuilder::parameter(AttributePtr attribute) {
  builder_.affects({builder_.add(std::move(attribute))}, {builder_["output"]});
  return *this;
}

void PrimitiveNodeBuilder::operation(HistoryOperation operation) {
  const Attribute* output = builder_["output"];
  builder_.type().compute = [output, operation = std::move(operation)](
                                Node&, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != output) return Computed::Unhandled;
    HistoryContext context(block, mesh::Mesh());
    return cancellable([&] { return finish(operation, context, output); });
  };
  builder_.finish();
}

void registerHistoryBaseTypes(dg::TypeRegistry& types) {
  TypeBuilder base(types, "polyBase");
  base.setAbstract().livesByItsOutputs();
  const Attribute* out = base.add(output(dg::makeTyped("output", "out", "mesh")));
  base.finish();

  TypeBuilder modifier(types, "polyModifier", "polyBase");
  modifier.setAbstract();
  const Attribute* input = modifier.add(notStored(dg::makeTyped("inputPolymesh", "ip", "mesh")));
  const Attribute* components =
      modifier.add(dg::makeTyped("inputComponents", "ics", "componentList"));
  modifier.add(boolean("useOldPolyArchitecture", "uopa"));
  modifier.add(hidden(notStored(dg::makeTyped("inMeshCache", "imc", "mesh"))));
  modifier.add(hidden(output(dg::makeTyped(kMemo, "opm", "historyMemo"))));
  modifier.affects({input, components, modifier["nodeState"]}, {out});
  modifier.finish();

  TypeBuilder world(types, "polyModifierWorld", "polyModifier");
  world.setAbstract();
  const Attribute* inputMatrix = world.add(matrix("inputMatrix", "ix"));
  const Attribute* worldSpace = world.add(boolean("worldSpace", "ws"));
  const Attribute* manipMatrix = world.add(hidden(matrix("manipMatrix", "mp")));
  world.affects({inputMatrix, worldSpace, manipMatrix}, {out});
  world.finish();

  TypeBuilder uvs(types, "polyModifierUV", "polyModifierWorld");
  uvs.setAbstract();
  uvs.affects({uvs.add(text("uvSetName", "uvs"))}, {out});
  uvs.finish();

  TypeBuilder(types, "polyCreator", "polyBase").setAbstract().finish();
  TypeBuilder primitive(types, "polyPrimitive", "polyCreator");
  primitive.setAbstract();
  const Attribute* axis = primitive.add(triple("axis", "ax", AttributeType::Double, {0, 1, 0}));
  const Attribute* baseline = primitive.add(distance("heightBaseline", "hbl"));
  const Attribute* uvSet = primitive.add(text("uvSetName", "uvs"));
  primitive.affects({axis, baseline, uvSet}, {out});
  // Tags and warnings are for the shapes and editors of files that come from elsewhere.
  primitive.add(boolean("paramWarn", "pw", true));
  primitive.add(boolean("componentTagCreate", "ctc", true));
  primitive.add(text("componentTagPrefix", "pfx"));
  primitive.add(text("componentTagSuffix", "sfx"));
  primitive.finish();
}

}  // namespace host::nodes
