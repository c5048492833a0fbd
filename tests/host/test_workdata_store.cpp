// The emulator's work-data store on its own: raw messages with good and bad records, and
// what it leaves on disk. Values through the module's side are in the xml round trip.
#include "WorkDataFile.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"

namespace {

struct Store : WorkDataFile {
    host::WorkDataStore& store() { return emulator->workData(); }
    static coreSzNode nodeRecord(void* handle) {
        return coreSzNode{0, 0, static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle))};
    }
    // 3168 with one attribute per (name, value).
    int write(void* node, const std::vector<std::pair<const char*, QString> >& attrs) {
        std::vector<coreSzParam> params(attrs.size(), coreSzParam{});
        std::vector<QString> values;
        for (std::size_t i = 0; i < attrs.size(); ++i) {
            std::strncpy(params[i].name, attrs[i].first, sizeof params[i].name);
            values.push_back(attrs[i].second);
            params[i].value = const_cast<coreWChar*>(values.back().utf16());
            params[i].valueLength = values.back().size() + 1;
        }
        coreSzParamList list{std::int32_t(params.size()), params.data()};
        const coreSzNode n = nodeRecord(node);
        return send(MSG_WD_WRITE_PARAMS, &n, &list);
    }
};

TEST_F(Store, UnknownAndRemovedHandlesAndBadListsAnswerFailure) {
    void* doc = store().open(path);
    void* root = store().createChild(doc, "Root");
    void* child = store().createChild(root, "Child");
    ASSERT_NE(child, nullptr);
    const coreSzNode rootNode = nodeRecord(root);
    ASSERT_EQ(send(MSG_WD_CLEAR_NODE, &rootNode), 0);

    std::int32_t count = -1;
    coreSzParam param{};
    coreSzParamList list{1, &param};
    for (void* bad : {child, reinterpret_cast<void*>(0x7ff0), static_cast<void*>(nullptr)}) {
        const coreSzNode n = nodeRecord(bad);
        EXPECT_EQ(send(MSG_WD_PARAM_COUNT, &n, &count), 1);
        EXPECT_EQ(send(MSG_WD_PARAM_LENGTHS, &n, &list), 1);
        EXPECT_EQ(send(MSG_WD_READ_PARAMS, &n, &list), 1);
        EXPECT_EQ(send(MSG_WD_WRITE_PARAMS, &n, &list), 1);
        EXPECT_EQ(send(MSG_WD_CLEAR_NODE, &n), 1);
        EXPECT_EQ(send(MSG_WD_SAVE, &n), 1);
        coreCreateNode create{};
        create.parent = bad;
        create.result = reinterpret_cast<void*>(1);
        std::strcpy(create.name, "X");
        EXPECT_EQ(send(MSG_WD_CREATE_NODE, &create), 1);
        EXPECT_EQ(static_cast<void*>(create.result), nullptr);
    }
    EXPECT_EQ(count, -1);
    for (unsigned int m : {MSG_WD_OPEN, MSG_WD_SAVE, MSG_WD_CLEAR_NODE, MSG_WD_CREATE_NODE,
                           MSG_WD_PARAM_COUNT, MSG_WD_PARAM_LENGTHS, MSG_WD_READ_PARAMS,
                           MSG_WD_WRITE_PARAMS})
        EXPECT_EQ(send(m, nullptr, nullptr), 1) << m;

    // Parameter lists are checked.
    for (coreSzParamList bad : {coreSzParamList{-1, nullptr}, coreSzParamList{2, nullptr},
                                coreSzParamList{5499318, nullptr}}) {
        EXPECT_EQ(send(MSG_WD_PARAM_LENGTHS, &rootNode, &bad), 1);
        EXPECT_EQ(send(MSG_WD_WRITE_PARAMS, &rootNode, &bad), 1);
    }
    coreSzParamList empty{0, nullptr};
    EXPECT_EQ(send(MSG_WD_WRITE_PARAMS, &rootNode, &empty), 0);
    EXPECT_EQ(write(root, {{"bad name", "x"}, {"ok", "y"}}), 1) << "one entry refused";
    EXPECT_EQ(*store().node(root)->attribute("ok"), "y");
    EXPECT_EQ(store().node(root)->attributes.size(), 1u);
}

TEST_F(Store, ReadsAreCutToTheModuleBuffers) {
    void* root = store().createChild(store().open(path), "Root");
    ASSERT_EQ(write(root, {{"Key", "abcdef"}}), 0);
    store().createChild(root, "Kid");
    const coreSzNode n = nodeRecord(root);
    std::int32_t count = 0;
    ASSERT_EQ(send(MSG_WD_PARAM_COUNT, &n, &count), 0);
    ASSERT_EQ(count, 2);

    coreSzParam params[3] = {};
    coreSzParamList list{3, params};
    ASSERT_EQ(send(MSG_WD_PARAM_LENGTHS, &n, &list), 0);
    EXPECT_EQ(int(params[0].valueLength), 7);
    EXPECT_EQ(int(params[1].kind), int(CORE_SZ_PARAM_CHILD));
    coreWChar small[4];
    std::fill(std::begin(small), std::end(small), 0xAAAA);
    params[0].value = small;
    params[0].valueLength = 3;
    ASSERT_EQ(send(MSG_WD_READ_PARAMS, &n, &list), 0);
    EXPECT_STREQ(params[0].name, "Key");
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(small)), "ab");
    EXPECT_EQ(small[3], 0xAAAA) << "nothing past the stated length";
    EXPECT_STREQ(params[1].name, "Kid");
    EXPECT_EQ(static_cast<void*>(params[1].node), store().child(root, "Kid"));
    EXPECT_STREQ(params[2].name, "") << "beyond the node's entries";
}

TEST_F(Store, CharactersXmlCannotHoldAreReplacedOnSaving) {
    host::workdata::Node top;
    top.addChild("R")->setAttribute("v", QString::fromUtf8("a\x01" "b") + QChar(0xD800) + QChar(0xFFFF));
    const QByteArray xml = host::workdata::serialize(top);
    host::workdata::Node back;
    ASSERT_TRUE(host::workdata::parse(xml, back));
    EXPECT_EQ(*back.children[0]->attribute("v"),
              QString("a") + QChar(0xFFFD) + "b" + QChar(0xFFFD) + QChar(0xFFFD));
}

TEST_F(Store, DocumentsOpenSaveAndKeepOneRoot) {
    void* doc = store().open(path);
    ASSERT_NE(doc, nullptr) << "a missing file is an empty document";
    EXPECT_EQ(store().open(path), doc);
    EXPECT_FALSE(store().save(doc)) << "nothing to save without a root";
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(store().createChild(doc, "1bad"), nullptr);
    EXPECT_EQ(store().createChild(doc, "ns:name"), nullptr);
    ASSERT_NE(store().createChild(doc, "Root"), nullptr);
    EXPECT_EQ(store().createChild(doc, "Second"), nullptr);

    void* deep = store().root(doc);
    for (int depth = 1; deep && depth < host::workdata::kMaxDepth; ++depth)
        deep = store().createChild(deep, "N");
    ASSERT_NE(deep, nullptr);
    EXPECT_EQ(store().createChild(deep, "N"), nullptr) << "no deeper than the limit";

    coreSzNode saved;
    ASSERT_TRUE(store().describe(deep, &saved));
    EXPECT_EQ(send(MSG_WD_SAVE, &saved), 0);
    restart();
    EXPECT_NE(store().open(path), nullptr) << "the deepest document the store writes it reads";

    writeFile("<Root><unclosed></Root>");
    restart();
    EXPECT_EQ(openDocument(), nullptr);
}

TEST_F(Store, SavingRewritesOnlyAChangedDocument) {
    const QByteArray original = "<Skin><!-- kept --><PICT A='1'/></Skin>";
    writeFile(original);
    void* doc = store().open(path);
    ASSERT_NE(doc, nullptr);
    const coreSzNode n = nodeRecord(doc);
    EXPECT_EQ(send(MSG_WD_SAVE, &n), 0);
    EXPECT_EQ(readFile(), original);
    ASSERT_EQ(write(store().child(store().root(doc), "PICT"), {{"B", "2"}}), 0);
    EXPECT_EQ(send(MSG_WD_SAVE, &n), 0);
    EXPECT_TRUE(readFile().contains("<PICT A=\"1\" B=\"2\"/>"));
}

}  // namespace
