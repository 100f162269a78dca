#include "OptionTypes.h"

QString fromArgument(std::string const& argument)
{
    return QString::fromStdString(argument);
}

CLI::Option* addText(CLI::App* app, std::string const& name, std::string const& help,
                     std::function<void(QString const&)> const& take)
{
    return app->add_option_function<std::string>(
        name, [take](std::string const& argument) { take(fromArgument(argument)); }, help);
}

// Not CLI11's option with a list: that takes the words behind its value as well, and
// the brackets off a value.
CLI::Option* addTexts(CLI::App* app, std::string const& name, std::string const& help, QStringList& target)
{
    return addText(app, name, help, [&target](QString const& text) { target += text; })->trigger_on_parse();
}

int wholeNumber(std::string const& option, QString const& text)
{
    bool isNumber = false;
    int const number = text.toInt(&isNumber);
    if (!isNumber)
    {
        throw CLI::ValidationError(option, "\"" + text.toStdString() + "\" isn't a whole number");
    }
    return number;
}

QString notEmpty(std::string const& option, QString const& text)
{
    if (text.isEmpty())
    {
        throw CLI::ValidationError(option, "needs a text that isn't empty");
    }
    return text;
}
