#include "Loading.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/LoadOptions.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

using namespace marlet::project;
using Severity = LoadEntry::Severity;

namespace
{

/// The words of the failure, or none.
std::string LoadWith(const std::string &text, LoadReport &report, bool keeps)
{
    try {
        Project::CreateFromXml(FromUtf8(text), u"", nullptr, NoEffects(),
                               {.report = &report, .keepUnknown = keeps});
    } catch (const std::exception &error) {
        return error.what();
    }
    return {};
}

struct Damage {
    const char *text;  ///< the first of these in the document
    const char *other; ///< stands there instead
    Severity severity;
    const char *what;
    const char *path; ///< its end
    /// What the entry points to in the damaged text, if it is not where the other text begins.
    const char *place = nullptr;
};

constexpr Damage kDamages[] = {
    {"<BPC>16</BPC>", "<Bpc>16</Bpc>", Severity::Error, "Missing element BPC", "/ProjectSettings",
     "<ProjectSettings"},
    {"<Width>1280</Width>", "<Width>1280px</Width>", Severity::Loss,
     "Width is no number: \"1280px\"; 0 is read", "/SolidAsset \"Sky\"/Width"},
    {"<Instances/>", "<Layers/><Instances/>", Severity::Loss, "Layers is not known here; it is passed over",
     "/SolidAsset \"Sky\"/Layers"},
    {"<PAR>7</PAR>", "<PAR>7</PAR><PAR>8</PAR>", Severity::Loss,
     "PAR stands there already, and the first one counts; it is passed over", "/PAR[2]", "<PAR>8"},
    {"<FogColor R", "<FogColor a=\"\" R", Severity::Loss, "attribute a is not known; it is passed over",
     "/RenderSettings/FogColor"},
    {"<Layers>", "<Layers>words", Severity::Loss, "text between elements is passed over", "/Layers"},
    {"<PointLayer Version=\"0\">", "<PointLayer Version=\"7\">", Severity::Error,
     "The project file was saved by a newer version of the application than this one: its version is 7",
     "/Layers/PointLayer \"child\""},
    {"<ParentLayerID>00000008", "<ParentLayerID>0000000f", Severity::Warning,
     "the parent of the layer is not there", "/LayerBase/ParentLayerID"},
    {"<ID>00000003-aaaa", "<ID>00000002-aaaa", Severity::Warning, "the ID is that of another one too",
     "/ImageAsset \"moon.png\"/ID"},
    {"<ID>00000002-aaaa-4bbb-8ccc-0123456789ab</ID>\n     </Assets>",
     "<ID>0000000f-aaaa-4bbb-8ccc-0123456789ab</ID>\n     </Assets>", Severity::Loss,
     "the folder names an asset that is not there", "/Assets/ID"},
    {"<Key Time=\"1000\"", "<Key Time=\"0\"", Severity::Warning, "several key frames stand at time 0",
     "/position/Animation", "<Animation>"},
    {"<Visible>1</Visible>", "<Visible>yes</Visible>", Severity::Error,
     "bad lexical cast: source type value could not be interpreted as target: \"yes\"", "/LayerBase/Visible"},
    {"<KyPoint3_32f X=\"100\" Y=\"0\" Z=\"0\"/>", "<Quaternion/>", Severity::Loss,
     "no value is of the type Quaternion; another stands in for it; it is passed over",
     "/Key[2]/Value/Quaternion"},
    {"<Scale3D X=\"50\" Y=\"33.5\" Z=\"100\"/>", "<float>3</float>", Severity::Warning,
     "the value is of another type than the default", "/scale/Static", "<Static>\n          <float>3"},
    {"<Dimensions>1", "<Dimensions>9", Severity::Warning,
     "Dimensions is 9, which stands for nothing; it is kept as it is", "/PointLayer \"child\"/Dimensions"},
    {"<Width>1280", "<Width>-1", Severity::Warning, "Width is -1, which no picture has; it is kept as it is",
     "/Width"},
    {"<Height>", "<Height>99", Severity::Warning,
     "Height is 99720, which no picture has; it is kept as it is", "/Height"},
    {"<Key Time=\"1000\" Type=\"1\"", "<Key Time=\"1000\" Type=\"3\"", Severity::Warning,
     "Type is 3, which stands for nothing; it is kept as it is", "/Key[2]"},
    {"<scaleLinked Type=\"1\"", "<scaleLinked Type=\"2\"", Severity::Warning,
     "Type is 2, which stands for nothing; it is kept as it is", "/scaleLinked"},
    {"<position Type=\"0\" Spatial=\"1\"", "<position Type=\"0\" Spatial=\"7\"", Severity::Warning,
     "Spatial is 7, which is neither 0 nor 1; 0 is read", "/position"},
    {"<Key Time=\"1000\" Type=\"1\"", "<Key Time=\"3000\" Type=\"1\"", Severity::Warning,
     "the key frame stands behind a later one; it is put in order of time", "/Key[3]", "<Key Time=\"2000\""},
    {"<Layers>", "<Layers><!-- > --><?b </?>", Severity::Note, "2 comments and instructions are passed over",
     "/Layers", "<!--"},
    {"<position Type=\"0\" Spatial=\"1\"", "<position Type=\"1\" Spatial=\"1\"", Severity::Warning,
     "the property position is not to be animated here, though it could be", "/position"},
    {"<scale Type=\"0\" Spatial=\"0\"", "<scale Type=\"0\"", Severity::Warning,
     "Spatial is missing; 0 is read", "/scale"},
    {"<Project ", "<?xml version=\"1.0\"?><Project ", Severity::Note,
     "the XML declaration is passed over; what is saved is UTF-8 and has none", "", "<?xml"},
    {"<Project ", "<!-- of --><Project ", Severity::Note, "a comment or an instruction is passed over",
     "Project \"Two <words> & more\""},
    {"<Name>moon.png", "<Name>Sky", Severity::Note, "the name is that of another one too",
     "/ImageAsset \"Sky\"/Name"},
    {"</PointLayer>", "</PointLayers>", Severity::Error,
     "the text is no XML: the end tag is one of \"PointLayers\", the element is \"PointLayer\"; see line 60, "
     "column 6; open there: Project \"Two <words> & more\" (line 1), AssetList (line 7), Assets (line 8), "
     "CompositionAsset \"Shot\" (line 27), Layers (line 59), PointLayer \"child\" (line 60)",
     "Project \"Two <words> & more\"/AssetList/Assets/CompositionAsset \"Shot\"/Layers/PointLayer \"child\""},
    {"<KyPoint3_32f X=\"100\" Y=\"0\" Z=\"0\"/>", "<KyPoint3_32f X='1' X='2'/>", Severity::Error,
     "the text is no XML: the attribute \"X\" stands twice in its element; see line 102, column 27; open "
     "there: Assets (line 8), CompositionAsset \"Shot\" (line 27), Layers (line 59), PointLayer \"child\" "
     "(line "
     "60), LayerBase (line 62), PropertyManager (line 74), position (line 83), Animation (line 90), Key "
     "(line "
     "98), Value (line 101)",
     "/Animation/Key/Value", "X='2'"},
    {"<Project ", "<!DOCTYPE Project><Project ", Severity::Error,
     "the text is no XML: it declares a document type, which no project does", ""},
    {"<scale Type", "<position Type=\"0\"><Default/><Static/></position><scale Type", Severity::Loss,
     "position stands there already, and the first one counts; it is passed over", "/position[2]"},
};

/// Where a place in a text of ASCII characters is.
std::pair<int, int> LineAndColumn(const std::string &text, std::size_t offset)
{
    const std::string before = text.substr(0, offset);
    const auto lines = static_cast<int>(std::ranges::count(before, '\n'));
    return {lines + 1, static_cast<int>(offset - (before.rfind('\n') + 1)) + 1};
}

const LoadEntry *Find(const LoadReport &report, const Damage &damage)
{
    const auto found = std::ranges::find_if(report.Entries(), [&damage](const LoadEntry &entry) {
        return entry.severity == damage.severity && entry.what == damage.what &&
               entry.path.ends_with(damage.path);
    });
    return found == report.Entries().end() ? nullptr : &*found;
}

/// Values may hold brackets.
std::size_t TagEnd(const std::string &line, std::size_t at)
{
    bool isQuoted = false;
    for (; isQuoted || line[at] != '>'; ++at)
        isQuoted ^= line[at] == '"';
    return at;
}

/// The document with an element that nobody knows in front of each element and end tag, and an attribute that
/// nobody knows in each element, wherever that is no value or property.
std::string WithUnknown(const std::string &text)
{
    std::string result;
    std::vector<std::string> open;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line); result += line + '\n') {
        const std::size_t indent = line.find_first_not_of(' ');
        const bool isEnd = indent != std::string::npos && line.compare(indent, 2, "</") == 0;
        // What stands elsewhere goes on in a text.
        if (indent == std::string::npos || line[indent] != '<' || indent + isEnd != open.size())
            continue;
        static const std::set<std::string> kOfValues = {"Default", "Static", "Value"};
        const std::string parent = open.empty() ? "PropertyManager" : open.back();
        if (parent != "PropertyManager" && (isEnd || !kOfValues.contains(parent)))
            result += std::string(open.size(), ' ') + "<Odd a='1'>some <b/> text\n</Odd>\n";
        if (isEnd) {
            open.pop_back();
            continue;
        }
        const std::size_t nameEnd = line.find_first_of(" />", indent);
        const std::string name = line.substr(indent + 1, nameEnd - indent - 1);
        const std::size_t tagEnd = TagEnd(line, indent);
        line.insert(line[tagEnd - 1] == '/' ? tagEnd - 1 : tagEnd, " odd=\"1\"");
        // A text may begin with a line feed, too.
        const std::string child = '\n' + std::string(open.size() + 1, ' ') + '<';
        if (text.compare(static_cast<std::size_t>(lines.tellg()) - 1, child.size(), child) == 0)
            open.push_back(name);
    }
    return result;
}

} // namespace

TEST(LoadReport, TellsWhatBecameOfADamageAndWhere)
{
    const std::string whole = ToUtf8(ReadDocument("good/layers.xml"));
    for (const Damage &damage : kDamages) {
        SCOPED_TRACE(damage.other);
        std::string text = whole;
        const std::size_t at = text.find(damage.text);
        ASSERT_NE(at, std::string::npos);
        text.replace(at, std::string(damage.text).size(), damage.other);
        LoadReport report;
        const std::string words = LoadWith(text, report, false);
        EXPECT_EQ(words.empty(), damage.severity != Severity::Error);
        const LoadEntry *entry = Find(report, damage);
        if (!entry) {
            for (const LoadEntry &other : report.Entries())
                ADD_FAILURE() << SeverityName(other.severity) << ": " << other.what << " at " << other.path;
            continue;
        }
        const std::size_t place = damage.place ? text.find(damage.place) : at;
        const std::size_t element = damage.place ? place : text.find('<', at);
        EXPECT_EQ(entry->offset, element);
        EXPECT_EQ(std::pair(entry->line, entry->column), LineAndColumn(text, element));
    }
}

TEST(LoadReport, CountsWhatTheNextSaveDrops)
{
    std::string text = ToUtf8(ReadDocument("good/layers.xml"));
    const std::string value = "<KyPoint3_32f X=\"100\" Y=\"0\" Z=\"0\"/>";
    text.replace(text.find(value), value.size(), "<Quaternion a='1'>  </Quaternion>");
    text.insert(text.find("<Layers>"), "<Odd/>\n    ");
    LoadReport report;
    LoadWith("<?xml version=\"1.0\"?>" + text.substr(0, text.find("<Layers>")) + "<!-- a --><!-- b -->" +
                 text.substr(text.find("<Layers>")),
             report, true);
    EXPECT_EQ(report.CountDropped(), 2u);
    const auto load = [&](bool keeps) {
        return Project::CreateFromXml(FromUtf8(text), u"", nullptr, NoEffects(),
                                      {.report = &report, .keepUnknown = keeps});
    };
    load(false);
    EXPECT_EQ(report.CountDropped(), 2u);
    const auto project = load(true);
    EXPECT_EQ(report.Count(Severity::Loss), 2u);
    EXPECT_EQ(report.CountDropped(), 0u);
    EXPECT_EQ(ToUtf8(project->Serialize()), text);

    // A property that is changed is written anew.
    const auto composition =
        std::dynamic_pointer_cast<CompositionAsset>(project->Assets().GetByType(AssetType::Composition)[0]);
    (*composition->Layers().begin())
        ->Animation()
        .KeyFrames("position")
        .Set(5, kytl::matl::KyPoint<3, float>{1, 2, 3});
    const std::string changed = ToUtf8(project->Serialize());
    EXPECT_EQ(changed.find("Quaternion"), std::string::npos);
    EXPECT_NE(changed.find("<Key Time=\"5\""), std::string::npos);
    EXPECT_NE(changed.find("<Odd/>"), std::string::npos);
}

TEST(LoadReport, IsEmptyWhereNothingIsWrongAndBoundedWhereMuchIs)
{
    for (const char *name : {"good/plain.xml", "good/layers.xml", "good/noise.xml", "good/titles.xml"}) {
        LoadReport report;
        LoadWith(ToUtf8(ReadDocument(name)), report, false);
        EXPECT_EQ(report.FirstLoss(), nullptr) << name;
    }
    constexpr std::size_t kMany = LoadReport::kMostEntries + 500;
    std::string odd;
    for (std::size_t i = 0; i < kMany; ++i)
        odd += "<Odd/>";
    std::string text = ToUtf8(ReadDocument("good/plain.xml"));
    text.insert(text.rfind("</Project>"), odd);
    LoadReport report;
    LoadWith(text, report, false);
    EXPECT_EQ(report.Count(Severity::Loss), kMany);
    EXPECT_EQ(report.Entries().size(), LoadReport::kMostEntries);
    // A report that is used again begins anew, and an error is told however much came before.
    text.replace(text.rfind("<Metadata V"), 11, "<Metadata v");
    LoadWith(text, report, false);
    EXPECT_EQ(report.Count(), report.Entries().size());
    EXPECT_EQ(report.Count(Severity::Error), 1u);
}

TEST(LoadReport, GoesWithALoadThatKeepsEverythingInItsPlace)
{
    for (const char *name :
         {"good/plain.xml", "good/layers.xml", "good/noise.xml", "good/titles.xml", "good/media.xml"}) {
        SCOPED_TRACE(name);
        const std::string text = WithUnknown(ToUtf8(ReadDocument(name)));
        const auto load = [&text](LoadReport *report, bool keeps) {
            return Project::CreateFromXml(FromUtf8(text), u"", nullptr, NoEffects(),
                                          {.report = report, .keepUnknown = keeps});
        };
        LoadReport report;
        EXPECT_EQ(ToUtf8(load(&report, true)->Serialize()), text);
        EXPECT_GT(report.Count(Severity::Loss), 0u);
        // What is told changes nothing, and without the option nothing is kept.
        EXPECT_EQ(ToUtf8(load(nullptr, true)->Serialize()), text);
        EXPECT_EQ(load(&report, false)->Serialize(), ReadDocument(name));
        EXPECT_EQ(load(nullptr, false)->Serialize(), ReadDocument(name));
    }
}
