#include "host/nodes/anim/anim_curve.h"
#include "host/nodes/anim/constraints.h"
#include "host/nodes/camera_node.h"
#include "host/nodes/curve/curve_nodes.h"
#include "host/nodes/curve/surface_nodes.h"
#include "host/nodes/dag_node.h"
#include "host/nodes/history/blend_shape.h"
#include "host/nodes/history/cluster.h"
#include "host/nodes/history/history_node.h"
#include "host/nodes/history/lattice.h"
#include "host/nodes/history/modifiers.h"
#include "host/nodes/history/skin_cluster.h"
#include "host/nodes/history/tweak.h"
#include "host/nodes/joint.h"
#include "host/nodes/light_nodes.h"
#include "host/nodes/locator_node.h"
#include "host/nodes/math/math_nodes.h"
#include "host/nodes/mesh_node.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/scene_nodes.h"
#include "host/nodes/set_nodes.h"
#include "host/nodes/shading_nodes.h"
#include "host/nodes/transform.h"
#include "host/nodes/unknown_nodes.h"

namespace host::nodes {

void registerBuiltinTypes(dg::TypeRegistry& types) {
  registerDagBaseTypes(types);
  registerTransform(types);
  registerMesh(types);
  registerCamera(types);
  registerLocator(types);
  registerLights(types);
  registerSetNodes(types);
  registerShadingNodes(types);
  registerSceneNodes(types);
  registerUnknownNodes(types);
  registerHistoryBaseTypes(types);
  registerPolyTweak(types);
  registerDeleteComponent(types);
  registerTransformGeometry(types);
  registerNamedSetNodes(types);
  registerGroupNodes(types);
  registerDeformers(types);
  registerTweak(types);
  registerBlendShape(types);
  registerCluster(types);
  registerLattices(types);
  registerSkinCluster(types);
  registerAnimCurves(types);
  registerCurveNodes(types);
  registerSurfaceNodes(types);
  registerCurveInfoNodes(types);
  registerMatrixNodes(types);
  registerNumberNodes(types);
  registerJoint(types);
  registerConstraints(types);
}

}  // namespace host::nodes
