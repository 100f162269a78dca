// Wavefront .obj, as any modelling program writes it:
//
//   o Cube
//   v -1 0 0
//   vt 0 0
//   f 1/1 2/2 -1/-1          vertex, place in the texture; from 1, or back from the last one

#include "marlohost/ObjFile.h"

#include "TextLines.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace MarloHost
{

namespace
{

constexpr int NONE = -1;
constexpr std::size_t FEWEST_CORNERS = 3;

// What says nothing about the shape.
constexpr std::array<std::string_view, 18> PASSED_OVER = {
    "vn", "vp", "g",   "s",     "mg",       "usemtl",   "mtllib",     "usemap",    "maplib",
    "l",  "p",  "lod", "bevel", "c_interp", "d_interp", "shadow_obj", "trace_obj", "stech"};

constexpr std::array<std::string_view, 16> FREE_FORM = {"cstype", "deg",  "bmat",  "step", "curv", "curv2",
                                                        "surf",   "parm", "trim",  "hole", "scrv", "sp",
                                                        "end",    "con",  "ctech", "call"};

template <std::size_t N>
bool isOneOf(std::array<std::string_view, N> const& words, Token word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// A corner of a face: indices from 0, `uv` NONE for none.
struct Corner
{
    int vertex;
    int uv;
};

class ObjReader
{
public:
    ObjReader(QByteArray const& text, QString const& fileName) : m_lines(text, fileName)
    {
    }

    std::vector<ZN::AssetMesh> read()
    {
        while (!m_lines.atEnd())
        {
            m_line = m_lines.take();
            joinContinued();
            m_line = m_line.substr(0, std::min(m_line.find('#'), m_line.size()));
            Token const word = takeWord();
            if (!word.empty())
            {
                readStatement(word);
            }
        }
        endMesh();
        return std::move(m_meshes);
    }

private:
    void readStatement(Token word)
    {
        if (word == "v")
        {
            readVertex();
        }
        else if (word == "vt")
        {
            readUv();
        }
        else if (word == "f" || word == "fo")
        {
            readFace();
        }
        else if (word == "o")
        {
            endMesh();
            m_name = textOf(trimmed(m_line));
        }
        else if (isOneOf(FREE_FORM, word))
        {
            m_lines.fail(QStringLiteral("curves and free-form surfaces aren't read"));
        }
        else if (!isOneOf(PASSED_OVER, word))
        {
            m_lines.fail(QStringLiteral("unknown word ") + quoted(word));
        }
    }

    // Behind the three coordinates there may be a weight, or a colour and a weight.
    void readVertex()
    {
        constexpr int MOST_NUMBERS = 7;
        std::array<double, MOST_NUMBERS> const numbers = readNumbers<MOST_NUMBERS>(3);
        if (m_vertices.size() >= static_cast<std::size_t>(ObjLimits::VERTICES))
        {
            m_lines.fail(QStringLiteral("more than %1 vertices").arg(ObjLimits::VERTICES));
        }
        m_vertices.push_back({numbers[0], numbers[1], numbers[2]});
    }

    void readUv()
    {
        std::array<double, 3> const numbers = readNumbers<3>(1);
        if (m_uvs.size() >= static_cast<std::size_t>(ObjLimits::VERTICES))
        {
            m_lines.fail(QStringLiteral("more than %1 places in the texture").arg(ObjLimits::VERTICES));
        }
        m_uvs.push_back({numbers[0], numbers[1]});
    }

    void readFace()
    {
        std::size_t const start = m_corners.size();
        for (Token word = takeWord(); !word.empty(); word = takeWord())
        {
            m_corners.push_back(corner(word));
        }
        std::size_t const count = m_corners.size() - start;
        if (count < FEWEST_CORNERS)
        {
            m_lines.fail(QStringLiteral("a face has three vertices or more"));
        }
        m_faceCounts.push_back(static_cast<int>(count));
    }

    // "vertex", "vertex/uv", "vertex//normal" or "vertex/uv/normal".
    Corner corner(Token word) const
    {
        std::size_t const slash = std::min(word.find('/'), word.size());
        Corner corner{index(word.substr(0, slash), m_vertices.size(), "vertex"), NONE};
        Token rest = word.substr(std::min(slash + 1, word.size()));
        std::size_t const second = std::min(rest.find('/'), rest.size());
        Token const uv = rest.substr(0, second);
        Token const normal = rest.substr(std::min(second + 1, rest.size()));
        bool const endsInSlash = word.back() == '/';
        if (endsInSlash || normal.find('/') != Token::npos)
        {
            m_lines.fail(quoted(word) + QStringLiteral(" isn't a vertex of a face"));
        }
        if (!uv.empty())
        {
            corner.uv = index(uv, m_uvs.size(), "place in the texture");
        }
        if (!normal.empty())
        {
            integer(normal);
        }
        return corner;
    }

    int index(Token word, std::size_t count, char const* what) const
    {
        long long const given = integer(word);
        auto const size = static_cast<long long>(count);
        long long const index = given < 0 ? size + given : given - 1;
        if (given == 0 || index < 0 || index >= size)
        {
            m_lines.fail(QStringLiteral("there is no %1 %2; %3 stand above this line")
                             .arg(QLatin1String(what))
                             .arg(given)
                             .arg(size));
        }
        return static_cast<int>(index);
    }

    int integer(Token word) const
    {
        int value = 0;
        auto const [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (error != std::errc() || end != word.data() + word.size())
        {
            m_lines.fail(quoted(word) + QStringLiteral(" isn't an index"));
        }
        return value;
    }

    template <std::size_t MOST>
    std::array<double, MOST> readNumbers(std::size_t least)
    {
        std::array<double, MOST> numbers{};
        std::size_t count = 0;
        for (Token word = takeWord(); !word.empty(); word = takeWord())
        {
            std::optional<double> const number = numberOf(word);
            if (!number)
            {
                m_lines.fail(quoted(word) + QStringLiteral(" isn't a finite number"));
            }
            if (count == MOST)
            {
                m_lines.fail(QStringLiteral("more than %1 numbers").arg(MOST));
            }
            numbers[count++] = *number;
        }
        if (count < least)
        {
            m_lines.fail(QStringLiteral("%1 numbers or more are missing").arg(least - count));
        }
        return numbers;
    }

    // Faces of an object become a mesh with the vertices and places that they use.
    void endMesh()
    {
        if (!m_faceCounts.empty())
        {
            ZN::AssetMesh mesh;
            mesh.name = m_name;
            mesh.faceCounts = std::move(m_faceCounts);
            mesh.faceIndices = indicesInto<&Corner::vertex>(m_vertices, m_newVertex, mesh.positions);
            bool const hasUvs =
                std::all_of(m_corners.begin(), m_corners.end(), [](Corner const& corner) { return corner.uv != NONE; });
            if (hasUvs)
            {
                mesh.uvIndices = indicesInto<&Corner::uv>(m_uvs, m_newUv, mesh.uvs);
            }
            m_meshes.push_back(std::move(mesh));
        }
        m_faceCounts.clear();
        m_corners.clear();
    }

    /// The corners' indices into `taken`, which gets those of `all` that they name, in the same
    /// order. Takes time for what is named only, however many objects there are.
    ///
    /// @param fresh room that is kept from one object to the next
    template <int Corner::*member, typename T>
    std::vector<int> indicesInto(std::vector<T> const& all, std::vector<int>& fresh, std::vector<T>& taken) const
    {
        fresh.resize(all.size(), NONE);
        std::vector<int> named;
        for (Corner const& corner : m_corners)
        {
            int& mark = fresh[static_cast<std::size_t>(corner.*member)];
            if (mark == NONE)
            {
                mark = 0;
                named.push_back(corner.*member);
            }
        }
        std::sort(named.begin(), named.end());
        taken.reserve(named.size());
        for (int const index : named)
        {
            fresh[static_cast<std::size_t>(index)] = static_cast<int>(taken.size());
            taken.push_back(all[static_cast<std::size_t>(index)]);
        }
        std::vector<int> indices;
        indices.reserve(m_corners.size());
        for (Corner const& corner : m_corners)
        {
            indices.push_back(fresh[static_cast<std::size_t>(corner.*member)]);
        }
        for (int const index : named)
        {
            fresh[static_cast<std::size_t>(index)] = NONE;
        }
        return indices;
    }

    // Words of the line.

    static Token trimmed(Token text)
    {
        while (!text.empty() && isBlank(text.front()))
        {
            text.remove_prefix(1);
        }
        while (!text.empty() && isBlank(text.back()))
        {
            text.remove_suffix(1);
        }
        return text;
    }

    // A backslash at the end of a line joins the next one to it.
    void joinContinued()
    {
        if (m_line.empty() || m_line.back() != '\\')
        {
            return;
        }
        m_joined.clear();
        while (!m_line.empty() && m_line.back() == '\\')
        {
            m_joined.append(m_line.data(), m_line.size() - 1);
            m_joined += ' ';
            m_line = m_lines.atEnd() ? Token() : m_lines.take();
        }
        m_joined.append(m_line.data(), m_line.size());
        m_line = m_joined;
    }

    Token takeWord()
    {
        m_line = trimmed(m_line);
        auto const end = std::find_if(m_line.begin(), m_line.end(), isBlank);
        Token const word = m_line.substr(0, static_cast<std::size_t>(end - m_line.begin()));
        m_line.remove_prefix(word.size());
        return word;
    }

    TextLines m_lines;
    Token m_line;
    std::string m_joined;

    std::vector<Sabrel::Vector3> m_vertices;
    std::vector<Mtx_Vector2> m_uvs;

    // Of the object that is being read.
    QString m_name;
    std::vector<int> m_faceCounts;
    std::vector<Corner> m_corners;

    // Where vertices and places of the file went in the mesh that is being made.
    std::vector<int> m_newVertex;
    std::vector<int> m_newUv;
    std::vector<ZN::AssetMesh> m_meshes;
};

}

std::vector<ZN::AssetMesh> readObj(QByteArray const& text, QString const& fileName)
{
    return ObjReader(text, fileName).read();
}

}
