<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="zh_CN">
<context>
    <name>RnINDUSTRY</name>
    <message>
        <source>通过</source>
        <translation>Passed</translation>
    </message>
    <message>
        <source>异常</source>
        <translation>Abnormal</translation>
    </message>
    <message>
        <source>超出</source>
        <translation>excess</translation>
    </message>
    <message>
        <source>缺少</source>
        <translation>missing</translation>
    </message>
    <message>
        <source>误拣</source>
        <translation>wrong pick</translation>
    </message>
    <message>
        <source>件</source>
        <translation> pcs</translation>
    </message>
    <message>
        <source>, 超出</source>
        <translation>, excess </translation>
    </message>
    <message>
        <source>, 缺少</source>
        <translation>, missing </translation>
    </message>
    <message>
        <source>, 误拣</source>
        <translation>, wrong pick </translation>
    </message>
    <message>
        <source>,缺少</source>
        <translation>,missing </translation>
    </message>
    <message>
        <source>,误拣</source>
        <translation>,wrong pick </translation>
    </message>
    <message>
        <source>拣货超量</source>
        <translation>Over-picked</translation>
    </message>
    <message>
        <source>非本单商品</source>
        <translation>Not in this order</translation>
    </message>
    <message>
        <source>确定启用商业智能？</source>
        <translation>Enable business intelligence?</translation>
    </message>
    <message>
        <source>订单</source>
        <translation>Order</translation>
    </message>
    <message>
        <source>未通过，是否继续校验?</source>
        <translation> has not passed. Go on checking it?</translation>
    </message>
    <message>
        <source>此单已冻结，请解冻后再操作！</source>
        <translation>This order is frozen. Unfreeze it first!</translation>
    </message>
    <message>
        <source>此单交易状态为申请退款</source>
        <translation>A refund has been requested for this order</translation>
    </message>
    <message>
        <source>此单已校验通过</source>
        <translation>This order has already been verified</translation>
    </message>
    <message>
        <source>找不到物流单号/唯一码/商品条码/序列号</source>
        <translation>Logistics number/unique code/barcode/serial number not found</translation>
    </message>
    <message>
        <source>找不到物流单号/唯一码/商品条码</source>
        <translation>Logistics number/unique code/barcode not found</translation>
    </message>
    <message>
        <source>/序列号</source>
        <translation>/serial number</translation>
    </message>
    <message>
        <source>亲,请扫描序列号</source>
        <translation>Please scan the serial number</translation>
    </message>
    <message>
        <source>该商品的序列号重复扫描</source>
        <translation>This serial number has already been scanned</translation>
    </message>
    <message>
        <source>该商品的批次、仓库、仓位信息与订单分录上的不一致</source>
        <translation>The batch, warehouse or bin of these goods differs from the order line</translation>
    </message>
    <message>
        <source>找不到相应的发货单或商品</source>
        <translation>No matching order or goods found</translation>
    </message>
    <message>
        <source>亲，序列号扫描不支持手动批量扫描!</source>
        <translation>Serial numbers cannot be scanned with a typed quantity!</translation>
    </message>
    <message>
        <source>同一分录不允许扫描不同保质期的商品</source>
        <translation>Goods of different shelf lives cannot be picked for one order line</translation>
    </message>
    <message>
        <source>商品数量只能为数值！</source>
        <translation>The quantity must be a number!</translation>
    </message>
    <message>
        <source>序号</source>
        <translation>No.</translation>
    </message>
    <message>
        <source>商品名称</source>
        <translation>Goods name</translation>
    </message>
    <message>
        <source>商品条码</source>
        <translation>Barcode</translation>
    </message>
    <message>
        <source>规格型号</source>
        <translation>Model</translation>
    </message>
    <message>
        <source>商品数量</source>
        <translation>Quantity</translation>
    </message>
    <message>
        <source>已拣数量</source>
        <translation>Picked</translation>
    </message>
    <message>
        <source>序列号管理</source>
        <translation>Serial no.</translation>
    </message>
    <message>
        <source>只显示异常</source>
        <translation>Exceptions only</translation>
    </message>
    <message>
        <source>另存为</source>
        <translation>Save as</translation>
    </message>
    <message>
        <source>文本文件</source>
        <translation>Text files</translation>
    </message>
    <message>
        <source>文本文件|*.txt|</source>
        <translation>Text files|*.txt|</translation>
    </message>
    <message>
        <source>拣货员</source>
        <translation>Picker</translation>
    </message>
    <message>
        <source>订单号/物流单号</source>
        <translation>Order/logistics no.</translation>
    </message>
    <message>
        <source>商品条码/序列号</source>
        <translation>Barcode/serial no.</translation>
    </message>
    <message>
        <source>数量</source>
        <translation>Qty</translation>
    </message>
    <message>
        <source>网店</source>
        <translation>Web shop</translation>
    </message>
    <message>
        <source>只扫描有条码的商品</source>
        <translation>Scan only goods with barcodes</translation>
    </message>
    <message>
        <source>有序列号的商品</source>
        <translation>Goods with serial numbers</translation>
    </message>
    <message>
        <source>文字显示</source>
        <translation>Text view</translation>
    </message>
    <message>
        <source>重新拣货</source>
        <translation>Re-pick</translation>
    </message>
    <message>
        <source>订单商品总数</source>
        <translation>Order goods total</translation>
    </message>
    <message>
        <source>进度</source>
        <translation>Progress</translation>
    </message>
    <message>
        <source>提示</source>
        <translation>Message</translation>
    </message>
    <message>
        <source>拣货结果</source>
        <translation>Picking result</translation>
    </message>
    <message>
        <source>订购</source>
        <translation>Ordered</translation>
    </message>
    <message>
        <source>已拣</source>
        <translation>Picked</translation>
    </message>
    <message>
        <source>列表显示</source>
        <translation>List view</translation>
    </message>
    <message>
        <source>双击或按 F7 选择拣货人</source>
        <translation>Double-click or press F7 to choose the picker</translation>
    </message>
    <message>
        <source>只校验有条码的商品</source>
        <translation>Check only goods with barcodes</translation>
    </message>
    <message>
        <source>已拣/合计</source>
        <translation>Picked/total</translation>
    </message>
    <message>
        <source>扫描序列号</source>
        <translation>Scan serial numbers</translation>
    </message>
    <message>
        <source>拣</source>
        <translation>Pick</translation>
    </message>
    <message>
        <source>订</source>
        <translation>Ord</translation>
    </message>
    <message>
        <source>拣货人</source>
        <translation>Picker</translation>
    </message>
    <message>
        <source>拣货校验</source>
        <translation>Picking check</translation>
    </message>
    <message>
        <source>文本文件 (*.txt)</source>
        <translation>Text files (*.txt)</translation>
    </message>
    <message>
        <source>物流单号/唯一码</source>
        <translation>Logistics no./unique code</translation>
    </message>
    <message>
        <source>订单数量</source>
        <translation>Ordered qty</translation>
    </message>
    <message>
        <source>irAmUS</source>
        <translation>Order </translation>
    </message>
    <message>
        <source>GS1条码中没有数据</source>
        <translation>The GS1 code holds no data</translation>
    </message>
    <message>
        <source>GS1条码中有无法识别的应用标识符</source>
        <translation>The GS1 code holds an Application Identifier the station does not know</translation>
    </message>
    <message>
        <source>GS1条码的字段长度不正确</source>
        <translation>A field of the GS1 code has the wrong length</translation>
    </message>
    <message>
        <source>GS1条码的字段含有不允许的字符</source>
        <translation>A field of the GS1 code holds a character it may not</translation>
    </message>
    <message>
        <source>GS1条码的校验位不正确</source>
        <translation>The check digit of the GS1 code is wrong</translation>
    </message>
    <message>
        <source>GS1条码的日期不正确</source>
        <translation>A date in the GS1 code is no real date</translation>
    </message>
    <message>
        <source>GS1条码中同一标识符有不同的值</source>
        <translation>The GS1 code gives one Application Identifier two values</translation>
    </message>
</context>
</TS>
