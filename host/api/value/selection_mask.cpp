#include <maya/MSelectionMask.h>

#include <string_view>

namespace {

using Mask = MSelectionMask;

/// A pick type as scripts name it. The order is also that of picking: of two hits the later entry
/// wins.
struct TypeName {
  Mask::SelectionType type;
  std::string_view name;
};
constexpr TypeName kTypeNames[] = {{Mask::kSelectHandles, "handle"},
                                   {Mask::kSelectIkHandles, "ikHandle"},
                                   {Mask::kSelectJoints, "joint"},
                                   {Mask::kSelectLights, "light"},
                                   {Mask::kSelectCameras, "camera"},
                                   {Mask::kSelectLattices, "lattice"},
                                   {Mask::kSelectClusters, "cluster"},
                                   {Mask::kSelectSculpts, "sculpt"},
                                   {Mask::kSelectNonlinears, "nonlinear"},
                                   {Mask::kSelectCurves, "curve"},
                                   {Mask::kSelectNurbsCurves, "nurbsCurve"},
                                   {Mask::kSelectNurbsSurfaces, "nurbsSurface"},
                                   {Mask::kSelectMeshes, "polymesh"},
                                   {Mask::kSelectSubdiv, "subdiv"},
                                   {Mask::kSelectParticleShapes, "particleShape"},
                                   {Mask::kSelectDimensions, "dimension"},
                                   {Mask::kSelectLocators, "locator"},
                                   {Mask::kSelectTextures, "texture"},
                                   {Mask::kSelectPlugins, "plugin"},
                                   {Mask::kSelectMeshUVs, "polymeshUV"},
                                   {Mask::kSelectMeshFaces, "facet"},
                                   {Mask::kSelectMeshEdges, "edge"},
                                   {Mask::kSelectVertexFaces, "vertexFace"},
                                   {Mask::kSelectMeshVerts, "vertex"},
                                   {Mask::kSelectHulls, "hull"},
                                   {Mask::kSelectEditPoints, "editPoint"},
                                   {Mask::kSelectCVs, "controlVertex"},
                                   {Mask::kSelectRotatePivots, "rotatePivot"},
                                   {Mask::kSelectScalePivots, "scalePivot"}};

bool isObjectType(int type) {
  return type <= Mask::kSelectTextureMaps || type == Mask::kSelectTemplates ||
         type == Mask::kSelectPlugins;
}
bool isComponentType(int type) {
  return (type >= Mask::kSelectCVs && type <= Mask::kSelectPointsForGravity) ||
         type == Mask::kSelectVertexFaces;
}

}  // namespace

MSelectionMask::MSelectionMask(const MString& selTypeName) {
  for (const TypeName& entry : kTypeNames)
    if (entry.name == selTypeName.asChar()) addMask(entry.type);
}

bool MSelectionMask::intersects(const MSelectionMask& mask, MStatus* status) const {
  if (status) *status = MStatus::kSuccess;
  return (bits_ & mask.bits_).any();
}

bool MSelectionMask::intersects(SelectionType type, MStatus* status) const {
  return intersects(MSelectionMask(type), status);
}

MStatus MSelectionMask::setMask(SelectionType type) {
  bits_.reset();
  return addMask(type);
}

MStatus MSelectionMask::addMask(SelectionType type) {
  if (type < 0 || type >= kSelectTypeLast) return MStatus::kInvalidParameter;
  for (int i = 0; i < kSelectTypeLast; ++i)
    if (i == type || (type == kSelectObjectsMask && isObjectType(i)) ||
        (type == kSelectComponentsMask && isComponentType(i)))
      bits_.set(static_cast<std::size_t>(i));
  return MStatus::kSuccess;
}

MSelectionMask MSelectionMask::operator|(const MSelectionMask& other) const {
  return MSelectionMask(*this) |= other;
}

MSelectionMask& MSelectionMask::operator|=(const MSelectionMask& other) {
  bits_ |= other.bits_;
  return *this;
}

MSelectionMask& MSelectionMask::operator|=(SelectionType type) {
  addMask(type);
  return *this;
}

int MSelectionMask::getSelectionTypePriority(const MString& selTypeName) {
  int priority = 0;
  for (const TypeName& entry : kTypeNames) {
    ++priority;
    if (entry.name == selTypeName.asChar()) return priority;
  }
  return 0;
}
