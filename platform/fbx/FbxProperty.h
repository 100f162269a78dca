#pragma once
// Named values of objects.

#include "FbxTime.h"
#include "FbxTypes.h"

#include <iterator>
#include <type_traits>

#define FBXSDK_CURVENODE_TRANSLATION "T"
#define FBXSDK_CURVENODE_ROTATION "R"
#define FBXSDK_CURVENODE_SCALING "S"
#define FBXSDK_CURVENODE_COMPONENT_X "X"
#define FBXSDK_CURVENODE_COMPONENT_Y "Y"
#define FBXSDK_CURVENODE_COMPONENT_Z "Z"

namespace fbxsdk
{

class FbxAnimCurve;
class FbxAnimCurveNode;
class FbxAnimLayer;
class FbxAnimStack;
class FbxObject;
struct FbxPropertyRecord;

/// Another object that a property points to, or null.
using FbxReference = FbxObject*;

/// What a property holds on its way in or out: numbers, of which one may be a time, a text or an
/// object.
struct FbxPropertyValue
{
    enum EKind
    {
        eNumbers,
        eText,
        eObject
    };

    EKind kind = eNumbers;
    int count = 0;
    double numbers[4] = {};
    FbxLongLong ticks = 0;
    FbxString text;
    FbxObject* object = nullptr;
};

/// A handle to a named value of an object. Copies mean the same value; the object must live.
class FbxProperty
{
public:
    /// A handle to nothing.
    FbxProperty() = default;

    explicit FbxProperty(FbxPropertyRecord* record) : mRecord(record)
    {
    }

    bool IsValid() const
    {
        return mRecord != nullptr;
    }

    FbxString GetName() const;
    char const* GetNameAsCStr() const;
    FbxObject* GetFbxObject() const;

    /// Sets the value. A number goes into any property of numbers, where components that aren't
    /// given stay; text goes into text only.
    ///
    /// @return false, and nothing changes, when there is no property or it holds another kind
    template <class T>
    bool Set(T const& value)
    {
        return SetValue(ToValue(value));
    }

    /// The value; 0 or empty where the property holds another kind.
    template <class T>
    T Get() const
    {
        return FromValue<T>(GetValue());
    }

    /// The curves of this property in a layer; null when there are none and none are to be made,
    /// or when the property can't be animated.
    FbxAnimCurveNode* GetCurveNode(FbxAnimLayer* layer, bool create = false);

    /// The same in the stack's first layer.
    FbxAnimCurveNode* GetCurveNode(FbxAnimStack* stack, bool create = false);

    /// The same in the first layer of the scene's current or else first stack.
    FbxAnimCurveNode* GetCurveNode(bool create = false);

    /// The curve of the first channel.
    FbxAnimCurve* GetCurve(FbxAnimLayer* layer, bool create = false);

    /// @param channel "X", "Y" or "Z" of a vector; a single value's channel is named as the
    ///                property. Null is the first.
    FbxAnimCurve* GetCurve(FbxAnimLayer* layer, char const* channel, bool create = false);

    /// @param name of the curve node; it has no effect
    FbxAnimCurve* GetCurve(FbxAnimLayer* layer, char const* name, char const* channel, bool create);

    /// Whether a curve of the layer, or of any when it is null, has a key.
    bool IsAnimated(FbxAnimLayer* layer = nullptr) const;

    bool operator==(FbxProperty const& other) const
    {
        return mRecord == other.mRecord;
    }

    FbxPropertyRecord* record() const
    {
        return mRecord;
    }

private:
    bool SetValue(FbxPropertyValue const& value);
    FbxPropertyValue GetValue() const;

    template <class T>
    static FbxPropertyValue ToValue(T const& value)
    {
        FbxPropertyValue result;
        if constexpr (std::is_arithmetic_v<T> || std::is_enum_v<T>)
        {
            result.count = 1;
            result.numbers[0] = static_cast<double>(value);
            if constexpr (std::is_floating_point_v<T>)
            {
                // What no whole number can be, NaN among it, is none.
                constexpr double MOST = 9.2e18;
                result.ticks = value > -MOST && value < MOST ? static_cast<FbxLongLong>(value) : 0;
            }
            else
            {
                result.ticks = static_cast<FbxLongLong>(value);
            }
        }
        else if constexpr (std::is_same_v<T, FbxTime>)
        {
            result.count = 1;
            result.ticks = value.Get();
            result.numbers[0] = static_cast<double>(value.Get());
        }
        else if constexpr (std::is_convertible_v<T, FbxObject*>)
        {
            result.kind = FbxPropertyValue::eObject;
            result.object = value;
        }
        else if constexpr (std::is_convertible_v<T, char const*>)
        {
            result.kind = FbxPropertyValue::eText;
            result.text = FbxString(static_cast<char const*>(value));
        }
        else
        {
            result.count = static_cast<int>(std::size(value.mData));
            for (int i = 0; i < result.count; ++i)
            {
                result.numbers[i] = value[i];
            }
        }
        return result;
    }

    template <class T>
    static T FromValue(FbxPropertyValue const& value)
    {
        if constexpr (std::is_arithmetic_v<T> || std::is_enum_v<T>)
        {
            return static_cast<T>(value.numbers[0]);
        }
        else if constexpr (std::is_same_v<T, FbxTime>)
        {
            return value.ticks;
        }
        else if constexpr (std::is_same_v<T, FbxReference>)
        {
            return value.object;
        }
        else if constexpr (std::is_same_v<T, FbxString>)
        {
            return value.text;
        }
        else
        {
            T result;
            for (std::size_t i = 0; i < std::size(result.mData); ++i)
            {
                result[static_cast<int>(i)] = value.numbers[i];
            }
            return result;
        }
    }

    FbxPropertyRecord* mRecord = nullptr;
};

/// A property whose type is known.
template <class T>
class FbxPropertyT : public FbxProperty
{
public:
    FbxPropertyT() = default;

    explicit FbxPropertyT(FbxPropertyRecord* record) : FbxProperty(record)
    {
    }

    FbxPropertyT(FbxPropertyT const&) = default;
    FbxPropertyT& operator=(FbxPropertyT const&) = delete;

    FbxPropertyT& operator=(T const& value)
    {
        FbxProperty::Set(value);
        return *this;
    }

    bool Set(T const& value)
    {
        return FbxProperty::Set(value);
    }

    T Get() const
    {
        return FbxProperty::Get<T>();
    }

    operator T() const
    {
        return Get();
    }
};

}
