#include <maya/MGlobal.h>
#include <maya/MPxPolyTweakUVCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

#include <map>

#include "host/api/graph/modifier.h"
#include "host/builtins/common/mesh_components.h"
#include "host/nodes/mesh_shape.h"

namespace host::api {
namespace {

/// What one mesh's polyTweakUV node will hold.
struct UvTweak {
  dg::NodePtr shape;
  std::string uvSet;
  std::vector<Index> uvs;       ///< ascending, each once
  std::vector<double> offsets;  ///< two a UV
};

Result<UvTweak> tweakOf(const builtins::MeshItem& item, const MIntArray& uvs, const MFloatArray& u,
                        const MFloatArray& v) {
  const std::string name = item.path.node()->name();
  if (u.length() != uvs.length() || v.length() != uvs.length())
    return fail("{}: {} UVs came with {} and {} places", name, uvs.length(), u.length(),
                v.length());
  UvTweak tweak{item.path.node()->shared_from_this(), {}, {}, {}};
  if (uvs.length() == 0) return tweak;
  const int set = item.mesh.currentUvSet();
  if (set < 0) return fail("{} has no UVs", name);
  const auto& points = item.mesh.uvSet(set).points;
  tweak.uvSet = item.mesh.uvSet(set).name;
  std::map<Index, unsigned int> places;  // a UV that comes twice goes where it was put last
  for (unsigned int i = 0; i < uvs.length(); ++i) {
    if (uvs[i] < 0 || static_cast<std::size_t>(uvs[i]) >= points.size())
      return fail("{} has no UV {}", name, uvs[i]);
    places.insert_or_assign(uvs[i], i);
  }
  tweak.uvs.reserve(places.size());
  tweak.offsets.reserve(2 * places.size());
  for (const auto& [id, at] : places) {
    const math::Vec2f& from = points[static_cast<std::size_t>(id)];
    tweak.uvs.push_back(id);
    tweak.offsets.push_back(static_cast<double>(u[at]) - from.u);
    tweak.offsets.push_back(static_cast<double>(v[at]) - from.v);
  }
  return tweak;
}

Result<void> apply(const UvTweak& tweak, const std::string& wantedName, bool keepsHistory) {
  scene::Document& scene = document();
  dg::Graph& graph = scene.graph();
  const bool hadHistory = nodes::hasHistory(*tweak.shape);
  auto created = scene.createNode("polyTweakUV", wantedName);
  if (!created) return failWith(std::move(created.error()));
  dg::Node& node = **created;
  HOST_TRY(graph.set(node.plug("uvSetName"), dg::Value(tweak.uvSet)));
  HOST_TRY(graph.setPacked(node.plug("uvTweak"), tweak.uvs, tweak.offsets));
  HOST_TRY(nodes::insertHistoryNode(scene, *tweak.shape, node.plug("inputPolymesh"),
                                    node.plug("output")));
  HOST_TRY(graph.evaluate(node.plug("output")));
  if (!keepsHistory && !hadHistory) HOST_TRY(nodes::deleteHistory(scene, *tweak.shape));
  return {};
}

MStatus toFailure(const Error& error) {
  rememberError(error);
  return MStatus::kFailure;
}

}  // namespace
}  // namespace host::api

using namespace host;

MPxPolyTweakUVCommand::MPxPolyTweakUVCommand() = default;
MPxPolyTweakUVCommand::~MPxPolyTweakUVCommand() = default;
bool MPxPolyTweakUVCommand::isUndoable() const {
  return true;
}
MStatus MPxPolyTweakUVCommand::parseSyntax(MArgDatabase&) {
  return MStatus::kSuccess;
}

MSyntax MPxPolyTweakUVCommand::newSyntax(MStatus* status) {
  MSyntax syntax;
  syntax.addFlag("-n", "-name", MSyntax::kString);
  syntax.addFlag("-ch", "-constructionHistory", MSyntax::kBoolean);
  syntax.setObjectType(MSyntax::kSelectionList);
  syntax.useSelectionAsDefault(true);
  api::setStatus(status, MStatus::kSuccess);
  return syntax;
}

MStatus MPxPolyTweakUVCommand::doIt(const MArgList& args) {
  MStatus status;
  MArgDatabase database(syntax(), args, &status);
  if (!status) return status;
  status = parseSyntax(database);
  if (!status) return status;
  MString name = "polyTweakUV#";
  bool keepsHistory = true;
  if (database.isFlagSet("-n")) database.getFlagArgument("-n", 0, name);
  if (database.isFlagSet("-ch")) database.getFlagArgument("-ch", 0, keepsHistory);

  MSelectionList objects;
  if (!database.getObjects(objects) || objects.isEmpty()) MGlobal::getActiveSelectionList(objects);
  auto items = builtins::meshItems(api::listOf(objects));
  if (!items) return api::toFailure(items.error());
  if (items->empty()) return api::toFailure({"name or select polygon objects or UVs"});

  std::vector<api::UvTweak> tweaks;
  for (const builtins::MeshItem& item : *items) {
    MIntArray uvs;
    for (const Index id : item.ids(scene::ComponentType::Uv)) uvs.append(id);
    MFloatArray u, v;
    status = getTweakedUVs(api::wrap(item.path.node()), uvs, u, v);
    if (!status) return status;
    auto tweak = api::tweakOf(item, uvs, u, v);
    if (!tweak) return api::toFailure(tweak.error());
    if (!tweak->uvs.empty()) tweaks.push_back(std::move(*tweak));
  }
  for (api::UvTweak& tweak : tweaks)
    api::modifierOf(change_).add([tweak = std::move(tweak), text = api::toStd(name), keepsHistory] {
      return api::apply(tweak, text, keepsHistory);
    });
  return redoIt();
}

MStatus MPxPolyTweakUVCommand::redoIt() {
  return change_.doIt();
}
MStatus MPxPolyTweakUVCommand::undoIt() {
  return change_.undoIt();
}
