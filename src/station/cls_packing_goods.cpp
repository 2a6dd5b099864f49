#include "station/cls_packing_goods.h"
#include "station/frm_pickig_goods.h"
#include <memory>

int clsPackingGoods::ShowForm()
{
    // No owner form: the station is a window of its own, released on return.
    auto form = std::make_unique<frmPickigGoods>();
    form->setModal(true);
    form->exec();
    return 0;
}
