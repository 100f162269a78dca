#pragma once
// Where exporters that mint identifiers get them.

#include "Core/ExportApi.h"

#include <QUuid>

#include <cstdint>
#include <memory>

namespace Export
{

/// A source of new identifiers.
class MARLO_EXPORT_API ExportEnvironment
{
public:
    virtual ~ExportEnvironment();

    /// A new identifier, by itself a random one.
    virtual QUuid createUID();
};

/// Identifiers 1, 2, 3 ... for exports that are to be the same byte for byte.
class MARLO_EXPORT_API CountingEnvironment final : public ExportEnvironment
{
public:
    QUuid createUID() override;

private:
    std::uint64_t m_last = 0;
};

/// What every exporter is that mints identifiers, also one that a factory made: whoever has
/// the exporter can give it another source.
class MARLO_EXPORT_API IdentifierMinter
{
public:
    virtual ~IdentifierMinter();

    /// @param environment null for a new source of defaultEnvironment()
    virtual void setEnvironment(std::shared_ptr<ExportEnvironment> const& environment) = 0;
};

/// The source of an exporter that wasn't given one: random identifiers, or counted ones when
/// SOURCE_DATE_EPOCH is set, which asks for exports that can be repeated.
MARLO_EXPORT_API std::shared_ptr<ExportEnvironment> defaultEnvironment();

}
