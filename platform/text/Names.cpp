#include "text/Names.h"

namespace Text
{

QString blanksToUnderscores(QString text)
{
    return text.replace(QLatin1Char(' '), QLatin1Char('_'));
}

QString pathMessage(QString const& path, QString const& message)
{
    return path + QLatin1String(": ") + message;
}

QString UniqueNames::take(QString const& name)
{
    auto const found = m_names.find(name);
    if (found == m_names.end())
    {
        m_names.insert(name, false);
        return name;
    }
    constexpr int MOST_CLASHES = 1000;
    if (!*found && m_clashes.size() < MOST_CLASHES)
    {
        m_clashes.append(name);
    }
    *found = true;
    ++m_renamed;
    QString replacement;
    do
    {
        replacement = name + QStringLiteral("_%1").arg(++m_counter, 4, 10, QLatin1Char('0'));
    } while (m_names.contains(replacement));
    m_names.insert(replacement, false);
    return replacement;
}

bool UniqueNames::holds(QString const& name) const
{
    return m_names.contains(name);
}

}
