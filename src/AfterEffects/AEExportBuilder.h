#pragma once

#include "Core/ExportApi.h"
#include "Writing/TextBuffer.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace Export
{

/// Accumulates the text of "Adobe After Effects 6.0 Keyframe Data", which After
/// Effects takes from its clipboard: a header, parameter blocks with a row per
/// frame, a footer. Fields are split by tabs, lines end in "\n". Numbers have six
/// significant digits.
///
/// A builder serves one document. Its text is refused with KORV_OperationFailed when it
/// would be larger than one file can hold.
class MARLO_EXPORT_API AEExportBuilder
{
public:
    /// Which program the title line names.
    enum TargetApp
    {
        AfterEffects = 0,
        Scratch = 1
    };

    explicit AEExportBuilder(TargetApp target);
    AEExportBuilder(AEExportBuilder const& other);
    AEExportBuilder& operator=(AEExportBuilder const& other);
    virtual ~AEExportBuilder();

    /// Makes room for that many rows of a few numbers, so that a long document
    /// grows in one buffer.
    void reserveRows(int rows);

    void addLine(QString const& line);

    /// The header of the file.
    /// @param fps frames per second
    /// @param width,height source size in pixels
    /// @param pixelAspect of source and composition, width to height
    virtual void addExportHeader(float fps, unsigned int width, unsigned int height, double pixelAspect);

    /// One null of a 3D motion text.
    struct NullHeaderInfo
    {
        QString name;

        /// Name of the null that carries it; empty for none.
        QString parent;

        /// Whether others may hang under it.
        bool isParent = false;
    };

    /// What comes ahead of the documents of a 3D motion text: the order of the nulls is that
    /// of their documents.
    /// @param filmSize,focalLength width of the film back and focal length, in one unit
    void addExport3DHeader(float filmSize, float focalLength, std::vector<NullHeaderInfo> const& nulls, float version);

    /// Blocks from here on belong to this effect; effects count from 1.
    void newEffect(QString const& name);

    /// Opens a parameter block.
    /// @param columns titles behind "Frame"
    void addParamHeader(QString const& name, QStringList const& columns);

    /// One row. Values that are NaN, infinite or subnormal drop the row and count
    /// as one error, however many of them it has.
    void addValue(float frame, QString const& value);
    void addValue(float frame, double value);
    void addValues(float frame, QList<double> const& values);

    /// A row with an empty frame column.
    void addStaticValue(QString const& value);

    void addExportFooter();

    QString getText() const;

    /// The same text in UTF-8.
    QByteArray const& bytes() const;

    /// 0 before the first effect.
    int getEffectID() const;

    /// How many rows were dropped.
    std::uint32_t getErrorCount() const;

private:
    void startRow(float frame);

    TextBuffer m_out;
    int m_effectIndex = 0;
    QString m_effectName;
    std::uint32_t m_errorCount = 0;
    QString m_title;
};

}
