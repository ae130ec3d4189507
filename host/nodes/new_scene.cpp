#include "host/base/assert.h"
#include "host/nodes/mesh_shape.h"

namespace host::nodes {

namespace {

using dg::Node;
using dg::Value;
using math::Vec3;
using scene::Document;

constexpr double kRadiansPerDegree = 0.017453292519943295;

/// Makes the nodes of a new scene; a failure here is a fault of the tables below.
class SceneMaker {
 public:
  explicit SceneMaker(Document& document) : document_(document) {}

  Node& make(std::string_view type, std::string_view name, Node* parent = nullptr) {
    auto node = document_.createNode(type, name, parent);
    HOST_ASSERT(node, "a default node has a registered type");
    (*node)->markDefault();
    return **node;
  }
  void set(Node& node, std::string_view attribute, const Value& value) {
    check(document_.graph().set(plug(node, attribute), value));
  }
  void setVec3(Node& node, std::string_view attribute, const Vec3& value) {
    check(document_.graph().setVec3(plug(node, attribute), value));
  }
  void connect(Node& source, std::string_view from, Node& destination, std::string_view to) {
    check(document_.graph().connect(plug(source, from), plug(destination, to)));
  }
  void makeCamera(const std::string& name, const Vec3& translate, const Vec3& degrees,
                  double orthographicWidth);

 private:
  dg::Plug plug(Node& node, std::string_view attribute) {
    const auto found = dg::parsePlug(node, attribute);
    HOST_ASSERT(found, "a default node is given attributes that its type has");
    return *found;
  }
  static void check(const Result<void>& result) {
    HOST_ASSERT(result, "the tables of default nodes are wrong");
  }

  Document& document_;
};

void SceneMaker::makeCamera(const std::string& name, const Vec3& translate, const Vec3& degrees,
                            double orthographicWidth) {
  Node& transform = make("transform", name);
  Node& shape = make("camera", name + "Shape", &transform);
  setVec3(transform, "translate", translate);
  setVec3(transform, "rotate", degrees * kRadiansPerDegree);
  set(transform, "visibility", std::int64_t{0});
  set(shape, "visibility", std::int64_t{0});
  set(shape, "imageName", name);
  set(shape, "depthName", name + "_depth");
  set(shape, "maskName", name + "_mask");
  set(shape, "homeCommand",
      name == "persp" ? std::string("viewSet -p %camera")
                      : "viewSet -" + name.substr(0, 1) + " %camera");
  if (orthographicWidth > 0) {
    set(shape, "renderable", std::int64_t{0});
    set(shape, "orthographic", std::int64_t{1});
    set(shape, "orthographicWidth", orthographicWidth);
    set(shape, "centerOfInterest", 100.1);
  } else {
    set(shape, "centerOfInterest", math::length(translate));
  }
}

void makeCameras(SceneMaker& scene) {
  scene.makeCamera("persp", {28, 21, 28}, {-27.938352729602379, 45, 0}, 0);
  scene.makeCamera("top", {0, 100.1, 0}, {-90, 0, 0}, 30);
  scene.makeCamera("front", {0, 0, 100.1}, {0, 0, 0}, 30);
  scene.makeCamera("side", {100.1, 0, 0}, {0, 90, 0}, 30);
}

void makeShading(SceneMaker& scene) {
  Node& partition = scene.make("partition", "renderPartition");
  scene.make("renderGlobalsList", "renderGlobalsList1");
  scene.make("defaultRenderUtilityList", "defaultRenderUtilityList1");
  scene.make("renderingList", "defaultRenderingList1");
  scene.make("lightList", "lightList1");
  Node& shaders = scene.make("shaderList", "defaultShaderList1");
  scene.make("postProcessList", "postProcessList1");
  scene.make("defaultTextureList", "defaultTextureList1");
  Node& lambert = scene.make("lambert", "lambert1");
  Node& cloud = scene.make("particleCloud", "particleCloud1");
  Node& shadingGroup = scene.make("shadingEngine", "initialShadingGroup");
  Node& particles = scene.make("shadingEngine", "initialParticleSE");
  Node& info = scene.make("materialInfo", "initialMaterialInfo");
  Node& linker = scene.make("lightLinker", "lightLinker1");
  Node& lights = scene.make("objectSet", "defaultLightSet");
  scene.make("objectSet", "defaultObjectSet");
  for (Node* group : {&shadingGroup, &particles})
    scene.set(*group, "renderableOnlySet", std::int64_t{1});
  scene.connect(lambert, "outColor", shadingGroup, "surfaceShader");
  scene.connect(lambert, "outColor", particles, "surfaceShader");
  scene.connect(cloud, "outColor", particles, "volumeShader");
  scene.connect(shadingGroup, "partition", partition, "sets[0]");
  scene.connect(particles, "partition", partition, "sets[1]");
  scene.connect(lambert, "message", shaders, "shaders[0]");
  scene.connect(cloud, "message", shaders, "shaders[1]");
  scene.connect(shadingGroup, "message", info, "shadingGroup");
  scene.connect(lambert, "message", info, "material");
  int link = 0;
  for (Node* group : {&shadingGroup, &particles}) {
    const std::string index = "[" + std::to_string(link++) + "].";
    scene.connect(lights, "message", linker, "link" + index + "light");
    scene.connect(*group, "message", linker, "link" + index + "object");
    scene.connect(lights, "message", linker, "shadowLink" + index + "shadowLight");
    scene.connect(*group, "message", linker, "shadowLink" + index + "shadowObject");
  }
}

void makeSettings(SceneMaker& scene) {
  Node& globals = scene.make("renderGlobals", "defaultRenderGlobals");
  Node& resolution = scene.make("resolution", "defaultResolution");
  scene.make("renderQuality", "defaultRenderQuality");
  scene.connect(resolution, "message", globals, "resolution");
  scene.make("hardwareRenderGlobals", "hardwareRenderGlobals");
  scene.make("hardwareRenderingGlobals", "hardwareRenderingGlobals");
  scene.make("viewColorManager", "defaultViewColorManager");
  scene.make("colorManagementGlobals", "defaultColorMgtGlobals");
  scene.make("partition", "characterPartition");
  scene.make("renderDOF", "dof1");
  scene.make("strokeGlobals", "strokeGlobals");
  Node& layers = scene.make("displayLayerManager", "layerManager");
  Node& layer = scene.make("displayLayer", "defaultLayer");
  scene.connect(layers, "displayLayerId[0]", layer, "identification");
  Node& renderLayers = scene.make("renderLayerManager", "renderLayerManager");
  Node& renderLayer = scene.make("renderLayer", "defaultRenderLayer");
  scene.set(renderLayer, "global", std::int64_t{1});
  scene.connect(renderLayers, "renderLayerId[0]", renderLayer, "identification");
}

}  // namespace

void installNewScene(Document& document) {
  document.populateNewScene = [](Document& fresh) {
    SceneMaker scene(fresh);
    scene.make("time", "time1");
    scene.make("sequenceManager", "sequenceManager1");
    makeShading(scene);
    makeSettings(scene);
    makeCameras(scene);
  };
}

}  // namespace host::nodes
