#include "Interchange/parts/USDNames.h"

namespace Export
{

namespace
{

bool isLetter(QChar c)
{
    return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || (c >= QLatin1Char('a') && c <= QLatin1Char('z'));
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// A character beyond the first 65536 is two in a QString; the second one adds nothing.
QString cleaned(QString const& name, bool keepDigits)
{
    QString result;
    result.reserve(name.size() + 1);
    for (QChar const c : name)
    {
        if (!c.isLowSurrogate())
        {
            result += isLetter(c) || (keepDigits && isDigit(c)) ? c : QLatin1Char('_');
        }
    }
    if (result.isEmpty() || isDigit(result[0]))
    {
        result.prepend(QLatin1Char('L'));
    }
    return result;
}

QString joined(PXR_NS::SdfPath const& parent, QString const& name)
{
    return QString::fromStdString(parent.GetString()) + QLatin1Char('/') + name;
}

}

QString primName(QString const& name)
{
    return cleaned(name, true);
}

QString primNameWithoutDigits(QString const& name)
{
    return cleaned(name, false);
}

PXR_NS::SdfPath PrimPaths::take(PXR_NS::SdfPath const& parent, QString const& name)
{
    QString const path = m_names.take(joined(parent, name));
    QString const taken = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    return parent.AppendPath(PXR_NS::SdfPath(taken.toStdString()));
}

bool PrimPaths::holds(PXR_NS::SdfPath const& parent, QString const& name) const
{
    return m_names.holds(joined(parent, name));
}

}
