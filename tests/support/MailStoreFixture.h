#pragma once
// A mail store in a fresh program folder with its fixed folders made, a
// settings store and a recording sink: the ground the outgoing-mail tests
// stand on.
#include "TestSupport.h"
#include "mail/store/MailStore.h"
#include "platform/Clock.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <QDir>
#include <gtest/gtest.h>

namespace mirel::test {

class MailStoreFixture : public ::testing::Test {
protected:
    TempDir dir;
    FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(21, 30, 5))};
    RecordingMessageSink sink;
    SettingsStore settings{dir.file("config")};
    IniHelpers ini{sink, settings};
    MailStore store{dir.file("prog"), clock, sink};

    void SetUp() override {
        QDir().mkpath(dir.file("prog"));
        store.MailStoreStartup(ini);
    }
};

} // namespace mirel::test
