#include <marlet/exchange/keyframes/CsvTable.h>

#include <marlet/exchange/Telling.h>

#include <algorithm>

namespace marlet::project
{

CsvTable::CsvTable(std::string_view text) : rest_(text)
{
    if (rest_.starts_with("\xEF\xBB\xBF"))
        rest_.remove_prefix(3);
    const std::string_view first = rest_.substr(0, rest_.find_first_of("\r\n"));
    for (const char c : {';', '\t'})
        if (std::ranges::count(first, c) > std::ranges::count(first, comma_))
            comma_ = c;
}

bool CsvTable::Next(std::vector<NarrowString> &cells)
{
    while (!rest_.empty()) {
        cells.clear();
        line_ = next_;
        const bool isNote = rest_.front() == '#';
        for (bool more = true; more;) {
            cells.push_back(TakeCell());
            more = !rest_.empty() && rest_.front() == comma_;
            if (more)
                rest_.remove_prefix(1);
        }
        TakeLineEnd();
        if (!isNote && std::ranges::any_of(cells, [](const NarrowString &cell) { return !cell.empty(); }))
            return true;
    }
    return false;
}

void CsvTable::TakeLineEnd()
{
    if (rest_.empty())
        return;
    rest_.remove_prefix(rest_.starts_with("\r\n") ? 2 : 1);
    ++next_;
}

NarrowString CsvTable::TakeCell()
{
    const auto isBlank = [this](char c) { return (c == ' ' || c == '\t') && c != comma_; };
    while (!rest_.empty() && isBlank(rest_.front()))
        rest_.remove_prefix(1);
    NarrowString cell = rest_.starts_with('"') ? TakeQuoted() : NarrowString();
    while (!rest_.empty() && rest_.front() != comma_ && rest_.front() != '\r' && rest_.front() != '\n') {
        cell += rest_.front();
        rest_.remove_prefix(1);
    }
    while (!cell.empty() && isBlank(cell.back()))
        cell.pop_back();
    return cell;
}

NarrowString CsvTable::TakeQuoted()
{
    NarrowString cell;
    rest_.remove_prefix(1);
    while (!rest_.empty()) {
        const char c = rest_.front();
        rest_.remove_prefix(1);
        if (c == '"' && !rest_.starts_with('"'))
            return cell;
        if (c == '"')
            rest_.remove_prefix(1);
        if (c == '\n' || (c == '\r' && !rest_.starts_with('\n')))
            ++next_;
        cell += c;
    }
    RefuseLine(line_, "a quote does not end");
}

} // namespace marlet::project
