#include <gmock/gmock.h>
#include <QCoreApplication>

// The main queue needs an application to post to.
int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
