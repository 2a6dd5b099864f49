#pragma once
// The station's controls as a worker meets them, found by their names (the
// system's own names, as the replay driver finds them): tests read what the
// station shows, not the form's members.
#include "grid/goods_text_view.h"
#include "log/log_list.h"
#include "station/frm_pickig_goods.h"
#include "station/scan_line_edit.h"
#include "tiles/goods_list_view.h"
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <memory>

// One control, looked up when it is used.
template <class T>
class StationControl {
public:
    StationControl(const QWidget* form, const char* name) : m_form(form), m_name(name) {}
    T* get() const
    {
        T* control = m_form ? m_form->findChild<T*>(QLatin1String(m_name)) : nullptr;
        if (!control)
            qFatal("the station has no control %s of that kind", m_name);
        return control;
    }
    T* operator->() const { return get(); }
    operator T*() const { return get(); }

private:
    const QWidget* m_form;
    const char* m_name;
};

struct StationControls {
    explicit StationControls(const QWidget* form) : f(form) {}
    const QWidget* f;
    StationControl<ScanLineEdit> TxtEmployee{f, "TxtEmployee"};
    StationControl<ScanLineEdit> TxtID{f, "TxtID"};
    StationControl<ScanLineEdit> TxtItemID{f, "TxtItemID"};
    StationControl<ScanLineEdit> TxtNum{f, "TxtNum"};
    StationControl<QLineEdit> txtWebshop{f, "txtWebshop"};
    StationControl<QCheckBox> chkBarCode{f, "chkBarCode"};
    StationControl<QCheckBox> chkHaveSerial{f, "chkHaveSerial"};
    StationControl<QCheckBox> chkShowText{f, "chkShowText"};
    StationControl<QPushButton> CmdBtnRePick{f, "CmdBtnRePick"};
    StationControl<::GoodsListView> GoodsListView{f, "GoodsListView"};
    StationControl<::GoodsTextView> GoodsTextView{f, "GoodsTextView"};
    StationControl<LogList> LogList1{f, "LogList1"};
    StationControl<QLabel> lblOrderNum{f, "lblOrderNum"};
    StationControl<QLabel> lblPickedNum{f, "lblPickedNum"};
    StationControl<QLabel> lblProgress{f, "lblProgress"};
    StationControl<QLabel> LblProgressbar{f, "LblProgressbar"};
    StationControl<QLabel> lblPickInfo{f, "lblPickInfo"};
    StationControl<QLabel> lblMessage{f, "lblMessage"};
    StationControl<QLabel> ImgSuccess{f, "ImgSuccess"};
};

inline StationControls controls(const QWidget* form) { return StationControls(form); }
inline StationControls controls(const QWidget& form) { return StationControls(&form); }
inline StationControls controls(const std::unique_ptr<frmPickigGoods>& form) { return StationControls(form.get()); }
