#include <marlet/foundation/Strings.h>
#include <marlet/foundation/xml/WellFormed.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace
{

using namespace marlet::project;
namespace fs = std::filesystem;

/// The parts of a conformance suite, unpacked for the time of a test.
class Suite
{
public:
    explicit Suite(const fs::path &archive)
        : folder_(fs::temp_directory_path() / ("marlet-xml-" + std::to_string(::getpid())))
    {
        fs::create_directories(folder_);
        const std::string command = "tar -xzf '" + archive.string() + "' -C '" + folder_.string() + "'";
        isThere_ = std::system(command.c_str()) == 0;
    }
    ~Suite() { fs::remove_all(folder_); }

    bool IsThere() const { return isThere_; }

    /// Hands each text in UTF-8 of a part to a function, with its name.
    template <class Function> void ForEach(const char *part, const Function &function) const
    {
        for (const auto &entry : fs::recursive_directory_iterator(folder_ / part)) {
            if (entry.path().extension() != ".xml")
                continue;
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string text{std::istreambuf_iterator<char>(file), {}};
            if (ToUtf8(FromUtf8(text)) == text)
                function(text, entry.path().string());
        }
    }

private:
    fs::path folder_;
    bool isThere_ = false;
};

std::string Inside(const std::string &text)
{
    return "<Project Version=\"0\">" + text + "</Project>";
}

bool HasRoot(const std::string &utf8)
{
    return !XmlDocument(FromUtf8(utf8)).Root().IsNull();
}

TEST(XmlMaterialTest, AConformanceSuiteIsJudgedAsItsAuthorsJudge)
{
    const char *material = std::getenv("MARLET_MATERIAL");
    if (!material)
        GTEST_SKIP() << "MARLET_MATERIAL is not set";
    const Suite suite(fs::path(material) / "xml" / "xmlconf-xmltest-sun.tar.gz");
    ASSERT_TRUE(suite.IsThere());
    int wellFormed = 0;
    for (const char *part : {"xmltest/valid", "xmltest/invalid", "sun/valid", "sun/invalid"}) {
        suite.ForEach(part, [&](const std::string &text, const std::string &name) {
            const XmlScan scan = ScanXml(text);
            EXPECT_FALSE(scan.fault) << name << " " << scan.fault->offset << " " << scan.fault->what;
            EXPECT_EQ(HasRoot(text), !scan.hasDocumentType) << name;
            ++wellFormed;
        });
    }
    EXPECT_GT(wellFormed, 400);
    int faulty = 0;
    for (const char *part : {"xmltest/not-wf", "sun/not-wf"}) {
        suite.ForEach(part, [&](const std::string &text, const std::string &name) {
            EXPECT_FALSE(HasRoot(text)) << name;
            const XmlScan scan = ScanXml(text);
            EXPECT_TRUE(scan.fault || scan.hasDocumentType) << name;
            // What may not stand beside a root element may stand in one.
            if (!scan.fault || scan.fault->what.find("root element") == std::string::npos) {
                EXPECT_FALSE(HasRoot(Inside(text))) << name;
            }
            ++faulty;
        });
    }
    EXPECT_GT(faulty, 200);
}

} // namespace
