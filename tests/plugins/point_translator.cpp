// A file format of its own: meshes as text.
#include <maya/MDagPath.h>
#include <maya/MFileObject.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnTransform.h>
#include <maya/MGlobal.h>
#include <maya/MItDag.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItSelectionList.h>
#include <maya/MPointArray.h>
#include <maya/MPxFileTranslator.h>
#include <maya/MSelectionList.h>
#include <string.h>

#include <fstream>
#include <string>

class PointTranslator : public MPxFileTranslator {
 public:
  PointTranslator() {}
  virtual ~PointTranslator() {}
  static void* creator() { return new PointTranslator(); }
  MStatus reader(const MFileObject& file, const MString& optionsString, FileAccessMode mode);
  MStatus writer(const MFileObject& file, const MString& optionsString, FileAccessMode mode);
  bool haveReadMethod() const { return true; }
  bool haveWriteMethod() const { return true; }
  bool canBeOpened() const { return true; }
  MString defaultExtension() const { return MString("pmsh"); }
  MString filter() const { return MString("*.pmsh"); }
  MFileKind identifyFile(const MFileObject& fileName, const char* buffer, short size) const;

 private:
  MStatus exportMesh(const MDagPath& path, std::ostream& out);
  int fPrecision = 6;
};

MPxFileTranslator::MFileKind PointTranslator::identifyFile(const MFileObject&, const char* buffer,
                                                           short size) const {
  return size >= 4 && !strncmp(buffer, "PMSH", 4) ? kIsMyFileType : kNotMyFileType;
}

MStatus PointTranslator::exportMesh(const MDagPath& path, std::ostream& out) {
  MStatus status;
  MFnMesh fn(path, &status);
  CHECK_MSTATUS_AND_RETURN_IT(status);
  MPointArray pts;
  fn.getPoints(pts, MSpace::kWorld);
  out << "mesh " << path.partialPathName().asChar() << " " << pts.length() << " "
      << fn.numPolygons() << "\n";
  for (unsigned i = 0; i < pts.length(); i++)
    out << pts[i].x << " " << pts[i].y << " " << pts[i].z << "\n";
  MItMeshPolygon it(path.node(), &status);
  for (; !it.isDone(); it.next()) {
    MIntArray ids;
    it.getVertices(ids);
    out << ids.length();
    for (unsigned k = 0; k < ids.length(); ++k) out << " " << ids[k];
    out << "\n";
  }
  return MS::kSuccess;
}

MStatus PointTranslator::writer(const MFileObject& file, const MString& options,
                                FileAccessMode mode) {
  fPrecision = 6;
  if (options.length() > 0) {
    MStringArray optionList, theOption;
    options.split(';', optionList);
    for (unsigned i = 0; i < optionList.length(); ++i) {
      theOption.clear();
      optionList[i].split('=', theOption);
      if (theOption.length() > 1 && theOption[0] == MString("precision"))
        fPrecision = theOption[1].asInt();
    }
  }
  std::ofstream out(file.fullName().asChar());
  if (!out) {
    MGlobal::displayError("could not open " + file.fullName());
    return MS::kFailure;
  }
  out.precision(fPrecision);
  out << "PMSH 1\n";
  MStatus status;
  if (mode == MPxFileTranslator::kExportActiveAccessMode) {
    MSelectionList sel;
    MGlobal::getActiveSelectionList(sel);
    for (MItSelectionList it(sel); !it.isDone(); it.next()) {
      MDagPath path;
      if (it.getDagPath(path) != MS::kSuccess) continue;
      if (path.extendToShape() == MS::kSuccess && path.hasFn(MFn::kMesh)) exportMesh(path, out);
    }
  } else if (mode == MPxFileTranslator::kExportAccessMode ||
             mode == MPxFileTranslator::kSaveAccessMode) {
    MItDag dagIter(MItDag::kDepthFirst, MFn::kMesh, &status);
    for (; !dagIter.isDone(); dagIter.next()) {
      MDagPath path;
      dagIter.getPath(path);
      MFnDagNode dag(path);
      if (dag.isIntermediateObject()) continue;
      exportMesh(path, out);
    }
  }
  return MS::kSuccess;
}

MStatus PointTranslator::reader(const MFileObject& file, const MString&, FileAccessMode) {
  std::ifstream in(file.fullName().asChar());
  std::string word, name;
  in >> word >> word;
  while (in >> word) {
    if (word != "mesh") return MS::kFailure;
    int numV, numF;
    in >> name >> numV >> numF;
    MFloatPointArray pts(numV);
    for (int i = 0; i < numV; ++i) {
      float x, y, z;
      in >> x >> y >> z;
      pts.set(i, x, y, z);
    }
    MIntArray counts, connects;
    for (int f = 0; f < numF; ++f) {
      int n;
      in >> n;
      counts.append(n);
      while (n--) {
        int v;
        in >> v;
        connects.append(v);
      }
    }
    MStatus status;
    MFnMesh fn;
    MObject transform = fn.create(numV, numF, pts, counts, connects, MObject::kNullObj, &status);
    if (!status) {
      status.perror("create");
      return status;
    }
    MFnDependencyNode(transform).setName(MString(name.c_str()) + "_imp");
    MGlobal::executeCommand("sets -e -forceElement initialShadingGroup " + fn.partialPathName());
  }
  return MS::kSuccess;
}

MStatus initializePlugin(MObject obj) {
  MFnPlugin plugin(obj, "acme", "1.0", "Any");
  return plugin.registerFileTranslator("pointMesh", "", PointTranslator::creator, "", "precision=6",
                                       true);
}
MStatus uninitializePlugin(MObject obj) {
  MFnPlugin plugin(obj);
  return plugin.deregisterFileTranslator("pointMesh");
}
