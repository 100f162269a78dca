#pragma once
// The 3D scene of a project: cameras, feature points, models. Right-handed, y up,
// lengths in scene units, angles in degrees. A camera looks along its -z axis with y up
// in its picture; it is a pinhole through the middle of the picture.

#include "Host/Anm.h"
#include "Host/AnmParameter.h"
#include "Host/HostApi.h"

#include <QString>
#include <QVector>
#include <boost/shared_ptr.hpp>

#include <memory>

namespace ZN
{

/// One camera over time.
class MARLO_HOST_API Camera3DParameterSet
{
public:
    struct Data;

    explicit Camera3DParameterSet(std::unique_ptr<Data> data);
    Camera3DParameterSet(Camera3DParameterSet const& other);
    Camera3DParameterSet& operator=(Camera3DParameterSet const&) = delete;
    ~Camera3DParameterSet();

    /// Non-zero once the camera has been solved.
    Anm::Parameter<unsigned int> const& solved() const;

    /// Width of the picture as seen on what it was recorded on, in millimetres. A
    /// legacy solve, whose focal lengths are in pixels, has the width of the picture in
    /// square pixels here, at 2.83469567 pixels to the millimetre.
    Anm::Parameter<double> const& filmSize() const;

    /// The host's own record; opaque to exporters.
    Data const& data() const;

private:
    std::unique_ptr<Data> m_data;
};

/// Two cameras, one for each eye, that move as one. The eyes are the first two views of
/// the project, left and right.
class MARLO_HOST_API StereoCamera3DParameterSet
{
public:
    struct Data;

    /// How the eyes stand to one another.
    enum SeparationMode
    {
        /// They look the same way; the pictures are shifted.
        ParallelEyes = 0,
        /// Each is turned inwards by half the convergence angle.
        ConvergedEyes = 1
    };

    explicit StereoCamera3DParameterSet(std::unique_ptr<Data> data);
    ~StereoCamera3DParameterSet();
    StereoCamera3DParameterSet(StereoCamera3DParameterSet const&) = delete;
    StereoCamera3DParameterSet& operator=(StereoCamera3DParameterSet const&) = delete;

    /// The camera of one eye, as an ordinary one; null for a view that isn't an eye. The
    /// shift of its picture isn't in it.
    boost::shared_ptr<Camera3DParameterSet> buildViewCamera(Anm::View const& view) const;

    /// A value of SeparationMode.
    Anm::Parameter<unsigned int> const& eyeSeparationMode() const;

    /// Distance of the eyes in scene units.
    Anm::Parameter<double> const& interaxialSeparation() const;

    /// Angle between the two directions of view, in degrees; in converged mode only.
    Anm::Parameter<double> const& convergenceAngle() const;

    /// How far the picture of the eye is shifted to the right, in pixels.
    Anm::Parameter<double> const& pictureShift(Anm::View const& view) const;

private:
    std::unique_ptr<Data> m_data;
};

/// Something with a place in the scene: an object, or points that move with it.
class MARLO_HOST_API Point3DParameterSet
{
public:
    struct Data;

    explicit Point3DParameterSet(std::unique_ptr<Data> data);
    ~Point3DParameterSet();
    Point3DParameterSet(Point3DParameterSet const&) = delete;
    Point3DParameterSet& operator=(Point3DParameterSet const&) = delete;

    /// The host's own record; opaque to exporters.
    Data const& data() const;

private:
    std::unique_ptr<Data> m_data;
};

/// Points that the solver found by itself.
class MARLO_HOST_API Features3DParameterSet
{
public:
    struct Data;

    explicit Features3DParameterSet(std::unique_ptr<Data> data);
    ~Features3DParameterSet();
    Features3DParameterSet(Features3DParameterSet const&) = delete;
    Features3DParameterSet& operator=(Features3DParameterSet const&) = delete;

    QString const& name() const;

    /// Whether the points move with a layer.
    bool hasParent() const;

    /// Text id of that layer, for KORV_SelectionManager::layerFromID; empty without one.
    QString const& parentID() const;

    /// The host's own record; opaque to exporters.
    Data const& data() const;

private:
    std::unique_ptr<Data> m_data;
};

/// A model that came from a file. It doesn't move by itself.
class MARLO_HOST_API FileAsset3DParameterSet
{
public:
    struct Data;

    explicit FileAsset3DParameterSet(std::unique_ptr<Data> data);
    ~FileAsset3DParameterSet();
    FileAsset3DParameterSet(FileAsset3DParameterSet const&) = delete;
    FileAsset3DParameterSet& operator=(FileAsset3DParameterSet const&) = delete;

    QString const& path() const;

    /// Text id of the layer that carries it; empty for none.
    QString const& parentID() const;

    /// Where it stands.
    Point3DParameterSet const& points() const;

private:
    std::unique_ptr<Data> m_data;
};

class MARLO_HOST_API Scene3DParameterSet
{
public:
    struct Data;

    explicit Scene3DParameterSet(std::unique_ptr<Data> data);
    ~Scene3DParameterSet();
    Scene3DParameterSet(Scene3DParameterSet const&) = delete;
    Scene3DParameterSet& operator=(Scene3DParameterSet const&) = delete;

    /// Whether the scene was solved with one camera, or with a stereo rig.
    bool hasMonoCamera() const;
    bool hasStereoCamera() const;

    /// The camera of that index, null when there is none. Index 0 of a scene that was
    /// solved with a rig is the rig's own camera, between the eyes.
    Camera3DParameterSet const* cameraParameters(unsigned int index) const;

    /// The rig of that index, null when there is none.
    StereoCamera3DParameterSet const* stereoCameraParameters(unsigned int index) const;

    QVector<boost::shared_ptr<Features3DParameterSet const>> const& features() const;
    QVector<boost::shared_ptr<FileAsset3DParameterSet const>> const& fileAssets() const;

    /// What the feature sets without a layer hang on.
    Point3DParameterSet const& staticFeatureRoot() const;

    /// Name of that root.
    QString const& staticFeatureRootName() const;

    /// Host frame in which the scene was oriented.
    Anm::Parameter<unsigned int> const& referenceFrame() const;

private:
    std::unique_ptr<Data> m_data;
};

}
