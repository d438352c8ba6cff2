#pragma once

namespace kyh::media
{

/// Bounds what decoders hold while nobody reads through them.
class LiveDecoders
{
};

} // namespace kyh::media
