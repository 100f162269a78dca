#include "FBX/parts/Keys.h"

#include "Writing/Values.h"

#include <algorithm>

namespace Export
{
namespace FBXParts
{

using Sabrel::Vector3;

namespace
{

constexpr char const* CHANNELS[] = {FBXSDK_CURVENODE_COMPONENT_X, FBXSDK_CURVENODE_COMPONENT_Y,
                                    FBXSDK_CURVENODE_COMPONENT_Z};
constexpr double Vector3::*COMPONENTS[] = {&Vector3::x, &Vector3::y, &Vector3::z};

struct Row
{
    FbxTime time;
    Vector3 value;
};

std::vector<Row> keyableRows(SceneContext& context, std::vector<FbxTime> const& times,
                             std::vector<Vector3> const& values)
{
    std::vector<Row> rows;
    rows.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        if (areKeyable({values[i].x, values[i].y, values[i].z}))
        {
            rows.push_back({times.at(i), values[i]});
        }
        else
        {
            ++context.failedCount;
        }
    }
    return rows;
}

/// A key for each frame, joined by straight lines: the one form that all readers show alike.
void fill(FbxAnimCurve* curve, std::vector<Row> const& rows, double Vector3::*component)
{
    using Def = FbxAnimCurveDef;
    curve->KeyModifyBegin();
    int last = 0;
    for (Row const& row : rows)
    {
        int const key = curve->KeyAdd(row.time, &last);
        curve->KeySet(key, row.time, static_cast<float>(row.value.*component), Def::eInterpolationLinear,
                      Def::eTangentAuto, 0.0F, 0.0F, Def::eWeightedNone, Def::sDEFAULT_WEIGHT, Def::sDEFAULT_WEIGHT,
                      Def::sDEFAULT_VELOCITY, Def::sDEFAULT_VELOCITY);
    }
    curve->KeyModifyEnd();
}

}

bool areKeyable(std::initializer_list<double> values)
{
    return std::all_of(values.begin(), values.end(),
                       [](double value)
                       { return isWritable(value) && isWritable(static_cast<double>(static_cast<float>(value))); });
}

FbxDouble3 toFbx(Vector3 const& vector)
{
    return {vector.x, vector.y, vector.z};
}

void keyVectors(SceneContext& context, FbxPropertyT<FbxDouble3>& property, std::vector<FbxTime> const& times,
                std::vector<Vector3> const& values)
{
    std::vector<Row> const rows = keyableRows(context, times, values);
    if (rows.empty())
    {
        return;
    }
    property.Set(toFbx(rows.front().value));
    for (int i = 0; i < 3; ++i)
    {
        fill(property.GetCurve(context.animLayer, CHANNELS[i], true), rows, COMPONENTS[i]);
    }
}

void keyNumbers(SceneContext& context, FbxPropertyT<FbxDouble>& property, std::vector<FbxTime> const& times,
                std::vector<double> const& values)
{
    std::vector<Vector3> inX(values.size());
    std::transform(values.begin(), values.end(), inX.begin(), [](double value) { return Vector3{value, 0.0, 0.0}; });
    std::vector<Row> const rows = keyableRows(context, times, inX);
    if (!rows.empty())
    {
        property.Set(rows.front().value.x);
        fill(property.GetCurve(context.animLayer, true), rows, &Vector3::x);
    }
}

void setVectors(SceneContext& context, FbxPropertyT<FbxDouble3>& property, std::vector<FbxTime> const& times,
                std::vector<Vector3> const& values)
{
    if (values.size() != 1)
    {
        keyVectors(context, property, times, values);
    }
    else if (areWritable(std::initializer_list<double>{values[0].x, values[0].y, values[0].z}))
    {
        property.Set(toFbx(values[0]));
    }
    else
    {
        ++context.failedCount;
    }
}

}
}
