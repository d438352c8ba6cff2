#pragma once

#include <marlet/history/ChangeNotice.h>

#include <cstddef>

namespace marlet::project
{

/// Collects what parts say of their changes: each object once.
class MARLET_EXPORT ChangeList
{
public:
    ChangeList();
    ChangeList(const ChangeList &) = delete;
    ChangeList &operator=(const ChangeList &) = delete;
    ~ChangeList();

    /// The entry of an object, which is made if there is none. The reference holds until the next call.
    ObjectChange &Of(ObjectKind kind, const kytl::KyID &id);
    /// Frames of a timeline that an object filled before the change, and may fill no more.
    void AddFormerFrames(const kytl::KyID &timeline, const kytl::KyID &object, int first, int end);

    struct FormerFrames {
        StaleFrames frames;
        kytl::KyID object;
    };

    const std::vector<ObjectChange> &Changes() const;
    const std::vector<FormerFrames> &Former() const;
    bool IsEmpty() const;

private:
    struct Data;
    std::unique_ptr<Data> data_;
};

/// What one edit may change at one place of a document, with what stood there before. The library has parts
/// of its own for all that is in a project; a host can add others for what it keeps itself, such as the
/// content of its 3D effects.
///
/// The parts of an edit are exchanged in the reverse order of their beginning to undo it, in that order to
/// redo it. So each finds the document as it was when it began or when the edit ended.
class MARLET_EXPORT EditedPart
{
public:
    EditedPart(const EditedPart &) = delete;
    EditedPart &operator=(const EditedPart &) = delete;
    virtual ~EditedPart();

    /// Puts what is kept into the document and keeps what stood there. Should not throw.
    virtual void Exchange() = 0;
    /// Adds what differs between the document and what is kept. An edit whose parts add nothing makes no
    /// step.
    virtual void Describe(ChangeList &changes) const = 0;
    /// About how many bytes it keeps.
    virtual std::size_t Size() const = 0;

    /// The place: two parts of one edit with the same address, kind and name are of the same place, and the
    /// earlier one is enough. A part of a null address is always one more.
    struct Place {
        const void *object = nullptr;
        const void *kind = nullptr;
        NarrowString name;

        bool operator==(const Place &other) const = default;
    };

    const Place &At() const { return place_; }

protected:
    explicit EditedPart(Place place) : place_(std::move(place)) {}

private:
    Place place_;
};

} // namespace marlet::project
