#pragma once

#include <marlet/history/EditHistory.h>

#include <functional>
#include <memory>

namespace editor
{

using namespace marlet::project;

/// Hands the notices of a history to a panel as long as the panel has it. A history holds its observers until
/// they are removed, while a panel is its window's. The history must outlive it.
class Listener
{
public:
    using Function = std::function<void(const ChangeNotice &)>;

    Listener(EditHistory &history, Function function);
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;
    ~Listener();

private:
    EditHistory &history_;
    std::shared_ptr<ChangeObserver> observer_;
};

} // namespace editor
