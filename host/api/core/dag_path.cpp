#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>

#include <optional>

#include "host/api/core/access.h"
#include "host/api/core/fn_types.h"
#include "host/scene/dag_paths.h"

namespace host::api {

MDagPath wrap(const scene::DagPath& path) {
  return path.isWorld() ? MDagPath() : Access::make<MDagPath>(new PathRep(path));
}

const scene::DagPath& pathOf(const MDagPath& path) {
  static const scene::DagPath world;
  const auto* rep = Access::rep<PathRep>(path);
  return rep ? rep->path : world;
}

namespace {

MMatrix inverseOf(const math::Matrix4& matrix, MStatus* status) {
  const std::optional<math::Matrix4> inverse = math::inverse(matrix);
  setStatus(status, inverse ? MStatus::kSuccess : MStatus::kFailure);
  // A flattened transform has no inverse; the identity keeps callers' points finite.
  return inverse ? toMMatrix(*inverse) : MMatrix();
}

bool boolAlongPath(const scene::DagPath& path, const char* attribute, bool wanted) {
  for (dg::Node* node : path.upwards()) {
    const dg::Plug plug = node->plug(attribute);
    if (plug.isNull()) continue;
    const auto value = node->graph().get(plug);
    const auto* integer = value ? std::get_if<std::int64_t>(&*value) : nullptr;
    if (integer && (*integer != 0) == wanted) return true;
  }
  return false;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::pathOf;
using api::setStatus;
using api::wrap;

namespace {
/// The path if it is usable; else the status says why not.
const scene::DagPath* usable(const MDagPath& path, MStatus* status) {
  const scene::DagPath& inner = pathOf(path);
  const bool isUsable = !inner.isWorld() && inner.isValid();
  setStatus(status, isUsable ? MStatus::kSuccess : MStatus::kFailure);
  return isUsable ? &inner : nullptr;
}
}  // namespace

bool MDagPath::hasFn(MFn::Type type, MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  if (!path) return false;
  if (api::nodeHasFn(*path->node(), type)) return true;
  // A transform with one shape below stands for that shape.
  const auto shapes =
      scene::isTransform(*path->node()) ? path->shapes() : std::vector<scene::DagPath>();
  return shapes.size() == 1 && api::nodeHasFn(*shapes[0].node(), type);
}

MFn::Type MDagPath::apiType(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? api::fnTypeOf(*path->node()) : MFn::kInvalid;
}

bool MDagPath::isValid(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  const scene::DagPath& path = pathOf(*this);
  return !path.isWorld() && path.isValid();
}

MObject MDagPath::node(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? wrap(path->node()) : MObject();
}

MObject MDagPath::transform(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? wrap(path->transform().node()) : MObject();
}

MStatus MDagPath::extendToShape() {
  MStatus status;
  const scene::DagPath* path = usable(*this, &status);
  if (!path) return status;
  if (scene::isShape(*path->node())) return MStatus::kSuccess;
  const auto shapes = path->shapes(true);
  if (shapes.size() == 1) {
    *this = wrap(shapes[0]);
    return MStatus::kSuccess;
  }
  const auto visible = path->shapes(false);
  if (visible.size() != 1) return MStatus::kFailure;
  *this = wrap(visible[0]);
  return MStatus::kSuccess;
}

MStatus MDagPath::extendToShapeDirectlyBelow(unsigned int shapeNum) {
  MStatus status;
  const scene::DagPath* path = usable(*this, &status);
  if (!path) return status;
  const auto shapes = path->shapes(true);
  if (scene::isShape(*path->node()) || shapeNum >= shapes.size()) return MStatus::kInvalidParameter;
  *this = wrap(shapes[shapeNum]);
  return MStatus::kSuccess;
}

MStatus MDagPath::numberOfShapesDirectlyBelow(unsigned int& numShapes) const {
  MStatus status;
  const scene::DagPath* path = usable(*this, &status);
  numShapes = path && !scene::isShape(*path->node())
                  ? static_cast<unsigned int>(path->shapes(true).size())
                  : 0;
  return status;
}

MStatus MDagPath::push(const MObject& childObject) {
  dg::Node* node = api::nodeOf(childObject);
  if (!node || !scene::isDagNode(*node)) return MStatus::kInvalidParameter;
  const scene::DagPath longer = pathOf(*this).child(node);
  if (!longer.isValid()) return MStatus::kInvalidParameter;
  *this = wrap(longer);
  return MStatus::kSuccess;
}

MStatus MDagPath::pop(unsigned int num) {
  const scene::DagPath& path = pathOf(*this);
  if (num > path.length()) return MStatus::kInvalidParameter;
  scene::DagPath shorter = path;
  for (unsigned int i = 0; i < num; ++i) shorter = shorter.parent();
  *this = wrap(shorter);
  return MStatus::kSuccess;
}

unsigned int MDagPath::childCount(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? static_cast<unsigned int>(scene::dagLinks(*path->node()).children.size()) : 0;
}

MObject MDagPath::child(unsigned int i, MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  if (!path) return MObject();
  const auto& children = scene::dagLinks(*path->node()).children;
  if (i >= children.size()) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  return wrap(children[i]);
}

unsigned int MDagPath::length(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return static_cast<unsigned int>(pathOf(*this).length());
}

unsigned int MDagPath::pathCount(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return pathOf(*this).isWorld() ? 0 : 1;
}

MStatus MDagPath::getPath(MDagPath& path, unsigned int i) const {
  if (i != 0) return MStatus::kInvalidParameter;
  path = *this;
  return MStatus::kSuccess;
}

MStatus MDagPath::set(const MDagPath& source) {
  *this = source;
  return MStatus::kSuccess;
}

MMatrix MDagPath::inclusiveMatrix(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? api::toMMatrix(path->inclusiveMatrix()) : MMatrix();
}
MMatrix MDagPath::exclusiveMatrix(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? api::toMMatrix(path->exclusiveMatrix()) : MMatrix();
}
MMatrix MDagPath::inclusiveMatrixInverse(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? api::inverseOf(path->inclusiveMatrix(), status) : MMatrix();
}
MMatrix MDagPath::exclusiveMatrixInverse(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? api::inverseOf(path->exclusiveMatrix(), status) : MMatrix();
}

MString MDagPath::fullPathName(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? api::toMString(path->fullName()) : MString();
}
MString MDagPath::partialPathName(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? api::toMString(path->partialName()) : MString();
}

bool MDagPath::isInstanced(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path && !scene::hasOnePath(*path->node());
}
unsigned int MDagPath::instanceNumber(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path ? static_cast<unsigned int>(path->instanceNumber()) : 0;
}
bool MDagPath::isVisible(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path && !api::boolAlongPath(*path, "visibility", false) &&
         !api::boolAlongPath(*path, "intermediateObject", true);
}
bool MDagPath::isTemplated(MStatus* status) const {
  const scene::DagPath* path = usable(*this, status);
  return path && api::boolAlongPath(*path, "template", true);
}

MStatus MDagPath::getAPathTo(const MObject& node, MDagPath& path) {
  MStatus status;
  path = getAPathTo(node, &status);
  return status;
}
MDagPath MDagPath::getAPathTo(const MObject& object, MStatus* status) {
  const dg::Node* node = api::nodeOf(object);
  const bool isDag = node && scene::isDagNode(*node) && node->isAlive();
  setStatus(status, isDag ? MStatus::kSuccess : MStatus::kFailure);
  return isDag ? wrap(scene::firstPath(*node)) : MDagPath();
}
MStatus MDagPath::getAllPathsTo(const MObject& object, MDagPathArray& paths) {
  paths.clear();
  const dg::Node* node = api::nodeOf(object);
  if (!node || !scene::isDagNode(*node)) return MStatus::kFailure;
  for (const scene::DagPath& path : scene::allPaths(*node)) paths.append(wrap(path));
  return MStatus::kSuccess;
}

bool MDagPath::operator==(const MDagPath& other) const {
  return pathOf(*this) == pathOf(other);
}

std::ostream& operator<<(std::ostream& os, const MDagPath& path) {
  return os << path.fullPathName().asChar();
}
