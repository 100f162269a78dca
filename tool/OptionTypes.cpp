#include "OptionTypes.h"

#include <QRegularExpression>

#include <cmath>

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

double shownFrame(std::string const& option, QString const& text)
{
    constexpr double FARTHEST = 4e9;
    bool isNumber = false;
    double const frame = text.toDouble(&isNumber);
    if (!isNumber || !(std::fabs(frame) <= FARTHEST) || 2 * frame != std::floor(2 * frame))
    {
        throw CLI::ValidationError(option,
                                   "\"" + text.toStdString() + "\" isn't a whole number, or a half for a field");
    }
    return frame;
}

FrameRange frameRange(QString const& text)
{
    static QRegularExpression const range(QStringLiteral("^(-?\\d{1,9})-(-?\\d{1,9})$"));
    QRegularExpressionMatch const match = range.match(text);
    FrameRange const frames{match.captured(1).toInt(), match.captured(2).toInt()};
    if (!match.hasMatch() || frames.first > frames.last)
    {
        throw CLI::ValidationError("--frames", "\"" + text.toStdString() + "\" isn't FIRST-LAST, such as 1001-1050");
    }
    return frames;
}

QString notEmpty(std::string const& option, QString const& text)
{
    if (text.isEmpty())
    {
        throw CLI::ValidationError(option, "needs a text that isn't empty");
    }
    return text;
}
