// The numbers of Nuke's curve text, and the keys and matrices made of them:
//
//   "" 1001 960.5 0 1.25 1 1.25 1 258 0       a key of a shape: time, value, slopes
//   "" 1001 1000000 0 1 0 1 258 0             a key of a matrix: time, value

#include "Nuke/NukeRotoExporterBase.h"

#include <algorithm>
#include <cmath>

namespace Export
{

namespace
{

/// How the numbers of one kind of curve are written.
struct NumberRule
{
    unsigned int maxDigits;
    unsigned int maxDecimals;

    /// Ten to the power of maxDecimals.
    double scale;

    /// Values closer than this to a multiple of 1 / scale become that multiple.
    double snap;
};

constexpr NumberRule SHAPE_NUMBERS{5, 3, 1e3, 1e-06};
constexpr NumberRule MATRIX_NUMBERS{5, 5, 1e5, 1e-05};
constexpr double POWERS_OF_TEN[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5};

double roundedTo(double value, double scale)
{
    return std::floor(value * scale + 0.5) / scale;
}

/// digitLimit() without its logarithm, which is asked only next to a power of ten, where
/// its rounding decides.
int decimalsOf(double value, NumberRule const& rule)
{
    constexpr double MARGIN = 1e-12;
    double const magnitude = std::abs(value);
    if (magnitude - std::trunc(magnitude) < 0.5 / rule.scale)
    {
        return 0;
    }
    for (unsigned int decimals = rule.maxDecimals; decimals > 0; --decimals)
    {
        double const end = POWERS_OF_TEN[rule.maxDigits - decimals];
        if (magnitude < end * (1 - MARGIN))
        {
            return static_cast<int>(decimals);
        }
        if (magnitude < end * (1 + MARGIN))
        {
            return NukeRotoExporterBase::digitLimit(value, rule.maxDigits, rule.maxDecimals);
        }
    }
    return 0;
}

/// Decimals come from the value as it is, digits from the snapped one.
void appendNumber(TextBuffer& out, double value, NumberRule const& rule)
{
    double const rounded = roundedTo(value, rule.scale);
    bool const isSnapped = std::abs(value - rounded) < rule.snap;
    out << Fixed{isSnapped ? rounded : value, decimalsOf(value, rule)};
}

// The identity and the values that stay at rest in front of the matrix.
constexpr char MATRIX_HEAD[] = "0 0 S 0 0 S 0 0 S 0 0 S 0 1 S 0 1 S 0 0 S 0 0 S 0 0 ";

constexpr int ZERO = -1;
constexpr int SCALE = -2;

/// Which entry of the homography stands in each slot of the 4x4 matrix, row by row.
constexpr int MATRIX_SLOTS[16] = {0, 1, ZERO, 2, 3, 4, ZERO, 5, ZERO, ZERO, SCALE, ZERO, 6, 7, ZERO, 8};

double slotValue(KORV_ExportHomography const& homography, int slot)
{
    if (slot == ZERO)
    {
        return 0.0;
    }
    return slot == SCALE ? KORV_NumericOptimiser::s_matrixScale : homography.m[static_cast<std::size_t>(slot)];
}

}

int NukeRotoExporterBase::digitLimit(double value, unsigned int maxDigits, unsigned int maxDecimals)
{
    if (std::abs(value - std::trunc(value)) < 0.5 * std::pow(10.0, -static_cast<double>(maxDecimals)))
    {
        return 0;
    }
    double const decimals = std::ceil(maxDigits - (std::log10(std::abs(value)) + 1));
    return decimals > 0 ? static_cast<int>(std::min(decimals, static_cast<double>(maxDecimals))) : 0;
}

double NukeRotoExporterBase::roundToDigit(double value, int digits)
{
    return roundedTo(value, std::pow(10.0, digits));
}

void NukeRotoExporterBase::appendFormattedS(TextBuffer& out, double value, char const* tail)
{
    appendNumber(out, value, SHAPE_NUMBERS);
    out << tail;
}

void NukeRotoExporterBase::appendFormattedF(TextBuffer& out, Anm::Time const& time, double value, double leftSlope,
                                            double rightSlope)
{
    out << "\"\" ";
    appendNumber(out, time.value(), SHAPE_NUMBERS);
    out << ' ';
    appendNumber(out, value, SHAPE_NUMBERS);
    out << ' ';
    appendNumber(out, leftSlope, SHAPE_NUMBERS);
    out << " 1 ";
    appendNumber(out, rightSlope, SHAPE_NUMBERS);
    out << " 1 258 0 ";
}

void NukeRotoExporterBase::appendTransformBlock(TextBuffer& out, Anm::Time const& time, double value, char const* tail)
{
    out << "\"\" ";
    appendNumber(out, time.value(), SHAPE_NUMBERS);
    out << ' ';
    appendNumber(out, value, MATRIX_NUMBERS);
    out << ' ' << tail;
}

void NukeRotoExporterBase::getTransformBlock(TextBuffer& out, std::vector<KORV_ExportHomography> const& homographies)
{
    if (homographies.empty())
    {
        return;
    }
    out << "Transform2: " << MATRIX_HEAD;
    for (int slot = 0; slot < 16; ++slot)
    {
        if (homographies.size() == 1)
        {
            out << (slot % 5 == 0 ? "S 0 1 " : "S 0 0 ");
            continue;
        }
        out << "L 0 4096 0.5 2 0 0 \"\" 0 " << Integer{static_cast<long long>(homographies.size())} << ' ';
        for (KORV_ExportHomography const& homography : homographies)
        {
            appendTransformBlock(out, Anm::Time::fromDouble(homography.time), slotValue(homography, MATRIX_SLOTS[slot]),
                                 "0 1 0 1 258 0 ");
        }
        out << "0 ";
    }
    out << '\n';
}

}
