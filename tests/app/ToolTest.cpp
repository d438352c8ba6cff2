#include "ToolTest.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace marlet::test
{

namespace fs = std::filesystem;

namespace
{

std::string ReadAll(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

std::vector<std::string> ToolRun::OutLines() const
{
    std::vector<std::string> lines;
    std::istringstream stream(out);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

ToolTest::ToolTest() : project_(Project::Create(nullptr))
{
    std::string pattern = (fs::temp_directory_path() / "marlet-test-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
    fs::create_directory(folder_ + "/files");
    composition_ = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 100);
    project_->Assets().All().Add(composition_);
}

ToolTest::~ToolTest()
{
    fs::remove_all(folder_);
}

ToolRun ToolTest::Run(const std::vector<std::string> &words) const
{
    std::string line = "\"$MARLET\"";
    for (const std::string &word : words)
        line += " '" + word + "'";
    return Shell(line);
}

ToolRun ToolTest::Shell(const std::string &line) const
{
    const std::string out = folder_ + "/out";
    const std::string err = folder_ + "/err";
    const std::string script = "cd " + Path("") +
                               "; MARLET='" MARLET_TOOL "'; export XDG_CACHE_HOME=" + folder_ +
                               "/cache; exec >" + out + " 2>" + err + "; " + line;
    const int status = std::system(script.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadAll(out), ReadAll(err)};
}

std::string ToolTest::Path(const std::string &name) const
{
    return folder_ + "/files/" + name;
}

std::string ToolTest::Write(const std::string &name, const std::string &bytes) const
{
    std::ofstream(Path(name), std::ios::binary) << bytes;
    return Path(name);
}

std::string ToolTest::Read(const std::string &name) const
{
    return ReadAll(Path(name));
}

std::vector<std::string> ToolTest::FileNames() const
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(Path("")))
        names.push_back(entry.path().filename().string());
    return names;
}

std::string ToolTest::Save(const std::string &name) const
{
    return Write(name, ToUtf8(project_->Serialize()));
}

std::shared_ptr<PointLayer> ToolTest::AddPoint(const std::u16string &name,
                                               kytl::matl::KyPoint<3, float> position)
{
    auto layer = PointLayer::Create(name);
    layer->SetEndFrame(100);
    layer->SetParentComposition(composition_);
    layer->Animation().StaticValue("position") = position;
    composition_->Layers().Add(layer);
    return layer;
}

} // namespace marlet::test
