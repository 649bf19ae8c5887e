// Benchmark driver: runs every case, then prints for each group the ratio of
// each peer's time to ours. Cases are named "Group/kestrel" and "Group/<peer>".
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

#include <kestrel/frame/Frame.h>

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
public:
  void ReportRuns(const std::vector<Run> &runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run &r : runs) {
      // With repetitions, the median of them stands for the case.
      const bool median = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
      if ((r.run_type != Run::RT_Iteration && !median) || r.error_occurred) continue;
      std::string name = r.run_name.function_name;
      size_t slash = name.rfind('/');
      if (slash == std::string::npos) continue;
      auto &side = groups_[name.substr(0, slash)][name.substr(slash + 1)];
      if (median || !side.median) side = {r.GetAdjustedRealTime(), median};
    }
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\nRatios (peer time / kestrel time; above 1 means kestrel is faster)\n");
    for (const auto &[group, sides] : groups_) {
      auto ours = sides.find("kestrel");
      if (ours == sides.end() || ours->second.time <= 0) continue;
      for (const auto &[side, t] : sides)
        if (side != "kestrel")
          std::printf("  %-40s vs %-12s %8.2f\n", group.c_str(), side.c_str(),
                      t.time / ours->second.time);
    }
  }

private:
  struct Time {
    double time = 0;
    bool median = false;
  };
  std::map<std::string, std::map<std::string, Time>> groups_;
};

} // namespace

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  kestrel::Initialize();
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  kestrel::Finalize();
  benchmark::Shutdown();
  return 0;
}
