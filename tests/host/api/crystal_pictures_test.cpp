// What views show of a geometry override: where which colour is.
#include "tests/host/api/shape_stage.h"

namespace {

struct Crystal : ShapeStage {
  Crystal() : ShapeStage(QXMT_BINARY_DIR "/test_plugins/crystal_shape.so") {
    run("createNode transform -n stone; createNode crystalShape -n stoneShape -p stone;"
        "setAttr stone.tx -3; select -cl");
  }
  /// Of the surface: clearly blue.
  [[nodiscard]] bool isBlue(double x, double y) const {
    const std::uint8_t* p = picture.pixel(kWidth / 2 + static_cast<int>(x * kUnit),
                                          kHeight / 2 - static_cast<int>(y * kUnit));
    return p[2] > 90 && p[2] > p[0] + 40;
  }
};

constexpr ShapeStage::Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kDormant{184, 196, 214},
    kLead{92, 240, 168}, kActive{252, 250, 242}, kHilited{140, 204, 250};

}  // namespace

TEST_CASE_FIXTURE(Crystal, "a geometry override's surface, wire and dots lie where they should") {
  if (!canDraw()) return;
  draw();
  CHECK(isBlue(-2.7, 0.6));
  CHECK(count(-2, 0, kRed, 4) > 15);
  CHECK(count(-3, 2, kGreen, 4) > 15);
  CHECK(count(-2.5, 1, kDormant) > 2);
  CHECK_FALSE(isBlue(-2, 1.5));
  run("modelEditor -e -displayAppearance wireframe modelPanel3");
  draw();
  CHECK_FALSE(isBlue(-2.7, 0.6));
  CHECK(count(-2.5, 1, kDormant) > 2);
  run("modelEditor -e -displayAppearance smoothShaded modelPanel3; setAttr stone.rz 90;"
      "setAttr stoneShape.size 0.5");
  draw();
  CHECK(count(-4, 0, kGreen, 4) > 15);
  CHECK(count(-3, 0.5, kRed, 4) > 15);
}

TEST_CASE_FIXTURE(Crystal, "instances below turned and mirrored parents are lit, in every view") {
  if (!canDraw()) return;
  run("group -em -n mirror; instance -n twin stone; parent -r twin mirror; setAttr mirror.s -1 0.5 "
      "1;"
      "select -cl");
  for (const char* panel : {"modelPanel3", "modelPanel1"}) {
    CAPTURE(std::string(panel));
    run(std::string("setAttr topShape.orthographicWidth 12; modelEditor -e -grid 0 "
                    "-displayAppearance smoothShaded -wireframeOnShaded 0 ") +
        panel);
    view(panel).options.axisGizmo = false;
    draw(panel);
    CHECK(isBlue(-2.7, 0.4));
    CHECK(isBlue(2.7, 0.2));
    CHECK(isBlue(3.3, 0.2));
    CHECK(count(2, 0, kRed, 4) > 15);
  }
  draw();
  CHECK(count(3, 1, kGreen, 4) > 15);
  CHECK(count(3, 2, kGreen, 4) == 0);
  run("setAttr mirror.v 0");
  draw();
  CHECK(isBlue(-2.7, 0.4));
  CHECK_FALSE(isBlue(2.7, 0.2));
}

TEST_CASE_FIXTURE(Crystal, "the wire of a geometry override tells the state of its object") {
  if (!canDraw()) return;
  run("duplicate -n other stone; setAttr other.tx 3; select stone other");
  draw();
  CHECK(count(-2.5, 1, kActive) > 2);
  CHECK(count(3.5, 1, kLead) > 2);
  run("select -cl; hilite stone");
  draw();
  CHECK(count(-2.5, 1, kHilited) > 2);
  CHECK(count(3.5, 1, kDormant) > 2);
  run("hilite -u stone; createDisplayLayer -e -n tint; setAttr tint.color 13;"
      "editDisplayLayerMembers -nr tint other");
  draw();
  CHECK(count(3.5, 1, kRed) > 2);
  CHECK(count(-2.5, 1, kDormant) > 2);
  run("setAttr tint.visibility 0");
  draw();
  CHECK_FALSE(isBlue(3.3, 0.6));
  run("setAttr tint.visibility 1; setAttr tint.displayType 1");
  draw();
  CHECK_FALSE(isBlue(3.3, 0.6));  // a template is a faint wire
  click(3.5, 1);
  CHECK(selected().empty());
  run("setAttr tint.displayType 2");
  draw();
  CHECK(isBlue(3.3, 0.6));
  click(3.3, 0.6);
  CHECK(selected().empty());
  click(-2.7, 0.6);
  CHECK(selected() == "stone");
}

namespace {

struct Panes : ShapeStage {
  Panes() : ShapeStage(QXMT_BINARY_DIR "/test_plugins/pane_locator.so") {
    run("createNode transform -n pane; createNode paneLocator -n paneShape -p pane; select -cl");
    draw();
  }
};

}  // namespace

TEST_CASE_FIXTURE(Panes,
                  "blend, depth and rasterizer states hold for the callback that sets them") {
  if (!canDraw()) return;
  // The red pane lies from -1 to 1, the green one behind it from 0 to 2.
  const auto pixel = [&](double x, double y) {
    const std::uint8_t* p = picture.pixel(kWidth / 2 + static_cast<int>(x * kUnit),
                                          kHeight / 2 - static_cast<int>(y * kUnit));
    return Rgb{p[0], p[1], p[2]};
  };
  draw();
  CHECK(count(-0.5, 0, kRed) == 25);
  CHECK(count(0.5, 0, kRed) == 25);
  CHECK(count(1.5, 0, kGreen) == 25);
  const Rgb behind = pixel(3, 0);
  run("setAttr paneShape.blends 1");
  draw();
  CHECK(count(0.5, 0, kRed) == 25);  // what is behind is hidden, see-through or not
  CHECK(pixel(1.5, 0)[1] > 150);
  CHECK(pixel(1.5, 0)[1] < 210);
  CHECK(std::abs(pixel(1.5, 0)[2] - behind[2] / 2) < 12);
  run("setAttr paneShape.seesDepth 0");
  draw();
  CHECK(std::abs(pixel(0.5, 0)[0] - 128) < 12);
  CHECK(std::abs(pixel(0.5, 0)[1] - 128) < 12);
  run("setAttr paneShape.blends 0; setAttr paneShape.seesDepth 1; setAttr paneShape.culls 2");
  draw();
  CHECK(count(-0.5, 0, kRed) == 25);
  run("setAttr paneShape.culls 1");
  draw();
  CHECK(count(-0.5, 0, kRed) == 0);
  run("setAttr paneShape.culls 2; setAttr pane.sx -1");  // a mirror turns the winding
  draw();
  CHECK(count(0.5, 0, kRed) == 0);
  run("setAttr paneShape.culls 0; setAttr paneShape.outlines 1; polyCube -n box; setAttr box.tx 3;"
      "select -cl");
  draw();
  CHECK(count(0.5, 0.3, kRed) == 0);
  CHECK(count(1, 0.5, kRed) > 2);
  CHECK(count(3, 0, {0, 0, 0}) == 0);  // the box is filled and shaded all the same
  CHECK(count(3.2, 0.3, kRed) == 0);
  click(1, 0.5);
  CHECK(selected() == "pane");
}
