#include <marlet/platform/media/decoding/LiveDecoders.h>

#include <malloc.h>

#include <algorithm>
#include <utility>

namespace kyh::media
{

using kytl::thread::KyScopedLock;

namespace
{

constexpr std::size_t kAtLeast = std::size_t{32} << 20;
/// Reads after which a decoder that rests is one that nobody will come back to soon.
constexpr std::uint64_t kOfLate = 64;

constexpr std::size_t kWorthGivingBack = std::size_t{16} << 20;

/// As much as the layers of a picture that are read in turn need; each would open its decoder anew otherwise.
constexpr std::size_t MostOf(std::size_t budget)
{
    return budget / 8 * 5;
}

} // namespace

std::unique_ptr<LiveDecoders::Decoder> LiveDecoders::Take(std::uint64_t stream)
{
    const KyScopedLock lock(lock_);
    const auto place = std::find_if(resting_.begin(), resting_.end(),
                                    [stream](const Resting &resting) { return resting.stream == stream; });
    if (place == resting_.end())
        return nullptr;
    std::unique_ptr<Decoder> decoder = std::move(place->decoder);
    bytes_ -= place->bytes;
    resting_.erase(place);
    return decoder;
}

/// The one that was read through last stays, whatever it holds.
bool LiveDecoders::IsOneTooMany(std::size_t budget, std::uint64_t reads) const
{
    if (resting_.size() <= 1)
        return false;
    const std::size_t most = std::max(MostOf(budget), kAtLeast);
    const bool isForgotten = resting_.back().since + kOfLate < reads;
    return resting_.size() > kMost || bytes_ > most || (isForgotten && bytes_ > most / 4);
}

void LiveDecoders::Keep(std::uint64_t stream, std::unique_ptr<Decoder> decoder, std::size_t budget,
                        std::uint64_t reads)
{
    const std::size_t bytes = decoder->Bytes();
    std::list<Resting> gone;
    {
        const KyScopedLock lock(lock_);
        resting_.push_front({stream, std::move(decoder), bytes, reads});
        bytes_ += bytes;
        while (IsOneTooMany(budget, reads))
            TakeOldest(gone);
    }
    Close(std::move(gone));
}

void LiveDecoders::Drop(std::uint64_t stream)
{
    auto decoder = Take(stream);
    if (!decoder)
        return;
    const std::size_t bytes = decoder->Bytes();
    std::list<Resting> gone;
    gone.push_back({stream, std::move(decoder), bytes, 0});
    Close(std::move(gone));
}

void LiveDecoders::CloseBeyond(std::size_t budget)
{
    std::list<Resting> gone;
    {
        const KyScopedLock lock(lock_);
        while (bytes_ > MostOf(budget))
            TakeOldest(gone);
    }
    Close(std::move(gone));
}

/// What decoders had in the heaps of their threads would stay with them. Giving it back goes through all
/// heaps of the process, so it waits until there is enough.
void LiveDecoders::Close(std::list<Resting> &&gone)
{
    for (const Resting &closed : gone)
        closedBytes_ += closed.bytes;
    gone.clear();
    if (closedBytes_ < kWorthGivingBack)
        return;
    closedBytes_ = 0;
    ::malloc_trim(0);
}

void LiveDecoders::TakeOldest(std::list<Resting> &gone)
{
    bytes_ -= resting_.back().bytes;
    gone.splice(gone.begin(), resting_, std::prev(resting_.end()));
}

} // namespace kyh::media
