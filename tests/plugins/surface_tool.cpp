// Curved surfaces made, walked over and asked, as an author of surface scripts writes it.
#include <maya/MArgList.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MItCurveCV.h>
#include <maya/MItSurfaceCV.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>

// surfTool make | wave <surface> <amount> | info <surface>
class SurfTool : public MPxCommand {
 public:
  static void* creator() { return new SurfTool; }
  MStatus doIt(const MArgList& a) override {
    MString what = a.asString(0);
    MStatus s;
    if (what == "make") {
      MPointArray cvs;
      MDoubleArray ku, kv;
      for (int u = 0; u < 5; ++u)
        for (int v = 0; v < 4; ++v) cvs.append(MPoint(u, 0.0, v));
      double k1[] = {0, 0, 0, 1, 2, 2, 2};
      double k2[] = {0, 0, 0, 1, 1, 1};
      for (double k : k1) ku.append(k);
      for (double k : k2) kv.append(k);
      MFnNurbsSurface fn;
      MObject o = fn.create(cvs, ku, kv, 3, 3, MFnNurbsSurface::kOpen, MFnNurbsSurface::kOpen, true,
                            MObject::kNullObj, &s);
      if (!s) {
        s.perror("create");
        return s;
      }
      setResult(MFnDagNode(o).name());
      return s;
    }
    MSelectionList l;
    l.add(a.asString(1));
    MDagPath p;
    s = l.getDagPath(0, p);
    if (!s) return s;
    p.extendToShape();
    if (what == "wave") {
      const double amount = a.asDouble(2);
      int rows = 0;
      MItSurfaceCV it(p, MObject::kNullObj, true, &s);
      if (!s) return s;
      while (!it.isDone()) {
        while (!it.isRowDone()) {
          it.translateBy(MVector(0, (rows % 2) ? amount : 0.0, 0), MSpace::kWorld);
          it.next();
        }
        it.nextRow();
        ++rows;
      }
      it.updateSurface();
      setResult(rows);
      return MS::kSuccess;
    }
    MFnNurbsSurface fn(p, &s);
    if (!s) return s;
    double u0, u1, v0, v1;
    fn.getKnotDomain(u0, u1, v0, v1);
    MPoint mid;
    fn.getPointAtParam((u0 + u1) / 2, (v0 + v1) / 2, mid, MSpace::kWorld);
    MVector n = fn.normal((u0 + u1) / 2, (v0 + v1) / 2, MSpace::kWorld);
    double cu, cv;
    const MPoint foot = fn.closestPoint(mid + n, &cu, &cv, false, 0.001, MSpace::kWorld, &s);
    MDoubleArray r;
    r.append(fn.area(MSpace::kWorld));
    r.append(mid.x);
    r.append(mid.y);
    r.append(mid.z);
    r.append(n.x);
    r.append(n.y);
    r.append(n.z);
    r.append(foot.distanceTo(mid));
    r.append(cu);
    r.append(cv);
    r.append(fn.numCVsInU());
    r.append(fn.numCVsInV());
    r.append(fn.numKnotsInU());
    r.append(fn.degreeU());
    setResult(r);
    return MS::kSuccess;
  }
};
MStatus initializePlugin(MObject o) {
  MFnPlugin p(o);
  return p.registerCommand("surfTool", SurfTool::creator);
}
MStatus uninitializePlugin(MObject o) {
  MFnPlugin p(o);
  return p.deregisterCommand("surfTool");
}
