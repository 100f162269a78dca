// The 3D scene of a project, from its model.

#include "Host/KORV_Exception.h"
#include "Host/KORV_Layer.h"
#include "model/Parameter.h"
#include "Solve.h"

#include <boost/make_shared.hpp>

#include <array>

namespace ZN
{

struct StereoCamera3DParameterSet::Data
{
    MarloHost::CameraModel const* camera = nullptr;
    MarloHost::StereoModel const* rig = nullptr;
    double filmSize = 0.0;
    Anm::Parameter<unsigned int> mode;
    Anm::Parameter<double> separation;
    Anm::Parameter<double> convergence;
    std::array<Anm::Parameter<double>, 2> shift;
};

struct FileAsset3DParameterSet::Data
{
    MarloHost::FileAssetModel const* model = nullptr;
    QString parentId;
    std::unique_ptr<Point3DParameterSet> points;
};

struct Scene3DParameterSet::Data
{
    std::unique_ptr<Camera3DParameterSet> camera;
    std::unique_ptr<StereoCamera3DParameterSet> rig;
    QVector<boost::shared_ptr<Features3DParameterSet const>> features;
    QVector<boost::shared_ptr<FileAsset3DParameterSet const>> assets;
    std::unique_ptr<Point3DParameterSet> featureRoot;
    QString featureRootName;
    Anm::Parameter<unsigned int> referenceFrame;
};

namespace
{

std::unique_ptr<Camera3DParameterSet::Data> cameraRecord(MarloHost::CameraModel const& model, double filmSize,
                                                         MarloHost::StereoModel const* rig, int side)
{
    return std::make_unique<Camera3DParameterSet::Data>(
        Camera3DParameterSet::Data{&model, MarloHost::unkeyed(1U), MarloHost::unkeyed(filmSize), rig, side});
}

}

Camera3DParameterSet::Camera3DParameterSet(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

Camera3DParameterSet::Camera3DParameterSet(Camera3DParameterSet const& other)
    : m_data(std::make_unique<Data>(*other.m_data))
{
}

Camera3DParameterSet::~Camera3DParameterSet() = default;

Anm::Parameter<unsigned int> const& Camera3DParameterSet::solved() const
{
    return m_data->solved;
}

Anm::Parameter<double> const& Camera3DParameterSet::filmSize() const
{
    return m_data->filmSize;
}

Camera3DParameterSet::Data const& Camera3DParameterSet::data() const
{
    return *m_data;
}

StereoCamera3DParameterSet::StereoCamera3DParameterSet(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

StereoCamera3DParameterSet::~StereoCamera3DParameterSet() = default;

boost::shared_ptr<Camera3DParameterSet> StereoCamera3DParameterSet::buildViewCamera(Anm::View const& view) const
{
    int const eye = view.id() - Anm::View::defaultViewId();
    if (eye < 0 || eye > 1)
    {
        return nullptr;
    }
    return boost::make_shared<Camera3DParameterSet>(
        cameraRecord(*m_data->camera, m_data->filmSize, m_data->rig, eye == 0 ? -1 : 1));
}

Anm::Parameter<unsigned int> const& StereoCamera3DParameterSet::eyeSeparationMode() const
{
    return m_data->mode;
}

Anm::Parameter<double> const& StereoCamera3DParameterSet::interaxialSeparation() const
{
    return m_data->separation;
}

Anm::Parameter<double> const& StereoCamera3DParameterSet::convergenceAngle() const
{
    return m_data->convergence;
}

Anm::Parameter<double> const& StereoCamera3DParameterSet::pictureShift(Anm::View const& view) const
{
    return m_data->shift[view.id() == Anm::View::defaultViewId() ? 0 : 1];
}

Point3DParameterSet::Point3DParameterSet(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

Point3DParameterSet::~Point3DParameterSet() = default;

Point3DParameterSet::Data const& Point3DParameterSet::data() const
{
    return *m_data;
}

Features3DParameterSet::Features3DParameterSet(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

Features3DParameterSet::~Features3DParameterSet() = default;

QString const& Features3DParameterSet::name() const
{
    return m_data->model->name;
}

bool Features3DParameterSet::hasParent() const
{
    return !m_data->parentId.isEmpty();
}

QString const& Features3DParameterSet::parentID() const
{
    return m_data->parentId;
}

Features3DParameterSet::Data const& Features3DParameterSet::data() const
{
    return *m_data;
}

FileAsset3DParameterSet::FileAsset3DParameterSet(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

FileAsset3DParameterSet::~FileAsset3DParameterSet() = default;

QString const& FileAsset3DParameterSet::path() const
{
    return m_data->model->path;
}

QString const& FileAsset3DParameterSet::parentID() const
{
    return m_data->parentId;
}

Point3DParameterSet const& FileAsset3DParameterSet::points() const
{
    return *m_data->points;
}

Scene3DParameterSet::Scene3DParameterSet(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

Scene3DParameterSet::~Scene3DParameterSet() = default;

bool Scene3DParameterSet::hasMonoCamera() const
{
    return m_data->camera && !m_data->rig;
}

bool Scene3DParameterSet::hasStereoCamera() const
{
    return m_data->rig != nullptr;
}

Camera3DParameterSet const* Scene3DParameterSet::cameraParameters(unsigned int index) const
{
    return index == 0 ? m_data->camera.get() : nullptr;
}

StereoCamera3DParameterSet const* Scene3DParameterSet::stereoCameraParameters(unsigned int index) const
{
    return index == 0 ? m_data->rig.get() : nullptr;
}

QVector<boost::shared_ptr<Features3DParameterSet const>> const& Scene3DParameterSet::features() const
{
    return m_data->features;
}

QVector<boost::shared_ptr<FileAsset3DParameterSet const>> const& Scene3DParameterSet::fileAssets() const
{
    return m_data->assets;
}

Point3DParameterSet const& Scene3DParameterSet::staticFeatureRoot() const
{
    return *m_data->featureRoot;
}

QString const& Scene3DParameterSet::staticFeatureRootName() const
{
    return m_data->featureRootName;
}

Anm::Parameter<unsigned int> const& Scene3DParameterSet::referenceFrame() const
{
    return m_data->referenceFrame;
}

}

namespace MarloHost
{

namespace
{

Anm::Parameter<double> keyed(KeyedNumber const& number)
{
    auto data = std::make_unique<Anm::Parameter<double>::Data>();
    data->staticValue = number.value;
    for (std::size_t i = 0; i < number.frames.size(); ++i)
    {
        data->keys.emplace_back(number.frames[i], number.values[i]);
    }
    return Anm::Parameter<double>(std::move(data));
}

// See ZN::Camera3DParameterSet::filmSize.
double filmSizeOf(SolveModel const& solve, ClipModel const& clip)
{
    constexpr double LEGACY_PIXELS_PER_MILLIMETRE = 2.83469567;
    return solve.legacy ? clip.width * clip.pixelAspect / LEGACY_PIXELS_PER_MILLIMETRE
                        : filmBackWidth(solve.camera, clip);
}

std::unique_ptr<ZN::StereoCamera3DParameterSet> makeRig(CameraModel const& camera, StereoModel const& stereo,
                                                        double filmSize)
{
    using Rig = ZN::StereoCamera3DParameterSet;
    unsigned int const mode = stereo.converged ? Rig::ConvergedEyes : Rig::ParallelEyes;
    return std::make_unique<Rig>(
        std::make_unique<Rig::Data>(Rig::Data{&camera,
                                              &stereo,
                                              filmSize,
                                              unkeyed(mode),
                                              keyed(stereo.separation),
                                              keyed(stereo.convergence),
                                              {keyed(stereo.shift[0]), keyed(stereo.shift[1])}}));
}

std::unique_ptr<ZN::Point3DParameterSet> place(PoseModel const& pose, bool isCarried)
{
    return std::make_unique<ZN::Point3DParameterSet>(
        std::make_unique<ZN::Point3DParameterSet::Data>(ZN::Point3DParameterSet::Data{&pose, nullptr, isCarried}));
}

// Null for no name.
boost::shared_ptr<Korvane::LayerBase> layerNamed(QString const& name, KORV_SelectionManager const& layers)
{
    if (name.isEmpty())
    {
        return nullptr;
    }
    QVector<boost::shared_ptr<Korvane::LayerBase>> const found = layers.findLayers(name, false);
    if (found.isEmpty())
    {
        throw KORV_BadArgument(__FILE__, __LINE__, QStringLiteral("There is no layer \"%1\"").arg(name), QString());
    }
    return found.front();
}

boost::shared_ptr<ZN::Features3DParameterSet const>
makeFeatures(FeatureSetModel const& model, KORV_SelectionManager const& layers, ZN::Point3DParameterSet const& root)
{
    boost::shared_ptr<Korvane::LayerBase> const layer = layerNamed(model.layer, layers);
    return boost::make_shared<ZN::Features3DParameterSet const>(
        std::make_unique<ZN::Features3DParameterSet::Data>(ZN::Features3DParameterSet::Data{
            &model, layer ? layer->textID() : QString(), layer ? &layer->points() : &root}));
}

boost::shared_ptr<ZN::FileAsset3DParameterSet const> makeAsset(FileAssetModel const& model,
                                                               KORV_SelectionManager const& layers)
{
    boost::shared_ptr<Korvane::LayerBase> const layer = layerNamed(model.layer, layers);
    return boost::make_shared<ZN::FileAsset3DParameterSet const>(
        std::make_unique<ZN::FileAsset3DParameterSet::Data>(ZN::FileAsset3DParameterSet::Data{
            &model, layer ? layer->textID() : QString(), place(model.pose, layer != nullptr)}));
}

}

double filmBackWidth(CameraModel const& camera, ClipModel const& firstClip)
{
    return camera.filmBackWidth.value_or(firstClip.filmBack.value_or(FilmBackModel()).width);
}

std::unique_ptr<ZN::Scene3DParameterSet> makeScene(ProjectModel const& model, KORV_SelectionManager const& layers)
{
    static SolveModel const NOTHING;
    SolveModel const& solve = model.solve ? *model.solve : NOTHING;
    auto data = std::make_unique<ZN::Scene3DParameterSet::Data>(
        ZN::Scene3DParameterSet::Data{nullptr,
                                      nullptr,
                                      {},
                                      {},
                                      place(solve.featureRoot, false),
                                      solve.featureRootName,
                                      unkeyed(static_cast<unsigned int>(solve.referenceFrame))});
    if (model.solve)
    {
        double const filmSize = filmSizeOf(solve, model.clips.front());
        data->camera = std::make_unique<ZN::Camera3DParameterSet>(ZN::cameraRecord(solve.camera, filmSize, nullptr, 0));
        if (solve.stereo)
        {
            data->rig = makeRig(solve.camera, *solve.stereo, filmSize);
        }
    }
    for (FeatureSetModel const& features : solve.features)
    {
        data->features.push_back(makeFeatures(features, layers, *data->featureRoot));
    }
    for (FileAssetModel const& asset : solve.assets)
    {
        data->assets.push_back(makeAsset(asset, layers));
    }
    return std::make_unique<ZN::Scene3DParameterSet>(std::move(data));
}

}
