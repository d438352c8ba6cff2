#include "Formats.h"

#include <marlet/exchange/otio/OtioFormat.h>
#include <marlet/exchange/srt/SrtFormat.h>

namespace marlet::project
{

std::vector<const ExchangeFormat *> Formats()
{
    static const OtioFormat otio;
    static const SrtFormat srt;
    return {&otio, &srt};
}

} // namespace marlet::project
