#pragma once

#include "Nuke/NukeRotoExporterBase.h"

namespace Export
{

/// MarloBlend shape data: a header, then the roto node with its vertices scrambled.
///
/// What is written for a coordinate of a vertex of the outline is `scale * value + bias`,
/// with a scale that the header of the file fixes: the same project gives the same bytes,
/// and a reader needs nothing but the file. Handles, feather and slopes are written plain.
///
/// To read a file back: seedOf() of its header, then plainValue() of each coordinate.
class MARLO_EXPORT_API MarloBlendExporter : public NukeRotoExporterBase
{
public:
    explicit MarloBlendExporter(bool withMatrix);
    ~MarloBlendExporter() override;

    std::shared_ptr<QMap<QString, QByteArray>> exportShape(KORV_ProjectManager& project, QString const& path,
                                                           QList<unsigned int> const& layerIds,
                                                           Options const& options) const override;
    QString getFormatName() const override;
    QString getFormatVersion() const override;
    QString getFormatRootNode() const override;
    double obfuscate(double value) const override;

    /// The seed of a file: the 64-bit FNV-1a hash (Fowler, Noll, Vo) of its header.
    /// @param header all lines in front of "MarloBlendShape {", with their line ends
    static std::uint64_t seedOf(QByteArray const& header);

    /// The inverse of what obfuscate() does in a file of that seed.
    static double plainValue(double written, std::uint64_t seed);

private:
    MarloBlendExporter(bool withMatrix, std::uint64_t seed);
};

}
