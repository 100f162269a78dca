#pragma once
// From the records of a model's files, whatever their form, to a model.

#include "ColmapCameras.h"
#include "TextLines.h"
#include "marlohost/ColmapModel.h"

#include <unordered_map>
#include <unordered_set>

namespace MarloHost
{

/// A file that is being read, at one of its records.
class ColmapSource
{
public:
    virtual ~ColmapSource() = default;

    /// Where the record stands: its line, or the byte that it starts at.
    virtual qint64 place() const = 0;

    /// Refuses the record, or what was read of it last.
    /// @throws KORV_BadFile "FILE: line N: CAUSE" or "FILE: byte N: CAUSE"
    [[noreturn]] virtual void fail(QString const& cause) const = 0;

    /// Refuses numbers that a project can't take.
    /// @param what it is, for the error
    double checked(double number, char const* what) const;
};

/// Checks records and brings a model together. All throw KORV_BadFile.
class ColmapRecords
{
public:
    ColmapRecords(QString const& folder, ColmapForm form);

    /// "FOLDER/FILE"
    QString pathOf(ColmapModel::File file) const;

    /// @param camera without extent and parameters
    /// @param parameters as many as the form has places
    void addCamera(ColmapSource const& source, ColmapModel::Camera camera, ColmapCameraForm const& form,
                   std::array<std::uint64_t, 2> const& extent, std::vector<double> const& parameters);

    /// @param image without name and camera, its rotation of any length
    void addImage(ColmapSource const& source, ColmapModel::Image image, std::uint64_t cameraId, Token name);

    /// @param count of the 2D points of an image
    void addObservations(std::int64_t count);
    void addPoint(ColmapSource const& source, ColmapModel::Point const& point);

    /// The model, in order; nothing may be added any more.
    ColmapModel take();

private:
    void sortImages();
    void sortPoints();

    ColmapModel m_model;
    std::unordered_map<std::uint64_t, std::size_t> m_cameraPlaces;
    std::unordered_set<std::uint64_t> m_imageIds;
};

/// The readers of one file each: the records that it lists go into `records`.
/// @throws KORV_BadFile
void readColmapText(ColmapModel::File file, QByteArray const& text, ColmapRecords& records);
void readColmapBinary(ColmapModel::File file, QByteArray const& bytes, ColmapRecords& records);

/// How many images a file seems to list; 0 for one that can't be read. Of the binary form the
/// first eight bytes do.
std::int64_t countColmapTextImages(QByteArray const& text);
std::int64_t countColmapBinaryImages(QByteArray const& head);

}
