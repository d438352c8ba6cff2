#include "ToolTest.h"

#include <tests/support/LayerTexts.h>
#include <tests/support/TestDocuments.h>
#include <tests/support/TestPlugins.h>

#include <marlet/editor/Transition.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/plugins/EffectInstance.h>

#include <pugixml.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <list>
#include <map>
#include <set>
#include <sstream>

namespace marlet::test
{

namespace
{

namespace fs = std::filesystem;

/// What the schema says of texts, by the validator of libxml2, which is started once for any number of them.
class SchemaTest : public ToolTest
{
protected:
    void Add(const std::string &what, const std::string &text)
    {
        // Numbers keep the line of words that the shell makes short.
        Write(std::to_string(names_.size()) + ".x", text);
        names_.push_back(what);
    }

    /// The names of those that are valid and those that are not.
    std::map<std::string, bool> Validated() const
    {
        const std::string answer =
            Shell("'" MARLET_XMLLINT "' --noout --relaxng '" MARLET_SCHEMA "' *.x").err;
        std::map<std::string, bool> valid;
        for (const std::string &name : names_)
            valid[name] = false;
        std::istringstream lines(answer);
        for (std::string line; std::getline(lines, line);)
            if (line.ends_with(".x validates"))
                valid[names_.at(std::stoul(line))] = true;
        return valid;
    }

private:
    std::vector<std::string> names_;
};

std::vector<fs::path> FilesIn(const fs::path &folder)
{
    std::vector<fs::path> files;
    for (const auto &entry : fs::directory_iterator(folder))
        if (entry.path().extension() == ".xml")
            files.push_back(entry.path());
    EXPECT_FALSE(files.empty()) << folder;
    return files;
}

std::vector<fs::path> Documents(const std::vector<const char *> &folders)
{
    std::vector<fs::path> files;
    for (const char *folder : folders)
        std::ranges::copy(FilesIn(fs::path(MARLET_TEST_DOCUMENTS) / folder), std::back_inserter(files));
    return files;
}

/// Those that a Marlet wrote, of any version, or might have written.
std::vector<fs::path> WrittenDocuments()
{
    std::vector<fs::path> files = Documents({"good", "layers", "plugins", "../../fuzz/seeds"});
    std::ranges::copy(FilesIn(MARLET_EXAMPLES), std::back_inserter(files));
    return files;
}

std::string ReadFile(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Has every plug-in that a document asks for.
class EveryPlugin : public TestPluginManager
{
public:
    std::shared_ptr<AbstractPlugin> FindPlugin(const KyID &id) override
    {
        std::shared_ptr<TestPlugin> &plugin = made_[id.ToNarrowString()];
        if (!plugin) {
            plugin = std::make_shared<TestPlugin>();
            plugin->id = id;
            plugin->version.major = 9;
        }
        return plugin;
    }

private:
    std::map<std::string, std::shared_ptr<TestPlugin>> made_;
};

struct EveryEffect : Abstract3DEffectFactory {
    std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override
    {
        return std::make_shared<PlainBall>("grey");
    }
};

/// Reads a document of any root and writes it again. @throws what the reader throws
std::string SavedAgain(const std::string &text)
{
    static const auto plugins = std::make_shared<EveryPlugin>();
    static const auto plugin = plugins->FindPlugin(KyID::FromString("00000011-aaaa-4bbb-8ccc-0123456789ab"));
    const WideString wide = FromUtf8(text);
    const auto is = [&text](const char *tag) { return text.starts_with(NarrowString("<") + tag); };
    if (is("Instance"))
        return ToUtf8(EffectInstance::CreateFromXml(plugin, wide, {})->Serialize());
    if (is("Transition"))
        return ToUtf8(Transition::CreateFromXml(plugin, wide)->Serialize());
    if (is("TextTokens")) {
        const auto layer = TextLayer::Create(u"", 1, 1);
        TextLayer::FormatList formats;
        layer->DeserializeTokens(wide, layer->Text(), formats);
        return ToUtf8(layer->SerializeTokens(layer->Text().first, nullptr));
    }
    ProjectTextureImageCache textures;
    if (text.find("Layer Version") < text.find('>'))
        return TextOf(*AbstractLayer::CreateFromXml(wide, plugins, EveryEffect(), textures));
    return ToUtf8(Project::CreateFromXml(wide, u"", plugins, EveryEffect())->Serialize());
}

TEST_F(SchemaTest, DescribesWhatIsWritten)
{
    for (const fs::path &path : WrittenDocuments()) {
        Add(path, ReadFile(path));
        Add(path.string() + ", saved again", SavedAgain(ReadFile(path)));
    }
    for (const fs::path &path : Documents({"odd", "editor"}))
        Add(path.string() + ", saved", SavedAgain(ReadFile(path)));

    for (const char *words : {"", " --titles", " --cut --frames=60", " --preset=3 --frames=1"}) {
        ASSERT_EQ(Shell("\"$MARLET\" new made" + std::string(words)).exitCode, 0);
        Add(std::string("new") + words, Read("made"));
    }

    // The ends of what numbers can say.
    PropertyManager numbers;
    auto add = [&numbers, count = 0](const PropertyValue &value) mutable {
        numbers.CreateProperty(("n" + std::to_string(++count)).c_str(), value,
                               PropertyManager::Type::Animatable, nullptr);
    };
    const auto addReals = [&add]<class T>(T) {
        using Limits = std::numeric_limits<T>;
        for (const T value : {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), Limits::max(),
                              Limits::denorm_min(), T(-0.0), T(1e-7)}) {
            add(value);
            const float component = static_cast<float>(value);
            add(kytl::matl::KyPoint<2, float>{component, component});
            add(Scale3D{value, value, value});
        }
    };
    addReals(0.f);
    addReals(0.0);
    add(std::numeric_limits<int>::min());
    add(std::numeric_limits<unsigned int>::max());
    add(static_cast<unsigned char>(255));
    Add("numbers", ToUtf8(numbers.Serialize()));

    for (const auto &[name, valid] : Validated())
        EXPECT_TRUE(valid) << name;
}

/// Bad documents, and such as a reader forgives: twice what may be there once, another order, another case.
TEST_F(SchemaTest, RefusesWhatNobodyWrites)
{
    for (const fs::path &path : Documents({"bad", "odd", "editor"}))
        Add(path.stem(), ReadFile(path));
    std::set<std::string> taken;
    for (const auto &[name, valid] : Validated())
        if (valid)
            taken.insert(name);
    // What stands before the root is not the schema's.
    EXPECT_EQ(taken, std::set<std::string>{"doctype"});
}

/// The documents in parts that are documents of their own: layers, and what is left of projects.
class Parts
{
public:
    Parts()
    {
        for (const fs::path &path : WrittenDocuments()) {
            pugi::xml_document &document = Load(ReadFile(path));
            std::vector<pugi::xml_node> lists;
            for (const pugi::xpath_node &list : document.select_nodes("//Layers"))
                lists.push_back(list.node());
            for (pugi::xml_node list : lists) {
                for (const pugi::xml_node layer : list)
                    documents_.emplace_back().append_copy(layer);
                list.remove_children();
            }
        }
    }

    /// Calls the function for each different element, and for each of its different attributes: once for each
    /// path from the nearest element with a version, or from a property of one type. What is below is read in
    /// the same way wherever that stands.
    template <class Function> void ForEach(Function &&function)
    {
        for (pugi::xml_document &document : documents_)
            ForEach(document.document_element(), "", function);
    }

    static std::string Text(const pugi::xml_node &anywhere)
    {
        std::ostringstream text;
        anywhere.root().first_child().print(text, "", pugi::format_raw);
        return text.str();
    }

private:
    pugi::xml_document &Load(const std::string &text)
    {
        documents_.emplace_back().load_string(text.c_str(), pugi::parse_full | pugi::parse_ws_pcdata_single);
        return documents_.back();
    }

    template <class Function> void ForEach(pugi::xml_node node, std::string path, Function &&function)
    {
        const std::string name = node.name();
        const std::string version = node.attribute("Version").value();
        if (!version.empty() && name != "LayerBase" && name != "PropertyManager" && name != "Effect")
            path.clear();
        path += "/" + name + version;
        if (paths_.insert(path).second)
            function(path, node, pugi::xml_attribute());
        if (std::string_view(node.parent().name()) == "PropertyManager")
            path = "/property " + std::string(node.child("Default").first_child().name());
        std::vector<pugi::xml_attribute> attributes(node.attributes().begin(), node.attributes().end());
        for (const pugi::xml_attribute attribute : attributes)
            if (paths_.insert(path + "/@" + attribute.name()).second)
                function(path + "/@" + attribute.name(), node, attribute);
        for (const pugi::xml_node &child : node.children())
            if (child.type() == pugi::node_element)
                ForEach(child, path, function);
    }

    std::list<pugi::xml_document> documents_;
    std::set<std::string> paths_;
};

/// The text of a part without an element of it.
std::string TextWithout(pugi::xml_node element)
{
    pugi::xml_node parent = element.parent();
    const pugi::xml_node place = parent.insert_child_before(pugi::node_pcdata, element);
    const pugi::xml_node aside = element.root().append_child("aside");
    const pugi::xml_node moved = pugi::xml_node(aside).append_move(element);
    std::string text = Parts::Text(place);
    parent.insert_move_before(moved, place);
    parent.remove_child(place);
    element.root().remove_child(aside);
    return text;
}

std::string TextWithout(pugi::xml_node element, pugi::xml_attribute attribute)
{
    const std::string name = attribute.name();
    const std::string value = attribute.value();
    element.remove_attribute(attribute);
    std::string text = Parts::Text(element);
    element.append_attribute(name.c_str()) = value.c_str();
    return text;
}

bool IsRead(const std::string &text)
{
    try {
        SavedAgain(text);
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

TEST_F(SchemaTest, MissesWhatReadersMiss)
{
    std::map<std::string, bool> isRead;
    Parts().ForEach([&](const std::string &path, pugi::xml_node element, pugi::xml_attribute attribute) {
        if (element == element.root().first_child() && !attribute)
            return;
        const std::string text = attribute ? TextWithout(element, attribute) : TextWithout(element);
        Add(path, text);
        isRead[path] = IsRead(text);
    });
    // What is left of a reference is none, and no transition either; the reader takes it for nothing.
    isRead["/AudioObject0/InTrans/@ref"] = isRead["/VisualObject0/InTrans/@ref"] = false;
    int missed = 0;
    for (const auto &[path, valid] : Validated()) {
        EXPECT_EQ(valid, isRead[path]) << path;
        missed += !valid;
    }
    EXPECT_GT(missed, 300);
}

/// What may say anything.
bool IsFree(const std::string &path)
{
    static const std::set<std::string> names = {"Name",  "Filename",   "Family",     "Style",
                                                "@name", "PluginName", "Expression", "@Base64"};
    return names.contains(path.substr(path.rfind('/') + 1)) || path == "/Metadata0/wstring/Item/@V" ||
           path.starts_with("/Effect3DLayer0/Effect") || path.starts_with("/Effect3DLayer1/Effect");
}

TEST_F(SchemaTest, HoldsValuesToTheirTypes)
{
    Parts().ForEach([&](const std::string &path, pugi::xml_node element, pugi::xml_attribute attribute) {
        const auto set = [&](const std::string &value) {
            attribute ? attribute.set_value(value.c_str()) : element.text().set(value.c_str());
        };
        if (!attribute && element.first_child().type() == pugi::node_element)
            return;
        const std::string value = attribute ? attribute.value() : element.text().get();
        set("?");
        Add(path, Parts::Text(element));
        set(value);
    });
    for (const auto &[path, valid] : Validated())
        EXPECT_EQ(valid, IsFree(path)) << path;
}

TEST_F(SchemaTest, KnowsEveryItem)
{
    Parts().ForEach([&](const std::string &path, pugi::xml_node element, pugi::xml_attribute attribute) {
        if (attribute)
            return;
        element.append_attribute("Other");
        Add(path + "/@Other", Parts::Text(element));
        element.remove_attribute("Other");
        const pugi::xml_node other = element.append_child("Other");
        Add(path + "/Other", Parts::Text(element));
        element.remove_child(other);
    });
    // Plug-ins and 3D effects put there what they like.
    const auto isOpen = [](const std::string &path) {
        static const std::set<std::string> instances = {"/Instance0",   "/Instance1",   "/Instance2",
                                                        "/Transition0", "/Transition1", "/Transition2"};
        return IsFree(path) || instances.contains(path.substr(0, path.rfind('/')));
    };
    for (const auto &[path, valid] : Validated())
        EXPECT_EQ(valid, isOpen(path)) << path;
}

} // namespace

} // namespace marlet::test
