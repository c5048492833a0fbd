// A busy chart window refuses to print: no print dialog is shown. (The printed page itself is
// checked through the real module in the integration tests.)
#include "ChartWindowFixture.h"

using Print = ChartWindowFixture;

TEST_F(Print, BusyWindowDoesNotPrint) {
    bool dialogShown = false;
    AnswerModal([&dialogShown](QWidget*) { dialogShown = true; }, 1);  // looks once
    widget->SetBusy(true);
    widget->Print();
    QCoreApplication::processEvents();
    EXPECT_FALSE(dialogShown);
}
