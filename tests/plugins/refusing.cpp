// A plug-in whose load ends badly: it registers a command and then gives up, by an exception or by
// its status.
#include <maya/MFnPlugin.h>
#include <maya/MPxCommand.h>

#include <cstdlib>
#include <stdexcept>

namespace {

class LeftoverCommand : public MPxCommand {
 public:
  static void* creator() { return new LeftoverCommand; }
  MStatus doIt(const MArgList&) override { return MS::kSuccess; }
};

}  // namespace

MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "test", "1.0", "Any");
  plugin.registerCommand("leftover", LeftoverCommand::creator);
  if (std::getenv("QXMT_TEST_THROW")) throw std::runtime_error("no licence for the day");
  return MS::kFailure;
}

MStatus uninitializePlugin(MObject) {
  return MS::kSuccess;
}
