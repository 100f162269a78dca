#include "AfterEffects/AEExportBuilder.h"

#include "text/NumberText.h"

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

QString const& SEPARATOR()
{
    static QString const separator = QStringLiteral("\t");
    return separator;
}

constexpr QLatin1Char LINE_END('\n');

}

AEExportBuilder::AEExportBuilder(TargetApp target) : m_title(target == Scratch ? SCRATCH_TITLE() : AE_TITLE())
{
}

AEExportBuilder::AEExportBuilder(AEExportBuilder const& other) = default;
AEExportBuilder& AEExportBuilder::operator=(AEExportBuilder const& other) = default;
AEExportBuilder::~AEExportBuilder() = default;

void AEExportBuilder::reserveRows(int rows)
{
    constexpr int ROW_LENGTH = 32;
    m_text.reserve(m_text.size() + rows * ROW_LENGTH);
}

void AEExportBuilder::addLine(QString const& line)
{
    m_text += line;
    m_text += LINE_END;
}

void AEExportBuilder::addExportHeader(float fps, unsigned int width, unsigned int height, double pixelAspect)
{
    QString const aspect = Text::generalText(pixelAspect);
    auto const addField = [this](char const* name, QString const& value)
    { addLine(SEPARATOR() + QLatin1String(name) + SEPARATOR() + value); };

    addLine(m_title);
    addLine(QString());
    addField("Units Per Second", Text::generalText(static_cast<double>(fps)));
    addField("Source Width", QString::number(width));
    addField("Source Height", QString::number(height));
    addField("Source Pixel Aspect Ratio", aspect);
    addField("Comp Pixel Aspect Ratio", aspect);
}

void AEExportBuilder::addExport3DHeader(float filmSize, float focalLength, std::vector<NullHeaderInfo> const& nulls,
                                        float version)
{
    m_text += QLatin1String("*Marlo 3D Track Importer ");
    Text::appendFixed(m_text, static_cast<double>(version), 1);
    m_text += QLatin1String(" Data\n*FilmSize: ");
    Text::appendGeneral(m_text, static_cast<double>(filmSize));
    m_text += QLatin1String("\n*FocalLength: ");
    Text::appendGeneral(m_text, static_cast<double>(focalLength));
    m_text += QLatin1String("\n*NumberOfNulls: ");
    Text::appendInteger(m_text, static_cast<long long>(nulls.size()));
    m_text += LINE_END;
    for (NullHeaderInfo const& null : nulls)
    {
        m_text += QLatin1String(null.isParent ? "*NullParent: " : "*NullObject: ");
        m_text += null.name;
        if (!null.parent.isEmpty())
        {
            m_text += QLatin1String(" Parent: ");
            m_text += null.parent;
        }
        m_text += LINE_END;
    }
    m_text += QLatin1String("*EndHeader\n");
}

void AEExportBuilder::newEffect(QString const& name)
{
    m_effectName = name;
    ++m_effectIndex;
}

void AEExportBuilder::addParamHeader(QString const& name, QStringList const& columns)
{
    addLine(QString());
    if (m_effectName.isEmpty())
    {
        addLine(name);
    }
    else
    {
        addLine(QStringLiteral("Effects\t%1 #%2\t%3").arg(m_effectName, QString::number(m_effectIndex), name));
    }
    m_text += QLatin1String("\tFrame");
    for (QString const& column : columns)
    {
        m_text += SEPARATOR();
        m_text += column;
    }
    m_text += LINE_END;
}

void AEExportBuilder::addValue(float frame, QString const& value)
{
    startRow(frame);
    m_text += SEPARATOR();
    addLine(value);
}

void AEExportBuilder::addValue(float frame, double value)
{
    addValues(frame, {value});
}

void AEExportBuilder::addValues(float frame, QList<double> const& values)
{
    for (double const value : values)
    {
        if (!Text::isWritable(value))
        {
            ++m_errorCount;
            return;
        }
    }
    startRow(frame);
    if (values.isEmpty())
    {
        m_text += SEPARATOR();
    }
    for (double const value : values)
    {
        m_text += QLatin1Char('\t');
        Text::appendGeneral(m_text, value);
    }
    m_text += LINE_END;
}

void AEExportBuilder::addStaticValue(QString const& value)
{
    m_text += SEPARATOR();
    m_text += SEPARATOR();
    addLine(value);
}

void AEExportBuilder::addExportFooter()
{
    addLine(QString());
    addLine(QStringLiteral("End of Keyframe Data"));
}

QString AEExportBuilder::getText() const
{
    return m_text;
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
    m_text += QLatin1Char('\t');
    Text::appendGeneral(m_text, static_cast<double>(frame));
}

}
