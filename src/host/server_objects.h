#pragma once
// One small interface per host ProgID: the operations this component calls.
// Built-in implementations live in src/host; tests and sites register others
// with RegisterServerObject. Every failing call raises HostError.
#include "host/goods_record.h"
#include "host/recordset.h"
#include <QByteArray>
#include <QString>
#include <QVariant>
#include <optional>

class QWidget;

namespace ProgIds {
inline const QString ShareProps = QStringLiteral("PropsMgr.ShareProps");
inline const QString GetData = QStringLiteral("RnMWDPickingAndDelivery.clsGetData");
inline const QString SaveData = QStringLiteral("RnMWDPickingAndDelivery.clsSaveData");
inline const QString WebOrderInfo = QStringLiteral("RnMWebOrder.RnMWebOrderInfo");
inline const QString UserProfile = QStringLiteral("TolBase.UserProfile");
inline const QString AccessoryView = QStringLiteral("TolAccessory.cAccessoryView");
inline const QString Zip = QStringLiteral("VqZIP.ZIP");
inline const QString LangInfo = QStringLiteral("RnLangInfo.LangInfo");
inline const QString ResLoader = QStringLiteral("RnResLoader.Loader");
inline const QString FrmResLoader = QStringLiteral("FrmRes.FrmResLoader");
// The host's base-list picker, sound service and message display.
inline const QString EmployeePicker = QStringLiteral("RnBaseList.EmployeePicker");
inline const QString Sound = QStringLiteral("RnHost.Sound");
inline const QString MessageBox = QStringLiteral("RnHost.MessageBox");
}

class ServerObject {
public:
    virtual ~ServerObject() = default;
};

// PropsMgr.ShareProps: the process-wide property store.
class IShareProps : public ServerObject {
public:
    virtual QVariant GetProperty(qint64 processId, const QString& name) = 0;
    virtual void SetProperty(qint64 processId, const QString& name, const QVariant& value) = 0;
};

// RnMWDPickingAndDelivery.clsGetData
class IGetData : public ServerObject {
public:
    virtual RecordsetPtr ExecuteSQL(const QString& props, const QString& sql) = 0;
    // record holds "sDSN" (the property string) and "FID"; answers the newest
    // return bill of the order as a record with FStatus, or nothing.
    virtual std::optional<GoodsRecord> CheckReturnBills(const GoodsRecord& record) = 0;
};

// RnMWDPickingAndDelivery.clsSaveData
class ISaveData : public ServerObject {
public:
    // record: FPickingGoodMan, FLogisticsOrder, sProps, FPickingGoodsstatus
    virtual void SavePickingGoods(const GoodsRecord& record) = 0;
    virtual void UpdateDeliveryData(const QString& props, qint64 fid) = 0;
};

// RnMWebOrder.RnMWebOrderInfo
class IWebOrderInfo : public ServerObject {
public:
    // The first row of the statement as a record, or nothing when there is no row.
    virtual std::optional<GoodsRecord> GetSingleSQLData(const QString& props, const QString& sql) = 0;
};

// TolBase.UserProfile
class IUserProfile : public ServerObject {
public:
    virtual GoodsRecord LoadUserProfile(const QString& props, const QString& category, const QString& key) = 0;
    virtual void SaveUserProfile(const QString& props, const QString& category, const QString& key, const GoodsRecord& record) = 0;
};

// TolAccessory.cAccessoryView
class IAccessoryView : public ServerObject {
public:
    virtual QByteArray GetID(const QString& props, int attachmentId) = 0;
};

// VqZIP.ZIP
class IZip : public ServerObject {
public:
    virtual void DeCompress(const QString& sourcePath, const QString& targetPath) = 0;
};

// RnLangInfo.LangInfo
class ILangInfo : public ServerObject {
public:
    virtual QString CurrentLanguage() = 0;   // "chs", "en" or "cht"
};

// RnResLoader.Loader
class IResLoader : public ServerObject {
public:
    virtual void setResDirectory(const QString& dir) = 0;
    virtual void setResFileBaseName(const QString& name) = 0;
    virtual void setLanguageID(const QString& code) = 0;
    virtual QString LoadString(const QString& key) = 0;
};

// FrmRes.FrmResLoader
class IFrmResLoader : public ServerObject {
public:
    virtual QString SetFrmFont(QWidget* form, const QString& languageCode, bool& flag) = 0;
};

// The host's base-list picker for employees.
struct PickedEmployee {
    bool Detail = false;
    QString Name;
    QVariant Itemid;
};
struct EmployeePickResult {
    bool ReturnOK = false;
    PickedEmployee ReturnObject;
};
class IEmployeePicker : public ServerObject {
public:
    virtual EmployeePickResult Pick(QWidget* parent, const QString& props, const QString& text) = 0;
};

// Asynchronous playback of a voice prompt. `fileName` is the name under the
// component's folder as the station writes it, e.g. "\voice\Error.wav".
class ISound : public ServerObject {
public:
    virtual void Play(const QString& fileName) = 0;
};

// Message display. Flags and results follow the classic message-box values.
namespace MsgBox {
constexpr int OkOnly = 0, YesNo = 4, Critical = 16, Question = 32, Exclamation = 48, Information = 64;
constexpr int Ok = 1, Yes = 6, No = 7;
}
class IMessageBox : public ServerObject {
public:
    virtual int Show(QWidget* parent, const QString& text, int flags, const QString& title) = 0;
};
