#include <fmt/format.h>
#include <maya/MFileIO.h>

#include "host/api/core/access.h"
#include "host/cmd/session.h"
#include "host/workspace/workspace.h"

namespace {

using namespace host;

using Work = workspace::SceneHooks::Work;

Work work() {
  return workspace::workspaceOf(cmd::currentSession()).sceneHooks.work;
}

std::string quoted(const MString& text) {
  std::string result = "\"";
  for (const char each : api::toStd(text)) {
    if (each == '"' || each == '\\') result += '\\';
    result += each;
  }
  return result + "\"";
}

/// Files are read and written by the `file` command, which knows the formats.
MStatus runFile(const std::string& flags, const MString& name, const char* type) {
  const std::string typeFlag = type ? " -type " + quoted(type) : std::string();
  const auto done = cmd::currentSession().executeLine(
      "file " + flags + typeFlag + (name.length() > 0 ? " " + quoted(name) : std::string()));
  return api::toStatus(done);
}

}  // namespace

MString MFileIO::currentFile() {
  const std::string& name = api::document().fileName();
  return api::toMString(name.empty() ? "untitled" : name);
}
MStatus MFileIO::setCurrentFile(const MString& fileName) {
  return runFile("-rename " + quoted(fileName), "", nullptr);
}
MString MFileIO::fileType() {
  const auto type =
      cmd::currentSession().executeLine("file -q -type", {.undo = false, .postErrors = false});
  return type && !type->toTexts().empty() ? api::toMString(type->toTexts().front()) : MString();
}
MStatus MFileIO::newFile(bool force) {
  return runFile(force ? "-new -force" : "-new", "", nullptr);
}
MStatus MFileIO::open(const MString& fileName, const char* type, bool force) {
  return runFile(force ? "-open -force" : "-open", fileName, type);
}
MStatus MFileIO::save(bool force) {
  return runFile(force ? "-save -force" : "-save", "", nullptr);
}
MStatus MFileIO::saveAs(const MString& fileName, const char* type, bool force) {
  const MString before = api::toMString(api::document().fileName());
  MStatus status = setCurrentFile(fileName);
  if (!status) return status;
  status = runFile(force ? "-save -force" : "-save", "", type);
  if (!status) api::document().setFileName(api::toStd(before));
  return status;
}
MStatus MFileIO::importFile(const MString& fileName, const char* type, bool,
                            const char* nameSpace) {
  const std::string space = nameSpace ? " -namespace " + quoted(nameSpace) : std::string();
  return runFile("-import" + space, fileName, type);
}
MStatus MFileIO::exportSelected(const MString& fileName, const char* type, bool) {
  return runFile("-exportSelected -force", fileName, type);
}
MStatus MFileIO::exportAll(const MString& fileName, const char* type, bool) {
  return runFile("-exportAll -force", fileName, type);
}
bool MFileIO::isReadingFile() {
  return work() == Work::Importing || work() == Work::Opening;
}
bool MFileIO::isWritingFile() {
  return work() == Work::Writing;
}
bool MFileIO::isOpeningFile() {
  return work() == Work::Opening;
}
bool MFileIO::isNewingFile() {
  return work() == Work::NewScene;
}
