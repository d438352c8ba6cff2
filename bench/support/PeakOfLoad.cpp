#include <bench/support/PeakOfLoad.h>

#include <bench/support/Documents.h>
#include <bench/support/HeapCounter.h>
#include <bench/support/Machine.h>
#include <bench/support/OwnProcess.h>

#include <marlet/project/Project.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <unistd.h>

using marlet::project::WideString;

namespace bench
{

namespace
{

namespace fs = std::filesystem;

/// A file that goes with its scope.
struct TemporaryFile {
    fs::path path = fs::temp_directory_path() / ("marlet-bench-" + std::to_string(getpid()) + ".utf16");

    ~TemporaryFile()
    {
        std::error_code ignored;
        fs::remove(path, ignored);
    }
};

void WriteText(const fs::path &path, const WideString &text)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char *>(text.data()),
               static_cast<std::streamsize>(text.size() * sizeof(char16_t)));
    if (!file.flush())
        throw std::runtime_error("cannot write " + path.string());
}

WideString ReadText(const fs::path &path)
{
    WideString text(fs::file_size(path) / sizeof(char16_t), u'\0');
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char *>(text.data()),
              static_cast<std::streamsize>(text.size() * sizeof(char16_t)));
    return text;
}

} // namespace

PeakOfLoad MeasurePeakOfLoad(int megabytes)
{
    const TemporaryFile file;
    WriteText(file.path, TextOfMegabytes(megabytes));
    const std::vector<double> figures = FiguresOf(kPeakOfLoadArgument, file.path.string(), 2);
    return {.heap = figures[0], .resident = figures[1]};
}

int RunPeakOfLoad(const char *path)
{
    const WideString text = ReadText(path);
    // The text is ASCII: a unit of UTF-16 is a byte of UTF-8.
    const double bytes = static_cast<double>(text.size());
    const long residentBefore = StatusKilobytes("VmRSS");
    const HeapCounter counter;
    const auto project = Load(text);
    const double heap = static_cast<double>(counter.PeakBytes());
    const double resident = 1024.0 * static_cast<double>(StatusKilobytes("VmHWM") - residentBefore);
    PrintFigures({heap / bytes, resident / bytes});
    return 0;
}

} // namespace bench
