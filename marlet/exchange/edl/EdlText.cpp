#include <marlet/exchange/edl/EdlText.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/edl/EdlLine.h>

#include <algorithm>
#include <charconv>
#include <optional>

namespace marlet::project
{

namespace
{

/// Gathers the edits of a text line by line, and gives the notes below an event to its edits.
class EdlParser
{
public:
    explicit EdlParser(const ExchangeOptions &options) : options_(options) {}

    EdlList Parse(std::string_view text)
    {
        ChooseTime(text);
        ForEachEdlLine(text, [this](int line, std::string_view content) {
            line_ = line;
            Take(content);
            return true;
        });
        EndEvent();
        if (list_.edits.empty() && !hasHead_)
            throw ExchangeException("There is neither a title nor an edit: this is no edit decision list");
        return std::move(list_);
    }

private:
    /// The mode of the first statement counts for the list, since the record tape has one mode only.
    void ChooseTime(std::string_view text)
    {
        bool isDrop = false;
        bool isSaid = false;
        ForEachEdlLine(text, [&](int, std::string_view content) {
            if (StartsWithWord(content, "FCM:")) {
                isDrop = !StartsWithWord(AfterWord(content, "FCM:"), "NON");
                isSaid = true;
            } else if (const auto first = EdlLine(content).FirstTimeCode()) {
                isDrop = isSaid ? isDrop : first->find(';') != std::string_view::npos;
                return false;
            }
            return true;
        });
        double &rate = list_.time.frameRate;
        rate = options_.frameRate > 0 ? options_.frameRate : isDrop ? 29.97 : 25;
        if (options_.frameRate <= 0)
            Tell(LoadEntry::Severity::Warning,
                 NarrowString("the list does not say how many frames a second has: ") +
                     (isDrop ? "29.97, which drop-frame numbers are for" : "25") + " are taken");
        const int whole = list_.time.FramesPerSecond();
        list_.time.isDrop = isDrop && (whole == 30 || whole == 60);
        if (isDrop && !list_.time.isDrop)
            Tell(LoadEntry::Severity::Warning,
                 "there are no drop-frame numbers at " + std::to_string(whole) + " frames a second");
    }

    void Take(std::string_view content)
    {
        if (content.empty())
            return;
        if (IsDigit(content.front()))
            TakeEdit(EdlLine(content));
        else if (StartsWithWord(content, "TITLE:"))
            list_.title = AfterWord(content, "TITLE:"), hasHead_ = true;
        else if (StartsWithWord(content, "FCM:"))
            hasHead_ = true;
        else if (StartsWithWord(content, "M2"))
            TakeSpeed(AfterWord(content, "M2"));
        else if (StartsWithWord(content, "AUD"))
            TakeSound(AfterWord(content, "AUD"));
        else
            TakeNote(content);
    }

    void TakeEdit(const EdlLine &words)
    {
        EdlEdit edit;
        edit.line = line_;
        bool isKey = false;
        words.Read(list_.time, line_, edit, isKey);
        if (isKey)
            Tell(LoadEntry::Severity::Loss, "a key over a background is taken as a cut to its foreground");
        const bool continues = eventSize_ == 1 && list_.edits.back().number == edit.number &&
                               list_.edits.back().IsEmpty() && edit.kind != EdlKind::Cut;
        if (!continues)
            EndEvent();
        list_.edits.push_back(edit);
        ++eventSize_;
    }

    EdlEdit *Last() { return eventSize_ > 0 ? &list_.edits.back() : nullptr; }

    void TakeSpeed(std::string_view rest)
    {
        const EdlLine words(rest);
        double framesPerSecond = 0;
        // The number follows the reel, which may have blanks in it.
        const auto number = words.LastNumber(framesPerSecond);
        if (!number || !Last())
            return TellPassedOver();
        EdlEdit *edit = Last();
        const NarrowString reel = words.Joined(0, *number);
        if (eventSize_ == 2 && !EqualWords(edit->reel, reel) && EqualWords((edit - 1)->reel, reel))
            --edit;
        edit->speed = framesPerSecond / list_.time.FramesPerSecond();
    }

    void TakeSound(std::string_view rest)
    {
        if (!Last())
            return TellPassedOver();
        for (const char c : rest)
            if (c == '3' || c == '4')
                for (std::size_t i = 0; i < eventSize_; ++i)
                    (Last() - i)->channels.sound.push_back(c - '0');
    }

    void TakeNote(std::string_view content)
    {
        std::string_view note = content;
        while (!note.empty() && (note.front() == '*' || IsBlank(note.front())))
            note.remove_prefix(1);
        if (StartsWithWord(note, "FROM CLIP NAME:"))
            from_ = AfterWord(note, "FROM CLIP NAME:");
        else if (StartsWithWord(note, "TO CLIP NAME:"))
            to_ = AfterWord(note, "TO CLIP NAME:");
        else if (StartsWithWord(note, "SOURCE FILE:"))
            files_.emplace_back(AfterWord(note, "SOURCE FILE:"));
        else if (!StartsWithWord(note, "EFFECT NAME:") && !note.empty())
            Tell(LoadEntry::Severity::Loss, "the note \"" + ValidUtf8(note) + "\" is left out");
    }

    void TellPassedOver() { Tell(LoadEntry::Severity::Loss, "the line belongs to no event"); }

    /// Notes of one clip alone are of the incoming one if there are two.
    void EndEvent()
    {
        if (EdlEdit *const last = Last()) {
            EdlEdit *const first = eventSize_ == 2 ? last - 1 : last;
            last->clip = to_.empty() && first == last ? from_ : to_;
            if (first != last)
                first->clip = from_;
            if (!files_.empty())
                last->file = files_.back();
            if (first != last && files_.size() > 1)
                first->file = files_.front();
        }
        from_.clear();
        to_.clear();
        files_.clear();
        eventSize_ = 0;
    }

    void Tell(LoadEntry::Severity severity, const NarrowString &what) const
    {
        project::Tell(options_, severity, what, line_);
    }

    const ExchangeOptions &options_;
    EdlList list_;
    int line_ = 0;
    bool hasHead_ = false;
    /// Of the event that goes on: how many edits it has, and what its notes say.
    std::size_t eventSize_ = 0;
    NarrowString from_;
    NarrowString to_;
    std::vector<NarrowString> files_;
};

} // namespace

EdlList ParseEdl(std::string_view text, const ExchangeOptions &options)
{
    if (options.frameRate != 0 && !(options.frameRate >= 1 && options.frameRate <= kMostEdlRate))
        throw ExchangeException("A list has between 1 and 100 frames a second");
    if (text.find('\0') != std::string_view::npos)
        throw ExchangeException("There are zeros in the text: this is no edit decision list");
    return EdlParser(options).Parse(text);
}

bool LooksLikeEdl(std::string_view text)
{
    if (text.find('\0') != std::string_view::npos)
        return false;
    bool isEdl = false;
    int lines = 0;
    ForEachEdlLine(text, [&](int, std::string_view content) {
        isEdl = StartsWithWord(content, "TITLE:") || StartsWithWord(content, "FCM:") ||
                (!content.empty() && IsDigit(content.front()) && EdlLine(content).IsEdit());
        const bool isNote = content.empty() || content.front() == '*' || content.front() == '>';
        return !isEdl && (isNote || ++lines < 5);
    });
    return isEdl;
}

NarrowString EdlReelName(std::string_view name)
{
    constexpr std::size_t kLength = 8;
    NarrowString reel;
    for (char c : name) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
        const bool isPlain = (c >= 'A' && c <= 'Z') || IsDigit(c);
        if (isPlain || (!reel.empty() && reel.back() != '_'))
            reel += isPlain ? c : '_';
        if (reel.size() == kLength)
            break;
    }
    while (!reel.empty() && reel.back() == '_')
        reel.pop_back();
    return reel;
}

} // namespace marlet::project
