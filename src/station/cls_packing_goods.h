#pragma once
// The component's one public class: the host creates it and calls ShowForm.
#include <QObject>

class clsPackingGoods : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    // Shows a new station modally and returns 0 when the worker closes it.
    int ShowForm();
};
