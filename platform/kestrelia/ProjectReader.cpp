// Reads project files: see docs/kestrelia-file.md. One function for each record. Memory
// grows with what was read, never with a number that the file gives.

#include "kestrelia/KstLines.h"
#include "kestrelia/ProjectFile.h"

namespace KestreliaLib
{

namespace
{

/// Which of the lines that stand once were there.
class Once
{
public:
    explicit Once(KstLines const& lines) : m_lines(lines)
    {
    }

    /// Refuses the second line of a word.
    void take(unsigned int bit)
    {
        if ((m_seen & bit) != 0)
        {
            m_lines.fail("this line stands twice");
        }
        m_seen |= bit;
    }

    void require(unsigned int bit, char const* word) const
    {
        if ((m_seen & bit) == 0)
        {
            m_lines.fail(QStringLiteral("a record ends without its line \"%1\"").arg(QLatin1String(word)));
        }
    }

private:
    KstLines const& m_lines;
    unsigned int m_seen = 0;
};

class Reader
{
public:
    Reader(QByteArray const& text, QString const& fileName) : m_lines(text, fileName)
    {
    }

    Scene read()
    {
        readVersion();
        Once once(m_lines);
        bool hasRecords = false;
        while (m_lines.next())
        {
            std::string_view const word = m_lines.word();
            if (word == "object" || word == "shot" || word == "mesh")
            {
                hasRecords = true;
                readRecord(word);
            }
            else if (hasRecords)
            {
                m_lines.failWord();
            }
            else
            {
                readSceneLine(word, once);
            }
        }
        return std::move(m_scene);
    }

private:
    void readVersion()
    {
        if (!m_lines.next() || m_lines.word() != "kestrelia")
        {
            m_lines.fail("the file doesn't start with \"kestrelia\" and its version");
        }
        m_lines.integer(Kst::VERSION, Kst::VERSION);
        m_lines.endLine();
    }

    void readSceneLine(std::string_view word, Once& once)
    {
        if (word == "name")
        {
            once.take(1);
            m_scene.name = m_lines.name();
        }
        else if (word == "pose")
        {
            once.take(2);
            m_scene.pose = pose();
        }
        else if (word == "reference_frame")
        {
            once.take(4);
            m_scene.referenceFrame = m_lines.frame();
        }
        else
        {
            m_lines.failWord();
        }
        m_lines.endLine();
    }

    void readRecord(std::string_view word)
    {
        if (word == "object")
        {
            m_scene.objects.push_back(object());
        }
        else if (word == "shot")
        {
            m_scene.shots.push_back(shot());
        }
        else
        {
            m_scene.meshes.push_back(mesh());
        }
    }

    // Records. Each reads its own first line to its "end".

    Object object()
    {
        Object object;
        readIdAndName(object.id, object.name, m_objects);
        while (nextOfRecord())
        {
            expect("pose");
            sample(object.poses, [this] { return pose(); });
        }
        if (object.poses.isEmpty())
        {
            m_lines.fail("an object has no pose");
        }
        return object;
    }

    Shot shot()
    {
        Shot shot;
        readIdAndName(shot.number, shot.name, m_shots);
        m_groups = Kst::Ids();
        Once once(m_lines);
        while (nextOfRecord())
        {
            if (m_lines.word() == "group")
            {
                TrackerGroup group;
                readIdAndName(group.id, group.name, m_groups);
                shot.groups.push_back(std::move(group));
            }
            else if (m_lines.word() == "tracker")
            {
                shot.trackers.push_back(tracker());
            }
            else if (m_lines.word() == "camera")
            {
                once.take(CAMERA);
                shot.camera = camera();
            }
            else
            {
                readShotLine(shot, once);
            }
        }
        constexpr char const* LINES[] = {"size",   "pixel_aspect", "frame_rate",
                                         "frames", "interlaced",   "screen_distance"};
        for (unsigned int line = 0; line < 6; ++line)
        {
            once.require(1U << line, LINES[line]);
        }
        complain(Kst::faultOf(shot));
        return shot;
    }

    static constexpr unsigned int CAMERA = 64;

    void readShotLine(Shot& shot, Once& once)
    {
        std::string_view const word = m_lines.word();
        if (word == "size")
        {
            once.take(1);
            shot.width = m_lines.integer(1, Kst::LARGEST_SIDE);
            shot.height = m_lines.integer(1, Kst::LARGEST_SIDE);
        }
        else if (word == "pixel_aspect")
        {
            once.take(2);
            shot.pixelAspect = m_lines.number();
        }
        else if (word == "frame_rate")
        {
            once.take(4);
            shot.frameRate = m_lines.number();
        }
        else if (word == "frames")
        {
            once.take(8);
            shot.firstFrame = m_lines.frame();
            shot.lastFrame = m_lines.frame();
        }
        else if (word == "interlaced")
        {
            once.take(16);
            shot.isInterlaced = yesOrNo();
        }
        else if (word == "screen_distance")
        {
            once.take(32);
            shot.screenDistance = m_lines.number();
        }
        else
        {
            m_lines.failWord();
        }
        m_lines.endLine();
    }

    Camera camera()
    {
        Camera camera;
        countRecord();
        camera.name = m_lines.name();
        m_lines.endLine();
        Once once(m_lines);
        while (nextOfRecord())
        {
            if (m_lines.word() == "film_back")
            {
                once.take(1);
                camera.filmBack = vector2();
                m_lines.endLine();
            }
            else if (m_lines.word() == "pose")
            {
                sample(camera.poses, [this] { return pose(); });
            }
            else
            {
                expect("lens");
                sample(camera.lens, [this] { return lens(); });
            }
        }
        once.require(1, "film_back");
        complain(Kst::faultOf(camera));
        return camera;
    }

    Tracker tracker()
    {
        Tracker tracker;
        readIdAndName(tracker.id, tracker.name, m_trackers);
        Once once(m_lines);
        while (nextOfRecord())
        {
            std::string_view const word = m_lines.word();
            if (word == "group")
            {
                once.take(1);
                tracker.group = reference(m_groups, "there is no such group above in this shot");
            }
            else if (word == "object")
            {
                once.take(2);
                tracker.object = reference(m_objects, "there is no such object above");
            }
            else if (word == "image")
            {
                sample(tracker.image, [this] { return vector2(); });
            }
            else
            {
                expect("position");
                sample(tracker.positions, [this] { return vector3(); });
            }
        }
        return tracker;
    }

    // The lines of a mesh come in the order of these stages.
    enum MeshStage
    {
        MeshHead,
        MeshRows,
        MeshFaces,
        MeshUvs,
        MeshFaceUvs
    };

    Mesh mesh()
    {
        Mesh mesh;
        readIdAndName(mesh.id, mesh.name, m_meshes);
        Once once(m_lines);
        MeshStage stage = MeshHead;
        std::size_t faceUvs = 0;
        while (nextOfRecord())
        {
            readMeshLine(mesh, stage, once, faceUvs);
        }
        if (faceUvs != 0 && faceUvs != mesh.faceCounts.size())
        {
            m_lines.fail("a mesh has a \"face_uv\" for each face, or none");
        }
        complain(Kst::faultOf(mesh));
        return mesh;
    }

    void readMeshLine(Mesh& mesh, MeshStage& stage, Once& once, std::size_t& faceUvs)
    {
        std::string_view const word = m_lines.word();
        if (word == "object" || word == "pose")
        {
            advance(stage, MeshHead);
            once.take(word == "object" ? 1 : 2);
            if (word == "object")
            {
                mesh.object = reference(m_objects, "there is no such object above");
                return;
            }
            mesh.pose = pose();
            m_lines.endLine();
        }
        else if (word == "row")
        {
            advance(stage, MeshRows);
            sample(mesh.vertices, [] { return std::vector<Vector3>(); });
        }
        else if (word == "v" && !mesh.vertices.isEmpty())
        {
            advance(stage, MeshRows);
            mesh.vertices.values.back().push_back(vector3());
            m_lines.endLine();
        }
        else if (word == "face")
        {
            advance(stage, MeshFaces);
            mesh.faceCounts.push_back(readFace(mesh.faceIndices));
        }
        else if (word == "uv")
        {
            advance(stage, MeshUvs);
            mesh.uvs.push_back(vector2());
            m_lines.endLine();
        }
        else
        {
            expect("face_uv");
            advance(stage, MeshFaceUvs);
            int const corners = readFace(mesh.uvIndices);
            if (faceUvs >= mesh.faceCounts.size() || mesh.faceCounts[faceUvs] != corners)
            {
                m_lines.fail("a \"face_uv\" has as many indices as its face");
            }
            ++faceUvs;
        }
    }

    void advance(MeshStage& stage, MeshStage to) const
    {
        if (to < stage)
        {
            m_lines.fail("the lines of a mesh stand in another order");
        }
        stage = to;
    }

    int readFace(std::vector<int>& indices)
    {
        int corners = 0;
        while (!m_lines.atEndOfLine())
        {
            indices.push_back(m_lines.integer(0, LARGEST_INDEX));
            ++corners;
        }
        if (corners < Kst::FEWEST_CORNERS)
        {
            m_lines.fail("a face has three vertices or more");
        }
        return corners;
    }

    // Parts of lines.

    void readIdAndName(unsigned int& id, std::string& name, Kst::Ids& ids)
    {
        countRecord();
        id = m_lines.id();
        name = m_lines.name();
        m_lines.endLine();
        if (!ids.take(id))
        {
            m_lines.fail(QStringLiteral("the id %1 is taken").arg(id));
        }
    }

    void countRecord()
    {
        if (++m_records > Kst::MOST_RECORDS)
        {
            m_lines.fail("more than 10000000 records");
        }
    }

    /// Goes to the next line of a record; false at its end.
    bool nextOfRecord()
    {
        if (!m_lines.next())
        {
            m_lines.fail("the file ends within a record");
        }
        if (m_lines.word() != "end")
        {
            return true;
        }
        m_lines.endLine();
        return false;
    }

    void expect(std::string_view word) const
    {
        if (m_lines.word() != word)
        {
            m_lines.failWord();
        }
    }

    void complain(char const* fault) const
    {
        if (fault)
        {
            m_lines.fail(fault);
        }
    }

    unsigned int reference(Kst::Ids const& ids, char const* failure)
    {
        unsigned int const id = m_lines.id();
        m_lines.endLine();
        if (!ids.holds(id))
        {
            m_lines.fail(failure);
        }
        return id;
    }

    template <typename T, typename Read>
    void sample(Samples<T>& samples, Read const& read)
    {
        std::optional<int> const time = m_lines.time();
        if (!samples.isEmpty() && (!time || !samples.isMoving()))
        {
            m_lines.fail("what is at rest has one line");
        }
        if (time && samples.isMoving() && *time <= samples.frames.back())
        {
            m_lines.fail("the frames don't ascend");
        }
        if (time)
        {
            samples.frames.push_back(*time);
        }
        samples.values.push_back(read());
        m_lines.endLine();
    }

    bool yesOrNo()
    {
        std::string_view const word = m_lines.token();
        if (word != "yes" && word != "no")
        {
            m_lines.fail("\"yes\" or \"no\" is missing");
        }
        return word == "yes";
    }

    Vector2 vector2()
    {
        double const x = m_lines.number();
        return {x, m_lines.number()};
    }

    Vector3 vector3()
    {
        double const x = m_lines.number();
        double const y = m_lines.number();
        return {x, y, m_lines.number()};
    }

    Lens lens()
    {
        double const focalLength = m_lines.number();
        return {focalLength, m_lines.number()};
    }

    Pose pose()
    {
        Pose pose;
        for (double& component : pose.axes)
        {
            component = m_lines.number();
        }
        pose.position = vector3();
        return pose;
    }

    static constexpr int LARGEST_INDEX = 2147483647;

    KstLines m_lines;
    Scene m_scene;
    std::size_t m_records = 0;
    Kst::Ids m_objects;
    Kst::Ids m_shots;
    Kst::Ids m_meshes;
    Kst::Ids m_trackers;
    Kst::Ids m_groups;
};

}

Scene readProject(QByteArray const& text, QString const& fileName)
{
    return Reader(text, fileName).read();
}

}
