#include "host/app/paths.h"

namespace host::app {

ProgramPaths programPaths() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return {program.parent_path().parent_path()};
}

}  // namespace host::app
