#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class AbstractPlugin;
class PropertyManager;

/// One use of a plug-in in a document, as the plug-in sees it. The library implements it.
///
/// An instance holds its plug-in weakly. The library calls plug-ins on the thread that calls it.
class MARLET_EXPORT AbstractPluginInstance
{
public:
    enum class InstanceType : int { Effect, Transition };

    /// The state of a property's control in the plug-in's panel.
    struct UIState {
        bool visible = true;
    };

    AbstractPluginInstance() = default;
    AbstractPluginInstance(const AbstractPluginInstance &) = default;
    AbstractPluginInstance &operator=(const AbstractPluginInstance &) = default;
    virtual ~AbstractPluginInstance();

    virtual InstanceType Type() const = 0;
    virtual const kytl::KyID &ID() const = 0;
    virtual const kytl::KyID &PluginID() const = 0;
    /// Null when the plug-in is gone.
    virtual std::shared_ptr<AbstractPlugin> Plugin() const = 0;
    virtual PropertyManager &Properties() = 0;
    virtual const PropertyManager &Properties() const = 0;
    virtual const UIState &PropertyUIState(const char *name) const = 0;
    virtual void SetPropertyUIState(const char *name, const UIState &state) = 0;
    /// The host calls this when a control changes a property.
    virtual void NotifyPropertyChanged(const char *name) = 0;
    /// The plug-in's own pointer, which the library only keeps. What it is on a copy, AbstractPlugin tells at
    /// InstanceCreated.
    virtual void *InstanceData() const = 0;
    virtual void SetInstanceData(void *data) = 0;
    /// The host's own pointer, which the library only keeps. Null on a copy.
    virtual void *HostInstanceData() const = 0;
    virtual void SetHostInstanceData(void *data) = 0;
    virtual WideString Serialize() const = 0;
    /// Called back by a plug-in from SerializeInstance, with the document and the element that it was handed
    /// there.
    /// @throws std::invalid_argument for a null pointer, but for no bytes where the size is 0
    virtual void SerializeInstanceDataBytes(unsigned char *bytes, int size, void *document,
                                            void *element) = 0;
};

} // namespace marlet::project
