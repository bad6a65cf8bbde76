#pragma once
// Every benchmark reports its figure beside a floor measured in the same run:
// register the pair with MIREL_FLOOR(measured, floor), or with
// MIREL_BOUND(measured, floor, bound) when the ratio has a target, and the
// summary printed after the run gives measured / floor (and pass or FAIL).
#include "platform/MessageSink.h"

#include <benchmark/benchmark.h>

namespace mirel::bench {
int registerFloor(const char* measured, const char* floor, double bound = 0);

/// Benchmarks show no messages and answer every question No.
struct NullSink final : MessageSink {
    void showMessage(const QString&, const QString&, Icon) override {}
    bool askYesNo(const QString&, const QString&) override { return false; }
};
} // namespace mirel::bench

#define MIREL_FLOOR_CAT2(a, b) a##b
#define MIREL_FLOOR_CAT(a, b) MIREL_FLOOR_CAT2(a, b)
#define MIREL_FLOOR(measured, floor) MIREL_BOUND(measured, floor, 0)
#define MIREL_BOUND(measured, floor, bound)                                                        \
    static int MIREL_FLOOR_CAT(mirel_floor_, __LINE__) =                                           \
        ::mirel::bench::registerFloor(#measured, #floor, bound)
