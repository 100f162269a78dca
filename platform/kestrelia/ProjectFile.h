#pragma once
// The file of a matchmove project: text, one record a line. docs/kestrelia-file.md
// describes it.

#include "kestrelia/KestreliaApi.h"
#include "kestrelia/Scene.h"

#include <QByteArray>
#include <QString>

#include <stdexcept>

namespace KestreliaLib
{

/// What can't be written or isn't a project; the text is one line for the user.
class KESTRELIA_API FileError : public std::runtime_error
{
public:
    explicit FileError(QString const& text);
    ~FileError() override;

    QString text() const;
};

/// The text of a project. Numbers are the shortest that read back as the same.
///
/// @throws FileError when it would be larger than a QByteArray holds, or when the scene
///         has a number that isn't finite or records that don't fit together
KESTRELIA_API QByteArray writeProject(Scene const& scene);

/// The scene of a project file: what writeProject() was given, exactly.
///
/// @param fileName stands in error texts
/// @throws FileError "FILE: line N: CAUSE" for what isn't a project
KESTRELIA_API Scene readProject(QByteArray const& text, QString const& fileName);

}
