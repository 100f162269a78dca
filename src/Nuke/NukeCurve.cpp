#include "Nuke/NukeCurve.h"

#include "Writing/Values.h"

#include <algorithm>
#include <cmath>

namespace Export
{

namespace
{

// Characters of the frame's whole number; one more below a power of ten that it
// rounds up to.
int frameLength(NukeCurve::Key const& key)
{
    int length = 2;
    for (float rest = std::abs(key.frame); rest >= 1 && length < 41; rest /= 10)
    {
        ++length;
    }
    return length;
}

}

NukeCurve::NukeCurve(QString const& name) : m_name(name)
{
}

NukeCurve::NukeCurve(NukeCurve const& other) = default;
NukeCurve::NukeCurve(NukeCurve&& other) noexcept = default;
NukeCurve& NukeCurve::operator=(NukeCurve const& other) = default;
NukeCurve& NukeCurve::operator=(NukeCurve&& other) noexcept = default;
NukeCurve::~NukeCurve() = default;

void NukeCurve::reserve(int keys)
{
    m_keys.reserve(static_cast<std::size_t>(keys));
}

void NukeCurve::addKeyframe(float frame, float value)
{
    if (m_keys.empty() || m_keys.back().frame < frame)
    {
        m_keys.push_back({frame, value});
        return;
    }
    auto const at = std::lower_bound(m_keys.begin(), m_keys.end(), frame,
                                     [](Key const& key, float searched) { return key.frame < searched; });
    if (frame < at->frame)
    {
        m_keys.insert(at, {frame, value});
    }
    else
    {
        at->value = value;
    }
}

std::vector<NukeCurve::Key> const& NukeCurve::keys() const
{
    return m_keys;
}

void NukeCurve::removeKeyframes(std::vector<float> const& frames)
{
    m_keys.erase(std::remove_if(m_keys.begin(), m_keys.end(),
                                [&](Key const& key)
                                { return std::binary_search(frames.begin(), frames.end(), key.frame); }),
                 m_keys.end());
}

NukeCurve::operator QString() const
{
    TextBuffer text;
    appendTo(text);
    return text.toString();
}

void NukeCurve::appendTo(TextBuffer& out) const
{
    out << "{curve" << m_name << ' ';
    char const* separator = "x";
    for (Key const& key : m_keys)
    {
        out << separator << Fixed{static_cast<double>(key.frame), 0} << ' ' << General{static_cast<double>(key.value)};
        separator = " x";
    }
    // Without keys a second blank stands in their place.
    out << (m_keys.empty() ? " }" : "}");
}

qint64 NukeCurve::textLimit() const
{
    constexpr int AROUND_KEYS = 9;    // "{curve  }"
    constexpr int AROUND_NUMBERS = 3; // " x1 1"
    constexpr int LONGEST_VALUE = 12; // "-1.23457e+06"
    int const frame = m_keys.empty() ? 0 : std::max(frameLength(m_keys.front()), frameLength(m_keys.back()));
    return AROUND_KEYS + m_name.size() + static_cast<qint64>(m_keys.size()) * (AROUND_NUMBERS + frame + LONGEST_VALUE);
}

void appendPoint(TextBuffer& out, NukePointCurve const& point)
{
    point.first.appendTo(out);
    out << ' ';
    point.second.appendTo(out);
}

int removeUnwritableKeys(QVector<NukePointCurve>& points)
{
    int removed = 0;
    std::vector<float> frames;
    for (NukePointCurve& point : points)
    {
        frames.clear();
        for (NukeCurve const* const curve : {&point.first, &point.second})
        {
            for (NukeCurve::Key const& key : curve->keys())
            {
                if (!isWritable(static_cast<double>(key.value)))
                {
                    frames.push_back(key.frame);
                }
            }
        }
        if (frames.empty())
        {
            continue;
        }
        std::sort(frames.begin(), frames.end());
        frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
        point.first.removeKeyframes(frames);
        point.second.removeKeyframes(frames);
        removed += static_cast<int>(frames.size());
    }
    return removed;
}

NukeValueList::NukeValueList(QString const& name) : m_name(name)
{
}

void NukeValueList::append(QString const& text)
{
    m_texts.append(text);
}

QString NukeValueList::toString() const
{
    return m_name + QLatin1String(" {") + m_texts.join(QLatin1Char(' ')) + QLatin1String("}\n");
}

}
