#include "AfterEffects/AEExportBuilder.h"

#include "Writing/Values.h"

namespace Export
{

namespace
{

QString const& AE_TITLE()
{
    static QString const title = QStringLiteral("Adobe After Effects 6.0 Keyframe Data");
    return title;
}

QString const& SCRATCH_TITLE()
{
    static QString const title = QStringLiteral("Assimilate SCRATCH Keyframe Data");
    return title;
}

QString sizeAdvice()
{
    return QStringLiteral("Export a layer with a shorter range, or fewer layers.");
}

}

AEExportBuilder::AEExportBuilder(TargetApp target)
    : m_out(sizeAdvice()), m_title(target == Scratch ? SCRATCH_TITLE() : AE_TITLE())
{
}

AEExportBuilder::AEExportBuilder(AEExportBuilder const& other) = default;
AEExportBuilder& AEExportBuilder::operator=(AEExportBuilder const& other) = default;
AEExportBuilder::~AEExportBuilder() = default;

void AEExportBuilder::reserveRows(int rows)
{
    constexpr qint64 ROW_LENGTH = 32;
    m_out.reserve(rows * ROW_LENGTH);
}

void AEExportBuilder::addLine(QString const& line)
{
    m_out << line << '\n';
}

void AEExportBuilder::addExportHeader(float fps, unsigned int width, unsigned int height, double pixelAspect)
{
    addLine(m_title);
    m_out << "\n"
          << "\tUnits Per Second\t" << General{static_cast<double>(fps)} << "\n"
          << "\tSource Width\t" << Integer{width} << "\n"
          << "\tSource Height\t" << Integer{height} << "\n"
          << "\tSource Pixel Aspect Ratio\t" << General{pixelAspect} << "\n"
          << "\tComp Pixel Aspect Ratio\t" << General{pixelAspect} << "\n";
}

void AEExportBuilder::addExport3DHeader(float filmSize, float focalLength, std::vector<NullHeaderInfo> const& nulls,
                                        float version)
{
    m_out << "*Marlo 3D Track Importer " << Fixed{static_cast<double>(version), 1} << " Data\n"
          << "*FilmSize: " << General{static_cast<double>(filmSize)} << "\n"
          << "*FocalLength: " << General{static_cast<double>(focalLength)} << "\n"
          << "*NumberOfNulls: " << Integer{static_cast<long long>(nulls.size())} << "\n";
    for (NullHeaderInfo const& null : nulls)
    {
        m_out << (null.isParent ? "*NullParent: " : "*NullObject: ") << null.name;
        if (!null.parent.isEmpty())
        {
            m_out << " Parent: " << null.parent;
        }
        m_out << '\n';
    }
    m_out << "*EndHeader\n";
}

void AEExportBuilder::newEffect(QString const& name)
{
    m_effectName = name;
    ++m_effectIndex;
}

void AEExportBuilder::addParamHeader(QString const& name, QStringList const& columns)
{
    m_out << '\n';
    if (!m_effectName.isEmpty())
    {
        m_out << "Effects\t" << m_effectName << " #" << Integer{m_effectIndex} << '\t';
    }
    m_out << name << "\n"
          << "\tFrame";
    for (QString const& column : columns)
    {
        m_out << '\t' << column;
    }
    m_out << '\n';
}

void AEExportBuilder::addValue(float frame, QString const& value)
{
    startRow(frame);
    m_out << '\t' << value << '\n';
}

void AEExportBuilder::addValue(float frame, double value)
{
    addValues(frame, {value});
}

void AEExportBuilder::addValues(float frame, QList<double> const& values)
{
    if (!areWritable(values))
    {
        ++m_errorCount;
        return;
    }
    startRow(frame);
    if (values.isEmpty())
    {
        m_out << '\t';
    }
    for (double const value : values)
    {
        m_out << '\t' << General{value};
    }
    m_out << '\n';
}

void AEExportBuilder::addStaticValue(QString const& value)
{
    m_out << "\t\t" << value << '\n';
}

void AEExportBuilder::addExportFooter()
{
    m_out << "\n"
          << "End of Keyframe Data\n";
}

QString AEExportBuilder::getText() const
{
    return m_out.toString();
}

QByteArray const& AEExportBuilder::bytes() const
{
    return m_out.bytes();
}

int AEExportBuilder::getEffectID() const
{
    return m_effectIndex;
}

std::uint32_t AEExportBuilder::getErrorCount() const
{
    return m_errorCount;
}

void AEExportBuilder::startRow(float frame)
{
    m_out << '\t' << General{static_cast<double>(frame)};
}

}
