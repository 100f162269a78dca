#include "FormatOptions.h"

#include "Core/ExporterFactories.h"
#include "Failure.h"
#include "Host/CameraSolveExporter.h"

#include <algorithm>

namespace
{

/// Lists what a camera solve exporter declares.
class OptionLister final : public KV::ExportOptionsReceiver
{
public:
    void addBoolOption(QString const& key, QString const&, QString const&, bool defaultValue) override
    {
        m_options.push_back({key, FormatOption::Bool, defaultValue, {}});
    }

    void addChoiceOption(QString const& key, QString const&, QString const&, QStringList const& choices) override
    {
        m_options.push_back({key, FormatOption::Choice, choices.value(0), choices});
    }

    std::vector<FormatOption> const& options() const
    {
        return m_options;
    }

private:
    std::vector<FormatOption> m_options;
};

std::vector<FormatOption> lensOptions(Export::LensDataFormat const& format)
{
    using Option = FormatOption;
    if (format.customDataTypeName() == QLatin1String("Korvane::LensMetadata"))
    {
        return {{"manufacturer", Option::Text, QString(), {}},
                {"model", Option::Text, QString(), {}},
                {"serialNumber", Option::Text, QString(), {}},
                {"notes", Option::Text, QString(), {}}};
    }
    if (format.customDataTypeName() == QLatin1String("Korvane::STMapExportParams"))
    {
        return {{"inverse", Option::Bool, false, {}},           {"firstFrame", Option::Integer, QVariant(), {}},
                {"lastFrame", Option::Integer, QVariant(), {}}, {"firstFrameOffset", Option::Integer, 0, {}},
                {"width", Option::Integer, QVariant(), {}},     {"height", Option::Integer, QVariant(), {}}};
    }
    return {};
}

[[noreturn]] void refuseValue(FormatOption const& option, QString const& value, QString const& expected)
{
    throw usageError(QStringLiteral("--option ") + option.key + QStringLiteral(": \"") + value +
                     QStringLiteral("\" isn't ") + expected);
}

QVariant valueOf(FormatOption const& option, QString const& text)
{
    switch (option.type)
    {
    case FormatOption::Bool:
        if (text != QLatin1String("true") && text != QLatin1String("false"))
        {
            refuseValue(option, text, QStringLiteral("true or false"));
        }
        return text == QLatin1String("true");
    case FormatOption::Choice:
        if (!option.choices.contains(text))
        {
            refuseValue(option, text, QStringLiteral("one of ") + option.choices.join(QStringLiteral(", ")));
        }
        return text;
    case FormatOption::Integer:
    {
        bool isNumber = false;
        int const number = text.toInt(&isNumber);
        if (!isNumber)
        {
            refuseValue(option, text, QStringLiteral("a whole number"));
        }
        return number;
    }
    case FormatOption::Text:
        break;
    }
    return text;
}

[[noreturn]] void refuseKey(FormatEntry const& format, QString const& key, std::vector<FormatOption> const& options)
{
    QStringList keys;
    for (FormatOption const& option : options)
    {
        keys += option.key;
    }
    throw usageError(QStringLiteral("--option: ") + format.key() + QStringLiteral(" has no option \"") + key +
                     QStringLiteral("\"; its options: ") +
                     (keys.isEmpty() ? QStringLiteral("none") : keys.join(QStringLiteral(", "))));
}

}

QString FormatOption::typeWord() const
{
    static char const* const words[] = {"bool", "choice", "integer", "text"};
    return QLatin1String(words[type]);
}

std::vector<FormatOption> optionsOf(FormatEntry const& format)
{
    if (format.kind() == Kind::Camera)
    {
        OptionLister lister;
        Export::CameraSolveExporterFactory::getExporter(format.as<Export::CameraSolveFormat>())->setUserOptions(lister);
        return lister.options();
    }
    return format.kind() == Kind::Lens ? lensOptions(format.as<Export::LensDataFormat>()) : std::vector<FormatOption>();
}

QStringList assignmentsOf(FormatEntry const& format, QStringList const& assignments)
{
    QStringList own;
    for (FormatOption const& option : optionsOf(format))
    {
        QString const start = option.key + QLatin1Char('=');
        std::copy_if(assignments.begin(), assignments.end(), std::back_inserter(own),
                     [&](QString const& assignment) { return assignment.startsWith(start); });
    }
    return own;
}

QMap<QString, QVariant> optionValues(FormatEntry const& format, QStringList const& assignments)
{
    std::vector<FormatOption> const options = optionsOf(format);
    QMap<QString, QVariant> values;
    for (FormatOption const& option : options)
    {
        if (option.defaultValue.isValid())
        {
            values.insert(option.key, option.defaultValue);
        }
    }
    for (QString const& assignment : assignments)
    {
        int const equals = assignment.indexOf(QLatin1Char('='));
        if (equals < 0)
        {
            throw usageError(QStringLiteral("--option: \"") + assignment + QStringLiteral("\" isn't KEY=VALUE"));
        }
        QString const key = assignment.left(equals);
        auto const option = std::find_if(options.begin(), options.end(), [&](auto const& o) { return o.key == key; });
        if (option == options.end())
        {
            refuseKey(format, key, options);
        }
        values.insert(key, valueOf(*option, assignment.mid(equals + 1)));
    }
    return values;
}
