#include "FbxBinary.h"
#include "test_fbx_file.h"

#include <gtest/gtest.h>

namespace
{

using namespace fbxsdk;

std::string hex(FbxId const& id)
{
    std::string result;
    for (unsigned char const byte : id)
    {
        constexpr char digits[] = "0123456789abcdef";
        result += digits[byte / 16];
        result += digits[byte % 16];
    }
    return result;
}

TEST(FbxContainer, IdsComeFromTheCreationTime)
{
    struct
    {
        FbxMoment moment;
        char const* text;
        char const* fileId;
        char const* footerId;
    } const cases[] = {
        {{1970, 1, 1, 10, 0, 0, 0},
         "1970-01-01 10:00:00:000",
         "28b32aebb624ccc2bfc8b02aa92bfcf1",
         "fabcab09d0c8d466b176fb831cf7267e"},
        {{2022, 12, 8, 22, 12, 32, 715},
         "2022-12-08 22:12:32:715",
         "2bb22ae8b626cec9b3c5be2dab2bfdf2",
         "fabca808d3cad766b07df6851ff6277f"},
        {{2024, 3, 5, 14, 7, 9, 120},
         "2024-03-05 14:07:09:120",
         "28ba23e0bd2bc3c9b5c0bb28ae28fff5",
         "fabcab00d9cad66bbc70fc8d10fb2d71"},
    };
    for (auto const& [moment, text, fileId, footerId] : cases)
    {
        EXPECT_EQ(fbxCreationTime(moment), text);
        EXPECT_EQ(hex(fbxFileId(moment)), fileId);
        EXPECT_EQ(hex(fbxFooterId(moment)), footerId);
    }
}

class FbxContainerOf : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P(Versions, FbxContainerOf, testing::Values(7700, 6100));

TEST_P(FbxContainerOf, BlocksEndWithAnEmptyRecordAndLeavesDoNot)
{
    FbxBinary out(GetParam());
    out.open("References");
    out.close();
    out.open("AnimationLayer", FbxLongLong{7}, "a");
    out.leaf("Leaf", 1, 2.5, "text", FbxLetter{'Y'}, FbxBytes{std::string_view("\0\1", 2)});
    out.leaf("Empty", "");
    out.close();
    out.finish({});
    FbxFile::Reader const file(out.bytes());

    ASSERT_EQ(file.root.children.size(), 2U);
    EXPECT_TRUE(file.root.at("References").isBlock);
    FbxFile::Node const& layer = file.root.at("AnimationLayer");
    EXPECT_TRUE(layer.isBlock);
    EXPECT_EQ(layer.properties.at(0).whole, 7);
    FbxFile::Node const& leaf = layer.at("Leaf");
    EXPECT_FALSE(leaf.isBlock);
    EXPECT_FALSE(layer.at("Empty").isBlock);
    ASSERT_EQ(leaf.properties.size(), 5U);
    EXPECT_EQ(leaf.properties[1].number, 2.5);
    EXPECT_EQ(leaf.properties[3].whole, 'Y');
    EXPECT_EQ(leaf.properties[4].text, std::string("\0\1", 2));
    EXPECT_EQ(file.end, out.size());
}

TEST_P(FbxContainerOf, PadsTheFootByOneToSixteenBytes)
{
    for (std::size_t length = 0; length < 17; ++length)
    {
        FbxBinary out(GetParam());
        out.leaf("L", std::string(length, 'x'));
        std::size_t const foot = out.size() + (GetParam() >= 7500 ? 25 : 13) + 16;
        out.finish({});
        EXPECT_EQ(out.size(), foot / 16 * 16 + 16 + 4 + 4 + 120 + 16) << length;
        EXPECT_EQ(FbxFile::Reader(out.bytes()).end, out.size());
    }
}

TEST_P(FbxContainerOf, ArraysAreAsTheyWere)
{
    std::vector<double> const few(125, 0.1); // 1000 bytes
    std::vector<double> many;
    std::vector<FbxLongLong> times;
    for (int i = 0; i < 5000; ++i)
    {
        many.push_back(i * 0.37);
        times.push_back(i * 1924423250LL);
    }
    FbxBinary out(GetParam());
    out.array("Few", few);
    out.array("Many", many);
    out.array("Times", times);
    out.array("None", std::vector<int>());
    out.finish({});
    FbxFile::Node const root = FbxFile::Reader(out.bytes()).root;
    EXPECT_EQ(root.at("Few").numbers(), few);
    EXPECT_EQ(root.at("Many").numbers(), many);
    EXPECT_EQ(root.at("Times").numbers(), std::vector<double>(times.begin(), times.end()));
    EXPECT_EQ(root.at("None").numbers().size(), 0U);
    if (GetParam() >= 7000)
    {
        EXPECT_FALSE(root.at("Few").properties[0].isPacked);
        EXPECT_TRUE(root.at("Many").properties[0].isPacked);
    }
}

}
