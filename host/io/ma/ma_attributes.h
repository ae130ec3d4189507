#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/io/ma/ma_file.h"
#include "host/scene/document.h"

namespace host::io {

/// Writes the lines of one node into it: dynamic attributes, values, switches. Locks wait until
/// `lock`, since connections come after the lines.
class MaAttributes {
 public:
  /// A line that could not be used. Without a reason the node has no such attribute.
  struct Unused {
    std::size_t offset = 0;
    std::string_view raw, path;
    std::string reason;
  };
  using Report = std::function<void(Unused)>;
  MaAttributes(scene::Document& document, const scene::Units& units, Report report)
      : document_(document), units_(units), report_(std::move(report)) {}

  void apply(dg::Node& node, const std::vector<MaLine>& lines);
  void lock();
  void lockLater(const dg::Plug& plug) { locks_.push_back(plug); }

  /// Whether a node stands for one of a type that is not there.
  [[nodiscard]] static bool isUnknown(const dg::Node& node);

 private:
  /// Elements of one array that came in several statements.
  struct Run {
    dg::Plug array;
    std::vector<Index> indices;
    std::vector<double> values;
  };
  struct PendingCompound {
    dg::AttributePtr attribute;
    std::size_t childCount = 0;
  };

  void apply(dg::Node& node, const MaSetAttr& line);
  void apply(dg::Node& node, const MaAddAttr& line);
  Result<void> setAliases(dg::Node& node, const MaSetAttr& line);
  void setSwitches(const dg::Plug& plug, const MaSetAttr& line);
  Result<void> write(const dg::Plug& plug, Index first, Index last, const MaSetAttr& line);
  Result<bool> addToRun(const dg::Plug& array, Index first, Index last, const MaSetAttr& line);
  Result<void> flush();
  Result<void> writeNumbers(const dg::Plug& plug, const std::vector<MaToken>& tokens,
                            std::size_t& next);
  Result<dg::Value> leafValue(const dg::Attribute& leaf, const MaToken& token) const;
  Result<void> addAttribute(dg::Node& node, const MaAddAttr& line);

  scene::Document& document_;
  scene::Units units_;
  Report report_;
  std::vector<dg::Plug> locks_;
  Run run_;
  std::vector<PendingCompound> pending_;  ///< the first one holds the others
  /// Components that lists may still name: a few words must not fill the memory.
  std::size_t componentBudget_ = std::size_t{1} << 27;
};

/// A payload as `setAttr -type` writes it. Takes what component lists name off the budget, and
/// fails beyond it and for types that are not known.
[[nodiscard]] Result<dg::Value> readPayload(std::string_view type,
                                            const std::vector<MaToken>& tokens,
                                            std::size_t& componentBudget);

}  // namespace host::io
