#include <marlet/recovery/Recovery.h>

#include <marlet/foundation/EncodedText.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/TextPlace.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/WithoutHostOperations.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaPaths.h>
#include <marlet/project/Project.h>
#include <marlet/recovery/CleanText.h>
#include <marlet/recovery/DamagedText.h>
#include <marlet/recovery/KnownElements.h>
#include <marlet/recovery/RecoveredPaths.h>
#include <marlet/recovery/Repair.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

/// The host's plug-ins, which learn nothing of the projects that are tried.
class TriedPlugins : public WithoutHostOperations<AbstractPluginManager>
{
public:
    explicit TriedPlugins(std::shared_ptr<AbstractPluginManager> plugins) : plugins_(std::move(plugins)) {}

    void AttachProject(const std::shared_ptr<Project> &) override {}
    std::shared_ptr<AbstractPlugin> FindPlugin(const kytl::KyID &id) override
    {
        return plugins_->FindPlugin(id);
    }

private:
    std::shared_ptr<AbstractPluginManager> plugins_;
};

/// Bytes of a file as one text in UTF-8, in which bytes that are none are still found.
std::string Utf8Of(std::string_view file)
{
    const EncodedText text(file);
    return text.IsUtf16() ? ToUtf8(DecodeUtf16(text)) : std::string(text.bytes);
}

/// Tries texts, and tells why they do not load.
class Trial
{
public:
    Trial(const WideString &textures, const std::shared_ptr<AbstractPluginManager> &plugins,
          const Abstract3DEffectFactory &effects)
        : textures_(textures), effects_(effects)
    {
        if (plugins)
            plugins_ = std::make_shared<TriedPlugins>(plugins);
    }

    std::optional<LoadFailure> Failure(const std::string &text, bool withPlugins = true) const
    {
        LoadReport report;
        LoadFailure failure;
        try {
            Load(text, withPlugins, report);
            return std::nullopt;
        } catch (const ProjectException &error) {
            failure.words = error.what();
            if (error.Code() == ProjectException::kMissingProperty)
                failure.missingChild = error.Detail();
        } catch (const XmlParseException &error) {
            failure.words = error.what();
            if (error.WhatIsMissing() == XmlParseException::Missing::Element)
                failure.missingChild = error.MissingName();
            else
                failure.missingAttribute = error.MissingName();
        } catch (const std::exception &error) {
            failure.words = error.what();
        }
        for (const LoadEntry &entry : report.Entries())
            if (entry.severity == LoadEntry::Severity::Error) {
                failure.words = entry.what;
                if (entry.line > 0)
                    failure.place = entry.offset;
            }
        return failure;
    }

    /// Loads with the host's plug-ins or without any.
    void Load(const std::string &text, bool withPlugins, LoadReport &report) const
    {
        const MediaPaths noFiles({}, MediaPaths::Form::None);
        LoadOptions options;
        options.media = media_;
        options.report = &report;
        options.keepUnknown = true;
        Project::CreateFromXml(FromUtf8(text), textures_, withPlugins ? plugins_ : nullptr, effects_,
                               options);
    }

    /// With the host's plug-ins and without any.
    bool Loads(const std::string &text) const { return !Failure(text) && !Failure(text, false); }

private:
    const WideString &textures_;
    const Abstract3DEffectFactory &effects_;
    std::shared_ptr<AbstractPluginManager> plugins_;
    std::shared_ptr<MediaManager> media_ = std::make_shared<MediaManager>();
};

/// Makes a tree load.
class Recovery
{
public:
    Recovery(RecoveredTree &tree, const Trial &trial)
        : tree_(tree), trial_(trial), repair_(tree, KnownElements::Get())
    {
    }

    /// The text that loads.
    std::string Run()
    {
        std::string text = Written(true);
        if (trial_.Failure(text)) {
            // What is left of a document without its layers and objects is a fraction, and each of these is
            // tried by itself, so that many damages do not cost a load of the whole each.
            MendUntilItLoads(false, true);
            MendItems(tree_.Root());
            MendUntilItLoads(true, true);
        }
        text = MendUntilItLoads(true, false);
        TellOfWhatIsNotRead(text);
        return text;
    }

    const TextFaults &Faults() const { return repair_.Faults(); }

private:
    std::string MendUntilItLoads(bool withItems, bool withPlugins)
    {
        for (;;) {
            std::string text = Written(withItems);
            const auto failure = trial_.Failure(text, withPlugins);
            if (!failure || !repair_.Mend(tree_.Root(), *failure))
                return text;
        }
    }

    /// What stands in the text that loads and is not read as what it was.
    void TellOfWhatIsNotRead(const std::string &text)
    {
        LoadReport report;
        try {
            trial_.Load(text, true, report);
        } catch (const std::exception &) { // then it is told of already
            return;
        }
        for (const LoadEntry &entry : report.Entries()) {
            if (entry.line == 0)
                continue;
            const RecoveredElement &element = tree_.At(tree_.Root(), entry.offset);
            const bool isMissing = entry.what.find(kIsMissing) != entry.what.npos;
            const bool isLost =
                entry.severity == LoadEntry::Severity::Loss &&
                (!entry.isKept || KnownElements::IsObject(element.name) ||
                 (element.parent && KnownElements::Get().HasChild(*element.parent, element.name)));
            if (!element.isMade && (isMissing || isLost))
                repair_.Tell(LoadEntry::Severity::Loss, element, entry.what);
        }
    }

    std::string Written(bool withItems)
    {
        std::string text;
        text.reserve(tree_.Text().size());
        tree_.Write(tree_.Root(), text, withItems);
        return text += '\n';
    }

    void MendItems(RecoveredElement &element)
    {
        // Those that are dropped leave the list.
        const std::vector<RecoveredElement *> children = element.children;
        for (RecoveredElement *child : children) {
            const auto *const around = KnownElements::Get().Around(child->name);
            if (HoldsItems(element.name) && around)
                MendItem(*child, *around);
            else if (!child->children.empty() && element.name != "PropertyManager")
                MendItems(*child);
        }
    }

    void MendItem(RecoveredElement &item, const KnownElements::Surroundings &around)
    {
        const RecoveredElement *const list = item.parent;
        while (std::ranges::find(list->children, &item) != list->children.end()) {
            std::string text = around.before;
            tree_.Write(item, text);
            text += around.behind;
            const auto failure = trial_.Failure(text);
            if (!failure || !repair_.Mend(item, *failure))
                return;
        }
    }

    RecoveredTree &tree_;
    const Trial &trial_;
    Repair repair_;
};

void Tell(std::string_view text, TextFaults &faults, LoadReport &report)
{
    std::ranges::stable_sort(faults.First(), {}, &TextFault::place);
    RecoveredPaths paths;
    TextPlace place;
    for (const TextFault &fault : faults.First()) {
        place.GoTo(text, fault.place);
        report.Add({fault.severity,
                    fault.what,
                    fault.element ? paths.PathTo(*fault.element) : NarrowString(),
                    place.line,
                    place.column,
                    fault.place,
                    {}});
    }
    // The report is full by then, and counts.
    for (const auto severity : {LoadEntry::Severity::Warning, LoadEntry::Severity::Loss})
        for (std::size_t other = faults.Others(severity); other > 0; --other)
            report.Add({severity, {}, {}, 0, 0, 0, {}});
}

} // namespace

WideString RecoverProject(std::string_view bytes, const WideString &texturesFolder,
                          const std::shared_ptr<AbstractPluginManager> &pluginManager,
                          const Abstract3DEffectFactory &effectFactory, LoadReport &report)
{
    report.Clear();
    RecoveredTree tree(Utf8Of(bytes));
    const Trial trial(texturesFolder, pluginManager, effectFactory);
    if (!HasForbiddenCharacter(tree.Text()) && trial.Loads(std::string(tree.Text())))
        return FromUtf8(tree.Text());
    DamagedText damaged(tree, &KnownElements::Get());
    damaged.Read();
    if (!damaged.HasProject())
        throw MessageException("There is nothing of a project in it");
    Recovery recovery(tree, trial);
    const std::string recovered = recovery.Run();
    TextFaults faults = damaged.Faults();
    faults.Add(recovery.Faults());
    Tell(tree.Text(), faults, report);
    return FromUtf8(recovered);
}

} // namespace marlet::project
