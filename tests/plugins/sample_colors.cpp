// Samples a texture at every vertex and writes vertex colours.
#include <maya/MArgList.h>
#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnSet.h>
#include <maya/MImage.h>
#include <maya/MItMeshVertex.h>
#include <maya/MPlugArray.h>
#include <maya/MPxCommand.h>
#include <maya/MRenderUtil.h>
#include <maya/MSelectionList.h>

/* texToColor <mesh> <plug> : samples a texture plug at every vertex, writes colours, returns the
 * mean */
class TexToColor : public MPxCommand {
 public:
  static void* creator() { return new TexToColor; }
  MStatus doIt(const MArgList& args) {
    MStatus status;
    MString meshName = args.asString(0, &status), plugName = args.asString(1, &status);
    if (status.error()) return status;
    MSelectionList l;
    l.add(meshName);
    MDagPath dag;
    status = l.getDagPath(0, dag);
    if (!status) return status;
    dag.extendToShape();
    MFloatArray uCoords, vCoords;
    MFloatPointArray points;
    MFloatVectorArray normals;
    MIntArray ids;
    for (MItMeshVertex it(dag); !it.isDone(); it.next()) {
      float2 uv;
      MVector n;
      MPoint p = it.position(MSpace::kWorld);
      if (!it.getUV(uv)) {
        uv[0] = uv[1] = 0;
      }
      it.getNormal(n, MSpace::kWorld);
      uCoords.append(uv[0]);
      vCoords.append(uv[1]);
      points.append(MFloatPoint((float)p.x, (float)p.y, (float)p.z));
      normals.append(MFloatVector(n));
      ids.append(it.index());
    }
    MFloatMatrix cameraMat;
    cameraMat.setToIdentity();
    MFloatVectorArray colors, transps;
    int n = uCoords.length();
    status = MRenderUtil::sampleShadingNetwork(plugName, n, false, false, cameraMat, &points,
                                               &uCoords, &vCoords, &normals, &points, NULL, NULL,
                                               NULL, colors, transps);
    if (!status) {
      displayError("sampling failed");
      return status;
    }
    MColorArray out(n);
    double sum = 0;
    for (int i = 0; i < n; ++i) {
      out[i] = MColor(colors[i].x, colors[i].y, colors[i].z);
      sum += colors[i].x + colors[i].y + colors[i].z;
    }
    MFnMesh mesh(dag);
    mesh.setVertexColors(out, ids);
    MObjectArray sgs, comps;
    mesh.getConnectedSetsAndMembers(dag.instanceNumber(), sgs, comps, true);
    MDoubleArray result;
    result.append(sum / (3 * n));
    result.append(sgs.length());
    setResult(result);
    return MS::kSuccess;
  }
};
MStatus initializePlugin(MObject o) {
  MFnPlugin p(o, "tx", "2.0", "Any");
  MStatus st;
  st = p.registerCommand("texToColor", TexToColor::creator);
  if (!st) {
    st.perror("registerCommand");
    return st;
  }
  return st;
}
MStatus uninitializePlugin(MObject o) {
  MFnPlugin p(o);
  return p.deregisterCommand("texToColor");
}
