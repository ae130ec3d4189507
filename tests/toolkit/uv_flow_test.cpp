#include "tests/toolkit/uv_hand.h"

// What follows on each other when a mesh is given its UVs, on meshes with and without history.

TEST_CASE("A ratio, a tweak and a UV object after an unwrap work on the UVs that are seen") {
  toolkitSession toolkit;
  const host::MessageCapture quiet;
  for (const char* history : {" -ch 1", " -ch 0"}) {
    CAPTURE(history);
    toolkit.run(std::string("file -f -new; polySphere -n ball -sx 8 -sy 6") + history +
                "; select ball; qxAutoUnwrap -unwrapType \"normal\"");
    const uvArrays unwrapped = uvsOf("ball");
    const std::uint64_t hash = toolkit.hash();
    toolkit.run("uvRatio -uv 3");
    const uvArrays scaled = uvsOf("ball");
    CHECK(largestStep(unwrapped, scaled) > 0.1);
    toolkit.run("undo");
    CHECK(uvsOf("ball") == unwrapped);
    CHECK(toolkit.hash() == hash);
    toolkit.run("redo");
    CHECK(uvsOf("ball") == scaled);
    toolkit.run("select ball; qxBuildUVObject");
    CHECK(largestStep(uvsOf("ball"), scaled) < 1e-6);
    toolkit.run("move -r 1 0 0 polySurface1.vtx[0]");
    CHECK(uvOf("ball", 0).first == doctest::Approx(scaled.u[0] + 0.1F));
    toolkit.run("delete -ch ball");
    CHECK(uvOf("ball", 0).first == doctest::Approx(scaled.u[0] + 0.1F));
  }
}
