#include "host/app/tour.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "host/app/options.h"

namespace host::app {
namespace {

/// Tries it: what permissions promise is not what every file system keeps.
bool canWriteInto(const std::filesystem::path& folder) {
  const std::filesystem::path trial = folder / ".qxmt-tour";
  const bool isWritten = std::ofstream(trial).put(' ').flush().good();
  std::error_code ignored;
  std::filesystem::remove(trial, ignored);
  return isWritten;
}

}  // namespace

int runTour(cmd::Session& session, const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    std::fprintf(stderr, "qxmt: the folder %s can't be made: %s\n", folder.c_str(),
                 error.message().c_str());
    return kFileFailed;
  }
  if (!canWriteInto(folder)) {
    std::fprintf(stderr, "qxmt: nothing can be written into the folder %s\n", folder.c_str());
    return kFileFailed;
  }
  if (!session.executeFile("qxmt_tour.mel")) return kScriptFailed;
  const auto done = session.call("qxmtTour_QXMT_Proc", std::vector{mel::Value(folder)});
  return done ? kDone : kScriptFailed;
}

}  // namespace host::app
