#include "gui/CSkin.h"

#include <QFileInfo>
#include <QImageReader>
#include <cstring>
#include <memory>

#include "abi/messages.h"
#include "module/PFChartModule.h"
#include "xml/CXMLWorkData.h"

namespace {

// Texts are made on the heap, never as literals: fonts and pictures made from them may be
// kept in Qt's process-wide caches, which outlive this library when the terminal unloads it.
QString Text(const char* latin1) { return QString::fromLatin1(latin1); }

QImage Resource(const char* name) { return name ? QImage(Text(name)) : QImage(); }

const char kAddIcon[] = ":/addgraph.png";
const char kPropIcon[] = ":/prop.png";
const char kZoomInIcon[] = ":/zm1.png";
const char kZoomOutIcon[] = ":/zm2.png";
const char kTradeAutoIcon[] = ":/tradein.png";
const char kDealIcon[] = ":/b_g_deal.png";
const char kUpDeal[] = ":/up_deal.png";
const char kDownDeal[] = ":/down_deal.png";
const char kUpLimit[] = ":/up_limit.png";
const char kDownLimit[] = ":/down_limit.png";
const char kBadSmile[] = ":/smile1.png";
const char kGoodSmile[] = ":/smile2.png";

}  // namespace

CSkin::CSkin(PFChartModule* module) : module_(module) { InitSkinData(); }

void CSkin::InitSkinData() {
    loaded_ = false;
    font_ = QFont(Text("Arial"), 8);
    backColor_ = QColor(QRgb(0xFFFFFF));
    areaGridColor_ = QColor(QRgb(0xECE9D8));
    fontColor_ = QColor(QRgb(0x7C7B68));
    timeBackColor_ = QColor(QRgb(0xFFFFFF));
    timeGridColor_ = QColor(QRgb(0xECE9D8));
    timeFontColor_ = QColor(QRgb(0x7C7B68));
    tbBackColor_ = QColor(QRgb(0xF6F6F6));
    tbFrontColor_ = QColor(QRgb(0x000000));
    tradeBuyColor_ = QColor(QRgb(0x84B9E7));
    tradeSellColor_ = QColor(QRgb(0x9DE191));
    autoScroll_ = false;
    backPos_ = 0;
    addIcon_ = Resource(kAddIcon);
    propIcon_ = Resource(kPropIcon);
    zoomInIcon_ = Resource(kZoomInIcon);
    zoomOutIcon_ = Resource(kZoomOutIcon);
    tradeAutoIcon_ = Resource(kTradeAutoIcon);
    dealIcon_ = Resource(kDealIcon);
    backImage_ = QImage();
    upDeal_ = Resource(kUpDeal);
    downDeal_ = Resource(kDownDeal);
    upLimit_ = Resource(kUpLimit);
    downLimit_ = Resource(kDownLimit);
    badSmile_ = Resource(kBadSmile);
    goodSmile_ = Resource(kGoodSmile);
    tbImage_ = QImage();
}

int CSkin::LoadSkin(const QString& path) {
    folder_ = QFileInfo(path).path();
    InitSkinData();
    if (path.isEmpty() || !module_ || !module_->sendToHost) return 0;
    // The request holds 254 UTF-16 units and the terminator; a longer path is refused here
    // rather than run over the handle slot.
    coreOpenWorkData request;
    std::memset(&request, 0, sizeof request);
    const int capacity = int(sizeof request.path / sizeof request.path[0]) - 1;
    if (path.size() > capacity) return 0;
    std::memcpy(request.path, path.utf16(), sizeof(coreWChar) * std::size_t(path.size()));
    module_->sendToHost(module_->hostHandle, MSG_WD_OPEN, reinterpret_cast<std::intptr_t>(&request), 0);
    void* document = request.handle;
    if (!document) return 0;
    int result = 0;
    {
        // The root is looked up, never created: a skin is only read, and a document that
        // is empty or has another root is left as the host keeps it.
        CXMLWorkData top(module_->hostHandle, document, document, module_->sendToHost);
        std::unique_ptr<CXMLWorkData> root(top.getFirstNode("MainWindow"));
        result = ReadSkinData(root.get());
        coreSzNode node;
        std::memset(&node, 0, sizeof node);
        top.fillNodeData(node);
        module_->sendToHost(module_->hostHandle, MSG_WD_SAVE, reinterpret_cast<std::intptr_t>(&node), 0);
    }
    return result;
}

int CSkin::ReadSkinData(CXMLWorkData* root) {
    if (!root || !root->isValid()) return 0;
    loaded_ = true;
    // A missing node reads as one without keys: every key keeps its value, except the tool
    // bar background, whose default is the time-scale font colour read just before it.
    std::unique_ptr<CXMLWorkData> chart(root->getFirstNode("CHARTMODERN"));
    CXMLWorkData none(nullptr, nullptr, static_cast<void*>(nullptr), nullptr);
    const CXMLWorkData& modern = chart ? *chart : none;
    font_ = modern.readFont("FONT", font_);

    std::unique_ptr<CXMLWorkData> pictNode(chart ? chart->getFirstNode("PICT") : nullptr);
    const CXMLWorkData& pict = pictNode ? *pictNode : none;
    backColor_ = pict.readColorString("BACK_COLOR", backColor_);
    areaGridColor_ = pict.readColorString("AREA_GRID_COLOR", areaGridColor_);
    fontColor_ = pict.readColorString("FONT_COLOR", fontColor_);
    timeBackColor_ = pict.readColorString("TIME_BACK_COLOR", timeBackColor_);
    timeGridColor_ = pict.readColorString("TIME_GRID_COLOR", timeGridColor_);
    timeFontColor_ = pict.readColorString("TIME_FONT_COLOR", timeFontColor_);
    tbBackColor_ = pict.readColorString("TB_BACK_COLOR", timeFontColor_);
    tradeBuyColor_ = pict.readColorString("TRADE_BUY_COLOR", tradeBuyColor_);
    tradeSellColor_ = pict.readColorString("TRADE_SELL_COLOR", tradeSellColor_);
    autoScroll_ = pict.readBool("AUTOSCROLL", false);
    backPos_ = pict.readInteger("BACK_POS", 0);

    ReadPicture(pict, "ADD_ICN", addIcon_, kAddIcon);
    ReadPicture(pict, "PROP_ICN", propIcon_, kPropIcon);
    ReadPicture(pict, "ZOOM_IN_ICN", zoomInIcon_, kZoomInIcon);
    ReadPicture(pict, "ZOOM_OUT_ICN", zoomOutIcon_, kZoomOutIcon);
    ReadPicture(pict, "TRADE_AUTO_ICN", tradeAutoIcon_, kTradeAutoIcon);
    ReadPicture(pict, "DEAL_ICN", dealIcon_, kDealIcon);
    ReadPicture(pict, "BACK_IMG", backImage_, nullptr);
    ReadPicture(pict, "UP_DEAL", upDeal_, kUpDeal);
    ReadPicture(pict, "DOWN_DEAL", downDeal_, kDownDeal);
    ReadPicture(pict, "UP_LIMIT", upLimit_, kUpLimit);
    ReadPicture(pict, "DOWN_LIMIT", downLimit_, kDownLimit);
    ReadPicture(pict, "BAD_SMILE", badSmile_, kBadSmile);
    ReadPicture(pict, "GOOD_SMILE", goodSmile_, kGoodSmile);

    std::unique_ptr<CXMLWorkData> commonNode(chart ? chart->getFirstNode("COMMON") : nullptr);
    std::unique_ptr<CXMLWorkData> commonPictNode(commonNode ? commonNode->getFirstNode("PICT") : nullptr);
    const CXMLWorkData& common = commonPictNode ? *commonPictNode : none;
    // The tool bar image falls back to the down-limit mark, not to "no image".
    ReadPicture(common, "TB_PIXMAP", tbImage_, kDownLimit);
    tbFrontColor_ = common.readColorString("TB_FRONT_COLOR", tbFrontColor_);
    return 1;
}

void CSkin::ReadPicture(const CXMLWorkData& node, const char* key, QImage& field, const char* fallback) {
    if (!node.hasAttribute(key)) return;
    const QImage picture = LoadPicture(node.readString(key));
    field = picture.isNull() ? Resource(fallback) : picture;
}

QImage CSkin::LoadPicture(const QString& name) const {
    if (name.isEmpty()) return QImage();
    // The size is read from the header first, so that a huge picture is refused before
    // anything is allocated for it.
    QImageReader reader(folder_ + QLatin1Char('/') + name);
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > kMaxPictureSide || size.height() > kMaxPictureSide) return QImage();
    QImage picture;
    if (!reader.read(&picture)) return QImage();
    return picture;
}
