#pragma once
// Animation of Nuke's knobs: curves of keys, points of two curves, and the lists of
// texts that a knob holds.

#include "Core/ExportApi.h"
#include "Writing/TextBuffer.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <utility>
#include <vector>

namespace Export
{

/// A named curve: one value for a frame, ascending by frame. Both are 32-bit floats, so
/// frames are whole numbers up to 2^24 only.
class MARLO_EXPORT_API NukeCurve
{
public:
    struct Key
    {
        float frame;
        float value;
    };

    explicit NukeCurve(QString const& name = QString());
    NukeCurve(NukeCurve const& other);
    NukeCurve(NukeCurve&& other) noexcept;
    NukeCurve& operator=(NukeCurve const& other);
    NukeCurve& operator=(NukeCurve&& other) noexcept;
    ~NukeCurve();

    /// Makes room for so many keys; keys that come in ascending order are then added
    /// without a copy.
    void reserve(int keys);

    /// A key of an equal frame is replaced.
    void addKeyframe(float frame, float value);

    std::vector<Key> const& keys() const;

    /// Takes out the keys of these frames, which ascend.
    void removeKeyframes(std::vector<float> const& frames);

    /// The curve as Nuke reads it, "{curve x1 100.5 x2 101.25}": frames rounded to whole
    /// numbers, values with six significant digits. Without keys it is "{curve  }".
    operator QString() const;

    /// Appends that text.
    void appendTo(TextBuffer& out) const;

    /// No fewer bytes than the text has; off by half at most for common values.
    qint64 textLimit() const;

private:
    QString m_name;
    std::vector<Key> m_keys;
};

/// x first, then y.
using NukePointCurve = std::pair<NukeCurve, NukeCurve>;

/// "{curve x1 100} {curve x1 50}".
MARLO_EXPORT_API void appendPoint(TextBuffer& out, NukePointCurve const& point);

/// Takes out of both curves of each point the keys of frames in which one of them is no
/// finite number: Nuke would take the word for one as the name of a variable.
///
/// @return how many keys each of the points lost, in sum
int removeUnwritableKeys(QVector<NukePointCurve>& points);

/// A knob that holds a list of texts.
class MARLO_EXPORT_API NukeValueList
{
public:
    /// @param name with the blanks that stand in front of it in the node
    explicit NukeValueList(QString const& name);

    void append(QString const& text);

    /// "NAME {FIRST SECOND}" and a line end.
    QString toString() const;

private:
    QString m_name;
    QStringList m_texts;
};

}
