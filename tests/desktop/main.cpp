#include <QApplication>
#include <gtest/gtest.h>

/// Windows are made without a screen, and nothing of the user's own is read or written.
int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("XDG_RUNTIME_DIR", testing::TempDir().c_str());
  testing::InitGoogleTest(&argc, argv);
  QApplication program(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
