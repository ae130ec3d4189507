// A rigging tool as its author would write it: one command lists the weights of a skinCluster as
// text, another gives all points of a component to one joint, with undo.
#include <maya/MArgDatabase.h>
#include <maya/MDagPathArray.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnSkinCluster.h>
#include <maya/MGlobal.h>
#include <maya/MItDependencyNodes.h>
#include <maya/MItGeometry.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

namespace {

class ExportSkin : public MPxCommand {
 public:
  static void* creator() { return new ExportSkin; }
  MStatus doIt(const MArgList&) override {
    MStatus status;
    MString text;
    for (MItDependencyNodes nodes(MFn::kSkinClusterFilter); !nodes.isDone(); nodes.next()) {
      MFnSkinCluster skin(nodes.thisNode(), &status);
      CHECK_MSTATUS_AND_RETURN_IT(status);
      MDagPathArray influences;
      const unsigned int count = skin.influenceObjects(influences, &status);
      CHECK_MSTATUS_AND_RETURN_IT(status);
      if (count == 0) continue;
      for (unsigned int i = 0; i < skin.numOutputConnections(); ++i) {
        const unsigned int index = skin.indexForOutputConnection(i);
        MDagPath path;
        skin.getPathAtIndex(index, path);
        for (MItGeometry points(path); !points.isDone(); points.next()) {
          const MObject point = points.currentItem();
          MDoubleArray weights;
          unsigned int found = 0;
          CHECK_MSTATUS_AND_RETURN_IT(skin.getWeights(path, point, weights, found));
          text += points.index();
          for (unsigned int j = 0; j < found; ++j)
            if (weights[j] > 0.0)
              text += MString(" ") + influences[j].partialPathName() + "=" + weights[j];
          text += ";";
        }
      }
    }
    setResult(text);
    return MS::kSuccess;
  }
};

class GiveToJoint : public MPxCommand {
 public:
  static void* creator() { return new GiveToJoint; }
  static MSyntax newSyntax() {
    MSyntax syntax;
    syntax.addFlag("-sc", "-skin", MSyntax::kString);
    syntax.addFlag("-j", "-joint", MSyntax::kString);
    syntax.addFlag("-w", "-weight", MSyntax::kDouble);
    syntax.setObjectType(MSyntax::kSelectionList, 1, 1);
    return syntax;
  }
  bool isUndoable() const override { return true; }
  MStatus doIt(const MArgList& arguments) override {
    MStatus status;
    MArgDatabase data(syntax(), arguments, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    MSelectionList objects, names;
    data.getObjects(objects);
    CHECK_MSTATUS_AND_RETURN_IT(objects.getDagPath(0, path_, component_));
    names.add(data.flagArgumentString("skin", 0));
    names.add(data.flagArgumentString("joint", 0));
    names.getDependNode(0, skin_);
    MDagPath joint;
    names.getDagPath(1, joint);
    MFnSkinCluster skin(skin_, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    MDagPathArray influences;
    const unsigned int count = skin.influenceObjects(influences);
    for (unsigned int i = 0; i < count; ++i)
      if (influences[i] == joint) influence_ = static_cast<int>(i);
    if (influence_ < 0) {
      displayError("no such influence");
      return MS::kFailure;
    }
    weight_ = data.isFlagSet("weight") ? data.flagArgumentDouble("weight", 0) : 1.0;
    return redoIt();
  }
  MStatus redoIt() override {
    MFnSkinCluster skin(skin_);
    return skin.setWeights(path_, component_, static_cast<unsigned int>(influence_), weight_, true,
                           &before_);
  }
  MStatus undoIt() override {
    MFnSkinCluster skin(skin_);
    MDagPathArray influences;
    MIntArray all;
    for (unsigned int i = 0; i < skin.influenceObjects(influences); ++i)
      all.append(static_cast<int>(i));
    return skin.setWeights(path_, component_, all, before_, false);
  }

 private:
  MObject skin_, component_;
  MDagPath path_;
  int influence_ = -1;
  double weight_ = 1;
  MDoubleArray before_;
};

}  // namespace

MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "tests", "1.0", "Any");
  const MStatus status = plugin.registerCommand("exportSkin", ExportSkin::creator);
  if (!status) return status;
  return plugin.registerCommand("giveToJoint", GiveToJoint::creator, GiveToJoint::newSyntax);
}

MStatus uninitializePlugin(MObject object) {
  MFnPlugin plugin(object);
  plugin.deregisterCommand("giveToJoint");
  return plugin.deregisterCommand("exportSkin");
}
