// The main of test programs. A skip has an exit status of its own, so that CTest does not look for
// it in what a test prints, where a failure may stand beside it.
#include <gmock/gmock.h>

int main(int count, char** arguments) {
  testing::InitGoogleMock(&count, arguments);
  const int status = RUN_ALL_TESTS();
  const testing::UnitTest& tests = *testing::UnitTest::GetInstance();
  const bool onlySkipped =
      status == 0 && tests.skipped_test_count() > 0 && tests.successful_test_count() == 0;
  constexpr int skipped = 77;  // as cmake/QuorinTargets.cmake tells CTest
  return onlySkipped ? skipped : status;
}
