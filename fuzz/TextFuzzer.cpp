// Any text of tokens either loads or is refused in the documented ways. What loads goes into a layer as a
// host puts it there, and is written, cloned and read again as the same text.

#include "support/FuzzInput.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <unordered_map>
#include <vector>

using namespace marlet::project;

namespace
{

using Token = TextLayer::Token;
using Format = TextLayer::Format;

/// Beyond any size of a format.
constexpr long long kNoFormat = 1LL << 40;

struct Tokens {
    TextLayer::TokenList list;
    TextLayer::FormatList formats;
};

const std::shared_ptr<TextLayer> &Reader()
{
    static const auto reader = TextLayer::Create(u"", 1, 1);
    return reader;
}

bool ReadIfAccepted(const WideString &text, Tokens &tokens)
{
    try {
        Reader()->DeserializeTokens(text, tokens.list, tokens.formats);
        return true;
    } catch (const XmlParseException &) {
    } catch (const std::runtime_error &) {
    }
    return false;
}

/// Takes the tokens over, with the formats that the layer's table has for theirs.
std::shared_ptr<TextLayer> LayerOf(Tokens tokens)
{
    const auto layer = TextLayer::Create(u"Text", 640, 90);
    std::unordered_map<const Format *, std::shared_ptr<Format>> ofTable;
    for (const auto &format : tokens.formats)
        ofTable.emplace(format.get(), layer->GetOrAddFormat(format));
    for (Token *token = tokens.list.first.get(); token; token = token->next.get())
        if (token->format)
            token->format = ofTable.at(token->format.get());
    layer->Text() = std::move(tokens.list);
    return layer;
}

WideString TextOf(TextLayer &layer)
{
    return layer.SerializeTokens(layer.Text().first, nullptr);
}

/// The units of a text, its breaks and the sizes of its formats, without any ID.
std::vector<long long> Content(const TextLayer::TokenList &list)
{
    std::vector<long long> content;
    const Token *last = nullptr;
    for (const Token *token = list.first.get(); token; token = token->next.get()) {
        if (token->previous.lock().get() != last)
            Fail("a token does not know the one before it");
        last = token;
        content.push_back(token->type);
        content.push_back(token->type == Token::kParagraph ? static_cast<int>(token->justification)
                                                           : token->character);
        content.push_back(token->format ? token->format->size : kNoFormat);
    }
    if (list.last.lock().get() != last)
        Fail("the last token of a text is another one");
    return content;
}

void RequireSameText(const TextLayer::TokenList &first, const TextLayer::TokenList &second, const char *when)
{
    if (Content(first) != Content(second))
        Fail(when);
}

void TryClone(const TextLayer &layer)
{
    const auto clone = std::static_pointer_cast<TextLayer>(layer.Clone({}));
    RequireSameText(layer.Text(), clone->Text(), "a clone has another text");
    const WideString before = TextOf(*clone);
    clone->CleanUpFormat();
    RequireSame(before, TextOf(*clone));

    const ProjectTextureImageCache textures;
    const WideString saved = clone->Serialize(textures);
    RequireSame(saved, TextLayer::CreateFromXml(saved, nullptr)->Serialize(textures));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Tokens tokens;
    if (!ReadIfAccepted(TextOfInput(bytes, size), tokens))
        return 0;
    const auto layer = LayerOf(std::move(tokens));
    const WideString saved = TextOf(*layer);
    Tokens again;
    Reader()->DeserializeTokens(saved, again.list, again.formats);
    RequireSameText(layer->Text(), again.list, "a text that is read again is another");
    RequireSame(saved, TextOf(*LayerOf(std::move(again))));
    // Tokens may share an ID, and a stretch ends at the first that has that of its last.
    Tokens stretch;
    Reader()->DeserializeTokens(layer->SerializeTokens(layer->Text().first, layer->Text().last.lock()),
                                stretch.list, stretch.formats);
    TryClone(*layer);
    return 0;
}
