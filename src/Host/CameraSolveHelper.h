#pragma once
// The host's view of a camera solve, as its exporters read it.

#include "Host/Anm.h"
#include "Host/CameraSolveExporter.h"
#include "Host/ExporterHelper.h"
#include "Host/HostApi.h"
#include "Host/Scene3D.h"
#include "mtx/Sabrel.h"

#include <QList>
#include <QString>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <optional>
#include <variant>
#include <vector>

class KORV_Layer;

namespace Korvane
{
namespace CameraSolve
{

enum PointType
{
    /// On the planar surface of a layer.
    SurfacePoint = 0,
    /// A vertex of a layer's mesh.
    TrackMeshPoint = 1,
    /// Found by the solver itself.
    FeaturePoint = 2
};

/// What focal lengths are delivered in.
enum UnitConversion
{
    /// Millimetres times a factor. Without one the factor is the pixels per millimetre of
    /// the picture, so that the result is in square pixels.
    ScaledMillimetres = 1,
    Millimetres = 2
};

/// What becomes of the pose that the user gave to the scene as a whole.
enum SceneTransformMode
{
    /// It is multiplied into everything that has no parent: camera, points in world
    /// space, outermost objects.
    SceneApplied = 0,
    /// It is left out.
    SceneLeftOut = 1,
    /// It is left out of the data and asked for with sceneTransformForExport(), for a
    /// node above them.
    SceneApart = 2
};

/// A pose: angles in degrees, static order XYZ; factors.
struct KeyframePRS
{
    Sabrel::Vector3 position;
    Sabrel::Vector3 rotation;
    Sabrel::Vector3 scale{1.0, 1.0, 1.0};
};

/// A camera over time; one entry of each vector for every frame of the project from 0.
struct CameraAnimData
{
    std::vector<Anm::Context> contexts;
    std::vector<Sabrel::Vector3> positions;

    /// Degrees, in the order that setRotateOrder() fixed; without jumps from one to the next.
    std::vector<Sabrel::Vector3> rotations;

    /// In the units that setFocalLengthExportUnits() fixed.
    std::vector<float> focalLengths;
    bool focalIsAnimated = false;
};

/// A point or object over time. All vectors have one length: 1 for what doesn't move
/// (its context is frame 0), else a sample for every frame of the project from 0.
struct PointAnimData
{
    std::vector<Anm::Context> contexts;
    std::vector<Sabrel::Vector3> positions;

    /// Degrees, in the order that setRotateOrder() fixed; without jumps from one to the next.
    std::vector<Sabrel::Vector3> rotations;

    /// Percent from pointAnimData() and its sisters, factors from collectPointData().
    std::vector<Sabrel::Vector3> scales;
};

/// The points of a layer as a mesh.
struct MeshAnimData
{
    /// One for a mesh at rest, else every frame of the project from 0.
    std::vector<Anm::Context> contexts;

    /// A row of points for each context.
    std::vector<std::vector<Sabrel::Vector3>> points;
    std::vector<int> faceCounts;
    std::vector<int> faceIndices;
};

/// Gives cameras and points of a solve in the axes, order, units and space that an
/// exporter sets. Set up with initialise(), then the set... functions, then ask.
///
/// Positions come as `scale A p` and rotations as `A R B`, with A, B and scale from
/// setCoordinateTransform(). A legacy solve has order 0 and focal lengths in pixels
/// whatever was set. With unit matrices it comes in axes of its own: positions (x, -y, -z),
/// and angles (ex, -ey, ez) of the transposed rotation in order 0. With other matrices its
/// positions are `scale A p` like any, and its angles the negated ones of the transposed
/// `A R B` in order 0, which are those of `A R B` about moving axes.
class MARLO_HOST_API ExporterHelper : public ExporterHelperBase
{
public:
    using LayerChoice = std::variant<KV::Layers::All, KV::Layers::AllSelected, KV::Layers::Current,
                                     KV::Layers::FilterByPoints, QVector<boost::shared_ptr<KORV_Layer const>>>;

    ExporterHelper();
    ExporterHelper(ExporterHelper const& other);
    ExporterHelper(ExporterHelper&& other) noexcept;
    ExporterHelper& operator=(ExporterHelper const& other);
    ExporterHelper& operator=(ExporterHelper&& other) noexcept;
    ~ExporterHelper() override;

    /// Fixes project, view and objects and forgets all earlier data and settings. The range
    /// is that of the samples: all frames of the project.
    ///
    /// @param selectedOnly,visibleOnly which layers and feature sets are taken, beside
    ///        what `layers` says; both false takes all
    /// @param includeFeatures whether feature sets are exported
    /// @param clip gives size, interlacing and offset; null means the project's first
    void initialise(KORV_ProjectManager const& project, Anm::View const& view, LayerChoice const& layers,
                    int framesToExport, bool selectedOnly, bool visibleOnly, bool includeFeatures,
                    KORV_Clip const* clip);

    void setCoordinateTransform(Sabrel::Matrix33 const& a, Sabrel::Matrix33 const& b, double scale,
                                SceneTransformMode mode);

    /// An order code of SFMEulerAngles; 0 until it is set.
    void setRotateOrder(int order);

    void setFocalLengthExportUnits(UnitConversion unit);
    void setFocalLengthExportUnits(UnitConversion unit, double factor);

    /// Focal length of the first exported sample of the view's camera; 0 without one.
    double referenceFocalLength(UnitConversion unit) const;
    double referenceFocalLength(UnitConversion unit, double factor) const;

    /// Takes the camera's first focal length, in the export units, as focal distance.
    void setFocalDistanceFromCamera(ZN::Camera3DParameterSet const& camera);

    /// Film size in the exporter's units; 0 until the exporter sets it.
    float filmSize() const;
    void setFilmSize(float size);

    /// Film back of the camera in millimetres, for formats that keep a pixel aspect beside
    /// it: the width of the picture as seen is divided by the pixel aspect.
    Mtx_Vector2 filmBack() const;

    /// The layers that have points of the chosen objects, from the top of the stack.
    QList<unsigned int> const& layerIDsToExport() const;

    /// The models that hang on nothing or on a layer of the project.
    std::vector<boost::shared_ptr<ZN::FileAsset3DParameterSet const>> fileAssetsToExport() const;

    /// Points from here on are those of the layer.
    ///
    /// @param reference frame at which a mesh at rest is taken; frame 0 when invalid
    /// @param worldSpace whether positions include the poses of the layer and its groups
    void setCurrentLayer(boost::shared_ptr<KORV_Layer const> const& layer, Anm::Context const& reference,
                         bool worldSpace);

    /// Points from here on are those of the feature set; none when it isn't exported.
    void setCurrentFeatureSet(ZN::Features3DParameterSet const& features, bool worldSpace);

    /// Forgets the current layer or feature set and what was computed for it.
    void clearParamData();

    std::size_t numPoints(std::optional<PointType> type) const;

    /// Ids of the current layer's or set's points; no type means all.
    /// @param meshOnly only points that belong to a face
    std::vector<unsigned int> pointIDsToExport(std::optional<PointType> type, bool meshOnly) const;

    /// The type of a point; `id` becomes its index among those of that type.
    PointType pointTypeFromID(unsigned int& id) const;

    /// @param accuracy marks points that it knows to be inaccurate; may be null
    QString pointName(unsigned int id, KV::NullAccuracySource const* accuracy) const;

    Sabrel::Vector2Adapter<Mtx_Vector2_f> pointUVByType(PointType type, unsigned int index) const;

    CameraAnimData cameraAnimData(ZN::Camera3DParameterSet const& camera) const;
    PointAnimData pointAnimData(unsigned int id) const;
    PointAnimData pointAnimDataByType(PointType type, unsigned int index) const;

    /// The same, kept until clearParamData(); null for a point that isn't there. Layer 0 means
    /// the current feature set, whose data are kept until another one is chosen.
    PointAnimData const* cachedPointAnimData(bool worldSpace, unsigned int layerId, unsigned int id) const;

    /// The pose of an object. Without a parent it is the one in the scene, whatever
    /// `worldSpace` says.
    ///
    /// @param worldSpace true for all that it hangs on, false for its place within the
    ///        outermost group; a model from a file stands relative to its layer always
    /// @param firstOnly only the first sample
    PointAnimData collectPointData(ZN::Point3DParameterSet const& points, bool worldSpace, bool firstOnly) const;

    /// @param animated a row of points per frame, where they move
    MeshAnimData meshData(PointType type, bool animated) const;

    /// The scene's pose in the mode SceneApart, else the identity: what a node above the
    /// exported data has to do, in the axes and units of these.
    KeyframePRS sceneTransformForExport() const;

    /// A size that suits markers for the exported points: the median of their distances
    /// from the reference, 0 without points. In exported units.
    double suggestPointScale(bool includeLayers, bool includeFeatures, Sabrel::Vector3 const& reference);

    bool isOldSolveData() const;

private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

}
}
