#pragma once

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/KyColorRGBA.h>
#include <marlet/project/AbstractAsset.h>

namespace marlet::project
{

class XmlCursor;
struct SolidAsset_Impl;

/// A rectangle of one colour.
class MARLET_EXPORT SolidAsset : public AbstractAsset
{
public:
    static std::shared_ptr<SolidAsset> Create(const WideString &name, const kytl::KyColorRGBA_32f &color,
                                              int width, int height, PAR pixelAspectRatio);
    /// @throws XmlParseException, InvalidProjectVersionException, std::runtime_error
    static std::shared_ptr<SolidAsset> CreateFromXml(const WideString &xml);
    static std::shared_ptr<SolidAsset> Copy(std::shared_ptr<SolidAsset> other);
    ~SolidAsset() override;

    std::shared_ptr<AbstractAsset> Clone() const override;
    const kytl::KyID &ID() const override;
    AssetType Type() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    bool IsOffline() const override;
    int Width() const override;
    int Height() const override;
    InstanceList &Instances() override;
    const InstanceList &Instances() const override;
    const kytl::KyID &ParentFolderID() const override;
    void SetParentFolderID(const kytl::KyID &id) override;
    void ClearParentBinFolder() override;
    WideString Serialize(const ProjectTextureImageCache &textures) const override;
    void Deserialize(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                     const Abstract3DEffectFactory &effectFactory,
                     ProjectTextureImageCache &textures) override;

    const kytl::KyColorRGBA_32f &Color() const;
    void SetColor(const kytl::KyColorRGBA_32f &color);
    void SetWidth(int width);
    void SetHeight(int height);
    PAR PixelAspectRatio() const;
    void SetPixelAspectRatio(PAR par);

private:
    friend class AssetList;

    SolidAsset();
    explicit SolidAsset(const XmlCursor &element);
    SolidAsset(const SolidAsset &other);

    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;
    void Deserialize(const XmlCursor &element);

    ValuePtr<SolidAsset_Impl> impl_;
};

} // namespace marlet::project
