#include <marlet/exchange/keyframes/KeyFrameRows.h>

#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Selection.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/keyframes/KeyFrameCells.h>
#include <marlet/history/Edit.h>
#include <marlet/operations/OperationException.h>
#include <marlet/project/CompositionAsset.h>

#include <unordered_set>

namespace marlet::project
{

double FrameRateOf(const Project &project, const ExchangeOptions &options)
{
    const double own = SelectedComposition(project, options)->Settings().FrameRate();
    const double rate = options.frameRate > 0 ? options.frameRate : own;
    if (!(rate > 0))
        throw OperationException("The composition has no frame rate");
    return rate;
}

std::vector<KeyFrameRow> RowsOf(const Project &project, const ExchangeOptions &options)
{
    const double frameRate = FrameRateOf(project, options);
    const AnimatedProperty property = SelectedProperty(project, options);
    std::vector<KeyFrameRow> rows;
    property.Keys().ForEach([&](const KeyFrame &key) { rows.push_back(RowOf(key, frameRate)); });
    return rows;
}

void TakeRows(const std::shared_ptr<Project> &project, const std::vector<KeyFrameRow> &rows,
              const ExchangeOptions &options)
{
    const double frameRate = FrameRateOf(*project, options);
    const AnimatedProperty property = SelectedProperty(*project, options);
    const char *const name = property.Name().c_str();
    const PropertyManager &properties = *property.Properties();
    if (!properties.CanAnimate(name))
        throw OperationException("Property \"" + property.Name() + "\" cannot be animated");
    std::vector<KeyFrameOfRow> keys;
    std::unordered_set<kytl::KyID> ids;
    for (const KeyFrameRow &row : rows) {
        keys.push_back(ReadRow(row, properties.StaticValue(name), frameRate));
        if (!keys.back().id.IsNull() && !ids.insert(keys.back().id).second)
            RefuseLine(row.line, "another key frame has the ID " + row.id);
    }
    Edit edit(project, u"Import key frames");
    property.Touch(edit);
    KeyFrameList &list = property.KeysToEdit();
    list.Clear();
    for (const KeyFrameOfRow &read : keys) {
        list.Add(read.key);
        if (!read.id.IsNull())
            list.ChangeKeyFrameID(read.key.ID(), read.id);
    }
    edit.Commit();
}

} // namespace marlet::project
