// A built scene as FBX (a camera and 10 nodes with 1,000 keyed frames, 1,000 nulls, a mesh of
// 100,000 vertices) against a memcpy of its arrays and zlib over them at the same level, and
// against assimp's exporter where that was found when this was built. Then 100,000 nodes of one
// name.

#include "Ratios.h"

#include "FbxBinary.h"

#include <benchmark/benchmark.h>
#include <fbxsdk.h>
#include <zlib.h>

#ifdef MARLO_BENCH_ASSIMP
#include <assimp/cexport.h>
#include <assimp/cimport.h>
#include <assimp/scene.h>
#endif

#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace
{

constexpr int frameCount = 1000;
constexpr int movingNodes = 10;
constexpr int nulls = 1000;
constexpr int columns = 400;
constexpr int rows = 250;
constexpr int manyNodes = 100000;

struct ManagerEnd
{
    void operator()(FbxManager* manager) const
    {
        manager->Destroy();
    }
};

using Manager = std::unique_ptr<FbxManager, ManagerEnd>;

void addKeys(FbxAnimCurve* curve, int seed)
{
    for (int frame = 0; frame < frameCount; ++frame)
    {
        FbxTime time;
        time.SetTime(0, 0, 0, 1001 + frame, 0, 0, FbxTime::eFrames24);
        int const key = curve->KeyAdd(time);
        curve->KeySet(key, time, static_cast<float>(std::sin(frame * 0.01 + seed)),
                      FbxAnimCurveDef::eInterpolationLinear);
    }
}

void addMotion(FbxNode* node, FbxAnimLayer* layer, int seed)
{
    for (char const* const channel : {"X", "Y", "Z"})
    {
        addKeys(node->LclTranslation.GetCurve(layer, channel, true), ++seed);
        addKeys(node->LclRotation.GetCurve(layer, channel, true), ++seed);
    }
}

void addMesh(FbxScene* scene)
{
    FbxMesh* const mesh = FbxMesh::Create(scene, "mesh");
    mesh->InitControlPoints(columns * rows);
    FbxGeometryElementUV* const uvs = mesh->CreateElementUV("mesh");
    uvs->SetMappingMode(FbxLayerElement::eByControlPoint);
    uvs->SetReferenceMode(FbxLayerElement::eDirect);
    for (int i = 0; i < columns * rows; ++i)
    {
        double const u = i % columns / (columns - 1.0);
        double const v = i / columns / (rows - 1.0);
        mesh->SetControlPointAt(FbxVector4(u * 4, v * 3 + 0.1 * std::sin(20 * u), 0.2 * std::cos(30 * v + u)), i);
        uvs->GetDirectArray().Add(FbxVector2(u, v));
    }
    for (int row = 0; row + 1 < rows; ++row)
    {
        for (int column = 0; column + 1 < columns; ++column)
        {
            int const corner = row * columns + column;
            mesh->BeginPolygon();
            for (int const point : {corner, corner + 1, corner + columns + 1, corner + columns})
            {
                mesh->AddPolygon(point);
            }
            mesh->EndPolygon();
        }
    }
    FbxNode* const node = FbxNode::Create(scene, "mesh");
    node->SetNodeAttribute(mesh);
    scene->GetRootNode()->AddChild(node);
}

FbxScene* buildShot(FbxManager* manager)
{
    FbxScene* const scene = FbxScene::Create(manager, "shot");
    FbxAnimLayer* const layer = FbxAnimLayer::Create(FbxAnimStack::Create(scene, "take"), "layer");
    FbxNode* const camera = FbxNode::Create(scene, "camera");
    camera->SetNodeAttribute(FbxCamera::Create(scene, "camera"));
    addMotion(camera, layer, 0);
    addKeys(camera->GetCamera()->FocalLength.GetCurve(layer, true), 7);
    scene->GetRootNode()->AddChild(camera);
    for (int i = 0; i < movingNodes + nulls; ++i)
    {
        std::string const name = "point" + std::to_string(i);
        FbxNode* const node = FbxNode::Create(scene, name.c_str());
        node->SetNodeAttribute(FbxNull::Create(scene, name.c_str()));
        node->LclTranslation.Set(FbxDouble3(std::sin(i * 0.7), std::cos(i * 1.3), -0.001 * i));
        scene->GetRootNode()->AddChild(node);
        if (i < movingNodes)
        {
            addMotion(node, layer, 10 * i);
        }
    }
    addMesh(scene);
    return scene;
}

QString folder()
{
    static QTemporaryDir const directory;
    return directory.path();
}

void write(benchmark::State& state, FbxScene* scene, int format)
{
    std::string const name = QFile::encodeName(folder() + QStringLiteral("/shot.fbx")).toStdString();
    for (auto _ : state)
    {
        FbxExporter* const exporter = FbxExporter::Create(scene->GetFbxManager(), "");
        if (!exporter->Initialize(name.c_str(), format) || !exporter->Export(scene))
        {
            state.SkipWithError(exporter->GetStatus().GetErrorString());
            break;
        }
        exporter->Destroy();
    }
    state.counters["bytes"] = static_cast<double>(QFile(QString::fromStdString(name)).size());
}

void writeShot(benchmark::State& state, int format)
{
    Manager const manager(FbxManager::Create());
    write(state, buildShot(manager.get()), format);
}

void writeManyOfOneName(benchmark::State& state, int format)
{
    Manager const manager(FbxManager::Create());
    FbxScene* const scene = FbxScene::Create(manager.get(), "many");
    for (int i = 0; i < manyNodes; ++i)
    {
        scene->GetRootNode()->AddChild(FbxNode::Create(scene, "point"));
    }
    write(state, scene, format);
}

/// The shot's arrays, as they stand in the file before zlib.
std::vector<std::string> const& arrays()
{
    static std::vector<std::string> const all = []
    {
        std::vector<std::string> result;
        auto const add = [&](auto const& values)
        { result.emplace_back(reinterpret_cast<char const*>(values.data()), values.size() * sizeof(values[0])); };
        Manager const manager(FbxManager::Create());
        FbxScene* const scene = buildShot(manager.get());
        FbxMesh* const mesh = scene->GetRootNode()->FindChild("mesh")->GetMesh();
        std::vector<double> coordinates;
        for (int i = 0; i < mesh->GetControlPointsCount(); ++i)
        {
            FbxVector4 const point = mesh->GetControlPointAt(i);
            coordinates.insert(coordinates.end(), {point[0], point[1], point[2]});
        }
        add(coordinates);
        std::vector<double> uvs;
        for (FbxVector2 const& uv : mesh->GetElementUV()->GetDirectArray().items())
        {
            uvs.insert(uvs.end(), {uv[0], uv[1]});
        }
        add(uvs);
        std::vector<int> corners(mesh->GetPolygonVertices(),
                                 mesh->GetPolygonVertices() + mesh->GetPolygonVertexCount());
        add(corners);
        for (std::size_t i = 3; i < corners.size(); i += 4)
        {
            corners[i] = -corners[i] - 1;
        }
        add(corners);
        auto const* const layer = static_cast<FbxAnimLayer*>(scene->stacks().front()->GetMember());
        for (FbxAnimCurveNode const* const node : layer->curveNodes())
        {
            for (unsigned int i = 0; i < node->GetChannelsCount(); ++i)
            {
                std::vector<FbxLongLong> times;
                std::vector<float> values;
                for (FbxAnimCurveKey const& key : node->GetCurve(i)->keys())
                {
                    times.push_back(key.time.Get());
                    values.push_back(key.value);
                }
                add(times);
                add(values);
            }
        }
        return result;
    }();
    return all;
}

void copyAndDeflate(benchmark::State& state)
{
    std::size_t total = 0;
    for (std::string const& one : arrays())
    {
        total += one.size();
    }
    for (auto _ : state)
    {
        std::string copies;
        copies.reserve(total);
        std::string packed;
        for (std::string const& one : arrays())
        {
            copies += one;
            uLongf length = compressBound(one.size());
            packed.resize(length);
            compress2(reinterpret_cast<Bytef*>(packed.data()), &length, reinterpret_cast<Bytef const*>(one.data()),
                      one.size(), fbxDeflateLevel);
            benchmark::DoNotOptimize(packed.data());
        }
        benchmark::DoNotOptimize(copies.data());
    }
    state.counters["bytes"] = static_cast<double>(total);
}

#ifdef MARLO_BENCH_ASSIMP
void assimpWrite(benchmark::State& state)
{
    Manager const manager(FbxManager::Create());
    FbxExporter* const exporter = FbxExporter::Create(manager.get(), "");
    std::string const name = QFile::encodeName(folder() + QStringLiteral("/peer.fbx")).toStdString();
    exporter->Initialize(name.c_str());
    exporter->Export(buildShot(manager.get()));
    aiScene const* const scene = aiImportFile(name.c_str(), 0);
    std::string const out = name + ".out.fbx";
    for (auto _ : state)
    {
        if (!scene || aiExportScene(scene, "fbx", out.c_str(), 0) != aiReturn_SUCCESS)
        {
            state.SkipWithError(aiGetErrorString());
            break;
        }
    }
    state.counters["bytes"] = static_cast<double>(QFile(QString::fromStdString(out)).size());
    aiReleaseImport(scene);
}
#endif

}

int main(int argc, char** argv)
{
    benchmark::RegisterBenchmark("write 7.7", writeShot, 0)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("write 6.1", writeShot, 1)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("100,000 of one name", writeManyOfOneName, 0)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("100,000 of one name, 6.1", writeManyOfOneName, 1)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("copy and zlib", copyAndDeflate)->Unit(benchmark::kMillisecond);
    std::vector<Bench::Ratio> ratios{{"write 7.7", "copy and zlib", "a memcpy of its arrays and zlib over them"},
                                     {"write 6.1", "copy and zlib", "the same, which 7.7 is held against"}};
#ifdef MARLO_BENCH_ASSIMP
    benchmark::RegisterBenchmark("assimp", assimpWrite)->Unit(benchmark::kMillisecond);
    ratios.push_back({"write 7.7", "assimp", "assimp's exporter"});
#endif
    return Bench::runBenchmarks(argc, argv, ratios);
}
