#pragma once
// Small texts that many exporters put together in the same way.

#include <QHash>
#include <QString>
#include <QStringList>

namespace Text
{

/// The text with every blank replaced by "_", for programs whose names end at a
/// blank. Tabs and other white space stay.
QString blanksToUnderscores(QString text);

/// "PATH: MESSAGE", the line that tells of a failure in one file. Neither text is
/// searched for placeholders: one that holds "%1" stays as it is.
QString pathMessage(QString const& path, QString const& message);

/// Makes the names of a document unique. The first of a name keeps it; the others get "_" and
/// four digits or more of a counter that the whole document shares: "Point", "Point_0001".
/// That takes the same time for each name, however many are equal.
class UniqueNames
{
public:
    /// The name, or its replacement, which is taken from then on.
    QString take(QString const& name);

    /// Whether the name is taken.
    bool holds(QString const& name) const;

    /// Names that were taken before, each once in the order in which that was seen; after
    /// some of them no more are kept.
    QStringList const& clashes() const
    {
        return m_clashes;
    }

    /// How many names were replaced.
    int renamedCount() const
    {
        return m_renamed;
    }

private:
    /// The names, and whether one clashed.
    QHash<QString, bool> m_names;
    QStringList m_clashes;
    int m_renamed = 0;
    int m_counter = 0;
};

}
