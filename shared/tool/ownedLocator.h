#pragma once

#include <maya/MObjectHandle.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

/// A locator of the module's that an interactive tool shows itself through. It is made and deleted
/// without a step of undo; selection, hilite list and the scene's other nodes stay as they are,
/// also one of the same name that is something else.
class ownedLocator {
 public:
  /// @param name the shape's; where the scene has it already the host makes another of it
  /// @param unmade what is told when the node can't be made
  ownedLocator(const MTypeId& type, const char* name, const char* unmade)
      : typeId(type), wantedName(name), unmadeMessage(unmade) {}

  /// Makes the node, and shows it in the first view too when that shows chosen objects only.
  bool create();
  /// Takes the node of the type and the name that the scene has. @return whether it has one
  bool takeOver();
  /// Deletes the node with the transform above it, which may be all that is left.
  void remove();
  /// Lets go of it, where a scene is about to take it along.
  void forget() { hold(MObject()); }

  bool isThere() const { return shape.isValid() && shape.isAlive(); }
  /// The shape; null without one.
  MObject node() const { return isThere() ? shape.object() : MObject(); }

 private:
  MObject make() const;
  void hold(const MObject& node);
  void showInIsolation(const MString& name) const;

  MTypeId typeId;
  const char* wantedName;
  const char* unmadeMessage;
  MObjectHandle shape, transform;
};

/// Whether two lists hold the same points in the same order, to the bit.
bool isSamePoints(const MPointArray& a, const MPointArray& b);
