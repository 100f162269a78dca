#pragma once
// Names of users as names of prims.

#include "text/Names.h"

#include <QString>
#include <pxr/usd/sdf/path.h>

namespace Export
{

/// Letters and digits stay; every other character becomes "_". A name that starts with a digit, and
/// an empty one, get "L" in front.
QString primName(QString const& name);

/// The same without digits, but for that "L": the name of a model's prim.
QString primNameWithoutDigits(QString const& name);

/// The paths of a stage's prims, each of which is given out once.
class PrimPaths
{
public:
    /// @param name as primName() makes it; gets a number when the parent has one of that name
    PXR_NS::SdfPath take(PXR_NS::SdfPath const& parent, QString const& name);

    bool holds(PXR_NS::SdfPath const& parent, QString const& name) const;

    Text::UniqueNames const& names() const
    {
        return m_names;
    }

private:
    /// Whole paths, so that only siblings clash.
    Text::UniqueNames m_names;
};

}
