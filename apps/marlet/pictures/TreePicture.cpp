#include "TreePicture.h"

#include "document/LayerContent.h"
#include "output/Output.h"
#include "output/SvgPicture.h"

#include <marlet/checks/OwnershipTree.h>

#include <algorithm>
#include <unordered_map>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr double kRow = 20;
constexpr double kStep = 18;
constexpr double kTop = 30;
constexpr double kTreeWidth = 520;
constexpr double kWidth = 900;

constexpr char kStyle[] = R"(
.background { fill: #fcfcfc }
text { font: 12px sans-serif; fill: #222 }
.kind { fill: #888 }
.branch { stroke: #ccc }
.reference { fill: none; stroke-width: 1.2; opacity: 0.7 }
.asset { stroke: #1565c0; fill: none } .parent { stroke: #2e7d32; fill: none } .layer { stroke: #6a1b9a; fill: none }
.folder { stroke: #bbb; fill: none } .partner { stroke: #e65100; fill: none } .transition { stroke: #00838f; fill: none }
.missing { fill: #c62828 }
)";

double RowOf(std::size_t place)
{
    return kTop + kRow * static_cast<double>(place);
}

double IndentOf(const OwnedObject &object)
{
    return 16 + kStep * static_cast<double>(object.depth);
}

void DrawObjects(SvgPicture &picture, const std::vector<OwnedObject> &objects)
{
    std::vector<std::size_t> owners; ///< the last object of each depth
    for (std::size_t place = 0; place < objects.size(); ++place) {
        const OwnedObject &object = objects[place];
        owners.resize(object.depth);
        const double x = IndentOf(object);
        const double y = RowOf(place);
        if (!owners.empty()) {
            picture.Add("line", {{"class", "branch"},
                                 {"x1", x - kStep + 4},
                                 {"y1", RowOf(owners.back()) + 4},
                                 {"x2", x - kStep + 4},
                                 {"y2", y - 4}});
            picture.Add(
                "line",
                {{"class", "branch"}, {"x1", x - kStep + 4}, {"y1", y - 4}, {"x2", x - 2}, {"y2", y - 4}});
        }
        owners.push_back(place);
        picture.Open("text", {{"x", x}, {"y", y}});
        picture.Add("tspan", {{"class", "kind"}}, object.kind + " ");
        picture.Add("tspan", {}, OneLine(object.name));
        picture.Close();
    }
}

/// Arcs bulge out the farther the longer they are, so that those inside of others can be told apart.
void DrawArc(SvgPicture &picture, const ObjectReference &reference, std::size_t target,
             const std::vector<OwnedObject> &objects)
{
    const double from = RowOf(reference.from) - 4;
    const double to = RowOf(target) - 4;
    const double bulge = kTreeWidth + std::min(std::abs(to - from) * 0.6 + 24, (kWidth - kTreeWidth) * 1.3);
    picture.Open("path", {{"class", "reference " + reference.role},
                          {"d", "M" + SvgNumber(kTreeWidth) + "," + SvgNumber(from) + " C" +
                                    SvgNumber(bulge) + "," + SvgNumber(from) + " " + SvgNumber(bulge) + "," +
                                    SvgNumber(to) + " " + SvgNumber(kTreeWidth) + "," + SvgNumber(to)}});
    picture.Add("title", {},
                OneLine(objects[reference.from].name) + " has the " + reference.role + " " +
                    OneLine(objects[target].name));
    picture.Close();
    picture.Add("circle", {{"class", reference.role}, {"cx", kTreeWidth}, {"cy", to}, {"r", 2.5}});
}

void DrawReferences(SvgPicture &picture, const OwnershipTree &tree)
{
    std::unordered_map<kytl::KyID, std::size_t> places;
    for (std::size_t place = 0; place < tree.objects.size(); ++place)
        places.emplace(tree.objects[place].id, place);
    for (const ObjectReference &reference : tree.references) {
        const auto target = places.find(reference.target);
        if (target != places.end())
            DrawArc(picture, reference, target->second, tree.objects);
        else
            picture.Add("text", {{"class", "missing"}, {"x", kTreeWidth + 6}, {"y", RowOf(reference.from)}},
                        reference.role + " missing: " + reference.target.ToNarrowString());
    }
}

std::vector<kytl::KyID> NamedByRibbon(const AbstractLayer &layer)
{
    std::vector<kytl::KyID> named;
    for (const LayerReference &reference : LayerReferences(layer))
        if (reference.holder == LayerReference::Holder::Effect3D)
            named.push_back(reference.target);
    return named;
}

} // namespace

std::string TreePicture(const project::Project &project)
{
    const OwnershipTree tree = OwnershipOf(project, NamedByRibbon);
    SvgPicture picture(kWidth, RowOf(tree.objects.size()) + kRow, kStyle);
    DrawReferences(picture, tree);
    DrawObjects(picture, tree.objects);
    return picture.Text();
}

} // namespace marlet::tool
