#include "Nuke/Obfuscate.h"

namespace Export
{

Obfuscate::Obfuscate(std::uint64_t fileSeed, double classBias) : seed(fileSeed), bias(classBias)
{
}

Obfuscate::~Obfuscate() = default;

double Obfuscate::obfuscate(double value) const
{
    return value;
}

}
