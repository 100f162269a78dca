// Any bytes as a matchmove project: one that is written as it was read, or one clear
// refusal.

#include "kestrelia/ProjectFile.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QByteArray const text(reinterpret_cast<char const*>(data), static_cast<int>(size));
    KestreliaLib::Scene scene;
    try
    {
        scene = KestreliaLib::readProject(text, QStringLiteral("fuzz.kst"));
    }
    catch (KestreliaLib::FileError const& error)
    {
        if (error.text().contains(QLatin1Char('\n')))
        {
            std::abort(); // not one clear line
        }
        return 0;
    }
    if (!(KestreliaLib::readProject(KestreliaLib::writeProject(scene), QStringLiteral("again.kst")) == scene))
    {
        std::abort();
    }
    return 0;
}
