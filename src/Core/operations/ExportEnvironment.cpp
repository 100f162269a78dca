#include "Core/ExportEnvironment.h"

namespace Export
{

ExportEnvironment::~ExportEnvironment() = default;

QUuid ExportEnvironment::createUID()
{
    return QUuid::createUuid();
}

}
