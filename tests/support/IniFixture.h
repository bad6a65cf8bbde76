#pragma once
// A temporary folder with a settings store and the INI helpers over it, and a
// message sink that records: the common start of every test that reads or
// writes INI, skin or data files.
#include "TestSupport.h"
#include "platform/SettingsStore.h"
#include "settings/IniHelpers.h"

#include <gtest/gtest.h>

namespace mirel::test {

class IniFixture : public ::testing::Test {
protected:
    TempDir dir;
    RecordingMessageSink sink;
    SettingsStore store{dir.file("config")};
    IniHelpers ini{sink, store};
};

} // namespace mirel::test
