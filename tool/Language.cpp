#include "Language.h"

#include "Failure.h"

#include <QCoreApplication>
#include <QDir>
#include <QTranslator>

void useLanguage(QString const& code)
{
    QString const english = QStringLiteral("en");
    if (code == english)
    {
        return;
    }
    QString const prefix = QStringLiteral("marlo_");
    QString const suffix = QStringLiteral(".qm");
    QDir const folder(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/marlo/translations"));
    QStringList found{english};
    for (QString const& file : folder.entryList({prefix + QLatin1Char('*') + suffix}, QDir::Files, QDir::Name))
    {
        found += file.mid(prefix.size(), file.size() - prefix.size() - suffix.size());
    }
    if (!found.contains(code))
    {
        throw usageError(QStringLiteral("--lang: there are no texts in \"") + code + QStringLiteral("\"; found ") +
                         found.join(QStringLiteral(", ")) + QStringLiteral(" (in ") + folder.absolutePath() +
                         QLatin1Char(')'));
    }
    auto* const translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(folder.filePath(prefix + code + suffix)))
    {
        throw Failure(Refused, QStringLiteral("can't read ") + folder.filePath(prefix + code + suffix));
    }
    QCoreApplication::installTranslator(translator);
}
