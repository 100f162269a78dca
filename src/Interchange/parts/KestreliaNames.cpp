#include "Interchange/parts/KestreliaNames.h"

namespace Export
{

QString KestreliaNames::renamed(QStringList const& clashes)
{
    if (clashes.isEmpty())
    {
        return QString();
    }
    constexpr int MOST = 5;
    QString names = QStringList(clashes.mid(0, MOST)).join(QStringLiteral(", "));
    if (clashes.size() > MOST)
    {
        names = tr("%1 and %2 more").arg(names, QString::number(clashes.size() - MOST));
    }
    return tr("Several things have one name: %1. All but the first got numbers.").arg(names);
}

}
