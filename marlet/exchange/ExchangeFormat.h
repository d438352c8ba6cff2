#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>
#include <marlet/project/LoadOptions.h>

#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace marlet::project
{

class Abstract3DEffectFactory;
class AbstractPlugin;
class AbstractPluginManager;
class Project;

/// What of a project is meant, and what the other program's text does not say.
struct ExchangeOptions {
    /// A composition, a layer in it and a property of that, by ID or by a name that only one has. Formats
    /// that take one of them take the only one there is if it is empty.
    WideString composition = {};
    WideString layer = {};
    NarrowString property = {};
    /// Frames a second of a text that has none of its own, as an edit decision list; 0 for the project's, or
    /// 25 where there is no project yet.
    double frameRate = 0;
    /// The folder that paths of media in the text are meant from, and are written relative to, with its
    /// trailing separator. Empty for paths as they are.
    WideString folder = {};
    /// Opens the media of a project that is made, hears of it, and is told what was left out on the way, in
    /// either direction: a loss for what the other side has no word for, a warning for what was guessed.
    LoadOptions load = {};
    /// Of a project that is made; null for none. The factory is not owned.
    std::shared_ptr<AbstractPluginManager> plugins = nullptr;
    const Abstract3DEffectFactory *effects = nullptr;
    /// What dissolves and wipes of a text become transitions of, where it does not name a plug-in that there
    /// is. Null for none: such a transition is a cut in its middle then, and a loss.
    std::shared_ptr<AbstractPlugin> dissolve = nullptr;
    std::shared_ptr<AbstractPlugin> wipe = nullptr;
};

/// A form in which other programs take and give what a project holds, or a part of it. What it cannot say is
/// left out and told of in the report of the options. Formats are unchanging objects of the library, which
/// any thread may use; what they read from must not change meanwhile.
class MARLET_EXPORT ExchangeFormat
{
public:
    /// All there are.
    static const std::vector<const ExchangeFormat *> &All();
    /// The one of a name, or null.
    static const ExchangeFormat *ByName(std::string_view name);
    /// The one to write a file of this name in: by its ending, in letters of any case. Null if there is none.
    static const ExchangeFormat *ForWriting(const std::filesystem::path &path);
    /// The one that a file is in: by its content first, and where that fits several, or none, by its ending.
    static const ExchangeFormat *ForReading(const std::filesystem::path &path, std::string_view bytes);

    virtual ~ExchangeFormat();

    /// A word for the command line, as "otio".
    virtual std::string_view Name() const = 0;
    /// What people call it, as "OpenTimelineIO".
    virtual std::string_view Title() const = 0;
    /// Of files, with their points and in small letters.
    virtual std::vector<std::string_view> Endings() const = 0;
    /// What it holds, in a line: "the sequence", "the key frames of a property".
    virtual std::string_view Holds() const = 0;

    virtual bool CanWrite() const { return false; }
    /// A part of the project in the other form. @throws OperationException if there is no such part;
    /// std::invalid_argument for a null pointer; std::logic_error if the format cannot be written
    virtual NarrowString Write(const std::shared_ptr<Project> &project, const ExchangeOptions &options) const;

    /// Whether the bytes, at least the first few thousand of a file, look like it.
    virtual bool Recognises(std::string_view bytes) const;
    virtual bool CanRead() const { return false; }
    /// A new project with what the text holds. @throws ExchangeException for a text that is not in this form;
    /// std::logic_error if the format cannot be read, or only into a project
    virtual std::shared_ptr<Project> Read(std::string_view bytes, const ExchangeOptions &options) const;

    /// Whether what a text holds can come into a project that is there.
    virtual bool CanReadInto() const { return false; }
    /// The same as one Edit, which a history takes. @throws as Read, and as Write. Nothing is changed then.
    virtual void ReadInto(const std::shared_ptr<Project> &project, std::string_view bytes,
                          const ExchangeOptions &options) const;
};

} // namespace marlet::project
