// The look of the chart windows that is not saved with a chart: colours of the chart
// background, grid, scales, time scale and tool bar, the buy and sell colours, the tool
// bar's font, and the icons and pictures of the tool bar and the trade marks.
//
// The skin starts from built-in defaults (InitSkinData) and can be overridden by a skin
// document, an XML file the host reads on the module's request (3163; 3164 when done):
//
//   <MainWindow>
//     <CHARTMODERN>
//       <FONT Family="Arial" Size="8" .../>
//       <PICT BACK_COLOR="r,g,b" ... AUTOSCROLL="0" BACK_POS="0" ADD_ICN="file.png" .../>
//       <COMMON><PICT TB_PIXMAP="file.png" TB_FRONT_COLOR="r,g,b"/></COMMON>
//     </CHARTMODERN>
//   </MainWindow>
//
// Picture names are files in the skin document's folder. The module owns one skin; the
// chart windows read it.
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QString>

class CXMLWorkData;
class PFChartModule;

class CSkin {
public:
    // Pictures larger than this on either side are not loaded (the compiled-in one stays).
    static const int kMaxPictureSide = 4096;

    explicit CSkin(PFChartModule* module);
    CSkin(const CSkin&) = delete;
    CSkin& operator=(const CSkin&) = delete;

    // Every field back to its built-in default.
    void InitSkinData();
    int Load(const QString& path) { return LoadSkin(path); }
    // Remembers the folder of `path`, resets the defaults and, for a path that is not
    // empty, has the host open the document (3163), reads its "MainWindow" root and lets
    // the host go of it (3164). 1 when a document was read, 0 otherwise.
    int LoadSkin(const QString& path);
    // Reads a skin document whose root is `root`; a missing node or key keeps the current
    // value (the tool bar background excepted: its default is the time-scale font colour
    // just read), a picture that cannot be loaded takes its compiled-in one. 1 when read,
    // 0 for a null or unbound root.
    int ReadSkinData(CXMLWorkData* root);

    // Whether the fields come from a document (the last LoadSkin read one).
    bool IsLoaded() const { return loaded_; }
    PFChartModule* GetModule() const { return module_; }
    const QString& GetSkinFolder() const { return folder_; }

    const QFont& GetFont() const { return font_; }
    const QColor& GetBackColor() const { return backColor_; }
    const QColor& GetAreaGridColor() const { return areaGridColor_; }
    const QColor& GetFontColor() const { return fontColor_; }
    const QColor& GetTimeBackColor() const { return timeBackColor_; }
    const QColor& GetTimeGridColor() const { return timeGridColor_; }
    const QColor& GetTimeFontColor() const { return timeFontColor_; }
    const QColor& GetToolBarBackColor() const { return tbBackColor_; }
    const QColor& GetToolBarFrontColor() const { return tbFrontColor_; }
    const QColor& GetTradeBuyColor() const { return tradeBuyColor_; }
    const QColor& GetTradeSellColor() const { return tradeSellColor_; }
    bool GetAutoScroll() const { return autoScroll_; }
    int GetBackPos() const { return backPos_; }

    const QImage& GetAddIcon() const { return addIcon_; }
    const QImage& GetPropIcon() const { return propIcon_; }
    const QImage& GetZoomInIcon() const { return zoomInIcon_; }
    const QImage& GetZoomOutIcon() const { return zoomOutIcon_; }
    const QImage& GetTradeAutoIcon() const { return tradeAutoIcon_; }
    const QImage& GetDealIcon() const { return dealIcon_; }
    const QImage& GetBackImage() const { return backImage_; }
    const QImage& GetUpDeal() const { return upDeal_; }
    const QImage& GetDownDeal() const { return downDeal_; }
    const QImage& GetUpLimit() const { return upLimit_; }
    const QImage& GetDownLimit() const { return downLimit_; }
    const QImage& GetBadSmile() const { return badSmile_; }
    const QImage& GetGoodSmile() const { return goodSmile_; }
    const QImage& GetToolBarImage() const { return tbImage_; }

    // The picture of file `name` in the skin folder; a null image when the name is empty,
    // the file is missing, is not a picture or is too large.
    QImage LoadPicture(const QString& name) const;

private:
    // Reads the picture key `key` of `node`: an absent key keeps `field`; a named file that
    // cannot be loaded gives `fallback` (a compiled-in resource, or none).
    void ReadPicture(const CXMLWorkData& node, const char* key, QImage& field, const char* fallback);

    PFChartModule* module_;
    QString folder_;
    bool loaded_ = false;
    QFont font_;
    QColor backColor_;
    QColor areaGridColor_;
    QColor fontColor_;
    QColor timeBackColor_;
    QColor timeGridColor_;
    QColor timeFontColor_;
    QColor tbBackColor_;
    QColor tbFrontColor_;
    QColor tradeBuyColor_;
    QColor tradeSellColor_;
    bool autoScroll_ = false;
    int backPos_ = 0;
    QImage addIcon_;
    QImage propIcon_;
    QImage zoomInIcon_;
    QImage zoomOutIcon_;
    QImage tradeAutoIcon_;
    QImage dealIcon_;
    QImage backImage_;
    QImage upDeal_;
    QImage downDeal_;
    QImage upLimit_;
    QImage downLimit_;
    QImage badSmile_;
    QImage goodSmile_;
    QImage tbImage_;
};
