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

}
