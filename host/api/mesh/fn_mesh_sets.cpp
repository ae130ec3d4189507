#include <maya/MBoundingBox.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MObjectArray.h>
#include <maya/MPxLocatorNode.h>

#include "host/api/mesh/fn_mesh.h"
#include "host/api/node/px_node.h"
#include "host/nodes/dag_node.h"
#include "host/nodes/sets.h"
#include "host/scene/dag_paths.h"

namespace host::api {
namespace {

/// The instance of the attached shape that a number names, else the one the set was attached
/// through.
scene::DagPath instanceOf(const MeshTarget& target, unsigned int number) {
  if (!target.shape()) return {};
  return scene::pathAt(*target.shape(), number);
}

/// What a set holds of one path.
std::vector<scene::SelectionItem> membersAt(dg::Node& set, const scene::DagPath& path) {
  std::vector<scene::SelectionItem> found;
  const scene::SelectionList members = nodes::setMembers(set);
  for (const scene::SelectionItem& item : members.items())
    if (item.isDag() && item.path.toShape() == path) found.push_back(item);
  return found;
}

std::vector<dg::Node*> setsAt(const scene::DagPath& path) {
  scene::SelectionItem item;
  item.path = path;
  item.node = path.node()->shared_from_this();
  return nodes::setsOf(document(), item);
}

MBoundingBox toMBoundingBox(const math::Box& box) {
  return box.isEmpty() ? MBoundingBox() : MBoundingBox(toMPoint(box.min), toMPoint(box.max));
}

}  // namespace
}  // namespace host::api

using namespace host;

MStatus MFnMesh::getConnectedSetsAndMembers(unsigned int instanceNumber, MObjectArray& sets,
                                            MObjectArray& comps, bool renderableSetsOnly) const {
  const scene::DagPath path = api::instanceOf(api::targetOf(*this), instanceNumber);
  if (path.isWorld()) return MStatus::kInvalidParameter;
  sets.clear();
  comps.clear();
  for (dg::Node* set : api::setsAt(path)) {
    if (renderableSetsOnly && !nodes::isShadingGroup(*set)) continue;
    for (const scene::SelectionItem& item : api::membersAt(*set, path)) {
      if (item.components.empty()) {
        sets.append(api::wrap(set));
        comps.append(MObject());
      }
      for (const scene::Component& component : item.components) {
        sets.append(api::wrap(set));
        comps.append(api::wrap(component));
      }
    }
  }
  return MStatus::kSuccess;
}

MStatus MFnMesh::getConnectedShaders(unsigned int instanceNumber, MObjectArray& shaders,
                                     MIntArray& indices) const {
  MStatus status;
  const auto data = api::readMesh(*this, &status);
  if (!data) return status;
  const scene::DagPath path = api::instanceOf(api::targetOf(*this), instanceNumber);
  if (path.isWorld()) return MStatus::kInvalidParameter;
  shaders.clear();
  indices = MIntArray(static_cast<unsigned int>(data->mesh.faceCount()), -1);
  for (dg::Node* set : api::setsAt(path)) {
    if (!nodes::isShadingGroup(*set)) continue;
    const int number = static_cast<int>(shaders.length());
    shaders.append(api::wrap(set));
    for (const scene::SelectionItem& item : api::membersAt(*set, path)) {
      const scene::Component* faces = item.component(scene::ComponentType::Face);
      if (item.components.empty()) indices = MIntArray(indices.length(), number);
      if (!faces) continue;
      for (const Index f : faces->expanded(data->mesh.faceCount()))
        if (api::isFace(data->mesh, f)) indices[static_cast<unsigned int>(f)] = number;
    }
  }
  return MStatus::kSuccess;
}

MBoundingBox MFnMesh::boundingBox(MStatus* status) const {
  const auto data = api::readMesh(*this, status);
  math::Box box;
  if (data)
    for (const math::Vec3f& point : data->mesh.points()) box.add(math::Vec3(point));
  return api::toMBoundingBox(box);
}

// A shape's own extent; for a transform all below it, its own matrix included.
MBoundingBox MFnDagNode::boundingBox(MStatus* status) const {
  dg::Node* node = api::nodeOf(object_);
  api::setStatus(status, node ? MStatus::kSuccess : MStatus::kFailure);
  if (!node) return {};
  // A locator of a plug-in's own says itself how far it reaches.
  if (auto* locator = dynamic_cast<MPxLocatorNode*>(api::userNodeOf(*node)))
    return locator->isBounded() ? locator->boundingBox() : MBoundingBox();
  return api::toMBoundingBox(nodes::boundingBoxOf(*node));
}
