#pragma once

#include <functional>
#include <map>
#include <string>

#include "host/builtins/common/command.h"
#include "host/io/mtl.h"
#include "host/io/obj_scene.h"

namespace host::builtins {

/// The materials that the libraries of an OBJ file state, by name. Libraries stand in the file's
/// own folder; what is missing, or leads out of the folder, is told by a warning.
[[nodiscard]] std::map<std::string, io::MtlMaterial> readObjMaterials(const io::ObjScene& scene,
                                                                      const std::string& path);

/// Makes nodes of materials as objects ask for them, one network a name, and puts faces into their
/// shading groups.
class ObjShading {
 public:
  /// `nodeName` gives a node of an imported file its name.
  ObjShading(scene::Document& document, std::map<std::string, io::MtlMaterial> materials,
             std::string folder, std::function<std::string(const std::string&)> nodeName)
      : document_(document),
        materials_(std::move(materials)),
        folder_(std::move(folder)),
        nodeName_(std::move(nodeName)) {}

  /// Puts the faces of a new shape where the object says: into shading groups by material, those
  /// without one into initialShadingGroup, and into a set for each group that names a part.
  Result<void> assign(dg::Node& shape, const io::ObjObject& object);

 private:
  Result<dg::Node*> groupOf(const std::string& name);
  Result<dg::Node*> setOf(const std::string& name);
  Result<dg::Node*> makeMaterial(const std::string& name);
  /// A file texture of a map, placed; none for an empty path and for one that is refused.
  Result<dg::Node*> makePicture(const dg::Node& shader, const std::string& map,
                                const std::string& suffix);
  Result<void> addPictures(dg::Node& shader, const io::MtlMaterial& material);

  scene::Document& document_;
  std::map<std::string, io::MtlMaterial> materials_;
  std::string folder_;
  std::function<std::string(const std::string&)> nodeName_;
  std::map<std::string, dg::Node*> groups_, sets_;
};

/// Fills in groups and materials of an object that is to be written from the sets of its shape, and
/// adds the materials to `library`. `folder` is where the file will be: pictures in it are named by
/// the way from there.
Result<void> describeShading(scene::Document& document, const scene::DagPath& shape,
                             const std::string& folder, io::ObjObject& object,
                             std::map<std::string, io::MtlMaterial>& library);

}  // namespace host::builtins
