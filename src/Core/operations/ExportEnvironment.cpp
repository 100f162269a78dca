#include "Core/ExportEnvironment.h"

namespace Export
{

ExportEnvironment::~ExportEnvironment() = default;

QUuid ExportEnvironment::createUID()
{
    return QUuid::createUuid();
}

QUuid CountingEnvironment::createUID()
{
    // In the form of a random one (RFC 4122, version 4).
    std::uint64_t const number = ++m_last;
    auto const byte = [number](int place) { return static_cast<unsigned char>(number >> (8 * place)); };
    return QUuid(0, 0, 0x4000, 0x80, 0, byte(5), byte(4), byte(3), byte(2), byte(1), byte(0));
}

IdentifierMinter::~IdentifierMinter() = default;

std::shared_ptr<ExportEnvironment> defaultEnvironment()
{
    if (qEnvironmentVariableIsSet("SOURCE_DATE_EPOCH"))
    {
        return std::make_shared<CountingEnvironment>();
    }
    return std::make_shared<ExportEnvironment>();
}

}
