// Any bytes as a project file: a project that can be written back to the same text
// and made, or one clear refusal.

#include "marlohost/ProjectFile.h"

#include "Host/KORV_Exception.h"
#include "Host/KORV_ProjectManager.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QByteArray const text(reinterpret_cast<char const*>(data), static_cast<int>(size));
    MarloHost::ProjectModel model;
    try
    {
        model = MarloHost::readProject(text, QStringLiteral("fuzz.json"));
    }
    catch (KORV_BadFile const& error)
    {
        if (error.message().contains(QLatin1Char('\n')) || error.message().size() > 4000)
        {
            std::abort(); // not one clear line
        }
        return 0;
    }
    QByteArray const written = MarloHost::writeProject(model);
    if (MarloHost::writeProject(MarloHost::readProject(written, QStringLiteral("again.json"))) != written)
    {
        std::abort();
    }
    MarloHost::makeProject(model);
    return 0;
}
