#pragma once
// From what an exporter's helper gives to the values of a matchmove scene.

#include "Host/CameraSolveHelper.h"
#include "kestrelia/Scene.h"

#include <vector>

namespace MarloHost
{

/// The order of angles that KestreliaSetup::applyHelperSettings() sets: XYZ about moving axes.
constexpr int KESTRELIA_ORDER = 21;

/// @param rotation degrees, in an order of SFMEulerAngles
KestreliaLib::Pose kestreliaPose(Sabrel::Vector3 const& position, Sabrel::Vector3 const& rotation,
                                 Sabrel::Vector3 const& scale, int order);

KestreliaLib::Vector3 kestreliaPoint(Sabrel::Vector3 const& point);

bool isFinite(double number);
bool isFinite(KestreliaLib::Vector2 const& point);
bool isFinite(KestreliaLib::Vector3 const& point);
bool isFinite(KestreliaLib::Pose const& pose);
bool isFinite(KestreliaLib::Lens const& lens);
bool isFinite(std::vector<KestreliaLib::Vector3> const& points);

/// Puts the data of a helper into samples, frame by frame.
class SampleFilling
{
public:
    /// @param first,last host frames of the shot, both included
    /// @param offset from host frames to those of the shot
    SampleFilling(int first, int last, int offset) : m_first(first), m_last(last), m_offset(offset)
    {
    }

    /// A sample for each context in the shot whose value is finite; data of one context are at
    /// rest.
    ///
    /// @param valueAt gives the value of an index into the contexts
    template <typename T, typename ValueAt>
    KestreliaLib::Samples<T> samples(std::vector<Anm::Context> const& contexts, ValueAt const& valueAt)
    {
        KestreliaLib::Samples<T> samples;
        bool const isAtRest = contexts.size() == 1;
        for (std::size_t i = 0; i < contexts.size(); ++i)
        {
            int const frame = contexts[i].frameValue();
            if (!isAtRest && (frame < m_first || frame > m_last))
            {
                continue;
            }
            T value = valueAt(i);
            if (!isFinite(value))
            {
                ++m_leftOut;
            }
            else if (isAtRest)
            {
                samples = KestreliaLib::Samples<T>::atRest(std::move(value));
            }
            else
            {
                samples.add(frame + m_offset, std::move(value));
            }
        }
        return samples;
    }

    void leaveOut()
    {
        ++m_leftOut;
    }

    /// Samples that aren't finite.
    int leftOut() const
    {
        return m_leftOut;
    }

private:
    int m_first;
    int m_last;
    int m_offset;
    int m_leftOut = 0;
};

}
