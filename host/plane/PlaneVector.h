#pragma once

#include "Host/ExporterHelper.h"

#include <cmath>

namespace MarloHost
{

inline double dot(TXI::Pos2 const& a, TXI::Pos2 const& b)
{
    return a.x * b.x + a.y * b.y;
}

inline TXI::Pos2 minus(TXI::Pos2 const& a, TXI::Pos2 const& b)
{
    return {a.x - b.x, a.y - b.y};
}

inline TXI::Pos2 plus(TXI::Pos2 const& a, TXI::Pos2 const& b)
{
    return {a.x + b.x, a.y + b.y};
}

inline TXI::Pos2 times(double factor, TXI::Pos2 const& p)
{
    return {factor * p.x, factor * p.y};
}

inline TXI::Pos2 turned(TXI::Pos2 const& p)
{
    return {-p.y, p.x};
}

inline double length(TXI::Pos2 const& p)
{
    return std::sqrt(dot(p, p));
}

inline TXI::Pos2 between(TXI::Pos2 const& a, TXI::Pos2 const& b, double t)
{
    return {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)};
}

}
