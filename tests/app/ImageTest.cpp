#include "ToolTest.h"

#include <QImage>

namespace marlet::test
{

namespace
{

class ImageTest : public ToolTest
{
protected:
    /// A picture in which every pixel is different.
    QImage Save(const std::string &name, int width, int height, QImage::Format format) const
    {
        QImage image(width, height, format);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                image.setPixelColor(x, y, QColor(x, y, 9, image.hasAlphaChannel() ? 50 + y : 255));
        EXPECT_TRUE(image.save(QString::fromStdString(Path(name))));
        return image;
    }
};

TEST_F(ImageTest, TellsWhatBothClassesAnswer)
{
    Save("alpha.png", 5, 3, QImage::Format_ARGB32);
    Write("text.png", "no picture");
    const std::vector<std::string> lines =
        Run({"image", "alpha.png", "text.png", "gone.png", "--json"}).OutLines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(
        lines[0],
        "{\"file\":\"alpha.png\",\"image\":{\"name\":\"alpha.png\",\"status\":\"usable\",\"offline\":"
        "false,\"width\":5,\"height\":3,\"bits\":32,\"channels\":\"BGRA\",\"pixel_aspect_ratio\":1},"
        "\"texture\":{\"loaded\":true,\"width\":5,\"height\":3},\"pixels\":{\"width\":5,\"height\":3}}");
    EXPECT_THAT(lines[1], testing::HasSubstr("\"status\":\"unreadable\",\"offline\":false,\"width\":0"));
    EXPECT_THAT(lines[2], testing::HasSubstr("\"status\":\"missing\",\"offline\":true,\"width\":0"));
}

TEST_F(ImageTest, WritesThePictureAsItIs)
{
    // Rows of three bytes a pixel are padded at widths that are no multiple of four.
    for (const auto format : {QImage::Format_ARGB32, QImage::Format_RGB888}) {
        const QImage image = Save("in.png", 150, 151, format);
        ASSERT_EQ(Run({"image", "in.png", "-o", "out.png"}).exitCode, 0);
        const QImage written(QString::fromStdString(Path("out.png")));
        EXPECT_EQ(written.convertToFormat(format), image);
        EXPECT_EQ(written.hasAlphaChannel(), image.hasAlphaChannel());
    }
}

TEST_F(ImageTest, ScalesDownIntoASizeButNeverUp)
{
    Save("in.png", 40, 20, QImage::Format_RGB888);
    ASSERT_EQ(Run({"image", "in.png", "-o=small.png", "--size=10x10"}).exitCode, 0);
    EXPECT_EQ(QImage(QString::fromStdString(Path("small.png"))).size(), QSize(10, 5));
    EXPECT_THAT(Run({"image", "in.png", "--size", "400x400", "--json"}).out,
                testing::HasSubstr("\"pixels\":{\"width\":40,\"height\":20}"));
}

TEST_F(ImageTest, APictureThatCannotBeReadIsAFailure)
{
    Save("in.png", 5, 3, QImage::Format_RGB888);
    std::string bytes = Read("in.png");
    bytes[bytes.find("IDAT") + 6] ^= 0x55;
    Write("in.png", bytes);
    EXPECT_EQ(Run({"image", "in.png", "-o", "out.png"}).err,
              "marlet: in.png: Not an image that can be read\n");
    EXPECT_THAT(Run({"image", "in.png"}).out,
                testing::AllOf(testing::HasSubstr("usable, 5x3"), testing::HasSubstr("\n  pixels   none\n")));
    EXPECT_THAT(Run({"image", "in.png", "--json"}).out, testing::HasSubstr(",\"pixels\":null}"));
    EXPECT_EQ(FileNames().size(), 1u);
}

} // namespace

} // namespace marlet::test
