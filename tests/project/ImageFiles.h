#pragma once

#include <marlet/foundation/Strings.h>

#include <QImage>
#include <QImageWriter>
#include <QTemporaryDir>

/// Image files in a folder that goes with the test.
class ImageFiles
{
public:
    kytl::WideString Path(const char *name) const { return folder_.filePath(name).toStdU16String(); }

    kytl::WideString Write(const char *name, const QImage &image) const
    {
        if (!image.save(folder_.filePath(name)))
            throw std::runtime_error("Cannot write an image");
        return Path(name);
    }

    kytl::WideString Write(const char *name, const QByteArray &bytes) const
    {
        QFile file(folder_.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            throw std::runtime_error("Cannot write a file");
        return Path(name);
    }

    QByteArray Read(const char *name) const
    {
        QFile file(folder_.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            throw std::runtime_error("Cannot read a file");
        return file.readAll();
    }

    static QImage Plain(int width, int height, QImage::Format format = QImage::Format_RGB32)
    {
        QImage image(width, height, format);
        image.fill(QColor(10, 20, 30));
        return image;
    }

private:
    QTemporaryDir folder_;
};
