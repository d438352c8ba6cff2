#pragma once

#include <marlet/exchange/mlt/MltPlacement.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <memory>
#include <unordered_map>

namespace marlet::project
{

class Project;

/// The producers of the objects of a sequence, and the entries that show frames of them.
class MltEntries
{
public:
    MltEntries(XmlWriter &writer, const Project &project, const AudioVideoSettings &settings,
               const ExchangeOptions &options);

    /// Whether the program can show what the object shows: compositions are told of as losses.
    bool CanShow(const AbstractSequenceObject &object) const;
    /// The producer of an object that will show these frames.
    void WriteProducer(const AbstractSequenceObject &object, const MltFrames &frames);
    void WriteEntry(const AbstractSequenceObject &object, const MltFrames &frames);

private:
    /// The frame of the producer that is the first of the object.
    struct Source {
        NarrowString id;
        long long start = 0;
    };

    std::shared_ptr<AbstractAsset> AssetOf(const AbstractSequenceObject &object) const;
    void WriteSource(const AbstractSequenceObject &object, const AbstractAsset &asset);
    NarrowString ResourceOf(const AbstractSequenceObject &object, const AbstractAsset &asset) const;
    void WriteFilters(const AbstractSequenceObject &object, const MltFrames &frames, long long in);
    void WriteFilter(std::string_view service, long long in, const MltFrames &frames,
                     std::initializer_list<std::pair<std::string_view, std::string_view>> properties);

    XmlWriter &writer_;
    const Project &project_;
    const AudioVideoSettings &settings_;
    const ExchangeOptions &options_;
    std::unordered_map<const AbstractSequenceObject *, Source> sources_;
};

} // namespace marlet::project
