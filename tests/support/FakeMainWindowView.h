#pragma once

#include "core/app/IMainWindowView.h"

#include <QStringList>

namespace cwtest {

// Stands in for the main window: answers with set values and keeps a
// journal of what the controller asked for, in order.
class FakeMainWindowView : public IMainWindowView
{
public:
    QRectF screen{0, 0, 1920, 1080};
    QRectF frame;
    QSizeF minimum{800, 600};
    bool visible = true;
    bool key = true;
    bool locked = false;
    bool sheetVisible = false;
    QStringList journal;

    QRectF screenFrame() const override { return screen; }
    QRectF windowFrame() const override { return frame; }
    void setWindowFrame(const QRectF& f) override { frame = f; }
    QSizeF minimumWindowSize() const override { return minimum; }
    bool isWindowVisible() const override { return visible; }
    bool isKeyWindow() const override { return key; }
    void setSplitToDefault() override { journal << "split default"; }
    void setDividersLocked(bool l) override { locked = l; }
    bool isHouseKeepingSheetVisible() const override { return sheetVisible; }
    void showHouseKeepingSheet() override
    {
        sheetVisible = true;
        journal << "show sheet";
    }
    void closeHouseKeepingSheet() override
    {
        sheetVisible = false;
        journal << "close sheet";
    }
};

} // namespace cwtest
