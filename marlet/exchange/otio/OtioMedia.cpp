#include <marlet/exchange/otio/OtioMedia.h>

#include <marlet/editor/EditorSequence.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/otio/OtioUrl.h>
#include <marlet/project/AssetLength.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace marlet::project
{

namespace
{

constexpr char kSolidKind[] = "SolidColor";
constexpr int kMostDigits = 9;
constexpr int kLargestSide = 1 << 15;

/// The number in the name of a member of an image sequence: the last digits of the name.
struct MemberName {
    NarrowString prefix;
    NarrowString digits;
    NarrowString suffix;
};

MemberName MemberNameOf(const NarrowString &name)
{
    constexpr char kDigits[] = "0123456789";
    const std::size_t last = name.find_last_of(kDigits);
    if (last == NarrowString::npos)
        return {name, {}, {}};
    const std::size_t before = name.find_last_not_of(kDigits, last);
    const std::size_t first = before == NarrowString::npos ? 0 : before + 1;
    return {name.substr(0, first), name.substr(first, last + 1 - first), name.substr(last + 1)};
}

Json Reference(const char *schema, const NarrowString &name, Json available)
{
    return {{"OTIO_SCHEMA", schema},
            {"metadata", Json::object()},
            {"name", name},
            {"available_range", std::move(available)},
            {"available_image_bounds", nullptr}};
}

NarrowString FileNameOf(const MediaAsset &media)
{
    const NarrowString path = ToUtf8(media.Filename());
    return path.substr(path.rfind('/') + 1);
}

Json SequenceReference(const MediaAsset &media, Json available, const WideString &folder)
{
    const NarrowString url = UrlOfPath(media.Filename(), folder);
    const MemberName member = MemberNameOf(FileNameOf(media));
    Json json = Reference("ImageSequenceReference.1", ToUtf8(media.Name()), std::move(available));
    json["target_url_base"] = url.substr(0, url.rfind('/') + 1); // nothing if there is no folder
    json["name_prefix"] = EncodedUrl(member.prefix);
    json["name_suffix"] = EncodedUrl(member.suffix);
    json["start_frame"] = std::stoi("0" + member.digits);
    json["frame_step"] = 1;
    json["rate"] = media.Override().frameRate;
    json["frame_zero_padding"] = member.digits.size();
    json["missing_frame_policy"] = "error";
    return json;
}

bool CanBeSequence(const MediaAsset &media)
{
    const std::size_t digits = MemberNameOf(FileNameOf(media)).digits.size();
    return media.IsImageSequence() && digits > 0 && digits <= kMostDigits &&
           std::isfinite(media.Override().frameRate);
}

Json SolidReference(const SolidAsset &solid)
{
    Json json = Reference("GeneratorReference.1", ToUtf8(solid.Name()), nullptr);
    const kytl::KyColorRGBA_32f &color = solid.Color();
    json["generator_kind"] = kSolidKind;
    json["parameters"] = {{"color", {color.R, color.G, color.B, color.A}},
                          {"width", solid.Width()},
                          {"height", solid.Height()}};
    return json;
}

NarrowString FirstMember(const Json &reference)
{
    const Json &start = MemberOf(reference, "start_frame");
    const Json &padding = MemberOf(reference, "frame_zero_padding");
    NarrowString number = start.is_number_integer() ? std::to_string(start.get<std::int64_t>()) : "0";
    const NarrowString sign = number.starts_with('-') ? "-" : "";
    number.erase(0, sign.size());
    const std::size_t width = padding.is_number_unsigned() ? padding.get<std::size_t>() : 0;
    if (number.size() < width && width <= kMostDigits)
        number.insert(0, width - number.size(), '0');
    NarrowString base = TextMemberOf(reference, "target_url_base");
    if (!base.empty() && !base.ends_with('/'))
        base += '/';
    return base + TextMemberOf(reference, "name_prefix") + sign + number +
           TextMemberOf(reference, "name_suffix");
}

/// Whether a file that is not there would be a still.
bool IsNamedLikeStill(const WideString &path)
{
    constexpr std::array<std::u16string_view, 8> kEndings{u".png",  u".jpg", u".jpeg", u".tif",
                                                          u".tiff", u".bmp", u".gif",  u".webp"};
    const std::size_t point = path.rfind(u'.');
    WideString ending = point == WideString::npos ? WideString() : path.substr(point);
    std::ranges::transform(ending, ending.begin(),
                           [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; });
    return std::ranges::find(kEndings, ending) != kEndings.end();
}

NarrowString NameOf(const Json &clip, const Json &reference)
{
    const NarrowString name = TextMemberOf(reference, "name");
    return name.empty() ? TextMemberOf(clip, "name") : name;
}

/// What a reference names, whatever kind it is of; clips with the same share an asset.
NarrowString KeyOf(const Json &clip, const Json &reference)
{
    const NarrowString source = SourceOf(reference);
    if (!source.empty())
        return NarrowString(SchemaOf(reference)) + " " + source;
    if (SchemaOf(reference) == "GeneratorReference")
        return "Generator " + TextMemberOf(reference, "generator_kind") +
               ShortJsonTextOf(MemberOf(reference, "parameters"));
    return "Missing " + NameOf(clip, reference);
}

float ChannelOf(const Json &color, std::size_t index)
{
    const bool has = color.is_array() && index < color.size() && color[index].is_number();
    const double value = has ? color[index].get<double>() : index == 3 ? 1.0 : 0.0;
    return static_cast<float>(std::clamp(value, -1e6, 1e6));
}

int SideOf(const Json &parameters, const char *key, int otherwise)
{
    const Json &side = MemberOf(parameters, key);
    return side.is_number() ? static_cast<int>(std::clamp(side.get<double>(), 1.0, double(kLargestSide)))
                            : otherwise;
}

} // namespace

Json ReferenceTo(const AbstractAsset *asset, const OtioClock &clock, double rate, const WideString &folder)
{
    if (!asset)
        return Reference("MissingReference.1", "", nullptr);
    Json available;
    if (const auto *media = dynamic_cast<const MediaAsset *>(asset)) {
        if (const auto length = media->IsOffline() ? std::nullopt : AssetLength(*asset, rate))
            available = clock.Range({0, static_cast<double>(*length)});
        if (CanBeSequence(*media))
            return SequenceReference(*media, std::move(available), folder);
    }
    if (const auto *solid = dynamic_cast<const SolidAsset *>(asset))
        return SolidReference(*solid);
    const WideString file = FileOf(*asset);
    if (file.empty())
        return Reference("MissingReference.1", ToUtf8(asset->Name()), nullptr);
    Json json = Reference("ExternalReference.1", ToUtf8(asset->Name()), std::move(available));
    json["target_url"] = UrlOfPath(file, folder);
    return json;
}

NarrowString SourceOf(const Json &reference)
{
    const std::string_view schema = SchemaOf(reference);
    if (schema == "ExternalReference")
        return TextMemberOf(reference, "target_url");
    return schema == "ImageSequenceReference" ? FirstMember(reference) : NarrowString();
}

WideString FileOf(const AbstractAsset &asset)
{
    if (const auto *image = dynamic_cast<const ImageAsset *>(&asset))
        return image->Filename();
    const auto *media = dynamic_cast<const MediaAsset *>(&asset);
    return media ? media->Filename() : WideString();
}

OtioAssets::OtioAssets(Project &project, const ExchangeOptions &options, double rate)
    : project_(project), options_(options), rate_(rate)
{
}

void OtioAssets::Expect(const Json &clip)
{
    const Json &reference = *ActiveReferenceOf(clip).json;
    expected_.emplace(KeyOf(clip, reference), &clip);
}

std::shared_ptr<AbstractAsset> OtioAssets::AssetFor(const Json &clip)
{
    if (!expected_.empty())
        Open();
    return assets_.at(KeyOf(clip, *ActiveReferenceOf(clip).json));
}

/// A file that the project has already gives the asset that there is.
void OtioAssets::Open()
{
    std::map<WideString, AssetPointer> files;
    for (const AssetPointer &asset : std::as_const(project_).Assets().All())
        if (const WideString file = FileOf(*asset); !file.empty())
            files.emplace(file, asset);
    std::vector<NarrowString> keys;
    std::vector<WideString> paths;
    for (const auto &[key, clip] : expected_) {
        const Json &reference = *ActiveReferenceOf(*clip).json;
        const WideString path = PathOfUrl(SourceOf(reference), options_.folder);
        if (const auto found = files.find(path); !path.empty() && found != files.end()) {
            assets_.emplace(key, found->second);
        } else if (AssetPointer made = Made(*clip, reference)) {
            Add(key, made, TextMemberOf(reference, "name"));
        } else {
            keys.push_back(key);
            paths.push_back(path);
        }
    }
    const auto opened = project_.Media().CreateMediaAssets(paths, options_.load.progress);
    for (std::size_t i = 0; i < keys.size(); ++i)
        Add(keys[i], opened[i], TextMemberOf(*ActiveReferenceOf(*expected_.at(keys[i])).json, "name"));
    expected_.clear();
}

void OtioAssets::Add(const NarrowString &key, const AssetPointer &asset, const NarrowString &name)
{
    if (!name.empty())
        asset->SetName(FromUtf8(name));
    BinFolder &root = project_.Assets().Bin();
    asset->SetParentFolderID(root.ID());
    root.Assets().Add(asset);
    project_.Assets().All().Add(asset);
    assets_.emplace(key, asset);
}

/// Empty for a file that is opened with the others.
OtioAssets::AssetPointer OtioAssets::Made(const Json &clip, const Json &reference) const
{
    const std::string_view schema = SchemaOf(reference);
    const WideString path = PathOfUrl(SourceOf(reference), options_.folder);
    if (schema == "ImageSequenceReference") {
        const Json &rate = MemberOf(reference, "rate");
        const double given = rate.is_number() ? rate.get<double>() : 0;
        return project_.Media().CreateImageSequence(path, given > 0 && given < 1e6 ? given : rate_);
    }
    if (schema == "GeneratorReference") {
        const Json &parameters = MemberOf(reference, "parameters");
        const NarrowString kind = TextMemberOf(reference, "generator_kind");
        const Json &color = MemberOf(parameters, "color");
        if (kind != kSolidKind)
            Tell(options_, LoadEntry::Severity::Warning,
                 "the generator \"" + kind + "\" of \"" + TextMemberOf(clip, "name") + "\" is a black solid");
        const AudioVideoSettings &format = project_.Sequence()->Settings();
        return SolidAsset::Create(
            FromUtf8(kind),
            {ChannelOf(color, 0), ChannelOf(color, 1), ChannelOf(color, 2), ChannelOf(color, 3)},
            SideOf(parameters, "width", format.Width()), SideOf(parameters, "height", format.Height()),
            PAR::Square);
    }
    if (path.empty()) {
        const NarrowString name = NameOf(clip, reference);
        Tell(options_, LoadEntry::Severity::Warning,
             "the media of \"" + name + "\" are missing; the asset of that name can be relinked");
        return project_.Media().CreateMediaAsset(options_.folder + FromUtf8(name));
    }
    const auto image = ImageAsset::Create(path);
    const auto status = image->Status();
    if (status == ImageAsset::FileStatus::Usable ||
        (status == ImageAsset::FileStatus::Missing && IsNamedLikeStill(path)))
        return image;
    return {};
}

} // namespace marlet::project
