#include "host/scene/document.h"

#include <algorithm>

#include "host/base/assert.h"
#include "host/scene/dag_paths.h"
#include "host/scene/document_impl.h"
#include "host/scene/namespaces.h"

namespace host::scene {

namespace {

Document* theDocument = nullptr;

std::vector<Document*>& liveDocuments() {
  // Never destroyed: a document may end with the program.
  static std::vector<Document*>& documents = *new std::vector<Document*>;
  return documents;
}

/// Whether the nodes of an item are there. They need not hang together as its path has it: what
/// moved away from under a list moves back with the step that moved it.
bool isThere(const SelectionItem& item) {
  return item.node->isAlive() && std::ranges::all_of(item.path.upwards(), &Node::isAlive);
}

/// Keeps the value that is not current, so that a record costs one copy.
///
/// A list that comes back may name nodes that are not there yet, or not any more: what they are
/// part of is taken back first, and only then the lists are swept.
template <class T, class Swap>
class SwapChange final : public dg::Change {
 public:
  SwapChange(T other, Swap swap) : other_(std::move(other)), swap_(std::move(swap)) {}
  Result<void> undo() override { return replay(); }
  Result<void> redo() override { return replay(); }
  [[nodiscard]] std::size_t bytes() const override { return sizeof(*this) + extraBytes(other_); }

 private:
  Result<void> replay() {
    swap_(other_);
    return {};
  }
  static std::size_t extraBytes(const Units&) { return 0; }
  static std::size_t extraBytes(const SelectionList& list) { return list.bytes(); }
  T other_;
  Swap swap_;
};
template <class T, class Swap>
std::unique_ptr<dg::Change> makeSwapChange(T other, Swap swap) {
  return std::make_unique<SwapChange<T, Swap>>(std::move(other), std::move(swap));
}

}  // namespace

Document* documentOf(const dg::Graph& graph) {
  for (Document* document : liveDocuments())
    if (&document->graph() == &graph) return document;
  return nullptr;
}

Document& currentDocument() {
  HOST_ASSERT(theDocument, "setCurrentDocument() comes before any command");
  return *theDocument;
}
void setCurrentDocument(Document* document) {
  theDocument = document;
}

Document::Document(dg::TypeRegistry& types) : types_(types), impl_(std::make_unique<Impl>(*this)) {
  graph_.addObserver(impl_.get());
  graph_.setRecorder(&journal_);
  graph_.mayReplay = [this](const Node& node, dg::Graph::Replay what, const std::string& name) {
    return impl_->mayReplay(node, what, name);
  };
  liveDocuments().push_back(this);
}

Document::~Document() {
  std::erase(liveDocuments(), this);
  for (const dg::NodePtr& node : graph_.nodes()) forgetParents(*node);
  if (theDocument == this) theDocument = nullptr;
  graph_.removeObserver(impl_.get());
  setCurrentNamespace(*this, {});
}

void Document::addObserver(DocumentObserver* observer) {
  impl_->observers.push_back(observer);
}
void Document::removeObserver(DocumentObserver* observer) {
  std::erase(impl_->observers, observer);
}

void Document::setSelection(SelectionList list) {
  if (list == selection_) return;
  std::swap(selection_, list);
  const auto announce = [this] {
    impl_->notify([](DocumentObserver& observer) { observer.selectionChanged(); });
  };
  if (journal_.isRecording())
    journal_.record(makeSwapChange(std::move(list), [this, announce](SelectionList& other) {
      std::swap(selection_, other);
      announce();
    }));
  announce();
}

void Document::setHilite(SelectionList list) {
  if (list == hilite_) return;
  std::swap(hilite_, list);
  const auto announce = [this] {
    impl_->notify([](DocumentObserver& observer) { observer.hiliteChanged(); });
  };
  if (journal_.isRecording())
    journal_.record(makeSwapChange(std::move(list), [this, announce](SelectionList& other) {
      std::swap(hilite_, other);
      announce();
    }));
  announce();
}

void Document::setUnits(const Units& units) {
  if (units == units_) return;
  Units old = units_;
  units_ = units;
  isModified_ = true;
  const auto announce = [this] {
    impl_->notify([](DocumentObserver& observer) { observer.unitsChanged(); });
  };
  if (journal_.isRecording())
    journal_.record(makeSwapChange(std::move(old), [this, announce](Units& other) {
      std::swap(units_, other);
      announce();
    }));
  announce();
}

/// What was selected before and after nodes went.
class Document::Sweep final : public dg::Change {
 public:
  struct Lists {
    SelectionList selection, hilite;
  };
  explicit Sweep(Document& document)
      : document_(document), before_{document.selection_, document.hilite_}, after_(before_) {
    after_.selection = after_.selection.filtered(isThere);
    after_.hilite = after_.hilite.filtered(isThere);
  }
  [[nodiscard]] bool changesNothing() const {
    return before_.selection == after_.selection && before_.hilite == after_.hilite;
  }
  /// Before the step that is to bring the nodes back: nobody is told of lists that name what is not
  /// there yet. A list that somebody changed since stays.
  Result<void> undo() override {
    if (document_.selection_ == after_.selection) document_.selection_ = before_.selection;
    if (document_.hilite_ == after_.hilite) document_.hilite_ = before_.hilite;
    return {};
  }
  Result<void> redo() override {
    const Journal::Scope unrecorded(document_.journal_, nullptr);
    document_.setSelection(document_.selection_.filtered(isThere));
    document_.setHilite(document_.hilite_.filtered(isThere));
    return {};
  }

 private:
  Document& document_;
  Lists before_, after_;
};

std::unique_ptr<dg::Change> Document::sweepSelection() {
  if (std::ranges::all_of(selection_.items(), isThere) &&
      std::ranges::all_of(hilite_.items(), isThere))
    return nullptr;
  auto sweep = std::make_unique<Sweep>(*this);
  if (sweep->changesNothing()) return nullptr;
  (void)sweep->redo();
  return sweep;
}

void Document::reset() {
  const Journal::Scope unrecorded(journal_, nullptr);
  setCurrentNamespace(*this, {});
  impl_->notify([](DocumentObserver& observer) { observer.cleared(true); });
  selection_.clear();
  hilite_.clear();
  // The lists go first: the graph then takes its nodes out one by one without a hierarchy to keep
  // right.
  impl_->worldChildren.clear();
  impl_->names.clear();
  graph_.clear();
  impl_->worldChildren.clear();
  impl_->names.clear();
  units_ = {};
  fileName_.clear();
  fileInfo.clear();
  if (populateNewScene) populateNewScene(*this);
  isModified_ = false;
  impl_->notify([](DocumentObserver& observer) { observer.cleared(false); });
}

void Document::Impl::record(std::unique_ptr<dg::Change> change) {
  if (document.journal_.isRecording()) document.journal_.record(std::move(change));
}

void Document::Impl::nodeAdded(Node& node) {
  names.add(node, node.name());
  if (!node.dagExtension && node.type().isA("dagNode")) {
    auto links = std::make_unique<DagLinks>();
    links->isTransform = node.type().isA("transform");
    links->isShape = node.type().isA("shape");
    node.dagExtension = std::move(links);
  }
  document.isModified_ = true;
}

void Document::Impl::nodeRemoved(Node& node) {
  forgetParents(node);
  names.remove(node, node.name());
  document.isModified_ = true;
}

void Document::Impl::nodeRenamed(Node& node, const std::string& oldName) {
  names.remove(node, oldName);
  names.add(node, node.name());
  document.isModified_ = true;
}

void Document::Impl::attributeEvent(dg::AttributeEvent event, const dg::Plug&, const dg::Plug&) {
  if (event != dg::AttributeEvent::Evaluated) document.isModified_ = true;
}

}  // namespace host::scene
