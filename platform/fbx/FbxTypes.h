#pragma once
// Numbers, text and small vectors.

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace fbxsdk
{

using FbxBool = bool;
using FbxChar = signed char;
using FbxInt = int;
using FbxUInt = unsigned int;
using FbxLongLong = std::int64_t;
using FbxULongLong = std::uint64_t;
using FbxInt64 = std::int64_t;
using FbxUInt64 = std::uint64_t;
using FbxFloat = float;
using FbxDouble = double;

/// N components. The values of a new one are 0.
template <class T, int N>
class FbxVectorTemplate
{
public:
    T& operator[](int index)
    {
        return mData[index];
    }

    T const& operator[](int index) const
    {
        return mData[index];
    }

    bool operator==(FbxVectorTemplate const& other) const
    {
        for (int i = 0; i < N; ++i)
        {
            if (mData[i] != other.mData[i])
            {
                return false;
            }
        }
        return true;
    }

    bool operator!=(FbxVectorTemplate const& other) const
    {
        return !(*this == other);
    }

    T mData[N] = {};
};

template <class T>
class FbxVectorTemplate2 : public FbxVectorTemplate<T, 2>
{
public:
    FbxVectorTemplate2() = default;

    FbxVectorTemplate2(T const& x, T const& y)
    {
        this->mData[0] = x;
        this->mData[1] = y;
    }
};

template <class T>
class FbxVectorTemplate3 : public FbxVectorTemplate<T, 3>
{
public:
    FbxVectorTemplate3() = default;

    FbxVectorTemplate3(T const& x, T const& y, T const& z)
    {
        this->mData[0] = x;
        this->mData[1] = y;
        this->mData[2] = z;
    }
};

template <class T>
class FbxVectorTemplate4 : public FbxVectorTemplate<T, 4>
{
public:
    FbxVectorTemplate4() = default;

    FbxVectorTemplate4(T const& x, T const& y, T const& z, T const& w)
    {
        this->mData[0] = x;
        this->mData[1] = y;
        this->mData[2] = z;
        this->mData[3] = w;
    }

    /// The first three components; so a property of three takes a vector of four.
    operator FbxVectorTemplate3<T>() const
    {
        return {this->mData[0], this->mData[1], this->mData[2]};
    }
};

using FbxDouble2 = FbxVectorTemplate2<FbxDouble>;
using FbxDouble3 = FbxVectorTemplate3<FbxDouble>;
using FbxDouble4 = FbxVectorTemplate4<FbxDouble>;

class FbxVector2 : public FbxDouble2
{
public:
    FbxVector2() = default;

    FbxVector2(double x, double y) : FbxDouble2(x, y)
    {
    }
};

/// A position or direction; its last component has no effect on what is written.
class FbxVector4 : public FbxDouble4
{
public:
    FbxVector4() = default;

    FbxVector4(double x, double y, double z, double w = 1.0) : FbxDouble4(x, y, z, w)
    {
    }

    FbxVector4(FbxDouble3 const& xyz) : FbxDouble4(xyz[0], xyz[1], xyz[2], 1.0)
    {
    }

    void Set(double x, double y, double z, double w = 1.0)
    {
        *this = FbxVector4(x, y, z, w);
    }
};

/// Text in UTF-8.
class FbxString
{
public:
    FbxString() = default;

    FbxString(char const* text) : mText(text ? text : "")
    {
    }

    FbxString(std::string text) : mText(std::move(text))
    {
    }

    char const* Buffer() const
    {
        return mText.c_str();
    }

    operator char const*() const
    {
        return mText.c_str();
    }

    std::size_t GetLen() const
    {
        return mText.size();
    }

    bool IsEmpty() const
    {
        return mText.empty();
    }

    bool operator==(FbxString const& other) const
    {
        return mText == other.mText;
    }

    bool operator==(char const* other) const
    {
        return mText == (other ? other : "");
    }

    bool operator!=(FbxString const& other) const
    {
        return !(*this == other);
    }

private:
    std::string mText;
};

/// How a node's three angles are applied. In eEulerXYZ the rotation about x comes first.
enum EFbxRotationOrder
{
    eEulerXYZ,
    eEulerXZY,
    eEulerYZX,
    eEulerYXZ,
    eEulerZXY,
    eEulerZYX,
    eSphericXYZ
};

}
