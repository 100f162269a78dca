// Contours as the host's own XML; docs/formats/glimmerset-shape.md describes it.
//
//   <glimmersetShapes version="1" product="..." productVersion="...">
//     <project width="1920" height="1080" pixelAspect="1" frameRate="24" frameOffset="1001" .../>
//     <layer name="Poster" ... blend="add" in="2" out="5">
//       <contour name="edge" type="bezier" closed="true">
//         <key frame="2"><points>600 300 -10 0 10 0 ...</points><feather>...</feather></key>
//       </contour>
//       <motion view="main"><homography frame="2">1 0 0 0 1 0 0 0 1</homography> ...</motion>

#include "Host/ExporterHelper.h"
#include "Host/ShapeExporter.h"
#include "Host/ZN_ClipInfo.h"
#include "model/Project.h"
#include "plane/SurfaceMotion.h"
#include "text/NumberText.h"

#include <QXmlStreamWriter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Korvane
{

namespace
{

using MarloHost::ContourKeyModel;
using MarloHost::ContourModel;

template <typename Numbers>
bool isFinite(Numbers const& numbers)
{
    return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

// XML has no way to say most of the control characters.
QString sayable(QString text)
{
    for (QChar& c : text)
    {
        bool const isControl =
            c < QLatin1Char(' ') && c != QLatin1Char('\t') && c != QLatin1Char('\n') && c != QLatin1Char('\r');
        if (isControl || c.unicode() == 0xFFFE || c.unicode() == 0xFFFF)
        {
            c = QChar::ReplacementCharacter;
        }
    }
    return text;
}

QString hexColour(QColor const& colour)
{
    // Qt puts alpha first.
    return colour.name(QColor::HexRgb) + colour.name(QColor::HexArgb).mid(1, 2);
}

/// Writes one document in the order of its elements.
class FxsDocument
{
public:
    explicit FxsDocument(QByteArray& target) : m_xml(&target)
    {
        m_xml.setAutoFormatting(true);
        m_xml.setAutoFormattingIndent(1);
    }

    void start(KORV_ProjectManager& project, ShapeExporter::Options const& options)
    {
        MarloHost::ClipModel const& clip = project.data().model.clips.front();
        m_xml.writeStartDocument();
        m_xml.writeStartElement(QStringLiteral("glimmersetShapes"));
        attribute("version", 1);
        attribute("product", options.productName);
        attribute("productVersion", options.productVersion);
        m_xml.writeEmptyElement(QStringLiteral("project"));
        attribute("width", clip.width);
        attribute("height", clip.height);
        attribute("pixelAspect", clip.pixelAspect);
        attribute("frameRate", project.frameRate());
        time(clip);
    }

    void layer(KORV_ProjectManager const& project, KORV_Layer const& layer, std::vector<Anm::View> const& views)
    {
        KORV_Layer::Data const& data = layer.data();
        Anm::View const view = Anm::View::defaultView();
        m_xml.writeStartElement(QStringLiteral("layer"));
        attribute("name", layer.name());
        attribute("clip", data.clipModel->name);
        attribute("width", static_cast<double>(data.clip->info().width()));
        attribute("height", static_cast<double>(data.clip->info().height()));
        attribute("pixelAspect", data.clipModel->pixelAspect);
        time(*data.clipModel);
        attribute("colour", hexColour(layer.fillColour()));
        attribute("overlayColour", hexColour(layer.overlayColour()));
        attribute("invert", layer.invert().staticValue(view) ? "true" : "false");
        attribute("blend", layer.blendMode().value(view) == ZN_BLEND_SUBTRACT ? "subtract" : "add");
        attribute("in", data.inPoint);
        attribute("out", data.outPoint);
        attribute("referenceFrame", data.model->referenceFrame);
        for (ContourModel const& contour : data.model->contours)
        {
            if (contour.active)
            {
                writeContour(contour);
            }
        }
        for (Anm::View const& wanted : views)
        {
            writeMotion(project, layer, wanted);
        }
        m_xml.writeEndElement();
    }

    /// @return what couldn't be written, a line each
    QStringList end()
    {
        m_xml.writeEndDocument();
        return m_failures;
    }

private:
    void time(MarloHost::ClipModel const& clip)
    {
        attribute("frameOffset", clip.frameOffset);
        attribute("fieldsPerFrame", clip.interlaced ? 2 : 1);
    }

    void attribute(char const* name, QString const& value)
    {
        m_xml.writeAttribute(QLatin1String(name), sayable(value));
    }

    void attribute(char const* name, char const* value)
    {
        m_xml.writeAttribute(QLatin1String(name), QLatin1String(value));
    }

    void attribute(char const* name, double value)
    {
        m_number.resize(0);
        Text::appendShortest(m_number, value);
        m_xml.writeAttribute(QLatin1String(name), QString::fromLatin1(m_number));
    }

    template <typename Numbers>
    void numbers(char const* element, Numbers const& values)
    {
        m_number.resize(0);
        for (double const value : values)
        {
            if (!m_number.isEmpty())
            {
                m_number += ' ';
            }
            Text::appendShortest(m_number, value);
        }
        if (element)
        {
            m_xml.writeTextElement(QLatin1String(element), QString::fromLatin1(m_number));
        }
        else
        {
            m_xml.writeCharacters(QString::fromLatin1(m_number));
        }
    }

    void writeContour(ContourModel const& contour)
    {
        m_xml.writeStartElement(QStringLiteral("contour"));
        attribute("name", contour.name);
        attribute("type", contour.xspline ? "xspline" : "bezier");
        attribute("closed", contour.closed ? "true" : "false");
        for (ContourKeyModel const& key : contour.keys)
        {
            if (!isFinite(key.points) || !isFinite(key.feather))
            {
                m_failures.append(QStringLiteral("Contour \"%1\" isn't finite at frame %2")
                                      .arg(contour.name, QString::number(key.frame)));
                continue;
            }
            m_xml.writeStartElement(QStringLiteral("key"));
            attribute("frame", key.frame);
            numbers("points", key.points);
            if (!key.feather.empty())
            {
                numbers("feather", key.feather);
            }
            m_xml.writeEndElement();
        }
        m_xml.writeEndElement();
    }

    void writeMotion(KORV_ProjectManager const& project, KORV_Layer const& layer, Anm::View const& view)
    {
        MarloHost::SurfaceMotion const motion = MarloHost::motionOfContours(project, layer, view);
        m_xml.writeStartElement(QStringLiteral("motion"));
        attribute("view", project.views()->name(view));
        for (int frame = layer.data().inPoint; frame <= layer.data().outPoint; ++frame)
        {
            std::array<double, 9> entries = motion.at(frame).m;
            double const last = entries[8] == 0 ? 1 : entries[8];
            // Adding 0 makes 0 of -0.
            std::transform(entries.begin(), entries.end(), entries.begin(),
                           [&](double entry) { return entry / last + 0.0; });
            if (!isFinite(entries))
            {
                m_failures.append(QStringLiteral("Layer \"%1\": the motion isn't finite at frame %2")
                                      .arg(layer.name(), QString::number(frame)));
                continue;
            }
            m_xml.writeStartElement(QStringLiteral("homography"));
            attribute("frame", frame);
            numbers(nullptr, entries);
            m_xml.writeEndElement();
        }
        m_xml.writeEndElement();
    }

    QXmlStreamWriter m_xml;
    QByteArray m_number;
    QStringList m_failures;
};

bool isWithin(KORV_ProjectManager const& project, KORV_Layer const& layer)
{
    constexpr int LAST = std::numeric_limits<int>::max();
    return ExporterHelperBase::layerIsWithinProject(project, layer.numericID(), Anm::Time::fromInt(-LAST),
                                                    Anm::Time::fromInt(LAST), false);
}

}

GlimmersetShapeExporter::~GlimmersetShapeExporter() = default;

std::shared_ptr<QMap<QString, QByteArray>> GlimmersetShapeExporter::exportShape(KORV_ProjectManager& project,
                                                                                QString const& path,
                                                                                QList<unsigned int> const& layerIds,
                                                                                Options const& options) const
{
    std::vector<Anm::View> views = options.views;
    if (views.empty())
    {
        views.push_back(Anm::View::defaultView());
    }
    QByteArray text;
    FxsDocument document(text);
    document.start(project, options);
    for (boost::shared_ptr<KORV_Layer const> const& layer :
         ShapeExportHelper::getLayersToExport(project, options.layerExportMode, layerIds))
    {
        if (isWithin(project, *layer))
        {
            document.layer(project, *layer, views);
        }
    }
    QStringList const failures = document.end();

    auto result = std::make_shared<QMap<QString, QByteArray>>();
    result->insert(path, text);
    if (!failures.isEmpty())
    {
        result->insert(ERROR_FILENAME, failures.join(QStringLiteral("; ")).toUtf8());
    }
    return result;
}

}
