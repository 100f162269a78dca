#include "text/NumberText.h"

#include <QLocale>
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace
{

using Limits = std::numeric_limits<double>;

template <class Buffer>
Buffer general(double value)
{
    Buffer out;
    Text::appendGeneral(out, value);
    return out;
}

template <class Buffer>
Buffer fixed(double value, int decimals)
{
    Buffer out;
    Text::appendFixed(out, value, decimals);
    return out;
}

QByteArray shortest(double value)
{
    QByteArray out;
    Text::appendShortest(out, value);
    return out;
}

double fromBits(std::uint64_t bits)
{
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::vector<double> specialValues()
{
    return {0.0,
            -0.0,
            Limits::infinity(),
            -Limits::infinity(),
            Limits::quiet_NaN(),
            -Limits::quiet_NaN(),
            Limits::max(),
            Limits::lowest(),
            Limits::min(),
            Limits::denorm_min(),
            -Limits::denorm_min(),
            std::nextafter(Limits::min(), 0.0)};
}

/// Where the number of digits and the form change: powers of ten, the last value
/// that rounds below one, halves of the last printed digit; each with neighbours.
std::vector<double> edgeValues(int lowest = -323, int highest = 308)
{
    std::vector<double> values;
    for (int exponent = lowest; exponent <= highest; ++exponent)
    {
        for (char const* mantissa : {"1", "9.999995", "9.99999", "1.000005", "1.5", "5", "9.5", "2.5"})
        {
            double const value = QByteArray(mantissa + QByteArray("e") + QByteArray::number(exponent)).toDouble();
            for (double near : {value, std::nextafter(value, 0.0), std::nextafter(value, Limits::infinity())})
                values.insert(values.end(), {near, -near});
        }
    }
    return values;
}

std::vector<double> randomBitPatterns(int count)
{
    std::mt19937_64 engine(20250611);
    std::vector<double> values(static_cast<std::size_t>(count));
    for (double& value : values)
        value = fromBits(engine());
    return values;
}

/// Numbers as they stand in a shot: pixels, scales, degrees, small fractions.
std::vector<double> randomShotNumbers(int count)
{
    std::mt19937_64 engine(4096);
    std::uniform_real_distribution<double> decade(-6.0, 9.0);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::vector<double> values(static_cast<std::size_t>(count));
    for (double& value : values)
        value = mantissa(engine) * std::pow(10.0, std::floor(decade(engine)));
    return values;
}

class NumberText : public testing::Test
{
protected:
    // Grouping dots and a decimal comma, wherever a locale could come in.
    void SetUp() override
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        ASSERT_STREQ(std::setlocale(LC_ALL, "de_DE.UTF-8"), "de_DE.UTF-8");
    }

    void TearDown() override
    {
        std::setlocale(LC_ALL, "C");
        QLocale::setDefault(QLocale::c());
    }

    /// Six significant digits, and fixed texts with these numbers of decimals.
    static void expectAsQt(std::vector<double> const& values, std::initializer_list<int> decimals)
    {
        for (double value : values)
        {
            QString const expected = QString::number(value, 'g', 6);
            ASSERT_EQ(general<QString>(value), expected) << std::hexfloat << value;
            ASSERT_EQ(general<QByteArray>(value), expected.toLatin1()) << std::hexfloat << value;
            for (int places : decimals)
            {
                QString const text = QString::number(value, 'f', places);
                ASSERT_EQ(fixed<QString>(value, places), text) << std::hexfloat << value << ' ' << places;
                ASSERT_EQ(fixed<QByteArray>(value, places), text.toLatin1()) << std::hexfloat << value;
            }
        }
    }
};

TEST_F(NumberText, IsQtsTextForEveryKindOfDouble)
{
    expectAsQt(specialValues(), {0, 1, 2, 5, 6, 10, 15});
    expectAsQt(edgeValues(), {});
    expectAsQt(edgeValues(-20, 25), {0, 2, 6, 15});
    expectAsQt(randomBitPatterns(500'000), {});
    expectAsQt(randomBitPatterns(3'000), {0, 2, 15});
    expectAsQt(randomShotNumbers(500'000), {});
    expectAsQt(randomShotNumbers(200'000), {0, 2, 5, 6});
}

// Tracked points on a grid of 1/8 or 1/16 pixel often lie exactly between two texts.
TEST_F(NumberText, TiesOnPixelGridsAreQtsText)
{
    std::vector<double> grid;
    for (int sixteenths = 0; sixteenths <= 4096 * 16; ++sixteenths)
        grid.insert(grid.end(), {sixteenths / 16.0, -sixteenths / 16.0});
    expectAsQt(grid, {0, 1, 2, 3});
}

// Values next to a tie, where a product that was rounded could fall on the wrong side.
TEST_F(NumberText, NeighboursOfTiesAreQtsText)
{
    std::vector<double> values;
    std::mt19937_64 engine(7);
    std::uniform_int_distribution<int> sixDigits(100'000, 999'999);
    for (int i = 0; i < 20'000; ++i)
    {
        double const scale = std::pow(10.0, i % 10);
        double const tie = (sixDigits(engine) + 0.5) / scale;
        values.insert(values.end(), {tie, std::nextafter(tie, 0.0), std::nextafter(tie, Limits::infinity())});
    }
    expectAsQt(values, {0, 3, 6, 9});
}

TEST_F(NumberText, IntegersAreQtsText)
{
    using Integer = std::numeric_limits<long long>;
    for (long long value : {0LL, 7LL, -1LL, 1000LL, -123456789LL, Integer::max(), Integer::min()})
    {
        QByteArray bytes;
        QString text;
        Text::appendInteger(bytes, value);
        Text::appendInteger(text, value);
        EXPECT_EQ(bytes, QByteArray::number(value));
        EXPECT_EQ(text, QString::number(value));
    }
}

TEST_F(NumberText, ShortestReadsBackAsTheSameDouble)
{
    for (auto const& values : {specialValues(), edgeValues(), randomBitPatterns(100'000), randomShotNumbers(100'000)})
    {
        for (double value : values)
        {
            if (!std::isfinite(value))
                continue;
            QByteArray const text = shortest(value);
            double const back = text.toDouble();
            ASSERT_EQ(back, value) << text.constData();
            ASSERT_EQ(std::signbit(back), std::signbit(value)) << text.constData();
        }
    }
}

TEST_F(NumberText, ShortestIsJson)
{
    struct
    {
        double value;
        char const* text;
    } const cases[] = {
        {0.0, "0"},
        {-0.0, "-0.0"},
        {0.1, "0.1"},
        {-1024.0, "-1024"},
        {1920.125, "1920.125"},
        {1e20, "100000000000000000000"},
        {1e21, "1e+21"},
        {1e-6, "0.000001"},
        {1e-7, "1e-7"},
        {Limits::max(), "1.7976931348623157e+308"},
        {Limits::denorm_min(), "5e-324"},
        {Limits::quiet_NaN(), "null"},
        {-Limits::infinity(), "null"},
    };
    for (auto const& [value, text] : cases)
        EXPECT_EQ(shortest(value), text);
}

TEST_F(NumberText, WritableAreZeroAndNormalNumbers)
{
    for (double value : {0.0, -0.0, 1.0, Limits::min(), Limits::lowest(), Limits::max()})
        EXPECT_TRUE(Text::isWritable(value)) << value;
    for (double value : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::denorm_min(),
                         std::nextafter(Limits::min(), 0.0)})
        EXPECT_FALSE(Text::isWritable(value)) << value;
}

}
