#pragma once

#include <string>
#include <vector>

#include "host/viewport/backends/backend.h"

namespace host::viewport {

/// Draws nothing, but checks that it is used as a backend must be: calls in order and paired, lists
/// sound. For machines without a GPU library, and for tests.
class NullBackend final : public Backend {
 public:
  [[nodiscard]] std::string_view name() const override { return "null"; }
  [[nodiscard]] int maxSide() const override { return 16384; }
  [[nodiscard]] Result<void> beginFrame(const FrameSettings& settings) override;
  void draw(const DrawList& list) override;
  void endFrame() override;
  bool beginDirect(const Matrix4& world) override;
  void endDirect() override;
  /// The background as a picture: nothing is ever drawn on it.
  [[nodiscard]] Result<Image> readPixels() override;

  /// Every misuse so far, a sentence each, in order.
  [[nodiscard]] const std::vector<std::string>& problems() const { return problems_; }

  struct Counts {
    std::size_t frames = 0, directSections = 0, points = 0, lines = 0, triangles = 0, texts = 0;
  };
  /// What was handed in, over all frames.
  [[nodiscard]] const Counts& counts() const { return counts_; }

 private:
  void report(std::string problem) { problems_.push_back(std::move(problem)); }

  std::vector<std::string> problems_;
  Counts counts_;
  FrameSettings settings_;
  bool isInFrame_ = false;
  bool isDirect_ = false;
};

}  // namespace host::viewport
