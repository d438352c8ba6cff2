#include "ReportPage.h"

#include "info/Info.h"
#include "output/Markup.h"
#include "output/Names.h"
#include "output/Output.h"
#include "output/QuietStandardError.h"

#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr char kHead[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>%TITLE%</title>
<style>
:root { color-scheme: light dark; --line: #ccc; --soft: #777 }
body { font: 15px/1.5 sans-serif; max-width: 60rem; margin: 2rem auto; padding: 0 1rem }
h1 { margin-bottom: 0 } h2 { margin-top: 2.5rem; border-bottom: 1px solid var(--line) }
table { border-collapse: collapse; width: 100% } td, th { text-align: left; padding: .2rem .8rem .2rem 0 }
td { border-top: 1px solid var(--line) } .soft { color: var(--soft) }
figure { margin: 0 0 1rem; display: inline-block; vertical-align: top } img { max-width: 100%; height: auto }
figcaption { color: var(--soft) } .thumbnails figure { width: 19rem; margin-right: .6rem }
.thumbnails img { background: #222; width: 100% } .finding { color: #c62828 }
</style>
</head>
<body>
)";

std::string Cell(const std::string &text)
{
    return "<td>" + EscapedMarkup(text) + "</td>";
}

std::string Cell(const WideString &text)
{
    return Cell(ToUtf8(text));
}

std::string Head(const Project &project)
{
    std::string head = kHead;
    const std::string name = EscapedMarkup(ToUtf8(project.Name()));
    const std::string mark = "%TITLE%";
    head.replace(head.find(mark), mark.size(), name);
    return head + "<h1>" + name + "</h1>\n<p class=\"soft\">" + EscapedMarkup(ToUtf8(project.Filename())) +
           "</p>\n";
}

std::string Facts(const Project &project)
{
    const ProjectSums sums = CountProject(project);
    const std::pair<const char *, std::size_t> rows[] = {{"Assets", sums.assets},
                                                         {"of them compositions", sums.compositions},
                                                         {"of them offline", sums.offlineAssets},
                                                         {"Folders", sums.folders},
                                                         {"Layers", sums.layers},
                                                         {"Effects", sums.effects},
                                                         {"Masks", sums.masks},
                                                         {"Properties", sums.properties},
                                                         {"of them animated", sums.animatedProperties},
                                                         {"Key frames", sums.keyFrames}};
    std::string html = "<h2>Facts</h2>\n<table>\n";
    for (const auto &[name, count] : rows)
        html += "<tr>" + Cell(name) + Cell(std::to_string(count)) + "</tr>\n";
    return html + "</table>\n";
}

std::string Assets(const Project &project)
{
    const QuietStandardError quiet;
    std::string html =
        "<h2>Assets</h2>\n<table>\n<tr><th>Name</th><th>Kind</th><th>Size</th><th></th></tr>\n";
    for (const std::shared_ptr<AbstractAsset> &asset : project.Assets().All())
        html +=
            "<tr>" + Cell(asset->Name()) + Cell(AssetTypeName(asset->Type())) +
            Cell(asset->Width() > 0 ? std::to_string(asset->Width()) + "x" + std::to_string(asset->Height())
                                    : "") +
            (asset->IsOffline() ? "<td class=\"finding\">offline</td>" : "<td></td>") + "</tr>\n";
    return html + "</table>\n";
}

std::string Findings(const std::vector<Finding> &findings)
{
    std::string html = "<h2>Findings</h2>\n";
    const auto isNote = [](const Finding &finding) { return finding.severity == Finding::Severity::Note; };
    if (std::all_of(findings.begin(), findings.end(), isNote))
        html += "<p>Nothing is missing, and every ID leads somewhere.</p>\n";
    if (findings.empty())
        return html;
    html += "<table>\n";
    for (const Finding &finding : findings) {
        const char *style = isNote(finding) ? "soft" : "finding";
        html += "<tr><td class=\"" + std::string(style) + "\">" + FindingKindName(finding.kind) + "</td>" +
                Cell(finding.place) + Cell(finding.what) + "</tr>\n";
    }
    return html + "</table>\n";
}

std::string LeftOut(const std::vector<LeftOutLayer> &layers)
{
    if (layers.empty())
        return {};
    std::string html = "<p class=\"finding\">Left out of these pictures:</p>\n<table>\n";
    for (const LeftOutLayer &layer : layers)
        html += "<tr>" + Cell(layer.place) + Cell(layer.why) + "</tr>\n";
    return html + "</table>\n";
}

std::string Pictures(const std::string &title, const std::vector<ReportPicture> &pictures, const char *style)
{
    if (pictures.empty())
        return {};
    std::string html = "<h2>" + title + "</h2>\n<div class=\"" + style + "\">\n";
    for (const ReportPicture &picture : pictures)
        html += "<figure><a href=\"" + EscapedMarkup(picture.file) + "\"><img loading=\"lazy\" src=\"" +
                EscapedMarkup(picture.file) + "\" alt=\"" + EscapedMarkup(picture.caption) +
                "\"></a><figcaption>" + EscapedMarkup(picture.caption) + "</figcaption></figure>\n";
    return html + "</div>\n";
}

} // namespace

std::string ReportPage(const Project &project, const ReportContent &content)
{
    std::string html = Head(project) + Pictures("Compositions", content.compositions, "thumbnails") +
                       LeftOut(content.leftOut) + Facts(project) + Findings(content.findings) +
                       Assets(project) + Pictures("Timeline", content.timeline, "wide") +
                       Pictures("Animated properties", content.curves, "wide");
    if (content.curvesLeftOut > 0)
        html += "<p class=\"soft\">and " + std::to_string(content.curvesLeftOut) + " more.</p>\n";
    return html + Pictures("Who owns and who refers to whom", content.tree, "wide") + "</body>\n</html>\n";
}

} // namespace marlet::tool
