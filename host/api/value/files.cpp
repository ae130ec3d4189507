#include <maya/MCommonSystemUtils.h>
#include <maya/MFileObject.h>

#include <cstdlib>
#include <filesystem>

MStatus MFileObject::setRawFullName(const MString& name) {
  fullName_ = name;
  return MStatus::kSuccess;
}
MStatus MFileObject::setRawName(const MString& name) {
  const MString path = rawPath();
  return setRawFullName(path.length() ? path + "/" + name : name);
}
MStatus MFileObject::setRawPath(const MString& path) {
  return setRawFullName(path + "/" + rawName());
}
MString MFileObject::rawName() const {
  return fullName_.substring(fullName_.rindex('/') + 1, static_cast<int>(fullName_.length()) - 1);
}
MString MFileObject::rawPath() const {
  return fullName_.substring(0, fullName_.rindex('/') - 1);
}
MString MFileObject::rawFullName() const {
  return fullName_;
}
MString MFileObject::resolvedName() const {
  return rawName();
}
MString MFileObject::resolvedPath() const {
  const MString full = resolvedFullName();
  return full.substring(0, full.rindex('/') - 1);
}
MString MFileObject::resolvedFullName() const {
  return isSet() ? fullName_.expandFilePath() : MString();
}
bool MFileObject::isSet() const {
  return fullName_.length() > 0;
}
bool MFileObject::exists() const {
  std::error_code error;
  return isSet() && std::filesystem::exists(resolvedFullName().asChar(), error);
}

MString MCommonSystemUtils::getEnv(const MString& variable, MStatus* status) {
  if (status) *status = MStatus::kSuccess;
  return MString(std::getenv(variable.asChar()));
}
MStatus MCommonSystemUtils::putEnv(const MString& variable, const MString& value) {
  return ::setenv(variable.asChar(), value.asChar(), 1) == 0 ? MStatus::kSuccess
                                                             : MStatus::kInvalidParameter;
}
MStatus MCommonSystemUtils::makeDirectory(const MString& path) {
  std::error_code error;
  std::filesystem::create_directories(path.asChar(), error);
  return error ? MStatus::kFailure : MStatus::kSuccess;
}
