// Models from .obj files: what modelling programs write, and what isn't a model.

#include "Host/FileAssetMeshes.h"
#include "Host/KORV_Exception.h"
#include "Refusals.h"
#include "ScratchFolder.h"
#include "SolveBuilder.h"
#include "marlohost/ObjFile.h"

#include <gtest/gtest.h>

using MarloHost::readObj;

namespace
{

TEST(ObjFile, ObjectsBecomeMeshesWithTheVerticesThatTheyUse)
{
    auto const meshes = readObj("# a model\r\n"
                                "mtllib a.mtl\r\n"
                                "v 0 0 0\r\nv 9 9 9\r\nv 1 0 0 0.5 0.5 0.5\r\nv +1 .5 1e-3 1\r\n"
                                "vt 0.25 0.75\r\nvt 1 0 0\r\nvt .5\r\nvn 0 0 1\r\n"
                                "f 4/2/1 3//1 1/1 # no place at one corner\r\n"
                                "o Two  words \r\ng part\r\nusemtl red\r\ns off\r\n"
                                "f -4/-3 -2/-2 \\\r\n -1/-1\r\n"
                                "f 1/3 3/1 4/2 2/2\r\n"
                                "l 1 2\r\np 1\r\no empty\r\nv 5 5 5\r\n",
                                "a.obj");
    ASSERT_EQ(meshes.size(), 2U);
    ZN::AssetMesh const& first = meshes[0];
    EXPECT_EQ(first.name, QString());
    ASSERT_EQ(first.positions.size(), 3U);
    EXPECT_EQ(first.positions[2].y, 0.5);
    EXPECT_EQ(first.faceCounts, (std::vector<int>{3}));
    EXPECT_EQ(first.faceIndices, (std::vector<int>{2, 1, 0}));
    EXPECT_TRUE(first.uvs.empty() && first.uvIndices.empty());

    ZN::AssetMesh const& second = meshes[1];
    EXPECT_EQ(second.name, QString("Two  words"));
    ASSERT_EQ(second.positions.size(), 4U);
    EXPECT_EQ(second.positions[1].x, 9.0);
    EXPECT_EQ(second.faceCounts, (std::vector<int>{3, 4}));
    EXPECT_EQ(second.faceIndices, (std::vector<int>{0, 2, 3, 0, 2, 3, 1}));
    ASSERT_EQ(second.uvs.size(), 3U);
    EXPECT_EQ(second.uvs[0].y, 0.75);
    EXPECT_EQ(second.uvs[2].x, 0.5);
    EXPECT_EQ(second.uvIndices, (std::vector<int>{0, 1, 2, 2, 0, 1, 1}));
}

TEST(ObjFile, WhatIsNotAModelIsRefusedWithItsLine)
{
    struct
    {
        char const* line;
        char const* said;
    } const refusals[] = {
        {"v 1 2", "1 numbers or more are missing"},
        {"v 1 2 3 4 5 6 7 8", "more than 7 numbers"},
        {"v 1 2 nan", "\"nan\" isn't a finite number"},
        {"v 1 2 1e999", "\"1e999\" isn't a finite number"},
        {"v 1 2 1,5", "\"1,5\" isn't a finite number"},
        {"f 1 2", "a face has three vertices or more"},
        {"f 0 1 2", "there is no vertex 0; 3 stand above"},
        {"f 1 2 4", "there is no vertex 4; 3 stand above"},
        {"f 1 2 -4", "there is no vertex -4; 3 stand above"},
        {"f 1 2 99999999999", "\"99999999999\" isn't an index"},
        {"f 1/1 2/1 3/2", "there is no place in the texture 2; 1 stand above"},
        {"f 1/ 2 3", "\"1/\" isn't a vertex of a face"},
        {"f 1/1/1/1 2 3", "\"1/1/1/1\" isn't a vertex of a face"},
        {"f 1//x 2 3", "\"x\" isn't an index"},
        {"f / 2 3", "isn't an"},
        {"surf 0 1 0 1 1 2 3", "free-form surfaces aren't read"},
        {"{\"solve\": 1}", "unknown word \"{"},
        {"\x01\x02", "unknown word"},
    };
    for (auto const& [line, said] : refusals)
    {
        QByteArray const text = QByteArray("v 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\n") + line + "\nf 1 2 3\n";
        try
        {
            readObj(text, "a.obj");
            ADD_FAILURE() << line << " was accepted";
        }
        catch (KORV_BadFile const& error)
        {
            EXPECT_TRUE(error.message().startsWith("a.obj: line 5: ")) << error.what();
            EXPECT_TRUE(error.message().contains(said)) << error.what();
        }
    }
    EXPECT_TRUE(readObj("", "a.obj").empty());
    EXPECT_TRUE(readObj("\\", "a.obj").empty());
}

// The room for old indices isn't cleared for each object.
TEST(ObjFile, ManySmallObjectsCostWhatTheyHold)
{
    QByteArray text;
    constexpr int OBJECTS = 30000;
    for (int i = 0; i < OBJECTS; ++i)
    {
        text += "o x\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf -3 -2 -1\n";
    }
    auto const meshes = readObj(text, "a.obj");
    ASSERT_EQ(meshes.size(), static_cast<std::size_t>(OBJECTS));
    EXPECT_EQ(meshes.back().faceIndices, (std::vector<int>{0, 1, 2}));
}

TEST(ObjFile, IsFoundBesideTheProjectOrToldWhyNot)
{
    QTemporaryDir folder;
    QDir(folder.path()).mkpath("models.obj");
    QFile model(folder.filePath("one.OBJ"));
    ASSERT_TRUE(model.open(QIODevice::WriteOnly));
    model.write("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    model.close();
    SolveBuilder builder;
    QString const paths[] = {"one.OBJ", folder.filePath("one.OBJ"), "none.obj", "models.obj", "one.fbx"};
    for (QString const& path : paths)
    {
        builder.solve().assets.push_back({path, QString()});
    }
    auto const project = builder.make(folder.filePath("project.json"));
    auto const& assets = project->scene3DParameters().fileAssets();
    char const* const failures[] = {"", "", "none.obj: there is no such file", "models.obj: there is no such file",
                                    "one.fbx: only .obj files are read"};
    for (int i = 0; i < assets.size(); ++i)
    {
        ZN::AssetMeshes const read = ZN::readAssetMeshes(*assets[i], *project);
        EXPECT_EQ(read.failure, QString(failures[i]));
        EXPECT_EQ(read.meshes.size(), read.failure.isEmpty() ? 1U : 0U);
    }
}

}
