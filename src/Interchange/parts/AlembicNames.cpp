#include "Interchange/parts/AlembicNames.h"

#include <algorithm>

namespace Export
{

namespace
{

constexpr int MOST_EXAMPLES = 5;
constexpr int LONGEST_EXAMPLE = 80;

QString withoutSeparators(QString name)
{
    auto const cannotStand = [](QChar c) { return c == QLatin1Char('/') || c.category() == QChar::Other_Control; };
    std::replace_if(name.begin(), name.end(), cannotStand, QLatin1Char('_'));
    // What isn't Unicode would make one name of two.
    return name.isEmpty() ? QStringLiteral("unnamed") : QString::fromUtf8(name.toUtf8());
}

}

std::string AlembicNames::claim(QString const& wanted)
{
    QString const name = m_names.take(withoutSeparators(wanted));
    if (name != wanted && ++m_renamed <= MOST_EXAMPLES)
    {
        m_examples += QStringLiteral("\"%1\" is \"%2\"").arg(wanted.left(LONGEST_EXAMPLE), name.right(LONGEST_EXAMPLE));
    }
    return name.toStdString();
}

std::string AlembicNames::claimOwn(QString const& wanted)
{
    return m_names.take(wanted).toStdString();
}

QString AlembicNames::renamed() const
{
    if (m_renamed == 0)
    {
        return QString();
    }
    int const others = m_renamed - m_examples.size();
    return QStringLiteral("All names have to be different and without \"/\" in an Alembic file: ") +
           m_examples.join(QStringLiteral(", ")) +
           (others > 0 ? QStringLiteral(" and %1 more").arg(others) : QString());
}

}
