#pragma once
// Every benchmark reports its figure beside a floor measured in the same run:
// register the pair with MIREL_FLOOR(measured, floor) and the summary printed
// after the run gives measured / floor.
#include "platform/MessageSink.h"

#include <benchmark/benchmark.h>

namespace mirel::bench {
int registerFloor(const char* measured, const char* floor);

/// Benchmarks show no messages and answer every question No.
struct NullSink final : MessageSink {
    void showMessage(const QString&, const QString&, Icon) override {}
    bool askYesNo(const QString&, const QString&) override { return false; }
};
} // namespace mirel::bench

#define MIREL_FLOOR_CAT2(a, b) a##b
#define MIREL_FLOOR_CAT(a, b) MIREL_FLOOR_CAT2(a, b)
#define MIREL_FLOOR(measured, floor)                                                               \
    static int MIREL_FLOOR_CAT(mirel_floor_, __LINE__) =                                           \
        ::mirel::bench::registerFloor(#measured, #floor)
