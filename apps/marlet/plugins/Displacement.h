#pragma once

#include "ToolPlugin.h"

#include <array>

namespace marlet::tool
{

/// Moves every pixel by what another layer shows there. How far a level of the map moves is a curve that the
/// user draws by hand: a table with an entry for each of 256 levels, from 0, against the amount, over 128,
/// nowhere, to 255. No property can hold it, so each instance has one of its own.
class Displacement : public FilterPlugin, public PrivateDataOwner
{
public:
    using Response = std::array<unsigned char, 256>;

    Displacement();

    void InstanceCreated(Instance *instance) override;
    void InstanceDestroyed(Instance *instance) override;
    void SerializeInstance(Instance *instance, void *document, void *element) override;
    /// Bytes that are no table leave the one that is there.
    void DeserializeInstance(Instance *instance, unsigned char *bytes, int size) override;
    std::vector<unsigned char> PrivateBytes(const Instance &instance) const override;

    /// The instance is one of this plug-in.
    void SetResponse(Instance &instance, const Response &response) const;

protected:
    Margins MarginsAtTime(const project::PropertyManager &properties, int time) const override;
};

} // namespace marlet::tool
