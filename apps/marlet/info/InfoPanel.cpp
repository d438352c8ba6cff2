#include "InfoParts.h"
#include "options/TypedValue.h"
#include "output/Output.h"

#include <marlet/project/PanelRenderState.h>

namespace marlet::tool
{

using namespace project;

namespace
{

using Layout = PanelRenderState::LayoutType;
using Splitter = PanelRenderState::SplitterType;

constexpr int kLayouts = 5;
constexpr int kSplitters = 3;
/// No layout has more.
constexpr int kPositions = 4;

struct Place {
    int layout;
    int position;
};

std::vector<Place> PlacesOf(const PanelRenderState &panel, const kytl::KyID &view)
{
    std::vector<Place> places;
    for (int layout = 0; layout < kLayouts; ++layout)
        for (int position = 0; position < kPositions; ++position)
            if (panel.ViewStateForPosition(Layout(layout), position) == view)
                places.push_back({layout, position});
    return places;
}

std::string ViewText(const PanelRenderState &panel, const PanelRenderState::State &view)
{
    std::string text = "view of type " + std::to_string(static_cast<int>(view.Type));
    for (const Place &place : PlacesOf(panel, view.ID))
        text +=
            ", at position " + std::to_string(place.position) + " of layout " + std::to_string(place.layout);
    text += ", camera scale " + NumberText(view.CameraScale) + " at " + ValueText(view.CameraPosition) +
            ", texture scale " + NumberText(view.TextureScale) + " at " + ValueText(view.TexturePosition);
    return text + (view.Active ? ", active" : "");
}

} // namespace

void WritePanelText(const std::string &name, const PanelRenderState &panel, Output &output)
{
    const int layout = static_cast<int>(panel.Layout());
    std::string text = name + ": layout " + std::to_string(layout);
    if (layout >= 0 && layout < kLayouts)
        for (int splitter = 0; splitter < kSplitters; ++splitter)
            text += (splitter == 0 ? ", splitters " : " ") +
                    NumberText(panel.LayoutSplitterPosition(panel.Layout(), Splitter(splitter)));
    output.Line("  " + text + ", " + Counted(panel.ViewStates().Count(), "view"));
    for (const PanelRenderState::State *view : panel.ViewStates())
        output.Line("    " + ViewText(panel, *view));
}

void WritePanelJson(const char *ownerKey, const kytl::KyID &owner, const std::string &name,
                    const PanelRenderState &panel, Output &output)
{
    JsonWriter json = BeginJson("panel");
    json.Member(ownerKey, owner).Member("panel", name).Member("layout", static_cast<int>(panel.Layout()));
    json.Key("splitters").BeginArray();
    for (int layout = 0; layout < kLayouts; ++layout) {
        json.BeginArray();
        for (int splitter = 0; splitter < kSplitters; ++splitter)
            json.Value(panel.LayoutSplitterPosition(Layout(layout), Splitter(splitter)));
        json.EndArray();
    }
    json.EndArray().Member("views", panel.ViewStates().Count());
    EndJson(json, output);
    for (const PanelRenderState::State *view : panel.ViewStates()) {
        JsonWriter line = BeginJson("view");
        line.Member(ownerKey, owner)
            .Member("panel", name)
            .Member("id", view->ID)
            .Member("type", static_cast<int>(view->Type))
            .Member("layout", static_cast<int>(view->Layout))
            .Member("active", view->Active)
            .Member("camera_scale", view->CameraScale);
        WriteValue(line.Key("camera_position"), view->CameraPosition);
        line.Member("texture_scale", view->TextureScale);
        WriteValue(line.Key("texture_position"), view->TexturePosition);
        line.Key("positions").BeginArray();
        for (const Place &place : PlacesOf(panel, view->ID))
            line.BeginObject().Member("layout", place.layout).Member("position", place.position).EndObject();
        line.EndArray();
        EndJson(line, output);
    }
}

} // namespace marlet::tool
