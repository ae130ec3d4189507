#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/dg/node.h"
#include "host/dg/plug.h"

namespace host::io {

/// What scene files said that the document has no place for, so that saving does not lose it: the
/// types of unknown nodes, attributes and connections that are not known here, whole statements.
/// Refers to nodes without keeping them; what is about a node goes with it.
class MaKept {
 public:
  struct Node {
    std::weak_ptr<dg::Node> node;
    std::string type;                ///< of an unknown node
    std::vector<std::string> lines;  ///< statements without semicolon
  };
  struct Connection {
    std::weak_ptr<dg::Node> source, destination;
    std::string sourcePath, destinationPath;  ///< attributes, as written
    bool toNextAvailable = false;             ///< the destination is any free element
  };

  /// A connection that stands in for the one that leaves an unknown node.
  struct Pass {
    std::weak_ptr<dg::Node> sourceNode, destinationNode;
    dg::Plug source, destination;
    std::size_t connection = 0;  ///< the one of the file, among `connections`
  };

  [[nodiscard]] Node& of(dg::Node& node);
  [[nodiscard]] const Node* find(const dg::Node& node) const;

  void clear() { *this = MaKept(); }

  std::vector<std::string> requirements;  ///< `requires` statements, each once
  std::vector<std::string> early, late;   ///< before and after all nodes
  std::vector<std::string> selected;      ///< blocks for nodes that are made by themselves
  std::vector<Connection> connections;
  std::vector<Pass> passes;

 private:
  std::unordered_map<const dg::Node*, Node> nodes_;
};

}  // namespace host::io
