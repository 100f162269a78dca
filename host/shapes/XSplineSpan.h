#pragma once

#include "CubicDistance.h"
#include "XSpline.h"

namespace MarloHost
{

/// How a piece of an X-spline differs from a piece of a Bezier curve at the same
/// parameter. `Value` is a point, or the shares that the points of the segment have in it.
template <typename Value>
struct SpanDifference
{
    /// With N / D the X-spline and B the curve, the Bernstein coefficients of N - D B, over
    /// the least one of D.
    std::array<Value, 9> coefficients;

    /// Those of N - D a, and of D b - N, over the same; a and b are the ends of B.
    std::array<Value, 6> fromStart;
    std::array<Value, 6> toEnd;

    /// False where D may be 0, for all that its coefficients say.
    bool isKnown = true;
};

/// A Bezier span in place of a part of a segment: the cubic Hermite interpolant in the
/// parameter.
template <typename Value>
struct SpanOf
{
    std::array<Value, 4> bezier;

    /// Up to three pieces, as two of the blending functions may set in or end in it.
    std::array<SpanDifference<Value>, 3> differences;
    std::size_t pieces = 0;
};

/// What depends on the weights of a segment alone.
using SpanRule = SpanOf<Shares>;
using Span = SpanOf<TXI::Pos2>;

/// @param from,to of the parameter of the segment, 0 to 1
SpanRule makeSpanRule(double startWeight, double endWeight, double from, double to);

Span makeSpan(SpanRule const& rule, std::array<TXI::Pos2, 4> const& points);

/// A bound of the distance between an X-spline and its span while the points go from one
/// place to another, linearly. The weights stay; where they differ the bound is good for
/// the start.
double distanceInPlane(Span const& from, Span const& to);

}
