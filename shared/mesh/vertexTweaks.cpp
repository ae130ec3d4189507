#include "shared/mesh/vertexTweaks.h"

#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MString.h>

#include <algorithm>
#include <charconv>

#include "shared/mesh/mathHelper.h"
#include "shared/numeric/indexArrays.h"

namespace {

bool isZero(const vertexTweak& tweak) {
  return tweak.offset[0] == 0.0 && tweak.offset[1] == 0.0 && tweak.offset[2] == 0.0;
}
bool isBefore(const vertexTweak& a, const vertexTweak& b) {
  return a.vertex < b.vertex;
}

/// Text that reads back as the same number.
void append(std::string& text, double number) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  text.push_back(' ');
  text.append(digits, end);
}

/// What a number of the plug is multiplied by in a command: lengths are told in the current unit.
double commandScale(const MPlug& element) {
  const MObject number = element.child(0).attribute();
  MStatus status;
  const MFnUnitAttribute unit(number, &status);
  if (!status || unit.unitType() != MFnUnitAttribute::kDistance) return 1.0;
  return static_cast<double>(mathHelper().unitsPerCentimetre());
}

/// Sets `name`[vertex] of all tweaks, some lines at a time: a command for each would cost more than
/// what it does.
template <class Value>
MStatus setEach(const std::string& name, const std::vector<vertexTweak>& tweaks, Value value) {
  constexpr std::size_t kLines = 512;
  for (std::size_t first = 0; first < tweaks.size(); first += kLines) {
    std::string lines;
    for (std::size_t i = first; i < tweaks.size() && i < first + kLines; ++i) {
      lines += "setAttr " + name + "[" + std::to_string(tweaks[i].vertex) + "]";
      value(lines, tweaks[i]);
      lines += ";\n";
    }
    const MStatus status = MGlobal::executeCommand(lines.c_str(), false, false);
    if (status != MS::kSuccess) return status;
  }
  return MS::kSuccess;
}

}  // namespace

tweakPlugs tweakPlugs::ofShape(const MDagPath& shape) {
  return tweakPlugs(MFnDependencyNode(shape.node()).findPlug("pnts", false),
                    std::string(shape.fullPathName().asChar()) + ".pnts");
}

tweakPlugs tweakPlugs::ofNode(const MObject& tweakNode) {
  const MFnDependencyNode nodeFn(tweakNode);
  return tweakPlugs(nodeFn.findPlug("tweak", false),
                    std::string(nodeFn.name().asChar()) + ".tweak");
}

vertexTweak tweakPlugs::at(int vertex) const {
  const MPlug element = plug.elementByLogicalIndex(static_cast<unsigned int>(vertex));
  vertexTweak tweak{vertex, {}};
  for (unsigned int k = 0; k < 3; ++k) tweak.offset[k] = element.child(k).asDouble();
  return tweak;
}

std::vector<vertexTweak> tweakPlugs::readAll() const {
  MIntArray vertices;
  MPlug(plug).getExistingArrayAttributeIndices(vertices);
  std::vector<vertexTweak> tweaks(vertices.length());
  for (unsigned int i = 0; i < vertices.length(); ++i) tweaks[i] = at(vertices[i]);
  std::sort(tweaks.begin(), tweaks.end(), isBefore);
  return tweaks;
}

std::vector<vertexTweak> tweakPlugs::read() const {
  std::vector<vertexTweak> tweaks = readAll();
  tweaks.erase(std::remove_if(tweaks.begin(), tweaks.end(), isZero), tweaks.end());
  return tweaks;
}

std::vector<vertexTweak> tweakPlugs::readOf(const MIntArray& wanted) const {
  MIntArray there;
  MPlug(plug).getExistingArrayAttributeIndices(there);
  std::vector<vertexTweak> tweaks;
  if (there.length() == 0) return tweaks;
  std::vector<int> vertices = toVector(wanted);
  makeSortedUnique(vertices);
  for (unsigned int i = 0; i < there.length(); ++i)
    if (std::binary_search(vertices.begin(), vertices.end(), there[i]))
      tweaks.push_back(at(there[i]));
  std::sort(tweaks.begin(), tweaks.end(), isBefore);
  return tweaks;
}

MStatus tweakPlugs::set(const std::vector<vertexTweak>& tweaks) const {
  if (tweaks.empty()) return MS::kSuccess;
  const double scale =
      commandScale(plug.elementByLogicalIndex(static_cast<unsigned int>(tweaks.front().vertex)));
  const MStatus status =
      setEach(nameOfArray, tweaks, [scale](std::string& line, const vertexTweak& tweak) {
        for (const double number : tweak.offset) append(line, number * scale);
      });
  // The way through another unit rounds.
  return status && scale != 1.0 ? restore(tweaks) : status;
}

MStatus tweakPlugs::setToZero(const std::vector<vertexTweak>& tweaks) const {
  return setEach(nameOfArray, tweaks,
                 [](std::string& line, const vertexTweak&) { line += " 0 0 0"; });
}

MStatus tweakPlugs::restore(const std::vector<vertexTweak>& tweaks) const {
  for (const vertexTweak& tweak : tweaks) {
    const MPlug element = plug.elementByLogicalIndex(static_cast<unsigned int>(tweak.vertex));
    for (unsigned int k = 0; k < 3; ++k) {
      MPlug number = element.child(k);
      const MStatus status = number.setDouble(tweak.offset[k]);
      if (!status) return status;
    }
  }
  return MS::kSuccess;
}

MStatus tweakPlugs::remove(const std::vector<vertexTweak>& tweaks) const {
  MDGModifier modifier;
  for (const vertexTweak& tweak : tweaks)
    modifier.removeMultiInstance(
        plug.elementByLogicalIndex(static_cast<unsigned int>(tweak.vertex)), true);
  return tweaks.empty() ? MStatus(MS::kSuccess) : modifier.doIt();
}
