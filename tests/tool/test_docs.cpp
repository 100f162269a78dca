// The man page and the completion for bash against what --help says.

#include "ToolRun.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace
{

QByteArray sourceFile(QString const& name)
{
    QFile file(QStringLiteral(MARLO_SOURCE_DIR "/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A sorted list without doubles.
QStringList setOf(QStringList list)
{
    list.removeDuplicates();
    list.sort();
    return list;
}

struct Help
{
    QStringList options;
    QStringList subcommands;
};

/// What stands at the beginning of the lines of `--help`.
Help helpOf(QStringList const& command)
{
    ToolFolder folder;
    QStringList const lines = QString::fromUtf8(folder.run(command + QStringList("--help")).out).split('\n');
    Help help;
    QString section;
    for (QString const& line : lines)
    {
        section = line.endsWith(':') && !line.startsWith(' ') ? line : section;
        bool const isEntry = line.startsWith("  ") && line.size() > 2 && line[2] != ' ';
        QString const first = line.trimmed().section(' ', 0, 0);
        if (isEntry && section == "Options:")
        {
            help.options += first.split(',');
        }
        if (isEntry && section == "Subcommands:")
        {
            help.subcommands += first;
        }
    }
    return help;
}

/// All commands, those that only hold others too; the program itself is empty.
QList<QStringList> allCommands(QStringList const& parent = {})
{
    QList<QStringList> commands{parent};
    for (QString const& name : helpOf(parent).subcommands)
    {
        commands += allCommands(parent + QStringList(name));
    }
    return commands;
}

/// The text below a heading of the man page, without escapes.
QString manSection(QString const& heading)
{
    QString page = QString::fromUtf8(sourceFile("docs/marlo-export.1"));
    page.replace("\\-", "-");
    int const start = page.indexOf("\n" + heading + "\n");
    if (start < 0)
    {
        return QString();
    }
    int const end = page.indexOf(QRegularExpression("\n\\.S[SH] "), start + 1);
    return page.mid(start, end - start);
}

/// What bash offers for the last of the words.
QStringList completionOf(QStringList const& words)
{
    QString const script = QStringLiteral("source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
                                          "_marlo_export; printf '%s\\n' \"${COMPREPLY[@]}\"");
    QProcess bash;
    bash.start("bash", QStringList{"-c", script, "bash", MARLO_SOURCE_DIR "/tool/completion/marlo-export.bash",
                                   QStringLiteral(MARLO_TOOL)} +
                           words);
    bash.waitForFinished();
    EXPECT_TRUE(bash.readAllStandardError().isEmpty());
    return QString::fromUtf8(bash.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
}

}

TEST(Docs, EveryOptionStandsInTheManPageAndNoOther)
{
    QStringList const general = helpOf({}).options;
    QRegularExpression const optionWord("(?<![\\w-])--?[a-z][a-z-]*");
    QString const generalSection = manSection(".SH GENERAL OPTIONS");
    for (QStringList const& command : allCommands())
    {
        SCOPED_TRACE(command.join(' ').toStdString());
        Help const help = helpOf(command);
        ASSERT_FALSE(help.options.isEmpty());
        bool const isRun = !command.isEmpty() && help.subcommands.isEmpty();
        QString const section = isRun ? manSection(".SS " + command.join(' ')) : generalSection;
        EXPECT_FALSE(section.isEmpty());
        QString text = section;
        text.remove(QRegularExpression("\\\\f[BRI]"));
        QStringList documented;
        for (auto match = optionWord.globalMatch(text); match.hasNext();)
        {
            documented += match.next().captured();
        }
        for (QString const& option : help.options)
        {
            EXPECT_TRUE(documented.contains(option) || general.contains(option)) << option.toStdString();
        }
        // The text of `preset add` speaks of options by name that stand there, too.
        for (QString const& option : isRun ? documented : QStringList())
        {
            EXPECT_TRUE(help.options.contains(option)) << option.toStdString() << " isn't an option";
        }
    }
}

TEST(Docs, CompletionOffersTheOptionsAndCommandsOfTheHelp)
{
    for (QStringList const& command : allCommands())
    {
        SCOPED_TRACE(command.join(' ').toStdString());
        Help const help = helpOf(command);
        EXPECT_EQ(setOf(completionOf(command + QStringList("-"))), setOf(help.options));
        if (!help.subcommands.isEmpty())
        {
            EXPECT_EQ(setOf(completionOf(command + QStringList(""))), setOf(help.subcommands));
        }
    }
}

TEST(Docs, CompletionKnowsWhereFormatsAndFilesGo)
{
    QStringList const pin{"after_effects_corner_pin", "after_effects_corner_pin_with_motion_blur"};
    EXPECT_EQ(completionOf({"export", "shot.json", "after_effects_corner"}), pin);
    EXPECT_EQ(completionOf({"export", "--layer", "Wall", "shot.json", "--invert", "after_effects_corner"}), pin);
    EXPECT_EQ(completionOf({"preset", "add", "p.json", "name", "after_effects_corner"}), pin);
    EXPECT_EQ(completionOf({"export", "shot.json", "x", "--track", "st"}), QStringList("stabilized"));
    QString const readme = QStringLiteral(MARLO_SOURCE_DIR "/READ");
    EXPECT_EQ(completionOf({"export", readme}), QStringList(readme + "ME.md"));
    EXPECT_EQ(completionOf({"export", "shot.json", "x", "-o", readme}), QStringList(readme + "ME.md"));
}
