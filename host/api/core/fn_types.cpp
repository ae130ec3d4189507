#include "host/api/core/fn_types.h"

#include <maya/detail/FnTypes.h>

#include <string_view>
#include <unordered_map>

#include "host/dg/numeric_data.h"
#include "host/scene/dag.h"

namespace host::api {
namespace {

struct TypeName {
  std::string_view node;
  MFn::Type type;
};

/// Node types whose kind has a name of its own; a derived type that is not listed counts as its
/// base.
constexpr TypeName kNodeTypes[] = {
    {"dagNode", MFn::kDagNode},
    {"transform", MFn::kTransform},
    {"shape", MFn::kShape},
    {"locator", MFn::kLocator},
    {"camera", MFn::kCamera},
    {"mesh", MFn::kMesh},
    {"light", MFn::kLight},
    {"objectSet", MFn::kSet},
    {"shadingEngine", MFn::kShadingEngine},
    {"partition", MFn::kPartition},
    {"lambert", MFn::kLambert},
    {"blinn", MFn::kBlinn},
    {"phong", MFn::kPhong},
    {"time", MFn::kTime},
    {"groupId", MFn::kGroupId},
    {"groupParts", MFn::kGroupParts},
    {"geometryFilter", MFn::kGeometryFilt},
    {"weightGeometryFilter", MFn::kWeightGeometryFilt},
    {"skinCluster", MFn::kSkinClusterFilter},
    {"blendShape", MFn::kBlendShape},
    {"tweak", MFn::kTweak},
    {"cluster", MFn::kClusterFilter},
    {"clusterHandle", MFn::kCluster},
    {"ffd", MFn::kFFD},
    {"lattice", MFn::kLattice},
    {"baseLattice", MFn::kBaseLattice},
    {"joint", MFn::kJoint},
    {"animCurve", MFn::kAnimCurve},
    {"animCurveTL", MFn::kAnimCurveTimeToDistance},
    {"animCurveTA", MFn::kAnimCurveTimeToAngular},
    {"animCurveTU", MFn::kAnimCurveTimeToUnitless},
    {"animCurveTT", MFn::kAnimCurveTimeToTime},
    {"unitConversion", MFn::kUnitConversion},
    {"expression", MFn::kExpression},
    {"pointConstraint", MFn::kPointConstraint},
    {"orientConstraint", MFn::kOrientConstraint},
    {"parentConstraint", MFn::kParentConstraint},
    {"scaleConstraint", MFn::kScaleConstraint},
    {"aimConstraint", MFn::kAimConstraint},
    {"nurbsCurve", MFn::kNurbsCurve},
    {"nurbsSurface", MFn::kNurbsSurface},
    {"makeNurbPlane", MFn::kNurbsPlane},
    {"displayLayer", MFn::kDisplayLayer},
    {"displayLayerManager", MFn::kDisplayLayerManager},
    {"renderLayer", MFn::kRenderLayer},
    {"renderLayerManager", MFn::kRenderLayerManager},
    {"lightLinker", MFn::kLightLink},
    {"transformGeometry", MFn::kTransformGeometry},
    {"deleteComponent", MFn::kDeleteComponent},
    {"script", MFn::kScript},
    {"polyPrimitive", MFn::kPolyPrimitive},
    {"polyModifier", MFn::kMidModifier},
    {"polyCube", MFn::kPolyCube},
    {"polyPlane", MFn::kPolyMesh},
    {"polySphere", MFn::kPolySphere},
    {"polyCylinder", MFn::kPolyCylinder},
    {"polyCone", MFn::kPolyCone},
    {"polyTorus", MFn::kPolyTorus},
    {"polyTweak", MFn::kPolyTweak},
    {"polyTweakUV", MFn::kPolyTweakUV},
    {"polySoftEdge", MFn::kPolySoftEdge},
    {"polyExtrudeFace", MFn::kPolyExtrudeFacet},
    {"polyExtrudeEdge", MFn::kPolyExtrudeEdge},
    {"polyBevel", MFn::kPolyBevel},
    {"polyMergeVert", MFn::kPolyMergeVert},
    {"polyDelEdge", MFn::kPolyDelEdge},
    {"polyDelFacet", MFn::kPolyDelFacet},
    {"polyDelVertex", MFn::kPolyDelVertex},
    {"polyNormal", MFn::kPolyNormal},
    {"polyTriangulate", MFn::kPolyTriangulate},
    {"polyQuad", MFn::kPolyQuad},
    {"polyUnite", MFn::kPolyUnite},
    {"polySeparate", MFn::kPolySeparate},
    {"polyCloseBorder", MFn::kPolyCloseBorder},
    {"polyAppend", MFn::kPolyAppend},
    {"polyCreateFace", MFn::kPolyCreateFacet},
    {"polySplitRing", MFn::kPolySplitRing},
};

const std::unordered_map<std::string_view, MFn::Type>& typesByNode() {
  static const auto* map = [] {
    auto* made = new std::unordered_map<std::string_view, MFn::Type>;
    for (const TypeName& entry : kNodeTypes) made->emplace(entry.node, entry.type);
    return made;
  }();
  return *map;
}

const dg::NodeType* typeBase(const dg::NodeType* type) {
  return type->base;
}

MFn::Type pluginType(const dg::NodeType& type) {
  if (type.isA("locator")) return MFn::kPluginLocatorNode;
  if (type.isA("transform")) return MFn::kPluginTransformNode;
  if (type.isA("surfaceShape")) return MFn::kPluginShape;
  if (type.isA("weightGeometryFilter")) return MFn::kPluginDeformerNode;
  if (type.isA("geometryFilter")) return MFn::kPluginGeometryFilter;
  return MFn::kPluginDependNode;
}

bool isTripleOf(const dg::Attribute& attribute, std::string_view kind) {
  return attribute.compoundType.size() == kind.size() + 1 &&
         std::string_view(attribute.compoundType).substr(0, kind.size()) == kind;
}

MFn::Type compoundFnType(const dg::Attribute& attribute) {
  if (attribute.compoundType.empty()) return MFn::kCompoundAttribute;
  const std::size_t count = attribute.children.size();
  const bool isUnit =
      !attribute.children.empty() && (attribute.children[0]->type == dg::AttributeType::Distance ||
                                      attribute.children[0]->type == dg::AttributeType::Angle);
  if (isTripleOf(attribute, "float"))
    return count == 2 ? MFn::kAttribute2Float : MFn::kAttribute3Float;
  if (isTripleOf(attribute, "double") && !isUnit)
    return count == 2   ? MFn::kAttribute2Double
           : count == 4 ? MFn::kAttribute4Double
                        : MFn::kAttribute3Double;
  if (isTripleOf(attribute, "double"))
    return count == 2 ? MFn::kAttribute2Double : MFn::kAttribute3Double;
  if (isTripleOf(attribute, "short"))
    return count == 2 ? MFn::kAttribute2Short : MFn::kAttribute3Short;
  return count == 2 ? MFn::kAttribute2Long : MFn::kAttribute3Long;
}

struct DataName {
  std::string_view name;
  MFn::Type type;
};
constexpr DataName kDataTypes[] = {
    {"mesh", MFn::kMeshData},
    {"nurbsCurve", MFn::kNurbsCurveData},
    {"matrix", MFn::kMatrixData},
    {"Int32Array", MFn::kIntArrayData},
    {"doubleArray", MFn::kDoubleArrayData},
    {"floatArray", MFn::kFloatArrayData},
    {"stringArray", MFn::kStringArrayData},
    {"vectorArray", MFn::kVectorArrayData},
    {"pointArray", MFn::kPointArrayData},
    {"matrixArray", MFn::kMatrixArrayData},
    {"componentList", MFn::kComponentListData},
    {"string", MFn::kStringData},
    {"UInt64Array", MFn::kUint64ArrayData},
    {"arrayAttrs", MFn::kDynArrayAttrsData},
    {"nurbsSurface", MFn::kNurbsSurfaceData},
};

}  // namespace

const char* fnTypeName(MFn::Type type) {
  static const char* const kNames[] = {
#define HOST_FN_NAME(name) #name,
      MAYA_FN_TYPES_(HOST_FN_NAME)
#undef HOST_FN_NAME
  };
  return type >= 0 && type < MFn::kLast ? kNames[type] : "kInvalid";
}

MFn::Type fnTypeOf(const dg::Node& node) {
  if (!node.type().pluginName.empty()) return pluginType(node.type());
  for (const dg::NodeType* type = &node.type(); type; type = typeBase(type)) {
    const auto found = typesByNode().find(type->name);
    if (found != typesByNode().end()) return found->second;
  }
  return MFn::kDependencyNode;
}

bool nodeHasFn(const dg::Node& node, MFn::Type type) {
  // All shapes with geometry of their own; locators and cameras have none.
  if (type == MFn::kGeometric) return node.type().isA("controlPoint");
  if (type == MFn::kDependencyNode || type == MFn::kNamedObject || type == fnTypeOf(node))
    return true;
  if (type == MFn::kSurface && node.type().isA("surfaceShape")) return true;
  for (const dg::NodeType* step = &node.type(); step; step = typeBase(step)) {
    const auto found = typesByNode().find(step->name);
    if (found != typesByNode().end() && found->second == type) return true;
  }
  return false;
}

MFn::Type fnTypeOf(const dg::Attribute& attribute) {
  using dg::AttributeType;
  switch (attribute.type) {
    case AttributeType::Distance:
      return MFn::kDoubleLinearAttribute;
    case AttributeType::Angle:
      return MFn::kDoubleAngleAttribute;
    case AttributeType::Time:
      return MFn::kTimeAttribute;
    case AttributeType::Enum:
      return MFn::kEnumAttribute;
    case AttributeType::String:
      return MFn::kTypedAttribute;
    case AttributeType::Typed:
      return MFn::kTypedAttribute;
    case AttributeType::Matrix:
      return MFn::kMatrixAttribute;
    case AttributeType::Message:
      return MFn::kMessageAttribute;
    case AttributeType::Generic:
      return MFn::kGenericAttribute;
    case AttributeType::Compound:
      return compoundFnType(attribute);
    default:
      return MFn::kNumericAttribute;
  }
}

MFn::Type fnTypeOf(scene::ComponentType type) {
  switch (type) {
    case scene::ComponentType::Vertex:
      return MFn::kMeshVertComponent;
    case scene::ComponentType::Edge:
      return MFn::kMeshEdgeComponent;
    case scene::ComponentType::Face:
      return MFn::kMeshPolygonComponent;
    case scene::ComponentType::Uv:
      return MFn::kMeshMapComponent;
    case scene::ComponentType::VertexFace:
      return MFn::kMeshVtxFaceComponent;
  }
  return MFn::kInvalid;
}

bool toComponentType(MFn::Type type, scene::ComponentType& result) {
  switch (type) {
    case MFn::kMeshVertComponent:
      result = scene::ComponentType::Vertex;
      return true;
    case MFn::kMeshEdgeComponent:
      result = scene::ComponentType::Edge;
      return true;
    case MFn::kMeshPolygonComponent:
      result = scene::ComponentType::Face;
      return true;
    case MFn::kMeshMapComponent:
      result = scene::ComponentType::Uv;
      return true;
    case MFn::kMeshVtxFaceComponent:
      result = scene::ComponentType::VertexFace;
      return true;
    default:
      return false;
  }
}

MFn::Type fnTypeOf(const dg::Data& data) {
  for (const DataName& entry : kDataTypes)
    if (entry.name == data.typeName()) return entry.type;
  if (dg::numericDataSize(data.typeName()) > 0) return MFn::kNumericData;
  return MFn::kPluginData;
}

bool dataHasFn(const dg::Data* data, MFn::Type type) {
  if (!data) return false;
  if (fnTypeOf(*data) == type) return true;
  // Function sets of shapes work on their data too.
  const bool isMesh = data->typeName() == "mesh", isCurve = data->typeName() == "nurbsCurve",
             isSurface = data->typeName() == "nurbsSurface";
  return (isMesh && type == MFn::kMesh) || (isCurve && type == MFn::kNurbsCurve) ||
         (isSurface && type == MFn::kNurbsSurface) ||
         ((isMesh || isCurve || isSurface) && type == MFn::kGeometryData);
}

}  // namespace host::api
