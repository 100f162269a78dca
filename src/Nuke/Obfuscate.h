#pragma once

#include "Core/ExportApi.h"

#include <cstdint>

namespace Export
{

/// Turns a coordinate into what is written for it. Formats that hide coordinates from
/// other readers override it; by itself it changes nothing.
class MARLO_EXPORT_API Obfuscate
{
public:
    virtual double obfuscate(double value) const;
    virtual ~Obfuscate();

protected:
    explicit Obfuscate(std::uint64_t fileSeed = 0, double classBias = 0.0);

    std::uint64_t seed;
    double bias;
};

}
