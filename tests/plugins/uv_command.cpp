// A command that moves UVs, as a plug-in writes it.
#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnPlugin.h>
#include <maya/MPxPolyTweakUVCommand.h>
#include <maya/MSyntax.h>

namespace {

class ShiftUVs : public MPxPolyTweakUVCommand {
 public:
  static void* creator() { return new ShiftUVs; }
  static MSyntax newSyntax() {
    MSyntax syntax = MPxPolyTweakUVCommand::newSyntax();
    syntax.addFlag("-b", "-by", MSyntax::kDouble);
    syntax.addFlag("-s", "-spoil", MSyntax::kBoolean);
    return syntax;
  }

  MStatus parseSyntax(MArgDatabase& data) override {
    if (data.isFlagSet("-s")) data.getFlagArgument("-s", 0, spoils_);
    return data.isFlagSet("-b") ? data.getFlagArgument("-b", 0, by_) : MS::kSuccess;
  }
  MStatus getTweakedUVs(const MObject& mesh, MIntArray& uvs, MFloatArray& u,
                        MFloatArray& v) override {
    const MFnMesh polygons(mesh);
    for (unsigned int i = 0; i < uvs.length(); ++i) {
      float fromU = 0, fromV = 0;
      if (!polygons.getUV(uvs[i], fromU, fromV)) return MS::kFailure;
      u.append(fromU + static_cast<float>(by_));
      v.append(fromV);
    }
    if (spoils_) uvs.append(polygons.numUVs());
    if (spoils_) u.append(0), v.append(0);
    return MS::kSuccess;
  }

 private:
  double by_ = 1;
  bool spoils_ = false;
};

}  // namespace

PLUGIN_EXPORT MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "tests", "1.0", "Any");
  return plugin.registerCommand("shiftUVs", ShiftUVs::creator, ShiftUVs::newSyntax);
}
PLUGIN_EXPORT MStatus uninitializePlugin(MObject object) {
  return MFnPlugin(object).deregisterCommand("shiftUVs");
}
