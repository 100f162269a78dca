#include "FbxParts.h"

#include <algorithm>

namespace fbxsdk
{

namespace
{

using Def = FbxAnimCurveDef;

/// The slope at a key, in units per second.
float autoSlope(std::vector<FbxAnimCurveKey> const& keys, std::size_t index)
{
    if (index == 0 || index + 1 >= keys.size())
    {
        return 0.0F;
    }
    FbxAnimCurveKey const& before = keys[index - 1];
    FbxAnimCurveKey const& after = keys[index + 1];
    double const rise = static_cast<double>(after.value) - before.value;
    return static_cast<float>(rise / (after.time - before.time).GetSecondDouble());
}

}

FbxKeyForm fbxKeyForm(std::vector<FbxAnimCurveKey> const& keys, std::size_t index)
{
    FbxAnimCurveKey const& key = keys[index];
    FbxKeyForm form{0, {0, 0}, {Def::sDEFAULT_WEIGHT, Def::sDEFAULT_WEIGHT}};
    if (key.interpolation == Def::eInterpolationConstant)
    {
        form.flags = Def::eInterpolationConstant | (key.tangent & Def::eConstantNext);
        return form;
    }
    if (key.interpolation != Def::eInterpolationCubic)
    {
        form.flags = Def::eInterpolationLinear | Def::eTangentUser;
        return form;
    }
    bool const isUser = key.tangent & Def::eTangentUser;
    form.flags = Def::eInterpolationCubic | Def::eTangentUser;
    form.flags |= isUser ? key.tangent & Def::eTangentGenericBreak : 0;
    form.slopes[0] = isUser ? key.slopes[0] : autoSlope(keys, index);
    form.slopes[1] = isUser ? key.slopes[1] : autoSlope(keys, index + 1);
    form.flags |= key.weighted;
    for (int side = 0; side < 2; ++side)
    {
        bool const isWeighted = key.weighted & (side == 0 ? Def::eWeightedRight : Def::eWeightedNextLeft);
        float const weight = isWeighted ? key.weights[side] : Def::sDEFAULT_WEIGHT;
        form.weights[side] = std::clamp(weight, Def::sMIN_WEIGHT, Def::sMAX_WEIGHT);
    }
    return form;
}

}
