#pragma once
// Moments, spans of time and frame rates.

#include "FbxTypes.h"

#define FBXSDK_TC_SECOND FBXSDK_LONGLONG(46186158000)
#define FBXSDK_LONGLONG(value) (value##LL)

namespace fbxsdk
{

/// A moment, as a count of ticks; a second has FBXSDK_TC_SECOND of them.
class FbxTime
{
public:
    enum EMode
    {
        /// The global time mode, whatever that is.
        eDefaultMode,
        eFrames120,
        eFrames100,
        eFrames60,
        eFrames50,
        eFrames48,
        eFrames30,
        eFrames30Drop,
        eNTSCDropFrame,
        eNTSCFullFrame,
        ePAL,
        eFrames24,
        eFrames1000,
        eFilmFullFrame,
        /// The rate that was given to SetGlobalTimeMode, or in a scene its custom frame rate.
        eCustom,
        eFrames96,
        eFrames72,
        eFrames59dot94,
        eFrames119dot88,
        eModesCount
    };

    enum EProtocol
    {
        eSMPTE,
        eFrameCount,
        eDefaultProtocol
    };

    constexpr FbxTime(FbxLongLong ticks = 0) : mTicks(ticks)
    {
    }

    void Set(FbxLongLong ticks)
    {
        mTicks = ticks;
    }

    FbxLongLong Get() const
    {
        return mTicks;
    }

    void SetMilliSeconds(FbxLongLong milliseconds);
    FbxLongLong GetMilliSeconds() const;
    void SetSecondDouble(double seconds);
    double GetSecondDouble() const;

    /// Frame `frame` after the time code hour:minute:second:00. The two drop-frame modes leave
    /// two numbers out in every minute but each tenth, so that 0:01:00:02 follows 0:00:59:29.
    /// Ticks are rounded from the exact fraction, so a long shot doesn't drift.
    ///
    /// @param field the field within the frame, 0 or 1
    void SetTime(int hour, int minute, int second, int frame = 0, int field = 0, EMode mode = eDefaultMode);

    /// @param residual ticks on top
    void SetTime(int hour, int minute, int second, int frame, int field, int residual, EMode mode);

    void SetFrame(FbxLongLong frame, EMode mode = eDefaultMode);
    void SetFramePrecise(double frame, EMode mode = eDefaultMode);

    /// The frame that this moment lies in, counted from 0; negative before 0.
    FbxLongLong GetFrameCount(EMode mode = eDefaultMode) const;
    double GetFrameCountPrecise(EMode mode = eDefaultMode) const;

    /// Frames per second, 29.97 and its like as fractions over 1001. The default mode gives the
    /// rate of the global mode, the custom mode the global custom rate. 0 for what is no mode.
    static double GetFrameRate(EMode mode);

    /// The first mode but the default and the custom one whose rate lies within `precision`
    /// of `rate`; else eDefaultMode.
    static EMode ConvertFrameRateToTimeMode(double rate, double precision = 0.00000001);

    /// The mode that eDefaultMode stands for, in the whole process. It starts as eFrames30.
    ///
    /// @param rate taken when the mode is eCustom and it is above 0; starts as 30
    static void SetGlobalTimeMode(EMode mode, double rate = 0.0);
    static EMode GetGlobalTimeMode();

    /// How times are shown; it goes into the files that are written. Starts as eDefaultProtocol.
    static void SetGlobalTimeProtocol(EProtocol protocol);
    static EProtocol GetGlobalTimeProtocol();

    bool operator==(FbxTime const& other) const
    {
        return mTicks == other.mTicks;
    }

    bool operator!=(FbxTime const& other) const
    {
        return mTicks != other.mTicks;
    }

    bool operator<(FbxTime const& other) const
    {
        return mTicks < other.mTicks;
    }

    bool operator<=(FbxTime const& other) const
    {
        return mTicks <= other.mTicks;
    }

    bool operator>(FbxTime const& other) const
    {
        return mTicks > other.mTicks;
    }

    bool operator>=(FbxTime const& other) const
    {
        return mTicks >= other.mTicks;
    }

    FbxTime operator+(FbxTime const& other) const
    {
        return mTicks + other.mTicks;
    }

    FbxTime operator-(FbxTime const& other) const
    {
        return mTicks - other.mTicks;
    }

private:
    FbxLongLong mTicks;
};

/// From one moment to another, both inside.
class FbxTimeSpan
{
public:
    FbxTimeSpan() = default;

    FbxTimeSpan(FbxTime start, FbxTime stop) : mStart(start), mStop(stop)
    {
    }

    void Set(FbxTime start, FbxTime stop)
    {
        mStart = start;
        mStop = stop;
    }

    void SetStart(FbxTime start)
    {
        mStart = start;
    }

    void SetStop(FbxTime stop)
    {
        mStop = stop;
    }

    FbxTime GetStart() const
    {
        return mStart;
    }

    FbxTime GetStop() const
    {
        return mStop;
    }

    FbxTime GetDuration() const
    {
        return mStop - mStart;
    }

private:
    FbxTime mStart;
    FbxTime mStop;
};

}
