#pragma once

#include <maya/MDrawRegistry.h>

#include <string>
#include <string_view>
#include <vector>

namespace host::api {

/// The draw overrides that plug-ins registered, by the classification of the nodes that they draw.
class DrawRegistry {
 public:
  using Creator = MHWRender::MDrawRegistry::DrawOverrideCreator;
  struct Entry {
    std::string classification, registrant;
    Creator creator = nullptr;
  };

  /// False when the pair is registered already.
  bool add(Entry entry);
  bool remove(std::string_view classification, std::string_view registrant);
  /// The override for a node type's classification, which may list several, separated by ':'. An override registered
  /// for a path such as `drawdb/geometry/a` also draws what lies below it; the longest that fits wins.
  [[nodiscard]] const Entry* find(std::string_view nodeClassification) const;
  /// Changes with every registration, so that whoever made overrides knows when theirs are out of date.
  [[nodiscard]] unsigned generation() const { return generation_; }

 private:
  std::vector<Entry> entries_;
  unsigned generation_ = 0;
};

/// The process's registry: creators live in modules, not in sessions.
[[nodiscard]] DrawRegistry& drawRegistry();

}  // namespace host::api
