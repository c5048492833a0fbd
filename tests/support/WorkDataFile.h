// A work-data file in a temporary folder and an emulator that can be restarted over it,
// for tests of the emulator's store (programs that link the emulator).
#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <cstring>
#include <memory>

#include "host/Emulator.h"

struct WorkDataFile : ::testing::Test {
    QTemporaryDir dir;
    QString path = dir.filePath("layout.xml");
    std::unique_ptr<host::Emulator> emulator{new host::Emulator};

    static int send(unsigned int message, const void* p1, const void* p2 = nullptr) {
        return host::Host::callback(nullptr, message, reinterpret_cast<std::intptr_t>(p1),
                                    reinterpret_cast<std::intptr_t>(p2));
    }
    // 3163 as the module sends it: the document's handle, null when the store refuses.
    void* openDocument() {
        coreOpenWorkData request{};
        std::memcpy(request.path, path.utf16(), path.size() * sizeof(coreWChar));
        request.handle = reinterpret_cast<void*>(1);
        const int answer = send(MSG_WD_OPEN, &request);
        EXPECT_EQ(answer, request.handle ? 0 : 1);
        return request.handle;
    }
    void restart() {
        emulator.reset();
        emulator.reset(new host::Emulator);
    }
    void writeFile(const QByteArray& bytes) {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    QByteArray readFile() const {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};
