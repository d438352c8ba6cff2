#pragma once

#include "../embed/PluginBase.h"

#include <string>

namespace guide
{

using namespace marlet::project;

// A transition. Each of its instances keeps a note, which no property can hold.
class Fade : public embed::PluginBase<AbstractPlugin>
{
public:
    static constexpr int kTransition = 1;
    static constexpr kytl::KyID kID{
        0x0b7e94d3, 0x5a16, 0x4c80, {0x9d, 0x27, 0xe3, 0x41, 0x6b, 0xf8, 0x52, 0x0c}};

    Fade() : PluginBase(kID, u"Fade", {1, 0, 0, 0}) {}

    int Kind() const override { return kTransition; }

    // A copy arrives with the pointer of its source, which it must not share. The note is made when it is
    // first needed: what is set here does not last on the copy of a transition.
    void InstanceCreated(Instance *instance) override { instance->SetInstanceData(nullptr); }
    void InstanceDestroyed(Instance *instance) override
    {
        delete static_cast<std::string *>(instance->InstanceData());
    }

    void SerializeInstance(Instance *instance, void *document, void *element) override
    {
        std::string bytes = Note(*instance);
        if (!bytes.empty())
            instance->SerializeInstanceDataBytes(reinterpret_cast<unsigned char *>(bytes.data()),
                                                 static_cast<int>(bytes.size()), document, element);
    }
    void DeserializeInstance(Instance *instance, unsigned char *bytes, int size) override
    {
        Note(*instance).assign(bytes, bytes + size);
    }

    static std::string &Note(Instance &instance)
    {
        if (instance.InstanceData() == nullptr)
            instance.SetInstanceData(new std::string);
        return *static_cast<std::string *>(instance.InstanceData());
    }
};

} // namespace guide
