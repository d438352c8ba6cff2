#include <marlet/project/ProjectMetadata.h>

#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <map>
#include <type_traits>
#include <utility>

namespace marlet::project
{

namespace
{

/// The key by which the file names a value. It wraps at 32 bits.
std::uint64_t Key(const kytl::KyID &id, unsigned int index)
{
    return static_cast<std::uint32_t>(id.Hash() + index);
}

/// The values of one type, sorted, so that they stand in the file in the same order each time.
template <class T> class Family
{
public:
    T ValueOrInsert(const kytl::KyID &id, unsigned int index, const T &value)
    {
        return values_.try_emplace(Key(id, index), value).first->second;
    }

    void Set(const kytl::KyID &id, unsigned int index, const T &value) { values_[Key(id, index)] = value; }

    bool Has(const kytl::KyID &id, unsigned int index) const { return values_.contains(Key(id, index)); }

    void Remove(const kytl::KyID &id, unsigned int index) { values_.erase(Key(id, index)); }

    bool operator==(const Family &other) const = default;

    std::size_t Size() const
    {
        constexpr std::size_t kNode = 32; // what a map needs beside each entry
        std::size_t size = values_.size() * (kNode + sizeof(std::pair<std::uint64_t, T>));
        if constexpr (std::is_same_v<T, WideString>)
            for (const auto &[key, value] : values_)
                size += value.capacity() * sizeof(char16_t);
        return size;
    }

    void Serialize(XmlWriter &writer, const char *tag) const
    {
        const XmlElement section(writer, tag);
        for (const auto &[key, value] : values_) {
            const XmlElement item(writer, "Item");
            writer.Attribute("K", key);
            writer.Attribute("V", value);
        }
    }

    /// Values that the section does not name stay.
    void Deserialize(const XmlCursor &section)
    {
        for (XmlCursor item = section.Find("Item"); !item.IsNull(); item = item.Next("Item")) {
            std::uint64_t key = 0;
            item.Attribute("K", key);
            if (values_.contains(key))
                TellLoad(LoadEntry::Severity::Loss, item,
                         "the key stands there already, and the last one counts");
            item.Attribute("V", values_[key]);
        }
    }

private:
    std::map<std::uint64_t, T> values_;
};

} // namespace

struct ProjectMetadata_Impl {
    Family<bool> booleans;
    Family<int> integers;
    Family<float> floats;
    Family<kytl::KyID> ids;
    Family<WideString> strings;

    bool operator==(const ProjectMetadata_Impl &other) const = default;
};

namespace
{

/// Calls the function with each family and the tag of its section, in the order of the file.
template <class Self, class Function> void ForEachFamily(Self &self, Function &&function)
{
    function(self.booleans, "bool");
    function(self.integers, "int32_t");
    function(self.floats, "float");
    function(self.ids, "KyID");
    function(self.strings, "wstring");
}

} // namespace

ProjectMetadata::ProjectMetadata() : impl_(std::make_unique<ProjectMetadata_Impl>())
{
}

ProjectMetadata::ProjectMetadata(const XmlCursor &element) : ProjectMetadata()
{
    Deserialize(element);
}

ProjectMetadata::~ProjectMetadata() = default;

std::unique_ptr<ProjectMetadata> ProjectMetadata::Copy() const
{
    std::unique_ptr<ProjectMetadata> copy(new ProjectMetadata());
    *copy->impl_ = *impl_;
    return copy;
}

void ProjectMetadata::Swap(ProjectMetadata &other) noexcept
{
    impl_.swap(other.impl_);
}

bool ProjectMetadata::operator==(const ProjectMetadata &other) const
{
    return *impl_ == *other.impl_;
}

std::size_t ProjectMetadata::Size() const
{
    std::size_t size = sizeof(ProjectMetadata_Impl);
    ForEachFamily(*impl_, [&size](const auto &family, const char *) { size += family.Size(); });
    return size;
}

void ProjectMetadata::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, "Metadata", 0);
    ForEachFamily(*impl_, [&](const auto &family, const char *tag) { family.Serialize(writer, tag); });
}

void ProjectMetadata::Deserialize(const XmlCursor &element)
{
    element.RequireHeader("Metadata", 0);
    ForEachFamily(*impl_, [&](auto &family, const char *tag) { family.Deserialize(element.Find(tag)); });
}

// The same five operations for each family; the interface has no templates.
#define MARLET_METADATA_OPERATIONS(Name, Type, Parameter, family)                                            \
    Type ProjectMetadata::Name##Value(const kytl::KyID &id, unsigned int index) const                        \
    {                                                                                                        \
        return impl_->family.ValueOrInsert(id, index, Type());                                               \
    }                                                                                                        \
    void ProjectMetadata::Set##Name##Value(const kytl::KyID &id, unsigned int index, Parameter value)        \
    {                                                                                                        \
        impl_->family.Set(id, index, value);                                                                 \
    }                                                                                                        \
    Type ProjectMetadata::GetOrSet##Name##Value(const kytl::KyID &id, unsigned int index, Parameter value)   \
    {                                                                                                        \
        return impl_->family.ValueOrInsert(id, index, value);                                                \
    }                                                                                                        \
    bool ProjectMetadata::Has##Name##Value(const kytl::KyID &id, unsigned int index) const                   \
    {                                                                                                        \
        return impl_->family.Has(id, index);                                                                 \
    }                                                                                                        \
    void ProjectMetadata::Remove##Name##Value(const kytl::KyID &id, unsigned int index)                      \
    {                                                                                                        \
        impl_->family.Remove(id, index);                                                                     \
    }

MARLET_METADATA_OPERATIONS(Boolean, bool, bool, booleans)
MARLET_METADATA_OPERATIONS(Integer, int, int, integers)
MARLET_METADATA_OPERATIONS(Float, float, float, floats)
MARLET_METADATA_OPERATIONS(KyID, kytl::KyID, const kytl::KyID &, ids)
MARLET_METADATA_OPERATIONS(String, WideString, const WideString &, strings)

#undef MARLET_METADATA_OPERATIONS

} // namespace marlet::project
