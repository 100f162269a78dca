#pragma once

#include <QCoreApplication>
#include <QStringList>

namespace Export
{

/// Words for what the exporters of matchmove projects tell in the same way.
class KestreliaNames
{
    Q_DECLARE_TR_FUNCTIONS(KestreliaNames)

public:
    /// That names were found more than once; empty when there are none.
    static QString renamed(QStringList const& clashes);
};

}
