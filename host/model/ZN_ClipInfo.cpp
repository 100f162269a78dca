#include "Project.h"

#include <QFileInfo>
#include <QHash>

using MarloHost::FootageModel;

namespace ZN
{

ImageFormat::ImageFormat(QSize const& size, double pixelAspect) : m_size(size), m_par(pixelAspect)
{
}

QSize ImageFormat::size() const
{
    return m_size;
}

double ImageFormat::par() const
{
    return m_par;
}

FilmType::FilmType(double width, double height, bool custom) : m_width(width), m_height(height), m_isCustom(custom)
{
}

double FilmType::filmBackWidth() const
{
    return m_width;
}

double FilmType::filmBackHeight() const
{
    return m_height;
}

double FilmType::getFilmBackAspectRatio() const
{
    return m_width / m_height;
}

bool FilmType::isCustom() const
{
    return m_isCustom;
}

}

ZN_BaseClipInfo::ZN_BaseClipInfo(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

ZN_BaseClipInfo::~ZN_BaseClipInfo() = default;

unsigned int ZN_BaseClipInfo::width() const
{
    return static_cast<unsigned int>(m_data->model->width);
}

unsigned int ZN_BaseClipInfo::height() const
{
    int const lines = m_data->model->height;
    return static_cast<unsigned int>(m_data->model->interlaced ? lines / 2 : lines);
}

ZN::ImageFormat const& ZN_BaseClipInfo::format() const
{
    return m_data->format;
}

bool ZN_BaseClipInfo::bIsInterlaced() const
{
    return m_data->model->interlaced;
}

float ZN_BaseClipInfo::frameRate() const
{
    return m_data->frameRate;
}

bool ZN_BaseClipInfo::bIs32Pulldown() const
{
    return m_data->model->pulldown.has_value();
}

int ZN_BaseClipInfo::phase() const
{
    MarloHost::ClipModel const& clip = *m_data->model;
    if (clip.pulldown)
    {
        return (clip.lowerFieldFirst ? PulldownLowerFieldFirst : PulldownUpperFieldFirst) + *clip.pulldown;
    }
    if (!clip.interlaced)
    {
        return Progressive;
    }
    return clip.lowerFieldFirst ? LowerFieldFirst : UpperFieldFirst;
}

int ZN_BaseClipInfo::baseClipOffset() const
{
    return m_data->model->frameOffset;
}

unsigned int ZN_BaseClipInfo::length(Anm::View const&) const
{
    return static_cast<unsigned int>(m_data->model->frameCount);
}

ZN::FilmType const& ZN_BaseClipInfo::filmType() const
{
    return m_data->film;
}

// The reference host's clips have the same files for every view.

ZN_ClipInfo::ZN_ClipInfo(std::unique_ptr<Data> data) : ZN_BaseClipInfo(std::move(data))
{
}

ZN_ClipInfo::~ZN_ClipInfo() = default;

int ZN_ClipInfo::footageKind() const
{
    return m_data->model->footage.kind;
}

// By the ending of the file names.
int ZN_ClipInfo::fileFormat() const
{
    static QHash<QString, FileFormat> const formats = {
        {QStringLiteral("png"), PngFormat},    {QStringLiteral("tif"), TiffFormat},
        {QStringLiteral("tiff"), TiffFormat},  {QStringLiteral("jpg"), JpegFormat},
        {QStringLiteral("jpeg"), JpegFormat},  {QStringLiteral("dpx"), DpxFormat},
        {QStringLiteral("cin"), CineonFormat}, {QStringLiteral("sgi"), SgiFormat},
        {QStringLiteral("tga"), TargaFormat},
    };
    return formats.value(QFileInfo(firstFileName()).suffix().toLower(), OtherFormat);
}

QString ZN_ClipInfo::clipDirectory(Anm::View const&, Anm::View::Mapping) const
{
    FootageModel const& footage = m_data->model->footage;
    return footage.kind == FootageModel::Movie ? QFileInfo(footage.file).path() : footage.directory;
}

Fnd::FSPercentEscapedString ZN_ClipInfo::clipPrefix(Anm::View const&, Anm::View::Mapping) const
{
    FootageModel const& footage = m_data->model->footage;
    bool const isMovie = footage.kind == FootageModel::Movie;
    return Fnd::FSPercentEscapedString::fromPlain(isMovie ? QFileInfo(footage.file).fileName() : footage.prefix);
}

Fnd::FSPercentEscapedString ZN_ClipInfo::clipSuffix(Anm::View const&, Anm::View::Mapping) const
{
    return Fnd::FSPercentEscapedString::fromPlain(m_data->model->footage.suffix);
}

unsigned int ZN_ClipInfo::indexWidth(Anm::View const&, Anm::View::Mapping) const
{
    return static_cast<unsigned int>(m_data->model->footage.indexWidth);
}

int ZN_ClipInfo::minIndex(Anm::View const&, Anm::View::Mapping) const
{
    return m_data->model->footage.firstIndex;
}

int ZN_ClipInfo::maxIndex(Anm::View const& view, Anm::View::Mapping mapping) const
{
    MarloHost::ClipModel const& clip = *m_data->model;
    if (clip.footage.kind != FootageModel::Sequence)
    {
        return 0;
    }
    int const files = clip.interlaced ? (clip.frameCount + 1) / 2 : clip.frameCount;
    return minIndex(view, mapping) + files - 1;
}

QString ZN_ClipInfo::firstFileName() const
{
    FootageModel const& footage = m_data->model->footage;
    if (footage.kind != FootageModel::Sequence)
    {
        return footage.file;
    }
    QString const index = QStringLiteral("%1").arg(footage.firstIndex, footage.indexWidth, 10, QLatin1Char('0'));
    Anm::View const view = Anm::View::defaultView();
    return footage.directory + QLatin1Char('/') + clipPrefix(view, Anm::View::Mapped).escaped() +
           (footage.indexWidth > 0 ? index : QString()) + clipSuffix(view, Anm::View::Mapped).escaped();
}
