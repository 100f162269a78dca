#pragma once
// The reference host's records behind the classes of src/Host.

#include "Host/Anm.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/MeshTracking.h"
#include "Host/MessageBox.h"
#include "Host/Scene3D.h"
#include "Host/ZN_ClipInfo.h"
#include "marlohost/ProjectFile.h"

#include <QHash>
#include <QPair>
#include <QSet>

struct ZN_BaseClipInfo::Data
{
    MarloHost::ClipModel const* model = nullptr;
    ZN::ImageFormat format;
    ZN::FilmType film;
    float frameRate = 0.0F;
};

struct KORV_Clip::Data
{
    unsigned int id = 0;
    std::unique_ptr<ZN_ClipInfo> info;
    MarloHost::ClipModel const* model = nullptr;
};

struct Korvane::LayerGroup::Data
{
    MarloHost::GroupModel const* model = nullptr;
    Korvane::LayerGroup* parent = nullptr;
    QString textId;
    std::unique_ptr<ZN::Point3DParameterSet> points;
};

struct KORV_Layer::Data
{
    MarloHost::LayerModel const* model = nullptr;
    unsigned int id = 0;
    KORV_Clip const* clip = nullptr;
    MarloHost::ClipModel const* clipModel = nullptr;
    unsigned int insertClipId = 0;
    Korvane::LayerGroup* group = nullptr;
    KORV_Layer const* below = nullptr;
    int inPoint = 0;
    int outPoint = 0;
    KV::Surface surface;
    ZN_StabilizeParameterSet stabilize;

    /// Tracks by view id; null where the view has none.
    std::vector<MarloHost::TrackModel const*> tracks;
    Anm::Parameter<bool> invert;
    Anm::Parameter<unsigned int> blendMode;
    QString textId;
    std::unique_ptr<ZN::Point3DParameterSet> points;

    /// Filled once the layer is there, as they point back to it.
    QList<boost::shared_ptr<Korvane::Contour const>> contours;
    std::shared_ptr<ZN::MeshTracking::ParameterSet> mesh;
};

struct KORV_SelectionManager::Data
{
    std::vector<boost::shared_ptr<KORV_Layer>> stack;
    std::vector<boost::shared_ptr<Korvane::LayerGroup>> groups;
    std::map<unsigned int, boost::shared_ptr<Korvane::ItemItf>> items;
};

struct KORV_ParameterManager::Data
{
    std::map<unsigned int, std::unique_ptr<KORV_Clip>> clips;
    QHash<QString, unsigned int> idByName;
};

struct KORV_FrameManager::Data
{
    KORV_ParameterManager const* clips = nullptr;
};

struct ProjectProperties::Data
{
    QSize size;
    double par = 1.0;
    int trimIn = 0;
    int start = 0;
    boost::shared_ptr<Anm::Views const> views;
};

/// Points, by their owner and id, that the running export of a solve gave names to without an
/// accuracy source.
using NamedPoints = QSet<QPair<QString, unsigned int>>;

struct KORV_ProjectManager::Data
{
    MarloHost::ProjectModel model;
    QString filePath;
    MarloHost::HostServices services;

    boost::shared_ptr<Anm::Views const> views;
    std::unique_ptr<KORV_ParameterManager> parameters;
    boost::shared_ptr<KORV_SelectionManager> selection;
    std::unique_ptr<KORV_FrameManager> frames;
    std::unique_ptr<KORV_ToolManager> tools;
    std::unique_ptr<KV::RenderingContext> rendering;
    std::unique_ptr<ProjectProperties> properties;
    std::unique_ptr<ZN::Scene3DParameterSet> scene;

    KORV_Layer* currentLayer = nullptr;
    Anm::Context currentFrame;
    Anm::View currentView;
    int offset = 0;
    bool interlaced = false;
    unsigned int playbackIn = 0;
    unsigned int playbackOut = 0;
    std::shared_ptr<NamedPoints> const namedPoints = std::make_shared<NamedPoints>();
};
