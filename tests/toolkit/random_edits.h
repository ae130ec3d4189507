#pragma once

#include <maya/MDGMessage.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MGlobal.h>
#include <maya/MMessage.h>
#include <maya/MPlug.h>

#include <random>
#include <string>
#include <vector>

#include "host/base/messages.h"
#include "host/cmd/session.h"

/// Edits a scene at random, as a person with scripts and plug-ins would, and holds undo and redo to
/// the document's hash. The same seed makes the same edits.
///
/// Some stretches run with undo off, some inside chunks, some with callbacks that edit along. Where
/// a record no longer fits, undo must refuse it and leave the document as it is, whoever edits
/// along. Where it fits, redo must give back exactly what was there before; but for callbacks that
/// edit along once more, and for plug-ins' commands after edits that nobody recorded: what undoIt
/// and redoIt make of those is the plug-in's. Every other seed does without such commands.
class randomEdits {
 public:
  struct Counts {
    long edits = 0, undone = 0, redone = 0, refused = 0;
  };

  /// @param comparesHashes false: undo and redo must only do their work, in half the time
  randomEdits(host::cmd::Session& sessionIn, unsigned seed, bool comparesHashes = true)
      : session_(sessionIn),
        random_(seed),
        usesPlugins_(seed % 2 == 0),
        comparesHashes_(comparesHashes) {}
  ~randomEdits() { stopCallbacks(); }
  randomEdits(const randomEdits&) = delete;
  randomEdits& operator=(const randomEdits&) = delete;

  /// A sentence about the first promise that was broken; empty while all hold.
  [[nodiscard]] const std::string& fault() const { return fault_; }
  [[nodiscard]] const Counts& counts() const { return counts_; }
  [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }

  /// One edit, or one look at undo.
  void step() {
    const int what = pick(100);
    if (what < 4)
      toggleUndo();
    else if (what < 7)
      run(isChunkOpen_ ? "undoInfo -cck" : "undoInfo -ock"), isChunkOpen_ = !isChunkOpen_;
    else if (what < 9)
      toggleCallbacks();
    else if (what < 22)
      goBackAndForth(1 + pick(6));
    else if (what < 26)
      wander();
    else
      edit();
    if (session_.document().graph().nodes().size() > 300 || isHeavy()) {
      run("file -f -new");
      isMixed_ = isOff_ || ids_.length() > 0;
      hasPlugins_ = false;
    }
    checkLinks();
  }
  /// Leaves nothing open.
  void finish() {
    stopCallbacks();
    run("undoInfo -cck; undoInfo -swf on");
    goBackAndForth(1000);
  }

 private:
  int pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  /// Smoothing what was smoothed makes four times as many faces each time.
  bool isHeavy() {
    if (!hasSmoothed_) return false;
    hasSmoothed_ = false;
    for (const auto& node : session_.document().graph().nodes())
      if (node->type().isA("mesh") &&
          host::scene::componentCount(host::scene::firstPath(*node),
                                      host::scene::ComponentType::Face) > 5000)
        return true;
    return false;
  }
  double number() { return pick(41) / 4.0 - 5.0; }
  std::uint64_t hash() const { return comparesHashes_ ? session_.document().hash() : 0; }
  void fail(const std::string& what) {
    if (fault_.empty()) fault_ = what;
  }

  void run(const std::string& line) {
    lines_.push_back(line);
    hasSmoothed_ = hasSmoothed_ || line.find("mooth") != std::string::npos ||
                   line.find("Subdivide") != std::string::npos;
    const host::MessageCapture quiet;
    (void)session_.executeLine(line);
  }

  std::string object(const char* type) {
    std::vector<std::string> names;
    for (const auto& node : session_.document().graph().nodes())
      if (!node->isDefault() && node->type().isA(type))
        names.push_back(host::scene::isDagNode(*node) ? host::scene::firstPath(*node).fullName()
                                                      : node->name());
    return names.empty() ? "none"
                         : names[static_cast<std::size_t>(pick(static_cast<int>(names.size())))];
  }
  std::string mesh() { return object("mesh"); }
  std::string transform() { return object("transform"); }
  std::string name() {
    static const char* const names[] = {"A", "B1", "C", "group#", "part", "Ashape"};
    return names[pick(6)];
  }
  std::string component(const char* kind) {
    const int first = pick(12);
    return mesh() + "." + kind + "[" + std::to_string(first) + ":" +
           std::to_string(first + pick(5)) + "]";
  }

  std::string primitive() {
    static const char* const all[] = {
        "polyCube -n ",       "polyPlane -sx 3 -sy 3 -n ",    "polySphere -sx 5 -sy 4 -n ",
        "polyCube -ch 0 -n ", "polyCylinder -sx 5 -sh 2 -n ", "polyTorus -sx 4 -sy 4 -n "};
    return all[pick(6)] + name();
  }
  std::string hierarchy() {
    switch (pick(9)) {
      case 0:
        return "group -n " + name() + " " + transform() + " " + transform();
      case 1:
        return "parent " + transform() + " " + transform();
      case 2:
        return "parent -w " + transform();
      case 3:
        return "instance " + transform();
      case 4:
        return "duplicate " + transform();
      case 5:
        return "rename " + transform() + " " + name();
      case 6:
        return "reorder -r " + std::to_string(pick(5) - 2) + " " + transform();
      case 7:
        return "ungroup " + transform();
      default:
        return "delete " + (pick(2) ? transform() : mesh());
    }
  }
  std::string modelling() {
    switch (pick(14)) {
      case 0:
        return "polyExtrudeFacet -ltz " + std::to_string(number()) + " " + component("f");
      case 1:
        return "polySoftEdge -a " + std::to_string(pick(181)) + " " + mesh();
      case 2:
        return "polyTriangulate " + component("f");
      case 3:
        return "polyBevel -o 0.1 " + component("e");
      case 4:
        return "polyUnite " + transform() + " " + transform();
      case 5:
        return "polyMergeVertex -d 0.3 " + component("vtx");
      case 6:
        return "move -r 0.1 " + std::to_string(number()) + " 0 " + component("vtx");
      case 7:
        return "delete -ch " + transform();
      case 8:
        return "delete " + component("f");
      case 9:
        return "polySplitRing " + component("e");
      case 10:
        return "polySmooth " + mesh();
      case 11:
        return "polySeparate " + mesh();
      case 12:
        return "polySubdivideFacet " + component("f");
      default:
        return "polyEditUV -u 0.1 " + component("map");
    }
  }
  std::string values() {
    static const char* const plugs[] = {"tx", "ry", "sz", "visibility", "rotatePivotX"};
    const std::string plug = transform() + "." + plugs[pick(5)];
    switch (pick(12)) {
      case 0:
        return "connectAttr -f " + transform() + ".tx " + plug;
      case 1:
        return "disconnectAttr " + transform() + ".tx " + plug;
      case 2:
        return "addAttr -ln extra" + std::to_string(pick(3)) + " -at double " +
               (pick(2) ? "-m " : "") + transform();
      case 3:
        return "deleteAttr " + transform() + ".extra" + std::to_string(pick(3));
      case 4:
        return "setAttr " + transform() + ".extra0[" + std::to_string(pick(4)) + "] " +
               std::to_string(number());
      case 5:
        return "setAttr -l " + std::to_string(pick(2)) + " " + plug;
      case 6:
        return "setAttr -k 0 " + plug;
      case 7:
        return "lockNode -l " + std::to_string(pick(2)) + " " + transform();
      case 8:
        return "delete " + object("polyModifier");
      case 9:
        return "aliasAttr al" + std::to_string(pick(3)) + " " + transform() + ".extra0";
      case 10:
        return "connectAttr -f " + transform() + ".ty " + transform() + ".extra1[" +
               std::to_string(pick(3)) + "]";
      default:
        return "setAttr " + plug + " " + std::to_string(number());
    }
  }
  std::string selecting() {
    switch (pick(6)) {
      case 0:
        return "select -cl";
      case 1:
        return "select " + component("vtx");
      case 2:
        return "hilite " + transform();
      case 3:
        return "sets -n S " + transform();
      case 4:
        return "currentUnit -l " + std::string(pick(2) ? "cm" : "m");
      default:
        return "select -tgl " + transform();
    }
  }
  std::string pluginCommand() {
    // Undo of a smooth shows its object, whatever was before: only what is shown is smoothed.
    const std::string object = transform();
    const std::string selected = "catch(`setAttr " + object + ".visibility 1`); catch(`setAttr " +
                                 object + ".intermediateObject 0`); select -r " + object + "; ";
    switch (pick(5)) {
      case 0:
        return selected + "qxESmoothCmd";
      case 1:
        return "select -r " + component("vtx") + "; qxMakePlanarCmd";
      case 2:
        return "select -r " + component("vtx") + "; qxMergeVerts";
      case 3:
        return "select -r " + component("vtx") + "; qxCircleVertsCmd";
      default:
        return selected + "qxESmoothCmd; group " + transform();
    }
  }

  void edit() {
    std::string line;
    switch (pick(12)) {
      case 0:
      case 1:
        line = primitive();
        break;
      case 2:
      case 3:
      case 4:
        line = hierarchy();
        break;
      case 5:
      case 6:
      case 7:
        line = modelling();
        break;
      case 8:
      case 9:
        line = values();
        break;
      case 10:
        line = selecting();
        break;
      default:
        line = usesPlugins_ ? pluginCommand() : modelling();
        hasPlugins_ = hasPlugins_ || usesPlugins_;
    }
    const auto& queue = session_.undo();
    const std::size_t items = queue.itemCount(), unrecorded = queue.unrecordedCount();
    const std::uint64_t before = hash();
    ++counts_.edits;
    run(line);
    const bool isOneStep = queue.itemCount() == items + 1 &&
                           queue.unrecordedCount() == unrecorded && ids_.length() == 0 &&
                           !isChunkOpen_;
    if (!isOneStep || pick(3) != 0) return;
    const std::uint64_t after = hash();
    if (!undo() || hash() != before) fail("undo of '" + line + "' is not exact");
    if (!redo() || hash() != after) fail("redo of '" + line + "' is not exact");
  }

  bool undo() {
    const host::MessageCapture quiet;
    const bool isDone = session_.dispatcher().undo().has_value();
    ++(isDone ? counts_.undone : counts_.refused);
    lines_.emplace_back("undo");
    return isDone;
  }
  bool redo() {
    const host::MessageCapture quiet;
    const bool isDone = session_.dispatcher().redo().has_value();
    ++(isDone ? counts_.redone : counts_.refused);
    lines_.emplace_back("redo");
    return isDone;
  }

  /// Some steps back and the same forth again, through the same states.
  void goBackAndForth(int count) {
    const bool isOwn = !(isMixed_ && hasPlugins_);
    const bool isExact = isOwn && ids_.length() == 0;
    std::vector<std::uint64_t> hashes = {hash()};
    for (int i = 0; i < count && session_.undo().canUndo(); ++i) {
      const std::string name = session_.undo().undoName();
      if (undo())
        hashes.push_back(hash());
      else if (isOwn && hash() != hashes.back())
        fail("the refused undo of '" + name + "' changed the scene");
    }
    while (hashes.size() > 1 && session_.undo().canRedo()) {
      const std::string name = session_.undo().redoName();
      const std::uint64_t before = hash();
      const bool isDone = redo();
      hashes.pop_back();
      if (isOwn && !isDone && hash() != before)
        fail("the refused redo of '" + name + "' changed the scene");
      if (isExact && (!isDone || hash() != hashes.back()))
        fail("redo of '" + name + "' did not give back what undo took");
      if (!fault_.empty()) return;
    }
  }
  /// Back and somewhere else from there.
  void wander() {
    for (int i = pick(4); i >= 0 && session_.undo().canUndo(); --i) (void)undo();
    if (pick(2)) (void)redo();
  }

  void toggleUndo() {
    isOff_ = !isOff_;
    isMixed_ = true;
    run(isOff_ ? "undoInfo -swf off" : "undoInfo -swf on");
  }

  // Callbacks that edit along, unrecorded and recorded.
  static void onAdded(MObject& node, void*) {
    MFnDependencyNode made(node);
    MPlug height = made.findPlug("translateY", true);
    if (!height.isNull()) height.setDouble(0.5);
  }
  static void onRemoved(MObject& node, void* self) {
    auto& edits = *static_cast<randomEdits*>(self);
    (void)MFnDependencyNode(node).name();
    if (++edits.nesting_ == 1 && edits.pick(4) == 0)
      MGlobal::executeCommand(("delete " + edits.transform()).c_str(), false, edits.pick(2) == 0);
    --edits.nesting_;
  }
  void toggleCallbacks() {
    if (ids_.length() > 0) {
      stopCallbacks();
      return;
    }
    lines_.emplace_back("callbacks on");
    isMixed_ = true;
    ids_.append(MDGMessage::addNodeAddedCallback(onAdded));
    ids_.append(MDGMessage::addNodeRemovedCallback(onRemoved, "dependNode", this));
  }
  void stopCallbacks() {
    if (ids_.length() == 0) return;
    lines_.emplace_back("callbacks off");
    MMessage::removeCallbacks(ids_);
    ids_.clear();
  }

  /// Both lists of every link must name each other, and what is selected must be there.
  void checkLinks() {
    using namespace host::scene;
    Document& document = session_.document();
    for (const auto& node : document.graph().nodes()) {
      if (!isDagNode(*node)) continue;
      if (dagLinks(*node).parents.empty()) fail("'" + node->name() + "' hangs nowhere");
      for (Node* parent : dagLinks(*node).parents) {
        const auto& children = parent ? dagLinks(*parent).children : document.worldChildren();
        if (std::count(children.begin(), children.end(), node.get()) != 1)
          fail("'" + node->name() + "' is not a child of its parent");
      }
    }
    for (const SelectionItem& item : document.selection().items())
      if (!item.node->isAlive()) fail("'" + item.node->name() + "' is selected and deleted");
  }

  host::cmd::Session& session_;
  std::mt19937 random_;
  Counts counts_;
  std::string fault_;
  std::vector<std::string> lines_;
  MCallbackIdArray ids_;
  bool isOff_ = false, isChunkOpen_ = false;
  bool isMixed_ = false;  ///< edits that nobody recorded lie in between
  bool hasSmoothed_ = false;
  bool hasPlugins_ = false;  ///< commands of plug-ins lie in between
  const bool usesPlugins_, comparesHashes_;
  int nesting_ = 0;
};
