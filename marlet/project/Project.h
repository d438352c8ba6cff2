#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <memory>
#include <unordered_set>

namespace marlet::project
{

class Abstract3DEffectFactory;
class AbstractExpressionEngine;
class AbstractPluginManager;
class AssetList;
class Edit;
class EditHistory;
class EditorSequence;
class MediaManager;
class MediaProgress;
class ProjectMetadata;
class ProjectSettings;
class ProjectTextureImageCache;
class XmlCursor;
class XmlWriter;
struct LoadOptions;
struct Project_Impl;

/// The root of a document: everything that a user's project consists of. It owns its assets, settings,
/// metadata, texture cache and editor sequence, and shares the plug-in manager and the expression engine with
/// the host, the media manager with other projects if the host likes.
///
/// A project belongs to the thread that edits it. While nothing changes it, any number of threads may read it
/// at once: values at a time, matrices, lookups by ID.
class MARLET_EXPORT Project
{
public:
    /// An empty project without a plug-in manager. Hosts use Create.
    Project();
    Project(const Project &) = delete;
    Project &operator=(const Project &) = delete;
    ~Project();

    /// An empty project. The manager may be null; otherwise its AttachProject is called last.
    static std::shared_ptr<Project> Create(const std::shared_ptr<AbstractPluginManager> &pluginManager);
    /// The same with a media manager that other projects may use too; null for one of its own.
    static std::shared_ptr<Project> Create(const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                           const std::shared_ptr<MediaManager> &media);

    /// Reads the text of a whole project. The textures folder is given with its trailing separator.
    /// Any failure is an exception, and there is no project then:
    /// @throws XmlParseException for a text that is not whole, a wrong root, a missing element or attribute
    /// @throws InvalidProjectVersionException for an element of a newer version
    /// @throws MissingPluginException, InvalidPluginVersionException for an effect or a transition whose
    /// plug-in is not there, or older than the one that saved it
    /// @throws ProjectException for a layer or an object of the timeline that lacks a property of its class
    /// @throws std::runtime_error for a malformed ID, boost::bad_lexical_cast for a malformed boolean
    static std::shared_ptr<Project> CreateFromXml(const WideString &xml, const WideString &texturesFolder,
                                                  const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                                  const Abstract3DEffectFactory &effectFactory);
    /// The same. Media files are opened on all cores while the text is read.
    static std::shared_ptr<Project> CreateFromXml(const WideString &xml, const WideString &texturesFolder,
                                                  const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                                  const Abstract3DEffectFactory &effectFactory,
                                                  const LoadOptions &options);

    /// The text of the whole project. Changes nothing.
    WideString Serialize() const;
    /// The same in UTF-8, in a third of the memory. With room for so many bytes at first, as the text of
    /// another version of the project has.
    NarrowString SerializeUtf8(std::size_t expectedBytes = 0) const;

    /// The IDs of the objects that the load has kept without knowing what they are. What names one of them
    /// does not dangle.
    const std::unordered_set<kytl::KyID> &KeptIDs() const;

    const kytl::KyID &ID() const;
    const WideString &Name() const;
    void SetName(const WideString &name);
    /// Where the host keeps the project; not part of the text.
    const WideString &Filename() const;
    void SetFilename(const WideString &filename);

    AssetList &Assets();
    const AssetList &Assets() const;
    MediaManager &Media();
    const MediaManager &Media() const;
    /// The same, for another project to share.
    const std::shared_ptr<MediaManager> &SharedMedia() const;
    ProjectSettings &Settings();
    const ProjectSettings &Settings() const;
    ProjectMetadata &Metadata();
    const ProjectMetadata &Metadata() const;
    ProjectTextureImageCache &TextureImageCache();
    const ProjectTextureImageCache &TextureImageCache() const;

    /// The editor timeline, or an empty pointer.
    std::shared_ptr<EditorSequence> Sequence() const;
    void SetSequence(std::shared_ptr<EditorSequence> sequence);

    const std::shared_ptr<AbstractPluginManager> &PluginManager() const;
    /// Does not call AttachProject.
    void SetPluginManager(const std::shared_ptr<AbstractPluginManager> &pluginManager);
    const std::shared_ptr<AbstractExpressionEngine> &ExpressionEngine() const;
    void SetExpressionEngine(const std::shared_ptr<AbstractExpressionEngine> &engine);

    /// What keeps the steps of editing the project, or null.
    EditHistory *History() const;

private:
    friend class Edit;
    friend class EditHistory;

    /// Set by those two, so that whoever is handed the project finds them.
    struct Editing {
        EditHistory *history = nullptr;
        Edit *innermost = nullptr; ///< of the edits that go on
    };

    void Serialize(XmlWriter &writer) const;
    void Read(const WideString &xml, const Abstract3DEffectFactory &effectFactory,
              const LoadOptions &options);
    void Deserialize(const XmlCursor &element, const Abstract3DEffectFactory &effectFactory,
                     MediaProgress *progress);

    std::unique_ptr<Project_Impl> impl_;
    Editing editing_;
};

} // namespace marlet::project
