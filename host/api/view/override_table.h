#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/api/core/access.h"

namespace host::api {

/// Whether what is registered for one draw classification draws nodes of another: itself and what
/// lies below it.
[[nodiscard]] inline bool coversClassification(std::string_view registered,
                                               std::string_view wanted) {
  if (wanted.substr(0, registered.size()) != registered) return false;
  return wanted.size() == registered.size() || wanted[registered.size()] == '/';
}

/// Overrides that plug-ins registered, by the classification of the nodes that they draw, and the
/// ones that were made for nodes.
/// @tparam Override the class that plug-ins derive from @tparam Kept what stays for each path
template <class Override, class Kept>
class OverrideTable {
 public:
  using Creator = Override* (*)(const MObject& object);
  /// A node's override and what it keeps for each of the node's paths.
  struct Live {
    ~Live() {
      // What was kept may be the override's own class of data, so it goes first.
      prepared.clear();
      drawOverride.reset();
    }
    dg::NodePtr node;
    std::unique_ptr<Override> drawOverride;
    std::map<std::string, std::unique_ptr<Kept>> prepared;  ///< by full path
  };
  struct Entry {
    std::string classification, registrant;
    Creator creator = nullptr;
    /// Made as nodes are first drawn; they go with the entry, as their code goes with its module.
    std::map<const dg::Node*, std::unique_ptr<Live>> live;
  };

  /// False when the pair is registered already.
  bool add(std::string classification, std::string registrant, Creator creator) {
    for (const auto& other : entries_)
      if (other->classification == classification && other->registrant == registrant) return false;
    auto entry = std::make_unique<Entry>();
    entry->classification = std::move(classification);
    entry->registrant = std::move(registrant);
    entry->creator = creator;
    entries_.push_back(std::move(entry));
    return true;
  }
  bool remove(std::string_view classification, std::string_view registrant) {
    return std::erase_if(entries_, [&](const std::unique_ptr<Entry>& entry) {
             return entry->classification == classification && entry->registrant == registrant;
           }) > 0;
  }
  /// The override for a node type's classification, which may list several, separated by ':'. An
  /// override registered for a path such as `drawdb/geometry/a` also draws what lies below it; the
  /// longest that fits wins.
  [[nodiscard]] Entry* find(std::string_view nodeClassification) {
    Entry* best = nullptr;
    while (!nodeClassification.empty()) {
      const std::size_t end = std::min(nodeClassification.find(':'), nodeClassification.size());
      const std::string_view one = nodeClassification.substr(0, end);
      for (const auto& entry : entries_)
        if (coversClassification(entry->classification, one) &&
            (!best || entry->classification.size() > best->classification.size()))
          best = entry.get();
      nodeClassification.remove_prefix(std::min(end + 1, nodeClassification.size()));
    }
    return best;
  }
  /// The override of a node, made on first use; null when none is registered for it or its creator
  /// made none.
  [[nodiscard]] Live* liveOf(dg::Node& node) {
    Entry* entry = find(node.type().classification);
    if (!entry) return nullptr;
    std::unique_ptr<Live>& live = entry->live[&node];
    if (!live) {
      live = std::make_unique<Live>();
      live->node = node.shared_from_this();
      live->drawOverride.reset(entry->creator(wrap(&node)));
    }
    return live->drawOverride ? live.get() : nullptr;
  }
  /// Lets go of the overrides of nodes that are no longer in the scene.
  void dropDead() {
    for (const auto& entry : entries_)
      std::erase_if(entry->live, [](const auto& item) { return !item.second->node->isAlive(); });
  }
  [[nodiscard]] bool isEmpty() const { return entries_.empty(); }

 private:
  std::vector<std::unique_ptr<Entry>> entries_;
};

}  // namespace host::api
