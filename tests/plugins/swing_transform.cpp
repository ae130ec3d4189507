// A transform as its author would write it: a swing angle about x on top of the ordinary rotation,
// held within a limit, by a matrix class of its own.
#include <maya/MDGContext.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MPxTransform.h>
#include <maya/MPxTransformationMatrix.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180.0;

class SwingMatrix : public MPxTransformationMatrix {
 public:
  typedef MPxTransformationMatrix ParentClass;
  static void* creator() { return new SwingMatrix; }
  static MTypeId id;

  MMatrix asMatrix() const override {
    MTransformationMatrix swung(ParentClass::asMatrix());
    MQuaternion turn;
    turn.setToXAxis(swing_ * kDegree);
    swung.addRotationQuaternion(turn.x, turn.y, turn.z, turn.w, MSpace::kTransform);
    return swung.asMatrix();
  }
  MMatrix asMatrix(double percent) const override {
    SwingMatrix part(*this);
    part.swing_ *= percent;
    return part.asMatrix();
  }
  void setSwing(double degrees) { swing_ = degrees; }
  double swing() const { return swing_; }

 private:
  double swing_ = 0;
};

class SwingTransform : public MPxTransform {
 public:
  typedef MPxTransform ParentClass;
  SwingTransform() = default;
  SwingTransform(MPxTransformationMatrix* own) : ParentClass(own) {}
  static void* creator() { return new SwingTransform; }
  static MStatus initialize() {
    MFnNumericAttribute numeric;
    swing = numeric.create("swing", "swg", MFnNumericData::kDouble, 0.0);
    numeric.setKeyable(true);
    numeric.setAffectsWorldSpace(true);
    addAttribute(swing);
    attributeAffects(swing, matrix);
    mustCallValidateAndSet(swing);
    return MS::kSuccess;
  }
  MPxTransformationMatrix* createTransformationMatrix() override { return new SwingMatrix; }
  MStatus validateAndSetValue(const MPlug& plug, const MDataHandle& handle,
                              const MDGContext& context) override {
    if (plug.isNull()) return MS::kFailure;
    MStatus status;
    MDataBlock block = forceCache(*const_cast<MDGContext*>(&context));
    MDataHandle kept = block.outputValue(plug, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    if (plug == swing) {
      const double wanted = handle.asDouble();
      if (!std::isfinite(wanted)) return MS::kFailure;
      const double degrees = std::clamp(wanted, -90.0, 90.0);
      kept.set(degrees);
      kept.setClean();
      own()->setSwing(degrees);
      dirtyMatrix();
      return MS::kSuccess;
    }
    return ParentClass::validateAndSetValue(plug, handle, context);
  }
  static MTypeId id;
  static MObject swing;

 private:
  SwingMatrix* own() { return static_cast<SwingMatrix*>(transformationMatrixPtr()); }
};

MTypeId SwingMatrix::id(0x0007f031);
MTypeId SwingTransform::id(0x0007f030);
MObject SwingTransform::swing;

}  // namespace

MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "tests", "1.0", "Any");
  return plugin.registerTransform("swingTransform", SwingTransform::id, &SwingTransform::creator,
                                  &SwingTransform::initialize, &SwingMatrix::creator,
                                  SwingMatrix::id);
}

MStatus uninitializePlugin(MObject object) {
  MFnPlugin plugin(object);
  return plugin.deregisterNode(SwingTransform::id);
}
