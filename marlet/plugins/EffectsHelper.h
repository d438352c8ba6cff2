#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPluginInstance.h>

#include <memory>
#include <unordered_map>

class QDomDocument;
class QDomElement;
class QString;

namespace marlet::project
{

class AbstractPluginManager;
class EffectInstance;
class PropertyManager;
class SequenceObjectList;
class Transition;
class XmlCursor;
class XmlWriter;

/// What all that hold effects and transitions have in common: the list of effects and the transitions in the
/// file, the state of panels, and the rules by which a file meets the plug-ins at hand.
///
/// A plug-in that is missing, or older than the one that saved the file, ends the load. One that is the same
/// or newer loads: its own set of properties wins, and those that the file knows take their values from it.
/// Without a plug-in manager effects and transitions are skipped. A failure leaves a list as it was.
class MARLET_EXPORT EffectsHelper
{
public:
    using Effects = kytl::KyList<std::shared_ptr<EffectInstance>, std::vector>;
    using UIStates = std::unordered_map<NarrowString, AbstractPluginInstance::UIState>;

    static void SerializeEffects(QDomDocument *document, QDomElement *parent, const Effects &effects);
    /// @throws MissingPluginException, InvalidPluginVersionException, and as EffectInstance::CreateFromXml
    static void DeserializeEffects(QDomElement *parent, Effects &effects,
                                   const std::shared_ptr<AbstractPluginManager> &pluginManager);

    /// A null transition writes nothing. One that belongs to an object before the cut stands with that, and
    /// is written as a reference if that is allowed.
    static void SerializeTransition(QDomDocument *document, QDomElement *parent, const QString &tag,
                                    const std::shared_ptr<Transition> &transition, bool allowReference);
    /// A reference is the outgoing transition of an object of the list, if that has it.
    /// @throws MissingPluginException, InvalidPluginVersionException, and as Transition::CreateFromXml
    static void DeserializeTransition(QDomElement *parent, const QString &tag,
                                      const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                      std::shared_ptr<Transition> &transition, SequenceObjectList *objects);

    /// The states of a plug-in's controls before anything changes them.
    static UIStates CreateUIState(const std::shared_ptr<AbstractPlugin> &plugin);
    static void SerializeUIState(QDomDocument *document, QDomElement *parent, const UIStates &states);
    /// Takes over what the element's "UIState" says of the names that are there.
    static void SynchronizeUIState(QDomElement *parent, UIStates &states);
    /// Takes over the static values, whatever their type, the key frames and the expressions of the
    /// properties that both have. Whether these move along a path in space stays for the properties to say.
    static void SynchronizeSourceWithDest(PropertyManager &properties, const PropertyManager &fromFile);
    /// -1, 0 or 1 as a is older than, the same as, or newer than b.
    static int ComparePluginVersions(const AbstractPlugin::VersionInfo &a,
                                     const AbstractPlugin::VersionInfo &b);

    // The same in the form in which elements travel inside a larger text of this library.

    static void SerializeEffects(XmlWriter &writer, const Effects &effects);
    static void DeserializeEffects(const XmlCursor &parent, Effects &effects,
                                   const std::shared_ptr<AbstractPluginManager> &pluginManager);
    static void SerializeTransition(XmlWriter &writer, const char *tag,
                                    const std::shared_ptr<Transition> &transition, bool allowReference);
    static void DeserializeTransition(const XmlCursor &parent, const char *tag,
                                      const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                      std::shared_ptr<Transition> &transition,
                                      const SequenceObjectList *objects);
    static void SerializeUIState(XmlWriter &writer, const UIStates &states);
    static void SynchronizeUIState(const XmlCursor &parent, UIStates &states);
};

} // namespace marlet::project
