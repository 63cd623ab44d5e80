// What the bare firmware model costs: commands a second without any road to it.
#include <benchmark/benchmark.h>

#include <array>

#include "api/src/interface/wire/buffer.h"
#include "sim/firmware/factory.h"

namespace qrx::sim {

namespace {

// The time of one vendor read of a page on the default scenario.
void BM_ModelVendorRead(benchmark::State& state, QRX_U32 cdw12)
{
    auto made = make_scenario("raid");
    if (!made) {
        state.SkipWithError(made.error().c_str());
        return;
    }
    Machine& machine = **made;
    std::array<QRX_U8, wire::kPageSize> page{};
    nvme_admin_cmd command{};
    command.opcode = 0xE2;
    command.cdw12 = cdw12;
    command.data_len = wire::kPageSize;
    for (auto _ : state) {
        const Completion completion = machine.admin({}, command, page);
        benchmark::DoNotOptimize(completion);
        benchmark::DoNotOptimize(page.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(page.size()));
}
BENCHMARK_CAPTURE(BM_ModelVendorRead, adapter_info, 0x00E0);
BENCHMARK_CAPTURE(BM_ModelVendorRead, pd_info, 0x00E1);
BENCHMARK_CAPTURE(BM_ModelVendorRead, vd_info, 0x00E2);
BENCHMARK_CAPTURE(BM_ModelVendorRead, ns_list, 0x00E5);
BENCHMARK_CAPTURE(BM_ModelVendorRead, hba_info, 0x0FE0);

void BM_ModelIdentifyController(benchmark::State& state)
{
    auto made = make_scenario("raid");
    if (!made) {
        state.SkipWithError(made.error().c_str());
        return;
    }
    std::array<QRX_U8, wire::kPageSize> page{};
    nvme_admin_cmd command{};
    command.opcode = 0x06;
    command.cdw10 = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize((*made)->admin({}, command, page));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ModelIdentifyController);

// A start of the simulator: a scenario's text read, and a state file's written.
void BM_ModelLoadAndSave(benchmark::State& state)
{
    for (auto _ : state) {
        const auto made = make_scenario("gallery");
        benchmark::DoNotOptimize(save_machine(**made));
    }
}
BENCHMARK(BM_ModelLoadAndSave)->Unit(benchmark::kMicrosecond);

}  // namespace

}  // namespace qrx::sim
