#include "FbxTime.h"

#include <array>
#include <cmath>

namespace fbxsdk
{

namespace
{

constexpr FbxLongLong ticksPerSecond = FBXSDK_TC_SECOND;

/// Frames per second as a fraction.
struct Rate
{
    FbxLongLong frames;
    FbxLongLong seconds;
};

/// In the order of the modes; the default and the custom one have none of their own.
constexpr std::array<Rate, FbxTime::eModesCount> rates{{
    {0, 1},  {120, 1},      {100, 1},      {60, 1},       {50, 1},        {48, 1},   {30, 1},
    {30, 1}, {30000, 1001}, {30000, 1001}, {25, 1},       {24, 1},        {1000, 1}, {24000, 1001},
    {0, 1},  {96, 1},       {72, 1},       {60000, 1001}, {120000, 1001},
}};

FbxTime::EMode globalMode = FbxTime::eFrames30;
double globalCustomRate = 30.0;
FbxTime::EProtocol globalProtocol = FbxTime::eDefaultProtocol;

bool isMode(FbxTime::EMode mode)
{
    return mode >= FbxTime::eDefaultMode && mode < FbxTime::eModesCount;
}

FbxTime::EMode resolved(FbxTime::EMode mode)
{
    return mode == FbxTime::eDefaultMode ? globalMode : mode;
}

FbxLongLong divideRounded(FbxLongLong numerator, FbxLongLong denominator)
{
    FbxLongLong const half = numerator < 0 ? -denominator / 2 : denominator / 2;
    return (numerator + half) / denominator;
}

/// Ticks of a frame, in integers wherever the rate is a fraction. A frame's own ticks are split
/// into whole seconds and the rest, so that no product leaves 64 bits.
FbxLongLong ticksOfFrame(FbxLongLong frame, FbxTime::EMode mode)
{
    if (mode == FbxTime::eCustom)
    {
        return std::llround(static_cast<double>(frame) / globalCustomRate * ticksPerSecond);
    }
    auto const [frames, seconds] = rates[static_cast<std::size_t>(mode)];
    FbxLongLong const whole = frame / frames;
    FbxLongLong const rest = frame % frames;
    return whole * seconds * ticksPerSecond + divideRounded(rest * seconds * ticksPerSecond, frames);
}

/// The frame of the time code hour:minute:second:00.
FbxLongLong frameOfTimeCode(FbxLongLong hour, FbxLongLong minute, FbxLongLong second, FbxTime::EMode mode)
{
    FbxLongLong const minutes = hour * 60 + minute;
    FbxLongLong const perSecond = std::llround(FbxTime::GetFrameRate(mode));
    FbxLongLong const frames = (minutes * 60 + second) * perSecond;
    bool const drops = mode == FbxTime::eFrames30Drop || mode == FbxTime::eNTSCDropFrame;
    return drops ? frames - 2 * (minutes - minutes / 10) : frames;
}

}

void FbxTime::SetMilliSeconds(FbxLongLong milliseconds)
{
    mTicks = milliseconds * (ticksPerSecond / 1000);
}

FbxLongLong FbxTime::GetMilliSeconds() const
{
    return mTicks / (ticksPerSecond / 1000);
}

void FbxTime::SetSecondDouble(double seconds)
{
    mTicks = std::llround(seconds * ticksPerSecond);
}

double FbxTime::GetSecondDouble() const
{
    return static_cast<double>(mTicks) / ticksPerSecond;
}

void FbxTime::SetTime(int hour, int minute, int second, int frame, int field, EMode mode)
{
    SetTime(hour, minute, second, frame, field, 0, mode);
}

void FbxTime::SetTime(int hour, int minute, int second, int frame, int field, int residual, EMode mode)
{
    if (!isMode(mode))
    {
        return;
    }
    mode = resolved(mode);
    FbxLongLong const start = frameOfTimeCode(hour, minute, second, mode);
    mTicks = ticksOfFrame(start + frame, mode) + residual;
    if (field != 0)
    {
        mTicks += std::llround(field * 0.5 / GetFrameRate(mode) * ticksPerSecond);
    }
}

void FbxTime::SetFrame(FbxLongLong frame, EMode mode)
{
    if (isMode(mode))
    {
        mTicks = ticksOfFrame(frame, resolved(mode));
    }
}

void FbxTime::SetFramePrecise(double frame, EMode mode)
{
    if (isMode(mode))
    {
        double const whole = std::floor(frame);
        double const rest = (frame - whole) / GetFrameRate(mode) * ticksPerSecond;
        mTicks = ticksOfFrame(static_cast<FbxLongLong>(whole), resolved(mode)) + std::llround(rest);
    }
}

FbxLongLong FbxTime::GetFrameCount(EMode mode) const
{
    if (!isMode(mode))
    {
        return 0;
    }
    mode = resolved(mode);
    // The estimate may be off by one beside a frame's start, which is rounded to a tick.
    auto frame = static_cast<FbxLongLong>(std::floor(GetFrameCountPrecise(mode)));
    if (ticksOfFrame(frame + 1, mode) <= mTicks)
    {
        ++frame;
    }
    else if (ticksOfFrame(frame, mode) > mTicks)
    {
        --frame;
    }
    return frame;
}

double FbxTime::GetFrameCountPrecise(EMode mode) const
{
    return GetSecondDouble() * GetFrameRate(mode);
}

double FbxTime::GetFrameRate(EMode mode)
{
    if (!isMode(mode))
    {
        return 0.0;
    }
    mode = resolved(mode);
    if (mode == eCustom)
    {
        return globalCustomRate;
    }
    auto const [frames, seconds] = rates[static_cast<std::size_t>(mode)];
    return static_cast<double>(frames) / static_cast<double>(seconds);
}

FbxTime::EMode FbxTime::ConvertFrameRateToTimeMode(double rate, double precision)
{
    for (int i = eDefaultMode + 1; i < eModesCount; ++i)
    {
        auto const mode = static_cast<EMode>(i);
        if (mode != eCustom && std::abs(GetFrameRate(mode) - rate) <= precision)
        {
            return mode;
        }
    }
    return eDefaultMode;
}

void FbxTime::SetGlobalTimeMode(EMode mode, double rate)
{
    if (mode <= eDefaultMode || mode >= eModesCount)
    {
        return;
    }
    globalMode = mode;
    if (mode == eCustom && rate > 0 && std::isfinite(rate))
    {
        globalCustomRate = rate;
    }
}

FbxTime::EMode FbxTime::GetGlobalTimeMode()
{
    return globalMode;
}

void FbxTime::SetGlobalTimeProtocol(EProtocol protocol)
{
    globalProtocol = protocol;
}

FbxTime::EProtocol FbxTime::GetGlobalTimeProtocol()
{
    return globalProtocol;
}

}
