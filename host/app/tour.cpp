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

int runTour(cmd::Session& session, std::span<const std::string> words) {
  const bool isQuad = !words.empty() && words.front() == "quad";
  if (isQuad) words = words.subspan(1);
  const std::string folder = !words.empty() ? words.front() : isQuad ? "out/tour-quad" : "out/tour";
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
  if (!session.executeFile(isQuad ? "qxmt_tour_quad.mel" : "qxmt_tour.mel")) return kScriptFailed;
  const auto done = session.call(isQuad ? "qxmtTourQuad_QXMT_Proc" : "qxmtTour_QXMT_Proc",
                                 std::vector{mel::Value(folder)});
  return done ? kDone : kScriptFailed;
}

}  // namespace host::app
