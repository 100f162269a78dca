#pragma once
// Format descriptors: what a target format is called, where it is offered and how
// it may be saved. The factories (ExporterFactories.h) map them to exporters.

#include "Core/ExportApi.h"

#include <QCoreApplication>
#include <QFlags>
#include <QMap>
#include <QSet>
#include <QString>

class KORV_ProjectManager;
class TXIHost;

namespace Export
{

/// How the result of an export may leave the program.
enum SaveOption
{
    SaveToClipboard = 1,
    SaveToFile = 2
};
Q_DECLARE_FLAGS(SaveOptions, SaveOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(SaveOptions)

enum FormatFlag
{
    /// The format can hold several views.
    HoldsSeveralViews = 1,

    /// The data belong to layers, so a suggested file name follows the layers.
    BelongsToLayers = 2,

    // Camera solve formats carry two more for the export dialog of the host.
    DialogFlag4 = 4,
    DialogFlag8 = 8
};
Q_DECLARE_FLAGS(FormatFlags, FormatFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(FormatFlags)

/// What all kinds of formats have in common.
class MARLO_EXPORT_API DataFormatBase
{
    Q_DECLARE_TR_FUNCTIONS(Export::DataFormatBase)

public:
    DataFormatBase(DataFormatBase const&) = default;
    DataFormatBase& operator=(DataFormatBase const&) = default;
    virtual ~DataFormatBase();

    /// Position in the order in which the formats of one kind were first used.
    /// Differs from run to run, so nothing may store it.
    int id() const
    {
        return m_id;
    }

    /// The name that users see. Formats are ordered by it.
    QString const& displayName() const
    {
        return m_displayName;
    }

    /// The stable key that preset files hold.
    QString const& internalName() const
    {
        return m_internalName;
    }

    /// The categories of which a product must offer one for this format to be offered.
    QSet<QString> const& options() const
    {
        return m_options;
    }

    /// File extension with its point, or empty.
    QString const& extension() const
    {
        return m_extension;
    }

    /// Sentences for the user; may be empty.
    QString const& description() const
    {
        return m_description;
    }

    /// How many files one export writes.
    unsigned int numFiles() const
    {
        return m_numFiles;
    }

    QFlags<FormatFlag> flags() const
    {
        return m_flags;
    }

    /// Kept for old pipelines; dialogs mark it.
    bool isLegacy() const
    {
        return m_isLegacy;
    }

    bool supportsSaveToClipboard() const
    {
        return m_saveOptions.testFlag(SaveToClipboard);
    }

    bool supportsSaveToFile() const
    {
        return m_saveOptions.testFlag(SaveToFile);
    }

    /// `fileName` without as many characters as the extension has. Doesn't look
    /// whether the name ends in the extension.
    QString baseName(QString const& fileName) const
    {
        return fileName.left(qMax(0, fileName.length() - extension().length()));
    }

protected:
    DataFormatBase(int id, QString const& displayName, QString const& internalName, QString const& extension,
                   QString const& description, QSet<QString> const& options, unsigned int numFiles,
                   bool holdsSeveralViews, bool belongsToLayers, bool isLegacy, SaveOptions saveOptions);
    DataFormatBase(int id, QString const& displayName, QString const& internalName, QString const& extension,
                   QString const& description, QSet<QString> const& options, QFlags<FormatFlag> flags,
                   unsigned int numFiles, bool isLegacy, SaveOptions saveOptions);

private:
    int m_id;
    QString m_displayName;
    QString m_internalName;
    QSet<QString> m_options;
    QString m_extension;
    QString m_description;
    unsigned int m_numFiles;
    QFlags<FormatFlag> m_flags;
    bool m_isLegacy;
    SaveOptions m_saveOptions;
};

/// Order of formats in lists and maps: by display name alone, as plain QStrings
/// compare. Formats of one display name are one format to a map.
inline bool operator<(DataFormatBase const& left, DataFormatBase const& right)
{
    return left.displayName() < right.displayName();
}

/// A format of tracking data. The accessors give the built-in formats, in the
/// order of their registration; texts are translated when one is first used.
class MARLO_EXPORT_API TrackingDataFormat : public DataFormatBase
{
    Q_DECLARE_TR_FUNCTIONS(Export::TrackingDataFormat)

public:
    /// Bits without a meaning here are for the export dialog of the host.
    enum ExportCapability
    {
        SeveralViews = 1,
        DialogCapability2 = 2,
        DialogCapability4 = 4,
        DialogCapability8 = 8,
        DialogCapability16 = 16,

        /// Handed on to the exporter's wrapper.
        WrapperCapability = 32
    };
    Q_DECLARE_FLAGS(ExportCapabilities, ExportCapability)

    /// An empty format that may be saved in both ways. It takes an id as well.
    TrackingDataFormat();
    TrackingDataFormat(QString const& displayName, QString const& internalName, QString const& extension,
                       QString const& description, QSet<QString> const& options, QFlags<ExportCapability> capabilities,
                       bool isLegacy, unsigned int numFiles, SaveOptions saveOptions);
    TrackingDataFormat(TrackingDataFormat const&) = default;
    TrackingDataFormat& operator=(TrackingDataFormat const&) = default;
    ~TrackingDataFormat() override;

    QFlags<ExportCapability> capabilities() const
    {
        return m_capabilities;
    }

    static TrackingDataFormat const& AE_CORNER_PIN_LEGACY();
    static TrackingDataFormat const& AE_TRANSFORM();
    static TrackingDataFormat const& ALEMBIC_MESH();
    static TrackingDataFormat const& ALEMBIC_VERTEX_TRANSFORM();
    static TrackingDataFormat const& FINALCUT_BASICMOTION();
    static TrackingDataFormat const& FINALCUT_DISTORT();
    static TrackingDataFormat const& IFFFSE_POINTS();
    static TrackingDataFormat const& IFFFSE_POINTS_FLAME_2014();
    static TrackingDataFormat const& AUTODESK_FLAME_AXIS();
    static TrackingDataFormat const& SHAKE_SCRIPT();
    static TrackingDataFormat const& AVID_DS();
    static TrackingDataFormat const& NUKE_ASCII();
    static TrackingDataFormat const& NUKE_CORNER_PIN();
    static TrackingDataFormat const& NUKE_TRACKER();
    static TrackingDataFormat const& NUKE_MESH_TRACKER();
    static TrackingDataFormat const& XML_MATRICES();
    static TrackingDataFormat const& XML_CORNERPIN();
    static TrackingDataFormat const& HITFILM_TRANSFORM_DATA();
    static TrackingDataFormat const& HITFILM_CORNER_PIN_DATA();
    static TrackingDataFormat const& FUSION_COMP();
    static TrackingDataFormat const& AE_CORNER_PIN();
    static TrackingDataFormat const& AE_POWER_PIN();
    static TrackingDataFormat const& DORIN_CORNER_PIN();
    static TrackingDataFormat const& DORIN_CENTER_POINT();
    static TrackingDataFormat const& AE_CORNER_PIN_SIMPLE();
    static TrackingDataFormat const& MOTION_CORNER_PIN();
    static TrackingDataFormat const& MARLO_BLEND();
    static TrackingDataFormat const& MOTION_TRANSFORM();
    static TrackingDataFormat const& IFFFSE_STABILIZER();
    static TrackingDataFormat const& IFFFSE_STABILIZER_FLAME_2014();
    static TrackingDataFormat const& SCRATCH_CORNER_PIN();
    static TrackingDataFormat const& FLOWBOX_CORNER_PIN();
    static TrackingDataFormat const& GLIMMERSET_CORNER_PIN();
    static TrackingDataFormat const& KESTRELIA_TRACKERS();

    /// The offered formats by internal name.
    /// @param host null outside of a plug-in
    static QMap<QString, TrackingDataFormat> MAP_ALL(TXIHost const* host);

    /// The format of that internal name, as offered to the project's plug-in host.
    /// @throws KORV_BadArgument for any other name
    static TrackingDataFormat byName(KORV_ProjectManager const& project, QString const& internalName);

private:
    static int s_enumCount;

    QFlags<ExportCapability> m_capabilities;
};
Q_DECLARE_OPERATORS_FOR_FLAGS(TrackingDataFormat::ExportCapabilities)

/// A format of shape data; one export writes one file. The texts aren't translated.
class MARLO_EXPORT_API ShapeDataFormat : public DataFormatBase
{
    Q_DECLARE_TR_FUNCTIONS(Export::ShapeDataFormat)

public:
    /// Bits without a meaning here are for the export dialog of the host.
    enum ExportCapability
    {
        DialogCapability1 = 1,
        SeveralViews = 2,
        DialogCapability4 = 4,
        DialogCapability8 = 8
    };
    Q_DECLARE_FLAGS(ExportCapabilities, ExportCapability)

    /// @param category may be empty
    ShapeDataFormat(QString const& displayName, QString const& internalName, QString const& extension,
                    QString const& category, QString const& description, QFlags<ExportCapability> capabilities,
                    bool isLegacy, SaveOptions saveOptions);
    ShapeDataFormat(ShapeDataFormat const&) = default;
    ShapeDataFormat& operator=(ShapeDataFormat const&) = default;
    ~ShapeDataFormat() override;

    QFlags<ExportCapability> capabilities() const
    {
        return m_capabilities;
    }

    static ShapeDataFormat const& AE_MARLO_SHAPE();
    static ShapeDataFormat const& SHAKE_SSF_SCRIPT();
    static ShapeDataFormat const& FLAME_GMASK_SCRIPT();
    static ShapeDataFormat const& FLAME_TRACER_BASIC();
    static ShapeDataFormat const& FLAME_TRACER_SHAPE_AND_AXIS();
    static ShapeDataFormat const& COMBUSTION_GMASK_SCRIPT();
    static ShapeDataFormat const& FC_MARLO_SHAPE();
    static ShapeDataFormat const& FUSION_SHAPE();
    static ShapeDataFormat const& FUSION_MULTIPOLY_SHAPE();
    static ShapeDataFormat const& NUKE_ROTO_PAINT_WITH_MATRIX();
    static ShapeDataFormat const& NUKE_ROTO_PAINT_NO_MATRIX();
    static ShapeDataFormat const& NUKE_ROTO_WITH_MATRIX();
    static ShapeDataFormat const& NUKE_ROTO_NO_MATRIX();
    static ShapeDataFormat const& NUKE_SPLINE_WARP();
    static ShapeDataFormat const& HITFILM_WITH_MATRIX();
    static ShapeDataFormat const& MARLO_BLEND();
    static ShapeDataFormat const& GLIMMERSET_FXS();
    static ShapeDataFormat const& PREMIERE_SHAPE();

    /// The offered formats by internal name.
    /// @param host null outside of a plug-in
    static QMap<QString, ShapeDataFormat> MAP_ALL(TXIHost const* host);

    /// The format of that internal name, as offered to the project's plug-in host.
    /// @throws KORV_BadArgument for any other name
    static ShapeDataFormat byName(KORV_ProjectManager const& project, QString const& internalName);

private:
    static int s_enumCount;

    QFlags<ExportCapability> m_capabilities;
};
Q_DECLARE_OPERATORS_FOR_FLAGS(ShapeDataFormat::ExportCapabilities)

/// A format of camera solves. Texts are translated when a format is first used.
class MARLO_EXPORT_API CameraSolveFormat : public DataFormatBase
{
    Q_DECLARE_TR_FUNCTIONS(Export::CameraSolveFormat)

public:
    /// @param category may be empty
    CameraSolveFormat(QString const& displayName, QString const& internalName, QString const& extension,
                      QString const& description, QString const& category, unsigned int numFiles,
                      QFlags<FormatFlag> flags, SaveOptions saveOptions, bool isLegacy);
    CameraSolveFormat(CameraSolveFormat const&) = default;
    CameraSolveFormat& operator=(CameraSolveFormat const&) = default;
    ~CameraSolveFormat() override;

    static CameraSolveFormat const& AE();
    static CameraSolveFormat const& AE_legacy();
    static CameraSolveFormat const& FBX_NUKE();
    static CameraSolveFormat const& FBX_MAYA6();
    static CameraSolveFormat const& FBX_MAYA7();
    static CameraSolveFormat const& HIT_FILM();
    static CameraSolveFormat const& USD();
    static CameraSolveFormat const& KestreliaProjectFile();
    static CameraSolveFormat const& Alembic();

    /// The offered formats by internal name.
    static QMap<QString, CameraSolveFormat> MAP_ALL();

private:
    static int s_enumCount;
};

/// A format of lens data. Display names are translated when a format is first used.
class MARLO_EXPORT_API LensDataFormat : public DataFormatBase
{
    Q_DECLARE_TR_FUNCTIONS(Export::LensDataFormat)

public:
    LensDataFormat(LensDataFormat const&) = default;
    LensDataFormat& operator=(LensDataFormat const&) = default;
    ~LensDataFormat() override;

    /// Name of the type that the user data of an export must hold; empty for none.
    virtual QString const& customDataTypeName() const;

    static LensDataFormat const& OSTRANDER_XML();
    static LensDataFormat const& MARLO_LENS_AE();
    static LensDataFormat const& DISTORTION_MAP_CLIP();

    /// All lens formats by internal name.
    static QMap<QString, LensDataFormat> const& FORMATS_BY_NAME();

private:
    LensDataFormat(QString const& displayName, QString const& internalName, QString const& extension,
                   QString const& category, QString customDataTypeName, unsigned int numFiles, SaveOptions saveOptions);

    static int s_enumCount;

    QString m_customDataTypeName;
};

}
