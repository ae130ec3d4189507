#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "host/io/ma/ma_file.h"
#include "host/scene/references.h"

namespace host::io {

/// What a scene file needs of whoever looks after references.
struct MaReferenceKeeper {
  /// Makes the reference node, called `name`, and what the file brings, if it is there. Null when
  /// not even the node could be made.
  std::function<dg::Node*(const MaReference& reference, const std::string& name)> load;
  /// Takes what the scene changes of it, with the units of its numbers. Each is made, or kept till
  /// it can be.
  std::function<void(dg::Node& reference, std::vector<scene::ReferenceEdit> edits,
                     const scene::Units& units)>
      edit;
  /// The plug that a place holder stands for; null while its file is not loaded.
  std::function<dg::Plug(const dg::Node& reference, int placeHolder)> behind;
  /// Keeps a connection for when the file is loaded.
  std::function<void(dg::Node& reference, scene::OutsideConnection connection)> keep;
};

/// The number in "phl[3]" or "placeHolderList[3]"; -1 for other attributes.
[[nodiscard]] int placeHolderNumber(std::string_view path);

/// The words of `setAttr ".ed" -type "dataReferenceEdits"`.
[[nodiscard]] std::vector<scene::ReferenceEdit> readReferenceEdits(std::span<const MaToken> words);
/// The same as a statement. `reference` is the name of the node that it is for.
void appendReferenceEdits(std::string& out, std::string_view reference,
                          std::span<const scene::ReferenceEdit> edits);
/// One edit as the command that it stands for, for people: `setAttr |a:b.tx 5`.
[[nodiscard]] std::string editString(const scene::ReferenceEdit& edit);
/// The plugs or nodes that an edit is about.
[[nodiscard]] std::vector<std::string> editTargets(const scene::ReferenceEdit& edit);

struct AppliedEdits {
  std::vector<scene::ReferenceEdit> failed;  ///< what they name is not there, or refuses
  std::map<int, dg::Plug> placeHolders;      ///< plugs of the file that connections lead to
};
/// Makes edits of what a reference brought. `outer` is the namespace that names in the edits are
/// within.
[[nodiscard]] AppliedEdits applyReferenceEdits(scene::Document& document, dg::Node& reference,
                                               std::span<const scene::ReferenceEdit> edits,
                                               const scene::Units& units, std::string_view outer);

/// Notes what the members of a reference are like, to tell later what was changed of them. A copy
/// of what they hold that differs from their types' defaults; meshes share their arrays.
[[nodiscard]] std::shared_ptr<const void> referenceBaseline(
    scene::Document& document, const std::vector<std::weak_ptr<dg::Node>>& members);

struct ReferenceDifferences {
  std::vector<scene::ReferenceEdit> edits;
  std::vector<scene::OutsideConnection> outside;
  std::vector<std::string> warnings;  ///< changes that no edit can say
};
/// What differs from the baseline of a loaded reference, and what could not be made when it was
/// loaded. Linear in what the file brought.
[[nodiscard]] ReferenceDifferences referenceDifferences(scene::Document& document,
                                                        dg::Node& reference);

}  // namespace host::io
