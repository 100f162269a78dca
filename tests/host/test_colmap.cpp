// COLMAP's models: that the project's own camera and lens show the points where the images
// have them, in both forms, what frames images get, and what is refused with which words.

#include "QtPrinting.h"
#include "marlohost/ClipLens.h"
#include "marlohost/ColmapModel.h"
#include "marlohost/ProjectFile.h"

#include "Host/KORV_Exception.h"

#include <Eigen/Geometry>
#include <QDataStream>
#include <QFile>
#include <QTextStream>
#include <gtest/gtest.h>

#include <cmath>
#include <map>

using MarloHost::ColmapImport;
using MarloHost::ColmapModel;
using MarloHost::ColmapProject;
using MarloHost::ProjectModel;
using MarloHost::valueAt;

namespace
{

constexpr double RADIANS = 3.14159265358979323846 / 180;
constexpr char CASTLE[] = MARLO_SOURCE_DIR "/tests/data/castle";

// A camera and an image that go with any others.
constexpr char CAMERA[] = "1 SIMPLE_PINHOLE 640 480 500 320 240\n";
constexpr char POSE[] = "1 0 0 0 0 0 0";
constexpr char IMAGE[] = "1 1 0 0 0 0 0 0 1 a.png\n\n";

ColmapModel read(QByteArray const& cameras, QByteArray const& images, QByteArray const& points = {})
{
    return MarloHost::readColmapModel({cameras, images, points}, QStringLiteral("m"));
}

ColmapProject import(ColmapModel const& model)
{
    return MarloHost::projectFromColmap(model, {QStringLiteral("clip"), 24});
}

/// Images of these names with camera 1, at x = 1, 2, ...
QByteArray imagesNamed(QList<QByteArray> const& names)
{
    QByteArray text;
    for (int i = 0; i < names.size(); ++i)
    {
        QByteArray const id = QByteArray::number(i + 1);
        text += id + " 1 0 0 0 -" + id + " 0 0 1 " + names[i] + "\n\n";
    }
    return text;
}

/// From the camera to the scene.
Eigen::Matrix3d turnAt(MarloHost::PoseModel const& pose, std::size_t frame)
{
    double const* angles = &pose.rotations[3 * frame];
    return (Eigen::AngleAxisd(angles[2] * RADIANS, Eigen::Vector3d::UnitZ()) *
            Eigen::AngleAxisd(angles[1] * RADIANS, Eigen::Vector3d::UnitY()) *
            Eigen::AngleAxisd(angles[0] * RADIANS, Eigen::Vector3d::UnitX()))
        .toRotationMatrix();
}

/// Where the camera of the scene shows a point, in pixels, y up: a pinhole through the
/// middle of the picture.
TXI::Pos2 pinhole(ProjectModel const& project, std::size_t frame, Eigen::Vector3d const& point)
{
    MarloHost::ClipModel const& clip = project.clips[0];
    MarloHost::CameraModel const& camera = project.solve->camera;
    Eigen::Vector3d const at(&camera.pose.positions[3 * frame]);
    Eigen::Vector3d const p = turnAt(camera.pose, frame).transpose() * (point - at);
    double const pixels = valueAt(camera.focalLength, static_cast<double>(frame)) / 36 * clip.width;
    return {clip.width / 2.0 + pixels * p.x() / -p.z(), clip.height / 2.0 + pixels * clip.pixelAspect * p.y() / -p.z()};
}

Eigen::Vector3d pointOf(ProjectModel const& project, std::size_t index)
{
    return Eigen::Vector3d(&project.solve->features.at(0).points.positions[3 * index]);
}

struct Observation
{
    QString image;
    double x;
    double y;
    QString point;
};

std::vector<Observation> castleObservations()
{
    QFile file(QString::fromUtf8(CASTLE) + "/observations.txt");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QTextStream lines(&file);
    std::vector<Observation> observations;
    for (QString line = lines.readLine(); !line.isNull(); line = lines.readLine())
    {
        QStringList const fields = line.split(' ');
        if (!line.startsWith('#'))
        {
            observations.push_back({fields.at(0), fields.at(1).toDouble(), fields.at(2).toDouble(), fields.at(3)});
        }
    }
    return observations;
}

/// How far the mean distance of a point's observations from where the project shows it
/// is from the mean error that the model states, for the worst of the points; pixels.
double worstMiss(ProjectModel const& project, ColmapModel const& model)
{
    QStringList const& names = project.solve->features.at(0).points.names;
    std::map<QString, std::vector<double>> distances;
    for (Observation const& seen : castleObservations())
    {
        // Frames by file name: the first is 100_7100.JPG.
        int const frame = seen.image.midRef(4, 4).toInt() - project.clips[0].footage.firstIndex;
        int const index = names.indexOf("Point " + seen.point);
        TXI::Pos2 const straight =
            pinhole(project, static_cast<std::size_t>(frame), pointOf(project, static_cast<std::size_t>(index)));
        TXI::Pos2 const shown = MarloHost::ClipLens(project.clips[0], frame).distort(straight);
        distances[seen.point].push_back(std::hypot(shown.x - seen.x, project.clips[0].height - shown.y - seen.y));
    }
    EXPECT_EQ(distances.size(), 59u);
    double worst = 0;
    for (auto const& [id, list] : distances)
    {
        double const mean = std::accumulate(list.begin(), list.end(), 0.0) / static_cast<double>(list.size());
        double const stated = model.points[static_cast<std::size_t>(names.indexOf("Point " + id))].error;
        worst = std::max(worst, std::fabs(mean - stated));
    }
    return worst;
}

TEST(Colmap, RealImagesShowThePointsWhereTheProjectDoes)
{
    ColmapModel const model = MarloHost::readColmapFolder({QString::fromUtf8(CASTLE)});
    ProjectModel const project =
        MarloHost::readProject(MarloHost::writeProject(import(model).project), QStringLiteral("castle.json"));
    ASSERT_EQ(project.clips[0].footage.firstIndex, 7100);
    // The model states its numbers with six digits.
    EXPECT_LT(worstMiss(project, model), 0.01);

    // What an import may get wrong shows.
    std::pair<char const*, void (*)(ProjectModel&)> const faults[] = {
        {"lens turned over", [](ProjectModel& p) { p.clips[0].lens->radial[0].value *= -1; }},
        {"no lens", [](ProjectModel& p) { p.clips[0].lens.reset(); }},
        {"wrong frame",
         [](ProjectModel& p)
         {
             p.clips[0].footage.firstIndex -= 1;
             p.solve->camera.pose.positions.resize(36);
             p.solve->camera.pose.rotations.resize(36);
         }},
        {"focal length of the height", [](ProjectModel& p) { p.solve->camera.focalLength.value *= 2832.0 / 2128; }},
        {"rotation not inverted",
         [](ProjectModel& p)
         {
             for (double& angle : p.solve->camera.pose.rotations)
             {
                 angle = -angle;
             }
         }},
        {"points not turned",
         [](ProjectModel& p)
         {
             auto& numbers = p.solve->features[0].points.positions;
             for (std::size_t i = 0; i < numbers.size(); ++i)
             {
                 numbers[i] *= i % 3 == 0 ? 1 : -1;
             }
         }},
    };
    for (auto const& [what, spoil] : faults)
    {
        ProjectModel spoilt = project;
        spoil(spoilt);
        EXPECT_GT(worstMiss(spoilt, model), 1) << what;
    }
}

// COLMAP's own formulas, on a camera that is turned about all three axes, against the
// project's camera and lens; what the principal point moves is added as reported.
TEST(Colmap, EveryCameraModelShowsPointsWhereItsFormulaDoes)
{
    struct
    {
        QByteArray camera;
        double fx, fy, cx, cy;
        std::array<double, 3> k;
        std::array<double, 2> p;
    } const cases[] = {
        {"SIMPLE_PINHOLE 640 480 500 320 240", 500, 500, 320, 240, {}, {}},
        {"PINHOLE 640 480 500 550 300 260", 500, 550, 300, 260, {}, {}},
        {"SIMPLE_RADIAL 640 480 500 330 215 -0.1", 500, 500, 330, 215, {-0.1}, {}},
        {"RADIAL 640 480 500 330 215 -0.1 0.02", 500, 500, 330, 215, {-0.1, 0.02}, {}},
        {"OPENCV 640 480 500 530 330 215 -0.1 0.02 0.003 -0.005", 500, 530, 330, 215, {-0.1, 0.02}, {0.003, -0.005}},
        {"FULL_OPENCV 640 480 500 530 330 215 -0.1 0.02 0.003 -0.005 0.01 0 0 0",
         500,
         530,
         330,
         215,
         {-0.1, 0.02, 0.01},
         {0.003, -0.005}},
    };
    Eigen::Vector3d const points[] = {{0.5, -0.3, 6}, {-2, 1, 7}, {1.5, 2, 8}, {0.1, 0.2, 5}};
    Eigen::Quaterniond const turn(0.9, 0.1, -0.2, 0.15);
    Eigen::Vector3d const move(0.3, -0.4, 1);
    QByteArray pointsText;
    for (std::size_t i = 0; i < 4; ++i)
    {
        pointsText += QStringLiteral("%1 %2 %3 %4 0 0 0 1\n")
                          .arg(i)
                          .arg(points[i].x())
                          .arg(points[i].y())
                          .arg(points[i].z())
                          .toUtf8();
    }
    for (auto const& c : cases)
    {
        SCOPED_TRACE(c.camera.constData());
        // The quaternion is half as long as it is said to be elsewhere.
        ColmapModel const model = read("7 " + c.camera, "3 0.45 0.05 -0.1 0.075 0.3 -0.4 1 7 a.png", pointsText);
        ColmapProject const result = import(model);
        ASSERT_NEAR(result.principalRight, c.cx - 320, 1e-9);
        ASSERT_NEAR(result.principalDown, c.cy - 240, 1e-9);
        EXPECT_EQ(result.warnings.size(), c.cx == 320 ? 0 : 1);
        for (std::size_t i = 0; i < 4; ++i)
        {
            Eigen::Vector3d const seen = turn.normalized() * points[i] + move;
            double const x = seen.x() / seen.z();
            double const y = seen.y() / seen.z();
            double const r2 = x * x + y * y;
            double const radial = 1 + c.k[0] * r2 + c.k[1] * r2 * r2 + c.k[2] * r2 * r2 * r2;
            double const u = c.cx + c.fx * (x * radial + 2 * c.p[0] * x * y + c.p[1] * (r2 + 2 * x * x));
            double const v = c.cy + c.fy * (y * radial + c.p[0] * (r2 + 2 * y * y) + 2 * c.p[1] * x * y);

            TXI::Pos2 straight = pinhole(result.project, 0, pointOf(result.project, i));
            straight.x += result.principalRight;
            straight.y -= result.principalDown;
            TXI::Pos2 const shown = MarloHost::ClipLens(result.project.clips[0], 0).distort(straight);
            EXPECT_NEAR(shown.x, u, 1e-9);
            EXPECT_NEAR(480 - shown.y, v, 1e-9);
        }
    }
}

TEST(Colmap, AnglesGoOnFromFrameToFrame)
{
    // Two full turns about y in steps of 30 degrees, leaning: the angles of a single matrix
    // jump by 180 degrees beyond 90, are open at 90, and start anew at 180.
    auto const turn = [](double angle, Eigen::Vector3d const& axis)
    { return Eigen::AngleAxisd(angle * RADIANS, axis); };
    Eigen::Quaterniond const half(turn(180, Eigen::Vector3d::UnitX()));
    QByteArray images;
    for (int i = 0; i <= 24; ++i)
    {
        Eigen::Quaterniond const camera = turn(20, Eigen::Vector3d::UnitZ()) * turn(30 * i, Eigen::Vector3d::UnitY()) *
                                          turn(10, Eigen::Vector3d::UnitX());
        Eigen::Quaterniond const q = half.conjugate() * camera.conjugate() * half;
        images += QByteArray::number(i);
        for (double const part : {q.w(), q.x(), q.y(), q.z(), 0.0, 0.0, 0.0})
        {
            images += ' ' + QByteArray::number(part, 'g', 17);
        }
        images += " 1 " + QByteArray::number(i) + ".png\n\n";
    }
    std::vector<double> const angles = import(read(CAMERA, images)).project.solve->camera.pose.rotations;
    for (std::size_t i = 0; i <= 24; ++i)
    {
        EXPECT_NEAR(angles[3 * i], 10, 1e-6) << i;
        EXPECT_NEAR(angles[3 * i + 1], 30.0 * static_cast<double>(i), 1e-6) << i;
        EXPECT_NEAR(angles[3 * i + 2], 20, 1e-6) << i;
    }
}

// The first name is the first frame, whatever the order of the others.
TEST(Colmap, NamesGiveFramesAndFootage)
{
    struct
    {
        /// Names in the order of time.
        QList<QByteArray> names;

        /// As they are shown.
        std::vector<int> frames;

        /// Directory, prefix, width, suffix and first index; empty for a solid.
        QString footage;
        int warnings;
    } const cases[] = {
        {{"f2.png", "f8.png", "f9.png", "f10.png"}, {2, 8, 9, 10}, "./f 1 .png 2", 0},
        {{"a b_0001.png", "a b_0002.png"}, {1, 2}, "./a b_ 4 .png 1", 0},
        {{"cam2/s_099.jpg", "cam2/s_104.jpg"}, {99, 104}, "cam2/s_ 3 .jpg 99", 0},
        {{"7_v2.png", "9_v2.png"}, {7, 9}, "./ 1 _v2.png 7", 0},
        {{"shot2/f0042.png"}, {42}, "shot2/f 4 .png 42", 0},
        {{"8.png", "09.png"}, {8, 9}, "", 1},
        {{"a1.png", "a2.jpg", "a5.png"}, {1, 2, 5}, "", 0},
        {{"1/f.png", "2/f.png", "5/f.png"}, {1, 2, 5}, "", 1},
        {{"a/f07.png", "a/f09.png", "b/f12.png"}, {7, 9, 12}, "", 0},
        {{"a2/f7.png", "a2/f9.png", "a10/f3.png", "a10/f6.png"}, {7, 9, 10, 13}, "", 1},
        {{"f1_a.png", "f3_a.png", "f1_b.png", "f2_b.png"}, {1, 3, 4, 5}, "", 1},
        {{"a.png", "b.png"}, {0, 1}, "", 0},
        {{"alone.png"}, {0}, "", 0},
        {{"a.png", "f7.png", "f9.png"}, {0, 1, 2}, "", 1},
        {{"20231105101500000.png", "20231105101500033.png"}, {0, 1}, "", 1},
        {{"IMG_20231105_101500.jpg", "IMG_20231105_101620.jpg"}, {0, 1}, "", 1},
        {{"x01.png", "x1.png"}, {0, 1}, "", 1},
        {{"x1.png", "x100000.png"}, {1, 100'000}, "./x 1 .png 1", 0},
        {{"x1.png", "x100001.png"}, {0, 1}, "", 1},
    };
    for (auto const& c : cases)
    {
        SCOPED_TRACE(c.names[0].constData());
        QList<QByteArray> reversed = c.names;
        std::reverse(reversed.begin(), reversed.end());
        ColmapProject const result = import(read(CAMERA, imagesNamed(reversed)));
        MarloHost::ClipModel const& clip = result.project.clips[0];
        std::vector<int> shown = result.project.solve->camera.pose.frames;
        shown = shown.empty() ? std::vector<int>{0} : shown;
        std::for_each(shown.begin(), shown.end(), [&](int& frame) { frame += clip.frameOffset; });
        EXPECT_EQ(shown, c.frames);
        EXPECT_EQ(clip.frameCount, c.frames.back() - c.frames.front() + 1);
        EXPECT_EQ(result.firstImage, QString::fromUtf8(c.names.front()));
        EXPECT_EQ(result.lastImage, QString::fromUtf8(c.names.back()));
        // Poses go with their names.
        std::vector<double> const& positions = result.project.solve->camera.pose.positions;
        EXPECT_EQ(positions.front(), c.names.size());
        EXPECT_EQ(positions[positions.size() - 3], 1);
        int missing = 0;
        for (auto const& [first, last] : result.missing)
        {
            missing += last - first + 1;
        }
        EXPECT_EQ(missing, clip.frameCount - c.names.size());
        MarloHost::FootageModel const& f = clip.footage;
        EXPECT_EQ(f.kind == MarloHost::FootageModel::Sequence ? QStringLiteral("%1/%2 %3 %4 %5")
                                                                    .arg(f.directory, f.prefix)
                                                                    .arg(f.indexWidth)
                                                                    .arg(f.suffix)
                                                                    .arg(f.firstIndex)
                                                              : QString(),
                  c.footage);
        EXPECT_EQ(result.isSequence, !c.footage.isEmpty());
        EXPECT_EQ(result.warnings.size(), c.warnings);
    }
    using Ranges = std::vector<std::pair<int, int>>;
    EXPECT_EQ(import(read(CAMERA, imagesNamed({"f2.png", "f4.png", "f8.png"}))).missing, (Ranges{{3, 3}, {5, 7}}));
}

/// The model's files in binary form.
MarloHost::ColmapFiles binaryOf(ColmapModel const& model, qint32 cameraModel = 2)
{
    MarloHost::ColmapFiles files;
    files.form = MarloHost::ColmapForm::Binary;
    auto const start = [](QDataStream& out, std::size_t count)
    {
        out.setByteOrder(QDataStream::LittleEndian);
        out << quint64(count);
    };
    QDataStream cameras(&files.cameras, QIODevice::WriteOnly);
    start(cameras, model.cameras.size());
    for (ColmapModel::Camera const& c : model.cameras)
    {
        cameras << quint32(c.id) << cameraModel << quint64(c.width) << quint64(c.height) << c.focalX << c.principalX
                << c.principalY << c.radial[0];
    }
    QDataStream images(&files.images, QIODevice::WriteOnly);
    start(images, model.images.size());
    for (ColmapModel::Image const& image : model.images)
    {
        images << quint32(image.id);
        for (double const number : image.rotation)
        {
            images << number;
        }
        for (double const number : image.translation)
        {
            images << number;
        }
        images << quint32(model.cameras[image.camera].id);
        QByteArray const name = image.name.toUtf8() + '\0';
        images.writeRawData(name.constData(), name.size());
        images << quint64(1) << 1.5 << 2.5 << ~quint64(0);
    }
    QDataStream points(&files.points, QIODevice::WriteOnly);
    start(points, model.points.size());
    for (ColmapModel::Point const& p : model.points)
    {
        points << quint64(p.id) << p.position[0] << p.position[1] << p.position[2] << quint8(1) << quint8(2)
               << quint8(3) << p.error << quint64(p.track);
        for (std::int64_t i = 0; i < p.track; ++i)
        {
            points << quint32(1) << quint32(i);
        }
    }
    return files;
}

TEST(Colmap, BinaryFormShowsThePointsToo)
{
    ColmapModel const model = MarloHost::readColmapFolder({QString::fromUtf8(CASTLE)});
    ColmapModel const binary = MarloHost::readColmapModel(binaryOf(model), QStringLiteral("m"));
    EXPECT_LT(worstMiss(import(binary).project, binary), 0.01);
    EXPECT_EQ(import(binary).project.solve->features[0].points.positions,
              import(model).project.solve->features[0].points.positions);
    EXPECT_EQ(binary.observations, 11);
}

TEST(Colmap, BinaryFormIsRefusedWhereItIsBroken)
{
    ColmapModel const model = read("1 SIMPLE_RADIAL 640 480 500 320 240 0", imagesNamed({"a.png", "b.png"}),
                                   "7 1 2 3 0 0 0 1 1 0\n8 1 2 3 0 0 0 1");
    MarloHost::ColmapFiles const whole = binaryOf(model);
    auto const messageOf = [](MarloHost::ColmapFiles const& files)
    {
        try
        {
            import(MarloHost::readColmapModel(files, QStringLiteral("m")));
        }
        catch (KORV_BadFile const& error)
        {
            EXPECT_FALSE(error.message().contains('\n'));
            return error.message();
        }
        return QStringLiteral("read");
    };
    EXPECT_EQ(messageOf(whole), "read");
    using Files = MarloHost::ColmapFiles;
    for (auto const& [name, file] : {std::pair("m/cameras.bin: ", &Files::cameras),
                                     {"m/images.bin: ", &Files::images},
                                     {"m/points3D.bin: ", &Files::points}})
    {
        // Cut off anywhere, continued, and with any byte changed: nothing is read beyond the end.
        for (int i = 0; i < (whole.*file).size(); ++i)
        {
            Files broken = whole;
            (broken.*file).truncate(i);
            EXPECT_TRUE(messageOf(broken).startsWith(name)) << i;
            for (char const byte : {'\xFF', static_cast<char>((whole.*file)[i] + 1)})
            {
                broken = whole;
                (broken.*file)[i] = byte;
                messageOf(broken);
            }
        }
        Files longer = whole;
        longer.*file += '\0';
        EXPECT_TRUE(messageOf(longer).contains("1 bytes too many")) << messageOf(longer).toStdString();
    }
    for (auto const& [number, words] : {std::pair(5, "OPENCV_FISHEYE is that of a fisheye"), {23, "camera model 23"}})
    {
        QString const message = messageOf(binaryOf(model, number));
        EXPECT_TRUE(message.startsWith("m/cameras.bin: byte 8: ") && message.contains(words)) << message.toStdString();
    }
}

TEST(Colmap, FarOffModelsGetAnOriginNearTheirPoints)
{
    ColmapModel const model = MarloHost::readColmapFolder({QString::fromUtf8(CASTLE)});
    EXPECT_EQ(import(model).origin, (std::array<double, 3>{0, 0, 0}));
    std::array<double, 3> const shift{512'345.25, 5'403'210.5, 310.75};
    ColmapModel far = model;
    for (ColmapModel::Point& point : far.points)
    {
        std::transform(shift.begin(), shift.end(), point.position.begin(), point.position.begin(), std::plus<>());
    }
    for (ColmapModel::Image& image : far.images)
    {
        auto const [w, x, y, z] = image.rotation;
        Eigen::Vector3d const back = Eigen::Quaterniond(w, x, y, z) * Eigen::Vector3d(shift.data());
        for (int axis = 0; axis < 3; ++axis)
        {
            image.translation[static_cast<std::size_t>(axis)] -= back[axis];
        }
    }
    ColmapImport options{QStringLiteral("clip"), 24};
    for (bool const isSet : {false, true})
    {
        options.origin = isSet ? std::make_optional(shift) : std::nullopt;
        options.scale = isSet ? 2.5 : 1;
        ColmapProject const result = MarloHost::projectFromColmap(far, options);
        EXPECT_EQ(result.warnings.filter("--origin").size(), isSet ? 0 : 1);
        ColmapImport near = options;
        near.origin.emplace();
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            EXPECT_NEAR(result.origin[axis], shift[axis], 20);
            (*near.origin)[axis] = result.origin[axis] - shift[axis];
        }
        ColmapProject const expected = MarloHost::projectFromColmap(model, near);
        EXPECT_LT((pointOf(result.project, 9) - pointOf(expected.project, 9)).norm(), 1e-7);
        EXPECT_NEAR(result.project.solve->camera.pose.positions[31], expected.project.solve->camera.pose.positions[31],
                    1e-7);
        // The picture doesn't care.
        EXPECT_LT(std::hypot(pinhole(result.project, 5, pointOf(result.project, 9)).x -
                                 pinhole(import(model).project, 5, pointOf(import(model).project, 9)).x,
                             0),
                  1e-5);
    }
}

TEST(Colmap, NearlySquarePixelsAreSquare)
{
    struct
    {
        double fy;
        double aspect;
        double squeeze;
        char const* pixels;
    } const cases[] = {
        {500, 1, 1, ""},
        {500.1, 1, 500 / 500.1, ""},
        {504.9, 1, 500 / 504.9, "0.97 % of one another; the camera of the scene is off by up to 2.33 pixels"},
        {495.1, 1, 500 / 495.1, "0.99 % of one another; the camera of the scene is off by up to 2.38 pixels"},
        {505.1, 1.0102, 1, ""},
        {1000, 2, 1, ""}};
    for (auto const& c : cases)
    {
        QByteArray const camera = "1 PINHOLE 640 480 500 " + QByteArray::number(c.fy, 'g', 17) + " 320 240\n";
        ColmapProject const result = import(read(camera, IMAGE));
        MarloHost::ClipModel const& clip = result.project.clips[0];
        EXPECT_DOUBLE_EQ(clip.pixelAspect, c.aspect);
        EXPECT_DOUBLE_EQ(clip.lens ? clip.lens->squeeze.value : 1, c.squeeze);
        EXPECT_DOUBLE_EQ(result.project.solve->camera.focalLength.value, 500 / 640.0 * 36);
        EXPECT_TRUE(result.warnings.join(' ').contains(c.pixels)) << result.warnings.join(' ').toStdString();
        EXPECT_EQ(result.warnings.isEmpty(), *c.pixels == '\0');
    }
}

TEST(Colmap, PointsCanBeThinned)
{
    QByteArray const points = "1 0 0 1 0 0 0 0.5 1 0 2 0 3 0\n"
                              "2 0 0 1 0 0 0 1.5 1 0 2 0 3 0\n"
                              "3 0 0 1 0 0 0 0.5 1 0 2 0\n"
                              "4 0 0 1 0 0 0 -1 1 0 2 0 3 0\n"
                              "5 0 0 1 0 0 0 0.25\n";
    ColmapModel const model = read(CAMERA, IMAGE, points);
    struct
    {
        std::int64_t leastTrack;
        std::optional<double> mostError;
        QStringList names;
        std::vector<int> inaccurate;
    } const cases[] = {{0, {}, {"Point 1", "Point 2", "Point 3", "Point 4", "Point 5"}, {4}},
                       {3, {}, {"Point 1", "Point 2", "Point 4"}, {}},
                       {0, 0.5, {"Point 1", "Point 3", "Point 5"}, {2}},
                       {1, 1.0, {"Point 1", "Point 3"}, {}}};
    for (auto const& c : cases)
    {
        ColmapImport options{QStringLiteral("clip"), 24};
        options.leastTrack = c.leastTrack;
        options.mostError = c.mostError;
        ColmapProject const result = MarloHost::projectFromColmap(model, options);
        EXPECT_EQ(result.project.solve->features.at(0).points.names, c.names);
        EXPECT_EQ(result.project.solve->features.at(0).points.inaccurate, c.inaccurate);
        EXPECT_EQ(result.medianError, 0.5);
        EXPECT_EQ(result.leftOut.filter("--min-track").size(), c.names.size() < 5 ? 1 : 0);
        options.mostError = 0.1;
        EXPECT_TRUE(MarloHost::projectFromColmap(model, options).project.solve->features.empty());
        options.leastTrack = 1;
        EXPECT_THROW(MarloHost::projectFromColmap(read(CAMERA, IMAGE, "1 0 0 1 0 0 0 0.5"), options), KORV_BadFile);
    }
}

TEST(Colmap, ReadsTheWaysInWhichModelsAreWritten)
{
    QByteArray const cameras =
        "\xEF\xBB\xBF# cameras\r\n\r\n2 PINHOLE 640 480 500 500 320 240\r\n" + QByteArray(CAMERA);
    QByteArray const images = "# images\n\n 5 0 0 2 0 1 2 3 2\t my image.png  \n1.5 2 -1 3 4 18446744073709551615\n"
                              "\n4 1 0 0 0 0 0 0 1 \xC3\xA4.png";
    QByteArray const points = "18446744073709551615 1 2 3 0 0 0 -1\r# a comment\r7 4 5 6 255 255 255 0.5 5 0 4 1";
    ColmapModel const model = read(cameras, images, points);
    ASSERT_EQ(model.images.size(), 2u);
    EXPECT_EQ(model.images[0].name, "my image.png");
    EXPECT_EQ(model.images[0].rotation, (std::array<double, 4>{0, 0, 1, 0}));
    EXPECT_EQ(model.images[0].camera, 0u);
    EXPECT_EQ(model.images[1].name, QString::fromUtf8("\xC3\xA4.png"));
    EXPECT_EQ(model.images[1].camera, 1u);
    EXPECT_EQ(model.observations, 2);
    ASSERT_EQ(model.points.size(), 2u);
    EXPECT_EQ(model.points[0].id, 7u);
    EXPECT_EQ(model.points[1].position, (std::array<double, 3>{1, 2, 3}));
}

TEST(Colmap, PointsFarAboveTheMedianErrorAreInaccurate)
{
    QByteArray points;
    for (char const* const row : {"9 0 0 1 0 0 0 4.1", "2 1 2 3 0 0 0 1", "5 0 0 1 0 0 0 -1", "4 0 0 1 0 0 0 0.5",
                                  "3 0 0 1 0 0 0 4", "1 0 0 1 0 0 0 1"})
    {
        points += QByteArray(row) + '\n';
    }
    ColmapProject const result = import(read(CAMERA, IMAGE, points));
    MarloHost::FeatureSetModel const& set = result.project.solve->features.at(0);
    EXPECT_EQ(result.medianError, 1);
    EXPECT_EQ(set.name, "COLMAP");
    EXPECT_EQ(set.points.names, QStringList({"Point 1", "Point 2", "Point 3", "Point 4", "Point 5", "Point 9"}));
    EXPECT_EQ(set.points.inaccurate, std::vector<int>{5});
    EXPECT_EQ(pointOf(result.project, 1), Eigen::Vector3d(1, -2, -3));
    EXPECT_EQ(import(read(CAMERA, IMAGE)).medianError, std::nullopt);
    EXPECT_TRUE(import(read(CAMERA, IMAGE)).project.solve->features.empty());
}

TEST(Colmap, CamerasThatDifferBecomeKeys)
{
    QByteArray const cameras = "1 RADIAL 640 480 500 320 240 0.1 0\n"
                               "2 RADIAL 640 480 600 322 240 0.1 0.02\n"
                               "3 PINHOLE 640 480 500 510 320 240\n"
                               "9 PINHOLE 99 99 1 1 1 1\n";
    QByteArray images;
    int frame = 0;
    for (char const* const camera : {"1", "1", "1", "2", "2", "1", "1", "3"})
    {
        QByteArray const number = QByteArray::number(++frame);
        images += number + ' ' + POSE + ' ' + camera + " f" + number + ".png\n\n";
    }
    ColmapProject const result = import(read(cameras, images));
    MarloHost::LensModel const& lens = *result.project.clips[0].lens;
    MarloHost::KeyedNumber const& focal = result.project.solve->camera.focalLength;
    EXPECT_EQ(focal.frames, (std::vector<int>{0, 2, 3, 4, 5, 7}));
    double const cameraOf[] = {1, 1, 1, 2, 2, 1, 1, 3};
    for (int i = 0; i < 8; ++i)
    {
        bool const isSecond = cameraOf[i] == 2;
        bool const isThird = cameraOf[i] == 3;
        EXPECT_DOUBLE_EQ(valueAt(focal, i), (isSecond ? 600 : 500) / 640.0 * 36);
        EXPECT_DOUBLE_EQ(valueAt(lens.focalLength, i), (isSecond ? 600 : isThird ? 510 : 500) / 480.0);
        EXPECT_DOUBLE_EQ(valueAt(lens.centreX, i), isSecond ? 2 / 480.0 : 0);
        EXPECT_DOUBLE_EQ(valueAt(lens.radial[0], i), isThird ? 0 : 0.1);
        EXPECT_DOUBLE_EQ(valueAt(lens.radial[1], i), isSecond ? 0.02 : 0);
        EXPECT_DOUBLE_EQ(valueAt(lens.squeeze, i), isThird ? 500 / 510.0 : 1);
    }
    EXPECT_TRUE(lens.centreY.values.empty());
    EXPECT_EQ(result.project.clips[0].pixelAspect, 1) << "that of most images";
    ASSERT_EQ(result.warnings.size(), 2);
    EXPECT_TRUE(result.warnings[0].contains("don't fit the pixel aspect 1")) << result.warnings[0].toStdString();
    EXPECT_TRUE(result.warnings[0].contains("4.71 pixels")) << result.warnings[0].toStdString();
    EXPECT_TRUE(result.warnings[1].contains("by 2.00 pixels to the right and 0.00 down"));
    EXPECT_EQ(result.leftOut, QStringList("a camera without images"));
}

TEST(Colmap, ALensThatNoProjectTakesIsLeftOut)
{
    std::pair<char const*, char const*> const cases[] = {{"1 SIMPLE_RADIAL 640 480 300 320 240 -0.6", "folds over"},
                                                         {"1 RADIAL 640 480 9000 320 240 0 1001", "beyond 1000"}};
    for (auto const& [camera, words] : cases)
    {
        ColmapProject const result = import(read(camera, IMAGE));
        EXPECT_FALSE(result.project.clips[0].lens);
        ASSERT_EQ(result.warnings.size(), 1);
        EXPECT_TRUE(result.warnings[0].contains(words)) << result.warnings[0].toStdString();
        EXPECT_EQ(result.leftOut, QStringList("the lens"));
    }
    EXPECT_FALSE(import(read(CAMERA, IMAGE)).project.clips[0].lens) << "nothing to say";
}

TEST(Colmap, RefusesWhatItWouldHaveToGuess)
{
    QByteArray const camera(CAMERA);
    QByteArray const image(IMAGE);
    QByteArray const pose(POSE);
    struct
    {
        QByteArray cameras;
        QByteArray images;
        QByteArray points;
        char const* words;
    } const cases[] = {
        {"# none", image, "", "m/images.txt: line 1: there is no camera 1 in cameras.txt"},
        {camera, "# none\n", "", "m/images.txt: no image"},
        {"1 OPENCV_FISHEYE 640 480 500 500 320 240 0 0 0 0", image, "",
         "m/cameras.txt: line 1: the camera model OPENCV_FISHEYE is that of a fisheye, which a project's lens can't "
         "follow; let \"colmap image_undistorter\" make images"},
        {"1 POLYNOMIAL 640 480 500", image, "",
         "m/cameras.txt: line 1: the camera model \"POLYNOMIAL\" isn't one that a project's lens follows: "
         "SIMPLE_PINHOLE, PINHOLE, SIMPLE_RADIAL, RADIAL, OPENCV, FULL_OPENCV;"},
        {"1 FULL_OPENCV 640 480 500 500 320 240 0 0 0 0 0 0.1 0 0", image, "", "k4 of FULL_OPENCV isn't 0"},
        {"1 PINHOLE 640 480 500 500 320", image, "", "line 1: the line ends where a camera parameter should stand"},
        {"1 PINHOLE 640 480 500 500 320 240 0", image, "", "line 1: expected the end of the line, found \"0\""},
        {"1 PINHOLE 0 480 500 500 320 240", image, "", "a width of 0 pixels"},
        {"1 PINHOLE 640 65537 500 500 320 240", image, "", "a height of 65537 pixels"},
        {"1 PINHOLE 640 48.5 500 500 320 240", image, "", "expected height, a whole number from 0 up, found \"48.5\""},
        {"1 PINHOLE 640 480 500 nan 320 240", image, "", "expected a camera parameter, a number, found \"nan\""},
        {"1 PINHOLE 640 480 500 500 1e10 240", image, "", "1e+10 as a camera parameter is beyond"},
        {"1 PINHOLE 640 480 0 500 320 240", image, "",
         "m/cameras.txt: line 1: camera 1 has focal lengths of 0 and 500"},
        {"1 PINHOLE 640 480 500 5001 320 240", image, "", "which no lens has on a picture of 640x480"},
        {"1 PINHOLE 640 480 -500 -500 320 240", image, "", "camera 1 has focal lengths of -500"},
        {"-1 PINHOLE 640 480 1 1 1 1", image, "", "expected the camera id, a whole number from 0 up, found \"-1\""},
        {camera + camera, image, "", "m/cameras.txt: line 2: camera 1 stands twice"},
        {camera + "\n2 SIMPLE_PINHOLE 641 480 500 320 240", image + "2 " + pose + " 2 b.png", "",
         "m/cameras.txt: line 3: camera 2 has pictures of 641x480 pixels, camera 1 of 640x480"},
        {camera, "1 " + pose + " 1\n\n", "", "line 1: the image has no name"},
        {camera, "1 0 0 0 0 0 0 0 1 a.png", "", "line 1: the quaternion is 0"},
        {camera, "1 1 0 0 inf 0 0 0 1 a.png", "", "found \"inf\""},
        {camera, "1 1 0 0 0 0 0 0x1 1 a.png", "", "expected a number of the translation, a number, found \"0x1\""},
        {camera, "1 " + pose + " 1 a\x01.png", "", "has control characters or isn't UTF-8"},
        {camera, "1 " + pose + " 1 \xE4.png", "", "has control characters or isn't UTF-8"},
        {camera, "1 " + pose + " 1 " + QByteArray(5000, 'x'), "", "name is longer than 4096 bytes"},
        {camera, image + image, "", "m/images.txt: line 3: image 1 stands twice"},
        {camera, image + "2 " + pose + " 1 a.png", "",
         "m/images.txt: line 3: the image \"a.png\" stands twice, as image 1 too"},
        {camera, "1 " + pose + " 1 a.png\n2 " + pose + " 1 b.png", "",
         "m/images.txt: line 2: expected the 2D points of the image in line 1"},
        {camera, "1 " + pose + " 1 a.png\n1 2 -1 3", "",
         "POINT3D_ID and again, or an empty line; found the end of the line"},
        {camera, "1 " + pose + " 1 a.png\n1 nan -1", "", "found \"nan\""},
        {camera, "1 " + pose + " 1 a.png\n1 2 -2", "", "found \"-2\""},
        {camera, image, "1 2 3", "m/points3D.txt: line 1: the line ends where a coordinate should stand"},
        {camera, image, "1 2 3 nan 0 0 0 1", "expected a coordinate, a number, found \"nan\""},
        {camera, image, "1 2 3 4 0 0 0 1 7", "the line ends where a 2D point's index of the track should stand"},
        {camera, image, "7 2 3 4 0 0 0 1\n1 2 3 4 0 0 0 1\n\n7 2 3 4 0 0 0 1",
         "m/points3D.txt: line 4: point 7 stands twice"},
        {"\xFF\xFE", image, "", "m/cameras.txt: line 1: the file is UTF-16"},
    };
    for (auto const& c : cases)
    {
        try
        {
            import(read(c.cameras, c.images, c.points));
            ADD_FAILURE() << "read, without: " << c.words;
        }
        catch (KORV_BadFile const& error)
        {
            EXPECT_TRUE(error.message().contains(QString::fromUtf8(c.words)))
                << c.words << "\nis not in: " << error.what();
            EXPECT_FALSE(error.message().contains('\n'));
        }
    }
}

}
