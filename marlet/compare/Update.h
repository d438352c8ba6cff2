#pragma once

#include <marlet/compare/DocumentText.h>
#include <marlet/foundation/KyID.h>
#include <marlet/history/ChangeNotice.h>

#include <memory>
#include <unordered_map>

namespace marlet::project
{

class AbstractAsset;
class AbstractLayer;
class BinFolder;
class Edit;
class EditorSequence;
class EffectInstance;
class Mask;
class PluginInstance;
class Project;
class PropertyManager;
class Tracker;

// Making a project into another one in place. The texts of both say what differs, a project that was read of
// the second one says what it is to be: what is new is taken out of it, what stays takes over its values.

/// An element as it is and as it is to be; null where there is none.
struct ElementPair {
    TextElement before;
    TextElement after;

    bool IsSame() const { return before == after; }
    ElementPair Child(const char *tag) const { return {before.Child(tag), after.Child(tag)}; }
};

/// The elements of the objects in a list, in the order in which they are to be.
std::vector<std::pair<kytl::KyID, ElementPair>> ObjectsIn(const ElementPair &list);

struct Update {
    Edit &edit;
    const std::shared_ptr<Project> &project;
    Project &fresh;
    /// Whether objects take over what can be taken over. Otherwise those that differ in themselves, and not
    /// only in what they own, are exchanged for those of the fresh project.
    bool inPlace = true;

    bool Exchanges(const ElementPair &object) const;
};

template <class List> auto FindByID(const List &list, const kytl::KyID &id) -> typename List::value_type
{
    for (const auto &entry : list)
        if (entry && entry->ID() == id)
            return entry;
    return {};
}

/// Makes a list one of the objects that it is to have. `update` is handed the list's own object and the fresh
/// one, and says which of them it is from then on.
template <class List, class Take>
void UpdateList(const ElementPair &elements, List &list, const List &fresh, const Take &update)
{
    if (elements.IsSame())
        return;
    std::unordered_map<kytl::KyID, typename List::value_type> own;
    std::unordered_map<kytl::KyID, typename List::value_type> other;
    for (const auto &entry : list)
        if (entry)
            own.emplace(entry->ID(), entry);
    for (const auto &entry : fresh)
        if (entry)
            other.emplace(entry->ID(), entry);
    List result;
    for (const auto &[id, pair] : ObjectsIn(elements)) {
        const auto found = own.find(id);
        const auto replacement = other.find(id);
        if (found != own.end() && (pair.IsSame() || replacement == other.end()))
            result.push_back(found->second);
        else if (found != own.end())
            result.push_back(update(found->second, replacement->second, pair));
        else if (replacement != other.end())
            result.push_back(replacement->second);
    }
    if (result != list)
        list = result;
}

// Each is handed the elements of the object itself.

void UpdateProperties(const Update &update, const ElementPair &owner,
                      const std::shared_ptr<PropertyManager> &properties, PropertyManager &fresh,
                      ObjectKind kind, const kytl::KyID &id);
/// Also of a transition.
void UpdateInstance(const Update &update, const ElementPair &elements,
                    const std::shared_ptr<PluginInstance> &instance, PluginInstance &fresh);
std::shared_ptr<EffectInstance> UpdateEffect(const Update &update, const ElementPair &elements,
                                             const std::shared_ptr<EffectInstance> &effect,
                                             const std::shared_ptr<EffectInstance> &fresh);
std::shared_ptr<Mask> UpdateMask(const Update &update, const ElementPair &elements,
                                 const std::shared_ptr<Mask> &mask, const std::shared_ptr<Mask> &fresh);
std::shared_ptr<Tracker> UpdateTracker(const Update &update, const ElementPair &elements,
                                       const std::shared_ptr<Tracker> &tracker,
                                       const std::shared_ptr<Tracker> &fresh);
std::shared_ptr<AbstractLayer> UpdateLayer(const Update &update, const ElementPair &elements,
                                           const std::shared_ptr<AbstractLayer> &layer,
                                           const std::shared_ptr<AbstractLayer> &fresh);
void UpdateAssets(const Update &update, const ElementPair &assetList);
void UpdateFolders(const Update &update, const ElementPair &rootFolder);
void UpdateSequence(const Update &update, const ElementPair &elements);
/// Whatever has changed: each asset has the instances that its element names.
void UpdateInstances(const Update &update, const TextElement &assets);

} // namespace marlet::project
