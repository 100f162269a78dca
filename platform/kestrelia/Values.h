#pragma once
// The values that a matchmove scene is made of.

#include <array>
#include <string>
#include <vector>

namespace KestreliaLib
{

struct Vector2
{
    double x = 0.0;
    double y = 0.0;

    bool operator==(Vector2 const& other) const
    {
        return x == other.x && y == other.y;
    }
};

struct Vector3
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    bool operator==(Vector3 const& other) const
    {
        return x == other.x && y == other.y && z == other.z;
    }
};

/// Where something stands in what it hangs on: twelve doubles, the first four rows of three
/// of a matrix that acts on row vectors. Each of the rows in `axes` says where one axis of
/// the thing points, and how long it is there.
///
///     p' = p.x axes[0..2] + p.y axes[3..5] + p.z axes[6..8] + position
struct Pose
{
    std::array<double, 9> axes{1, 0, 0, 0, 1, 0, 0, 0, 1};
    Vector3 position;

    Vector3 apply(Vector3 const& p) const
    {
        return {p.x * axes[0] + p.y * axes[3] + p.z * axes[6] + position.x,
                p.x * axes[1] + p.y * axes[4] + p.z * axes[7] + position.y,
                p.x * axes[2] + p.y * axes[5] + p.z * axes[8] + position.z};
    }

    bool operator==(Pose const& other) const
    {
        return axes == other.axes && position == other.position;
    }
};

/// A value over time: one for each of `frames`, which ascend. What is at rest has one
/// value and no frames; what isn't there has neither.
template <typename T>
struct Samples
{
    std::vector<int> frames;
    std::vector<T> values;

    static Samples atRest(T value)
    {
        Samples samples;
        samples.values.push_back(std::move(value));
        return samples;
    }

    bool isEmpty() const
    {
        return values.empty();
    }

    bool isMoving() const
    {
        return !frames.empty();
    }

    void add(int frame, T value)
    {
        frames.push_back(frame);
        values.push_back(std::move(value));
    }

    /// The value of the last sample that isn't after the frame; before the first one its
    /// value. There must be one.
    T const& at(int frame) const
    {
        std::size_t first = 0;
        std::size_t count = frames.size();
        while (count > 0)
        {
            std::size_t const half = count / 2;
            bool const isAfter = frames[first + half] > frame;
            first += isAfter ? 0 : half + 1;
            count = isAfter ? half : count - half - 1;
        }
        return values[first > 0 ? first - 1 : 0];
    }

    bool operator==(Samples const& other) const
    {
        return frames == other.frames && values == other.values;
    }
};

}
