#pragma once

#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/Project.h>
#include <marlet/recovery/Recovery.h>

#include "plugins/PluginManager.h"
#include "plugins/Ribbon.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

using namespace marlet::project;
using marlet::tool::EffectFactory;
using marlet::tool::Plugins;

inline std::string ReadExample(const std::string &name)
{
    std::ifstream file(MARLET_EXAMPLES "/" + name + ".xml", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What a text is recovered to, after it was loaded with and without plug-ins.
inline std::string Recovered(const std::string &text, LoadReport &report)
{
    const WideString recovered = RecoverProject(text, u"", Plugins(), EffectFactory(), report);
    LoadOptions options;
    options.keepUnknown = true;
    EXPECT_NO_THROW(Project::CreateFromXml(recovered, u"", Plugins(), EffectFactory(), options));
    EXPECT_NO_THROW(Project::CreateFromXml(recovered, u"", nullptr, EffectFactory(), options));
    return ToUtf8(recovered);
}

inline std::string Recovered(const std::string &text)
{
    LoadReport report;
    return Recovered(text, report);
}

struct Item {
    std::string bytes;
    std::size_t end;
};

/// The assets, layers and objects of a text that Marlet wrote, found by its lines alone.
inline std::vector<Item> ItemsOf(const std::string &text)
{
    std::vector<Item> items;
    for (const std::string tag : {"SolidAsset", "ImageAsset", "MediaAsset", "CompositionAsset", "AssetLayer",
                                  "TextLayer", "GradeLayer", "CameraLayer", "LightLayer", "PointLayer",
                                  "Effect3DLayer", "VisualObject", "AudioObject"}) {
        for (std::size_t at = text.find("<" + tag + " "); at != std::string::npos;
             at = text.find("<" + tag + " ", at + 1)) {
            const std::size_t line = text.rfind('\n', at);
            const std::string close = text.substr(line, at - line) + "</" + tag + ">";
            const std::size_t end = text.find(close, at) + close.size();
            items.push_back({text.substr(at, end - at), end});
        }
    }
    return items;
}

constexpr char kMainID[] = "00000000-0000-0000-0000-000000000001";
constexpr char kTwoID[] = "00000000-0000-0000-0000-000000000002";

inline void ReplaceAll(std::string &text, const std::string &from, const std::string &to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at))
        text.replace(at, from.size(), to);
}

/// A project with the layers One, Two and Three in the composition Main, without blanks between the lines.
inline std::string SmallProject()
{
    const auto project = Project::Create(nullptr);
    const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 250);
    project->Assets().All().Add(composition);
    for (const char16_t *name : {u"One", u"Two", u"Three"}) {
        composition->Layers().Add(PointLayer::Create(name));
        composition->Layers().back()->SetParentComposition(composition);
    }
    std::string text = ToUtf8(project->Serialize());
    ReplaceAll(text, composition->ID().ToNarrowString(), kMainID);
    ReplaceAll(text, (*std::next(composition->Layers().begin()))->ID().ToNarrowString(), kTwoID);
    ReplaceAll(text, "\n ", "\n");
    return text;
}
