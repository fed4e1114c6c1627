// Runs the tests of one program. Transform tables outlive their thread unless
// they are released, on purpose; here each test leaves none behind, so that the
// leak checkers see what nobody released and no test profits from another.

#include <gtest/gtest.h>

#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

namespace {

class ReleaseTables : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo &) override
    {
        rvxFreeFftTables();
        rvxFreeTwdTables();
        rvxFreeBitRevTables();
    }
};

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new ReleaseTables);
    return RUN_ALL_TESTS();
}
