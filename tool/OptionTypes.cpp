#include "OptionTypes.h"

#include <QRegularExpression>

#include <cmath>
#include <map>

namespace
{

using Corners = Korvane::TrackingExporterTypes;

constexpr int MAX_RASTER = 65'536;
constexpr double MIN_RATE = 0.001;
constexpr double MAX_RATE = 100'000;

}

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

double frameRate(QString const& text)
{
    bool isNumber = false;
    double const rate = text.toDouble(&isNumber);
    if (!isNumber || !(rate >= MIN_RATE && rate <= MAX_RATE))
    {
        throw CLI::ValidationError("--fps", "\"" + text.toStdString() +
                                                "\" isn't a rate from 0.001 to 100000 frames per second");
    }
    return rate;
}

QSize rasterSize(QString const& text)
{
    QStringList const numbers = text.split(QLatin1Char('x'), Qt::KeepEmptyParts, Qt::CaseInsensitive);
    int const width = numbers.size() == 2 ? numbers[0].toInt() : 0;
    int const height = numbers.size() == 2 ? numbers[1].toInt() : 0;
    if (width < 1 || width > MAX_RASTER || height < 1 || height > MAX_RASTER)
    {
        throw CLI::ValidationError("--size", "\"" + text.toStdString() + "\" isn't WIDTHxHEIGHT, such as 1920x1080");
    }
    return QSize(width, height);
}

std::array<Corners::SurfaceCorner, 4> cornerOrder(QString const& text)
{
    static std::map<QString, Corners::SurfaceCorner> const corners{{"ul", Corners::UpperLeft},
                                                                   {"ur", Corners::UpperRight},
                                                                   {"lr", Corners::LowerRight},
                                                                   {"ll", Corners::LowerLeft}};
    QStringList const words = text.toLower().split(QLatin1Char(','));
    std::array<Corners::SurfaceCorner, 4> order{};
    for (int i = 0; words.size() == 4 && i < 4; ++i)
    {
        auto const found = corners.find(words[i]);
        if (found == corners.end() || words.indexOf(words[i]) != i)
        {
            break;
        }
        order[static_cast<std::size_t>(i)] = found->second;
        if (i == 3)
        {
            return order;
        }
    }
    throw CLI::ValidationError("--order", "\"" + text.toStdString() +
                                              "\" isn't ul, ur, lr and ll in some order, such as ul,ur,lr,ll");
}
