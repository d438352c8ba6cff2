#pragma once

#include <tests/checks/CheckedProject.h>

#include <marlet/history/EditHistory.h>

#include <gtest/gtest.h>

#include <functional>

namespace marlet::test
{

class EditHistoryTest : public testing::Test
{
protected:
    void Rename(const WideString &name, const WideString &label = u"Rename", const WideString &gesture = {})
    {
        Edit edit(document.project, label, gesture);
        edit.Touch(document.point);
        document.point->SetName(name);
        edit.Commit();
    }

    void Turn(float degrees, const WideString &gesture)
    {
        Edit edit(document.project, u"Turn", gesture);
        edit.Touch(document.point, "rotationZ");
        document.point->Animation().StaticValue("rotationZ") = degrees;
        edit.Commit();
    }

    float Turned() const { return boost::get<float>(document.point->Animation().StaticValue("rotationZ")); }

    CheckedProject document;
    EditHistory history{document.project};
};

/// Notes what it hears.
struct Listener : ChangeObserver {
    void Changed(const ChangeNotice &notice) override
    {
        heard.push_back(notice.Label());
        changes = notice.Changes();
        stale = notice.Stale();
        if (whenCalled)
            whenCalled();
    }

    std::vector<WideString> heard;
    std::vector<ObjectChange> changes;
    std::vector<StaleFrames> stale;
    std::function<void()> whenCalled;
};

} // namespace marlet::test
