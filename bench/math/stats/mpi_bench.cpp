// Scaling of the model build over MPI processes: the MPI example run by mpirun on 1, 2 and
// 4 ranks of this machine, each rank drawing and summarising its stripe of the same
// generated data set, rank 0 joining and fitting. The example reports its own cases per
// second, MPI's start to the end of the fit; the counters give each, the speed-up over one
// rank and the efficiency (speed-up over ranks). The driver prints them as a table at the
// end of the report.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr long long kCases = 2000000;
constexpr int kPredictors = 50;

#ifdef ZR_BENCH_MPI_EXE

// The cases per second the example prints on ranks processes; 0 with its output in error
// when it fails.
double RunRanks(int ranks, std::string & error) {
  // mpirun refuses root unless told; the ranks share this machine's processors.
  const std::string command =
      std::string("'") + ZR_BENCH_MPIEXEC + "' " + (geteuid() == 0 ? "--allow-run-as-root " : "") +
      "--oversubscribe -np " + std::to_string(ranks) + " '" + ZR_BENCH_MPI_EXE + "' --generate " +
      std::to_string(kCases) + " " + std::to_string(kPredictors) + " 2>&1";
  FILE * pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) {
    error = "cannot run " + command;
    return 0.0;
  }
  std::string output;
  char buffer[512];
  while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) output += buffer;
  const int status = pclose(pipe);
  const std::string key = "cases_per_second ";
  const std::size_t at = output.find(key);
  const double figure = at == std::string::npos ? 0.0 : std::atof(output.c_str() + at + key.size());
  if (status != 0 || !(figure > 0.0)) {
    error = "zr_mpi on " + std::to_string(ranks) + " ranks failed: " + output;
    return 0.0;
  }
  return figure;
}

void MpiBuildScaling(benchmark::State & state) {
  if (access(ZR_BENCH_MPIEXEC, X_OK) != 0) {
    state.SkipWithError("mpirun was not found: apt-get install openmpi-bin");
    return;
  }
  double rate[3] = {0.0, 0.0, 0.0};
  const int ranks[3] = {1, 2, 4};
  std::string error;
  for (auto _ : state) {
    for (int k = 0; k < 3; ++k) {
      rate[k] = RunRanks(ranks[k], error);
      if (rate[k] <= 0.0) {
        state.SkipWithError(error.c_str());
        return;
      }
    }
  }
  for (int k = 0; k < 3; ++k) {
    const std::string n = std::to_string(ranks[k]);
    state.counters["cases_per_s_R" + n] = rate[k];
    state.counters["speedup_R" + n] = rate[k] / rate[0];
    state.counters["efficiency_R" + n] = rate[k] / rate[0] / ranks[k];
  }
}

#else

void MpiBuildScaling(benchmark::State & state) {
  state.SkipWithError("MPI was not found: apt-get install libopenmpi-dev openmpi-bin");
}

#endif

// One run of each rank count: each is a few seconds of generating and summing.
BENCHMARK(MpiBuildScaling)->Unit(benchmark::kSecond)->UseRealTime()->Iterations(1);

}  // namespace
