// clipwright-cli search: the clip search of the search dialog on a folder and
// every folder below it, printing each take found as it is found.
#include "CliCommand.h"

#include "core/operations/search/BLClipSearchCtrl.h"
#include "core/operations/search/IClipSearchView.h"
#include "core/services/BLCommon.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// The dialog without a window: the conditions come from the arguments, the
// search starts at once, rows go to stdout (or into the JSON result) and the
// status message to stderr.
class CliSearchView : public IClipSearchView
{
public:
    QString title, comment;
    int range = 0;
    bool json = false;
    QJsonArray results;
    bool ended = false;

    QString titleText() const override { return title; }
    QString commentText() const override { return comment; }
    int interval() const override { return range; }
    QDate dateFrom() const override { return {}; }
    QDate dateTo() const override { return {}; }
    void setTitleText(const QString&) override {}
    void setCommentText(const QString&) override {}
    void setInterval(int) override {}
    void setDates(const QDate&, const QDate&) override {}
    void setDatePickersEnabled(bool) override {}
    void setPlace(const QString&) override {}
    void setMessage(const QString& message) override
    {
        if (!message.isEmpty())
            cliErr() << "clipwright-cli search: " << message << Qt::endl;
    }
    void setSearching(bool searching) override
    {
        if (!searching)
            m_loop.quit();
    }
    void setCancelEnabled(bool) override {}
    void clearRows() override {}
    void addRow(int, const QVariantMap& row) override
    {
        const QJsonObject result{
            {"folder", row["path"].toString()},       {"takeId", row["takeId"].toString()},
            {"umid", row["umid"].toString()},         {"title", row["title"].toString()},
            {"duration", row["duration"].toString()}, {"date", row["date"].toString()},
            {"size", row["sizeBySort"].toLongLong()}};
        if (json) {
            results.append(result);
            return;
        }
        cliOut() << result["folder"].toString() << "\t" << result["takeId"].toString() << "\t"
                 << result["umid"].toString() << Qt::endl;
    }
    int selectedRow() const override { return -1; }
    int runModal(BLClipSearchCtrl* ctrl) override
    {
        ctrl->onSearch();
        if (ctrl->isSearching() && !ended)
            m_loop.exec();
        return BLClipSearchCtrl::kStopCodeClose;
    }
    void endModal(int) override
    {
        ended = true;
        m_loop.quit();
    }

private:
    QEventLoop m_loop;
};

} // namespace

int runSearch(const QStringList& args)
{
    CliSearchView view;
    QStringList folders;
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        const bool hasValue = i + 1 < args.size();
        if (arg == "--json") {
            view.json = true;
        } else if (arg == "--title" && hasValue) {
            view.title = args[++i];
        } else if (arg == "--comment" && hasValue) {
            view.comment = args[++i];
        } else if (arg == "--interval" && hasValue) {
            bool ok = false;
            view.range = args[++i].toInt(&ok);
            if (!ok || view.range < 0 || view.range > 3)
                return cliUsage("search");
        } else if (arg.startsWith('-')) {
            return cliUsage("search");
        } else {
            folders << arg;
        }
    }
    if (folders.size() != 1)
        return cliUsage("search");
    const QString workFolder = cliWorkFolder(folders.first());
    if (!BLCommon::isFolder(workFolder)) {
        cliErr() << "clipwright-cli search: " << workFolder << ": no such folder" << Qt::endl;
        return kExitFailed;
    }

    StderrPresenter presenter("search");
    BLClipSearchCtrl ctrl(&view, {});
    ctrl.setPath(workFolder);
    TerminationSignals termination;
    bool cancelled = false;
    QObject::connect(&termination, &TerminationSignals::received, [&] {
        cancelled = true;
        ctrl.onCancel();
    });
    QString umid, path;
    ctrl.showModal(&umid, &path);
    if (view.json)
        cliOut() << QJsonDocument(QJsonObject{{"workFolder", workFolder}, {"results", view.results}})
                        .toJson(QJsonDocument::Indented);
    return cancelled || ctrl.isNotFoundPath() ? kExitFailed : kExitOk;
}
