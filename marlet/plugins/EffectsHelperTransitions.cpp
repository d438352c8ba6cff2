#include <marlet/plugins/EffectsHelper.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/PluginInstance_Impl.h>

#include <QString>

namespace marlet::project
{

namespace
{

constexpr char kReference[] = "ref";
constexpr char kTransitionID[] = "transID";
constexpr char kFromObjectID[] = "fromObjectID";

/// The transition that the object before the cut has read. That object stands earlier in the same list: a
/// list is written in order of time.
std::shared_ptr<Transition> FindReferred(const XmlCursor &slot, const SequenceObjectList *objects)
{
    kytl::KyID transitionID; // the object is what counts
    kytl::KyID objectID;
    slot.RequireAttribute(kTransitionID);
    slot.RequireAttribute(kFromObjectID);
    slot.Attribute(kTransitionID, transitionID);
    slot.Attribute(kFromObjectID, objectID);
    const auto object = objects != nullptr ? objects->GetByID(objectID) : nullptr;
    if (!object && IsKept(objectID)) {
        LoadContext::Current()->KeepReference(slot);
        return nullptr;
    }
    const auto transition = object ? object->OutgoingTransition() : nullptr;
    if (!object)
        TellLoad(LoadEntry::Severity::Loss, slot, "the object whose transition is referred to is not there",
                 {objectID});
    else if (!transition)
        TellLoad(LoadEntry::Severity::Loss, slot,
                 "the object whose transition is referred to has no outgoing transition", {objectID});
    else if (transition->ID() != transitionID)
        TellLoad(LoadEntry::Severity::Warning, slot,
                 "the transition that is referred to is not there; that of the object is read",
                 {transitionID});
    return transition;
}

} // namespace

void EffectsHelper::SerializeTransition(QDomDocument *document, QDomElement *parent, const QString &tag,
                                        const std::shared_ptr<Transition> &transition, bool allowReference)
{
    Require(document, "document");
    Require(parent, "parent");
    if (!transition)
        return;
    const WideString text = XmlText([&](XmlWriter &writer) {
        SerializeTransition(writer, tag.toUtf8().constData(), transition, allowReference);
    });
    AppendXmlToDom(text, document, parent);
}

void EffectsHelper::DeserializeTransition(QDomElement *parent, const QString &tag,
                                          const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                          std::shared_ptr<Transition> &transition,
                                          SequenceObjectList *objects)
{
    Require(parent, "parent");
    const XmlDocument document(XmlFromDom(parent));
    DeserializeTransition(document.Root(), tag.toUtf8().constData(), pluginManager, transition, objects);
}

void EffectsHelper::SerializeTransition(XmlWriter &writer, const char *tag,
                                        const std::shared_ptr<Transition> &transition, bool allowReference)
{
    if (!transition)
        return;
    const XmlElement slot(writer, tag);
    if (!allowReference || transition->FromObject().IsNull()) {
        transition->Serialize(writer);
        return;
    }
    writer.Attribute(kReference, 1);
    writer.Attribute(kTransitionID, transition->ID());
    writer.Attribute(kFromObjectID, transition->FromObject());
}

void EffectsHelper::DeserializeTransition(const XmlCursor &parent, const char *tag,
                                          const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                          std::shared_ptr<Transition> &transition,
                                          const SequenceObjectList *objects)
{
    transition = nullptr;
    const XmlCursor slot = parent.Find(tag);
    if (!CanReadInstances(pluginManager.get(), slot))
        return;
    if (slot.HasAttribute(kReference)) {
        if (slot.AttributeText(kReference) != "1")
            TellLoad(LoadEntry::Severity::Warning, slot,
                     NarrowString(kReference) + " is \"" + NarrowString(slot.AttributeText(kReference)) +
                         "\"; whatever it says, it is read as 1");
        transition = FindReferred(slot, objects);
        return;
    }
    const XmlCursor element = slot.Find("Transition");
    if (element.IsNull())
        return;
    const std::shared_ptr<AbstractPlugin> plugin = FindPlugin(pluginManager.get(), element);
    const std::shared_ptr<Transition> read = Transition::Create(plugin);
    read->Deserialize(element);
    transition = read;
}

} // namespace marlet::project
