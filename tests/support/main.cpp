// What every test program runs in: no display, a German locale that is there for those who
// ask, and dates and new identifiers that are the same in every run. A variable that is set
// already stays.

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("LOCPATH", MARLO_LOCALES, 0);
    setenv("SOURCE_DATE_EPOCH", "86400", 0);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
