#include "Script.h"

#include <QApplication>
#include <QCommandLineParser>

#include <exception>
#include <iostream>

namespace
{

int Run(QApplication &application)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument("FILE", "the project to edit; made if it is not there");
    parser.addOption({"script", "works with the small project that is made, and ends"});
    parser.addOption({"photo", "takes a photo of the window, and ends", "FILE.png"});
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);

    editor::Document document(parser.positionalArguments().front().toStdString());
    editor::EditorWindow window(document);
    window.resize(960, 540);
    window.show();
    if (!parser.isSet("script") && !parser.isSet("photo"))
        return QApplication::exec();
    if (parser.isSet("script"))
        editor::RunScript(document, window);
    std::cout << editor::Shown(window).toStdString() << "\n";
    if (parser.isSet("photo"))
        editor::TakePhoto(window, parser.value("photo").toStdString());
    return 0;
}

} // namespace

// editor_example FILE [--script] [--photo FILE.png]
int main(int count, char **arguments)
try {
    QApplication application(count, arguments);
    return Run(application);
} catch (const std::exception &error) {
    std::cerr << error.what() << "\n";
    return 1;
}
