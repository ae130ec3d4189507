// Samples a plug over time and keys another with what it finds.
#include <maya/MAnimControl.h>
#include <maya/MAnimCurveChange.h>
#include <maya/MAnimUtil.h>
#include <maya/MArgList.h>
#include <maya/MDGContext.h>
#include <maya/MFnAnimCurve.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MTime.h>

// keyBaker <source plug> <target plug> <from> <to>: samples one and keys the other
class KeyBaker : public MPxCommand {
 public:
  static void* creator() { return new KeyBaker; }
  bool isUndoable() const override { return true; }
  MStatus doIt(const MArgList& a) override {
    MSelectionList l;
    MStatus s;
    l.add(a.asString(0));
    l.add(a.asString(1));
    s = l.getPlug(0, src);
    if (s) s = l.getPlug(1, dst);
    if (!s) return s;
    from = a.asInt(2);
    to = a.asInt(3);
    return bake();
  }
  MStatus bake() {
    MStatus s;
    MFnAnimCurve fn;
    curve = fn.create(dst, &mod, &s);
    if (!s) return s;
    mod.doIt();
    const MTime now = MAnimControl::currentTime();
    for (int f = from; f <= to; ++f) {
      const MTime t((double)f, MTime::uiUnit());
      double v;
      {
        MDGContext ctx(t);
        v = src.asDouble(ctx);
      }
      fn.addKeyframe(t, v, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear, &change);
    }
    if (now != MAnimControl::currentTime()) return MS::kFailure;
    setResult((int)fn.numKeys());
    return MS::kSuccess;
  }
  MStatus redoIt() override {
    const MStatus s = mod.doIt();
    return s ? change.redoIt() : s;
  }
  MStatus undoIt() override {
    change.undoIt();
    return mod.undoIt();
  }
  MPlug src, dst;
  int from = 0, to = 0;
  MObject curve;
  MDGModifier mod;
  MAnimCurveChange change;
};
MStatus initializePlugin(MObject o) {
  MFnPlugin p(o);
  return p.registerCommand("keyBaker", KeyBaker::creator);
}
MStatus uninitializePlugin(MObject o) {
  MFnPlugin p(o);
  return p.deregisterCommand("keyBaker");
}
