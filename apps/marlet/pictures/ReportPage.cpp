#include "ReportPage.h"

#include "info/Info.h"
#include "output/Markup.h"
#include "output/Names.h"
#include "output/Output.h"
#include "output/QuietStandardError.h"

#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <QCryptographicHash>

#include <algorithm>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr char kStyle[] = R"(
:root { color-scheme: light dark; --paper: #fff; --ink: #222; --line: #ccc; --soft: #666; --wrong: #b71c1c; --link: #0b57d0;
  --c0: #c62828; --c1: #2e7d32; --c2: #1565c0; --c3: #757575 }
@media (prefers-color-scheme: dark) { :root { --paper: #16171b; --ink: #e6e6ea; --line: #3a3c45; --soft: #a0a3ad;
  --wrong: #ff8a80; --link: #8ab4f8; --c0: #ff8a80; --c1: #81c995; --c2: #8ab4f8; --c3: #bdbdbd } }
body { font: 15px/1.5 sans-serif; max-width: 60rem; margin: 2rem auto; padding: 0 1rem; background: var(--paper); color: var(--ink) }
a { color: var(--link) } a:focus-visible, summary:focus-visible { outline: 3px solid var(--link); outline-offset: 2px }
nav a { margin-right: 1rem } h1 { margin-bottom: 0 } h2 { margin-top: 2.5rem; border-bottom: 1px solid var(--line) }
table { border-collapse: collapse; width: 100% } td, th { text-align: left; padding: .2rem .8rem .2rem 0 }
td { border-top: 1px solid var(--line) } .soft { color: var(--soft) } .finding { color: var(--wrong) }
figure { margin: 0 0 1rem; display: inline-block; vertical-align: top } img { max-width: 100%; height: auto }
figcaption { color: var(--soft) } .thumbnails figure { width: 19rem; margin-right: .6rem } .thumbnails img { background: #222; width: 100% }
.spark { width: 9rem; height: 1.5rem; display: block } .spark polyline { fill: none; stroke-width: 1.3 }
.c0 { stroke: var(--c0) } .c1 { stroke: var(--c1) } .c2 { stroke: var(--c2) } .c3 { stroke: var(--c3) }
summary { cursor: pointer; font-weight: bold }
)";

/// What a policy names a style by that it allows.
std::string HashOf(const char *style)
{
    const QByteArray hash = QCryptographicHash::hash(QByteArray(style), QCryptographicHash::Sha256);
    return "'sha256-" + hash.toBase64().toStdString() + "'";
}

std::string Cell(const std::string &text)
{
    return "<td>" + EscapedMarkup(text) + "</td>";
}

std::string Cell(const WideString &text)
{
    return Cell(ToUtf8(text));
}

std::string Head(const Project &project, const std::string &more, const std::string &policy)
{
    const std::string name = EscapedMarkup(ToUtf8(project.Name()));
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src 'self'; "
           "style-src " +
           HashOf(kStyle) + "; base-uri 'none'; form-action 'none'" + policy +
           "\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta name=\"color-scheme\" content=\"light dark\">\n"
           "<title>" +
           name + "</title>\n<style>" + kStyle + "</style>\n" + more + "</head>\n<body>\n<h1>" + name +
           "</h1>\n<p class=\"soft\">" + EscapedMarkup(ToUtf8(project.Filename())) + "</p>\n";
}

/// The way to the parts of the page that there are.
std::string Navigation(const std::string &body)
{
    std::string links;
    const std::string mark = "<h2 id=\"";
    for (std::size_t at = body.find(mark); at != std::string::npos; at = body.find(mark, at + 1)) {
        const std::size_t id = at + mark.size();
        const std::size_t end = body.find('"', id);
        const std::size_t title = body.find('>', end) + 1;
        links += "<a href=\"#" + body.substr(id, end - id) + "\">" +
                 body.substr(title, body.find('<', title) - title) + "</a>\n";
    }
    return "<nav aria-label=\"Parts\">\n" + links + "</nav>\n";
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
    std::string html = "<h2 id=\"facts\">Facts</h2>\n<table>\n";
    for (const auto &[name, count] : rows)
        html += "<tr>" + Cell(name) + Cell(std::to_string(count)) + "</tr>\n";
    return html + "</table>\n";
}

std::string Assets(const Project &project)
{
    const QuietStandardError quiet;
    std::string html =
        "<h2 id=\"assets\">Assets</h2>\n<table>\n<tr><th>Name</th><th>Kind</th><th>Size</th><th></th></tr>\n";
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
    std::string html = "<h2 id=\"findings\">Findings</h2>\n";
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

std::string Figure(const ReportPicture &picture)
{
    const std::string file = EscapedMarkup(picture.file);
    const std::string caption = EscapedMarkup(picture.caption);
    const std::string size = picture.size.isEmpty()
                                 ? ""
                                 : " width=\"" + std::to_string(picture.size.width()) + "\" height=\"" +
                                       std::to_string(picture.size.height()) + "\"";
    return "<figure><a href=\"" + file + "\"><img loading=\"lazy\"" + size + " src=\"" + file + "\" alt=\"" +
           caption + "\"></a><figcaption>" + caption + "</figcaption></figure>\n";
}

std::string Pictures(const std::string &id, const std::string &title,
                     const std::vector<ReportPicture> &pictures)
{
    if (pictures.empty())
        return {};
    std::string html = "<h2 id=\"" + id + "\">" + title + "</h2>\n<div class=\"" + id + "\">\n";
    for (const ReportPicture &picture : pictures)
        html += Figure(picture);
    return html + "</div>\n";
}

/// Curves in small, each with the way to its large picture; folded up where they would be long.
std::string Curves(const ReportContent &content)
{
    if (content.curves.empty())
        return {};
    std::string html = "<h2 id=\"curves\">Animated properties</h2>\n<details" +
                       std::string(content.curves.size() > 40 ? "" : " open") + "><summary>" +
                       Counted(content.curves.size(), "curve") +
                       "</summary>\n<table>\n<tr><th>Composition</th><th>Layer</th><th>Property</th>"
                       "<th>Key frames</th><th>Curve</th></tr>\n";
    for (const ReportCurve &curve : content.curves) {
        const std::string name = EscapedMarkup(curve.property);
        html +=
            "<tr>" + Cell(curve.composition) + Cell(curve.layer) + "<td>" +
            (curve.file.empty() ? name : "<a href=\"" + EscapedMarkup(curve.file) + "\">" + name + "</a>") +
            "</td>" + Cell(std::to_string(curve.keyFrames)) + "<td>" + curve.sparkline + "</td></tr>\n";
    }
    html += "</table>\n</details>\n";
    if (content.curvesLeftOut > 0)
        html += "<p class=\"soft\">and " + std::to_string(content.curvesLeftOut) + " more.</p>\n";
    return html;
}

} // namespace

std::string ReportPage(const Project &project, const ReportContent &content, const std::string &head,
                       const std::string &policy)
{
    const std::string body = Pictures("thumbnails", "Compositions", content.compositions) +
                             LeftOut(content.leftOut) + Facts(project) + Findings(content.findings) +
                             Assets(project) + Pictures("timeline", "Timeline", content.timeline) +
                             Curves(content) +
                             Pictures("tree", "Who owns and who refers to whom", content.tree);
    return Head(project, head, policy) + Navigation(body) + body + "</body>\n</html>\n";
}

} // namespace marlet::tool
