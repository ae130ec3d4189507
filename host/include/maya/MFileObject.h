#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

/// A file name, as given and as found.
class MFileObject {
 public:
  MFileObject() = default;

  MStatus setRawFullName(const MString& name);
  MStatus setRawName(const MString& name);
  MStatus setRawPath(const MString& path);
  MStatus setFullName(const MString& name) { return setRawFullName(name); }
  MString rawName() const;
  MString rawPath() const;
  MString rawFullName() const;
  MString resolvedName() const;
  MString resolvedPath() const;
  MString resolvedFullName() const;
  MString expandedFullName() const { return resolvedFullName(); }
  MString name() const { return resolvedName(); }
  MString path() const { return resolvedPath(); }
  MString fullName() const { return resolvedFullName(); }
  bool isSet() const;
  bool exists() const;

 private:
  MString fullName_;
};
