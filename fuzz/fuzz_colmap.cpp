// Any bytes as the three texts of a COLMAP model, lines of "====" between them: a
// project that can be read back, or one clear refusal.

#include "marlohost/ColmapModel.h"
#include "marlohost/ProjectFile.h"

#include "Host/KORV_Exception.h"

#include <cstdint>
#include <cstdlib>

namespace
{

/// Takes the text before the next separator, and the separator.
QByteArray takeText(QByteArray& rest)
{
    static char const separator[] = "\n====\n";
    int const end = rest.indexOf(separator);
    QByteArray const text = rest.left(end);
    rest = end < 0 ? QByteArray() : rest.mid(end + static_cast<int>(sizeof separator) - 2);
    return text;
}

}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QByteArray rest(reinterpret_cast<char const*>(data), static_cast<int>(size));
    MarloHost::ColmapTexts texts;
    texts.cameras = takeText(rest);
    texts.images = takeText(rest);
    texts.points = takeText(rest);
    MarloHost::ColmapProject result;
    try
    {
        MarloHost::ColmapModel const model = MarloHost::readColmapModel(texts, QStringLiteral("fuzz"));
        result = MarloHost::projectFromColmap(model, {QStringLiteral("fuzz"), 24});
    }
    catch (KORV_BadFile const& error)
    {
        if (error.message().contains(QLatin1Char('\n')))
        {
            std::abort(); // not one clear line
        }
        return 0;
    }
    MarloHost::readProject(MarloHost::writeProject(result.project), QStringLiteral("again.json"));
    return 0;
}
