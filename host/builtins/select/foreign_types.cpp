#include "host/builtins/select/foreign_types.h"

#include <algorithm>
#include <iterator>

namespace host::builtins {

namespace {

// Sorted by bytes.
constexpr std::string_view kNames[] = {
    "aiOptions", "aimConstraint", "airField", "ambientLight", "angleBetween", "animBlend",
    "animBlendNodeAdditive", "animClip", "animCurve", "animCurveTA", "animCurveTL", "animCurveTT",
    "animCurveTU", "animCurveUA", "animCurveUL", "animCurveUT", "animCurveUU", "animLayer",
    "anisotropic", "annotationShape", "areaLight", "arrayMapper", "attachCurve", "attachSurface",
    "avgCurves", "baseLattice", "bevel", "bevelPlus", "bezierCurve", "blend", "blendColors",
    "blendDevice", "blendShape", "blendTwoAttr", "blendWeighted", "blindDataTemplate", "blinn",
    "boneLattice", "boundary", "brownian", "brush", "bulge", "bulletCollisionFilterSet", "bump2d",
    "bump3d", "cMuscleKeepOut", "cacheBlend", "cacheFile", "camera", "cameraView", "character",
    "characterMap", "checker", "choice", "chooser", "clamp", "clipLibrary", "clipScheduler",
    "closestPointOnMesh", "closestPointOnSurface", "cloth", "cloud", "cluster", "clusterHandle",
    "collisionModel", "colorProfile", "condition", "constraint", "container", "contrast",
    "controlPoint", "copyColorSet", "copyUVSet", "crater", "createColorSet", "createUVSet",
    "curveFromMeshEdge", "curveFromSurface", "curveInfo", "curveIntersect",
    "curveNormalizerAngle", "dagContainer", "dagNode", "dagPose", "defaultLightList",
    "deformBend", "deformFlare", "deformFunc", "deformSine", "deformSquash", "deformTwist",
    "deformWave", "deformableShape", "deleteColorSet", "deleteComponent", "deleteUVSet",
    "deltaMush", "detachCurve", "directedDisc", "directionalLight", "diskCache",
    "displacementShader", "displayLayer", "displayLayerManager", "distanceBetween",
    "distanceDimShape", "dragField", "dynGlobals", "dynamicConstraint", "entity", "envBall",
    "envChrome", "envCube", "envFog", "envSky", "envSphere", "expression", "extendCurve",
    "extrude", "ffd", "fieldshape", "file", "fluidEmitter", "fluidShape", "follicle", "fractal",
    "frameCache", "gammaCorrect", "geometryConstraint", "geometryFilter", "geometryShape",
    "geometryVarGroup", "granite", "gravityField", "greasePlane", "grid", "groupId", "groupParts",
    "guide", "hairConstraint", "hairSystem", "hikEffector", "hikHandle", "hikSolver",
    "holdMatrix", "hsvToRgb", "hwReflectionMap", "hyperGraphInfo", "hyperLayout", "hyperView",
    "ikEffector", "ikHandle", "ikRPsolver", "ikSCsolver", "ikSplineSolver", "imagePlane",
    "instancer", "jiggle", "joint", "jointCluster", "jointFfd", "jointLattice", "keyingGroup",
    "lambert", "lattice", "layeredShader", "layeredTexture", "leather", "light", "lightFog",
    "lightInfo", "lightLinker", "lightList", "lineModifier", "locator", "lodGroup", "loft",
    "lookAt", "luminance", "makeGroup", "makeNurbCircle", "makeNurbCone", "makeNurbCube",
    "makeNurbCylinder", "makeNurbPlane", "makeNurbSphere", "makeNurbSquare", "makeNurbTorus",
    "makeTextCurves", "mandelbrot", "marble", "materialInfo", "mentalrayGlobals", "mesh", "morph",
    "motionPath", "motionTrail", "mountain", "movie", "multDoubleLinear", "multMatrix",
    "multiplyDivide", "mute", "nCloth", "nComponent", "nParticle", "nRigid",
    "nearestPointOnCurve", "network", "newtonField", "noise", "nonLinear", "normalConstraint",
    "nucleus", "nurbsCurve", "nurbsSurface", "nurbsTessellate", "nurbsToSubdiv", "objectSet",
    "ocean", "oceanShader", "offsetCurve", "oldBlindDataBase", "opticalFX", "orientConstraint",
    "orientationMarker", "pairBlend", "parentConstraint", "particle", "particleCloud",
    "particleSamplerInfo", "partition", "passMatrix", "pfxGeometry", "pfxHair", "pfxToon",
    "phong", "phongE", "place2dTexture", "place3dTexture", "plusMinusAverage", "pointConstraint",
    "pointEmitter", "pointLight", "pointMatrixMult", "pointOnCurveInfo", "pointOnPolyConstraint",
    "pointOnSurfaceInfo", "poleVectorConstraint", "polyAppend", "polyAppendVertex",
    "polyAutoProj", "polyAverageVertex", "polyBase", "polyBevel", "polyBevel2", "polyBevel3",
    "polyBlindData", "polyBoolOp", "polyBridgeEdge", "polyCBoolOp", "polyChipOff",
    "polyCloseBorder", "polyCollapseEdge", "polyCollapseF", "polyColorDel", "polyColorMod",
    "polyColorPerVertex", "polyCone", "polyConnectComponents", "polyCopyUV", "polyCreaseEdge",
    "polyCreateFace", "polyCreator", "polyCube", "polyCut", "polyCylProj", "polyCylinder",
    "polyDelEdge", "polyDelFacet", "polyDelVertex", "polyDuplicateEdge", "polyEditEdgeFlow",
    "polyExtrudeEdge", "polyExtrudeFace", "polyExtrudeVertex", "polyFlipEdge", "polyFlipUV",
    "polyHelix", "polyLayoutUV", "polyMapCut", "polyMapDel", "polyMapSew", "polyMapSewMove",
    "polyMergeEdge", "polyMergeFace", "polyMergeUV", "polyMergeVert", "polyMirror",
    "polyModifier", "polyModifierUV", "polyModifierWorld", "polyMoveEdge", "polyMoveFace",
    "polyMoveFacetUV", "polyMoveUV", "polyMoveVertex", "polyNormal", "polyNormalPerVertex",
    "polyNormalizeUV", "polyOptUvs", "polyPinUV", "polyPipe", "polyPlanarProj", "polyPlane",
    "polyPlatonicSolid", "polyPoke", "polyPrimitive", "polyPrism", "polyProj", "polyPyramid",
    "polyQuad", "polyReduce", "polySeparate", "polySewEdge", "polySmooth", "polySmoothFace",
    "polySoftEdge", "polySphProj", "polySphere", "polySpinEdge", "polySplit", "polySplitEdge",
    "polySplitRing", "polySplitVert", "polyStraightenUVBorder", "polySubdEdge", "polySubdFace",
    "polyTorus", "polyTransfer", "polyTriangulate", "polyTweak", "polyTweakUV", "polyUnite",
    "polyWedgeFace", "postProcessList", "projection", "psdFileTex", "quadShadingSwitch",
    "radialField", "ramp", "rampShader", "rebuildCurve", "reference", "reflect", "remapColor",
    "remapHsv", "remapValue", "renderGlobals", "renderLayer", "renderLayerManager",
    "renderSphere", "resolution", "reverse", "revolve", "rgbToHsv", "rigidBody", "rock",
    "sampler", "samplerInfo", "scaleConstraint", "script", "sculpt", "selectListOperator",
    "sequenceManager", "sequencer", "setRange", "shadingEngine", "shadingMap", "shape", "shot",
    "simpleVolumeShader", "singleShadingSwitch", "sketchPlane", "skinCluster", "slideOnSurface",
    "snapshot", "snow", "softMod", "softModHandle", "solidFractal", "spotLight", "spring",
    "stencil", "stroke", "stucco", "styleCurve", "subCurve", "subdiv", "subdivBlindData",
    "surfaceInfo", "surfaceLuminance", "surfaceShader", "surfaceShape", "symmetryConstraint",
    "tangentConstraint", "texture2d", "textureBakeSet", "textureDeformer", "time",
    "timeToUnitConversion", "transform", "transformGeometry", "trim", "tripleShadingSwitch",
    "turbulenceField", "tweak", "uniformField", "unitConversion", "unitToTimeConversion",
    "unknown", "unknownDag", "unknownTransform", "untrim", "useBackground", "uvChooser", "uvPin",
    "vectorProduct", "vertexBakeSet", "volumeAxisField", "volumeFog", "volumeLight",
    "volumeNoise", "volumeShader", "vortexField", "water", "weightGeometryFilter", "wire", "wood",
    "wrap", "wtAddMatrix",
};
static_assert(std::is_sorted(std::begin(kNames), std::end(kNames)), "keep the names in order");

}  // namespace

bool isForeignNodeType(std::string_view name) {
  return std::binary_search(std::begin(kNames), std::end(kNames), name);
}

}  // namespace host::builtins
