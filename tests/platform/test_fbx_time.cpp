#include <fbxsdk.h>
#include <gtest/gtest.h>

namespace
{

class FbxTimes : public testing::Test
{
protected:
    void TearDown() override
    {
        FbxTime::SetGlobalTimeMode(FbxTime::eCustom, 30.0);
        FbxTime::SetGlobalTimeMode(FbxTime::eFrames30);
    }
};

FbxTime at(int hour, int minute, int second, int frame, FbxTime::EMode mode)
{
    FbxTime time;
    time.SetTime(hour, minute, second, frame, 0, 0, mode);
    return time;
}

TEST_F(FbxTimes, ModesHaveTheirRatesAndTicks)
{
    struct
    {
        FbxTime::EMode mode;
        double rate;
        FbxLongLong ticksOf1000Frames;
    } const cases[] = {
        {FbxTime::eFrames120, 120, 384884650000},
        {FbxTime::eFrames100, 100, 461861580000},
        {FbxTime::eFrames60, 60, 769769300000},
        {FbxTime::eFrames50, 50, 923723160000},
        {FbxTime::eFrames48, 48, 962211625000},
        {FbxTime::eFrames30, 30, 1539538600000},
        {FbxTime::eFrames30Drop, 30, 1539538600000},
        {FbxTime::eNTSCDropFrame, 30000 / 1001.0, 1541078138600},
        {FbxTime::eNTSCFullFrame, 30000 / 1001.0, 1541078138600},
        {FbxTime::ePAL, 25, 1847446320000},
        {FbxTime::eFrames24, 24, 1924423250000},
        {FbxTime::eFrames1000, 1000, 46186158000},
        {FbxTime::eFilmFullFrame, 24000 / 1001.0, 1926347673250},
        {FbxTime::eFrames96, 96, 481105812500},
        {FbxTime::eFrames72, 72, 641474416667},
        {FbxTime::eFrames59dot94, 60000 / 1001.0, 770539069300},
        {FbxTime::eFrames119dot88, 120000 / 1001.0, 385269534650},
    };
    for (auto const& [mode, rate, ticks] : cases)
    {
        EXPECT_EQ(FbxTime::GetFrameRate(mode), rate) << mode;
        EXPECT_EQ(at(0, 0, 0, 1000, mode).Get(), ticks) << mode;
        EXPECT_EQ(at(0, 0, 0, -1000, mode).Get(), -ticks) << mode;
    }
    EXPECT_EQ(int{FbxTime::eModesCount}, 19);
    EXPECT_EQ(FbxTime::GetFrameRate(FbxTime::eModesCount), 0);
}

TEST_F(FbxTimes, FramesComeBackFromTicks)
{
    for (FbxTime::EMode const mode : {FbxTime::eFrames72, FbxTime::eFilmFullFrame, FbxTime::eFrames119dot88})
    {
        for (FbxLongLong const frame : {-86400LL, -7LL, -1LL, 0LL, 1LL, 1001LL, 2589407LL, 100000000LL})
        {
            FbxTime time;
            time.SetFrame(frame, mode);
            EXPECT_EQ(time.GetFrameCount(mode), frame) << mode;
            EXPECT_EQ(FbxTime(time.Get() - 1).GetFrameCount(mode), frame - 1) << mode;
        }
    }
}

TEST_F(FbxTimes, DropFrameTimeCodeLeavesNumbersOut)
{
    EXPECT_EQ(at(0, 1, 0, 2, FbxTime::eNTSCDropFrame).GetFrameCount(FbxTime::eNTSCDropFrame), 1800);
    EXPECT_EQ(at(0, 10, 0, 0, FbxTime::eNTSCDropFrame).GetFrameCount(FbxTime::eNTSCDropFrame), 17982);
    EXPECT_EQ(at(0, 1, 0, 0, FbxTime::eNTSCFullFrame).GetFrameCount(FbxTime::eNTSCFullFrame), 1800);
    // A mere count of frames isn't a time code.
    EXPECT_EQ(at(0, 0, 0, 5000, FbxTime::eNTSCDropFrame), at(0, 0, 0, 5000, FbxTime::eNTSCFullFrame));
}

TEST_F(FbxTimes, DefaultAndCustomModeAreGlobal)
{
    EXPECT_EQ(FbxTime::GetFrameRate(FbxTime::eDefaultMode), 30);
    FbxTime::SetGlobalTimeMode(FbxTime::eCustom, 12.5);
    EXPECT_EQ(FbxTime::GetFrameRate(FbxTime::eCustom), 12.5);
    EXPECT_EQ(FbxTime::GetFrameRate(FbxTime::eDefaultMode), 12.5);
    FbxTime time;
    time.SetTime(0, 0, 0, 25);
    EXPECT_EQ(time.GetSecondDouble(), 2);
    FbxTime::SetGlobalTimeMode(FbxTime::eDefaultMode, 99);
    EXPECT_EQ(FbxTime::GetGlobalTimeMode(), FbxTime::eCustom);

    EXPECT_EQ(FbxTime::ConvertFrameRateToTimeMode(30), FbxTime::eFrames30);
    EXPECT_EQ(FbxTime::ConvertFrameRateToTimeMode(12.5), FbxTime::eDefaultMode);
    EXPECT_EQ(FbxTime::ConvertFrameRateToTimeMode(23.976, 0.001), FbxTime::eFilmFullFrame);
}

}
