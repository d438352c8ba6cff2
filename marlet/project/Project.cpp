#include <marlet/project/Project.h>

#include <marlet/editor/EditorSequence.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/LoadFindings.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectSettings.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <optional>

namespace marlet::project
{

struct Project_Impl {
    kytl::KyID id = kytl::KyID::Generate();
    WideString name;
    WideString filename;
    ProjectSettings settings;
    AssetList assets;
    std::shared_ptr<MediaManager> media = std::make_shared<MediaManager>();
    std::shared_ptr<AbstractPluginManager> pluginManager;
    std::shared_ptr<AbstractExpressionEngine> expressionEngine;
    ProjectMetadata metadata;
    std::shared_ptr<EditorSequence> sequence;
    ProjectTextureImageCache textureImages;
    KeptXml kept;
    std::unordered_set<kytl::KyID> keptIDs;
};

namespace
{

template <class Xml, class Self> void ProjectFields(Xml &xml, Self &self)
{
    xml.Child("ID", self.id);
    xml.Child("Name", self.name);
}

std::shared_ptr<Project> Complete(std::shared_ptr<Project> project)
{
    if (const std::shared_ptr<AbstractPluginManager> &pluginManager = project->PluginManager())
        pluginManager->AttachProject(project);
    return project;
}

} // namespace

Project::Project() : impl_(std::make_unique<Project_Impl>())
{
}

Project::~Project() = default;

std::shared_ptr<Project> Project::Create(const std::shared_ptr<AbstractPluginManager> &pluginManager)
{
    return Create(pluginManager, nullptr);
}

std::shared_ptr<Project> Project::Create(const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                         const std::shared_ptr<MediaManager> &media)
{
    auto project = std::make_shared<Project>();
    project->SetPluginManager(pluginManager);
    if (media)
        project->impl_->media = media;
    return Complete(std::move(project));
}

std::shared_ptr<Project> Project::CreateFromXml(const WideString &xml, const WideString &texturesFolder,
                                                const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                                const Abstract3DEffectFactory &effectFactory)
{
    return CreateFromXml(xml, texturesFolder, pluginManager, effectFactory, {});
}

std::shared_ptr<Project> Project::CreateFromXml(const WideString &xml, const WideString &texturesFolder,
                                                const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                                const Abstract3DEffectFactory &effectFactory,
                                                const LoadOptions &options)
{
    auto project = std::make_shared<Project>();
    // All of them are in use while assets are read.
    project->SetPluginManager(pluginManager);
    project->TextureImageCache().SetTexturesFolderPath(texturesFolder);
    if (options.media)
        project->impl_->media = options.media;
    project->Read(xml, effectFactory, options);
    return Complete(std::move(project));
}

void Project::Read(const WideString &xml, const Abstract3DEffectFactory &effectFactory,
                   const LoadOptions &options)
{
    LoadContext context(xml, options.report, options.keepUnknown);
    std::optional<XmlDocument> document;
    try {
        document.emplace(xml, &context);
        TakeObjectsKept(context, document->Root());
        Deserialize(document->Root(), effectFactory, options.progress);
    } catch (const std::exception &error) {
        context.AddError(error);
        context.Finish();
        throw;
    }
    impl_->keptIDs = context.IDsKept();
    if (options.report) {
        context.TellOfUnknown(document->Root());
        TellOfOddities(context, document->Root());
        context.Finish();
    }
}

WideString Project::Serialize() const
{
    XmlWriter writer;
    Serialize(writer);
    return writer.Take();
}

NarrowString Project::SerializeUtf8(std::size_t expectedBytes) const
{
    XmlWriter writer(expectedBytes);
    Serialize(writer);
    return writer.TakeUtf8();
}

void Project::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, "Project", 0, impl_->kept);
    ProjectFields(writer, *impl_);
    impl_->settings.Serialize(writer);
    impl_->assets.Serialize(writer, impl_->textureImages);
    if (impl_->sequence)
        impl_->sequence->Serialize(writer);
    impl_->metadata.Serialize(writer);
}

void Project::Deserialize(const XmlCursor &element, const Abstract3DEffectFactory &effectFactory,
                          MediaProgress *progress)
{
    // Any version will do: each element below has one of its own.
    element.RequireTag("Project");
    element.RequireAttribute("Version");
    unsigned int version = 0;
    element.Attribute("Version", version);
    if (version > 0)
        TellLoad(LoadEntry::Severity::Warning, element,
                 "version " + std::to_string(version) + " of the project is newer; it is saved as version 0");
    ProjectFields(element, *impl_);
    if (const XmlCursor settings = element.Find("ProjectSettings"); !settings.IsNull())
        impl_->settings.Deserialize(settings);
    if (const XmlCursor assets = element.Find("AssetList"); !assets.IsNull())
        impl_->assets.Deserialize(assets, *impl_->media, progress, impl_->pluginManager, effectFactory,
                                  impl_->textureImages);
    if (const XmlCursor sequence = element.Find("EditorSequence"); !sequence.IsNull())
        impl_->sequence.reset(new EditorSequence(sequence, impl_->pluginManager));
    if (const XmlCursor metadata = element.Find("Metadata"); !metadata.IsNull())
        impl_->metadata.Deserialize(metadata);
    impl_->kept = KeptXml(element);
}

const std::unordered_set<kytl::KyID> &Project::KeptIDs() const
{
    return impl_->keptIDs;
}

const kytl::KyID &Project::ID() const
{
    return impl_->id;
}

const WideString &Project::Name() const
{
    return impl_->name;
}

void Project::SetName(const WideString &name)
{
    impl_->name = name;
}

const WideString &Project::Filename() const
{
    return impl_->filename;
}

void Project::SetFilename(const WideString &filename)
{
    impl_->filename = filename;
}

AssetList &Project::Assets()
{
    return impl_->assets;
}

const AssetList &Project::Assets() const
{
    return impl_->assets;
}

MediaManager &Project::Media()
{
    return *impl_->media;
}

const MediaManager &Project::Media() const
{
    return *impl_->media;
}

const std::shared_ptr<MediaManager> &Project::SharedMedia() const
{
    return impl_->media;
}

ProjectSettings &Project::Settings()
{
    return impl_->settings;
}

const ProjectSettings &Project::Settings() const
{
    return impl_->settings;
}

ProjectMetadata &Project::Metadata()
{
    return impl_->metadata;
}

const ProjectMetadata &Project::Metadata() const
{
    return impl_->metadata;
}

ProjectTextureImageCache &Project::TextureImageCache()
{
    return impl_->textureImages;
}

const ProjectTextureImageCache &Project::TextureImageCache() const
{
    return impl_->textureImages;
}

std::shared_ptr<EditorSequence> Project::Sequence() const
{
    return impl_->sequence;
}

void Project::SetSequence(std::shared_ptr<EditorSequence> sequence)
{
    impl_->sequence = std::move(sequence);
}

const std::shared_ptr<AbstractPluginManager> &Project::PluginManager() const
{
    return impl_->pluginManager;
}

void Project::SetPluginManager(const std::shared_ptr<AbstractPluginManager> &pluginManager)
{
    impl_->pluginManager = pluginManager;
}

const std::shared_ptr<AbstractExpressionEngine> &Project::ExpressionEngine() const
{
    return impl_->expressionEngine;
}

void Project::SetExpressionEngine(const std::shared_ptr<AbstractExpressionEngine> &engine)
{
    impl_->expressionEngine = engine;
}

EditHistory *Project::History() const
{
    return editing_.history;
}

} // namespace marlet::project
