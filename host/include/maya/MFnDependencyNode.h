#pragma once

#include <maya/MFnBase.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>

class MExternalContentInfoTable;
class MPxNode;
class MStringArray;

/// Works on nodes of the dependency graph.
class MFnDependencyNode : public MFnBase {
 public:
  enum MAttrClass { kLocalDynamicAttr = 1, kNormalAttr, kExtensionAttr, kInvalidAttr };

  MFnDependencyNode() = default;
  MFnDependencyNode(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kDependencyNode; }

  MObject create(const MTypeId& typeId, MStatus* status = nullptr);
  MObject create(const MTypeId& typeId, const MString& name, MStatus* status = nullptr);
  MObject create(const MString& type, MStatus* status = nullptr);
  MObject create(const MString& type, const MString& name, MStatus* status = nullptr);
  MTypeId typeId(MStatus* status = nullptr) const;
  MString typeName(MStatus* status = nullptr) const;
  MString name(MStatus* status = nullptr) const;
  MString absoluteName(MStatus* status = nullptr) const;
  MString uniqueName(MStatus* status = nullptr) const;
  bool hasUniqueName(MStatus* status = nullptr) const;
  /// Renames the node and returns the name it got.
  MString setName(const MString& name, MStatus* status = nullptr);
  MString setName(const MString& name, bool createNamespace, MStatus* status = nullptr);
  MString pluginName(MStatus* status = nullptr) const;
  static MString classification(const MString& nodeTypeName);

  MStatus getConnections(MPlugArray& plugs) const;
  unsigned int attributeCount(MStatus* status = nullptr) const;
  MObject attribute(unsigned int index, MStatus* status = nullptr) const;
  MObject attribute(const MString& name, MStatus* status = nullptr) const;
  MObject reorderedAttribute(unsigned int index, MStatus* status = nullptr) const;
  MAttrClass attributeClass(const MObject& attribute, MStatus* status = nullptr) const;
  bool hasAttribute(const MString& name, MStatus* status = nullptr) const;
  MStatus getAffectedAttributes(const MObject& attribute, class MObjectArray& affected) const;
  MStatus getAffectedByAttributes(const MObject& attribute, class MObjectArray& affecting) const;
  MPlug findPlug(const MObject& attribute, bool wantNetworkedPlug, MStatus* status = nullptr) const;
  MPlug findPlug(const MObject& attribute, MStatus* status = nullptr) const;
  MPlug findPlug(const MString& name, bool wantNetworkedPlug, MStatus* status = nullptr) const;
  MPlug findPlug(const MString& name, MStatus* status = nullptr) const;
  MStatus addAttribute(const MObject& attribute, MAttrClass type = kLocalDynamicAttr);
  MStatus removeAttribute(const MObject& attribute, MAttrClass type = kLocalDynamicAttr);

  bool setAlias(const MString& alias, const MString& name, const MPlug& plug, bool add = true,
                MStatus* status = nullptr);
  bool getAliasList(MStringArray& aliases, MStatus* status = nullptr);
  bool findAlias(const MString& alias, MObject& attribute, MStatus* status = nullptr) const;
  MString plugsAlias(const MPlug& plug, MStatus* status = nullptr);

  /// Returns the plug-in's own object behind a node of its type; null for the host's nodes.
  MPxNode* userNode(MStatus* status = nullptr) const;
  bool isFromReferencedFile(MStatus* status = nullptr) const;
  bool isDefaultNode(MStatus* status = nullptr) const;
  bool isShared(MStatus* status = nullptr) const;
  bool isLocked(MStatus* status = nullptr) const;
  MStatus setLocked(bool locked);
  bool isNewAttribute(const MObject& attribute, MStatus* status = nullptr) const;
  bool canBeWritten(MStatus* status = nullptr) const;
  MStatus setDoNotWrite(bool flag);
  MString icon(MStatus* status = nullptr) const;
  MStatus setIcon(const MString& filename);
};
