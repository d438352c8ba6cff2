#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;
struct ProjectMetadata_Impl;

/// Values that components of the host keep in the project file. A component has an ID of its own and numbers
/// its values. The five families are independent of one another: one ID and index may stand in all of them.
///
/// What is stored is a 32-bit key made of ID and index; two pairs can share one, and then share their entry.
///
/// ...Value inserts the default (false, 0, the null ID, an empty text) if there is no entry, and
/// GetOrSet...Value the given one; so they are changes, though the former are const. Belongs to the thread
/// that edits the project.
class MARLET_EXPORT ProjectMetadata
{
public:
    ProjectMetadata(const ProjectMetadata &) = delete;
    ProjectMetadata &operator=(const ProjectMetadata &) = delete;
    ~ProjectMetadata();

    /// All values, for later.
    std::unique_ptr<ProjectMetadata> Copy() const;
    void Swap(ProjectMetadata &other) noexcept;
    bool operator==(const ProjectMetadata &other) const;
    /// About how many bytes the values take.
    std::size_t Size() const;

    bool BooleanValue(const kytl::KyID &id, unsigned int index) const;
    void SetBooleanValue(const kytl::KyID &id, unsigned int index, bool value);
    bool GetOrSetBooleanValue(const kytl::KyID &id, unsigned int index, bool value);
    bool HasBooleanValue(const kytl::KyID &id, unsigned int index) const;
    void RemoveBooleanValue(const kytl::KyID &id, unsigned int index);

    int IntegerValue(const kytl::KyID &id, unsigned int index) const;
    void SetIntegerValue(const kytl::KyID &id, unsigned int index, int value);
    int GetOrSetIntegerValue(const kytl::KyID &id, unsigned int index, int value);
    bool HasIntegerValue(const kytl::KyID &id, unsigned int index) const;
    void RemoveIntegerValue(const kytl::KyID &id, unsigned int index);

    float FloatValue(const kytl::KyID &id, unsigned int index) const;
    void SetFloatValue(const kytl::KyID &id, unsigned int index, float value);
    float GetOrSetFloatValue(const kytl::KyID &id, unsigned int index, float value);
    bool HasFloatValue(const kytl::KyID &id, unsigned int index) const;
    void RemoveFloatValue(const kytl::KyID &id, unsigned int index);

    kytl::KyID KyIDValue(const kytl::KyID &id, unsigned int index) const;
    void SetKyIDValue(const kytl::KyID &id, unsigned int index, const kytl::KyID &value);
    kytl::KyID GetOrSetKyIDValue(const kytl::KyID &id, unsigned int index, const kytl::KyID &value);
    bool HasKyIDValue(const kytl::KyID &id, unsigned int index) const;
    void RemoveKyIDValue(const kytl::KyID &id, unsigned int index);

    WideString StringValue(const kytl::KyID &id, unsigned int index) const;
    void SetStringValue(const kytl::KyID &id, unsigned int index, const WideString &value);
    WideString GetOrSetStringValue(const kytl::KyID &id, unsigned int index, const WideString &value);
    bool HasStringValue(const kytl::KyID &id, unsigned int index) const;
    void RemoveStringValue(const kytl::KyID &id, unsigned int index);

private:
    friend struct Project_Impl;
    friend class Project;

    ProjectMetadata();
    explicit ProjectMetadata(const XmlCursor &element);
    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);

    std::unique_ptr<ProjectMetadata_Impl> impl_;
};

} // namespace marlet::project
