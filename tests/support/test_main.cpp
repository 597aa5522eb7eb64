// The main of all test programs.
#include <gmock/gmock.h>

#include "tests/support/processor_time.h"

namespace {
constexpr unsigned MOST_SECONDS = 120;

class TimeBound : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& /*test*/) override { bound_processor_time(MOST_SECONDS); }
    void OnTestEnd(const testing::TestInfo& /*test*/) override { bound_processor_time(0); }
};
}  // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new TimeBound);
    return RUN_ALL_TESTS();
}
