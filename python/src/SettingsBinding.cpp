#include "Bindings.h"
#include "Handles.h"
#include "Settings.h"
#include "Values.h"

#include <marlet/editor/EditorSequence.h>
#include <marlet/project/CompositionAsset.h>

namespace marlet::python
{

namespace
{

using Preset = AudioVideoSettings::Preset;

const Words<Preset> kPresets{{Preset::Pal, "pal"},
                             {Preset::PalWide, "pal-wide"},
                             {Preset::Ntsc, "ntsc"},
                             {Preset::NtscWide, "ntsc-wide"},
                             {Preset::Hd720At23976, "hd720-23.976"},
                             {Preset::Hd720At25, "hd720-25"},
                             {Preset::Hd720At2997, "hd720-29.97"},
                             {Preset::Hdv1080At25, "hdv1080-25"},
                             {Preset::Hdv1080At2997, "hdv1080-29.97"}};
const Words<VideoFields> kFields{{VideoFields::Progressive, "progressive"},
                                 {VideoFields::StandardDefinitionInterlaced, "interlaced-sd"},
                                 {VideoFields::HighDefinitionInterlaced, "interlaced-hd"}};

template <class Read, class Write>
void Field(py::class_<SettingsHandle> &type, const char *name, Read read, Write write, const char *help)
{
    using Value = std::decay_t<decltype(read(std::declval<const AudioVideoSettings &>()))>;
    type.def_property(
        name, [read](const SettingsHandle &settings) -> Value { return read(settings.Read()); },
        [write](const SettingsHandle &settings, const Value &value) {
            settings.Change([&](AudioVideoSettings &changed) { write(changed, value); });
        },
        help);
}

} // namespace

AudioVideoSettings SettingsOf(double rate, int width, int height, int frames, const std::string &preset)
{
    AudioVideoSettings settings(preset.empty() ? Preset::Hd720At25 : kPresets.Find(preset), frames);
    if (rate > 0)
        settings.SetFrameRate(rate);
    if (width > 0)
        settings.SetWidth(width);
    if (height > 0)
        settings.SetHeight(height);
    return settings;
}

void BindSettings(py::module_ &module)
{
    py::class_<SettingsHandle> type(module, "Settings", "The format of a composition or of the sequence.");
    Field(
        type, "width", [](const AudioVideoSettings &settings) { return settings.Width(); },
        [](AudioVideoSettings &settings, int width) { settings.SetWidth(width); }, "In pixels.");
    Field(
        type, "height", [](const AudioVideoSettings &settings) { return settings.Height(); },
        [](AudioVideoSettings &settings, int height) { settings.SetHeight(height); }, "In pixels.");
    Field(
        type, "frame_rate", [](const AudioVideoSettings &settings) { return settings.FrameRate(); },
        [](AudioVideoSettings &settings, double rate) { settings.SetFrameRate(rate); }, "Frames per second.");
    Field(
        type, "frame_count", [](const AudioVideoSettings &settings) { return settings.FrameCount(); },
        [](AudioVideoSettings &settings, int count) { settings.SetFrameCount(count); },
        "The length in frames.");
    Field(
        type, "sample_rate",
        [](const AudioVideoSettings &settings) { return static_cast<int>(settings.AudioSampleRate()); },
        [](AudioVideoSettings &settings, int rate) {
            const AudioSamplingRate known = AudioVideoSettings::AudioSampleRateFromValue(rate);
            if (AudioVideoSettings::AudioSampleRateValue(known) != rate)
                throw py::value_error("No such sample rate: " + std::to_string(rate));
            settings.SetAudioSampleRate(known);
        },
        "Of sound, in hertz.");
    Field(
        type, "pixel_aspect_ratio",
        [](const AudioVideoSettings &settings) { return settings.PixelAspectRatioValue(); },
        [](AudioVideoSettings &settings, double ratio) {
            const PAR known = AudioVideoSettings::PARFromValue(ratio);
            settings.SetPixelAspectRatio(known);
            if (known == PAR::Custom)
                settings.SetCustomPixelAspectRatio(ratio);
        },
        "The width of a pixel by its height.");
    Field(
        type, "fields", [](const AudioVideoSettings &settings) { return kFields.Of(settings.Fields()); },
        [](AudioVideoSettings &settings, const std::string &word) { settings.SetFields(kFields.Find(word)); },
        "'progressive', 'interlaced-sd' or 'interlaced-hd'.");
    type.def("__repr__", [](const SettingsHandle &handle) {
        const AudioVideoSettings settings = handle.Read();
        return "<marlet.Settings " + std::to_string(settings.Width()) + "x" +
               std::to_string(settings.Height()) + ", " + std::to_string(settings.FrameCount()) + " frames>";
    });
}

} // namespace marlet::python
