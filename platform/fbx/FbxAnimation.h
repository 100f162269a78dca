#pragma once
// Stacks of layers, and the curves in them.

#include "FbxObject.h"
#include "FbxProperty.h"
#include "FbxTime.h"

#include <string>
#include <vector>

namespace fbxsdk
{

/// The words of a key: how the curve goes on from it, and what the slopes mean.
class FbxAnimCurveDef
{
public:
    static constexpr float sDEFAULT_WEIGHT = 1.0F / 3.0F;
    static constexpr float sMIN_WEIGHT = 0.000099999997F;
    static constexpr float sMAX_WEIGHT = 0.99F;
    static constexpr float sDEFAULT_VELOCITY = 0.0F;

    enum EInterpolationType
    {
        eInterpolationConstant = 0x00000002,
        eInterpolationLinear = 0x00000004,
        eInterpolationCubic = 0x00000008
    };

    /// The slopes of a cubic key. Only auto and user, broken or not, are told apart when a file
    /// is written: the others are written as auto.
    enum ETangentMode
    {
        eTangentAuto = 0x00000100,
        eTangentTCB = 0x00000200,
        eTangentUser = 0x00000400,
        eTangentGenericBreak = 0x00000800,
        eTangentBreak = eTangentGenericBreak | eTangentUser,
        eTangentAutoBreak = eTangentGenericBreak | eTangentAuto,
        eTangentGenericClamp = 0x00001000,
        eTangentGenericTimeIndependent = 0x00002000,
        eTangentGenericClampProgressive = 0x00004000 | eTangentGenericTimeIndependent
    };

    enum EWeightedMode
    {
        eWeightedNone = 0x00000000,
        eWeightedRight = 0x01000000,
        eWeightedNextLeft = 0x02000000,
        eWeightedAll = eWeightedRight | eWeightedNextLeft
    };

    /// Whether a constant key holds its own value or takes the next one's at once; it goes in
    /// place of the tangent mode.
    enum EConstantMode
    {
        eConstantStandard = 0x00000000,
        eConstantNext = 0x00000100
    };
};

/// One key. Slopes are in units of the value per second, weights fractions of the way to the
/// next key.
struct FbxAnimCurveKey
{
    FbxTime time;
    float value = 0.0F;

    FbxAnimCurveDef::EInterpolationType interpolation = FbxAnimCurveDef::eInterpolationCubic;

    /// A tangent mode, or the constant mode of a constant key, which starts as the standard one.
    unsigned int tangent = FbxAnimCurveDef::eTangentAuto;
    FbxAnimCurveDef::EWeightedMode weighted = FbxAnimCurveDef::eWeightedNone;

    /// Out of this key, and into the next.
    float slopes[2] = {};
    float weights[2] = {FbxAnimCurveDef::sDEFAULT_WEIGHT, FbxAnimCurveDef::sDEFAULT_WEIGHT};
};

/// A value over time: keys in the order of their times, no two at one.
///
/// Every operation on a key that doesn't exist has no effect, or gives 0.
class FbxAnimCurve : public FbxObject
{
    FBXSDK_OBJECT_DECLARE(FbxAnimCurve);

public:
    /// Around the making of many keys; without effect here.
    void KeyModifyBegin();
    void KeyModifyEnd();

    /// Adds a key of value 0, unless there is one at this time.
    ///
    /// @param last in and out: the index of a key nearby, to find the place sooner; may be null
    /// @return the key's index
    int KeyAdd(FbxTime time, int* last = nullptr);

    /// Sets all of a key. Its time must keep its place among the keys.
    ///
    /// @param data0, data1 slopes out of this key and into the next, used with user tangents
    /// @param velocity0, velocity1 aren't written
    void KeySet(int index, FbxTime time, float value,
                FbxAnimCurveDef::EInterpolationType interpolation = FbxAnimCurveDef::eInterpolationCubic,
                FbxAnimCurveDef::ETangentMode tangent = FbxAnimCurveDef::eTangentAuto, float data0 = 0.0F,
                float data1 = 0.0F, FbxAnimCurveDef::EWeightedMode weighted = FbxAnimCurveDef::eWeightedNone,
                float weight0 = FbxAnimCurveDef::sDEFAULT_WEIGHT, float weight1 = FbxAnimCurveDef::sDEFAULT_WEIGHT,
                float velocity0 = FbxAnimCurveDef::sDEFAULT_VELOCITY,
                float velocity1 = FbxAnimCurveDef::sDEFAULT_VELOCITY);

    void KeySetValue(int index, float value);
    void KeySetInterpolation(int index, FbxAnimCurveDef::EInterpolationType interpolation);
    void KeySetTangentMode(int index, FbxAnimCurveDef::ETangentMode tangent);
    void KeySetConstantMode(int index, FbxAnimCurveDef::EConstantMode mode);

    FbxTime KeyGetTime(int index) const;
    float KeyGetValue(int index) const;
    FbxAnimCurveDef::EInterpolationType KeyGetInterpolation(int index) const;
    FbxAnimCurveDef::ETangentMode KeyGetTangentMode(int index) const;
    int KeyGetCount() const;
    void KeyClear();
    void ResizeKeyBuffer(int count);

    /// All keys, for the writer.
    std::vector<FbxAnimCurveKey> const& keys() const;

    /// Multiplies values and slopes.
    void KeyScaleValue(float factor);

private:
    bool has(int index) const;

    std::vector<FbxAnimCurveKey> mKeys;
};

/// The curves of one property in one layer: a channel for each of its numbers.
class FbxAnimCurveNode : public FbxObject
{
    FBXSDK_OBJECT_DECLARE(FbxAnimCurveNode);

public:
    unsigned int GetChannelsCount() const;
    FbxString GetChannelName(int index) const;

    /// The curve of a channel, or null.
    FbxAnimCurve* GetCurve(unsigned int channel, unsigned int id = 0) const;

    /// A new curve for a channel that has none, else the one it has; null for an unknown channel.
    FbxAnimCurve* CreateCurve(char const* curveNodeName, unsigned int channel);
    FbxAnimCurve* CreateCurve(char const* curveNodeName, char const* channel);

    /// Whether a curve has a key.
    bool IsAnimated(bool recursive = false) const;

    FbxAnimLayer* layer() const;
    FbxPropertyRecord* record() const;

    /// The next one of the same property, in another layer.
    FbxAnimCurveNode* next() const;

    /// Makes it that of a property in a layer.
    void bind(FbxAnimLayer* layer, FbxPropertyRecord* record);

private:
    friend class FbxObject;
    void collectDoomed(std::vector<FbxObject*>& doomed, bool recursive) override;
    void forget(FbxDoomed const& doomed) override;

    FbxAnimLayer* mLayer = nullptr;
    FbxPropertyRecord* mRecord = nullptr;
    FbxAnimCurveNode* mNext = nullptr;
    FbxAnimCurve* mCurves[3] = {};
};

/// A set of curves.
class FbxAnimLayer : public FbxCollection
{
    FBXSDK_OBJECT_DECLARE(FbxAnimLayer);

public:
    FbxPropertyT<FbxDouble> Weight;

    /// What it animates, in the order in which that began.
    std::vector<FbxAnimCurveNode*> const& curveNodes() const;

private:
    friend class FbxAnimCurveNode;
    void placedIn(FbxObject* container) override;
    void collectDoomed(std::vector<FbxObject*>& doomed, bool recursive) override;
    void forget(FbxDoomed const& doomed) override;

    std::vector<FbxAnimCurveNode*> mCurveNodes;
};

/// A take: layers with what they animate, and a span of time.
class FbxAnimStack : public FbxCollection
{
    FBXSDK_OBJECT_DECLARE(FbxAnimStack);

public:
    FbxPropertyT<FbxString> Description;

    /// The span that is meant to be played. Where start and stop are both 0 the file gets that
    /// of the keys.
    FbxPropertyT<FbxTime> LocalStart;
    FbxPropertyT<FbxTime> LocalStop;
    FbxPropertyT<FbxTime> ReferenceStart;
    FbxPropertyT<FbxTime> ReferenceStop;

    FbxTimeSpan GetLocalTimeSpan() const;
    void SetLocalTimeSpan(FbxTimeSpan const& span);

private:
    void placedIn(FbxObject* container) override;
};

}
