#include "TargetPath.h"

#include <QFileInfo>

namespace
{

/// Leaves room in a name of at most 255 bytes for what comes behind it.
constexpr int LONGEST_NAME = 200;

QString withExtension(QString const& path, QString const& extension)
{
    return path.endsWith(extension, Qt::CaseInsensitive) ? path : path + extension;
}

}

QString safeFileName(QString const& name)
{
    QString safe = name;
    bool isLeading = true;
    for (QChar& c : safe)
    {
        bool const isDot = c == QLatin1Char('.');
        isLeading = isLeading && isDot;
        bool const isControl = c.category() == QChar::Other_Control;
        if (isLeading || isControl || c == QLatin1Char('/') || c == QLatin1Char('\\'))
        {
            c = QLatin1Char('_');
        }
    }
    safe.truncate(LONGEST_NAME);
    while (safe.toUtf8().size() > LONGEST_NAME || (!safe.isEmpty() && safe.at(safe.size() - 1).isHighSurrogate()))
    {
        safe.chop(safe.size() > 1 && safe.at(safe.size() - 1).isLowSurrogate() ? 2 : 1);
    }
    return safe.isEmpty() ? QStringLiteral("_") : safe;
}

bool isFolder(QString const& output)
{
    return output.endsWith(QLatin1Char('/')) || QFileInfo(output).isDir();
}

QString targetPath(std::optional<QString> const& output, QString const& suggestion, QString const& extension)
{
    if (output && !isFolder(*output))
    {
        return withExtension(*output, extension);
    }
    QString const folder =
        !output || output->endsWith(QLatin1Char('/')) ? output.value_or(QString()) : *output + QLatin1Char('/');
    return folder + withExtension(safeFileName(suggestion), extension);
}
