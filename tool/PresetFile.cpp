#include "PresetFile.h"

#include "Failure.h"
#include "Host/KORV_Exception.h"
#include "text/PartFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <fstream>
#include <ios>
#include <sstream>

namespace
{

/// "boolean" as "a boolean".
QString withArticle(QString const& type)
{
    return (type == QLatin1String("array") || type == QLatin1String("object") ? QStringLiteral("an ")
            : type == QLatin1String("null")                                   ? QString()
                                                                              : QStringLiteral("a ")) +
           type;
}

/// The words of the JSON library as the project reader would say them.
QString inOurWords(QString words)
{
    static QRegularExpression const prefix(QStringLiteral("^\\[json[^\\]]*\\] (parse error at )?"));
    static QRegularExpression const wrongType(QStringLiteral("^type must be (\\w+), but is (\\w+)$"));
    static QRegularExpression const missing(QStringLiteral("^key '(.*)' not found$"));
    static QRegularExpression const noObject(QStringLiteral("^cannot use \\w+\\(\\) with (\\w+)$"));
    words.remove(prefix);
    if (QRegularExpressionMatch const match = wrongType.match(words); match.hasMatch())
    {
        return QStringLiteral("expected ") + withArticle(match.captured(1)) + QStringLiteral(", found ") +
               withArticle(match.captured(2));
    }
    if (QRegularExpressionMatch const match = noObject.match(words); match.hasMatch())
    {
        return QStringLiteral("expected an object, found ") + withArticle(match.captured(1));
    }
    QRegularExpressionMatch const match = missing.match(words);
    return match.hasMatch() ? QStringLiteral("the key \"") + match.captured(1) + QStringLiteral("\" is missing")
                            : words;
}

Failure unreadable(QString const& path, QString const& cause)
{
    return Failure(UnreadableInput, path + QStringLiteral(": ") + cause);
}

}

Presets readPresets(QString const& path)
{
    std::ifstream stream(QFile::encodeName(path).toStdString());
    if (!stream.is_open())
    {
        throw unreadable(path, QStringLiteral("can't be opened (%1)").arg(qt_error_string(errno)));
    }
    std::string place;
    try
    {
        return Export::deserialisePresets(stream, place);
    }
    catch (std::ios_base::failure const&)
    {
        // A folder opens like a file and fails when it is read.
        QString const reason = qt_error_string(QFileInfo(path).isDir() ? EISDIR : EIO);
        throw unreadable(path, QStringLiteral("can't be read (%1)").arg(reason));
    }
    catch (KORV_BadFile const&)
    {
        throw unreadable(path, QString::fromStdString(place) +
                                   QStringLiteral(": this program reads version 1 of the presets file"));
    }
    catch (std::exception const& error)
    {
        throw unreadable(path, QString::fromStdString(place) + QStringLiteral(": ") +
                                   inOurWords(QString::fromUtf8(error.what())));
    }
}

// The library writes presets too, but can't say what the system had against it.
void writePresets(Presets const& presets, QString const& path)
{
    std::string const text = Export::serialisePresets(presets, true);
    std::istringstream again(text);
    try
    {
        Export::deserialisePresets(again);
    }
    catch (std::exception const& error)
    {
        throw Failure(Refused, path + QStringLiteral(": ") + inOurWords(QString::fromUtf8(error.what())));
    }
    QDir().mkpath(QFileInfo(path).absolutePath());
    Text::sweepPartFiles({path});
    if (!Text::writeWholeFile(path, QByteArray::fromStdString(text)))
    {
        QString const reason = qt_error_string(errno);
        throw Failure(Refused, QStringLiteral("Could not write to file ") + path + QStringLiteral(": ") + reason);
    }
}

// By the bytes, as the library sorts them.
QStringList namesOf(Presets const& presets)
{
    QStringList names = presets.keys();
    std::sort(names.begin(), names.end(),
              [](QString const& left, QString const& right) { return left.toUtf8() < right.toUtf8(); });
    return names;
}

void checkName(Presets const& presets, QString const& name)
{
    if (!presets.contains(name))
    {
        throw usageError(QStringLiteral("there is no preset \"") + name + QStringLiteral("\"; found ") +
                         quotedList(namesOf(presets)));
    }
}
