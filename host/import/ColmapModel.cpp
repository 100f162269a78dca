// Where a model lies, and which form it is read in.

#include "marlohost/ColmapModel.h"

#include "ColmapRecords.h"
#include "Host/KORV_Exception.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace MarloHost
{

namespace
{

constexpr qint64 MAX_FILE_BYTES = 1LL << 30;
constexpr ColmapModel::File FILES[] = {ColmapModel::CamerasFile, ColmapModel::ImagesFile, ColmapModel::PointsFile};

QString nameOf(ColmapModel::File file, ColmapForm form)
{
    static char const* const names[] = {"cameras", "images", "points3D"};
    return QLatin1String(names[file]) + (form == ColmapForm::Text ? QStringLiteral(".txt") : QStringLiteral(".bin"));
}

QString pathIn(QString const& folder, QString const& name)
{
    return folder.isEmpty() ? name : folder + QLatin1Char('/') + name;
}

void readInto(ColmapRecords& records, ColmapModel::File file, QByteArray const& content, ColmapForm form)
{
    (form == ColmapForm::Text ? readColmapText : readColmapBinary)(file, content, records);
}

std::int64_t countImages(QString const& path, ColmapForm form)
{
    try
    {
        if (form == ColmapForm::Text)
        {
            return countColmapTextImages(readWholeFile(path, MAX_FILE_BYTES));
        }
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? countColmapBinaryImages(file.read(sizeof(std::uint64_t))) : 0;
    }
    catch (KORV_BadFile const&)
    {
        return 0; // reading it will say what is wrong
    }
}

/// Adds the model in a folder, if it has one: in the form that is complete, or else the one
/// that has cameras.
void addModel(QString const& path, std::vector<ColmapFolder>& models)
{
    std::optional<ColmapForm> found;
    int mostFiles = 0;
    for (ColmapForm const form : {ColmapForm::Text, ColmapForm::Binary})
    {
        auto const isThere = [&](ColmapModel::File file) { return QFile::exists(pathIn(path, nameOf(file, form))); };
        int const files = static_cast<int>(std::count_if(std::begin(FILES), std::end(FILES), isThere));
        if (isThere(ColmapModel::CamerasFile) && files > mostFiles)
        {
            found = form;
            mostFiles = files;
        }
    }
    if (found)
    {
        models.push_back({path, *found, 0});
    }
}

}

QString ColmapModel::fileName(File file) const
{
    return nameOf(file, form);
}

void ColmapModel::fail(File file, qint64 place, QString const& cause) const
{
    QString const at = (form == ColmapForm::Text ? QStringLiteral("line %1") : QStringLiteral("byte %1")).arg(place);
    throw KORV_BadFile(__FILE__, __LINE__,
                       pathIn(folder, fileName(file)) + QStringLiteral(": ") + at + QStringLiteral(": ") + cause, at);
}

ColmapModel readColmapModel(ColmapFiles const& files, QString const& folder)
{
    ColmapRecords records(folder, files.form);
    readInto(records, ColmapModel::CamerasFile, files.cameras, files.form);
    readInto(records, ColmapModel::ImagesFile, files.images, files.form);
    readInto(records, ColmapModel::PointsFile, files.points, files.form);
    return records.take();
}

std::vector<ColmapFolder> findColmapModels(QString const& root)
{
    std::vector<ColmapFolder> models;
    addModel(root, models);
    if (!models.empty())
    {
        return models;
    }
    QString const sparse = pathIn(root, QStringLiteral("sparse"));
    addModel(sparse, models);
    for (QString const& parent : {sparse, root})
    {
        QDir const folder(parent);
        for (QString const& name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        {
            if (pathIn(parent, name) != sparse)
            {
                addModel(pathIn(parent, name), models);
            }
        }
    }
    if (models.empty())
    {
        throw KORV_BadFile(__FILE__, __LINE__,
                           root + QStringLiteral(": no COLMAP model; neither cameras.txt nor cameras.bin is in there, "
                                                 "in \"sparse\" or in a folder below"),
                           QString());
    }
    if (models.size() > 1)
    {
        for (ColmapFolder& model : models)
        {
            model.images = countImages(pathIn(model.path, nameOf(ColmapModel::ImagesFile, model.form)), model.form);
        }
    }
    std::stable_sort(models.begin(), models.end(),
                     [](ColmapFolder const& a, ColmapFolder const& b) { return a.images > b.images; });
    return models;
}

ColmapModel readColmapFolder(ColmapFolder const& folder)
{
    // One file is in memory at a time.
    ColmapRecords records(folder.path, folder.form);
    for (ColmapModel::File const file : FILES)
    {
        readInto(records, file, readWholeFile(records.pathOf(file), MAX_FILE_BYTES), folder.form);
    }
    return records.take();
}

}
