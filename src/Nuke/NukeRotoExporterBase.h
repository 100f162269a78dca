#pragma once

#include "Core/ExportApi.h"
#include "Host/ExportedShape.h"
#include "Host/KORV_Layer.h"
#include "Host/ShapeExporter.h"
#include "Nuke/Obfuscate.h"
#include "Writing/TextBuffer.h"

#include <QByteArray>
#include <QColor>
#include <QString>

#include <vector>

class KORV_Clip;

namespace Korvane
{
class TrackingExporterHelper;
}

namespace Export
{

/// Roto shapes as one Nuke node in its text form, a tree of curves: a root, a node for
/// each layer and view, a node for each contour. Derived classes give the class of the
/// node.
///
/// A document runs to hundreds of megabytes, so everything is appended to one buffer. What
/// one file can't hold is refused, as a rule before any outline is computed.
class MARLO_EXPORT_API NukeRotoExporterBase : public Korvane::ShapeExporter, public Obfuscate
{
public:
    /// @param withMatrix whether motion stays in a matrix ("Transform & Shape") instead of
    ///        being baked into the keys of the points ("Basic")
    explicit NukeRotoExporterBase(bool withMatrix);
    ~NukeRotoExporterBase() override;

    /// One text, under `path`. Keys whose numbers aren't finite are left out, and an error
    /// text says how many.
    ///
    /// @throws KORV_OperationFailed for a curve that isn't a Bezier curve, for a contour
    ///         without any finite key, and for a text of more than two gigabytes
    std::shared_ptr<QMap<QString, QByteArray>> exportShape(KORV_ProjectManager& project, QString const& path,
                                                           QList<unsigned int> const& layerIds,
                                                           Options const& options) const override;

    /// The class of the node.
    virtual QString getFormatName() const = 0;

    /// The lines that say the version and the root; may be empty.
    virtual QString getFormatVersion() const;
    virtual QString getFormatRootNode() const;

    /// Appends the node of a contour.
    ///
    /// @param clip not read
    /// @param maskCurves,blurCurves keys of the outline and of its feather, in time order;
    ///        alike in number of keys and spans
    /// @param homographies motion of the contour; empty for none
    /// @param helper gives the range in which the shape is visible
    /// @return how many keys and homographies were left out because they aren't finite
    virtual unsigned int shapeToStr(TextBuffer& out, KORV_ProjectManager const& project, QString const& name,
                                    KORV_Clip const* clip, Anm::View const& view,
                                    Korvane::ExportedShape::Curves const& maskCurves,
                                    Korvane::ExportedShape::Curves const& blurCurves,
                                    std::vector<KORV_ExportHomography> const& homographies,
                                    Korvane::TrackingExporterHelper const& helper, ZN_BlendMode blend, bool inverted,
                                    QColor const& fill, QColor const& overlay) const;

    /// Appends the node of a layer in one view, with its contours.
    ///
    /// @param clip the layer's base clip, handed on to shapeToStr
    /// @param viewMode handed on to Korvane::ExportedShape
    /// @return as shapeToStr
    virtual unsigned int layerToStr(TextBuffer& out, KORV_ProjectManager const& project, KORV_Clip const* clip,
                                    KORV_Layer const& layer, Anm::View const& view, QString const& name,
                                    unsigned int framesToExport, bool viewMode) const;

    // How numbers are written. A value has at most `maxDigits` significant digits and at
    // most `maxDecimals` decimals; what is that close to a whole number has none. Values
    // next to a multiple of the last decimal are snapped to it.

    /// How many decimals a value gets.
    static int digitLimit(double value, unsigned int maxDigits, unsigned int maxDecimals);

    /// Rounded to `digits` decimals, a tie upwards.
    static double roundToDigit(double value, int digits);

    /// Value, then tail.
    static void appendFormattedS(TextBuffer& out, double value, char const* tail);

    /// A key of a shape curve. Slopes are units per frame.
    static void appendFormattedF(TextBuffer& out, Anm::Time const& time, double value, double leftSlope,
                                 double rightSlope);

    /// Time and value of a key of a matrix curve, then tail.
    static void appendTransformBlock(TextBuffer& out, Anm::Time const& time, double value, char const* tail);

    /// The line of a node's matrix; nothing for an empty vector. A single homography is
    /// written as the identity: its motion is in the points.
    static void getTransformBlock(TextBuffer& out, std::vector<KORV_ExportHomography> const& homographies);

protected:
    /// @param fileSeed,classBias key of Obfuscate
    NukeRotoExporterBase(bool withMatrix, std::uint64_t fileSeed, double classBias);

    /// Appends the whole node.
    /// @return as shapeToStr
    unsigned int appendDocument(TextBuffer& out, KORV_ProjectManager& project, QList<unsigned int> const& layerIds,
                                Options const& options) const;

    /// How the user gets a smaller file.
    static QString sizeAdvice();

    /// The result of exportShape.
    /// @param leftOut as shapeToStr returns it
    static std::shared_ptr<QMap<QString, QByteArray>> result(QString const& path, QByteArray const& text,
                                                             unsigned int leftOut);

    bool const m_withMatrix;

private:
    struct LayerNode;

    std::vector<LayerNode> plannedNodes(KORV_ProjectManager const& project,
                                        QVector<boost::shared_ptr<KORV_Layer const>> const& layers,
                                        Options const& options) const;
    qint64 leastSize(KORV_ProjectManager const& project, LayerNode const& node, Options const& options) const;
};

}
