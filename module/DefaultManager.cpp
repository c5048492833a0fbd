#include "module/DefaultManager.h"

namespace font {

namespace {

const int kNormal = 50;
const int kBold = 75;

}  // namespace

DefaultManager::DefaultManager() {
    const QString tahoma = QString::fromLatin1("Tahoma");
    const QString arial = QString::fromLatin1("Arial");
    const QString courier = QString::fromLatin1("Courier New");
    elements_[efMainWindow] = Element{tahoma, 8, kNormal};
    elements_[efMenu] = Element{tahoma, 8, kNormal};
    elements_[efToolBar] = Element{tahoma, 8, kNormal};
    elements_[efToolTip] = Element{tahoma, 8, kNormal};
    elements_[efStatusBar] = Element{tahoma, 8, kNormal};
    elements_[efDialog] = Element{tahoma, 8, kNormal};
    elements_[efButton] = Element{tahoma, 8, kNormal};
    elements_[efEdit] = Element{tahoma, 8, kNormal};
    elements_[efList] = Element{tahoma, 8, kNormal};
    elements_[efTable] = Element{tahoma, 8, kNormal};
    elements_[efTableHeader] = Element{tahoma, 8, kBold};
    elements_[efTabBar] = Element{tahoma, 8, kNormal};
    elements_[efChartScale] = Element{tahoma, 8, kNormal};
    elements_[efChartTitle] = Element{tahoma, 9, kBold};
    elements_[efChartLabel] = Element{arial, 8, kNormal};
    elements_[efLegend] = Element{arial, 8, kNormal};
    elements_[efMessage] = Element{arial, 9, kNormal};
    elements_[efHint] = Element{arial, 8, kNormal};
    elements_[efPrint] = Element{arial, 10, kNormal};
    elements_[efNews] = Element{arial, 9, kNormal};
    elements_[efQuotes] = Element{courier, 9, kNormal};
    elements_[efLog] = Element{courier, 8, kNormal};
}

}  // namespace font
