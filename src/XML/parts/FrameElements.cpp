#include "XML/parts/FrameElements.h"

namespace Export
{

std::vector<QByteArray> frameElements(std::initializer_list<char const*> names)
{
    std::vector<QByteArray> pieces;
    QByteArray before = "      <Frame>\n";
    for (QByteArray const name : names)
    {
        pieces.push_back(before + "         <" + name + ">\n            ");
        before = "\n         </" + name + ">\n";
    }
    pieces.push_back(before + "      </Frame>\n");
    return pieces;
}

}
