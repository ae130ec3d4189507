#include "host/app/program.h"
#include "host/window/run_window.h"

int main(int argc, char** argv) {
  host::app::setWindow(host::window::runWindow);
  return host::app::runProgram(argc, argv);
}
