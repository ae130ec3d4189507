#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/scene/document.h"

namespace host::scene {

/// One thing that a scene changes of what a file brings, as scene files write it.
struct ReferenceEdit {
  /// The numbers that scene files tell the kinds apart by.
  enum Kind { Parent = 0, AddAttr = 1, SetAttr = 2, Disconnect = 3, DeleteAttr = 4, Connect = 5 };
  std::string reference;  ///< the reference node of the file that the node comes from
  int kind = SetAttr;     ///< also numbers that are not known here, which are kept
  int form = -1;          ///< of Connect: which ends are in the file; 0 both, 3 the source,
                          ///< 4 the destination
  std::vector<std::string> words;  ///< node and attribute, or two plugs, then the rest
  friend bool operator==(const ReferenceEdit&, const ReferenceEdit&) = default;
};

/// A connection between a node of the scene and a place holder of a reference.
struct OutsideConnection {
  int placeHolder = 0;  ///< number in the reference node's list
  std::weak_ptr<Node> node;
  std::string path;         ///< attribute of the scene's node, as files write it
  bool leavesFile = false;  ///< the source is in the file
  std::string own = {};     ///< the plug in the file; empty while that is not loaded
};

/// What a `reference` node stands for. Changed by putting another one into the node, so that undo
/// brings back the one before.
class ReferenceData final : public dg::Data {
 public:
  struct Fields {
    std::string written;       ///< the file, as a person or a scene named it
    std::string file;          ///< absolute; empty when there is no such file
    std::string ownNamespace;  ///< as written, without that of the file around it
    std::string nameSpace;     ///< of its nodes, from the root; empty: the root itself
    std::string prefix;        ///< before names, in place of a namespace
    std::string options, type;
    std::vector<std::string> shared;  ///< kinds of nodes that it was to share; kept for its file
    bool isLoaded = false;
    bool isDeferred = false;                   ///< not loaded because somebody wanted it so
    std::weak_ptr<Node> parent;                ///< reference node of the file that has this one
    std::vector<std::weak_ptr<Node>> members;  ///< all nodes it brought, deeper files' included
    std::shared_ptr<const void> baseline;      ///< what they were like, for whoever saves edits
    std::vector<ReferenceEdit> edits;        ///< not made: not loaded, or what they are for is gone
    std::vector<OutsideConnection> outside;  ///< likewise
  };
  explicit ReferenceData(Fields fieldsIn) : fields(std::move(fieldsIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "referenceState"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override { return this == &other; }
  const Fields fields;
};

/// What a reference node stands for; null for other nodes, and for one that stands for nothing.
[[nodiscard]] std::shared_ptr<const ReferenceData> referenceData(const Node& node);
/// Recorded.
Result<void> setReferenceData(Node& node, ReferenceData::Fields fields);

/// The reference node of the file that a node comes from; null for the scene's own. Constant time.
[[nodiscard]] Node* referenceOf(const Node& node);
void setReferenceOf(Node& node, Node& reference);
/// Of references in references the outermost.
[[nodiscard]] Node* topReferenceOf(const Node& node);
/// The reference nodes of the scene, those in referenced files included.
[[nodiscard]] std::vector<Node*> references(const Document& document);

/// While one lives, nodes of referenced files may be deleted: their file is being let go.
class ReferenceRelease {
 public:
  ReferenceRelease();
  ~ReferenceRelease();
  ReferenceRelease(const ReferenceRelease&) = delete;
  ReferenceRelease& operator=(const ReferenceRelease&) = delete;
};
[[nodiscard]] bool isReleasing();
/// Whether a node is kept from being deleted and renamed by the file that it comes from.
[[nodiscard]] bool isReadOnly(const Node& node);

}  // namespace host::scene
