#include "uv/markAttributes.h"

#include <maya/MDGModifier.h>
#include <maya/MFn.h>
#include <maya/MFnData.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>

#include "uv/uvMessages.h"

namespace markAttributes {
namespace {

/// An attribute with what is said when it can't be made, added or removed. The last one shares a
/// text with the one before it.
struct row {
  name attribute;
  bool isArray;
  const char* createText;
  const char* addText;
  const char* removeText;
};
const row kRows[] = {
    {kLocatorMessage, false, "error creating selected object message attribute!",
     "error adding the selected object message attribute to the object!",
     "error removing the selected object message attribute to the object!"},
    {kMarkedEdges, true, "error creating marked edge generic attribute!",
     "error adding the selected object marked edge attribute to the object!",
     "error removing the selected object marked edge attribute to the object!"},
    {kAncorPoints, true, "error creating ancor point generic attribute!",
     "error adding the selected object ancor point attribute to the object!",
     "error removing the selected object ancor point attribute to the object!"},
    {kEdgeSelection, true, "error creating edge selection generic attribute!",
     "error adding the selected object edge selection attribute to the object!",
     "error removing the selected object edge selection attribute to the object!"},
    {kVertSelection, true, "error creating edge selection generic attribute!",
     "error adding the selected object vertex selection attribute to the object!",
     "error removing the selected object vertex selection attribute to the object!"},
};

MObject makeMessage(const name& attribute, MStatus& status) {
  return MFnMessageAttribute().create(attribute.longName, attribute.shortName, &status);
}

/// Saved with the scene, out of the way in lists of attributes.
MObject makeArray(const name& attribute, MStatus& status) {
  MFnGenericAttribute generic;
  const MObject made = generic.create(attribute.longName, attribute.shortName, &status);
  if (!status) return made;
  generic.addDataAccept(MFnData::kIntArray);
  generic.setStorable(true);
  generic.setKeyable(false);
  generic.setCached(true);
  return made;
}

}  // namespace

MStatus addTo(const MObject& shape, MDGModifier& modifier) {
  for (const row& each : kRows) {
    if (has(shape, each.attribute)) continue;
    MStatus status;
    const MObject made =
        each.isArray ? makeArray(each.attribute, status) : makeMessage(each.attribute, status);
    if (!status) return failWith(each.createText);
    if (!modifier.addAttribute(shape, made) || !modifier.doIt()) return failWith(each.addText);
    // An array that was never written differs from one that was emptied: undo of the first mark
    // couldn't bring that back.
    if (each.isArray)
      modifier.newPlugValue(plugOf(shape, each.attribute), MFnIntArrayData().create());
  }
  return modifier.doIt();
}

MStatus removeFrom(const MObject& shape, MDGModifier& modifier) {
  for (const row& each : kRows) {
    if (!has(shape, each.attribute)) continue;
    const MObject attribute = plugOf(shape, each.attribute).attribute();
    if (!modifier.removeAttribute(shape, attribute) || !modifier.doIt())
      return failWith(each.removeText);
  }
  return MS::kSuccess;
}

bool has(const MObject& shape, const name& attribute) {
  return MFnDependencyNode(shape).hasAttribute(attribute.longName);
}

MPlug plugOf(const MObject& shape, const name& attribute) {
  return has(shape, attribute) ? MFnDependencyNode(shape).findPlug(attribute.longName, false)
                               : MPlug();
}

MIntArray indicesIn(const MObject& shape, const name& attribute) {
  const MPlug plug = plugOf(shape, attribute);
  MObject data;
  if (plug.isNull() || !plug.getValue(data) || !data.hasFn(MFn::kIntArrayData)) return MIntArray();
  return MFnIntArrayData(data).array();
}

MStatus writeIndices(const MObject& shape, const name& attribute, const MIntArray& indices) {
  MPlug plug = plugOf(shape, attribute);
  if (plug.isNull()) return MS::kFailure;
  MStatus status;
  const MObject data = MFnIntArrayData().create(indices, &status);
  return status ? plug.setValue(data) : failWith("error creating a new MObject from a intArray");
}

}  // namespace markAttributes
