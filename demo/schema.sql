-- The tables of the ERP database that the station reads and the middle tier
-- writes, for the embedded engine. Text columns compare as they do on the
-- ERP's server: without regard to case, and trailing blanks do not count
-- (NOCASE_RTRIM, registered by the engine on every connection). No ';'
-- inside this file except at the end of a statement: the demo generator
-- splits the file there.

-- Web orders
CREATE TABLE IC_Web2ERPOrders (
    FID                 INTEGER PRIMARY KEY,
    FUniqueCode         TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FLogisticsOrder     TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FLogisticsComp      TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FWebshopID          INTEGER,
    FOrderStatus        INTEGER NOT NULL DEFAULT 0,
    FBuyerName          TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FOrderDate          TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FPIckingGoodsStatus INTEGER DEFAULT 0,
    FPickingGoodMan     INTEGER DEFAULT 0,
    FSendDate           TEXT COLLATE NOCASE_RTRIM,
    FDeliveryStatus     INTEGER DEFAULT 0
);
CREATE INDEX IX_Web2ERPOrders_UniqueCode ON IC_Web2ERPOrders (FUniqueCode);
CREATE INDEX IX_Web2ERPOrders_LogisticsOrder ON IC_Web2ERPOrders (FLogisticsOrder);

CREATE TABLE IC_Web2ERPOrdersEntry (
    FEntryID  INTEGER PRIMARY KEY,
    FID       INTEGER NOT NULL,
    FItemID   INTEGER NOT NULL,
    FQuantity REAL NOT NULL DEFAULT 0,
    FPrice    REAL NOT NULL DEFAULT 0,
    FStockID  INTEGER NOT NULL DEFAULT 0,
    FSPID     INTEGER NOT NULL DEFAULT 0,
    FBatchNo  TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT ''
);
CREATE INDEX IX_Web2ERPOrdersEntry_FID ON IC_Web2ERPOrdersEntry (FID);
CREATE INDEX IX_Web2ERPOrdersEntry_ItemID ON IC_Web2ERPOrdersEntry (FItemID);

CREATE TABLE IC_Web2ERPOrdersEx (
    FID     INTEGER PRIMARY KEY,
    FIsLock INTEGER NOT NULL DEFAULT 0
);

CREATE TABLE IC_WebshopToStorage (
    FWebshopID   INTEGER PRIMARY KEY,
    FWebshopName TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FStockID     INTEGER NOT NULL DEFAULT 0
);

-- Web-shop goods mapped to ERP materials; FIsPriceChange marks a price-change product
CREATE TABLE IC_GoodsToMateriel (
    FID            INTEGER PRIMARY KEY,
    FWebshopID     INTEGER NOT NULL,
    FGoodsCode     TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FMaterielCode  TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FIsPriceChange INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IX_GoodsToMateriel_Materiel ON IC_GoodsToMateriel (FMaterielCode, FWebshopID);

-- Serial rows of verified orders, written by the station
CREATE TABLE IC_Web2ErpOrderSerial (
    FID           INTEGER NOT NULL DEFAULT 0,
    FEntryID      INTEGER NOT NULL,
    FSerialNumber TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FBatchNo      TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FStockID      INTEGER NOT NULL DEFAULT 0,
    FStockPlace   INTEGER NOT NULL DEFAULT 0,
    FSerialID     TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FKFDate       TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FKFPeriod     INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IX_Web2ErpOrderSerial_EntryID ON IC_Web2ErpOrderSerial (FEntryID);

-- Return (refund) bills of web orders; the newest bill of an order counts
CREATE TABLE IC_Web2ERPReturnBills (
    FBillID INTEGER PRIMARY KEY,
    FID     INTEGER NOT NULL,
    FStatus INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IX_Web2ERPReturnBills_FID ON IC_Web2ERPReturnBills (FID, FBillID);

-- Items, barcodes and pictures
CREATE TABLE t_ICItem (
    FItemID        INTEGER PRIMARY KEY,
    FNumber        TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FName          TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FModel         TEXT COLLATE NOCASE_RTRIM,
    FBarcode       TEXT COLLATE NOCASE_RTRIM,
    FSerialClassID INTEGER NOT NULL DEFAULT 0,
    FIsSnManage    INTEGER NOT NULL DEFAULT 0,
    FUnitName      TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT ''
);
CREATE INDEX IX_ICItem_Number ON t_ICItem (FNumber);

CREATE TABLE t_Barcode (
    FID      INTEGER PRIMARY KEY,
    FItemID  INTEGER NOT NULL,
    FBarCode TEXT COLLATE NOCASE_RTRIM NOT NULL
);
CREATE INDEX IX_Barcode_BarCode ON t_Barcode (FBarCode);
CREATE INDEX IX_Barcode_ItemID ON t_Barcode (FItemID);

-- FData: the picture as a gzip stream
CREATE TABLE t_Accessory (
    FID       INTEGER PRIMARY KEY,
    FItemID   INTEGER NOT NULL,
    FFileName TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FData     BLOB
);
CREATE INDEX IX_Accessory_ItemID ON t_Accessory (FItemID);

CREATE TABLE t_AuxItem (
    FItemID INTEGER PRIMARY KEY,
    FNumber TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FName   TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT ''
);

-- Warehouses and stock places
CREATE TABLE t_Stock (
    FItemID INTEGER PRIMARY KEY,
    FNumber TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FName   TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT ''
);

CREATE TABLE t_StockPlace (
    FSPID   INTEGER PRIMARY KEY,
    FNumber TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FName   TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT ''
);

-- Business partners named on stock bills
CREATE TABLE t_Supplier (
    FItemID INTEGER PRIMARY KEY,
    FNumber TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FName   TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT ''
);

CREATE TABLE t_Organization (
    FItemID INTEGER PRIMARY KEY,
    FNumber TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FName   TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT ''
);

-- Serial numbers: one row per serial, with its last movement
CREATE TABLE ICSerial (
    FSerialID      INTEGER NOT NULL,
    FSerialClassID INTEGER NOT NULL DEFAULT 1,
    FSerialNum     TEXT COLLATE NOCASE_RTRIM NOT NULL,
    FItemID        INTEGER NOT NULL,
    FAuxPropID     INTEGER NOT NULL DEFAULT 0,
    FStockID       INTEGER NOT NULL DEFAULT 0,
    FStockPlace    INTEGER NOT NULL DEFAULT 0,
    FOutStockID    INTEGER NOT NULL DEFAULT 0,
    FOutStockPlace INTEGER NOT NULL DEFAULT 0,
    FBatchNo       TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FKFPeriod      INTEGER NOT NULL DEFAULT 0,
    FKFDate        TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FTranTypeID    INTEGER NOT NULL DEFAULT 0,
    FValid         INTEGER NOT NULL DEFAULT 0,
    FInterID       INTEGER NOT NULL DEFAULT 0,
    FSNListID      INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (FSerialClassID, FSerialID)
);
CREATE INDEX IX_ICSerial_SerialNum ON ICSerial (FSerialNum);

CREATE TABLE ICSerial_F1 (
    FSerialClassID INTEGER NOT NULL,
    FSerialID      INTEGER NOT NULL,
    F_S001         TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    PRIMARY KEY (FSerialClassID, FSerialID)
);

-- Stock bills; FRob is the red/blue flag (1 blue, -1 red)
CREATE TABLE ICStockBill (
    FInterID  INTEGER PRIMARY KEY,
    FBillNo   TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FTranType INTEGER NOT NULL DEFAULT 0,
    FRob      INTEGER NOT NULL DEFAULT 1,
    FSupplyID INTEGER NOT NULL DEFAULT 0,
    FDate     TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT ''
);

-- Opening balances of serial-managed goods
CREATE TABLE IcInvInitial (
    FID       INTEGER PRIMARY KEY,
    FSNListID INTEGER NOT NULL,
    FItemID   INTEGER NOT NULL,
    FStockID  INTEGER NOT NULL DEFAULT 0,
    FQty      REAL NOT NULL DEFAULT 0
);
CREATE INDEX IX_IcInvInitial_SNListID ON IcInvInitial (FSNListID);

-- Users and employees
CREATE TABLE t_Emp (
    FItemID      INTEGER PRIMARY KEY,
    FNumber      TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FShortNumber TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FName        TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT ''
);

CREATE TABLE t_User (
    FUserID INTEGER PRIMARY KEY,
    FName   TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    FEmpID  INTEGER
);

-- Company settings and per-user profiles
CREATE TABLE t_SystemProfile (
    FCategory TEXT COLLATE NOCASE_RTRIM NOT NULL,
    FKey      TEXT COLLATE NOCASE_RTRIM NOT NULL,
    FValue    TEXT COLLATE NOCASE_RTRIM,
    FDesc     TEXT COLLATE NOCASE_RTRIM NOT NULL DEFAULT '',
    PRIMARY KEY (FCategory, FKey)
);

CREATE TABLE t_UserProfile (
    FUserID   INTEGER NOT NULL,
    FCategory TEXT COLLATE NOCASE NOT NULL,
    FKey      TEXT COLLATE NOCASE NOT NULL,
    FName     TEXT COLLATE NOCASE NOT NULL,
    FValue    TEXT COLLATE NOCASE
);
CREATE INDEX IX_UserProfile_Key ON t_UserProfile (FUserID, FCategory, FKey);
