// Writes project files: see the sample in docs/kestrelia-file.md. One function for each
// record, in the order of the file.

#include "kestrelia/KstText.h"
#include "kestrelia/ProjectFile.h"

#include "text/NumberText.h"

#include <cmath>

namespace KestreliaLib
{

namespace
{

class Writer
{
public:
    QByteArray write(Scene const& scene)
    {
        m_out += "kestrelia ";
        Text::appendInteger(m_out, Kst::VERSION);
        endLine();
        start("name");
        name(scene.name);
        endLine();
        if (scene.pose)
        {
            start("pose");
            value(*scene.pose);
            endLine();
        }
        if (scene.referenceFrame)
        {
            start("reference_frame");
            integer(*scene.referenceFrame);
            endLine();
        }
        each(scene.objects, &Writer::object);
        each(scene.shots, &Writer::shot);
        each(scene.meshes, &Writer::mesh);
        return std::move(m_out);
    }

private:
    void object(Object const& object)
    {
        open("object", object.id, object.name, m_objects);
        require(!object.poses.isEmpty(), "an object has no pose");
        samples("pose", object.poses);
        close();
    }

    void shot(Shot const& shot)
    {
        open("shot", shot.number, shot.name, m_shots);
        complain(Kst::faultOf(shot));
        property("size", shot.width, shot.height);
        property("pixel_aspect", shot.pixelAspect);
        property("frame_rate", shot.frameRate);
        property("frames", shot.firstFrame, shot.lastFrame);
        start("interlaced");
        m_out += shot.isInterlaced ? " yes" : " no";
        endLine();
        property("screen_distance", shot.screenDistance);
        if (shot.camera)
        {
            camera(*shot.camera);
        }
        m_groups = Kst::Ids();
        for (TrackerGroup const& group : shot.groups)
        {
            open("group", group.id, group.name, m_groups);
            --m_level;
        }
        each(shot.trackers, &Writer::tracker);
        close();
    }

    void camera(Camera const& camera)
    {
        complain(Kst::faultOf(camera));
        count();
        start("camera");
        name(camera.name);
        endLine();
        ++m_level;
        property("film_back", camera.filmBack.x, camera.filmBack.y);
        samples("pose", camera.poses);
        samples("lens", camera.lens);
        close();
    }

    void tracker(Tracker const& tracker)
    {
        open("tracker", tracker.id, tracker.name, m_trackers);
        reference("group", tracker.group, m_groups);
        reference("object", tracker.object, m_objects);
        samples("image", tracker.image);
        samples("position", tracker.positions);
        close();
    }

    void mesh(Mesh const& mesh)
    {
        complain(Kst::faultOf(mesh));
        open("mesh", mesh.id, mesh.name, m_meshes);
        reference("object", mesh.object, m_objects);
        if (!(mesh.pose == Pose()))
        {
            start("pose");
            value(mesh.pose);
            endLine();
        }
        checkTimes(mesh.vertices);
        for (std::size_t row = 0; row < mesh.vertices.values.size(); ++row)
        {
            start("row");
            time(mesh.vertices, row);
            endLine();
            lines("v", mesh.vertices.values[row]);
        }
        faces("face", mesh.faceCounts, mesh.faceIndices);
        lines("uv", mesh.uvs);
        if (!mesh.uvIndices.empty())
        {
            faces("face_uv", mesh.faceCounts, mesh.uvIndices);
        }
        close();
    }

    // Lines.

    template <typename Record>
    void each(std::vector<Record> const& records, void (Writer::*writeOne)(Record const&))
    {
        for (Record const& record : records)
        {
            (this->*writeOne)(record);
        }
    }

    void open(char const* word, unsigned int id, std::string const& title, Kst::Ids& ids)
    {
        require(ids.take(id), "two records have one id, or one has none");
        count();
        start(word);
        integer(id);
        name(title);
        endLine();
        ++m_level;
    }

    void count()
    {
        require(++m_records <= Kst::MOST_RECORDS, "a project file holds 10000000 records at most");
    }

    void close()
    {
        --m_level;
        start("end");
        endLine();
    }

    void reference(char const* word, unsigned int id, Kst::Ids const& ids)
    {
        if (id != 0)
        {
            require(ids.holds(id), "a record names an object or a group that isn't there");
            start(word);
            integer(id);
            endLine();
        }
    }

    template <typename... Values>
    void property(char const* word, Values... values)
    {
        start(word);
        (put(values), ...);
        endLine();
    }

    template <typename T>
    void checkTimes(Samples<T> const& samples)
    {
        bool const isAtRest = samples.frames.empty() && samples.values.size() <= 1;
        require(isAtRest || samples.frames.size() == samples.values.size(), "a value has no time, or two of them");
        for (std::size_t i = 0; i < samples.frames.size(); ++i)
        {
            bool const ascends = i == 0 || samples.frames[i - 1] < samples.frames[i];
            require(ascends && std::abs(samples.frames[i]) <= Kst::LARGEST_FRAME, "the frames of a value don't ascend");
        }
    }

    template <typename T>
    void time(Samples<T> const& samples, std::size_t index)
    {
        if (samples.isMoving())
        {
            integer(samples.frames[index]);
            return;
        }
        m_out += ' ';
        m_out.append(Kst::AT_REST.data(), static_cast<int>(Kst::AT_REST.size()));
    }

    template <typename T>
    void samples(char const* word, Samples<T> const& samples)
    {
        checkTimes(samples);
        for (std::size_t i = 0; i < samples.values.size(); ++i)
        {
            start(word);
            time(samples, i);
            value(samples.values[i]);
            endLine();
        }
    }

    template <typename T>
    void lines(char const* word, std::vector<T> const& values)
    {
        for (T const& each : values)
        {
            start(word);
            value(each);
            endLine();
        }
    }

    void faces(char const* word, std::vector<int> const& counts, std::vector<int> const& indices)
    {
        std::size_t at = 0;
        for (int const count : counts)
        {
            start(word);
            room(static_cast<std::size_t>(count) * LONGEST_INTEGER);
            for (int corner = 0; corner < count; ++corner)
            {
                integer(indices[at++]);
            }
            endLine();
        }
    }

    void start(char const* word)
    {
        room(LONGEST_LINE);
        m_out.append(2 * m_level, ' ');
        m_out += word;
    }

    void endLine()
    {
        m_out += '\n';
    }

    /// Asks for room before it is used.
    void room(std::size_t bytes)
    {
        require(static_cast<std::size_t>(m_out.size()) + bytes <= Kst::LARGEST_FILE,
                "a project file of more than two gigabytes can't be written");
    }

    // Values, each behind a blank.

    void put(int number)
    {
        integer(number);
    }

    void put(double value)
    {
        number(value);
    }

    void integer(long long value)
    {
        m_out += ' ';
        Text::appendInteger(m_out, value);
    }

    void number(double value)
    {
        require(std::isfinite(value), "a number isn't finite");
        m_out += ' ';
        Text::appendShortest(m_out, value);
    }

    void value(Vector2 const& v)
    {
        number(v.x);
        number(v.y);
    }

    void value(Vector3 const& v)
    {
        number(v.x);
        number(v.y);
        number(v.z);
    }

    void value(Lens const& lens)
    {
        number(lens.focalLength);
        number(lens.shift);
    }

    void value(Pose const& pose)
    {
        for (double const component : pose.axes)
        {
            number(component);
        }
        value(pose.position);
    }

    void name(std::string const& text)
    {
        constexpr char HEX[] = "0123456789abcdef";
        room(text.size() * LONGEST_ESCAPE + LONGEST_LINE);
        m_out += " \"";
        for (char const c : text)
        {
            if (Kst::isControl(c))
            {
                auto const code = static_cast<unsigned char>(c);
                m_out += "\\x";
                m_out += HEX[code >> 4U];
                m_out += HEX[code & 15U];
                continue;
            }
            if (c == '"' || c == '\\')
            {
                m_out += '\\';
            }
            m_out += c;
        }
        m_out += '"';
    }

    static void complain(char const* fault)
    {
        if (fault)
        {
            throw FileError(QLatin1String(fault));
        }
    }

    static void require(bool isRight, char const* fault)
    {
        complain(isRight ? nullptr : fault);
    }

    // In bytes: a line but for names and faces, an index and its blank, a character.
    static constexpr std::size_t LONGEST_LINE = 512;
    static constexpr std::size_t LONGEST_INTEGER = 12;
    static constexpr std::size_t LONGEST_ESCAPE = 4;

    QByteArray m_out;
    int m_level = 0;
    std::size_t m_records = 0;
    Kst::Ids m_objects;
    Kst::Ids m_shots;
    Kst::Ids m_meshes;
    Kst::Ids m_trackers;
    Kst::Ids m_groups;
};

}

FileError::FileError(QString const& text) : std::runtime_error(text.toStdString())
{
}

FileError::~FileError() = default;

QString FileError::text() const
{
    return QString::fromUtf8(what());
}

QByteArray writeProject(Scene const& scene)
{
    return Writer().write(scene);
}

}
