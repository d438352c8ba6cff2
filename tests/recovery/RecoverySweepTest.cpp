// One kind of damage at every place of a text.

#include "Recovering.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

TEST(Recovery, KeepsWhatStoodWholeBeforeACut)
{
    const auto cutAt = [](const std::string &text, const std::vector<Item> &items, std::size_t cut) {
        LoadReport report;
        const std::string recovered = Recovered(text.substr(0, cut), report);
        for (const Item &item : items) {
            if (item.end <= cut) {
                ASSERT_THAT(recovered, HasSubstr(item.bytes));
            }
        }
        ASSERT_GE(report.Count(LoadEntry::Severity::Loss), 1u);
        ASSERT_EQ(report.Entries().back().offset, cut);
    };
    // A step that comes to all kinds of places in the lines.
    constexpr std::size_t kStep = 1999;
    for (const char *name : {"orbit", "titles", "cut"}) {
        const std::string text = ReadExample(name);
        const std::vector<Item> items = ItemsOf(text);
        ASSERT_GT(items.size(), 10u);
        for (std::size_t cut = text.find('>') + 1; cut < text.rfind("</Project") && !HasFatalFailure();
             cut += kStep) {
            SCOPED_TRACE(name + std::string(" cut at ") + std::to_string(cut));
            cutAt(text, items, cut);
        }
    }
    const std::string titles = ReadExample("titles");
    // A 3D effect is read by the host, whose failures have no place in the text.
    cutAt(titles, ItemsOf(titles), titles.find("<radius Spatial=") + 50);
    const std::string small = SmallProject();
    for (std::size_t cut = small.find('>') + 1; cut < small.rfind("</Project") && !HasFatalFailure();
         cut += 7) {
        SCOPED_TRACE(cut);
        cutAt(small, ItemsOf(small), cut);
    }
}

/// An end tag of whatever is open, behind any element.
TEST(Recovery, GoesOnBehindAnEndTagThatComesTooEarly)
{
    const std::string small = SmallProject();
    const std::vector<Item> items = ItemsOf(small);
    std::vector<std::string> open;
    for (std::size_t at = 0; at < small.size() && !testing::Test::HasFailure();) {
        const std::size_t behind = small.find('>', at) + 1;
        const std::string tag = small.substr(at, behind - at);
        if (tag.starts_with("</"))
            open.pop_back();
        else if (tag[0] == '<' && !tag.ends_with("/>"))
            open.push_back(tag.substr(1, tag.find_first_of(" >") - 1));
        at = std::min(small.find('<', behind), small.size());
        // In the middle of a value it is part of that.
        if (open.empty() || small[behind] != '\n' || at != behind + 1)
            continue;
        for (const std::string &name : open) {
            SCOPED_TRACE("</" + name + "> behind " + std::to_string(behind));
            LoadReport report;
            const std::string recovered =
                Recovered(small.substr(0, behind) + "</" + name + ">" + small.substr(behind), report);
            const auto project = Project::CreateFromXml(FromUtf8(recovered), u"", nullptr, EffectFactory());
            const auto compositions = project->Assets().GetByType(AssetType::Composition);
            ASSERT_EQ(compositions.size(), 1u);
            EXPECT_EQ(std::static_pointer_cast<CompositionAsset>(compositions[0])->Layers().Count(), 3u);
            EXPECT_EQ(report.Count(LoadEntry::Severity::Loss), 0u);
            EXPECT_GE(report.Count(), 1u);
        }
    }
}

/// One byte at a time.
TEST(Recovery, MendsWhatOneByteDoes)
{
    const std::string small = SmallProject();
    const std::vector<Item> items = ItemsOf(small);
    const auto holdsOthers = [&](const std::string &text, std::size_t at) {
        LoadReport report;
        const std::string recovered = Recovered(text, report);
        for (const Item &item : items) {
            // The layers that the byte is not in.
            if (item.bytes.starts_with("<PointLayer") &&
                (item.end <= at || item.end - item.bytes.size() > at)) {
                EXPECT_THAT(recovered, HasSubstr(item.bytes));
            }
        }
    };
    for (std::size_t at = small.find('>') + 1; at < small.rfind("</Project") && !testing::Test::HasFailure();
         at += 211) {
        SCOPED_TRACE(at);
        holdsOthers(std::string(small).erase(at, 1), at);
        holdsOthers(std::string(small).insert(at, 1, small[at]), at);
        for (const char other : {'<', '>', '"', '/', 'x'})
            holdsOthers(std::string(small).replace(at, 1, 1, other), at);
    }
}
