#include <bench/support/OwnProcess.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

namespace bench
{

std::vector<double> FiguresOf(const char *what, const std::string &file, std::size_t count)
{
    const std::string command =
        "'" + std::filesystem::read_symlink("/proc/self/exe").string() + "' " + what + " '" + file + "'";
    std::FILE *child = popen(command.c_str(), "r");
    std::vector<double> figures;
    for (double figure = 0; child && std::fscanf(child, "%lf", &figure) == 1;)
        figures.push_back(figure);
    if (!child || pclose(child) != 0 || figures.size() != count)
        throw std::runtime_error("cannot measure in a process of its own");
    return figures;
}

void PrintFigures(const std::vector<double> &figures)
{
    for (const double figure : figures)
        std::printf("%.9g\n", figure);
}

} // namespace bench
