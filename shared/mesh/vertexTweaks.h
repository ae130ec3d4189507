#pragma once

#include <maya/MPlug.h>
#include <maya/MStatus.h>

#include <string>
#include <vector>

class MDagPath;
class MIntArray;
class MObject;

/// The offset of one vertex, cm.
struct vertexTweak {
  int vertex;
  double offset[3];
};

/// The offsets that a mesh shape (`pnts`) or a tweak node (`tweak`) adds to its vertices.
class tweakPlugs {
 public:
  /// An array of triples, of the node with that name.
  tweakPlugs(const MPlug& array, const std::string& name) : plug(array), nameOfArray(name) {}
  static tweakPlugs ofShape(const MDagPath& shape);
  static tweakPlugs ofNode(const MObject& tweakNode);

  /// All that are not zero, by vertex.
  std::vector<vertexTweak> read() const;
  /// All that are there, zero or not, by vertex.
  std::vector<vertexTweak> readAll() const;
  /// Those that are there for some vertices (any order), zero or not, by vertex. Costs the number
  /// of tweaks and of vertices.
  std::vector<vertexTweak> readOf(const MIntArray& vertices) const;

  /// Sets the offsets through the host's commands, in the unit that it works in, so that they come
  /// out exactly as they are given.
  MStatus set(const std::vector<vertexTweak>& tweaks) const;
  MStatus setToZero(const std::vector<vertexTweak>& tweaks) const;
  /// Sets them through their plugs alone, for who has lost no undo by that.
  MStatus restore(const std::vector<vertexTweak>& tweaks) const;
  /// Takes the elements away.
  MStatus remove(const std::vector<vertexTweak>& tweaks) const;

 private:
  vertexTweak at(int vertex) const;

  MPlug plug;
  std::string nameOfArray;
};
