// The 3D scene of the small host: there is none. Exporters find that out from the two
// questions for a camera and must not ask further; whatever they ask throws.

#include "Host/CameraSolveHelper.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/Product.h"

#include <stdexcept>

namespace
{

[[noreturn]] void noScene()
{
    throw std::logic_error("this host has no scene");
}

}

namespace Anm
{

Time operator-(BaseContext const& context, int frames)
{
    return Time::fromDouble(context.time().value() - frames);
}
template <>
double Parameter<double>::staticValue(View const&) const
{
    noScene();
}

}

namespace KV
{

struct NullAccuracySource::Data
{
};
NullAccuracySource::NullAccuracySource() = default;
NullAccuracySource::~NullAccuracySource() = default;
void NullAccuracySource::processNulls(QList<unsigned int> const&, KORV_ProjectManager const*,
                                      std::vector<Anm::View> const&) const
{
}
QString NullAccuracySource::warnInaccurateNulls() const
{
    noScene();
}
StringsUI CameraSolveExporter::UI()
{
    return {{"includeFeatures", {}, {}},
            {"useReferenceFrame", {}, {}},
            {"sceneAtOrigin", {}, {}},
            {"pointSizeMode", {}, {}},
            "suggested",
            "fixed"};
}

}

namespace ZN
{

struct Camera3DParameterSet::Data
{
};
Camera3DParameterSet::Camera3DParameterSet(Camera3DParameterSet const&)
{
    noScene();
}
Camera3DParameterSet::~Camera3DParameterSet() = default;
Anm::Parameter<unsigned int> const& Camera3DParameterSet::solved() const
{
    noScene();
}
Anm::Parameter<double> const& Camera3DParameterSet::filmSize() const
{
    noScene();
}
QString const& Features3DParameterSet::parentID() const
{
    noScene();
}
QString const& FileAsset3DParameterSet::parentID() const
{
    noScene();
}
QString const& FileAsset3DParameterSet::path() const
{
    noScene();
}
Point3DParameterSet const& FileAsset3DParameterSet::points() const
{
    noScene();
}
QVector<boost::shared_ptr<Features3DParameterSet const>> const& Scene3DParameterSet::features() const
{
    noScene();
}
QVector<boost::shared_ptr<FileAsset3DParameterSet const>> const& Scene3DParameterSet::fileAssets() const
{
    noScene();
}
bool Scene3DParameterSet::hasMonoCamera() const
{
    return false;
}
bool Scene3DParameterSet::hasStereoCamera() const
{
    return false;
}
Point3DParameterSet const& Scene3DParameterSet::staticFeatureRoot() const
{
    noScene();
}
StereoCamera3DParameterSet const* Scene3DParameterSet::stereoCameraParameters(unsigned int) const
{
    return nullptr;
}
boost::shared_ptr<Camera3DParameterSet> StereoCamera3DParameterSet::buildViewCamera(Anm::View const&) const
{
    noScene();
}

}

boost::shared_ptr<Korvane::LayerBase> KORV_SelectionManager::layerFromID(QString const&) const
{
    noScene();
}

KORV_ParameterManager const* KORV_ProjectManager::parameterManager() const
{
    return const_cast<KORV_ProjectManager*>(this)->pGetParameterManager();
}

QString Product::displayName()
{
    return QStringLiteral("Other host");
}

namespace Korvane
{

struct LayerGroup::Data
{
};
LayerGroup::~LayerGroup() = default;
QString const& LayerGroup::name() const
{
    noScene();
}
bool LayerGroup::isHidden(bool) const
{
    noScene();
}
bool LayerGroup::isSelected() const
{
    noScene();
}
LayerGroup* LayerGroup::parentGroup(bool) const
{
    noScene();
}
bool LayerGroup::isMoving() const
{
    noScene();
}
ZN::Point3DParameterSet const& LayerGroup::points() const
{
    noScene();
}
QString const& LayerGroup::textID() const
{
    noScene();
}

float ExporterHelperBase::focalDistance() const
{
    noScene();
}
void ExporterHelperBase::setFocalDistance(float)
{
}
void ExporterHelperBase::setFrameScale(float)
{
}
void ExporterHelperBase::setHeightScale(float)
{
}

namespace CameraSolve
{

struct ExporterHelper::Data
{
};
ExporterHelper::ExporterHelper() : ExporterHelperBase(false)
{
}
ExporterHelper::~ExporterHelper() = default;
void ExporterHelper::initialise(KORV_ProjectManager const& project, Anm::View const&, LayerChoice const&, int, bool,
                                bool, bool, KORV_Clip const* clip)
{
    setClip(clip ? *clip : *project.parameterManager()->getClip(0));
}
void ExporterHelper::setCoordinateTransform(Sabrel::Matrix33 const&, Sabrel::Matrix33 const&, double,
                                            SceneTransformMode)
{
}
void ExporterHelper::setRotateOrder(int)
{
}
void ExporterHelper::setFocalLengthExportUnits(UnitConversion, double)
{
}
double ExporterHelper::referenceFocalLength(UnitConversion, double) const
{
    return 0.0;
}
void ExporterHelper::setFocalDistanceFromCamera(ZN::Camera3DParameterSet const&)
{
    noScene();
}
float ExporterHelper::filmSize() const
{
    return 0.0F;
}
void ExporterHelper::setFilmSize(float)
{
}
QList<unsigned int> const& ExporterHelper::layerIDsToExport() const
{
    static QList<unsigned int> const none;
    return none;
}
void ExporterHelper::setCurrentLayer(boost::shared_ptr<KORV_Layer const> const&, Anm::Context const&, bool)
{
    noScene();
}
void ExporterHelper::setCurrentFeatureSet(ZN::Features3DParameterSet const&, bool)
{
    noScene();
}
void ExporterHelper::clearParamData()
{
}
std::vector<unsigned int> ExporterHelper::pointIDsToExport(std::optional<PointType>, bool) const
{
    noScene();
}
QString ExporterHelper::pointName(unsigned int, KV::NullAccuracySource const*) const
{
    noScene();
}
CameraAnimData ExporterHelper::cameraAnimData(ZN::Camera3DParameterSet const&) const
{
    noScene();
}
PointAnimData ExporterHelper::pointAnimData(unsigned int) const
{
    noScene();
}
PointAnimData ExporterHelper::collectPointData(ZN::Point3DParameterSet const&, bool, bool) const
{
    noScene();
}
bool ExporterHelper::isOldSolveData() const
{
    return false;
}

}
}
