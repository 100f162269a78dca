#pragma once
// Alembic archives in memory, opened.

#include <Alembic/AbcCoreOgawa/All.h>
#include <Alembic/AbcGeom/All.h>

#include <QByteArray>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Abc = Alembic::AbcGeom;

/// An archive of bytes.
/// @throws Alembic::Util::Exception when they aren't a whole archive
class OpenArchive
{
public:
    explicit OpenArchive(QByteArray const& bytes) : m_stream(std::make_shared<std::istringstream>(bytes.toStdString()))
    {
        std::vector<std::istream*> streams{m_stream.get()};
        m_archive = Abc::IArchive(Alembic::AbcCoreOgawa::ReadArchive(streams)(""));
    }

    Abc::IArchive archive() const
    {
        return m_archive;
    }

    Abc::IObject top() const
    {
        return m_archive.getTop();
    }

    /// The object of a path of names with slashes between them.
    Abc::IObject object(std::string const& path) const
    {
        Abc::IObject at = top();
        std::istringstream names(path);
        for (std::string name; std::getline(names, name, '/');)
        {
            at = Abc::IObject(at, name);
        }
        return at;
    }

    /// Of the objects right below a path.
    std::vector<std::string> names(std::string const& path = std::string()) const
    {
        Abc::IObject const parent = object(path);
        std::vector<std::string> list;
        for (std::size_t i = 0; i < parent.getNumChildren(); ++i)
        {
            list.push_back(parent.getChildHeader(i).getName());
        }
        return list;
    }

    Abc::IXformSchema transform(std::string const& path) const
    {
        return Abc::IXform(object(path), Abc::kWrapExisting).getSchema();
    }

    /// What a transform does in a sample, acting on row vectors.
    Imath::M44d matrix(std::string const& path, int sample = 0) const
    {
        return transform(path).getValue(Abc::ISampleSelector(static_cast<Abc::index_t>(sample))).getMatrix();
    }

private:
    std::shared_ptr<std::istringstream> m_stream;
    Abc::IArchive m_archive;
};
