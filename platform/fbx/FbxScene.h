#pragma once
// The scene and what holds for all of it.

#include "FbxAnimation.h"
#include "FbxNode.h"
#include "FbxObject.h"

#include <memory>
#include <vector>

namespace fbxsdk
{

/// A unit of length.
class FbxSystemUnit
{
public:
    /// What else is converted; nothing that scenes of this library have.
    struct ConversionOptions
    {
        bool mConvertRrsNodes = true;
        bool mConvertLimits = true;
        bool mConvertClusters = true;
        bool mConvertLightIntensity = true;
        bool mConvertPhotometricLProperties = true;
        bool mConvertCameraClipPlanes = true;
    };

    /// @param scaleFactor centimetres in a unit, over `multiplier`
    constexpr explicit FbxSystemUnit(double scaleFactor, double multiplier = 1.0)
        : mScaleFactor(scaleFactor), mMultiplier(multiplier)
    {
    }

    static FbxSystemUnit const mm;
    static FbxSystemUnit const cm;
    static FbxSystemUnit const dm;
    static FbxSystemUnit const m;
    static FbxSystemUnit const km;
    static FbxSystemUnit const Inch;
    static FbxSystemUnit const Foot;
    static FbxSystemUnit const Mile;
    static FbxSystemUnit const Yard;
    static ConversionOptions const DefaultConversionOptions;

    /// Makes this the unit of the scene. Nodes right under the root keep their size in the
    /// world: translation and scaling, keys included, take the ratio of the units.
    void ConvertScene(FbxScene* scene, ConversionOptions const& options = DefaultConversionOptions) const;

    double GetScaleFactor() const
    {
        return mScaleFactor;
    }

    double GetMultiplier() const
    {
        return mMultiplier;
    }

    bool operator==(FbxSystemUnit const& other) const
    {
        return mScaleFactor == other.mScaleFactor && mMultiplier == other.mMultiplier;
    }

    bool operator!=(FbxSystemUnit const& other) const
    {
        return !(*this == other);
    }

private:
    double mScaleFactor;
    double mMultiplier;
};

/// Unit, time and axes of a scene. The axes are right-handed with Y up.
class FbxGlobalSettings : public FbxObject
{
    FBXSDK_OBJECT_DECLARE(FbxGlobalSettings);

public:
    void SetSystemUnit(FbxSystemUnit const& unit);
    FbxSystemUnit GetSystemUnit() const;
    void SetOriginalSystemUnit(FbxSystemUnit const& unit);
    FbxSystemUnit GetOriginalSystemUnit() const;

    /// The default mode isn't written: the file gets the mode that it stands for. Starts as it.
    void SetTimeMode(FbxTime::EMode mode);
    FbxTime::EMode GetTimeMode() const;

    /// Counts when the time mode is the custom one.
    void SetCustomFrameRate(double rate);
    double GetCustomFrameRate() const;

    /// Where start and stop are both 0, the default, the file gets the span of the keys.
    void SetTimelineDefaultTimeSpan(FbxTimeSpan const& span);
    void GetTimelineDefaultTimeSpan(FbxTimeSpan& span) const;

    bool SetDefaultCamera(char const* name);
    FbxString GetDefaultCamera() const;
};

class FbxDocument : public FbxCollection
{
protected:
    using FbxCollection::FbxCollection;
    ~FbxDocument() override;
};

/// A tree of nodes, settings and animation. What is written is what hangs below the root.
class FbxScene : public FbxDocument
{
    FBXSDK_OBJECT_DECLARE(FbxScene);

public:
    /// The root isn't written; its own transform has no effect.
    FbxNode* GetRootNode() const;
    FbxGlobalSettings& GetGlobalSettings();
    FbxGlobalSettings const& GetGlobalSettings() const;

    /// The stack that programs show first; null, the default, is the first one.
    bool SetCurrentAnimationStack(FbxAnimStack* stack);
    FbxAnimStack* GetCurrentAnimationStack() const;

    /// Stacks that were made within the scene or added to it, in their order.
    std::vector<FbxAnimStack*> stacks() const;

private:
    void collectDoomed(std::vector<FbxObject*>& doomed, bool recursive) override;
    void forget(FbxDoomed const& doomed) override;

    FbxNode* mRoot;
    FbxGlobalSettings* mSettings;
    FbxAnimStack* mCurrentStack = nullptr;
};

}
