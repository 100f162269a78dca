#pragma once
// Projects, exporters and answers that the tests of the core share.

#include "Core/ExportFunctions.h"
#include "Core/LensExporter.h"
#include "Host/CameraSolveExporter.h"
#include "Host/Fnd.h"
#include "Host/KORV_Exception.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/PluginHost.h"
#include "Host/ShapeExporter.h"
#include "Host/TrackingExporter.h"
#include "ProjectBuilder.h"
#include "marlohost/ProjectFile.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdlib>
#include <functional>

/// Runs the statements in a process of their own, where no format was used and no
/// factory was asked before.
#define IN_FRESH_PROCESS(...)                                                                                          \
    do                                                                                                                 \
    {                                                                                                                  \
        testing::FLAGS_gtest_death_test_style = "threadsafe";                                                          \
        EXPECT_EXIT(                                                                                                   \
            {                                                                                                          \
                __VA_ARGS__;                                                                                           \
                std::_Exit(testing::Test::HasFailure() ? 1 : 0);                                                       \
            },                                                                                                         \
            testing::ExitedWithCode(0), "");                                                                           \
    } while (false)

namespace CoreTest
{

/// What the function throws: its words, or "" when it throws nothing of that type.
template <typename Exception>
QString thrown(std::function<void()> const& function)
{
    try
    {
        function();
    }
    catch (Exception const& exception)
    {
        return QString::fromUtf8(exception.what());
    }
    return QString();
}

inline MarloHost::LayerModel layer(QString const& name)
{
    MarloHost::LayerModel model;
    model.name = name;
    model.corners = {100, 100, 200, 100, 100, 200, 200, 200};
    return model;
}

/// One clip of 100 frames and these layers, the first on top.
inline MarloHost::ProjectModel projectOf(std::vector<MarloHost::LayerModel> layers, QString const& current = QString())
{
    ProjectBuilder builder(100);
    builder.model.layers = std::move(layers);
    builder.model.currentLayer = current;
    builder.model.currentFrame = 7;
    return builder.model;
}

/// A triangle that comes from a Veil ML model in the views of those names.
inline MarloHost::ContourModel veiledContour(QStringList const& views)
{
    MarloHost::ContourModel contour;
    contour.name = "triangle";
    contour.veilML = views;
    contour.keys = {{0, {0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 0}, {}}};
    return contour;
}

/// Takes the categories that it was given and counts what it is asked.
class FakeHost : public TXIHost
{
public:
    explicit FakeHost(QStringList const& categories, bool grantsExtra = false)
        : m_categories(categories), m_grantsExtra(grantsExtra)
    {
    }

    bool grants(int capability) const override
    {
        return m_grantsExtra && capability == 24;
    }

    bool takesCategory(int scope, char const* category) const override
    {
        ++asked;
        return scope == 0 && m_categories.contains(QString::fromUtf8(category));
    }

    mutable int asked = 0;

private:
    QStringList m_categories;
    bool m_grantsExtra;
};

class FakePluginHost : public Korvane::PluginHost
{
public:
    explicit FakePluginHost(QStringList const& categories) : m_host(categories)
    {
    }

    bool isAdobe() const override
    {
        return false;
    }

    TXIHost const* host() const override
    {
        return &m_host;
    }

    QSize compositionSize() const override
    {
        return QSize(640, 360);
    }

private:
    FakeHost m_host;
};

inline boost::shared_ptr<KORV_ProjectManager> projectInHost(QStringList const& categories)
{
    MarloHost::HostServices services;
    services.pluginHost = std::make_shared<FakePluginHost>(categories);
    return MarloHost::makeProject(projectOf({layer("plane")}, "plane"), QString(), services);
}

/// Keeps what it was called with.
class FakeTrackingExporter : public Korvane::TrackingExporter
{
public:
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager&, QString const& path, unsigned int id,
                                          Anm::Context const& frame, Options const& given) const override
    {
        layerId = id;
        referenceFrame = frame;
        options = given;
        Korvane::ExportedFiles result;
        result.files.insert(path, "tracks");
        return result;
    }

    mutable unsigned int layerId = 0;
    mutable Anm::Context referenceFrame = Anm::Context::invalid();
    mutable Options options;
};

/// Gives back the files it was made with.
class FakeShapeExporter : public Korvane::ShapeExporter
{
public:
    explicit FakeShapeExporter(QMap<QString, QByteArray> const& files = {}) : m_files(files)
    {
    }

    std::shared_ptr<QMap<QString, QByteArray>> exportShape(KORV_ProjectManager&, QString const&,
                                                           QList<unsigned int> const& ids,
                                                           Options const& given) const override
    {
        layerIds = ids;
        options = given;
        return std::make_shared<QMap<QString, QByteArray>>(m_files);
    }

    void copyToClipboard(Fnd::IClipboard& clipboard, QString const& text, bool hostPresent) const override
    {
        clipboard.setText(text + (hostPresent ? " to host" : " to desktop"));
    }

    mutable QList<unsigned int> layerIds;
    mutable Options options;

private:
    QMap<QString, QByteArray> m_files;
};

/// Keeps what it was called with.
class FakeCameraSolveExporter : public KV::CameraSolveExporter
{
public:
    Korvane::ExportedFiles exportCameraSolve(KORV_ProjectManager&, QString const& path, KV::ExportSpec const& given,
                                             ObjectsToExport chosen) const override
    {
        spec = given;
        context = *given.referenceContext;
        objects = chosen;
        Korvane::ExportedFiles result;
        result.messages = QStringList{"one"};
        result.notices = {{"key", "title", "text"}};
        result.files.insert(path, "camera");
        result.failedCount = 2;
        return result;
    }

    mutable KV::ExportSpec spec;
    mutable Anm::Context context = Anm::Context::invalid();
    mutable ObjectsToExport objects = SelectedObjects;
};

}
