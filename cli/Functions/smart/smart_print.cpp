// `smart`: the log in words.
#include <iterator>

#include "cli/Functions/smart/smart.h"
#include "cli/Public/frame/report.h"

namespace {

using qrx::print;

constexpr char kTitle[] = "NVME SMART Information";
constexpr int kWidth = 54;  // of the labels

void counter(const char* label, const QRX_U8 (&value)[16])
{
    print("%-*s: %.0Lf\n", kWidth, label, int128_to_double(value));
}

void dataUnits(const char* label, const QRX_U8 (&value)[16])
{
    // A unit is a thousand sectors of 512 bytes.
    const long double units = int128_to_double(value);
    print("%-*s: %.0Lf (%.0Lf GB)\n", kWidth, label, units, units * 512 / 1000 / 1000);
}

void number(const char* label, QRX_U32 value)
{
    print("%-*s: %d\n", kWidth, label, static_cast<int>(value));
}

}  // namespace

long double int128_to_double(const QRX_U8 (&data)[16])
{
    long double value = 0;
    for (auto byte = std::rbegin(data); byte != std::rend(data); ++byte) {
        value = value * 256 + *byte;
    }
    return value;
}

void qrx::showSmart(const char* title, const _qrx_smart_log& smart, bool all, bool calculates)
{
    const auto units = calculates ? dataUnits : counter;
    const int kelvin = smart.temperature[0] | smart.temperature[1] << 8;
    print("\n%s :\n", title);
    print("Notice: Please refer to NVMe Specific v1.3, Get Log Page - SMART / Health Information Log definition\n\n");
    print("%-*s: 0x%02x\n", kWidth, "Critical Warning", smart.critical_warning);
    if (kelvin == 0 && !calculates) {
        number("Composite Temperature", 0);
    } else {
        print("%-*s: %d Celsius\n", kWidth, "Composite Temperature", kelvin - 273);
    }
    print("%-*s: %u%%\n", kWidth, "Available Spare", smart.avail_spare);
    print("%-*s: %u%%\n", kWidth, "Available Spare Threshold", smart.spare_thresh);
    print("%-*s: %u%%\n", kWidth, "Percentage Used", smart.percent_used);
    if (all) {
        units("Data Units Read", smart.data_units_read);
        units("Data Units Written", smart.data_units_written);
        counter("Host Read Commands", smart.host_reads);
        counter("Host Write Commands", smart.host_writes);
        counter("Controller Busy Time", smart.ctrl_busy_time);
        counter("Power Cycles", smart.power_cycles);
        counter("Power On Hours", smart.power_on_hours);
        counter("Unsafe Shutdowns", smart.unsafe_shutdowns);
        counter("Media and Data Integrity Errors", smart.media_errors);
        counter("Num Err Log Entries", smart.num_err_log_entries);
        number("Warning Composite Temperature Time", smart.warning_temp_time);
        number("Critical Composite Temperature Time", smart.critical_comp_time);
        number("Thermal Management Temperature 1 Transition Count", smart.tmt1tc);
        number("Thermal Management Temperature 2 Transition Count", smart.tmt2tc);
        number("Total Time For Thermal Management Temperature 1", smart.ttftmt1);
        number("Total Time For Thermal Management Temperature 2", smart.ttftmt2);
    }
    print("\n");
}

void showLogSmartInfo(const _qrx_smart_log& smart, int hbaMode)
{
    qrx::showSmart(kTitle, smart, hbaMode == 0, true);
}

void showLogSmartInfo_no_calculator(const _qrx_smart_log& smart, int hbaMode)
{
    qrx::showSmart(kTitle, smart, hbaMode == 0, false);
}
