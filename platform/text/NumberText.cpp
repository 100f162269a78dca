#include "text/NumberText.h"

#include <double-conversion/double-conversion.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Text
{
namespace
{

using double_conversion::DoubleToStringConverter;

constexpr int significantDigits = 6;
constexpr int largestDecimals = 15;

/// Room for the longest text: sign, 309 digits, point, decimals.
constexpr int textSize = 1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + largestDecimals + 1;

/// The digits of a magnitude: 0.d1d2d3... times ten to the power of `point`.
struct Digits
{
    char text[textSize];
    int count;
    int point;
};

constexpr double powersOfTen[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/// Rounds magnitude * 10^power to an integer, a tie away from zero.
///
/// The product is off by at most half a unit in its last place (2^-24 below the
/// limit), which matters only next to a tie. There fma() gives what the product
/// lost, exactly, and the sum has the sign of the true difference. double-conversion
/// takes microseconds for a tie, and coordinates on a grid are full of them.
///
/// @return false above the limit; most numbers of a shot, pixels and frames, are below
bool roundScaled(double magnitude, int power, std::uint32_t& rounded)
{
    constexpr double limit = 1u << 30;
    constexpr double margin = 1e-6;
    double const product = magnitude * powersOfTen[power];
    if (!(product < limit))
        return false;
    auto const whole = static_cast<std::uint32_t>(product);
    double aboveTie = product - whole - 0.5;
    if (std::abs(aboveTie) < margin)
        aboveTie += std::fma(magnitude, powersOfTen[power], -product);
    rounded = whole + (aboveTie >= 0 ? 1 : 0);
    return true;
}

void setDigits(Digits& digits, std::uint32_t integer)
{
    digits.count = static_cast<int>(std::to_chars(digits.text, digits.text + textSize, integer).ptr - digits.text);
}

void setExactDigits(Digits& digits, double value, DoubleToStringConverter::DtoaMode mode, int requested)
{
    bool isNegative;
    DoubleToStringConverter::DoubleToAscii(value, mode, requested, digits.text, textSize, &isNegative, &digits.count,
                                           &digits.point);
}

/// How many digits stand before the point of a magnitude from 1e-4 to 1e6; 0 and
/// below count the zeros behind it. The doubles of the negative powers lie just
/// above these, so that the comparison is exact.
int pointOf(double magnitude)
{
    if (magnitude < 1.0)
        return magnitude < 1e-2 ? (magnitude < 1e-3 ? -3 : -2) : (magnitude < 1e-1 ? -1 : 0);
    int point = 1;
    while (magnitude >= powersOfTen[point])
        ++point;
    return point;
}

void setSignificantDigits(Digits& digits, double value)
{
    double const magnitude = std::abs(value);
    std::uint32_t rounded;
    if (magnitude >= 1e-4 && magnitude < 1e6)
    {
        digits.point = pointOf(magnitude);
        if (roundScaled(magnitude, significantDigits - digits.point, rounded))
        {
            setDigits(digits, rounded);
            // 999999.6 rounds up to a seventh digit
            digits.point += digits.count - significantDigits;
            return;
        }
    }
    setExactDigits(digits, value, DoubleToStringConverter::PRECISION, significantDigits);
}

void setFixedDigits(Digits& digits, double value, int decimals)
{
    std::uint32_t rounded;
    if (roundScaled(std::abs(value), decimals, rounded))
    {
        setDigits(digits, rounded);
        digits.point = digits.count - decimals;
        return;
    }
    setExactDigits(digits, value, DoubleToStringConverter::FIXED, decimals);
}

char* putText(char* out, char const* text, int size)
{
    std::memcpy(out, text, static_cast<std::size_t>(size));
    return out + size;
}

char* putZeros(char* out, int count)
{
    return std::fill_n(out, std::max(count, 0), '0');
}

/// "1.23457e-05": a sign and at least two digits in the exponent.
char* putExponentForm(char* out, Digits const& digits)
{
    *out++ = digits.text[0];
    if (digits.count > 1)
    {
        *out++ = '.';
        out = putText(out, digits.text + 1, digits.count - 1);
    }
    int const exponent = digits.point - 1;
    int const magnitude = std::abs(exponent);
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    if (magnitude < 10)
        *out++ = '0';
    return std::to_chars(out, out + 3, magnitude).ptr;
}

/// Digits around a point, filled up with zeros to `decimals` digits behind it.
char* putDecimalForm(char* out, Digits const& digits, int decimals)
{
    int const before = std::clamp(digits.point, 0, digits.count);
    if (digits.point > 0)
    {
        out = putText(out, digits.text, before);
        out = putZeros(out, digits.point - before);
    }
    else
    {
        *out++ = '0';
    }
    if (decimals == 0)
        return out;
    *out++ = '.';
    int const zeros = std::clamp(-digits.point, 0, decimals);
    int const behind = std::min(digits.count - before, decimals - zeros);
    out = putZeros(out, zeros);
    out = putText(out, digits.text + before, behind);
    return putZeros(out, decimals - zeros - behind);
}

/// NaN, the infinities; null for a finite value.
char const* specialText(double value)
{
    if (std::isfinite(value))
        return nullptr;
    if (std::isnan(value))
        return "nan";
    return value < 0 ? "-inf" : "inf";
}

int writeGeneral(char* text, double value)
{
    if (char const* special = specialText(value))
        return static_cast<int>(putText(text, special, static_cast<int>(std::strlen(special))) - text);
    char* out = text;
    if (value < 0)
        *out++ = '-';
    if (value == 0)
    {
        *out = '0';
        return 1;
    }
    Digits digits;
    setSignificantDigits(digits, value);
    while (digits.count > 1 && digits.text[digits.count - 1] == '0')
        --digits.count;
    int const exponent = digits.point - 1;
    if (exponent < -4 || exponent >= significantDigits)
        out = putExponentForm(out, digits);
    else
        out = putDecimalForm(out, digits, std::max(digits.count - digits.point, 0));
    return static_cast<int>(out - text);
}

int writeFixed(char* text, double value, int decimals)
{
    if (char const* special = specialText(value))
        return static_cast<int>(putText(text, special, static_cast<int>(std::strlen(special))) - text);
    char* out = text;
    // Only zero itself loses its sign: -0.001 with two decimals is "-0.00".
    if (value < 0)
        *out++ = '-';
    Digits digits;
    int const places = std::clamp(decimals, 0, largestDecimals);
    setFixedDigits(digits, value, places);
    return static_cast<int>(putDecimalForm(out, digits, places) - text);
}

int writeInteger(char* text, long long value)
{
    return static_cast<int>(std::to_chars(text, text + textSize, value).ptr - text);
}

/// The one place where text reaches a buffer: at its end, ASCII widened in one step.
void append(QString& out, char const* text, int size)
{
    out.append(QLatin1String(text, size));
}

void append(QByteArray& out, char const* text, int size)
{
    out.append(text, size);
}

}

void appendGeneral(QString& out, double value)
{
    char text[textSize];
    append(out, text, writeGeneral(text, value));
}

void appendGeneral(QByteArray& out, double value)
{
    char text[textSize];
    append(out, text, writeGeneral(text, value));
}

void appendFixed(QString& out, double value, int decimals)
{
    char text[textSize];
    append(out, text, writeFixed(text, value, decimals));
}

void appendFixed(QByteArray& out, double value, int decimals)
{
    char text[textSize];
    append(out, text, writeFixed(text, value, decimals));
}

void appendInteger(QString& out, long long value)
{
    char text[textSize];
    append(out, text, writeInteger(text, value));
}

void appendInteger(QByteArray& out, long long value)
{
    char text[textSize];
    append(out, text, writeInteger(text, value));
}

void appendShortest(QByteArray& out, double value)
{
    if (!std::isfinite(value))
    {
        out.append("null");
        return;
    }
    // "-0" would be read as an integer, which has no negative zero.
    if (value == 0 && std::signbit(value))
    {
        out.append("-0.0");
        return;
    }
    char text[textSize];
    double_conversion::StringBuilder builder(text, textSize);
    DoubleToStringConverter::EcmaScriptConverter().ToShortest(value, &builder);
    append(out, text, builder.position());
}

bool isWritable(double value)
{
    int const kind = std::fpclassify(value);
    return kind == FP_NORMAL || kind == FP_ZERO;
}

QString generalText(double value)
{
    QString text;
    appendGeneral(text, value);
    return text;
}

QString fixedText(double value, int decimals)
{
    QString text;
    appendFixed(text, value, decimals);
    return text;
}

}
