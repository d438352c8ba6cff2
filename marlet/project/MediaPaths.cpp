#include <marlet/project/MediaPaths.h>

#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace marlet::project
{

namespace fs = std::filesystem;

namespace
{

constexpr char kTag[] = "Filename";

bool IsLetter(char16_t unit)
{
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

/// Of another system: with a drive's letter or a server's name in front.
bool IsForeign(const WideString &path)
{
    return path.starts_with(u"\\\\") || (path.size() > 1 && IsLetter(path[0]) && path[1] == u':');
}

bool IsRelative(const WideString &path)
{
    return !path.empty() && !IsForeign(path) && path[0] != u'/';
}

bool IsThere(const fs::path &path)
{
    std::error_code error;
    return fs::exists(path, error);
}

fs::path PathOf(const WideString &path)
{
    return ToUtf8(path);
}

WideString TextOf(const fs::path &path)
{
    return FromUtf8(path.string());
}

} // namespace

MediaPaths::MediaPaths(fs::path folder, bool findMoved) : folder_(std::move(folder)), findMoved_(findMoved)
{
    current_ = this;
}

MediaPaths::MediaPaths(fs::path folder, Form form) : folder_(std::move(folder)), form_(form)
{
    current_ = this;
}

WideString MediaPaths::Meant(const WideString &path) const
{
    return IsRelative(path) && !folder_.empty() ? TextOf(folder_ / PathOf(path)) : path;
}

WideString MediaPaths::Read(const WideString &path) const
{
    if (form_ == Form::None)
        return {};
    const WideString meant = Meant(path);
    if (!findMoved_ || path.empty() || IsThere(PathOf(meant)))
        return meant;
    WideString parts = path;
    if (IsForeign(path))
        std::ranges::replace(parts, u'\\', u'/');
    const fs::path found = Moved(PathOf(parts));
    return found.empty() ? meant : TextOf(found);
}

/// The longest end of a path that leads to something in the folder, or nothing.
fs::path MediaPaths::Moved(const fs::path &path) const
{
    const fs::path below = path.relative_path();
    for (auto start = below.begin(); start != below.end(); ++start) {
        fs::path end;
        for (auto part = start; part != below.end(); ++part)
            end /= *part;
        if (const fs::path candidate = folder_ / end; !end.empty() && IsThere(candidate))
            return candidate;
    }
    return {};
}

WideString MediaPaths::Written(const WideString &path, bool isRelative) const
{
    if (path.empty() || IsForeign(path))
        return path;
    fs::path file = PathOf(path);
    if (file.is_absolute() ? form_ == Form::AsTheyAre && !isRelative : folder_.empty())
        return path;
    // As it was put together, for the text to stay as it was.
    if (const std::string folder = folder_ / ""; !folder_.empty() && file.native().starts_with(folder))
        return FromUtf8(file.native().substr(folder.size()));
    fs::path folder = folder_.empty() ? fs::path(".") : folder_;
    if (file.is_absolute() != folder.is_absolute()) {
        file = fs::absolute(file);
        folder = fs::absolute(folder);
    }
    const fs::path relative = file.lexically_normal().lexically_relative((folder / "").lexically_normal());
    return relative.empty() ? path : TextOf(relative);
}

void FilenameChild(XmlWriter &writer, const MediaPath &path)
{
    const MediaPaths *const paths = MediaPaths::Current();
    writer.Child(kTag, paths ? paths->Written(path.filename, path.isRelative) : path.filename);
}

void FilenameChild(const XmlCursor &element, MediaPath &path)
{
    WideString text;
    element.Child(kTag, text);
    const MediaPaths *const paths = MediaPaths::Current();
    path.filename = paths ? paths->Read(text) : text;
    path.isRelative = paths && IsRelative(text);
    if (paths && !path.filename.empty() && path.filename != paths->Meant(text))
        TellLoad(LoadEntry::Severity::Note, element,
                 ToUtf8(text) + " is not there; " + ToUtf8(path.filename) + " is taken in its place");
}

} // namespace marlet::project
