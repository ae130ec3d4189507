#include "host/cmd/asking.h"

namespace host::cmd {

namespace {

AskingScope* innermost = nullptr;  // commands run on the main thread only

}  // namespace

void askOnly() {
  if (innermost) innermost->asksOnly_ = true;
}

AskingScope::AskingScope() : outer_(innermost) {
  innermost = this;
}

AskingScope::~AskingScope() {
  innermost = outer_;
}

}  // namespace host::cmd
