#pragma once
// The station under stress: the station fixture (a demo database of its own,
// recording message boxes and sounds), every host object wrapped by the fault
// injector, and the event-loop guard around every key, click and paste.
#include "reliability/event_loop_guard.h"
#include "reliability/host_fault_injector.h"
#include "station/station_fixture.h"
#include "support/qt_print.h"
#include <QClipboard>
#include <QMimeData>

class ReliabilityStationTest : public StationFormTest {
protected:
    void SetUp() override
    {
        StationFormTest::SetUp();
        if (HasFatalFailure())
            return;
        m_faults.install();
    }

    void TearDown() override
    {
        // Nothing may have escaped into the event loop, whatever the test did.
        EXPECT_TRUE(m_guard.escapes().isEmpty()) << m_guard.escapes().join(QLatin1Char('\n')).toStdString();
        StationFormTest::TearDown();
    }

    void publishProps(const QString& props)
    {
        CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)
            ->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), props);
    }

    frmPickigGoods& open()
    {
        frmPickigGoods* form = nullptr;
        m_guard.run([&] { form = openStation(); }, QStringLiteral("open"));
        return *form;
    }

    // A scanner: focus, select, type key by key (any character, one key event
    // per code point), Enter.
    void scan(QLineEdit* field, const QString& text)
    {
        type(field, text);
        press(field, Qt::Key_Return);
    }

    // Typing over the selected text; nothing to type empties the field, as a
    // worker does with Backspace.
    void type(QLineEdit* field, const QString& text)
    {
        m_guard.run([&] {
            field->setFocus(Qt::OtherFocusReason);
            QApplication::processEvents();
            field->selectAll();
            if (text.isEmpty() && field->hasSelectedText())
                QTest::keyClick(field, Qt::Key_Backspace);
            for (qsizetype i = 0; i < text.size(); ++i) {
                const qsizetype length = text.at(i).isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
                const QString one = text.mid(i, length);
                i += length - 1;
                const QChar c = one.at(0);
                const Qt::Key key = c.unicode() < 0x80 && c.isLetterOrNumber() ? Qt::Key(c.toUpper().unicode())
                    : c == QLatin1Char(' ')                                    ? Qt::Key_Space
                                                                               : Qt::Key_unknown;
                QTest::sendKeyEvent(QTest::Click, field, key, one, Qt::NoModifier);
            }
        }, QStringLiteral("typing into %1").arg(field->objectName()));
    }

    void press(QWidget* widget, Qt::Key key)
    {
        m_guard.run([&] {
            QTest::keyClick(widget, key);
            QApplication::processEvents();
        }, QStringLiteral("key %1 in %2").arg(int(key)).arg(widget->objectName()));
    }

    // The clipboard and Ctrl+V, into the whole field.
    void paste(QLineEdit* field, const QString& text)
    {
        m_guard.run([&] {
            QApplication::clipboard()->setText(text);
            field->setFocus(Qt::OtherFocusReason);
            QApplication::processEvents();
            field->selectAll();
            QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
        }, QStringLiteral("paste into %1").arg(field->objectName()));
    }

    // Text dragged onto the field and dropped, as from another window.
    void drop(QLineEdit* field, const QString& text)
    {
        m_guard.run([&] {
            field->setFocus(Qt::OtherFocusReason);
            field->selectAll();
            field->del();
            QMimeData mime;
            mime.setText(text);
            const QPoint at = field->rect().center();
            QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(field, &enter);
            QDragMoveEvent move(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(field, &move);
            QDropEvent dropEvent(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(field, &dropEvent);
            QApplication::processEvents();
        }, QStringLiteral("drop on %1").arg(field->objectName()));
    }

    void click(QAbstractButton* button)
    {
        m_guard.run([&] {
            button->click();
            QApplication::processEvents();
        }, QStringLiteral("click %1").arg(button->objectName()));
    }

    // What a worker sees of the station and what it counts, as text: all
    // that a refused input must leave as it was.
    QString snapshot() const
    {
        const PickingState& p = m_form->pickingState();
        const auto c = controls(*m_form);
        const int logged = p.SessionOrderLog().isNone() ? -1 : p.SessionOrderLog().Count();
        QStringList s{p.CurrentOrderCode(), c.lblOrderNum->text(), c.lblPickedNum->text(), c.lblPickInfo->text(),
                      c.txtWebshop->text(),
                      QStringLiteral("counts %1/%2/%3/%4").arg(p.pickedNum()).arg(p.excessNum()).arg(p.errorNum())
                          .arg(p.missingNum()),
                      QStringLiteral("passed %1, %2 logged").arg(c.ImgSuccess->isVisible()).arg(logged)};
        const RecordList lines = GetGoodsLineSet();
        for (int i = 0; !lines.isNone() && i < lines.Count(); ++i) {
            QStringList values;
            for (const char* key : {"GoodsID", "FEntryID", "GoodsOrderCnt", "GoodsPickCnt", "GoodsCheckedCnt", "FSeriNum"})
                values << lines.Item(i).GetValue(QLatin1String(key)).toString();
            s << values.join(QLatin1Char('/'));
        }
        return (s + c.LogList1->allRowTexts()).join(QLatin1Char('\n'));
    }

    // Boxes that tell of an injected fault: a failed call or an object not made.
    QStringList faultBoxes() const
    {
        QStringList found;
        for (const ShownBox& box : m_rec->boxes)
            if (box.text.contains(HostFaultInjector::FaultMarker) || box.text.contains(QLatin1String("can't create object")))
                found << box.title + QStringLiteral(": ") + box.text;
        return found;
    }

    EventLoopGuard m_guard;
    HostFaultInjector m_faults;
};
