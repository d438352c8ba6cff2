#include <marlet/exchange/keyframes/CsvFormat.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/keyframes/CsvTable.h>
#include <marlet/exchange/keyframes/KeyFrameRows.h>
#include <marlet/foundation/Arguments.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

/// The columns beside those of the components.
struct Column {
    const char *name;
    NarrowString KeyFrameRow::*cell;
};

constexpr Column kBefore[] = {{"id", &KeyFrameRow::id},
                              {"type", &KeyFrameRow::type},
                              {"time", &KeyFrameRow::time},
                              {"frame", &KeyFrameRow::frame}};
constexpr Column kBehind[] = {{"interpolation", &KeyFrameRow::interpolation},
                              {"in time", &KeyFrameRow::inTime},
                              {"in value", &KeyFrameRow::inValue},
                              {"out time", &KeyFrameRow::outTime},
                              {"out value", &KeyFrameRow::outValue}};
constexpr std::string_view kComponents[] = {"value", "x", "y", "z", "r", "g", "b", "a"};

bool IsIn(const std::vector<NarrowString> &names, std::string_view name)
{
    return std::ranges::find(names, name) != names.end();
}

/// A column of a table that is read: a member of the row, or a component; neither for one that is not known.
struct ReadColumn {
    NarrowString KeyFrameRow::*cell = nullptr;
    NarrowString component;
};

ReadColumn ColumnOf(const NarrowString &name)
{
    for (const Column &column : kBefore)
        if (name == column.name)
            return {column.cell, {}};
    for (const Column &column : kBehind)
        if (name == column.name)
            return {column.cell, {}};
    return {nullptr, std::ranges::find(kComponents, name) != std::end(kComponents) ? name : ""};
}

std::vector<KeyFrameRow> ReadRows(std::string_view bytes, const ExchangeOptions &options)
{
    CsvTable table(bytes);
    std::vector<NarrowString> cells;
    if (!table.Next(cells))
        throw ExchangeException("There are no lines: the first has the names of columns");
    std::vector<ReadColumn> columns;
    for (NarrowString &name : cells) {
        name = SmallLetters(name);
        columns.push_back(ColumnOf(name));
        if (!columns.back().cell && columns.back().component.empty() && !name.empty())
            Tell(options, LoadEntry::Severity::Loss, "nothing is known of the column \"" + name + "\"",
                 table.Line());
    }
    if (!IsIn(cells, "time") && !IsIn(cells, "frame"))
        RefuseLine(table.Line(), "there is neither a column \"time\" nor \"frame\"");
    std::vector<KeyFrameRow> rows;
    while (table.Next(cells)) {
        KeyFrameRow row;
        row.line = table.Line();
        while (cells.size() > columns.size() && cells.back().empty())
            cells.pop_back();
        if (cells.size() > columns.size())
            RefuseLine(row.line, "there are more cells than columns");
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (columns[i].cell)
                row.*columns[i].cell = cells[i];
            else if (!columns[i].component.empty())
                row.components[columns[i].component] = cells[i];
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace

NarrowString CsvFormat::Write(const std::shared_ptr<Project> &project, const ExchangeOptions &options) const
{
    Require(project, "project");
    const std::vector<KeyFrameRow> rows = RowsOf(*project, options);
    std::vector<std::string_view> components;
    for (const std::string_view name : kComponents)
        if (std::ranges::any_of(rows, [&](const KeyFrameRow &row) { return row.components.contains(name); }))
            components.push_back(name);
    NarrowString text;
    const auto write = [&text](std::string_view cell, bool isFirst = false) {
        text += isFirst ? "" : ",";
        text += cell;
    };
    for (const Column &column : kBefore)
        write(column.name, &column == kBefore);
    for (const std::string_view name : components)
        write(name);
    for (const Column &column : kBehind)
        write(column.name);
    text += '\n';
    for (const KeyFrameRow &row : rows) {
        for (const Column &column : kBefore)
            write(row.*column.cell, &column == kBefore);
        for (const std::string_view name : components)
            write(row.components.contains(name) ? row.components.find(name)->second : NarrowString());
        for (const Column &column : kBehind)
            write(row.*column.cell);
        text += '\n';
    }
    return text;
}

bool CsvFormat::Recognises(std::string_view bytes) const
{
    try {
        CsvTable table(bytes.substr(0, bytes.find_first_of("\r\n")));
        std::vector<NarrowString> names;
        if (!table.Next(names))
            return false;
        std::ranges::transform(names, names.begin(), SmallLetters);
        return names.size() > 1 && (IsIn(names, "time") || IsIn(names, "frame"));
    } catch (const ExchangeException &) {
        return false;
    }
}

void CsvFormat::ReadInto(const std::shared_ptr<Project> &project, std::string_view bytes,
                         const ExchangeOptions &options) const
{
    Require(project, "project");
    TakeRows(project, ReadRows(bytes, options), options);
}

} // namespace marlet::project
