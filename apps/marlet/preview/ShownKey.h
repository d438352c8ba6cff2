#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace marlet::project
{
class EffectInstance;
class Mask;
class PropertyManager;
} // namespace marlet::project

namespace marlet::tool
{

/// All that a picture is made from, as bytes: two pictures of one key are the same.
class ShownKey
{
public:
    /// What is made, which keeps the keys of different things apart.
    explicit ShownKey(std::string_view kind) : bytes_(kind) {}

    template <class T>
    requires std::is_trivially_copyable_v<T>
    void Add(const T &value) { bytes_.append(reinterpret_cast<const char *>(&value), sizeof value); }

    // The values at a relative time. These throw what evaluating throws.

    void Add(const project::PropertyManager &properties, int time);
    void Add(const kytl::KyList<std::shared_ptr<project::Mask>, std::vector> &masks, int time);
    void Add(const kytl::KyList<std::shared_ptr<project::EffectInstance>, std::vector> &effects, int time);

    const std::string &Bytes() const { return bytes_; }
    /// Of all values so far, in which effects may name layers.
    const std::vector<kytl::KyID> &IDs() const { return ids_; }

private:
    std::string bytes_;
    std::vector<kytl::KyID> ids_;
};

} // namespace marlet::tool
