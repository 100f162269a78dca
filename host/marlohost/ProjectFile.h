#pragma once
// Project files: strict reading, writing back, and turning one into a project
// that exporters can work on.

#include "Host/Anm.h"
#include "Host/HostApi.h"
#include "marlohost/ProjectModel.h"

#include <QByteArray>
#include <QString>
#include <boost/shared_ptr.hpp>

#include <memory>

class ApplicationContext;
class KORV_ProjectManager;

namespace Korvane
{
class Callbacks;
class PluginHost;
}

namespace MarloHost
{

/// Reads the text of a project file.
///
/// Reading is strict: an unknown or repeated key, a wrong type, a number out of
/// range, a singular homography or a dangling name is an error.
///
/// @param fileName stands in the error texts
/// @throws KORV_BadFile with one line for the user (file, what is wrong, what is
///         expected); its detail() is the JSON path
MARLO_HOST_API ProjectModel readProject(QByteArray const& json, QString const& fileName);

/// Reads a project file from disk.
/// @throws KORV_BadFile also when the file can't be opened or is too large
MARLO_HOST_API ProjectModel readProjectFile(QString const& path);

/// The text of a project file; readProject() gives the same model back.
/// @throws KORV_BadArgument for a number that JSON can't hold, and for a name with a control
///         character, which readProject() would refuse
MARLO_HOST_API QByteArray writeProject(ProjectModel const& model);

/// What stands around a project in a running program.
struct HostServices
{
    /// Set when the program runs as a plug-in inside another application.
    std::shared_ptr<Korvane::PluginHost> pluginHost;

    /// Set in an interactive session.
    boost::shared_ptr<ApplicationContext const> applicationContext;

    /// How warnings are shown; unset writes them to stderr.
    std::shared_ptr<Korvane::Callbacks> callbacks;
};

/// Makes a project of a model. Names that the model refers to must exist; numbers
/// aren't checked here (readProject does), so that tests can plant bad ones.
///
/// @param projectFilePath empty for a project that was never saved
/// @throws KORV_BadArgument for a dangling name, a model without a clip, or a contour in
///         pixels of its frames with a point beyond the horizon of its surface
MARLO_HOST_API boost::shared_ptr<KORV_ProjectManager> makeProject(ProjectModel const& model,
                                                                  QString const& projectFilePath = QString(),
                                                                  HostServices const& services = HostServices());

/// Makes a layer the current one, as a click in the layer list does; 0 for none.
/// @throws KORV_BadArgument when there is no layer of that id
MARLO_HOST_API void setCurrentLayer(KORV_ProjectManager& project, unsigned int layerId);

/// Changes the view of the viewer, and of the current frame with it.
/// @throws KORV_BadArgument when the project doesn't have the view
MARLO_HOST_API void setCurrentView(KORV_ProjectManager& project, Anm::View const& view);

}
