#include "ServedPages.h"

#include "output/Failure.h"
#include "pictures/Report.h"

#include <cstdio>

#include <sys/random.h>

namespace marlet::tool
{

namespace
{

constexpr char kScript[] = R"('use strict';
const shown = document.currentScript.dataset.version;
async function follow() {
    try {
        const answer = await fetch('version', { cache: 'no-store' });
        const version = await answer.text();
        if (answer.ok && version !== shown) location.reload();
    } catch {
        // The tool has ended, or will be back.
    }
    setTimeout(follow, 500);
}
follow();
)";

std::string RandomPath()
{
    unsigned char bytes[16];
    if (::getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes))
        throw Failure("The machine has no random numbers");
    std::string path = "/";
    for (const unsigned char byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", byte);
        path += digits;
    }
    return path + "/";
}

std::string TypeOf(const std::string &ending)
{
    return ending == ".svg" ? "image/svg+xml" : "image/jpeg";
}

} // namespace

ServedPages::ServedPages() : path_(RandomPath())
{
}

void ServedPages::Update(const std::string &file)
{
    std::map<std::string, HttpAnswer> pages;
    const std::string version = std::to_string(version_ + 1);
    const auto add = [&](const std::string &stem, const std::string &ending, const std::string &bytes) {
        const std::string name = stem + "-" + std::to_string(pages.size() + 1) + ending;
        pages[name] = {200, TypeOf(ending), bytes};
        return name;
    };
    // The page bears its version: the file may change before the script asks for the first time.
    const std::string script = "<script src=\"follow.js\" data-version=\"" + version + "\" defer></script>\n";
    const std::string html =
        MakeReport(ReadProject(file), add, script, "; script-src 'self'; connect-src 'self'");
    pages[""] = {200, "text/html; charset=utf-8", html};
    pages["follow.js"] = {200, "text/javascript; charset=utf-8", kScript};
    pages["version"] = {200, "text/plain; charset=utf-8", version};
    pages_ = std::move(pages);
    ++version_;
}

HttpAnswer ServedPages::At(const std::string &path) const
{
    if (path.compare(0, path_.size(), path_) == 0)
        if (const auto page = pages_.find(path.substr(path_.size())); page != pages_.end())
            return page->second;
    return {404, "text/plain; charset=utf-8", "There is nothing here\n"};
}

} // namespace marlet::tool
