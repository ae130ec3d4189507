#include "brushes/uvSetRecord.h"

#include <maya/MDagPath.h>
#include <maya/MFloatArray.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MPlugArray.h>

#include <algorithm>
#include <cstring>

#include "shared/numeric/indexArrays.h"

namespace {

constexpr const char* kTweaks = "uvTweak";

MPlug driverOf(const MObject& shape) {
  MPlugArray drivers;
  MFnDependencyNode(shape).findPlug("inMesh", false).connectedTo(drivers, true, false);
  return drivers.length() > 0 ? drivers[0] : MPlug();
}

}  // namespace

uvSetRecord::uvSetRecord(const MDagPath& path, const MString& uvSet)
    : mesh(path.node()), set(uvSet) {}

MObject uvSetRecord::shape() const {
  return mesh.isValid() && mesh.isAlive() ? mesh.object() : MObject::kNullObj;
}

bool uvSetRecord::hasHistory() const {
  return !driverOf(shape()).isNull();
}

/// The UV tweak node that drives the shape and is about this set; null when something else does.
MObject uvSetRecord::tweakNode() const {
  const MPlug driver = driverOf(shape());
  if (driver.isNull()) return MObject();
  const MObject node = driver.node();
  if (std::strcmp(node.apiTypeStr(), "kPolyTweakUV") != 0) return MObject();
  const MString name = MFnDependencyNode(node).findPlug("uvSetName", false).asString();
  const bool isCurrent = MFnMesh(shape()).currentUVSetName() == set;
  return name == set || (name.length() == 0 && isCurrent) ? node : MObject();
}

MStatus uvSetRecord::makeTweakNode() {
  MStatus status;
  const MObject node = nodeMaker.createNode("polyTweakUV", &status);
  if (!status) return status;
  const MFnDependencyNode nodeFn(node);
  const MPlug driver = driverOf(shape());
  const MPlug input = MFnDependencyNode(shape()).findPlug("inMesh", false);
  status = nodeMaker.disconnect(driver, input);
  if (status) status = nodeMaker.connect(driver, nodeFn.findPlug("inputPolymesh", false));
  if (status) status = nodeMaker.connect(nodeFn.findPlug("output", false), input);
  if (status) status = nodeMaker.newPlugValueString(nodeFn.findPlug("uvSetName", false), set);
  if (status) status = nodeMaker.doIt();
  madeNode = status == MS::kSuccess;
  return status;
}

std::size_t uvSetRecord::changeAt(int uv, const std::vector<float>& now, const MPlug& tweaks) {
  const auto [known, isNew] = changeOf.emplace(uv, changes.size());
  if (!isNew) return known->second;
  entry made{uv, true, {0.0, 0.0}, {0.0, 0.0}};
  base under{{0.0, 0.0}};
  for (unsigned int k = 0; k < 2; ++k) {
    const double here = static_cast<double>(now[2 * static_cast<std::size_t>(uv) + k]);
    made.before[k] = here;
    if (!usesTweaks) continue;
    made.wasThere = std::binary_search(offsetsBefore.begin(), offsetsBefore.end(), uv);
    made.before[k] =
        made.wasThere
            ? tweaks.elementByLogicalIndex(static_cast<unsigned int>(uv)).child(k).asDouble()
            : 0.0;
    under.place[k] = here - made.before[k];
  }
  changes.push_back(made);
  bases.push_back(under);
  return changes.size() - 1;
}

MStatus uvSetRecord::change(const std::vector<int>& uvs, const uvLayout& layout,
                            const std::vector<float>& now) {
  if (shape().isNull()) return MS::kFailure;
  if (!hasBegun) {
    usesTweaks = hasHistory();
    if (usesTweaks && tweakNode().isNull())
      if (const MStatus made = makeTweakNode(); !made) return made;
    if (usesTweaks) {
      MIntArray there;
      MFnDependencyNode(tweakNode())
          .findPlug(kTweaks, false)
          .getExistingArrayAttributeIndices(there);
      offsetsBefore = toVector(there);
      std::sort(offsetsBefore.begin(), offsetsBefore.end());
    }
    hasBegun = true;
  }
  const MObject node = usesTweaks ? tweakNode() : MObject::kNullObj;
  if (usesTweaks && node.isNull()) return MS::kFailure;
  const MPlug tweaks = usesTweaks ? MFnDependencyNode(node).findPlug(kTweaks, false) : MPlug();
  for (const int uv : uvs) {
    const std::size_t at = changeAt(uv, now, tweaks);
    entry& each = changes[at];
    for (int k = 0; k < 2; ++k) {
      const double wanted = static_cast<double>(layout.place(uv)[k]);
      each.after[k] = usesTweaks ? wanted - bases[at].place[k] : wanted;
    }
    if (!usesTweaks) continue;
    const MPlug element = tweaks.elementByLogicalIndex(static_cast<unsigned int>(uv));
    for (unsigned int k = 0; k < 2; ++k) element.child(k).setDouble(each.after[k]);
  }
  return usesTweaks ? MStatus(MS::kSuccess) : writeStored(true);
}

MStatus uvSetRecord::writeStored(bool after) const {
  MFnMesh meshFn(shape());
  MFloatArray u, v;
  MStatus status = meshFn.getUVs(u, v, &set);
  if (!status) return status;
  for (const entry& each : changes) {
    const auto uv = static_cast<unsigned int>(each.uv);
    if (uv >= u.length()) return MS::kFailure;
    u[uv] = static_cast<float>(after ? each.after[0] : each.before[0]);
    v[uv] = static_cast<float>(after ? each.after[1] : each.before[1]);
  }
  status = meshFn.setUVs(u, v, &set);
  if (status) meshFn.updateSurface();
  return status;
}

MStatus uvSetRecord::writeOffsets(const MPlug& tweaks, bool after) const {
  for (const entry& each : changes) {
    if (!after && !each.wasThere) continue;
    const MPlug element = tweaks.elementByLogicalIndex(static_cast<unsigned int>(each.uv));
    for (unsigned int k = 0; k < 2; ++k) {
      MPlug number = element.child(k);
      const MStatus status = number.setDouble(after ? each.after[k] : each.before[k]);
      if (!status) return status;
    }
  }
  return MS::kSuccess;
}

/// Offsets that the stroke added go, so that the node is the one it was.
MStatus uvSetRecord::removeNewOffsets(const MPlug& tweaks) const {
  MDGModifier remover;
  bool hasAny = false;
  for (const entry& each : changes) {
    if (each.wasThere) continue;
    hasAny = true;
    remover.removeMultiInstance(tweaks.elementByLogicalIndex(static_cast<unsigned int>(each.uv)),
                                true);
  }
  return hasAny ? remover.doIt() : MStatus(MS::kSuccess);
}

MStatus uvSetRecord::show(bool after) {
  if (shape().isNull()) return MS::kFailure;
  if (!usesTweaks) return writeStored(after);
  MStatus status = MS::kSuccess;
  if (after && madeNode) status = nodeMaker.doIt();
  const MObject node = tweakNode();
  if (!status || node.isNull()) return MS::kFailure;
  const MPlug tweaks = MFnDependencyNode(node).findPlug(kTweaks, false);
  status = writeOffsets(tweaks, after);
  if (status && !after) status = removeNewOffsets(tweaks);
  if (status && !after && madeNode) status = nodeMaker.undoIt();
  return status;
}

bool uvSetRecord::changesNothing() const {
  return std::all_of(changes.begin(), changes.end(), [](const entry& each) {
    return each.before[0] == each.after[0] && each.before[1] == each.after[1];
  });
}

void uvSetRecord::settle() {
  bases = {};
  changeOf = {};
  offsetsBefore = {};
  changes.shrink_to_fit();
}

std::size_t uvSetRecord::bytes() const {
  return changes.capacity() * sizeof(entry) + bases.size() * sizeof(base) +
         changeOf.size() * 4 * sizeof(void*) + offsetsBefore.size() * sizeof(int);
}
