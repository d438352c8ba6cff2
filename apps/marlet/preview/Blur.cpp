#include "Blur.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace marlet::tool
{

namespace
{

/// Lines of bytes are blurred side by side, so that the machine works on several at once.
constexpr std::size_t kLanes = 16;
using Cell = std::array<float, kLanes>;

/// Three means in a row make a bell curve: the quadratic B-spline.
constexpr int kBoxesPerPass = 3;

/// The radii of the means, which add up to that of the curve.
std::vector<int> Radii(int radius, int passes)
{
    const int boxes = kBoxesPerPass * std::clamp(passes, 1, 5);
    std::vector<int> radii;
    for (int box = 0; box < boxes; ++box)
        if (const int share = radius / boxes + (box < radius % boxes ? 1 : 0); share > 0)
            radii.push_back(share);
    return radii;
}

unsigned char Byte(float level)
{
    return static_cast<unsigned char>(std::clamp(level + 0.5f, 0.f, 255.f));
}

/// Each cell becomes the mean of those up to a radius away, which are there on both sides.
void Average(const Cell *from, Cell *to, int count, int radius)
{
    std::array<double, kLanes> sum{};
    for (int index = -radius; index <= radius; ++index)
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            sum[lane] += static_cast<double>(from[index][lane]);
    const double share = 1.0 / (2.0 * radius + 1);
    for (int index = 0; index < count; ++index) {
        const Cell &leaving = from[index - radius];
        const Cell &coming = from[index + radius + 1];
        Cell &mean = to[index];
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            mean[lane] = static_cast<float>(sum[lane] * share);
            sum[lane] += static_cast<double>(coming[lane]) - static_cast<double>(leaving[lane]);
        }
    }
}

/// Blurs lines of equal length, each a row or a column of one channel.
class LineBlur
{
public:
    LineBlur(int count, std::ptrdiff_t step, int radius, const BlurOptions &options)
        : count_(count), step_(step), radii_(Radii(radius, options.passes)), repeatEdges_(options.repeatEdges)
    {
        // The first is the largest, and one more cell comes in when the last is made.
        margin_ = radii_.empty() ? 0 : radii_.front() + 1;
        line_.resize(static_cast<std::size_t>(count_) + 2 * static_cast<std::size_t>(margin_));
        next_.resize(line_.size());
    }

    bool IsNeeded() const { return !radii_.empty(); }

    /// The lines begin at the bytes; there are at most as many as lanes.
    void Run(const std::array<unsigned char *, kLanes> &lines, std::size_t lineCount)
    {
        if (!Take(lines, lineCount))
            return;
        for (const int radius : radii_) {
            FillMargins();
            Average(line_.data() + margin_, next_.data() + margin_, count_, radius);
            line_.swap(next_);
        }
        for (int index = 0; index < count_; ++index)
            for (std::size_t lane = 0; lane < lineCount; ++lane)
                lines[lane][index * step_] = Byte(line_[static_cast<std::size_t>(margin_ + index)][lane]);
    }

private:
    /// Whether there is anything but zeros, which stay.
    bool Take(const std::array<unsigned char *, kLanes> &lines, std::size_t lineCount)
    {
        unsigned char any = 0;
        for (int index = 0; index < count_; ++index)
            for (std::size_t lane = 0; lane < lineCount; ++lane) {
                const unsigned char byte = lines[lane][index * step_];
                any = static_cast<unsigned char>(any | byte);
                line_[static_cast<std::size_t>(margin_ + index)][lane] = byte;
            }
        return any != 0;
    }

    void FillMargins()
    {
        const auto begin = line_.begin() + margin_;
        const auto end = begin + count_;
        std::fill(line_.begin(), begin, repeatEdges_ ? *begin : Cell{});
        std::fill(end, line_.end(), repeatEdges_ ? *(end - 1) : Cell{});
    }

    int count_;
    std::ptrdiff_t step_;
    std::vector<int> radii_;
    bool repeatEdges_;
    int margin_;
    std::vector<Cell> line_;
    std::vector<Cell> next_;
};

/// Pixels of some channels, a byte each.
struct Plane {
    unsigned char *bytes;
    int width;
    int height;
    int channels;
    std::ptrdiff_t rowBytes;
};

void BlurAcross(const Plane &plane, const BlurOptions &options)
{
    LineBlur blur(plane.width, plane.channels, options.horizontal, options);
    if (!blur.IsNeeded())
        return;
    std::array<unsigned char *, kLanes> lines{};
    std::size_t count = 0;
    for (int y = 0; y < plane.height; ++y) {
        for (int channel = 0; channel < plane.channels; ++channel)
            lines[count++] = plane.bytes + y * plane.rowBytes + channel;
        if (count + static_cast<std::size_t>(plane.channels) > kLanes || y + 1 == plane.height) {
            blur.Run(lines, count);
            count = 0;
        }
    }
}

void BlurDown(const Plane &plane, const BlurOptions &options)
{
    LineBlur blur(plane.height, plane.rowBytes, options.vertical, options);
    if (!blur.IsNeeded())
        return;
    std::array<unsigned char *, kLanes> lines{};
    const std::size_t columns =
        static_cast<std::size_t>(plane.width) * static_cast<std::size_t>(plane.channels);
    for (std::size_t first = 0; first < columns; first += kLanes) {
        const std::size_t count = std::min(kLanes, columns - first);
        for (std::size_t lane = 0; lane < count; ++lane)
            lines[lane] = plane.bytes + first + lane;
        blur.Run(lines, count);
    }
}

void Blur(const Plane &plane, const BlurOptions &options)
{
    if (plane.width <= 0 || plane.height <= 0)
        return;
    BlurAcross(plane, options);
    BlurDown(plane, options);
}

} // namespace

QImage Blurred(const QImage &picture, const BlurOptions &options)
{
    QImage blurred = picture;
    if (!picture.isNull() && (options.horizontal > 0 || options.vertical > 0))
        Blur({blurred.bits(), picture.width(), picture.height(), 4, picture.bytesPerLine()}, options);
    return blurred;
}

std::vector<unsigned char> BytesOf(const QImage &alpha)
{
    std::vector<unsigned char> bytes;
    bytes.reserve(static_cast<std::size_t>(alpha.width()) * static_cast<std::size_t>(alpha.height()));
    for (int y = 0; y < alpha.height(); ++y)
        bytes.insert(bytes.end(), alpha.constScanLine(y), alpha.constScanLine(y) + alpha.width());
    return bytes;
}

void BlurBytes(std::vector<unsigned char> &bytes, QSize size, const BlurOptions &options)
{
    Blur({bytes.data(), size.width(), size.height(), 1, size.width()}, options);
}

} // namespace marlet::tool
