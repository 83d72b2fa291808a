#include "ui/common/LocalizedTitle.h"

#include "core/services/BLLocalizedStrings.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSet>
#include <QTabWidget>
#include <QWidget>

namespace {

// The localised text for a title, or an empty text when it stays as it is.
QString replacementFor(const QString& title)
{
    if (title.isEmpty() || title == QLatin1String("...") || !BLLocalizedStrings::contains(title))
        return {};
    const QString text = BLLocalizedStrings::text(title);
    return text == title ? QString() : text;
}

template <typename Get, typename Set> void localize(Get get, Set set)
{
    const QString text = replacementFor(get());
    if (!text.isEmpty())
        set(text);
}

class Localizer
{
public:
    void object(QObject* object)
    {
        if (!object || m_done.contains(object))
            return;
        m_done.insert(object);
        if (auto* action = qobject_cast<QAction*>(object))
            this->action(action);
        else if (auto* widget = qobject_cast<QWidget*>(object))
            this->widget(widget);
    }

private:
    void action(QAction* action)
    {
        // A menu item's text may end in a tab and the keys shown beside it.
        const QString keys = action->text().section(QLatin1Char('\t'), 1);
        localize(
            [&] { return action->text().section(QLatin1Char('\t'), 0, 0); },
            [&](const QString& t) { action->setText(keys.isEmpty() ? t : t + QLatin1Char('\t') + keys); });
        if (QMenu* menu = action->menu())
            object(menu);
    }

    void widget(QWidget* widget)
    {
        if (widget->isWindow())
            localize([&] { return widget->windowTitle(); },
                     [&](const QString& t) { widget->setWindowTitle(t); });

        if (auto* button = qobject_cast<QAbstractButton*>(widget))
            localize([&] { return button->text(); }, [&](const QString& t) { button->setText(t); });
        else if (auto* label = qobject_cast<QLabel*>(widget))
            localize([&] { return label->text(); }, [&](const QString& t) { label->setText(t); });
        else if (auto* group = qobject_cast<QGroupBox*>(widget))
            localize([&] { return group->title(); }, [&](const QString& t) { group->setTitle(t); });
        else if (auto* edit = qobject_cast<QLineEdit*>(widget))
            localize([&] { return edit->placeholderText(); },
                     [&](const QString& t) { edit->setPlaceholderText(t); });
        else if (auto* combo = qobject_cast<QComboBox*>(widget))
            for (int i = 0; i < combo->count(); ++i)
                localize([&] { return combo->itemText(i); },
                         [&](const QString& t) { combo->setItemText(i, t); });
        else if (auto* tabs = qobject_cast<QTabWidget*>(widget))
            for (int i = 0; i < tabs->count(); ++i)
                localize([&] { return tabs->tabText(i); }, [&](const QString& t) { tabs->setTabText(i, t); });
        else if (auto* view = qobject_cast<QAbstractItemView*>(widget);
                 view && !qobject_cast<QHeaderView*>(view))
            headers(view);

        if (auto* menu = qobject_cast<QMenu*>(widget))
            localize([&] { return menu->title(); }, [&](const QString& t) { menu->setTitle(t); });

        // Menus, menu bars and any widget carry actions; a menu's title lives
        // in its menu action, which its parent menu or menu bar lists.
        for (QAction* action : widget->actions())
            object(action);
        for (QObject* child : widget->children())
            object(child);
    }

    void headers(QAbstractItemView* view)
    {
        QAbstractItemModel* model = view->model();
        if (!model)
            return;
        for (int section = 0; section < model->columnCount(); ++section)
            localize([&] { return model->headerData(section, Qt::Horizontal).toString(); },
                     [&](const QString& t) { model->setHeaderData(section, Qt::Horizontal, t); });
    }

    QSet<QObject*> m_done;
};

} // namespace

void localizedTitleByObject(QObject* object)
{
    Localizer().object(object);
}
