// Roto contours.

#include "Host/Contour.h"

#include "Host/ZN_ClipInfo.h"
#include "Outline.h"
#include "plane/SurfaceMotion.h"
#include "Shapes.h"
#include "text/NumberText.h"
#include "XSplineBezier.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>

Korvane::Contour::~Contour() = default;

/// The motion that was asked for last: callers go through the points of a frame.
struct ZN::TrackCache::Data
{
    KORV_Layer const* layer = nullptr;
    int view = 0;
    int frame = 0;
    MarloHost::Homography motion;
};

ZN::TrackCache::TrackCache() : m_data(std::make_unique<Data>())
{
}

ZN::TrackCache::~TrackCache() = default;

ZN::TrackCache::Data& ZN::TrackCache::data()
{
    return *m_data;
}

namespace MarloHost
{

namespace
{

using Motions = std::vector<SurfaceMotion>;

/// Carries nothing but its place in the contour.
class HostControlPoint : public Korvane::ControlPoint
{
public:
    explicit HostControlPoint(std::size_t index) : m_index(index)
    {
    }

    std::size_t index() const
    {
        return m_index;
    }

private:
    std::size_t m_index;
};

/// The text of one outline; docs/outline-text.md describes it.
class OutlineText
{
public:
    /// @param contour a Bezier curve
    /// @param unitX,unitY what a pixel is of the picture's width and height
    OutlineText(ContourModel const& contour, double unitX, double unitY)
        : m_contour(contour), m_withFeather(hasFeather(contour.keys)), m_unitX(unitX), m_unitY(unitY)
    {
    }

    QString at(int frame, Homography const& motion)
    {
        m_text.resize(0);
        m_text += m_contour.closed ? "bezier;closed" : "bezier;open";
        appendEdge(Edge::Mask, ';', frame, motion);
        if (m_withFeather)
        {
            appendEdge(Edge::Feather, '/', frame, motion);
        }
        return QString::fromLatin1(m_text);
    }

private:
    void appendEdge(Edge edge, char before, int frame, Homography const& motion)
    {
        edgeAt(m_contour.keys, edge, frame, m_numbers);
        carryEdge(false, motion, m_numbers);
        std::size_t const stride = m_contour.stride();
        m_text.reserve(m_text.size() + static_cast<int>(m_numbers.size()) * 12);
        for (std::size_t i = 0; i < m_numbers.size(); ++i)
        {
            std::size_t const place = i % stride;
            m_text += i == 0 ? before : place == 0 ? ';' : ',';
            Text::appendGeneral(m_text, m_numbers[i] * (place % 2 == 0 ? m_unitX : m_unitY));
        }
    }

    ContourModel const& m_contour;
    bool m_withFeather;
    double m_unitX;
    double m_unitY;
    std::vector<double> m_numbers;
    QByteArray m_text;
};

class HostContour : public Korvane::Contour
{
public:
    HostContour(KORV_Layer const& layer, ContourModel const& model, Anm::Views const& views,
                std::shared_ptr<Motions const> motions)
        : m_layer(layer), m_model(model), m_views(views), m_motions(std::move(motions))
    {
        std::size_t const count = model.keys.empty() ? 0 : model.keys.front().points.size() / model.stride();
        m_points.reserve(count);
        for (std::size_t index = 0; index < count; ++index)
        {
            m_points.push_back(boost::make_shared<HostControlPoint const>(index));
        }
    }

    QString const& name() const override
    {
        return m_model.name;
    }

    KORV_Layer const& parentLayer() const override
    {
        return m_layer;
    }

    ZN_CONTOUR_MODEL eGetType() const override
    {
        return m_model.xspline ? ZN_CONTOUR_XSPLINE : ZN_CONTOUR_BEZIER;
    }

    bool isClosed() const override
    {
        return m_model.closed;
    }

    bool isVeilML(Anm::View const& view) const override
    {
        return m_views.viewIndex(view) >= 0 && m_model.veilML.contains(m_views.name(view));
    }

    std::vector<boost::shared_ptr<Korvane::ControlPoint const>> const& allPoints() const override
    {
        return m_points;
    }

    void vGetControlPointXY(Korvane::ControlPoint const& point, Anm::Context const& context, bool inPlane, bool,
                            double& x, double& y, bool& usable, ZN::TrackCache* cache) const override
    {
        TXI::Pos2 const rest = restingPoint(static_cast<HostControlPoint const&>(point).index(), context.frameValue());
        Homography::Projected const seen =
            inPlane ? Homography::Projected{rest.x, rest.y, 1} : motion(context, cache).project(rest);
        x = seen.x / seen.w;
        y = seen.y / seen.w;
        usable = seen.w > 0 && std::isfinite(x) && std::isfinite(y);
    }

    QMap<Anm::Context, QString> getShapeKeyframesAsStrings(KORV_ProjectManager const*, QSize const& size,
                                                           HomographyMap const& homographies, Anm::View const& view,
                                                           std::set<Anm::Context> const& contexts, Pieces const&,
                                                           int) const override
    {
        std::set<Anm::Context> all = contexts;
        std::set<int> frames;
        for (Anm::Context const& context : contexts)
        {
            frames.insert(context.frameValue());
        }
        for (ContourKeyModel const& key : m_model.keys)
        {
            Anm::Context const context(Anm::Time::fromInt(key.frame), view);
            if (homographies.contains(context) && frames.insert(key.frame).second)
            {
                all.insert(context);
            }
        }
        auto const motionAt = [&](int frame)
        {
            HomographyWithCamera const found = homographies.value(Anm::Context(Anm::Time::fromInt(frame), view));
            return Homography{found.homography.m};
        };
        // The size is that of whole frames, pixels of interlaced clips are field lines.
        double const lines = m_layer.data().clip->info().bIsInterlaced() ? 2 : 1;
        ContourModel const outline =
            m_model.xspline ? asBezier(*frames.begin(), *frames.rbegin(), lines, motionAt) : m_model;
        OutlineText text(outline, 1.0 / size.width(), lines / size.height());
        QMap<Anm::Context, QString> texts;
        for (Anm::Context const& context : all)
        {
            int const frame = context.frameValue();
            texts.insert(texts.constEnd(), context, text.at(frame, motionAt(frame)));
        }
        return texts;
    }

    bool exportsWhole() const override
    {
        return false;
    }

    Pieces splitForExport(Anm::Context const&, Anm::Context const&, unsigned int, unsigned int) const override
    {
        return {};
    }

private:
    // As seen in a range of frames. The curve of an X-spline lies in the plane and is carried as a whole, which an
    // X-spline through carried points would not be.
    template <typename MotionAt>
    ContourModel asBezier(int first, int last, double lines, MotionAt const& motionAt) const
    {
        Homography const fullFrame{{1, 0, 0, 0, lines, 0, 0, 0, 1}};
        PlaneView view{first, {}};
        for (int frame = first; frame <= last; ++frame)
        {
            view.maps.push_back(fullFrame * motionAt(frame));
        }
        ContourModel bezier = m_model;
        bezier.xspline = false;
        bezier.keys = bakedBezierOfXSpline(m_model.keys, m_model.closed, view, X_SPLINE_TOLERANCE);
        return bezier;
    }

    TXI::Pos2 restingPoint(std::size_t index, int frame) const
    {
        KeyPlace const place = keyPlace(m_model.keys, frame);
        double const* const before = &m_model.keys[place.before].points[index * m_model.stride()];
        double const* const after = &m_model.keys[place.after].points[index * m_model.stride()];
        return {place.between(before[0], after[0]), place.between(before[1], after[1])};
    }

    Homography motion(Anm::Context const& context, ZN::TrackCache* cache) const
    {
        int const view = m_views.viewIndex(context.view());
        int const frame = context.frameValue();
        if (!cache)
        {
            return motionAt(view, frame);
        }
        ZN::TrackCache::Data& last = cache->data();
        if (last.layer != &m_layer || last.view != view || last.frame != frame)
        {
            last = {&m_layer, view, frame, motionAt(view, frame)};
        }
        return last.motion;
    }

    Homography motionAt(int view, int frame) const
    {
        return view < 0 ? Homography() : (*m_motions)[static_cast<std::size_t>(view)].at(frame);
    }

    KORV_Layer const& m_layer;
    ContourModel const& m_model;
    Anm::Views const& m_views;
    std::shared_ptr<Motions const> m_motions;
    std::vector<boost::shared_ptr<Korvane::ControlPoint const>> m_points;
};

}

void addShapes(KORV_Layer const& layer, KORV_Layer::Data& data, Anm::Views const& views)
{
    data.mesh = makeMesh(data, views);
    if (data.model->contours.empty())
    {
        return;
    }
    auto const motions = std::make_shared<Motions const>(motionsOfViews(data));
    for (ContourModel const& contour : data.model->contours)
    {
        if (contour.active)
        {
            data.contours.append(boost::make_shared<HostContour const>(layer, contour, views, motions));
        }
    }
}

}
