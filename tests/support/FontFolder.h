#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace marlet::test
{

/// A folder of fonts which alone make up the machine's fonts while it lives.
class FontFolder
{
public:
    /// The configuration names the folders, one a line.
    FontFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "marlet-fonts-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
        Configure({path_ + "/missing", path_ + "/"});
        ::setenv("FONTCONFIG_FILE", (path_ + "/fonts.conf").c_str(), 1);
    }
    FontFolder(const FontFolder &) = delete;
    FontFolder &operator=(const FontFolder &) = delete;
    ~FontFolder()
    {
        ::unsetenv("FONTCONFIG_FILE");
        std::filesystem::remove_all(path_);
    }

    const std::string &Path() const { return path_; }

    void Configure(const std::vector<std::string> &folders) const
    {
        std::ofstream file(path_ + "/fonts.conf");
        file << "<fontconfig><cachedir>" << path_ << "/cache</cachedir>";
        for (const std::string &folder : folders)
            file << "<dir>" << folder << "</dir>";
        file << "</fontconfig>";
    }

    /// A font of the DejaVu family, whose name has other six letters in place of "DejaVu".
    void Add(const std::string &style, const std::string &sixLetters) const
    {
        std::ifstream file("/usr/share/fonts/truetype/dejavu/DejaVu" + style + ".ttf", std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(file), {}};
        ASSERT_FALSE(bytes.empty()) << "The package fonts-dejavu-core is missing";
        Replace(bytes, "DejaVu", sixLetters);
        Replace(bytes, Wide("DejaVu"), Wide(sixLetters));
        std::ofstream(path_ + "/" + sixLetters + style + ".ttf", std::ios::binary) << bytes;
    }

private:
    static std::string Wide(const std::string &text)
    {
        std::string wide;
        for (const char c : text)
            wide += {'\0', c};
        return wide;
    }

    static void Replace(std::string &bytes, const std::string &from, const std::string &to)
    {
        for (std::size_t at = 0; (at = bytes.find(from, at)) != std::string::npos; at += to.size())
            bytes.replace(at, from.size(), to);
    }

    std::string path_;
};

} // namespace marlet::test
