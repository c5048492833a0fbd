// Message numbers of the terminal's module protocol.
//
// Messages travel in both directions through a function of the form
// int f(void* target, unsigned int message, intptr_t param1, intptr_t param2);
// the module calls the host callback it received at Initialize, the host calls the
// module's exported ReceiveMessage. Each number says what its two parameters carry.
#pragma once

enum PFHostMessage : unsigned int {
    // module -> host core
    MSG_REGISTER_INTERFACE = 3000,   // p1 coreInterfaceRequest (registration)
    MSG_GET_INTERFACE = 3001,        // p1 coreInterfaceRequest; fills the result slots
    MSG_COUNT_INTERFACES = 3002,     // p1 coreInterfaceRequest, p2 &request.count
    // p1 coreCreateDpaData. Its text is empty until the terminal switches the windows to a
    // price type (3545); from then on every data object a window creates, the ones made
    // again for the switch included, names that type in the text ("Middle", "Bid", "Ask"),
    // so that the provider computes the figures from those prices.
    MSG_CREATE_DPA = 3008,
    MSG_HEAD_NODE_INFO = 3012,       // p1 data object handle, p2 coreHeadNodeInfo
    MSG_DPA_SUBSCRIBE = 3013,        // p1 data handle, p2 coreDpaSubscription
    MSG_DPA_UNSUBSCRIBE = 3014,      // p1 data handle, p2 coreDpaSubscription
    MSG_INSERT_TRANSLATION = 3019,   // p1 coreTranslateRecord
    MSG_DPA_LIST = 3042,             // p1 data handle, p2 coreListCreateData
    MSG_DPA_COUNT = 3043,            // p1 data handle, p2 int32_t* count
    MSG_EVENT_SUBSCRIBE = 3110,      // p1 coreEventSubscribe
    MSG_EVENT_UNSUBSCRIBE = 3111,    // p1 coreEventUnsubscribe
    MSG_EVENT_CREATE = 3112,         // p1 coreEventCreate
    MSG_EVENT_RAISE = 3113,          // p1 event id, p2 FXEvent
    MSG_LANGUAGE_COUNT = 3116,       // p1 coreLanguageRequest (null array)
    MSG_LANGUAGE_LIST = 3117,        // p1 coreLanguageRequest
    MSG_UNDO_BEGIN = 3138,           // p1 coreUndoBegin
    MSG_UNDO_COMMIT = 3139,          // p1 record id
    MSG_UNDO_REPLY = 3141,           // reply to MSG_UNDO_REQUEST: p1 coreUndoRefresh, p2 result
    MSG_UNDO_REFRESHED = 3142,       // p1 chart widget, p2 objects rebuilt
    MSG_UNDO_NODE_INDEX = 3147,      // p1 coreSzNode; answers the node's index
    MSG_DESCRIBE_PRIMITIVE = 3048,   // p1 coreDragData ("kovar/primitive"), p2 fxwcDropInstrument
    MSG_DESCRIBE_DRAG = 3119,        // p1 coreDragData ("kovar/symbol-indicator"), p2 fxwcDropInstrument
    MSG_LINE_INDEX = 3053,           // p1 fxDataPointArray*; answers the array's line index
    MSG_TITLE_CHANGED = 3125,        // p1 chart widget, p2 const coreWChar* title (NUL-terminated)
    MSG_WINDOW_DESTROYED = 3150,     // p1 fxwcWindowDestroyed
    MSG_WD_OPEN = 3163,              // p1 coreOpenWorkData
    MSG_WD_SAVE = 3164,              // p1 coreSzNode
    MSG_WD_CLEAR_NODE = 3165,
    MSG_WD_CREATE_NODE = 3166,       // p1 coreCreateNode
    MSG_WD_READ_PARAMS = 3167,       // fill names and values
    MSG_WD_WRITE_PARAMS = 3168,      // write attributes
    MSG_WD_PARAM_LENGTHS = 3169,     // report value lengths
    MSG_WD_PARAM_COUNT = 3170,       // number of entries of a node
    MSG_LOG_BIND = 3205,             // p1 coreLogSink* slot
    MSG_DATE_FUNCTIONS = 3207,       // p1 coreDateTimeFunctions
    MSG_PROPERTY_REFRESH = 10053,    // p1 PROPERTY_PAGE*, p2 result; an open dialog shows it again

    // module -> main window interface
    MSG_MAIN_WINDOW_ID = 3502,       // p1 int32_t* window id (initialised to -1)
    MSG_MAIN_WORK_FOLDER = 3503,     // p1 12288-byte buffer, wide string
    MSG_MAIN_CHANGED = 5008,         // p1 coreMainChangeNotice
    MSG_SHOW_PROPERTIES = 3092,      // p1 chart widget, p2 data object handle of the indicator
    MSG_SHOW_PROPERTY_PAGE = 10052,  // p1 PROPERTY_PAGE*, p2 the chart widget it belongs to

    // module -> host core: the status-bar panes (coreStatusBarPanes)
    MSG_STATUS_PANE_ID = 7000,       // p1 coreStatusBarPanes*, p2 pane index
    MSG_STATUS_PANE_ID_AGAIN = 7001, // p1 coreStatusBarPanes*, p2 pane index

    // module -> line-study provider (see abi/records/linestudy_records.h)
    MSG_LS_CREATE_OBJECT = 4500,     // p1 lsCreateObject
    MSG_LS_DELETE = 4501,            // p1 study id
    MSG_LS_SHAPE_SIZES = 4505,       // p1 study id, p2 int32_t[shape count]
    MSG_LS_GET_LIST_CONTROLPOINTER = 4510, // p1 study id, p2 lsControlPointsShapes
    MSG_LS_PROPERTIES = 4511,        // p1 study id
    MSG_LS_TITLE = 4516,             // p1 study id, p2 coreWChar[LS_TITLE_CHARS]
    MSG_LS_FOCUS = 4517,             // p1 lsFocusRecord
    // module -> data core
    MSG_LS_ATTACH = 3068,            // p1 line data id, p2 lsAttachRecord
    MSG_LS_DETACH = 3071,            // p1 line data id, p2 study id
    // module -> main GUI
    MSG_LS_DRAWING_MODE = 3500,      // p1 lsDrawingMode; 1 while a study tool is chosen
    MSG_LS_END_DRAWING = 3501,
    MSG_LS_BEFORE_PROPERTIES = 10041,

    // module -> dealing interface
    MSG_DEAL_ACCOUNT_COUNT = 16000,  // p1 fxdAccountRequest
    MSG_DEAL_ACCOUNT_LIST = 16001,   // p1 fxdAccountRequest
    MSG_DEAL_DAYOFF_COUNT = 16026,   // p1 account id, p2 fxdDayOffRequest
    MSG_DEAL_DAYOFF_LIST = 16027,    // p1 account id, p2 fxdDayOffRequest
    MSG_DEAL_ORDER = 16014,          // p1 fxdTradeRequest
    MSG_DEAL_DEAL = 16015,           // p1 fxdTradeRequest

    // host -> module
    MSG_SETUP = 3004,                // languages, fonts, date-time, log
    MSG_REGISTER = 3007,             // built-in texts, interface registration
    MSG_DATA_UPDATED = 3009,         // to a chart type interface: coreCoreUpdateDpaData
    MSG_LOAD_CHART = 3020,           // to a chart type interface
    MSG_SAVE_CHART = 3021,           // to a chart type interface
    MSG_DEALING_READY = 3066,        // deal interfaces, accounts, status bar
    MSG_LS_UPDATE = 3073,            // p1 coreUpdateLs
    MSG_EVENT = 3114,                // p1 FXEvent
    MSG_UNDO_REQUEST = 3140,         // p1 coreUndoStart
    MSG_CONVERT_TO_TYPE = 3545,      // p1 0 middle, 1 bid, other ask
    MSG_NEED_TO_CONVERT = 3546,      // p1 coreConvertList

    // host -> chart type interface
    MSG_PANEL_STATUS = 3518,
    MSG_WC_NAME = 5001,
    MSG_WC_CREATE = 5003,
    MSG_WC_DESTROY = 5004,
    MSG_WC_RESIZE = 5005,
    MSG_WC_DROP_INSTRUMENTS = 5007,
    MSG_WC_SHOW = 5011,
    MSG_WC_PRINT = 5012,
    MSG_WC_QUERY = 5020,
    MSG_WC_UNICODE_NAME = 5022,
    MSG_WC_OWNER_FOR_OBJECT = 5025,
    MSG_WC_CAPTION = 5034,
    MSG_APPLY_PROPERTY = 10054,      // p1 PROPERTY_CHANGE
};

// Event codes carried in FXEvent::code.
enum PFEventCode : int {
    EVENT_ACCOUNT_ADDED = 16002,
    EVENT_ACCOUNT_REMOVED = 16003,
    EVENT_DAYOFF_CHANGED = 16048,
};
