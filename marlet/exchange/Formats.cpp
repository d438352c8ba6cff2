#include "Formats.h"

#include <marlet/exchange/edl/EdlFormat.h>
#include <marlet/exchange/gltf/GltfFormat.h>
#include <marlet/exchange/keyframes/CsvFormat.h>
#include <marlet/exchange/keyframes/JsonKeyFramesFormat.h>
#include <marlet/exchange/mlt/MltFormat.h>
#include <marlet/exchange/otio/OtioFormat.h>
#include <marlet/exchange/srt/SrtFormat.h>

namespace marlet::project
{

std::vector<const ExchangeFormat *> Formats()
{
    static const OtioFormat otio;
    static const EdlFormat edl;
    static const MltFormat mlt;
    static const SrtFormat srt;
    static const CsvFormat csv;
    static const JsonKeyFramesFormat keyFrames;
    static const GltfFormat gltf;
    return {&otio, &edl, &mlt, &srt, &csv, &keyFrames, &gltf};
}

} // namespace marlet::project
