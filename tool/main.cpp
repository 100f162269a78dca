// The command line program: a project file in, files for other programs out.

#include "Commands.h"
#include "Console.h"
#include "Language.h"
#include "Record.h"
#include "Signals.h"
#include "marlohost/Services.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTextCodec>

#include <clocale>

namespace
{

/// Numbers, file names and system messages are the same wherever the program runs.
/// QCoreApplication takes over the locale of the environment, so this comes after it.
void leaveLocale()
{
    std::setlocale(LC_ALL, "C");
    std::setlocale(LC_CTYPE, "C.UTF-8");
    QLocale::setDefault(QLocale::c());
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

ExitStatus runCommand(Options const& options, Console& console)
{
    useLanguage(options.language);
    if (options.verbose)
    {
        MarloHost::setLogLevel(Core::LoggerBase::Debug);
    }
    switch (options.command)
    {
    case Options::Formats:
        return runFormats(options, console);
    case Options::Info:
        return runInfo(options, console);
    case Options::Export:
        return runExportCommand(options, console);
    case Options::All:
        return runAll(options, console);
    case Options::Batch:
        return runBatch(options, console);
    case Options::PresetList:
        return runPresetList(options, console);
    case Options::PresetAdd:
        return runPresetAdd(options, console);
    case Options::PresetRemove:
        return runPresetRemove(options, console);
    case Options::ImportCorners:
        return runImportCorners(options, console);
    case Options::ImportColmap:
        return runImportColmap(options, console);
    }
    return Success;
}

/// The failure in the shape that the command's results have.
nlohmann::ordered_json toJson(Failure const& failure, Options const& options)
{
    ExportRecord record;
    record.format = options.format;
    record.fail(failure);
    switch (options.command)
    {
    case Options::Export:
        return record.toJson();
    case Options::All:
    case Options::Batch:
        return ::toJson(std::vector<ExportRecord>{record});
    default:
        return {{"status", "failed"}, {"reason", jsonText(failure.text())}};
    }
}

/// Says on stderr, and in JSON where that was asked for, why a command ended early.
ExitStatus tell(Failure const& failure, Options const& options, Console& console)
{
    if (failure.text().isEmpty())
    {
        return failure.status();
    }
    console.error(failure.text());
    if (options.json)
    {
        console.result(jsonBytes(toJson(failure, options)));
    }
    return failure.status();
}

/// @throws Failure as wrong usage for bytes that are no text; all else would take them
/// for another text
void checkEncoding(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
    {
        QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
        QByteArray const argument(argv[i]);
        QTextCodec::codecForName("UTF-8")->toUnicode(argument.constData(), argument.size(), &state);
        if (state.invalidChars > 0 || state.remainingChars > 0)
        {
            throw usageError(QStringLiteral("argument %1 isn't UTF-8: ").arg(i) +
                             QString::fromLatin1(argument.toPercentEncoding(" /=,;:{}[]()+@!*'\"")));
        }
    }
}

/// The files onto which the command mustn't write.
QStringList inputsOf(Options const& options)
{
    QStringList inputs{options.project, options.presets.file};
    inputs.removeAll(QString());
    return inputs;
}

ExitStatus run(int argc, char** argv)
{
    Options options;
    Console errors(false);
    try
    {
        checkEncoding(argc, argv);
        QString text;
        std::optional<Options> const parsed = parseOptions(argc, argv, text);
        if (!parsed)
        {
            errors.result(text.toUtf8());
            return Success;
        }
        options = *parsed;
        options.writing.inputs = inputsOf(options);
        Console console(options.quiet);
        return runCommand(options, console);
    }
    catch (...)
    {
        return tell(currentFailure(), options, errors);
    }
}

}

int main(int argc, char** argv)
{
    installSignalHandlers();
    int qtArguments = 1;
    QCoreApplication const application(qtArguments, argv);
    leaveLocale();
    try
    {
        return run(argc, argv);
    }
    catch (...)
    {
        // stdout can't take what is left to say.
        return Refused;
    }
}
