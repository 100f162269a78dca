// The 3D scene of a project, from its model.

#include "Parameter.h"
#include "Solve.h"

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

struct Features3DParameterSet::Data
{
    MarloHost::FeatureSetModel const* model = nullptr;
    QString parentId;
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

Point3DParameterSet::Point3DParameterSet(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

Point3DParameterSet::~Point3DParameterSet() = default;

Point3DParameterSet::Data const& Point3DParameterSet::data() const
{
    return *m_data;
}

Scene3DParameterSet::Scene3DParameterSet(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

Scene3DParameterSet::~Scene3DParameterSet() = default;

Camera3DParameterSet const* Scene3DParameterSet::cameraParameters(unsigned int) const
{
    return nullptr;
}

Camera3DParameterSet::~Camera3DParameterSet() = default;

Anm::Parameter<unsigned int> const& Camera3DParameterSet::solved() const
{
    return m_data->solved;
}

StereoCamera3DParameterSet::~StereoCamera3DParameterSet() = default;
Features3DParameterSet::~Features3DParameterSet() = default;
FileAsset3DParameterSet::~FileAsset3DParameterSet() = default;

}

namespace MarloHost
{

std::unique_ptr<ZN::Scene3DParameterSet> makeScene(ProjectModel const&, KORV_SelectionManager const&)
{
    return std::make_unique<ZN::Scene3DParameterSet>(
        std::make_unique<ZN::Scene3DParameterSet::Data>(ZN::Scene3DParameterSet::Data{
            nullptr,
            nullptr,
            {},
            {},
            nullptr,
            {},
            Anm::Parameter<unsigned int>(std::make_unique<Anm::Parameter<unsigned int>::Data>())}));
}

}
