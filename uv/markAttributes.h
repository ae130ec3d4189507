#pragma once

#include <maya/MStatus.h>

class MDGModifier;
class MIntArray;
class MObject;
class MPlug;

/// The attributes of a mesh shape that is loaded for UV marking. Other tools and saved scenes know
/// them by these names.
namespace markAttributes {

/// One of them.
struct name {
  const char* longName;
  const char* shortName;
};
constexpr name kLocatorMessage{"qxUvSelLocatorMessage", "qxuvSelLocatorMessage"};
constexpr name kMarkedEdges{"qxUvMarkedEdgeArray", "qxuvMarkedEdgeArray"};
constexpr name kAncorPoints{"qxUvAncorPointArray", "qxuvAncorPointArray"};
constexpr name kEdgeSelection{"qxEdgeSelectionArray", "qxedgeSelectionArray"};
constexpr name kVertSelection{"qxVertSelectionArray", "qxvertSelectionArray"};

/// Queues the addition of those that the shape does not have yet. A failure is shown.
MStatus addTo(const MObject& shape, MDGModifier& modifier);
/// Queues the removal of those that the shape has, with what they hold and what they are connected
/// to. A failure is shown.
MStatus removeFrom(const MObject& shape, MDGModifier& modifier);

/// Whether a shape has an attribute.
bool has(const MObject& shape, const name& attribute);
/// The plug of an attribute; a null plug when the shape does not have it.
MPlug plugOf(const MObject& shape, const name& attribute);
/// The indices that one of the four arrays holds, in the order they were written; none when the
/// shape does not have it or nothing was ever written.
MIntArray indicesIn(const MObject& shape, const name& attribute);
/// Writes one of the four arrays, at once and past any undo but the caller's own.
/// @return failure when the shape does not have it; after "error creating a new MObject from a
///     intArray" when the data can't be made
MStatus writeIndices(const MObject& shape, const name& attribute, const MIntArray& indices);

}  // namespace markAttributes
