#include <marlet/plugins/PluginInstance.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/PluginInstance_Impl.h>

namespace marlet::project
{

PluginInstance::PluginInstance(std::unique_ptr<PluginInstance_Impl> impl) : impl_(std::move(impl))
{
}

PluginInstance::PluginInstance(const PluginInstance &other)
    : AbstractPluginInstance(other), impl_(other.impl_->Clone())
{
}

PluginInstance::~PluginInstance() = default;

void PluginInstance::AnnounceBeginning()
{
    impl_->RequirePlugin()->InstanceCreated(this);
}

void PluginInstance::AnnounceEnd() noexcept
{
    try {
        if (const std::shared_ptr<AbstractPlugin> plugin = Plugin())
            plugin->InstanceDestroyed(this);
    } catch (...) { // nobody is left to tell
    }
}

WideString PluginInstance::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void PluginInstance::Serialize(XmlWriter &writer) const
{
    impl_->Write(writer, *this);
}

void PluginInstance::Deserialize(const XmlCursor &element)
{
    impl_->Read(element, this);
}

void PluginInstance::TakePrivateDataOf(PluginInstance &source)
{
    source.impl_->CopyPrivateData(&source, this);
}

void PluginInstance::SerializeInstanceDataBytes(unsigned char *bytes, int size, void *document, void *element)
{
    AppendInstanceBytes(bytes, size, document, element);
}

const kytl::KyID &PluginInstance::ID() const
{
    return impl_->id;
}

const kytl::KyID &PluginInstance::PluginID() const
{
    return impl_->pluginID;
}

std::shared_ptr<AbstractPlugin> PluginInstance::Plugin() const
{
    return impl_->plugin.lock();
}

bool PluginInstance::IsStandIn() const
{
    return impl_->standIn != nullptr;
}

PropertyManager &PluginInstance::Properties()
{
    return *impl_->properties;
}

const PropertyManager &PluginInstance::Properties() const
{
    return *impl_->properties;
}

std::unordered_map<NarrowString, PluginInstance::UIState> PluginInstance::PanelStates() const
{
    return impl_->uiStates;
}

void PluginInstance::SetPanelStates(const std::unordered_map<NarrowString, UIState> &states)
{
    impl_->uiStates = states;
}

std::optional<std::vector<unsigned char>> PluginInstance::PrivateBytes() const
{
    // The plug-in is handed an instance that it may change; asking is const to everybody else.
    return impl_->PrivateBytes(const_cast<PluginInstance *>(this));
}

void PluginInstance::SetPrivateBytes(const std::optional<std::vector<unsigned char>> &bytes)
{
    impl_->SetPrivateBytes(this, bytes);
}

PropertyManager &PluginInstance::Animation()
{
    return Properties();
}

const PropertyManager &PluginInstance::Animation() const
{
    return Properties();
}

const AbstractPluginInstance::UIState &PluginInstance::PropertyUIState(const char *name) const
{
    return impl_->RequireUIState(name);
}

void PluginInstance::SetPropertyUIState(const char *name, const UIState &state)
{
    impl_->RequireUIState(name) = state;
}

void PluginInstance::NotifyPropertyChanged(const char *name)
{
    Require(name, "name");
    impl_->RequirePlugin()->PropertyChanged(this, name);
}

void *PluginInstance::InstanceData() const
{
    return impl_->instanceData;
}

void PluginInstance::SetInstanceData(void *data)
{
    impl_->instanceData = data;
}

void *PluginInstance::HostInstanceData() const
{
    return impl_->hostInstanceData;
}

void PluginInstance::SetHostInstanceData(void *data)
{
    impl_->hostInstanceData = data;
}

} // namespace marlet::project
