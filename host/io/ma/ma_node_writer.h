#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/dg/graph.h"
#include "host/scene/units.h"

namespace host::io {

/// The attribute path that a scene file names a plug by, without a leading dot: short names,
/// compounds that are no arrays left out where that is clear.
[[nodiscard]] std::string filePath(const dg::Plug& plug);

/// Writes what one node holds, as the statements that give a new node the same: dynamic attributes,
/// values that differ from the type's, elements of arrays, switches, aliases.
class MaNodeWriter {
 public:
  /// `fresh` is what the node is in a new scene, null for nodes that such a scene does not have:
  /// values that differ from it are written as well.
  MaNodeWriter(dg::Graph& graph, const scene::Units& units, dg::Node& node, const dg::Node* fresh);

  /// Leaves out attributes, by their top-level long name.
  void leaveOut(std::string_view attribute) { leftOut_.emplace(attribute); }
  /// Writes a leaf or a tuple also when it is at its default.
  void force(const dg::Plug& plug) { forced_.insert(plug); }
  /// What a plug is called in the file; none: it is not in there. Empty: all are, as they are.
  std::function<std::optional<dg::Plug>(const dg::Plug&)> inFile;
  /// Numbers that are not finite are written as 0.
  void write(std::string& out);
  /// The first plug with such a number; empty when there was none.
  [[nodiscard]] const std::string& notFinite() const { return fault_; }
  /// A plug whose data nobody knows how to write; empty when there was none.
  [[nodiscard]] const std::string& lost() const { return lost_; }

 private:
  void addAttribute(std::string& out, const dg::Attribute& attribute,
                    const dg::Attribute* parent) const;
  void visit(const dg::Plug& plug);
  void visitArray(const dg::Plug& array);
  void visitElement(const dg::Plug& element);
  bool writePacked(const dg::Plug& array, const std::vector<Index>& indices);
  void visitCompound(const dg::Plug& plug);
  void visitLeaf(const dg::Plug& plug, bool isForced);
  bool writeWhole(const dg::Plug& plug, bool isForced);

  [[nodiscard]] bool holdsValues(const dg::Attribute& attribute) const;
  [[nodiscard]] bool isWired(const dg::Plug& plug) const { return wired_.count(plug) != 0; }
  [[nodiscard]] bool differs(const dg::Plug& leaf, const dg::Value& value) const;
  [[nodiscard]] std::string switches(const dg::Plug& plug) const;
  bool appendValue(std::string& text, const dg::Attribute& leaf, const dg::Value& value);
  void appendLeafNumber(std::string& text, const dg::Attribute& leaf, double number);
  void noteAlias(const dg::Plug& plug);
  void line(const std::string& switchWords, const dg::Plug& plug, const std::string& value);

  dg::Graph& graph_;
  scene::Units units_;
  dg::Node& node_;
  dg::Node* fresh_;
  std::unordered_set<dg::Plug, dg::PlugHash> wired_;   ///< plugs at or above which a connection is
  std::unordered_set<dg::Plug, dg::PlugHash> driven_;  ///< the same, of connections that arrive
  std::unordered_set<std::string> leftOut_;
  std::unordered_set<dg::Plug, dg::PlugHash> forced_;
  std::string out_, aliases_;
  std::string fault_, lost_;
};

}  // namespace host::io
