#pragma once

#include <maya/MFnBase.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>

/// Works on attributes: the flags that all of them have.
class MFnAttribute : public MFnBase {
 public:
  enum DisconnectBehavior { kDelete, kReset, kNothing };

  MFnAttribute() = default;
  MFnAttribute(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kAttribute; }

  MString name(MStatus* status = nullptr) const;
  MString shortName(MStatus* status = nullptr) const;
  MObject parent(MStatus* status = nullptr) const;
  MStatus setParent(const MObject& parent);
  MString niceNameOverride(MStatus* status = nullptr) const;
  MStatus setNiceNameOverride(const MString& name);
  MStatus addToCategory(const MString& category);
  bool hasCategory(const MString& category) const;
  MStatus getCategories(MStringArray& categories) const;

  bool isReadable(MStatus* status = nullptr) const;
  bool isWritable(MStatus* status = nullptr) const;
  bool isConnectable(MStatus* status = nullptr) const;
  bool isStorable(MStatus* status = nullptr) const;
  bool isCached(MStatus* status = nullptr) const;
  bool isArray(MStatus* status = nullptr) const;
  bool indexMatters(MStatus* status = nullptr) const;
  bool isKeyable(MStatus* status = nullptr) const;
  bool isChannelBoxFlagSet(MStatus* status = nullptr) const;
  bool isHidden(MStatus* status = nullptr) const;
  bool isUsedAsColor(MStatus* status = nullptr) const;
  bool isUsedAsFilename(MStatus* status = nullptr) const;
  bool isIndeterminant(MStatus* status = nullptr) const;
  bool isRenderSource(MStatus* status = nullptr) const;
  bool isDynamic(MStatus* status = nullptr) const;
  bool isExtension(MStatus* status = nullptr) const;
  bool isWorldSpace(MStatus* status = nullptr) const;
  bool isAffectsWorldSpace(MStatus* status = nullptr) const;
  bool affectsAppearance(MStatus* status = nullptr) const;
  bool internal(MStatus* status = nullptr) const;
  bool usesArrayDataBuilder(MStatus* status = nullptr) const;
  DisconnectBehavior disconnectBehavior(MStatus* status = nullptr) const;
  bool accepts(const MObject& attribute, MStatus* status = nullptr) const;

  MStatus setReadable(bool state);
  MStatus setWritable(bool state);
  MStatus setConnectable(bool state);
  MStatus setStorable(bool state);
  MStatus setCached(bool state);
  MStatus setArray(bool state);
  MStatus setIndexMatters(bool state);
  MStatus setKeyable(bool state);
  MStatus setChannelBox(bool state);
  MStatus setHidden(bool state);
  MStatus setUsedAsColor(bool state);
  MStatus setUsedAsFilename(bool state);
  MStatus setIndeterminant(bool state);
  MStatus setRenderSource(bool state);
  MStatus setWorldSpace(bool state);
  MStatus setAffectsWorldSpace(bool state);
  MStatus setAffectsAppearance(bool state);
  MStatus setInternal(bool state);
  MStatus setUsesArrayDataBuilder(bool state);
  MStatus setDisconnectBehavior(DisconnectBehavior behavior);
  MStatus setCacheByDefault(bool state) { return setCached(state); }

  MString getAddAttrCmd(bool useLongNames = false, MStatus* status = nullptr) const;
  MStatus getAddAttrCmds(MStringArray& commands, bool useLongNames = false) const;
};
