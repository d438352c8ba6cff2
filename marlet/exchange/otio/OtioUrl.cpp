#include <marlet/exchange/otio/OtioUrl.h>

#include <marlet/project/MediaPaths.h>

#include <algorithm>
#include <charconv>

namespace marlet::project
{

namespace
{

constexpr std::string_view kFile = "file:";

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool HasDrive(std::string_view path)
{
    return path.size() > 1 && IsLetter(path[0]) && path[1] == ':';
}

/// Whether a URL names what it is of; one letter is a drive.
bool HasScheme(std::string_view url)
{
    const std::size_t colon = url.find(':');
    return colon != std::string_view::npos && colon > 1 && IsLetter(url[0]) &&
           std::ranges::all_of(url.substr(0, colon), [](char c) {
               return IsLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
           });
}

NarrowString Decoded(std::string_view text)
{
    NarrowString result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = 0;
        const char *const digits = text.data() + i + 1;
        if (text[i] == '%' && i + 2 < text.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2 && byte != 0) {
            result += static_cast<char>(byte);
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

/// A file's path behind the scheme: of this machine, of a drive, or of a server.
NarrowString WithoutHost(std::string_view rest)
{
    if (!rest.starts_with("//"))
        return Decoded(rest);
    rest.remove_prefix(2);
    const std::size_t slash = std::min(rest.find('/'), rest.size());
    const std::string_view host = rest.substr(0, slash);
    if (!host.empty() && host != "localhost" && !HasDrive(host))
        return Decoded("//" + NarrowString(rest));
    NarrowString path = Decoded(HasDrive(host) ? rest : rest.substr(slash));
    if (path.starts_with('/') && HasDrive(std::string_view(path).substr(1)))
        path.erase(0, 1);
    return path;
}

} // namespace

NarrowString EncodedUrl(std::string_view path)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    constexpr std::string_view kPlain = "/-_.~!$&'()*+,;=:@";
    NarrowString result;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsLetter(c) || (c >= '0' && c <= '9') || kPlain.find(c) != std::string_view::npos)
            result += c;
        else
            result += {'%', kDigits[byte / 16], kDigits[byte % 16]};
    }
    return result;
}

WideString PathOfUrl(std::string_view url, const WideString &folder)
{
    if (url.starts_with(kFile))
        return FromUtf8(WithoutHost(url.substr(kFile.size())));
    if (url.empty() || HasScheme(url))
        return FromUtf8(url);
    if (url.starts_with('/') || url.starts_with("\\\\") || HasDrive(url))
        return FromUtf8(Decoded(url));
    return folder + FromUtf8(Decoded(url));
}

NarrowString UrlOfPath(const WideString &path, const WideString &folder)
{
    NarrowString text = ToUtf8(path);
    if (HasScheme(text))
        return text;
    if (HasDrive(text)) {
        std::ranges::replace(text, '\\', '/');
        return "file:///" + EncodedUrl(text);
    }
    if (text.starts_with('/') && (folder.empty() || !path.starts_with(folder)))
        return "file://" + EncodedUrl(text);
    const MediaPaths paths(ToUtf8(folder), MediaPaths::Form::Relative);
    return EncodedUrl(ToUtf8(paths.Written(path, true)));
}

} // namespace marlet::project
