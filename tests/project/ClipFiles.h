#pragma once

#include <marlet/foundation/Strings.h>

#include <encode/Encoder.h>

#include <QImage>
#include <QTemporaryDir>

#include <vector>

/// Short clips, each of one grey, in a folder that goes with the test.
class ClipFiles
{
public:
    static constexpr int kWidth = 64;
    static constexpr int kHeight = 32;
    static constexpr int kFrames = 10;

    kytl::WideString Path(const char *name) const { return folder_.filePath(name).toStdU16String(); }

    kytl::WideString Write(const char *name, unsigned char grey, int frames = kFrames) const
    {
        marlet::tool::Encoder encoder(folder_.filePath(name).toStdString(),
                                      {.width = kWidth, .height = kHeight, .frameRate = {25, 1}});
        const std::vector<unsigned char> picture(kWidth * kHeight * 4, grey);
        for (int frame = 0; frame < frames; ++frame)
            encoder.AddFrame(picture.data(), kWidth * 4);
        encoder.Finish();
        return Path(name);
    }

    void WritePicture(const char *name, unsigned char grey) const
    {
        QImage picture(kWidth, kHeight, QImage::Format_RGB32);
        picture.fill(qRgb(grey, grey, grey));
        picture.save(folder_.filePath(name));
    }

private:
    QTemporaryDir folder_;
};
