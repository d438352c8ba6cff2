#include "Loading.h"

#include <gtest/gtest.h>

using namespace marlet::project;
namespace fs = std::filesystem;

namespace
{

std::vector<fs::path> DocumentsIn(const char *folder)
{
    std::vector<fs::path> result;
    for (const auto &entry : fs::directory_iterator(fs::path(MARLET_TEST_DOCUMENTS) / folder))
        if (entry.path().extension() == ".xml")
            result.push_back(entry.path());
    EXPECT_FALSE(result.empty());
    return result;
}

/// The words of a failure to load, or none.
std::string Failure(const WideString &text)
{
    try {
        Load(text);
    } catch (const std::exception &failure) {
        return failure.what();
    }
    return {};
}

WideString Nested(int depth)
{
    WideString text = u"<Project Version='0'><ID>00000000-0000-0000-0000-000000000000</ID><Name>";
    // The project and the name are two of the elements.
    for (int i = 2; i < depth; ++i)
        text += u"<i>";
    text += u"deep";
    for (int i = 2; i < depth; ++i)
        text += u"</i>";
    return text + u"</Name></Project>";
}

} // namespace

TEST(Documents, AreWrittenAsTheyWereRead)
{
    for (const fs::path &path : DocumentsIn("good")) {
        SCOPED_TRACE(path);
        EXPECT_EQ(ToUtf8(Load(ReadDocument(path))->Serialize()), ReadBytes(path));
    }
}

TEST(Documents, SayTheSameInOtherSpellings)
{
    const std::string plain = ToUtf8(ReadDocument("good/plain.xml"));
    for (const fs::path &path : DocumentsIn("odd")) {
        SCOPED_TRACE(path);
        EXPECT_EQ(ToUtf8(Load(ReadDocument(path))->Serialize()), plain);
    }
}

TEST(Documents, AreRefusedWithTheirWords)
{
    for (const fs::path &path : DocumentsIn("bad")) {
        SCOPED_TRACE(path);
        EXPECT_EQ(Failure(ReadDocument(path)) + "\n", ReadBytes(fs::path(path).replace_extension("words")));
    }
}

TEST(Documents, AreRefusedWhereverTheyAreCutOff)
{
    const WideString whole = ReadDocument("good/layers.xml");
    // What follows the last bracket is a line feed.
    for (std::size_t length = 0; length < whole.size() - 1; ++length)
        ASSERT_EQ(Failure(whole.substr(0, length)), "Wrong tag name\nProject") << length;
    EXPECT_EQ(Failure(whole.substr(0, whole.size() - 1)), "");
}

TEST(Documents, MayBeNestedSoDeepAndNoDeeper)
{
    EXPECT_EQ(Load(Nested(1000))->Name(), u"deep");
    EXPECT_EQ(Failure(Nested(1001)), "Nesting too deep");
    EXPECT_EQ(Failure(Nested(1'000'000)), "Nesting too deep");
}
