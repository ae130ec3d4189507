#include "uv/uvLink.h"

#include <maya/MFn.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MNodeMessage.h>

#include <cstdint>
#include <cstring>
#include <numeric>

namespace {

/// Callbacks carry the link's number, so that one that outlives its link finds nothing.
void* asClientData(int number) {
  return reinterpret_cast<void*>(static_cast<std::intptr_t>(number));
}

}  // namespace

namespace uvLinks {
uvLink* find(int number);
}

namespace {

uvLink* linkOf(void* clientData) {
  return uvLinks::find(static_cast<int>(reinterpret_cast<std::intptr_t>(clientData)));
}

void onDirty(MObject&, MPlug& plug, void* clientData) {
  uvLink* link = linkOf(clientData);
  if (link && link->isWatched(plug)) link->writeBack();
}

void onDestroyed(void* clientData) {
  uvLinks::drop(static_cast<int>(reinterpret_cast<std::intptr_t>(clientData)));
}

}  // namespace

double uvLink::places::x(std::size_t vertex) const {
  const float* at = points.data() + 3 * vertex;
  return at[0] * toWorld[0][0] + at[1] * toWorld[1][0] + at[2] * toWorld[2][0] + toWorld[3][0];
}

double uvLink::places::z(std::size_t vertex) const {
  const float* at = points.data() + 3 * vertex;
  return at[0] * toWorld[0][2] + at[1] * toWorld[1][2] + at[2] * toWorld[2][2] + toWorld[3][2];
}

uvLink::uvLink(const uvLinks::ends& linkedIn, int numberIn)
    : linked(linkedIn),
      id(numberIn),
      uvShape(linked.uvObject.node()),
      meshShape(linked.mesh.node()),
      tweak(linked.tweakNode) {
  const MFnDependencyNode shape(linked.uvObject.node());
  outMesh = shape.findPlug("outMesh", false);
  worldMatrix =
      shape.findPlug("worldMatrix", false).elementByLogicalIndex(linked.uvObject.instanceNumber());
}

bool uvLink::drives(const MObject& shape) const {
  return meshShape.isAlive() && meshShape.object() == shape;
}

bool uvLink::reads(const MObject& shape) const {
  return uvShape.isAlive() && uvShape.object() == shape;
}

bool uvLink::isWatched(const MPlug& plug) const {
  return plug == outMesh || plug.attribute() == worldMatrix.attribute();
}

/// Reading through the plugs leaves them clean, so that the next change is told again.
bool uvLink::read(places& now) const {
  if (!uvShape.isValid() || !linked.uvObject.isValid()) return false;
  const MObject matrix = worldMatrix.asMObject();
  now.toWorld = matrix.hasFn(MFn::kMatrixData) ? MFnMatrixData(matrix).matrix()
                                               : linked.uvObject.inclusiveMatrix();
  MStatus status;
  const MFnMesh mesh(linked.uvObject, &status);
  if (!status) return false;
  const int count = mesh.numVertices(&status);
  const float* points = status ? mesh.getRawPoints(&status) : nullptr;
  if (!status) return false;
  now.points.assign(points, points + 3 * static_cast<std::size_t>(count));
  return true;
}

bool uvLink::begin() {
  if (!read(last)) return false;
  const MFnMesh mesh(linked.mesh);
  mesh.getUVs(uAtLink, vAtLink, &linked.uvSet);
  const std::size_t count = last.count();
  referenceX.resize(count);
  referenceZ.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    referenceX[i] = last.x(i);
    referenceZ[i] = last.z(i);
  }
  if (tweak.isValid()) {
    // What the node adds already is part of what it will have to add.
    const MPlug tweaks = MFnDependencyNode(tweak.object()).findPlug("uvTweak", false);
    const auto there = static_cast<std::size_t>(tweaks.evaluateNumElements());
    for (std::size_t i = 0; i < count && i < there; ++i) {
      const MPlug element = tweaks.elementByPhysicalIndex(static_cast<unsigned int>(i));
      referenceX[i] -= placement.toDistance(element.child(0).asDouble());
      referenceZ[i] -= placement.toDistance(element.child(1).asDouble());
    }
  }
  MObject shape = linked.uvObject.node();
  return callbacks.add(MNodeMessage::addNodeDirtyPlugCallback(shape, onDirty, asClientData(id))) &&
         callbacks.add(
             MNodeMessage::addNodeDestroyedCallback(shape, onDestroyed, asClientData(id)));
}

std::vector<std::size_t> uvLink::movedSince(const places& before, const places& now) const {
  std::vector<std::size_t> moved;
  if (before.toWorld != now.toWorld) {
    moved.resize(now.count());
    std::iota(moved.begin(), moved.end(), std::size_t{0});
    return moved;
  }
  // Most lie where they lay: blocks that are the same are passed over at once.
  constexpr std::size_t kBlock = 256;
  for (std::size_t first = 0; first < now.count(); first += kBlock) {
    const std::size_t end = std::min(first + kBlock, now.count());
    const float* a = before.points.data() + 3 * first;
    const float* b = now.points.data() + 3 * first;
    if (std::memcmp(a, b, 3 * (end - first) * sizeof(float)) == 0) continue;
    for (std::size_t i = first; i < end; ++i, a += 3, b += 3)
      if (std::memcmp(a, b, 3 * sizeof(float)) != 0) moved.push_back(i);
  }
  return moved;
}

void uvLink::writeBack() {
  if (isWriting || !meshShape.isValid() || !linked.mesh.isValid()) return;
  places now;
  if (!read(now)) return;
  isWriting = true;
  if (now.count() != referenceX.size()) {
    complain("cannot set uvs on Mesh " + linked.mesh.fullPathName() +
             " ..number of points do not match");
  } else {
    const bool isSameCount = last.count() == now.count();
    const std::vector<std::size_t> moved = movedSince(isSameCount ? last : places(), now);
    if (!moved.empty()) {
      if (tweak.isValid())
        writeOffsets(now, moved);
      else
        writeUvs(now, moved);
    }
    std::swap(last, now);
  }
  isWriting = false;
}

void uvLink::writeOffsets(const places& now, const std::vector<std::size_t>& moved) {
  const MPlug tweaks = MFnDependencyNode(tweak.object()).findPlug("uvTweak", false);
  for (const std::size_t i : moved) {
    MStatus status;
    const MPlug element = tweaks.elementByPhysicalIndex(static_cast<unsigned int>(i), &status);
    if (!status) continue;
    MPlug u = element.child(0), v = element.child(1);
    u.setFloat(placement.toUv(now.x(i) - referenceX[i]));
    v.setFloat(placement.toUv(now.z(i) - referenceZ[i]));
  }
  complaint.clear();
}

void uvLink::writeUvs(const places& now, const std::vector<std::size_t>& moved) {
  MFnMesh mesh(linked.mesh);
  MFloatArray u, v;
  mesh.getUVs(u, v, &linked.uvSet);
  if (static_cast<std::size_t>(u.length()) != now.count()) {
    complain("cannot set uvs on Mesh " + linked.mesh.fullPathName() +
             " ..number of points do not match");
    return;
  }
  const bool knowsUvs = uAtLink.length() == u.length();
  for (const std::size_t i : moved) {
    const auto uv = static_cast<unsigned int>(i);
    const double x = now.x(i), z = now.z(i);
    // Back where it was it gets exactly what it had.
    const bool isBack = knowsUvs && x == referenceX[i] && z == referenceZ[i];
    u[uv] = isBack ? uAtLink[uv] : placement.toUv(x);
    v[uv] = isBack ? vAtLink[uv] : placement.toUv(z);
  }
  if (mesh.setUVs(u, v, &linked.uvSet))
    complaint.clear();
  else
    complain("cannot set uvs on Mesh " + linked.mesh.fullPathName());
}

/// A drag would say the same at each step.
void uvLink::complain(const MString& text) {
  if (text == complaint) return;
  complaint = text;
  MGlobal::displayError(text);
}
