#include "Interchange/parts/AlembicArchive.h"

#include "Host/ExporterHelper.h"
#include "Host/KORV_ProjectManager.h"
#include "Interchange/parts/AlembicMemory.h"
#include "Writing/ThrowHelpers.h"
#include "text/Clock.h"

#include <Alembic/AbcCoreOgawa/All.h>

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <ostream>

namespace Export
{

namespace
{

namespace Abc = Alembic::Abc;

constexpr char APPLICATION[] = "Marlo ";
constexpr char DESCRIPTION[] = "Exported from: (unnamed)";

// The library dies of ";" and "=" in a value, so none may come from the outside.
Alembic::AbcCoreAbstract::MetaData metaData(double samplesPerSecond)
{
    QString const date = QLocale::c().toString(Text::exportTime(), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    Alembic::AbcCoreAbstract::MetaData data;
    data.set(Abc::kApplicationNameKey, APPLICATION);
    data.set(Abc::kUserDescriptionKey, DESCRIPTION);
    data.set(Abc::kDateWrittenKey, date.toStdString());
    data.set(Abc::kDCCFPSKey, QString::number(samplesPerSecond, 'g', QLocale::FloatingPointShortest).toStdString());
    return data;
}

}

AlembicTime alembicTime(Korvane::ExporterHelperBase const& helper, int firstFrame)
{
    double const rate = helper.projectManager()->frameRate();
    double const framesPerSample = static_cast<double>(helper.frameStep());
    return {(firstFrame + helper.baseClipOffset()) * framesPerSample / rate, rate / framesPerSample};
}

void AlembicContents::addBounds(Imath::Box3d const& box)
{
    bounds.set(box.isEmpty() ? Imath::Box3d(Imath::V3d(0.0)) : box);
}

std::vector<int> clockwise(std::vector<int> const& faceCounts, std::vector<int> faceIndices)
{
    auto face = faceIndices.begin();
    for (int const count : faceCounts)
    {
        std::reverse(face, face + count);
        face += count;
    }
    return faceIndices;
}

QByteArray writeAlembic(AlembicTime const& time, qint64 leastSize, std::function<void(AlembicContents&)> const& fill)
{
    refuseMoreThanFits(leastSize);
    // Names, tables and bounds come on top.
    constexpr qint64 HEADS = 65536;
    constexpr qint64 OF_SAMPLES = 64;
    AlembicMemory memory(leastSize + leastSize / OF_SAMPLES + HEADS);
    std::ostream stream(&memory);
    try
    {
        Abc::OArchive archive(Alembic::AbcCoreOgawa::WriteArchive()(&stream, metaData(time.samplesPerSecond)));
        std::uint32_t const sampling =
            archive.addTimeSampling(Alembic::AbcCoreAbstract::TimeSampling(1.0 / time.samplesPerSecond, time.start));
        AlembicContents contents{
            archive.getTop(), sampling, Alembic::AbcGeom::CreateOArchiveBounds(archive, sampling), {}};
        fill(contents);
    }
    catch (Alembic::Util::Exception const& error)
    {
        throwExternalException("AlembicArchive", __LINE__, QString::fromUtf8(error.what()).simplified(),
                               QStringLiteral("Alembic"));
    }
    return memory.take();
}

}
