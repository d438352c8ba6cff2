// Any text either loads or is refused in the documented ways. What loads has a value at each time around each
// of its key frames, and is saved, loaded and saved again without a byte changing.

#include "support/FuzzInput.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Exceptions.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <algorithm>

using namespace marlet::project;

namespace
{

std::shared_ptr<PropertyManager> LoadIfAccepted(const WideString &text)
{
    try {
        return PropertyManager::CreateFromXml(text);
    } catch (const XmlParseException &) {
    } catch (const InvalidProjectVersionException &) {
    } catch (const std::runtime_error &) {
    } catch (const boost::bad_lexical_cast &) {
    }
    return nullptr;
}

std::vector<int> TimesAround(const KeyFrameList &keys)
{
    std::vector<int> times(std::begin(kFarTimes), std::end(kFarTimes));
    const std::vector<int> locations = keys.Locations();
    for (std::size_t i = 0; i < locations.size(); ++i) {
        const long long time = locations[i];
        const long long next = i + 1 < locations.size() ? locations[i + 1] : time;
        for (long long near : {time - 1, time, time + 1, (time + next) / 2})
            times.push_back(static_cast<int>(std::clamp<long long>(near, kFarTimes[0], 2147483647)));
    }
    return times;
}

void AskProperty(const PropertyManager &properties, const char *name)
{
    const PropertyManager::PropertyID id = properties.GetPropertyID(name);
    for (int time : TimesAround(properties.KeyFrames(name)))
        MayRefuse([&] { properties.ValueAtTime(id, time); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const auto properties = LoadIfAccepted(TextOfInput(bytes, size));
    if (!properties)
        return 0;
    for (const NarrowString &name : properties->PropertyNames())
        AskProperty(*properties, name.c_str());
    const WideString saved = properties->Serialize();
    RequireSame(saved, PropertyManager::CreateFromXml(saved)->Serialize());
    return 0;
}
