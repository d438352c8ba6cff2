// What nobody knows, in a project that is edited before it is saved.

#include "Loading.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/LoadOptions.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

using namespace marlet::project;
using testing::HasSubstr;

namespace
{

/// A project with the layers A to D, behind and in front of which something stands that nobody knows.
struct Kept : testing::Test {
    std::shared_ptr<Project> project = Project::Create(nullptr);

    Kept()
    {
        const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Pal, 100);
        project->Assets().All().Add(composition);
        for (const char16_t *name : {u"A", u"B", u"C", u"D"}) {
            const auto layer = PointLayer::Create(name);
            layer->SetParentComposition(composition);
            composition->Layers().Add(layer);
        }
        std::string text = ToUtf8(project->Serialize());
        text.insert(text.find("<Layers>") + 8, "\n    <Odd at=\"0\"/>");
        for (const char *name : {"B", "D"}) {
            const std::size_t end =
                text.find("</PointLayer>\n", text.find("<Name>" + std::string(name) + "<")) + 14;
            text.insert(end, "     <Odd at=\"" + std::string(name) + "\"/>\n");
        }
        project = Load(text);
    }

    static std::shared_ptr<Project> Load(const std::string &text)
    {
        return Project::CreateFromXml(FromUtf8(text), u"", nullptr, NoEffects(), {.keepUnknown = true});
    }

    /// The names of the layers of a composition, and between them of the others where they stand.
    static std::string Order(const Project &project, std::size_t composition = 0)
    {
        const std::string text = ToUtf8(project.Serialize());
        std::size_t at = text.find("<Layers>");
        for (std::size_t i = 0; i < composition; ++i)
            at = text.find("<Layers>", at + 1);
        const std::size_t end = text.find("</Layers>", at);
        std::string order;
        for (; (at = text.find('<', at)) < end; ++at) {
            if (text.compare(at, 6, "<Name>") == 0)
                order += text[at + 6];
            if (text.compare(at, 9, "<Odd at=\"") == 0)
                (order += '-') += text[at + 9];
        }
        return order;
    }
};

} // namespace

TEST_F(Kept, ElementsStayBehindTheObjectInFrontOfThem)
{
    using Layers = CompositionAsset::LayerList;
    const struct {
        const char *name;
        std::function<void(Layers &)> edit;
        const char *order;
    } cases[] = {
        {"nothing", [](Layers &) {}, "-0AB-BCD-D"},
        {"the first is removed", [](Layers &all) { all.erase(all.begin()); }, "-0B-BCD-D"},
        {"the one in front is removed", [](Layers &all) { all.erase(std::next(all.begin())); }, "-0A-BCD-D"},
        {"all in front are removed", [](Layers &all) { all.erase(all.begin(), std::next(all.begin(), 2)); },
         "-0-BCD-D"},
        {"the one in front goes to the end",
         [](Layers &all) { std::rotate(std::next(all.begin()), std::next(all.begin(), 2), all.end()); },
         "-0ACD-DB-B"},
        {"others come in front", [](Layers &all) { all.insert(all.begin(), PointLayer::Create(u"X")); },
         "-0XAB-BCD-D"},
        {"all are removed", [](Layers &all) { all.Clear(); }, "-0-B-D"},
    };
    for (const auto &one : cases) {
        SCOPED_TRACE(one.name);
        const auto edited = Load(ToUtf8(project->Serialize()));
        one.edit(OnlyComposition(*edited)->Layers());
        EXPECT_EQ(Order(*edited), one.order);
        const WideString saved = edited->Serialize();
        EXPECT_EQ(Load(ToUtf8(saved))->Serialize(), saved);
    }
    // The layers of a copy have other IDs.
    project->Assets().All().Add(
        std::static_pointer_cast<CompositionAsset>(OnlyComposition(*project)->Clone()));
    EXPECT_EQ(Order(*project, 1), "-0AB-BCD-D");
}

TEST_F(Kept, AttributesStayWithTheirElement)
{
    const auto point = OnlyComposition(*project)->Layers().front();
    auto &keys = point->Animation().KeyFrames("rotationZ");
    for (int time : {100, 200, 300})
        keys.Add(KeyFrame(time, float(time)));
    std::string text = ToUtf8(project->Serialize());
    const std::string key = "<Key Time=\"200\"";
    text.insert(text.find(key) + key.size(), " odd=\"1\"");
    const auto edited = Load(text);
    auto &changed = OnlyComposition(*edited)->Layers().front()->Animation().KeyFrames("rotationZ");
    changed.Remove(100);
    EXPECT_THAT(ToUtf8(edited->Serialize()), testing::ContainsRegex("<Key Time=\"200\"[^\n]* odd=\"1\""));
}
