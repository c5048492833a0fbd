// PFChartModule: host interfaces, accounts, day-off states and the default parameters.
// (Being implemented; these answer the neutral "nothing found" results for now.)
#include "module/PFChartModule.h"

#include <QWidget>

void* PFChartModule::GetGlobalMainWindow() { return mainWindow_; }
void* PFChartModule::GetTransportInterface() { return transport_; }
QWidget* PFChartModule::getMainWindow() { return nullptr; }
void PFChartModule::getDealInterface() {}
void PFChartModule::getStartAccount(coreInterfaceRequest*) {}
bool PFChartModule::IsDayOff(const QString&) const { return false; }
void PFChartModule::UpdateDayOffStatusForDealing(void*, int, bool) {}
void PFChartModule::UpdateDayoffStatus(FXEvent*) {}
void PFChartModule::accountWork(FXEvent*) {}
void PFChartModule::UpdateChartForInterface(ChartInterface*) {}
void PFChartModule::SwitchToType(const QString&) {}
bool PFChartModule::NeedToSwitchToMid() const { return true; }
bool PFChartModule::NeedToSwitchToBid() const { return true; }
int PFChartModule::MwiConvertToType(std::intptr_t, std::intptr_t) { return 0; }
int PFChartModule::MwiNeedToConvert(std::intptr_t, std::intptr_t) { return 0; }
void PFChartModule::SendMainAboutChange() {}
CXMLWorkData* PFChartModule::getDefaultXml() { return nullptr; }
void PFChartModule::saveDefaultXml(CXMLWorkData*) {}
QString PFChartModule::GetWorkFolder() { return QString(); }
