#include <bench/support/BareParse.h>

#include <pugixml.hpp>

namespace bench
{

namespace
{

std::size_t CountNodes(const pugi::xml_document &document)
{
    std::size_t count = 0;
    pugi::xml_node node = document.first_child();
    while (node) {
        ++count;
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node && !node.next_sibling())
            node = node.parent();
        node = node.next_sibling();
    }
    return count;
}

} // namespace

std::shared_ptr<pugi::xml_document> ParseAndWalk(const marlet::project::WideString &text)
{
    auto document = std::make_shared<pugi::xml_document>();
    const auto result = document->load_buffer(text.data(), text.size() * sizeof(char16_t),
                                              pugi::parse_default, pugi::encoding_utf16);
    if (!result || CountNodes(*document) == 0)
        return nullptr;
    return document;
}

} // namespace bench
