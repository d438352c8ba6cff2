#pragma once

#include <marlet/foundation/Strings.h>

#include <filesystem>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;

/// The file of an asset.
struct MediaPath {
    WideString filename;
    bool isRelative = false; ///< in the text that it was read from
};

/// Where the text of a project stands while it is read or written: its paths of media are then those that the
/// program can use, and those of the text are relative to that folder where they can be. Without one in the
/// thread, paths are read and written as they are.
class MediaPaths
{
public:
    enum class Form {
        AsTheyAre,
        Relative,
        None ///< all are read as none, so that no file is opened
    };

    /// @param folder empty for the current one
    /// @param findMoved whether a file that is not there is looked for in the folder
    MediaPaths(std::filesystem::path folder, bool findMoved);
    MediaPaths(std::filesystem::path folder, Form form);
    MediaPaths(const MediaPaths &) = delete;
    MediaPaths &operator=(const MediaPaths &) = delete;
    ~MediaPaths() { current_ = previous_; }

    static const MediaPaths *Current() { return current_; }

    /// What a path of the text means, from where the text stands.
    WideString Meant(const WideString &path) const;
    /// The same, or where the file was found instead.
    WideString Read(const WideString &path) const;
    /// What the text says of a path that the program uses. One that is relative to the current folder is
    /// always made relative to the text's, from which it is read again.
    WideString Written(const WideString &path, bool isRelative) const;

private:
    std::filesystem::path Moved(const std::filesystem::path &path) const;

    static inline constinit thread_local const MediaPaths *current_ = nullptr;

    const MediaPaths *previous_ = current_;
    std::filesystem::path folder_;
    bool findMoved_ = false;
    Form form_ = Form::AsTheyAre;
};

// The child that names the file of an asset.

void FilenameChild(XmlWriter &writer, const MediaPath &path);
/// @throws XmlParseException
void FilenameChild(const XmlCursor &element, MediaPath &path);

} // namespace marlet::project
