#pragma once
// The picking log pane: one row per verdict, newest at the bottom, the first
// "异常" of a row in red, an only-errors filter that asks the form to reload
// the pane, scrolling by one row and saving the shown entries as a text file.
// The pane keeps only the entries it shows; the form keeps the whole log.
//
// Rows are drawn by a small fixed pool of labels (object names "rtfLog0",
// "rtfLog1", ...) for the rows in view, never one widget per entry.
#include "host/goods_record.h"
#include "host/record_list.h"
#include "log/log_list_model.h"
#include <QDateTime>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

class QLabel;
namespace Ui { class LogList; }

class LogList : public QWidget {
    Q_OBJECT
public:
    // Asks for the file to save to: (parent, Qt filter, proposed name) -> the
    // chosen path, "" when cancelled.
    using SaveFileDialog = std::function<QString(QWidget*, const QString&, const QString&)>;
    using Clock = std::function<QDateTime()>;

    // The dialog filter as the system writes it, and as the Qt dialog takes it.
    static const QString SaveFilter;                 // "文本文件|*.txt|"
    static QString qtFilter(const QString& filter);  // "文本文件 (*.txt)"

    explicit LogList(QWidget* parent = nullptr);
    ~LogList() override;

    // --- The pane's methods ---
    // Clears the pane, then adds the entries newest first; a list with fewer
    // than two entries leaves it empty. With "只显示异常" checked only entries
    // whose "bsuccess" is False are added. Errors go to the error reporter.
    void LoadLogList(const RecordList& entries);
    // Removes the rows; row count and top index are kept (see LogListModel::clear).
    void ClearLogList();
    // Appends one entry (none or empty "log": ignored).
    void AddLog(const GoodsRecord& entry);
    // Lays the rows out again at the current top index when index >= 0.
    void SelectedLogByIndex(qint16 index);

    // --- The pane's controls, as a click on them runs them ---
    void ImgUpClick();
    void ImgDownClick();
    // Saves the shown entries: nothing when the pane is empty or the dialog
    // is cancelled; a file that cannot be written is reported.
    void ImgSaveClick();

    // --- Injection for tests and the replay driver ---
    void setSaveFileDialog(SaveFileDialog dialog);
    void setClock(Clock clock);

    // --- Read access ---
    int shownCount() const { return m_model.shownCount(); }
    QString rowText(int i) const { return m_model.rowText(i); }
    int rowTop(int i) const { return m_model.rowTop(i); }    // twips, see LogListModel
    bool rowVisible(int i) const { return m_model.rowVisible(i); }
    int topIndex() const { return m_model.topIndex(); }
    int rowCountField() const { return m_model.rowCountField(); }
    int rowRedPos(int i) const { return m_model.rowRedPos(i); }
    // Texts of the rows drawn in the pane now, top to bottom.
    QStringList visibleRowTexts() const;
    // Texts of every visible row in list order (what the replay output logs).
    QStringList allRowTexts() const { return m_model.allRowTexts(); }
    bool onlyErrors() const;
    const LogListModel& model() const { return m_model; }
    // The rich text drawn for row i (escaped, the first "异常" in red).
    QString rowHtml(int i) const;

signals:
    // Each click of ChkOnlyError; the form answers with LoadLogList.
    void FilterChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void render();
    void ensurePool();
    int rowAreaTwips() const;

    std::unique_ptr<Ui::LogList> ui;
    LogListModel m_model;
    std::vector<QLabel*> m_pool;
    SaveFileDialog m_saveDialog;
    Clock m_clock;
};
