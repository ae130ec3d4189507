#pragma once

// A table, which the tool would lay out anew each time.
// clang-format off
// The kinds of objects, once, for the enumeration and for the table of their names.
#define MAYA_FN_TYPES_(X) \
  X(kInvalid) X(kBase) X(kNamedObject) X(kModel) X(kDependencyNode) X(kAddDoubleLinear)           \
  X(kAffect) X(kAnimCurve) X(kAnimCurveTimeToAngular) X(kAnimCurveTimeToDistance)                 \
  X(kAnimCurveTimeToTime) X(kAnimCurveTimeToUnitless) X(kAnimCurveUnitlessToAngular)              \
  X(kAnimCurveUnitlessToDistance) X(kAnimCurveUnitlessToTime) X(kAnimCurveUnitlessToUnitless)     \
  X(kResultCurve) X(kResultCurveTimeToAngular) X(kResultCurveTimeToDistance)                      \
  X(kResultCurveTimeToTime) X(kResultCurveTimeToUnitless) X(kAngleBetween) X(kAudio)              \
  X(kBackground) X(kColorBackground) X(kFileBackground) X(kRampBackground) X(kBlend)              \
  X(kBlendTwoAttr) X(kBlendWeighted) X(kBlendDevice) X(kBlendColors) X(kBump) X(kBump3d)          \
  X(kCameraView) X(kChainToSpline) X(kChoice) X(kCondition) X(kContrast) X(kClampColor)           \
  X(kCreate) X(kAlignCurve) X(kAlignSurface) X(kAttachCurve) X(kAttachSurface) X(kAvgCurves)      \
  X(kAvgSurfacePoints) X(kAvgNurbsSurfacePoints) X(kBevel) X(kBirailSrf) X(kDPbirailSrf)          \
  X(kMPbirailSrf) X(kSPbirailSrf) X(kBoundary) X(kCircle) X(kCloseCurve)                          \
  X(kClosestPointOnSurface) X(kCloseSurface) X(kCurveFromSurface) X(kCurveFromSurfaceBnd)         \
  X(kCurveFromSurfaceCoS) X(kCurveFromSurfaceIso) X(kCurveInfo) X(kDetachCurve)                   \
  X(kDetachSurface) X(kExtendCurve) X(kExtendSurface) X(kExtrude) X(kFFblendSrf) X(kFFfilletSrf)  \
  X(kFilletCurve) X(kFitBspline) X(kFlow) X(kHardenPointCurve) X(kIllustratorCurve)               \
  X(kInsertKnotCrv) X(kInsertKnotSrf) X(kIntersectSurface) X(kNurbsTesselate) X(kNurbsPlane)      \
  X(kNurbsCube) X(kOffsetCos) X(kOffsetCurve) X(kPlanarTrimSrf) X(kPointOnCurveInfo)              \
  X(kPointOnSurfaceInfo) X(kPrimitive) X(kProjectCurve) X(kProjectTangent) X(kRBFsurface)         \
  X(kRebuildCurve) X(kRebuildSurface) X(kReverseCurve) X(kReverseSurface) X(kRevolve)             \
  X(kRevolvedPrimitive) X(kCone) X(kRenderCone) X(kCylinder) X(kSphere) X(kSkin) X(kStitchSrf)    \
  X(kSubCurve) X(kSubSurface) X(kTextCurves) X(kTrim) X(kUntrim) X(kDagNode) X(kProxy)            \
  X(kUnderWorld) X(kTransform) X(kAimConstraint) X(kLookAt) X(kGeometryConstraint)                \
  X(kGeometryVarGroup) X(kAnyGeometryVarGroup) X(kCurveVarGroup) X(kMeshVarGroup)                 \
  X(kSurfaceVarGroup) X(kIkEffector) X(kIkHandle) X(kJoint) X(kManipulator3D) X(kManip)           \
  X(kAxesActionManip) X(kBallProjectionManip) X(kNormalConstraint) X(kOrientConstraint)           \
  X(kPointConstraint) X(kSymmetryConstraint) X(kParentConstraint) X(kPoleVectorConstraint)        \
  X(kScaleConstraint) X(kTangentConstraint) X(kUnknownTransform) X(kWorld) X(kShape)              \
  X(kBaseLattice) X(kCamera) X(kCluster) X(kSoftMod) X(kCollision) X(kDummy) X(kEmitter)          \
  X(kField) X(kAir) X(kDrag) X(kGravity) X(kNewton) X(kRadial) X(kTurbulence) X(kUniform)         \
  X(kVortex) X(kGeometric) X(kCurve) X(kNurbsCurve) X(kNurbsCurveGeom) X(kDimension) X(kAngle)    \
  X(kAnnotation) X(kDistance) X(kArcLength) X(kRadius) X(kParamDimension) X(kDirectedDisc)        \
  X(kRenderRect) X(kEnvFogShape) X(kLattice) X(kLatticeGeom) X(kLocator) X(kDropoffLocator)       \
  X(kMarker) X(kCameraSet) X(kOrientationMarker) X(kPositionMarker) X(kOrientationLocator)        \
  X(kTrimLocator) X(kPlane) X(kSketchPlane) X(kGroundPlane) X(kOrthoGrid) X(kSprite) X(kSurface)  \
  X(kNurbsSurface) X(kNurbsSurfaceGeom) X(kMesh) X(kMeshGeom) X(kRenderSphere) X(kFlexor)         \
  X(kClusterFlexor) X(kGuideLine) X(kLight) X(kAmbientLight) X(kNonAmbientLight) X(kAreaLight)    \
  X(kLinearLight) X(kNonExtendedLight) X(kDirectionalLight) X(kPointLight) X(kSpotLight)          \
  X(kVolumeLight) X(kParticle) X(kRigid) X(kRigidConstraint) X(kRigidDeform) X(kSubdiv)           \
  X(kImagePlane) X(kDecayRegionCapComponent) X(kDefaultLightList) X(kDeformWave) X(kDeformSine)   \
  X(kDeformBend) X(kDeformTwist) X(kDeformSquash) X(kDeformFlare) X(kDeformFunc) X(kDevice)       \
  X(kDoubleShadingSwitch) X(kSingleShadingSwitch) X(kTripleShadingSwitch) X(kQuadShadingSwitch)   \
  X(kDynBase) X(kDynSweptGeometryData) X(kEntity) X(kEnvFogMaterial) X(kEnvBall) X(kEnvChrome)    \
  X(kEnvCube) X(kEnvSky) X(kEnvSphere) X(kExpression) X(kExtendCurveDistanceManip) X(kFilter)     \
  X(kFilterEuler) X(kFilterSimplify) X(kFilterClosestSample) X(kFourByFourMatrix)                 \
  X(kGammaCorrect) X(kGenericAttribute) X(kGeometryFilt) X(kBoneLattice) X(kClusterFilter)        \
  X(kDeltaMush) X(kFFD) X(kFfdDualBase) X(kJointCluster) X(kJiggleDeformer) X(kMidModifier)       \
  X(kMidModifierWithMatrix) X(kNonLinear) X(kPointMatrixMult) X(kPolyCreaseEdge)                  \
  X(kPolyPokeFacet) X(kProxyManager) X(kRigidSolver) X(kSculpt) X(kSkinClusterFilter)             \
  X(kSoftModFilter) X(kSplineIK) X(kTension) X(kTweak) X(kWeightGeometryFilt) X(kWire)            \
  X(kWrapFilter) X(kBlendShape) X(kGlobalCacheControls) X(kGlobalUnits) X(kGroupId)               \
  X(kGroupParts) X(kGuide) X(kHikEffector) X(kHikHandle) X(kHistorySwitch) X(kHsvToRgb)           \
  X(kHyperGraphInfo) X(kHyperLayout) X(kHyperView) X(kIkSolver) X(kMCsolver) X(kPASolver)         \
  X(kSCsolver) X(kRPsolver) X(kSplineSolver) X(kIkSystem) X(kImageAdd) X(kImageBlur)              \
  X(kImageColorCorrect) X(kImageData) X(kImageDepth) X(kImageDiff) X(kImageDisplay)               \
  X(kImageFilter) X(kImageLoad) X(kImageMotionBlur) X(kImageMultiply) X(kImageNetDest)            \
  X(kImageNetSrc) X(kImageOver) X(kImageRender) X(kImageSave) X(kImageSource) X(kImageUnder)      \
  X(kImageView) X(kInstancer) X(kItemList) X(kKeyframeDelta) X(kKeyingGroup) X(kLambert)          \
  X(kLayeredShader) X(kLayeredTexture) X(kLightDataAttribute) X(kLightFogMaterial) X(kLightInfo)  \
  X(kLightLink) X(kLightList) X(kLightProjectionGeometry) X(kLuminance) X(kMakeGroup)             \
  X(kMaterial) X(kMaterialFacade) X(kMatrixAdd) X(kMatrixFloatMatrix) X(kMatrixHold)              \
  X(kMatrixMult) X(kMatrixPass) X(kMatrixWtAdd) X(kMessageAttribute) X(kMotionPath)               \
  X(kMultDoubleLinear) X(kMultiplyDivide) X(kMute) X(kNearestPointOnCurve) X(kNumericAttribute)   \
  X(kObjectAttrFilter) X(kObjectFilter) X(kObjectMultiFilter) X(kObjectNameFilter)                \
  X(kObjectRenderFilter) X(kObjectScriptFilter) X(kObjectTypeFilter) X(kOpticalFX) X(kPair)       \
  X(kParticleAgeMapper) X(kParticleCloud) X(kParticleColorMapper) X(kParticleTransparencyMapper)  \
  X(kPhong) X(kPhongExplorer) X(kPhongMaterial) X(kPlugin) X(kPluginCameraSet)                    \
  X(kPluginClientDevice) X(kPluginConstraintNode) X(kPluginDeformerNode) X(kPluginDependNode)     \
  X(kPluginEmitterNode) X(kPluginFieldNode) X(kPluginGeometryData) X(kPluginGeometryFilter)       \
  X(kPluginHardwareShader) X(kPluginHwShaderNode) X(kPluginIkSolver) X(kPluginImagePlaneNode)     \
  X(kPluginLocatorNode) X(kPluginManipContainer) X(kPluginManipulatorNode) X(kPluginObjectSet)    \
  X(kPluginParticleAttributeMapperNode) X(kPluginShape) X(kPluginSpringNode)                      \
  X(kPluginThreadedDevice) X(kPluginTransformNode) X(kPlusMinusAverage) X(kPointArrayData)        \
  X(kPointManip) X(kPolyAppend) X(kPolyAppendVertex) X(kPolyArrow) X(kPolyAutoProj)               \
  X(kPolyAverageVertex) X(kPolyBevel) X(kPolyBevel2) X(kPolyBlindData) X(kPolyBoolOp)             \
  X(kPolyBridgeEdge) X(kPolyChipOff) X(kPolyCloseBorder) X(kPolyCollapseEdge) X(kPolyCollapseF)   \
  X(kPolyColorDel) X(kPolyColorMod) X(kPolyColorPerVertex) X(kPolyCone)                           \
  X(kPolyConnectComponents) X(kPolyCreateFacet) X(kPolyCreateToolManip) X(kPolyCreator)           \
  X(kPolyCube) X(kPolyCut) X(kPolyCylProj) X(kPolyCylinder) X(kPolyDelEdge) X(kPolyDelFacet)      \
  X(kPolyDelVertex) X(kPolyDuplicateEdge) X(kPolyEdgeToCurve) X(kPolyExtrudeEdge)                 \
  X(kPolyExtrudeFacet) X(kPolyExtrudeVertex) X(kPolyFlipEdge) X(kPolyFlipUV) X(kPolyHelix)        \
  X(kPolyHoleFace) X(kPolyLayoutUV) X(kPolyMapCut) X(kPolyMapDel) X(kPolyMapSew)                  \
  X(kPolyMapSewMove) X(kPolyMappingManip) X(kPolyMergeEdge) X(kPolyMergeFacet) X(kPolyMergeUV)    \
  X(kPolyMergeVert) X(kPolyMesh) X(kPolyMirror) X(kPolyModifierManip) X(kPolyMoveEdge)            \
  X(kPolyMoveFacet) X(kPolyMoveFacetUV) X(kPolyMoveUV) X(kPolyMoveVertex) X(kPolyMoveVertexUV)    \
  X(kPolyNormal) X(kPolyNormalPerVertex) X(kPolyNormalizeUV) X(kPolyPipe) X(kPolyPlanProj)        \
  X(kPolyPlatonicSolid) X(kPolyPoke) X(kPolyPrimitive) X(kPolyPrimitiveMisc) X(kPolyPrism)        \
  X(kPolyProj) X(kPolyProjectCurve) X(kPolyPyramid) X(kPolyQuad) X(kPolyReduce)                   \
  X(kPolySelectEditFeedbackManip) X(kPolySeparate) X(kPolySewEdge) X(kPolySmooth)                 \
  X(kPolySmoothFacet) X(kPolySmoothProxy) X(kPolySoftEdge) X(kPolySphProj) X(kPolySphere)         \
  X(kPolySpinEdge) X(kPolySplit) X(kPolySplitEdge) X(kPolySplitRing) X(kPolySplitToolManip)       \
  X(kPolySplitVert) X(kPolyStraightenUVBorder) X(kPolySubdEdge) X(kPolySubdFacet)                 \
  X(kPolyToSubdiv) X(kPolyToolFeedbackManip) X(kPolyToolFeedbackShape) X(kPolyTorus)              \
  X(kPolyTransfer) X(kPolyTriangulate) X(kPolyTweak) X(kPolyTweakUV) X(kPolyUVRectangle)          \
  X(kPolyUnite) X(kPolyVertexNormalManip) X(kPolyWedgeFace) X(kPolyWheelFace) X(kPolyCBoolOp)     \
  X(kPolyContourProj) X(kPolyEditEdgeFlow) X(kPolyRemesh) X(kPolyPinUV) X(kPositionFacade)        \
  X(kPostProcessList) X(kPrecompExport) X(kProjection) X(kProjectionManip) X(kPsdFileTex)         \
  X(kQuadPtOnLineManip) X(kQuadShadingNode) X(kRamp) X(kRecord) X(kReference) X(kReflect)         \
  X(kRemapColor) X(kRemapHsv) X(kRemapValue) X(kRenderBox) X(kRenderGlobals)                      \
  X(kRenderGlobalsList) X(kRenderLayer) X(kRenderLayerManager) X(kRenderPass) X(kRenderPassSet)   \
  X(kRenderPlane) X(kRenderQuality) X(kRenderSetup) X(kRenderTarget) X(kRenderUtilityList)        \
  X(kRenderedImageSource) X(kRenderingList) X(kResolution) X(kReverse) X(kRgbToHsv)               \
  X(kSamplerInfo) X(kScript) X(kScriptManip) X(kSelectionListData) X(kSelectionListOperator)      \
  X(kSet) X(kPartition) X(kSetRange) X(kShaderGlow) X(kShaderList) X(kShadingEngine)              \
  X(kShadingMap) X(kShapeFragment) X(kSimpleVolumeShader) X(kSketchRestManip) X(kSnapshot)        \
  X(kSnapshotPath) X(kSnapshotShape) X(kSmear) X(kStitchAsNurbsShell) X(kStoryBoard)              \
  X(kStringArrayData) X(kStringData) X(kStringShadingSwitch) X(kStroke) X(kStrokeGlobals)         \
  X(kSubdAddTopology) X(kSurfaceInfo) X(kSurfaceLuminance) X(kSurfaceShader) X(kTexLattice)       \
  X(kTexture2d) X(kChecker) X(kCloth) X(kFileTexture) X(kFractal) X(kGrid) X(kMountain)           \
  X(kOcean) X(kWater) X(kTexture3d) X(kBrownian) X(kCloud) X(kCrater) X(kGranite) X(kLeather)     \
  X(kMarble) X(kRock) X(kSnow) X(kSolidFractal) X(kStucco) X(kVolumeNoise) X(kWood)               \
  X(kTextureEnv) X(kTextureList) X(kThreePointArcManip) X(kTime) X(kTimeAttribute)                \
  X(kTimeFunction) X(kTimeToUnitConversion) X(kTimeWarp) X(kToon) X(kToonLineAttributes)          \
  X(kTransferAttributes) X(kTransformGeometry) X(kTwoPointArcManip) X(kTypedAttribute)            \
  X(kUnitAttribute) X(kUnitConversion) X(kUnitToTimeConversion) X(kUnknown) X(kUnused)            \
  X(kUseBackground) X(kUvChooser) X(kUVManip2D) X(kVectorArrayData) X(kVectorProduct)             \
  X(kVertexBakeSet) X(kViewColorManager) X(kViewManip) X(kVolumeAxis) X(kVolumeFog)               \
  X(kVolumeShader) X(kWeightFunctionData) X(kWrite) X(kXform) X(kAttribute) X(kAttribute2Double)  \
  X(kAttribute2Float) X(kAttribute2Int) X(kAttribute2Short) X(kAttribute2Long)                    \
  X(kAttribute3Double) X(kAttribute3Float) X(kAttribute3Int) X(kAttribute3Short)                  \
  X(kAttribute3Long) X(kAttribute4Double) X(kCompoundAttribute) X(kDoubleAngleAttribute)          \
  X(kDoubleLinearAttribute) X(kEnumAttribute) X(kFloatAngleAttribute) X(kFloatLinearAttribute)    \
  X(kFloatMatrixAttribute) X(kMatrixAttribute) X(kOpaqueAttribute) X(kData)                       \
  X(kComponentListData) X(kDoubleArrayData) X(kFloatArrayData) X(kIntArrayData)                   \
  X(kInt64ArrayData) X(kUint64ArrayData) X(kLatticeData) X(kMatrixArrayData) X(kMatrixData)       \
  X(kMeshData) X(kNId) X(kNumericData) X(kData2Double) X(kData2Float) X(kData2Int) X(kData2Long)  \
  X(kData2Short) X(kData3Double) X(kData3Float) X(kData3Int) X(kData3Long) X(kData3Short)         \
  X(kData4Double) X(kDynArrayAttrsData) X(kDynEmitterCallbackCache) X(kDynFieldCallbackCache)     \
  X(kEdgeComponentData) X(kFalloffFunctionData) X(kNurbsCurveData) X(kNurbsSurfaceData)           \
  X(kPluginData) X(kSphereData) X(kSubdivData) X(kTimeData) X(kUInt64ArrayData) X(kComponent)     \
  X(kCurveCVComponent) X(kCurveEPComponent) X(kCurveKnotComponent) X(kCurveParamComponent)        \
  X(kDecayRegionComponent) X(kDynParticleSetComponent) X(kEdgeComponent) X(kIsoparmComponent)     \
  X(kLatticeComponent) X(kMeshComponent) X(kMeshEdgeComponent) X(kMeshFaceVertComponent)          \
  X(kMeshFrEdgeComponent) X(kMeshMapComponent) X(kMeshPolygonComponent) X(kMeshVertComponent)     \
  X(kMeshVtxFaceComponent) X(kPivotComponent) X(kPivotComponent2) X(kPolyEdgeComponent)           \
  X(kSelectionItem) X(kSetGroupComponent) X(kSubdivCVComponent) X(kSubdivEdgeComponent)           \
  X(kSubdivFaceComponent) X(kSubdivMapComponent) X(kSurfaceCVComponent) X(kSurfaceEPComponent)    \
  X(kSurfaceFaceComponent) X(kSurfaceKnotComponent) X(kSurfaceRangeComponent)                     \
  X(kUint64SingleIndexedComponent) X(kSingleIndexedComponent) X(kDoubleIndexedComponent)          \
  X(kTripleIndexedComponent) X(kCacheBase) X(kCacheBlend) X(kCacheFile) X(kCacheTrack)            \
  X(kCacheableNode) X(kCharacter) X(kCharacterMap) X(kCharacterMappingData) X(kCharacterOffset)   \
  X(kDisplayLayer) X(kDisplayLayerManager) X(kDisplacementShader) X(kDiskCache)                   \
  X(kDefaultShader) X(kDimensionManip) X(kContainer) X(kContainerBase) X(kDagContainer)           \
  X(kDagPose) X(kDagSelectionItem) X(kDependencySelectionItem) X(kDistanceBetween) X(kAnimLayer)  \
  X(kAnimBlend) X(kAnimBlendInOut) X(kAssembly) X(kAnisotropy) X(kBlinn) X(kBlinnMaterial)        \
  X(kLambertMaterial) X(kHardwareShader) X(kHwRenderGlobals) X(kHwReflectionMap) X(kRampShader)   \
  X(kPlace2dTexture) X(kPlace3dTexture) X(kTimeEditor) X(kNucleus) X(kNCloth) X(kNBase)           \
  X(kNParticle) X(kNRigid) X(kNObject) X(kNObjectData) X(kDynamicConstraint) X(kFluid)            \
  X(kFluidGeom) X(kFluidData) X(kFluidEmitter) X(kFluidTexture2D) X(kFluidTexture3D)              \
  X(kHairConstraint) X(kHairSystem) X(kHairTubeShader) X(kFollicle) X(kPfxGeometry) X(kPfxHair)   \
  X(kPfxToon) X(kCrossSectionManager) X(kDeleteComponent) X(kUVPin) X(kDecomposeMatrix)           \
  X(kComposeMatrix) X(kEulerToQuat) X(kQuatToEuler) X(kInverseMatrix) X(kTransposeMatrix)         \
  X(kSequencer) X(kSequenceManager) X(kShot) X(kShadingSwitch) X(kNodeGraphEditorInfo)            \
  X(kNodeGraphEditorBookmarks) X(kObjectBinFilter) X(kGeometryData) X(kGeometryOnLineManip)       \
  X(kCreateColorSet) X(kCreateUVSet) X(kCopyColorSet) X(kCopyUVSet) X(kDeleteUVSet)               \
  X(kDeleteColorSet) X(kCreaseSet) X(kRenameUVSet) X(kEditCurve) X(kEditMetadata)                 \
  X(kTransformBoxManip) X(kTransUV2dManip)                                                       
