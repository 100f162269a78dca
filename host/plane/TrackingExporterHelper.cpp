#include "Host/ExporterHelper.h"
#include "Host/KORV_Layer.h"
#include "LayerMotion.h"
#include "model/Project.h"

#include <algorithm>
#include <cmath>

namespace Korvane
{

namespace
{

using MarloHost::ClipModel;
using MarloHost::FrameRow;
using MarloHost::LayerMotion;
using MarloHost::PointRow;
using MarloHost::TrackModel;

constexpr double PI = 3.141592653589793;

TrackModel const* trackOf(KORV_Layer const& layer, KORV_ProjectManager const& project, Anm::View const& view)
{
    int const index = project.views()->viewIndex(view);
    TrackModel const* const track = index < 0 ? nullptr : layer.data().tracks[static_cast<std::size_t>(index)];
    return track && !track->frames.empty() ? track : nullptr;
}

/// The rows of all tracked frames that can be used, by ascending frame, and the
/// frames in which the lens shows nothing at a point.
struct UsableRows
{
    std::vector<int> frames;
    std::vector<PointRow> rows;
    std::vector<int> outsideLens;
};

UsableRows usableRows(LayerMotion const& motion, TrackModel const& track)
{
    UsableRows usable;
    usable.frames.reserve(track.frames.size());
    usable.rows.reserve(track.frames.size());
    for (std::size_t index = 0; index < track.frames.size(); ++index)
    {
        int const frame = track.frames[index];
        FrameRow const row = motion.row(index);
        if (row.points)
        {
            usable.frames.push_back(frame);
            usable.rows.push_back(*row.points);
        }
        else if (row.leavesLens)
        {
            usable.outsideLens.push_back(frame);
        }
    }
    return usable;
}

/// Pixels made square: x times pixel aspect, y times field lines per line.
struct SquarePixels
{
    double x;
    double y;

    TXI::Pos2 from(TXI::Pos2 const& p) const
    {
        return {p.x * x, p.y * y};
    }

    TXI::Pos2 to(TXI::Pos2 const& p) const
    {
        return {p.x / x, p.y / y};
    }
};

struct Similarity
{
    double scale;
    double rotation;
};

// Least squares over the corners about the centre: with the vectors from the
// centre as complex numbers s (reference) and d (now), the best factor is
// sum(conj(s) d) / sum(|s|^2).
Similarity fitSimilarity(TXI::Pos2 const* reference, TXI::Pos2 const* now, SquarePixels const& square)
{
    TXI::Pos2 const c0 = square.from(reference[4]);
    TXI::Pos2 const c1 = square.from(now[4]);
    double along = 0;
    double across = 0;
    double norm = 0;
    for (int corner = 0; corner < 4; ++corner)
    {
        TXI::Pos2 const p = square.from(reference[corner]);
        TXI::Pos2 const q = square.from(now[corner]);
        double const sx = p.x - c0.x;
        double const sy = p.y - c0.y;
        double const dx = q.x - c1.x;
        double const dy = q.y - c1.y;
        along += sx * dx + sy * dy;
        across += sx * dy - sy * dx;
        norm += sx * sx + sy * sy;
    }
    return {std::hypot(along, across) / norm, std::atan2(across, along)};
}

// The angle plus whole turns that is nearest to the angle before it.
double unwrapped(double angle, double before)
{
    return angle - 2 * PI * std::round((angle - before) / (2 * PI));
}

QString shownFrame(ExporterHelperBase const& helper, int frame)
{
    return QString::number((frame + helper.baseClipOffset()) * static_cast<double>(helper.frameScale()));
}

// Walks away from the reference, where the rotation is zero, in both directions.
// A rotation that isn't finite is left out of the walk.
void unwrapRotations(std::vector<TransformSample>& samples, std::size_t start)
{
    auto const walk = [&](std::size_t from, std::size_t end, int step)
    {
        double before = 0;
        for (std::size_t i = from; i != end; i += static_cast<std::size_t>(step))
        {
            if (std::isfinite(samples[i].rotation))
            {
                samples[i].rotation = unwrapped(samples[i].rotation, before);
                before = samples[i].rotation;
            }
        }
    };
    walk(start, samples.size(), 1);
    walk(start, static_cast<std::size_t>(-1), -1);
}

}

struct TrackingExporterHelper::Data
{
    UsableRows usable;
    std::size_t count = 0;
    boost::shared_array<TXI::Pos2[5]> points;
    std::map<int, TransformSample> samples;
    QStringList failures;

    void fillRow(int frame, TXI::Pos2 (&row)[5], TrackModel const& track, ExporterHelperBase const& helper);
};

TrackingExporterHelper::TrackingExporterHelper() : ExporterHelperBase(true), m_data(std::make_unique<Data>())
{
}

TrackingExporterHelper::TrackingExporterHelper(TrackingExporterHelper const& other)
    : ExporterHelperBase(other), m_data(std::make_unique<Data>(*other.m_data))
{
    if (m_data->points)
    {
        m_data->points.reset(new TXI::Pos2[m_data->count][5]);
        std::copy_n(&other.m_data->points[0][0], m_data->count * 5, &m_data->points[0][0]);
    }
}

TrackingExporterHelper::TrackingExporterHelper(TrackingExporterHelper&& other) noexcept = default;

TrackingExporterHelper& TrackingExporterHelper::operator=(TrackingExporterHelper const& other)
{
    return *this = TrackingExporterHelper(other);
}

TrackingExporterHelper& TrackingExporterHelper::operator=(TrackingExporterHelper&& other) noexcept = default;

TrackingExporterHelper::~TrackingExporterHelper() = default;

void TrackingExporterHelper::initialiseWithPMAndRange(KORV_ProjectManager const& project, unsigned int layerId,
                                                      Anm::View const& view, int framesToExport, Anm::Time first,
                                                      Anm::Time last, bool reserved)
{
    ExporterHelperBase::initialiseWithPMAndRange(project, layerId, view, framesToExport, first, last, reserved);
    *m_data = Data();
    KORV_Layer const* const layer = project.sm()->layerFromNumericID(layerId, false);
    if (layer && !trackOf(*layer, project, view))
    {
        m_data->failures.append(QStringLiteral("Layer \"%1\" has no tracking data").arg(layer->name()));
    }
}

bool TrackingExporterHelper::updateSurfacePoints(KORV_ProjectManager const& project, unsigned int layerId,
                                                 Anm::Context::Explicit const& referenceFrame,
                                                 TrackingExporter::Options const& options, ZN::ProgressRange* progress)
{
    KORV_Layer const* const layer = project.sm()->layerFromNumericID(layerId, false);
    TrackModel const* const track = layer ? trackOf(*layer, project, view()) : nullptr;
    int const frames = track ? numFrames() : 0;
    if (frames <= 0)
    {
        clearRange();
        return false;
    }
    ZN_BaseClipInfo const& clip = layer->data().clip->info();
    ClipModel const& model = *layer->data().clipModel;
    LayerMotion const motion(*layer->data().model, *track,
                             {options.trackingOption, options.invert, referenceFrame.frameValue(),
                              static_cast<double>(clip.width()), static_cast<double>(clip.height()),
                              options.undistort && model.lens ? &model : nullptr});
    m_data->usable = usableRows(motion, *track);
    m_data->count = static_cast<std::size_t>(frames);
    m_data->points.reset(new TXI::Pos2[m_data->count][5]);
    m_data->samples.clear();

    int const first = static_cast<int>(firstFrame().value());
    for (int i = 0; i < frames; ++i)
    {
        m_data->fillRow(first + i, m_data->points[i], *track, *this);
        if (progress && i % 256 == 0)
        {
            progress->setProgress(static_cast<double>(i) / frames);
        }
    }
    return true;
}

void TrackingExporterHelper::Data::fillRow(int frame, TXI::Pos2 (&row)[5], TrackModel const& track,
                                           ExporterHelperBase const& helper)
{
    auto const holds = [frame](std::vector<int> const& frames)
    { return std::binary_search(frames.begin(), frames.end(), frame); };
    QString const cause = !holds(track.frames)        ? QStringLiteral("no tracking data")
                          : holds(usable.outsideLens) ? QStringLiteral("the surface leaves what the lens shows")
                                                      : QStringLiteral("the surface goes past infinity");
    if (usable.frames.empty())
    {
        std::fill_n(row, 5, TXI::Pos2{NAN, NAN});
        failures.append(QStringLiteral("Frame %1: %2").arg(shownFrame(helper, frame), cause));
        return;
    }
    std::size_t const nearest = MarloHost::nearestFrameIndex(usable.frames, frame);
    std::copy_n(usable.rows[nearest].begin(), 5, row);
    if (usable.frames[nearest] != frame)
    {
        failures.append(QStringLiteral("Frame %1: %2, frame %3 stands in for it")
                            .arg(shownFrame(helper, frame), cause, shownFrame(helper, usable.frames[nearest])));
    }
}

boost::shared_array<TXI::Pos2[5]> TrackingExporterHelper::surfacePoints() const
{
    return m_data->points;
}

void TrackingExporterHelper::buildTransformDataFromSurfaceMotion(bool fullFrameLines, bool yDown,
                                                                 unsigned int referenceFrame)
{
    m_data->samples.clear();
    ZN_BaseClipInfo const* const clip = baseClipInfo();
    if (!m_data->points || !clip || m_data->usable.frames.empty())
    {
        return;
    }
    int const first = static_cast<int>(firstFrame().value());
    int const reference = static_cast<int>(referenceFrame);
    SquarePixels const square{clip->format().par(), static_cast<double>(heightScale())};
    std::size_t const nearest = MarloHost::nearestFrameIndex(m_data->usable.frames, reference);
    PointRow const& referenceRow = m_data->usable.rows[nearest];

    std::vector<TransformSample> samples(m_data->count);
    for (std::size_t i = 0; i < m_data->count; ++i)
    {
        TXI::Pos2 const* const row = m_data->points[static_cast<std::ptrdiff_t>(i)];
        Similarity const fit = fitSimilarity(referenceRow.data(), row, square);
        double const y = yDown ? clip->height() - row[4].y : row[4].y;
        samples[i] = {static_cast<float>(first + static_cast<int>(i)), row[4].x,
                      fullFrameLines ? y * static_cast<double>(heightScale()) : y, fit.scale, fit.rotation};
    }
    int const last = first + static_cast<int>(m_data->count) - 1;
    unwrapRotations(samples, static_cast<std::size_t>(std::min(std::max(reference, first), last) - first));
    for (std::size_t i = 0; i < samples.size(); ++i)
    {
        m_data->samples.emplace_hint(m_data->samples.end(), first + static_cast<int>(i), samples[i]);
    }
}

std::map<int, TransformSample> const& TrackingExporterHelper::transformSamples() const
{
    return m_data->samples;
}

void TrackingExporterHelper::makeCornerPinDataRelative()
{
    ZN_BaseClipInfo const* const clip = baseClipInfo();
    if (!clip)
    {
        return;
    }
    SquarePixels const square{clip->format().par(), static_cast<double>(heightScale())};
    TXI::Pos2 const middle = square.from({clip->width() / 2.0, clip->height() / 2.0});
    std::ptrdiff_t i = 0;
    for (auto const& entry : m_data->samples)
    {
        TransformSample const& sample = entry.second;
        TXI::Pos2* const row = m_data->points[i];
        // The anchor is the centre that the sample was taken from, whichever way its
        // y is measured.
        TXI::Pos2 const anchor = square.from(row[4]);
        double const cosine = std::cos(-sample.rotation) / sample.scale;
        double const sine = std::sin(-sample.rotation) / sample.scale;
        for (int corner = 0; corner < 5; ++corner)
        {
            TXI::Pos2 const p = square.from(row[corner]);
            double const dx = p.x - anchor.x;
            double const dy = p.y - anchor.y;
            row[corner] = square.to({middle.x + cosine * dx - sine * dy, middle.y + sine * dx + cosine * dy});
        }
        ++i;
    }
}

QStringList TrackingExporterHelper::failureMessages() const
{
    return m_data->failures;
}

}
