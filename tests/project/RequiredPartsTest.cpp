#include "Loading.h"

#include <marlet/foundation/Exceptions.h>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <map>
#include <set>
#include <sstream>

using namespace marlet::project;

namespace
{

constexpr const char *kNewer =
    "The project file was saved by a newer version of the application than this one.";

using Names = std::set<std::string>;

/// The elements whose children are lists or values, which may all be missing.
const Names kLists = {"Assets",   "SubFolders", "Layers", "Masks",   "Points",   "Tokens",
                      "Formats",  "Animation",  "Value",  "Default", "Static",   "bool",
                      "int32_t",  "float",      "KyID",   "wstring", "Metadata", "Views",
                      "Trackers", "Video",      "Audio",  "Objects"};

/// What a reader does without elsewhere; it asks for all others.
const Names kOptional = {
    "ProjectSettings",    "AssetList",   "Assets",  "SubFolders", "Metadata",      "Instances",
    "RenderSettings",     "Layers",      "Effects", "Masks",      "MotionPath",    "Points",
    "AudioVideoSettings", "ViewerState", "Views",   "Options",    "Trackers",      "Primary",
    "Secondary",          "Video",       "Audio",   "Objects",    "EditorSequence"};
const Names kOptionalAttributes = {"Ft", "Ch", "Jf", "K", "V"};

/// The first property that each class looks for, which one without its properties is said to lack.
const std::map<std::string, std::string> kFirstProperty = {
    {"AssetLayer", "anchorPoint"}, {"Primary", "featurePosition"}, {"Secondary", "featurePosition"},
    {"CameraLayer", "position"},   {"LightLayer", "position"},     {"PointLayer", "anchorPoint"},
    {"GradeLayer", "opacity"},     {"TextLayer", "anchorPoint"},   {"Mask", "opacity"},
    {"Point", "position"},         {"VisualObject", "opacity"},    {"AudioObject", "audioLevel"}};

bool IsPanelLayout(std::string_view name)
{
    return name.starts_with("Layout");
}

bool IsProperty(const pugi::xml_node &element)
{
    return std::string_view(element.parent().name()) == "PropertyManager";
}

std::string MissingProperty(const std::string &name)
{
    return "The contents of the project file cannot be read. (9, " + name + ")";
}

/// What a load must say of a document that lacks the element; empty if it does without.
std::string WordsWithout(const pugi::xml_node &element)
{
    const std::string name = element.name();
    const pugi::xml_node parent = element.parent();
    if (element == element.root().first_child())
        return "Wrong tag name\nProject";
    if (IsProperty(element))
        return name.starts_with("extra") ? "" : MissingProperty(name);
    if (IsProperty(parent))
        return name == "Default" || name == "Static" ? "Missing element\n" + name : "";
    if (kLists.contains(parent.name()) || kOptional.contains(name) || IsPanelLayout(name))
        return "";
    if (name == "LayerBase")
        return MissingProperty(kFirstProperty.at(parent.name()));
    if (name == "PropertyManager") {
        const bool isLayer = std::string_view(parent.name()) == "LayerBase";
        return MissingProperty(kFirstProperty.at((isLayer ? parent.parent() : parent).name()));
    }
    return name == "BinFolder" ? "Wrong tag name\nBinFolder" : "Missing element\n" + name;
}

std::string WordsWithout(const pugi::xml_node &element, const std::string &attribute)
{
    // A view without an ID has an empty one.
    if (const std::string_view name = element.name();
        name == "State" || name == "Options" || IsPanelLayout(name))
        return attribute == "ID" ? "Cannot construct KyID from string" : "";
    const bool isRequired =
        attribute == "Version" ||
        (IsProperty(element) ? attribute == "Type" : !kOptionalAttributes.contains(attribute));
    if (isRequired)
        return std::string(element.name()) + " is missing attribute " + attribute + "\n";
    if (attribute == "V" && std::string_view(element.parent().name()) == "KyID")
        return "Cannot construct KyID from string";
    return "";
}

std::string Failure(const pugi::xml_document &document)
{
    std::ostringstream text;
    document.save(text, "", pugi::format_raw | pugi::format_no_declaration);
    try {
        Load(FromUtf8(text.str()));
    } catch (const ProjectException &failure) {
        return std::string(failure.what()) + " (" + std::to_string(failure.Code()) + ", " + failure.Detail() +
               ")";
    } catch (const std::exception &failure) {
        return failure.what();
    }
    return "";
}

template <class Function> void ForEachElement(const pugi::xml_node &element, Function &&function)
{
    function(element);
    for (const pugi::xml_node &child : element.children())
        if (child.type() == pugi::node_element)
            ForEachElement(child, function);
}

/// Every element that is written stands at least once in the document.
class RequiredParts : public testing::Test
{
protected:
    RequiredParts()
    {
        const std::string text = ToUtf8(ReadDocument("good/noise.xml"));
        document_.load_string(text.c_str(), pugi::parse_full | pugi::parse_ws_pcdata);
    }

    pugi::xml_document document_;
};

} // namespace

// What bears a name that no reader looks for is as good as gone.

TEST_F(RequiredParts, AreAllElementsButTheOptional)
{
    ForEachElement(document_.document_element(), [this](pugi::xml_node element) {
        const std::string name = element.name();
        const std::string path = element.path();
        const std::string expected = WordsWithout(element);
        element.set_name("Absent");
        EXPECT_EQ(Failure(document_), expected) << path;
        element.set_name(name.c_str());
    });
    EXPECT_EQ(Failure(document_), "");
}

TEST_F(RequiredParts, AreAllAttributesButTheOptional)
{
    ForEachElement(document_.document_element(), [this](const pugi::xml_node &element) {
        for (pugi::xml_attribute attribute : element.attributes()) {
            const std::string name = attribute.name();
            attribute.set_name("absent");
            EXPECT_EQ(Failure(document_), WordsWithout(element, name)) << element.path() << " " << name;
            attribute.set_name(name.c_str());
        }
    });
    EXPECT_EQ(Failure(document_), "");
}

TEST_F(RequiredParts, MustNotBeOfANewerVersion)
{
    ForEachElement(document_.document_element(), [this](const pugi::xml_node &element) {
        pugi::xml_attribute version = element.attribute("Version");
        if (!version)
            return;
        const int newest = version.as_int();
        version.set_value(newest + 1);
        EXPECT_EQ(Failure(document_), element == document_.document_element() ? "" : kNewer)
            << element.path();
        version.set_value(newest);
    });
    EXPECT_EQ(Failure(document_), "");
}
