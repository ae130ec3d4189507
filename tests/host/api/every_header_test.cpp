// Every API header, together: no two may clash, and all must compile as a plug-in sees them.
#define MNoPluginEntry
#include <maya/M3dView.h>
#include <maya/MAngle.h>
#include <maya/MAnimControl.h>
#include <maya/MAnimCurveChange.h>
#include <maya/MAnimUtil.h>
#include <maya/MApiNamespace.h>
#include <maya/MApiVersion.h>
#include <maya/MArgDataBase.h>
#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MArgParser.h>
#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MAttributeIndex.h>
#include <maya/MAttributeSpec.h>
#include <maya/MAttributeSpecArray.h>
#include <maya/MBoundingBox.h>
#include <maya/MCallbackIdArray.h>
#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MCommandMessage.h>
#include <maya/MCommandResult.h>
#include <maya/MCommonSystemUtils.h>
#include <maya/MComputation.h>
#include <maya/MConditionMessage.h>
#include <maya/MCursor.h>
#include <maya/MDGContext.h>
#include <maya/MDGMessage.h>
#include <maya/MDGModifier.h>
#include <maya/MDagMessage.h>
#include <maya/MDagModifier.h>
#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDistance.h>
#include <maya/MDoubleArray.h>
#include <maya/MDrawContext.h>
#include <maya/MDrawData.h>
#include <maya/MDrawInfo.h>
#include <maya/MDrawRegistry.h>
#include <maya/MDrawRequest.h>
#include <maya/MDrawRequestQueue.h>
#include <maya/MDynamicsUtil.h>
#include <maya/MEulerRotation.h>
#include <maya/MEvaluationManager.h>
#include <maya/MEvaluationNode.h>
#include <maya/MEvent.h>
#include <maya/MEventMessage.h>
#include <maya/MFileIO.h>
#include <maya/MFileObject.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFn.h>
#include <maya/MFnAnimCurve.h>
#include <maya/MFnArrayAttrsData.h>
#include <maya/MFnAttribute.h>
#include <maya/MFnBase.h>
#include <maya/MFnBlendShapeDeformer.h>
#include <maya/MFnCamera.h>
#include <maya/MFnComponent.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnData.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnFloatArrayData.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnGeometryData.h>
#include <maya/MFnGeometryFilter.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMatrixArrayData.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnNurbsSurfaceData.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnPluginData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnSet.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MFnSkinCluster.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnStringData.h>
#include <maya/MFnTransform.h>
#include <maya/MFnTripleIndexedComponent.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnUInt64ArrayData.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MFnWeightGeometryFilter.h>
#include <maya/MFrameContext.h>
#include <maya/MGL.h>
#include <maya/MGPUDeformerRegistry.h>
#include <maya/MGeometryRequirements.h>
#include <maya/MGlobal.h>
#include <maya/MHWGeometry.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MHWRender.h>
#include <maya/MIOStream.h>
#include <maya/MIOStreamFwd.h>
#include <maya/MImage.h>
#include <maya/MInt64Array.h>
#include <maya/MIntArray.h>
#include <maya/MItCurveCV.h>
#include <maya/MItDag.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MItDependencyNodes.h>
#include <maya/MItGeometry.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshFaceVertex.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MItSelectionList.h>
#include <maya/MItSurfaceCV.h>
#include <maya/MIteratorType.h>
#include <maya/MMaterial.h>
#include <maya/MMatrix.h>
#include <maya/MMatrixArray.h>
#include <maya/MMeshIntersector.h>
#include <maya/MMeshIsectAccelParams.h>
#include <maya/MMeshSmoothOptions.h>
#include <maya/MMessage.h>
#include <maya/MModelMessage.h>
#include <maya/MNodeMessage.h>
#include <maya/MObject.h>
#include <maya/MObjectArray.h>
#include <maya/MObjectHandle.h>
#include <maya/MOpenCLInfo.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MPointOnMesh.h>
#include <maya/MPolyMessage.h>
#include <maya/MProgressWindow.h>
#include <maya/MPxCommand.h>
#include <maya/MPxContext.h>
#include <maya/MPxContextCommand.h>
#include <maya/MPxData.h>
#include <maya/MPxDeformerNode.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxFileTranslator.h>
#include <maya/MPxGeometryFilter.h>
#include <maya/MPxGeometryIterator.h>
#include <maya/MPxGeometryOverride.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MPxNode.h>
#include <maya/MPxPolyTweakUVCommand.h>
#include <maya/MPxSelectionContext.h>
#include <maya/MPxSurfaceShape.h>
#include <maya/MPxSurfaceShapeUI.h>
#include <maya/MPxToolCommand.h>
#include <maya/MPxTransform.h>
#include <maya/MPxTransformationMatrix.h>
#include <maya/MQuaternion.h>
#include <maya/MRampAttribute.h>
#include <maya/MRenderUtil.h>
#include <maya/MSceneMessage.h>
#include <maya/MSelectInfo.h>
#include <maya/MSelectionList.h>
#include <maya/MSelectionMask.h>
#include <maya/MShaderManager.h>
#include <maya/MSharedPtr.h>
#include <maya/MSimple.h>
#include <maya/MSpace.h>
#include <maya/MStateManager.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MSyntax.h>
#include <maya/MTesselationParams.h>
#include <maya/MThreadPool.h>
#include <maya/MThreadUtils.h>
#include <maya/MTime.h>
#include <maya/MTimeArray.h>
#include <maya/MTimer.h>
#include <maya/MTimerMessage.h>
#include <maya/MToolsInfo.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>
#include <maya/MUIDrawManager.h>
#include <maya/MUint64Array.h>
#include <maya/MUintArray.h>
#include <maya/MUserData.h>
#include <maya/MUserEventMessage.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>
#include <maya/MViewport2Renderer.h>
#include <maya/MWeight.h>

#include <type_traits>

// Overrides as plug-ins write them: a signature that differs from the documented one would not
// compile.
namespace {

class Command : public MPxCommand {
 public:
  MStatus doIt(const MArgList&) override { return redoIt(); }
  MStatus undoIt() override { return MS::kSuccess; }
  MStatus redoIt() override { return MS::kSuccess; }
  bool isUndoable() const override { return true; }
  bool hasSyntax() const override { return true; }
};

class ToolCommand : public MPxToolCommand {
 public:
  MStatus doIt(const MArgList&) override { return MS::kSuccess; }
  MStatus cancel() override { return MS::kSuccess; }
  MStatus finalize() override {
    MArgList command;
    command.addArg(commandString());
    return MPxToolCommand::doFinalize(command);
  }
};

class Node : public MPxNode {
 public:
  void postConstructor() override {}
  MStatus compute(const MPlug&, MDataBlock&) override { return MS::kUnknownParameter; }
  MStatus setDependentsDirty(const MPlug&, MPlugArray&) override { return MS::kSuccess; }
  MStatus shouldSave(const MPlug&, bool&) override { return MS::kUnknownParameter; }
  SchedulingType schedulingType() const override { return kParallel; }
  MStatus postEvaluation(const MDGContext&, const MEvaluationNode&, PostEvaluationType) override {
    return MS::kSuccess;
  }
  bool getInternalValue(const MPlug&, MDataHandle&) override { return false; }
  bool setInternalValue(const MPlug&, const MDataHandle&) override { return false; }
  MStatus connectionMade(const MPlug&, const MPlug&, bool) override {
    return MS::kUnknownParameter;
  }
  MStatus connectionBroken(const MPlug&, const MPlug&, bool) override {
    return MS::kUnknownParameter;
  }
};

class Locator : public MPxLocatorNode {
 public:
  MStatus compute(const MPlug&, MDataBlock&) override { return MS::kUnknownParameter; }
  void draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) override {}
  bool isBounded() const override { return true; }
  MBoundingBox boundingBox() const override { return {}; }
  bool isTransparent() const override { return true; }
  bool drawLast() const override { return true; }
};

class Data : public MPxData {
 public:
  MStatus readASCII(const MArgList&, unsigned&) override { return MS::kSuccess; }
  MStatus readBinary(istream&, unsigned) override { return MS::kSuccess; }
  MStatus writeASCII(ostream&) override { return MS::kSuccess; }
  MStatus writeBinary(ostream&) override { return MS::kSuccess; }
  void copy(const MPxData&) override {}
  MTypeId typeId() const override { return MTypeId(0x80001); }
  MString name() const override { return "data"; }
};

class Context : public MPxSelectionContext {
 public:
  void toolOnSetup(MEvent&) override {}
  void toolOffCleanup() override {}
  MStatus doPress(MEvent& event) override { return MPxSelectionContext::doPress(event); }
  MStatus doDrag(MEvent& event) override { return MPxSelectionContext::doDrag(event); }
  MStatus doRelease(MEvent&) override {
    auto* command = static_cast<ToolCommand*>(newToolCommand());
    return command->finalize();
  }
  MStatus doHold(MEvent&) override { return MS::kSuccess; }
  MStatus doEnterRegion(MEvent&) override { return MS::kSuccess; }
  MStatus doPtrMoved(MEvent&, MHWRender::MUIDrawManager&,
                     const MHWRender::MFrameContext&) override {
    return MS::kSuccess;
  }
  MStatus helpStateHasChanged(MEvent&) override { return MS::kSuccess; }
  void completeAction() override {}
  void deleteAction() override {}
  void abortAction() override {}
  void getClassName(MString& name) const override { name.set("context"); }
};

class ContextCommand : public MPxContextCommand {
 public:
  MStatus doEditFlags() override { return MS::kSuccess; }
  MStatus doQueryFlags() override { return MS::kSuccess; }
  MPxContext* makeObj() override { return new Context; }
  MStatus appendSyntax() override { return syntax().addFlag("-r", "-radius", MSyntax::kDouble); }
};

class TweakUVs : public MPxPolyTweakUVCommand {
 public:
  MStatus parseSyntax(MArgDatabase&) override { return MS::kSuccess; }
  MStatus getTweakedUVs(const MObject&, MIntArray&, MFloatArray&, MFloatArray&) override {
    return MS::kSuccess;
  }
};

class DrawOverride : public MHWRender::MPxDrawOverride {
 public:
  explicit DrawOverride(const MObject& object) : MPxDrawOverride(object, drawCallback) {}
  static void drawCallback(const MHWRender::MDrawContext&, const MUserData*) {}
  MHWRender::DrawAPI supportedDrawAPIs() const override {
    return static_cast<MHWRender::DrawAPI>(MHWRender::kOpenGL | MHWRender::kDirectX11);
  }
  bool isBounded(const MDagPath&, const MDagPath&) const override { return true; }
  MBoundingBox boundingBox(const MDagPath&, const MDagPath&) const override { return {}; }
  bool disableInternalBoundingBoxDraw() const override { return false; }
  bool hasUIDrawables() const override { return true; }
  MUserData* prepareForDraw(const MDagPath&, const MDagPath&, const MHWRender::MFrameContext&,
                            MUserData* oldData) override {
    return oldData;
  }
  void addUIDrawables(const MDagPath&, MHWRender::MUIDrawManager& manager,
                      const MHWRender::MFrameContext&, const MUserData*) override {
    manager.beginDrawable();
    manager.endDrawable();
  }
};

template <class... Types>
constexpr bool canAllBeMade = (!std::is_abstract_v<Types> && ...);

static_assert(canAllBeMade<Command, ToolCommand, Node, Locator, Data, Context, ContextCommand,
                           TweakUVs, DrawOverride>);
static_assert(MAYA_API_VERSION == 201400);
static_assert(sizeof(MPoint) == 4 * sizeof(double) && sizeof(MFloatVector) == 3 * sizeof(float),
              "arrays hand their elements to plain number arrays");

}  // namespace
