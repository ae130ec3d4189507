#pragma once

#include <array>
#include <cstdlib>
#include <filesystem>

#include "host/base/messages.h"
#include "host/workspace/workspace.h"
#include "tests/host/api/api_scene.h"

/// A plug-in, by its file, and a view from the front of 12 by 8 units in which a unit is 20 pixels
/// and the origin the middle.
struct ShapeStage : ApiScene {
  using Rgb = std::array<int, 3>;
  static constexpr int kWidth = 240, kHeight = 160, kUnit = 20;

  /// A plug-in's file; which folder it is in the sources are told, not the headers.
  explicit ShapeStage(const std::string& plugin) {
    REQUIRE(session->pluginLoader->load(plugin));
    run("setAttr frontShape.orthographicWidth 12; setAttr front.t 0 0 100; modelEditor -e -grid 0 "
        "-displayAppearance smoothShaded -wireframeOnShaded 0 modelPanel3; viewGesture -port 240 "
        "160 modelPanel3");
    view().options.axisGizmo = false;
  }
  ~ShapeStage() { session.reset(); }
  ShapeStage(const ShapeStage&) = delete;
  ShapeStage& operator=(const ShapeStage&) = delete;
  host::MessageCapture quiet;

  host::workspace::View& view(const std::string& panel = "modelPanel3") {
    return *host::workspace::workspaceOf(*session).views.find(panel);
  }
  [[nodiscard]] bool canDraw() {
    return host::workspace::workspaceOf(*session).views.offscreen().has_value();
  }
  void draw(const std::string& panel = "modelPanel3") {
    auto& views = host::workspace::workspaceOf(*session).views;
    auto image =
        host::workspace::renderView(session->document(), views, view(panel), {kWidth, kHeight});
    REQUIRE(image.has_value());
    picture = std::move(*image);
  }
  /// The pixels around a place of the front view's plane that are nearer to the colour than a few
  /// steps a channel.
  [[nodiscard]] int count(double x, double y, const Rgb& color, int around = 2) const {
    const int column = kWidth / 2 + static_cast<int>(std::lround(x * kUnit));
    const int row = kHeight / 2 - static_cast<int>(std::lround(y * kUnit));
    int found = 0;
    for (int j = row - around; j <= row + around; ++j)
      for (int i = column - around; i <= column + around; ++i) {
        const std::uint8_t* p = picture.pixel(i, j);
        bool isNear = true;
        for (std::size_t c = 0; c < 3; ++c) isNear = isNear && std::abs(p[c] - color[c]) <= 40;
        found += isNear;
      }
    return found;
  }
  /// A press and a release of the left button at a place of the front view's plane.
  void click(double x, double y, const std::string& flags = "") {
    const std::string at = pixel(x, y);
    run("viewGesture " + flags + " -press " + at + " -release " + at + " modelPanel3");
  }
  void drag(double x, double y, double toX, double toY, const std::string& flags = "") {
    run("viewGesture " + flags + " -press " + pixel(x, y) + " -drag " + pixel(toX, toY) +
        " -release " + pixel(toX, toY) + " modelPanel3");
  }
  std::string selected() { return text("stringArrayToString(`ls -sl`, \" \")"); }
  std::string place(const std::string& component, const std::string& flags = "") {
    return text("string $t = \"\"; for ($x in `xform -q -t " + flags + " " + component +
                "`) $t += floor($x * 1e6 + 0.5) / 1e6 + \" \"; $t");
  }
  std::uint64_t state() { return session->document().hash(); }

  host::viewport::Image picture;

 private:
  static std::string pixel(double x, double y) {
    return std::to_string(kWidth / 2 + x * kUnit) + " " + std::to_string(kHeight / 2 + y * kUnit);
  }
};
