#include "ImageFiles.h"
#include "Loading.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/platform/files/WholeFile.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/ProjectFile.h>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>

using namespace marlet::project;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;

namespace
{

class ProjectFileTest : public testing::Test
{
protected:
    fs::path Path(const std::string &name) const { return fs::path(files_.Path(name.c_str())); }

    std::vector<std::string> Names(const std::string &folder = "") const
    {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(Path(folder)))
            names.push_back(entry.path().filename());
        return names;
    }

    std::shared_ptr<Project> Reload(const std::string &name, const LoadOptions &options = {}) const
    {
        return ProjectFile::Load(Path(name), nullptr, NoEffects(), options);
    }

    void AddImage(const fs::path &path)
    {
        project_->Assets().All().Add(ImageAsset::Create(path.u16string()));
    }

    /// The files of a project's images.
    static std::vector<fs::path> Images(const Project &project)
    {
        std::vector<fs::path> paths;
        for (const auto &asset : project.Assets().All())
            paths.push_back(std::dynamic_pointer_cast<ImageAsset>(asset)->Filename());
        return paths;
    }

    ImageFiles files_;
    std::shared_ptr<Project> project_ = Project::Create(nullptr);
};

/// Lets no file of this process grow beyond a size.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int);
};

/// For a while, the user of this process may not do everything.
class WithoutPrivileges
{
public:
    WithoutPrivileges()
    {
        if (before_ == 0)
            isDone_ = ::seteuid(65534) == 0;
    }
    ~WithoutPrivileges() { isDone_ = ::seteuid(before_) == 0; }

private:
    const uid_t before_ = ::geteuid();
    bool isDone_ = true;
};

/// What was done to files, in order, while it is wanted.
std::vector<std::string> *fileCalls = nullptr;

int Noted(const char *call, long result)
{
    if (fileCalls)
        fileCalls->push_back(call);
    return static_cast<int>(result);
}

} // namespace

// In place of those of the C library, for the whole program.

extern "C" int fsync(int file)
{
    struct stat status {
    };
    ::fstat(file, &status);
    return Noted(S_ISDIR(status.st_mode) ? "sync folder" : "sync file", ::syscall(SYS_fsync, file));
}

extern "C" int rename(const char *from, const char *to) noexcept
{
    return Noted("rename", ::syscall(SYS_renameat, AT_FDCWD, from, AT_FDCWD, to));
}

TEST_F(ProjectFileTest, SyncsTheFileBeforeItTakesTheOldOnesPlace)
{
    std::vector<std::string> calls;
    fileCalls = &calls;
    ProjectFile::Save(*project_, Path("film.xml"));
    fileCalls = nullptr;
    EXPECT_THAT(calls, ElementsAre("sync file", "rename", "sync folder"));
}

TEST_F(ProjectFileTest, LoadsWhatItSavedAndKeepsAsManyVersionsAsAreAskedFor)
{
    for (const char16_t *name : {u"1", u"2", u"3", u"4", u"5"}) {
        project_->SetName(name);
        ProjectFile::Save(*project_, Path("film.xml"), {.keptVersions = 2});
    }
    EXPECT_THAT(Names(), UnorderedElementsAre("film.xml", "film.xml.~1~", "film.xml.~2~"));
    EXPECT_EQ(Reload("film.xml")->Name(), u"5");
    EXPECT_EQ(Reload("film.xml")->Filename(), Path("film.xml").u16string());
    EXPECT_EQ(Reload("film.xml.~1~")->Name(), u"4");
    EXPECT_EQ(Reload("film.xml.~2~")->Name(), u"3");

    // A gap is filled, and nothing is kept where nothing is asked for.
    fs::remove(Path("film.xml.~1~"));
    ProjectFile::Save(*project_, Path("film.xml"), {.keptVersions = 2});
    EXPECT_EQ(Reload("film.xml.~1~")->Name(), u"5");
    EXPECT_EQ(Reload("film.xml.~2~")->Name(), u"3");
    project_->SetName(u"6");
    ProjectFile::Save(*project_, Path("film.xml"));
    EXPECT_EQ(Reload("film.xml.~1~")->Name(), u"5");
}

TEST_F(ProjectFileTest, ASaveThatFailsLeavesWhatWasThere)
{
    WriteWholeFile(Path("film.xml"), "old");
    try {
        const FileSizeLimit limit(100);
        ProjectFile::Save(*project_, Path("film.xml"), {.keptVersions = 1});
        ADD_FAILURE() << "There was no room";
    } catch (const FileException &error) {
        EXPECT_EQ(error.Path(), Path("film.xml").string());
        EXPECT_EQ(error.Reason(), "File too large");
        EXPECT_EQ(std::string(error.what()), error.Path() + ": File too large");
    }
    EXPECT_EQ(ReadBytes(Path("film.xml")), "old");
    EXPECT_THAT(Names(), ElementsAre("film.xml"));
    EXPECT_THROW(ProjectFile::Save(*project_, Path("no/film.xml")), FileException);
    EXPECT_THROW(ProjectFile::Save(*project_, Path("")), FileException);
    EXPECT_THROW(ProjectFile::Save(*project_, "/dev/full"), FileException);

    fs::create_directory(Path("closed"));
    WriteWholeFile(Path("closed/film.xml"), "old");
    fs::permissions(Path("closed"), fs::perms(0555));
    fs::permissions(Path(""), fs::perms(0777));
    WriteWholeFile(Path("protected.xml"), "old");
    fs::permissions(Path("protected.xml"), fs::perms(0444));
    for (const char *name : {"closed/film.xml", "closed/new.xml", "protected.xml"}) {
        try {
            const WithoutPrivileges user;
            ProjectFile::Save(*project_, Path(name));
            ADD_FAILURE() << name;
        } catch (const FileException &error) {
            EXPECT_EQ(error.what(), Path(name).string() + ": Permission denied");
        }
    }
    EXPECT_EQ(ReadBytes(Path("closed/film.xml")), "old");
    EXPECT_EQ(ReadBytes(Path("protected.xml")), "old");
    EXPECT_THAT(Names("closed"), ElementsAre("film.xml"));
    fs::permissions(Path("closed"), fs::perms(0755));
}

TEST_F(ProjectFileTest, KeepsRightsAndLinks)
{
    fs::create_directory(Path("sub"));
    WriteWholeFile(Path("sub/film.xml"), "old");
    fs::permissions(Path("sub/film.xml"), fs::perms(0640));
    fs::create_symlink("sub/film.xml", Path("link.xml"));
    ProjectFile::Save(*project_, Path("link.xml"), {.keptVersions = 1});
    EXPECT_TRUE(fs::is_symlink(Path("link.xml")));
    EXPECT_EQ(fs::status(Path("sub/film.xml")).permissions(), fs::perms(0640));
    EXPECT_THAT(Names("sub"), UnorderedElementsAre("film.xml", "film.xml.~1~"));
    EXPECT_EQ(ReadBytes(Path("sub/film.xml.~1~")), "old");
}

TEST_F(ProjectFileTest, RefusesWhatIsNoText)
{
    const std::pair<std::string, const char *> cases[] = {
        {"<Project Version=\"0\"><Name>caf\xE9</Name></Project>", "The text is not UTF-8"},
        {"\xFF\xFE<", "The text is cut off in the middle of a character"}};
    for (const auto &[bytes, reason] : cases) {
        WriteWholeFile(Path("film.xml"), bytes);
        try {
            Reload("film.xml");
            ADD_FAILURE() << reason;
        } catch (const FileException &error) {
            EXPECT_EQ(error.what(), Path("film.xml").string() + ": " + reason);
        }
    }
    EXPECT_THROW(Reload("gone.xml"), FileException);
    EXPECT_THROW(Reload(""), FileException);
}

TEST_F(ProjectFileTest, KeepsPathsRelativeThatShallBeOrWereAndFindsThemInAFolderThatMoved)
{
    fs::create_directories(Path("old/media"));
    files_.Write("old/media/a.png", ImageFiles::Plain(4, 4));
    files_.Write("b.png", ImageFiles::Plain(4, 4));
    AddImage(Path("old/media/a.png"));
    AddImage(Path("b.png"));
    AddImage("C:\\film\\c.png");
    ProjectFile::Save(*project_, Path("old/absolute.xml"));
    ProjectFile::Save(*project_, Path("old/relative.xml"), {.relativeMedia = true});
    EXPECT_THAT(ReadBytes(Path("old/absolute.xml")), HasSubstr(Path("old/media/a.png").string()));
    const std::string relative = ReadBytes(Path("old/relative.xml"));
    EXPECT_THAT(relative, HasSubstr("<Filename>media/a.png</Filename>"));
    EXPECT_THAT(relative, HasSubstr("<Filename>../b.png</Filename>"));
    EXPECT_THAT(relative, HasSubstr("<Filename>C:\\film\\c.png</Filename>"));
    EXPECT_EQ(Images(*project_)[0], Path("old/media/a.png"));

    fs::rename(Path("old"), Path("new"));
    const auto moved = Reload("new/relative.xml");
    EXPECT_EQ(Images(*moved)[0], Path("new/media/a.png"));
    EXPECT_FALSE(moved->Assets().All()[1]->IsOffline());
    ProjectFile::Save(*moved, Path("new/again.xml"));
    EXPECT_EQ(ReadBytes(Path("new/again.xml")), relative);
    EXPECT_EQ(ToUtf8(ProjectFile::TextFor(*moved, Path("again.xml"))).find("<Filename>media"),
              std::string::npos);

    EXPECT_EQ(Images(*Reload("new/absolute.xml"))[0], Path("old/media/a.png"));
    LoadReport report;
    const auto found = Reload("new/absolute.xml", {.report = &report, .findMovedMedia = true});
    EXPECT_EQ(Images(*found)[0], Path("new/media/a.png"));
    EXPECT_EQ(Images(*found)[1], Path("b.png"));
    ASSERT_EQ(report.Count(LoadEntry::Severity::Note), 1u);
    EXPECT_THAT(report.Entries()[0].path, HasSubstr("ImageAsset \"a.png\""));
}
