#include "Writing/Values.h"

#include "text/NumberText.h"

namespace Export
{

bool isWritable(double value)
{
    return Text::isWritable(value);
}

}
