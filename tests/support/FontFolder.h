#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace marlet::test
{

/// A folder with the machine's only fonts, as long as it lives.
struct FontFolder {
    FontFolder()
    {
        Use(path);
        ::setenv("FONTCONFIG_FILE", (path + "/fonts.conf").c_str(), 1);
    }
    ~FontFolder()
    {
        ::unsetenv("FONTCONFIG_FILE");
        std::filesystem::remove_all(path);
    }

    /// Takes the fonts from elsewhere.
    void Use(const std::string &folder) const
    {
        std::ofstream(path + "/fonts.conf")
            << "<fontconfig><cachedir>" << path << "/cache</cachedir><dir>" << path << "/missing</dir><dir>"
            << folder << "/</dir></fontconfig>";
    }

    /// A font of the DejaVu families, but with six other letters in its names.
    void Add(const std::string &style, const std::string &letters) const
    {
        std::ifstream file("/usr/share/fonts/truetype/dejavu/DejaVu" + style + ".ttf", std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(file), {}};
        ASSERT_FALSE(bytes.empty()) << "The package fonts-dejavu-core is missing";
        const std::string name("\0D\0e\0j\0a\0V\0u", 12);
        for (std::size_t at = 0; (at = bytes.find(name, at)) != std::string::npos; at += name.size())
            for (std::size_t i = 0; i < letters.size(); ++i)
                bytes[at + 2 * i + 1] = letters[i];
        std::ofstream(path + "/" + letters + style + ".ttf", std::ios::binary) << bytes;
    }

    std::string path = ::mkdtemp(std::string("/tmp/marlet-fonts-XXXXXX").data());
};

} // namespace marlet::test
