#pragma once
// Descriptions of clips.

#include "Host/Anm.h"
#include "Host/Fnd.h"
#include "Host/HostApi.h"

#include <QSize>
#include <QString>

#include <memory>

namespace ZN
{

/// Raster size and pixel shape of a clip.
class MARLO_HOST_API ImageFormat
{
public:
    ImageFormat(QSize const& size, double pixelAspect);

    QSize size() const;

    /// Width of a pixel divided by its height.
    double par() const;

private:
    QSize m_size;
    double m_par;
};

}

namespace ZN
{

/// What a picture was recorded on.
class MARLO_HOST_API FilmType
{
public:
    FilmType(double width, double height, bool custom);

    /// Millimetres.
    double filmBackWidth() const;
    double filmBackHeight() const;
    double getFilmBackAspectRatio() const;

    /// Whether a user gave the size.
    bool isCustom() const;

private:
    double m_width;
    double m_height;
    bool m_isCustom;
};

}

/// What never changes about a clip.
class MARLO_HOST_API ZN_BaseClipInfo
{
public:
    struct Data;

    /// Progressive, which field comes first, and for 3:2 pulldown the position in the
    /// pattern as well.
    enum Phase
    {
        Progressive = 0,
        UpperFieldFirst = 1,
        LowerFieldFirst = 2,
        /// Plus 0 to 4.
        PulldownUpperFieldFirst = 3,
        PulldownLowerFieldFirst = 8
    };

    explicit ZN_BaseClipInfo(std::unique_ptr<Data> data);
    virtual ~ZN_BaseClipInfo();
    ZN_BaseClipInfo(ZN_BaseClipInfo const&) = delete;
    ZN_BaseClipInfo& operator=(ZN_BaseClipInfo const&) = delete;

    unsigned int width() const;

    /// Lines of the raster that is tracked: of one field in interlaced material.
    unsigned int height() const;

    ZN::ImageFormat const& format() const;
    bool bIsInterlaced() const;
    bool bIs32Pulldown() const;

    /// Frames (not fields) per second.
    float frameRate() const;

    /// A value of Phase.
    int phase() const;

    /// What is added to a host frame to show it; in host frames.
    int baseClipOffset() const;

    /// Host frames.
    unsigned int length(Anm::View const& view) const;

    ZN::FilmType const& filmType() const;

protected:
    std::unique_ptr<Data> m_data;
};

/// A clip with the files that it comes from.
class MARLO_HOST_API ZN_ClipInfo : public ZN_BaseClipInfo
{
public:
    enum FootageKind
    {
        ImageSequence = 0,
        MediaFile = 1,
        Solid = 2
    };

    /// What the pictures are stored as; others have numbers that aren't here.
    enum FileFormat
    {
        OtherFormat = -1,
        PngFormat = 0,
        TiffFormat = 4,
        JpegFormat = 5,
        DpxFormat = 6,
        CineonFormat = 7,
        SgiFormat = 8,
        TargaFormat = 9
    };

    explicit ZN_ClipInfo(std::unique_ptr<Data> data);
    ~ZN_ClipInfo() override;

    int footageKind() const;

    /// A value of FileFormat.
    int fileFormat() const;

    // The file of a frame is directory / prefix, index filled up with zeros to
    // indexWidth, suffix. A media file has no index: width 0, and all of its name is
    // the prefix. A solid has no files.
    QString clipDirectory(Anm::View const& view, Anm::View::Mapping mapping) const;
    Fnd::FSPercentEscapedString clipPrefix(Anm::View const& view, Anm::View::Mapping mapping) const;
    Fnd::FSPercentEscapedString clipSuffix(Anm::View const& view, Anm::View::Mapping mapping) const;
    unsigned int indexWidth(Anm::View const& view, Anm::View::Mapping mapping) const;

    /// Index of the first and of the last file; 0 without an index.
    int minIndex(Anm::View const& view, Anm::View::Mapping mapping) const;
    int maxIndex(Anm::View const& view, Anm::View::Mapping mapping) const;

    /// Path of the first file; empty for a solid.
    QString firstFileName() const;
};
