#pragma once

#include <filesystem>

namespace host::app {

/// Where the program's own files are, found from where the program itself is: `<root>/bin/qxmt`.
struct ProgramPaths {
  std::filesystem::path root;
  [[nodiscard]] std::filesystem::path module() const {
    return root / "lib" / "qxModelingToolkit.so";
  }
  [[nodiscard]] std::filesystem::path window() const { return root / "bin" / "qxmtWindow"; }
  [[nodiscard]] std::filesystem::path scripts() const { return root / "scripts"; }
};
[[nodiscard]] ProgramPaths programPaths();

}  // namespace host::app
