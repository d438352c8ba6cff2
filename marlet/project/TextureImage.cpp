#include <marlet/project/TextureImage.h>

#include <marlet/platform/images/ImageFile.h>

namespace marlet::project
{

struct TextureImage_Impl {
    kytl::KyID id = kytl::KyID::Generate();
    bool loadSuccessful = false;
    WideString filePath;
    int width = 0;
    int height = 0;
};

TextureImage::TextureImage() = default;

TextureImage::TextureImage(const TextureImage &other) : impl_(other.impl_)
{
    impl_->id = kytl::KyID::Generate();
}

TextureImage &TextureImage::operator=(TextureImage other)
{
    impl_.Swap(other.impl_);
    return *this;
}

TextureImage::~TextureImage() = default;

const kytl::KyID &TextureImage::ID() const
{
    return impl_->id;
}

const WideString &TextureImage::FilePath() const
{
    return impl_->filePath;
}

void TextureImage::Load(const WideString &path)
{
    impl_->filePath = path;
    Reload();
}

void TextureImage::Reload()
{
    const auto header = platform::ReadImageHeader(impl_->filePath);
    impl_->loadSuccessful = header.has_value();
    impl_->width = header ? header->width : 0;
    impl_->height = header ? header->height : 0;
}

bool TextureImage::LoadSuccessful() const
{
    return impl_->loadSuccessful;
}

int TextureImage::Width() const
{
    return impl_->width;
}

int TextureImage::Height() const
{
    return impl_->height;
}

} // namespace marlet::project
