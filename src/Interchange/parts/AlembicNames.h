#pragma once

#include "text/Names.h"

#include <QString>
#include <QStringList>

#include <string>

namespace Export
{

/// Names for the objects of one archive, all of them different.
class AlembicNames
{
public:
    /// The name of an object: the one that is wanted, made unique, with "_" for "/", which
    /// parts the names of a path, and for control characters.
    std::string claim(QString const& wanted);

    /// The same for a name that a format gives, of which nothing is told.
    std::string claimOwn(QString const& wanted);

    /// What got another name than was wanted, as one sentence; empty when nothing did.
    QString renamed() const;

private:
    Text::UniqueNames m_names;

    /// "old" is "new"; the first few.
    QStringList m_examples;
    int m_renamed = 0;
};

}
