#include "BenchMain.h"

#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace mirel::bench {
namespace {

struct Floor {
    std::string measured, floor;
    double bound; // 0: no target, the ratio is only reported
};

std::vector<Floor>& floors() {
    static std::vector<Floor> f;
    return f;
}

// Keeps the console output and remembers each run's time per iteration.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs)
            if (r.run_type == Run::RT_Iteration || r.aggregate_name == "mean")
                times[nameOf(r)] = {r.GetAdjustedRealTime(),
                                    benchmark::GetTimeUnitString(r.time_unit)};
    }
    std::map<std::string, std::pair<double, const char*>> times;

private:
    // "BM_Name", or "BM_Name/4" for one size of a sweep, so each size has
    // its own ratio.
    static std::string nameOf(const Run& r) {
        const std::string& args = r.run_name.args;
        return args.empty() ? r.run_name.function_name : r.run_name.function_name + '/' + args;
    }
};

} // namespace

int registerFloor(const char* measured, const char* floor, double bound) {
    // A size in the name ("BM_Name/4") reaches here with the blanks the
    // formatter puts around the slash.
    const auto bare = [](std::string s) {
        std::erase(s, ' ');
        return s;
    };
    floors().push_back({bare(measured), bare(floor), bound});
    return 0;
}

} // namespace mirel::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    mirel::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\n%-34s %14s %14s %9s\n", "measured vs floor (same run)", "measured", "floor",
                "ratio");
    for (const auto& [m, f, bound] : mirel::bench::floors()) {
        const auto mi = reporter.times.find(m);
        const auto fi = reporter.times.find(f);
        if (mi == reporter.times.end() || fi == reporter.times.end())
            continue;
        const double ratio = mi->second.first / fi->second.first;
        std::printf("%-34s %11.3f %-2s %11.3f %-2s %8.2fx", m.c_str(), mi->second.first,
                    mi->second.second, fi->second.first, fi->second.second, ratio);
        // "bound" marks the lines `make bench` gathers into its closing summary.
        if (bound > 0)
            std::printf("  bound %5.2fx %s", bound, ratio <= bound ? "pass" : "FAIL");
        // A path may be held against more than one floor: name the one used.
        std::printf("  vs %s\n", f.c_str());
    }
    benchmark::Shutdown();
    return 0;
}
