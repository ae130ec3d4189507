#pragma once

#include <maya/MDrawRegistry.h>
#include <maya/MPxDrawOverride.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/api/core/access.h"

namespace host::api {

/// The draw overrides that plug-ins registered, by the classification of the nodes that they draw.
class DrawRegistry {
 public:
  using Creator = MHWRender::MDrawRegistry::DrawOverrideCreator;
  /// A node's override and what it prepared for each of the node's paths.
  struct Live {
    ~Live();
    dg::NodePtr node;
    std::unique_ptr<MHWRender::MPxDrawOverride> drawOverride;
    std::map<std::string, std::unique_ptr<MUserData>> prepared;  ///< by full path
  };
  struct Entry {
    std::string classification, registrant;
    Creator creator = nullptr;
    /// Made as nodes are first drawn; they go with the entry, as their code goes with its module.
    std::map<const dg::Node*, std::unique_ptr<Live>> live;
  };

  /// False when the pair is registered already.
  bool add(std::string classification, std::string registrant, Creator creator);
  bool remove(std::string_view classification, std::string_view registrant);
  /// The override for a node type's classification, which may list several, separated by ':'. An
  /// override registered for a path such as `drawdb/geometry/a` also draws what lies below it; the
  /// longest that fits wins.
  [[nodiscard]] Entry* find(std::string_view nodeClassification);
  /// The override of a node, made on first use; null when none is registered for it or its creator
  /// made none.
  [[nodiscard]] Live* liveOf(dg::Node& node);
  /// Lets go of the overrides of nodes that are no longer in the scene.
  void dropDead();
  [[nodiscard]] bool isEmpty() const { return entries_.empty(); }

 private:
  std::vector<std::unique_ptr<Entry>> entries_;
};

/// The process's registry: creators live in modules, not in sessions.
[[nodiscard]] DrawRegistry& drawRegistry();

}  // namespace host::api
