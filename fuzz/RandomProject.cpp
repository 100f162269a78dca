#include "RandomProject.h"

#include <cmath>
#include <limits>

namespace
{

using namespace MarloHost;

// Exports take time: the least that has something of all.
constexpr int MOST_FRAMES = 6;

class Maker
{
public:
    explicit Maker(Dice& dice) : m_dice(dice)
    {
    }

    ProjectModel make()
    {
        m_frames = upTo(1, MOST_FRAMES);
        m_project.frameRate = m_dice.pick({24.0, 25.0, 23.976, 30000.0 / 1001, 1.0, 240.0});
        for (int i = upTo(1, 2); i > 0; --i)
        {
            addClip();
        }
        if (chance())
        {
            m_project.views = QStringList{QStringLiteral("left"), QStringLiteral("right")};
        }
        for (int i = upTo(0, 2); i > 0; --i)
        {
            addGroup();
        }
        for (int i = upTo(0, 7) == 0 ? 0 : upTo(1, 2); i > 0; --i)
        {
            addLayer();
        }
        if (chance())
        {
            addSolve();
        }
        m_project.currentFrame = frame();
        m_project.currentLayer = m_project.layers.empty() ? QString() : m_project.layers.front().name;
        if (chance())
        {
            m_project.playbackIn = upTo(0, m_frames - 1);
            m_project.playbackOut = upTo(*m_project.playbackIn, m_frames - 1);
        }
        return std::move(m_project);
    }

private:
    bool chance()
    {
        return m_dice.chance();
    }

    int upTo(int least, int most)
    {
        return m_dice.upTo(least, most);
    }

    int frame()
    {
        return upTo(0, m_frames - 1);
    }

    /// Mostly a pixel, sometimes a number that is hard to print or to compute with.
    double number()
    {
        switch (upTo(0, 7))
        {
        case 0:
            return m_dice.pick({0.0, -0.0, 0.5, 1e-7, -1e-300, 1e6, 9999999.5, -99999.95, 1e-300, 30000.5});
        case 1:
            return upTo(-1000000, 1000000) + upTo(0, 65535) / 65537.0;
        default:
            return upTo(-2000, 4000) / 16.0;
        }
    }

    std::vector<double> numbers(int count)
    {
        std::vector<double> made(static_cast<std::size_t>(count));
        for (double& value : made)
        {
            value = number();
        }
        return made;
    }

    /// The number makes it unlike all others.
    QString name()
    {
        static char const* const odd[] = {"Layer ", "a/b\\..", "\"q\" <&>", "Grüße 日本", "%1 %2", "{x} [y];$z",
                                          "]]>",    "#",       "'",         "🎬",          " ",     "\u00a0b",
                                          "--",     "x:y|z*?", "é",         "0",          "_",     "&amp;"};
        return QString::fromUtf8(m_dice.pick(odd)) + QString::number(++m_names);
    }

    std::vector<int> ascendingFrames()
    {
        std::vector<int> frames;
        for (int i = upTo(0, 3); i < m_frames; i += upTo(1, 4))
        {
            frames.push_back(i);
        }
        return frames;
    }

    /// A number about the usual one, at rest or keyed.
    KeyedNumber keyed(double usual, double spread)
    {
        auto const near = [&] { return usual + spread * upTo(-16, 16) / 16.0; };
        KeyedNumber made;
        made.value = near();
        made.frames = chance() ? ascendingFrames() : std::vector<int>();
        for (std::size_t i = 0; i < made.frames.size(); ++i)
        {
            made.values.push_back(near());
        }
        return made;
    }

    PoseModel pose(bool moves)
    {
        PoseModel made;
        made.frames = moves ? ascendingFrames() : std::vector<int>();
        int const samples = made.frames.empty() ? 1 : static_cast<int>(made.frames.size());
        made.positions = numbers(3 * samples);
        made.rotations = chance() ? numbers(3 * samples) : std::vector<double>();
        return made;
    }

    void addClip()
    {
        ClipModel clip;
        clip.name = name();
        clip.width = upTo(0, 9) == 0 ? upTo(1, 16384) : 1920;
        clip.height = upTo(0, 9) == 0 ? upTo(1, 8192) * 2 : 1080;
        clip.pixelAspect = m_dice.pick({1.0, 2.0, 0.5, 1.0667, 12.0 / 11});
        clip.frameCount = m_frames;
        clip.frameOffset = m_dice.pick({0, 1001, -7, 86400, 9999999});
        clip.interlaced = chance();
        clip.lowerFieldFirst = chance();
        if (chance())
        {
            clip.filmBack = FilmBackModel{upTo(1, 400) / 10.0, upTo(1, 400) / 10.0};
        }
        if (chance())
        {
            LensModel lens;
            lens.radial[0].value = upTo(-20, 20) / 1000.0;
            lens.tangential[0].value = upTo(-10, 10) / 10000.0;
            lens.centreX = keyed(0, 0.05);
            clip.lens = lens;
        }
        m_project.clips.push_back(clip);
    }

    template <typename Items>
    QString oneOf(Items const& items)
    {
        auto const count = static_cast<int>(items.size());
        int const index = upTo(0, count);
        return index == count ? QString() : items[static_cast<std::size_t>(index)].name;
    }

    void addGroup()
    {
        GroupModel group;
        group.parent = oneOf(m_project.groups);
        group.name = name();
        group.hidden = chance();
        group.moving = chance();
        group.pose = group.moving ? pose(true) : PoseModel();
        m_project.groups.push_back(group);
    }

    void addLayer()
    {
        LayerModel layer;
        layer.name = name();
        layer.clip = oneOf(m_project.clips);
        layer.group = oneOf(m_project.groups);
        layer.hidden = chance();
        layer.selected = chance();
        layer.moving = chance();
        layer.invert = chance();
        layer.subtract = chance();
        if (chance())
        {
            layer.inPoint = frame();
            layer.outPoint = upTo(*layer.inPoint, m_frames - 1);
        }
        layer.referenceFrame = frame();
        layer.corners = {600, 300, 900, 310, 590, 700, 910, 690};
        layer.corners[static_cast<std::size_t>(upTo(0, 7))] += upTo(-64, 64) / 16.0;
        for (QString const& view : m_project.views)
        {
            if (chance())
            {
                layer.tracks.push_back(track(view));
            }
        }
        if (chance())
        {
            AdjustKeyModel key{frame(), {}};
            key.offsets[static_cast<std::size_t>(upTo(0, 7))] = upTo(-500, 500) / 16.0;
            layer.adjust.push_back(key);
        }
        layer.pose = pose(layer.moving);
        for (int i = upTo(0, 2); i > 0; --i)
        {
            layer.contours.push_back(contour());
        }
        if (chance())
        {
            layer.mesh = mesh();
        }
        if (chance())
        {
            layer.surfacePoints = cloud();
        }
        m_project.layers.push_back(std::move(layer));
    }

    TrackModel track(QString const& view)
    {
        TrackModel made;
        made.view = view;
        made.frames = ascendingFrames();
        for (std::size_t i = 0; i < made.frames.size(); ++i)
        {
            double const turn = upTo(-30, 30) / 10.0;
            double const scale = upTo(1, 40) / 16.0;
            double const c = scale * std::cos(turn);
            double const s = scale * std::sin(turn);
            made.homographies.insert(made.homographies.end(),
                                     {c, -s, number(), s, c, number(), upTo(-9, 9) * 1e-5, upTo(-9, 9) * 1e-5, 1.0});
        }
        return made;
    }

    ContourModel contour()
    {
        ContourModel made;
        made.name = name();
        made.xspline = chance();
        made.closed = chance();
        made.active = upTo(0, 7) != 0;
        made.inImage = upTo(0, 7) == 0;
        int const points = upTo(3, 5);
        bool const hasFeather = chance();
        std::vector<int> frames = ascendingFrames();
        frames.resize(std::max<std::size_t>(frames.size(), 1));
        for (int const at : frames)
        {
            ContourKeyModel key{at, outline(made.xspline, points), {}};
            key.feather = hasFeather ? outline(made.xspline, points) : std::vector<double>();
            made.keys.push_back(key);
        }
        return made;
    }

    std::vector<double> outline(bool xspline, int points)
    {
        std::vector<double> made = numbers(points * (xspline ? 3 : 6));
        for (std::size_t i = 2; xspline && i < made.size(); i += 3)
        {
            made[i] = upTo(0, 16) / 16.0;
        }
        return made;
    }

    MeshModel mesh()
    {
        MeshModel made;
        made.vertexCount = upTo(3, 6);
        made.faceCounts = {3};
        made.faceIndices = {0, 1, 2};
        for (QString const& view : m_project.views)
        {
            if (made.tracks.empty() || chance())
            {
                MeshTrackModel tracked{view, ascendingFrames(), {}};
                tracked.frames.resize(std::max<std::size_t>(1, tracked.frames.size()));
                tracked.positions = numbers(2 * made.vertexCount * static_cast<int>(tracked.frames.size()));
                made.tracks.push_back(tracked);
            }
        }
        return made;
    }

    PointCloudModel cloud()
    {
        PointCloudModel made;
        int const points = upTo(0, 5);
        made.frames = chance() ? ascendingFrames() : std::vector<int>();
        made.positions = numbers(3 * points * static_cast<int>(std::max<std::size_t>(1, made.frames.size())));
        for (int i = 0; i < points && made.names.size() == i && chance(); ++i)
        {
            made.names.append(name());
        }
        made.names = made.names.size() == points ? made.names : QStringList();
        made.inaccurate = points > 0 && chance() ? std::vector<int>{0} : std::vector<int>();
        if (points >= 3 && chance())
        {
            made.faceCounts = {3};
            made.faceIndices = {0, 1, 2};
            made.uvs = chance() ? numbers(2 * points) : std::vector<double>();
        }
        return made;
    }

    void addSolve()
    {
        SolveModel solve;
        solve.legacy = chance();
        solve.referenceFrame = frame();
        solve.scene = pose(false);
        solve.camera.pose = pose(true);
        solve.camera.focalLength = keyed(35, 30);
        if (m_project.views.size() == 2 && chance())
        {
            solve.stereo = StereoModel{chance(), keyed(6, 2), keyed(1, 5), {keyed(0, 20), keyed(0, 20)}};
        }
        for (int i = upTo(0, 2); i > 0; --i)
        {
            solve.features.push_back({name(), oneOf(m_project.layers), chance(), chance(), cloud()});
        }
        if (chance())
        {
            solve.assets.push_back({name() + QStringLiteral(".obj"), oneOf(m_project.layers), pose(false)});
        }
        m_project.solve = std::move(solve);
    }

    Dice& m_dice;
    ProjectModel m_project;
    int m_frames = 1;
    int m_names = 0;
};

}

MarloHost::ProjectModel randomProject(Dice& dice)
{
    return Maker(dice).make();
}

void spoil(MarloHost::ProjectModel& project, Dice& dice)
{
    std::vector<std::vector<double>*> lists;
    for (MarloHost::LayerModel& layer : project.layers)
    {
        for (MarloHost::TrackModel& track : layer.tracks)
        {
            lists.push_back(&track.homographies);
        }
        for (MarloHost::ContourModel& contour : layer.contours)
        {
            lists.push_back(&contour.keys.back().points);
            lists.push_back(&contour.keys.back().feather);
        }
        for (std::size_t i = 0; layer.mesh && i < layer.mesh->tracks.size(); ++i)
        {
            lists.push_back(&layer.mesh->tracks[i].positions);
        }
    }
    if (project.solve)
    {
        lists.push_back(&project.solve->camera.pose.positions);
        lists.push_back(&project.solve->camera.pose.rotations);
        lists.push_back(&project.solve->camera.focalLength.values);
        for (MarloHost::FeatureSetModel& features : project.solve->features)
        {
            lists.push_back(&features.points.positions);
        }
    }
    for (std::vector<double>* const list : lists)
    {
        if (!list->empty() && dice.upTo(0, 3) == 0)
        {
            constexpr double INF = std::numeric_limits<double>::infinity();
            (*list)[static_cast<std::size_t>(dice.upTo(0, static_cast<int>(list->size()) - 1))] =
                dice.pick({std::nan(""), INF, -INF, 1e308, 5e-324});
        }
    }
}
