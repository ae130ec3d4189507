#include <maya/MFileIO.h>

#include "host/api/core/access.h"
#include "host/base/messages.h"
#include "host/builtins/file/scene_files.h"
#include "host/cmd/session.h"
#include "host/workspace/workspace.h"

namespace {

using namespace host;

using Work = workspace::SceneHooks::Work;

Work work() {
  return workspace::workspaceOf(cmd::currentSession()).sceneHooks.work;
}

builtins::FileRequest request(const MString& path, const char* type, bool force = false) {
  builtins::FileRequest request{.path = api::toStd(path), .isForced = force};
  if (type) request.type = type;
  return request;
}

/// Runs a work on files as the `file` command would: one step, its fault a message as well.
template <class Work>
MStatus runFile(const Work& work) {
  cmd::Session& session = cmd::currentSession();
  cmd::Context context{session, session.document()};
  const auto done = session.dispatcher().recordStep("file", [&]() -> Result<void> {
    HOST_TRY(work(context));
    return {};
  });
  if (!done) postMessage(MessageKind::Error, done.error().message);
  return api::toStatus(done);
}

}  // namespace

MString MFileIO::currentFile() {
  const std::string& name = api::document().fileName();
  return api::toMString(name.empty() ? "untitled" : name);
}
MStatus MFileIO::setCurrentFile(const MString& fileName) {
  cmd::Context context{cmd::currentSession(), api::document()};
  (void)builtins::renameScene(context, api::toStd(fileName));
  return MStatus::kSuccess;
}
MString MFileIO::fileType() {
  cmd::Context context{cmd::currentSession(), api::document()};
  return api::toMString(builtins::fileType(context));
}
MStatus MFileIO::newFile(bool force) {
  return runFile([&](cmd::Context& context) { return builtins::newScene(context, force); });
}
MStatus MFileIO::open(const MString& fileName, const char* type, bool force) {
  return runFile([&](cmd::Context& context) {
    return builtins::openScene(context, request(fileName, type, force));
  });
}
MStatus MFileIO::save(bool force) {
  return runFile([&](cmd::Context& context) {
    return builtins::saveScene(context, request(MString(), nullptr, force));
  });
}
MStatus MFileIO::saveAs(const MString& fileName, const char* type, bool force) {
  const std::string before = api::document().fileName();
  MStatus status = setCurrentFile(fileName);
  status = runFile([&](cmd::Context& context) {
    return builtins::saveScene(context, request(MString(), type, force));
  });
  if (!status) api::document().setFileName(before);
  return status;
}
MStatus MFileIO::importFile(const MString& fileName, const char* type, bool,
                            const char* nameSpace) {
  builtins::FileRequest wanted = request(fileName, type);
  if (nameSpace) wanted.nameSpace = nameSpace;
  return runFile([&](cmd::Context& context) { return builtins::importFile(context, wanted); });
}
MStatus MFileIO::exportSelected(const MString& fileName, const char* type, bool) {
  return runFile([&](cmd::Context& context) {
    return builtins::exportScene(context, request(fileName, type, true), true);
  });
}
MStatus MFileIO::exportAll(const MString& fileName, const char* type, bool) {
  return runFile([&](cmd::Context& context) {
    return builtins::exportScene(context, request(fileName, type, true), false);
  });
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
