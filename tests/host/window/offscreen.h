#pragma once

#include <QApplication>

namespace host::test {

/// The one application of the test program, on no screen at all.
inline QApplication& offscreenApplication() {
  static int count = 1;
  static char name[] = "test_window";
  static char* words[] = {name, nullptr};
  static const bool isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
  // Never destroyed: Qt's own devices go at the end of the program and look for it.
  static auto* const instance = new QApplication(count, words);
  (void)isOffscreen;
  return *instance;
}

}  // namespace host::test
