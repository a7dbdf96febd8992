// The widget tests need an application object; the offscreen platform keeps them
// headless.
#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("vantora"));
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
