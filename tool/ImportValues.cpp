#include "ImportValues.h"

#include <map>
#include <optional>

namespace
{

using Corners = Korvane::TrackingExporterTypes;

constexpr int MAX_RASTER = 65'536;

/// A number between two bounds, both included.
std::optional<double> numberWithin(QString const& text, double least, double most)
{
    bool isNumber = false;
    double const number = text.toDouble(&isNumber);
    return isNumber && number >= least && number <= most ? std::make_optional(number) : std::nullopt;
}

[[noreturn]] void refuse(std::string const& option, QString const& text, std::string const& expected)
{
    throw CLI::ValidationError(option, "\"" + text.toStdString() + "\" isn't " + expected);
}

}

double numberFrom(std::string const& option, QString const& text, double least, double most,
                  std::string const& expected)
{
    std::optional<double> const number = numberWithin(text, least, most);
    if (!number)
    {
        refuse(option, text, expected);
    }
    return *number;
}

double frameRate(QString const& text)
{
    constexpr double MIN_RATE = 0.001;
    constexpr double MAX_RATE = 100'000;
    QStringList const parts = text.split(QLatin1Char('/'));
    std::optional<double> const over = numberWithin(parts.front(), MIN_RATE, 1e9);
    std::optional<double> const under = parts.size() == 2 ? numberWithin(parts.back(), MIN_RATE, 1e9) : 1.0;
    double const rate = over && under && parts.size() <= 2 ? *over / *under : 0;
    if (!(rate >= MIN_RATE && rate <= MAX_RATE))
    {
        refuse("--fps", text, "a rate from 0.001 to 100000 frames per second, such as 25 or 30000/1001");
    }
    return rate;
}

std::array<double, 3> scenePoint(QString const& text)
{
    constexpr double MAX_NUMBER = 1e9;
    QStringList const parts = text.split(QLatin1Char(','));
    std::array<double, 3> point{};
    for (int i = 0; i < 3; ++i)
    {
        std::optional<double> const number = numberWithin(parts.value(i), -MAX_NUMBER, MAX_NUMBER);
        if (parts.size() != 3 || !number)
        {
            refuse("--origin", text, "X,Y,Z, three numbers up to 1e9 such as 512300,5403200,310");
        }
        point[static_cast<std::size_t>(i)] = *number;
    }
    return point;
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
