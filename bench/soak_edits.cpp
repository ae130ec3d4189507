// Random edits with undo and redo, for as long as one likes: soak_edits EDITS [SEED [EVERY]].
//
// The document's hash is compared in one sequence of EVERY (1); under a sanitizer, which looks at
// memory, that takes most of the time. The same sequences as the tests run, a few hundred edits
// each on a new scene. Ends with the first promise that is broken, after printing what led to it.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "host/api/session/host_session.h"
#include "tests/toolkit/random_edits.h"

int main(int argc, char** argv) {
  const long wanted = argc > 1 ? std::atol(argv[1]) : 10'000;
  auto seed = static_cast<unsigned>(argc > 2 ? std::atol(argv[2]) : 1);
  const auto every = static_cast<unsigned>(argc > 3 ? std::max(std::atol(argv[3]), 1L) : 1);
  const auto session = host::api::makeHostSession();
  session->interpreter().setScriptPath({QXMT_SCRIPTS_DIR});
  {
    const host::MessageCapture quiet;
    if (!session->executeLine("loadPlugin \"" QXMT_BINARY_DIR "/lib/qxModelingToolkit.so\"")) {
      std::fprintf(stderr, "the toolkit cannot be loaded\n");
      return 3;
    }
  }
  randomEdits::Counts sum;
  for (; sum.edits < wanted; ++seed) {
    std::fprintf(stderr, "seed %u\n", seed);  // where it ends if a sanitizer ends it
    const host::MessageCapture quiet;
    (void)session->executeLine("file -f -new; undoInfo -swf on");
    randomEdits edits(*session, seed, (seed / 2) % every == 0);  // both kinds of sequence
    for (int i = 0; i < 300 && edits.fault().empty(); ++i) edits.step();
    if (edits.fault().empty()) edits.finish();
    const randomEdits::Counts& made = edits.counts();
    sum.edits += made.edits;
    sum.undone += made.undone;
    sum.redone += made.redone;
    sum.refused += made.refused;
    if (!edits.fault().empty()) {
      for (const std::string& line : edits.lines()) std::printf("%s\n", line.c_str());
      std::printf("seed %u: %s\n", seed, edits.fault().c_str());
      return 1;
    }
    if (seed % 100 == 0) {
      std::printf("seed %u: %ld edits, %ld undone, %ld redone, %ld refused\n", seed, sum.edits,
                  sum.undone, sum.redone, sum.refused);
      std::fflush(stdout);
    }
  }
  std::printf("%ld edits, %ld undone, %ld redone, %ld refused\n", sum.edits, sum.undone, sum.redone,
              sum.refused);
  return 0;
}
