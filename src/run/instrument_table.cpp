#include "run/instrument_table.h"

#include <array>

#include "run/adf_indicator.h"
#include "run/altimeter.h"
#include "run/attitude_indicator.h"
#include "run/audio_panel.h"
#include "run/autopilot_unit.h"
#include "run/clocks.h"
#include "run/com_nav_radio.h"
#include "run/dme_indicators.h"
#include "run/engine_cluster_gauge.h"
#include "run/heading_indicator.h"
#include "run/needle_gauges.h"
#include "run/radio_magnetic_indicator.h"
#include "run/radios.h"
#include "run/transponders.h"
#include "run/trim_wheel.h"
#include "run/unsupported_gauges.h"
#include "run/vor_indicators.h"

namespace run {

namespace {

constexpr InstrumentRow needle_row(int code) {
    return {.code = code,
            .set_up = set_up_needle_gauge,
            .start = forget_needle_gauge,
            .tick = tick_needle_gauge,
            .forget = forget_needle_gauge};
}

// In code order. A type whose family does not stand yet has a row without functions: it takes part in the lights and
// does nothing else.
constexpr std::array kInstruments = {
    needle_row(1),
    needle_row(2),
    needle_row(3),
    needle_row(4),
    needle_row(5),
    needle_row(6),
    InstrumentRow{.code = 7},
    InstrumentRow{.code = 8, .set_up = set_up_engine_cluster_gauge, .tick = tick_engine_cluster_gauge},
    InstrumentRow{.code = 10, .set_up = set_up_bus_io_module},
    InstrumentRow{.code = 101,
                  .first_tag = 'P',
                  .second_tag = 'P',
                  .set_up = set_up_altimeter,
                  .tick = tick_altimeter,
                  .report = report_altimeter},
    InstrumentRow{.code = 103, .tick = tick_attitude_indicator},
    InstrumentRow{.code = 104,
                  .set_up = set_up_boeing_clock,
                  .start = forget_boeing_clock,
                  .tick = tick_boeing_clock,
                  .forget = forget_boeing_clock,
                  .report = report_boeing_clock},
    InstrumentRow{.code = 105,
                  .set_up = set_up_heading_indicator,
                  .tick = tick_heading_indicator,
                  .report = report_heading_indicator},
    InstrumentRow{.code = 106,
                  .lights = LightBus::avionics,
                  .first_tag = 'C',
                  .second_tag = 'A',
                  .set_up = set_up_vor1_indicator,
                  .start = forget_vor1_indicator,
                  .tick = tick_vor1_indicator,
                  .forget = forget_vor1_indicator,
                  .report = report_vor1_indicator},
    InstrumentRow{.code = 107,
                  .lights = LightBus::avionics,
                  .first_tag = 'C',
                  .second_tag = 'A',
                  .set_up = set_up_vor2_indicator,
                  .start = forget_vor2_indicator,
                  .tick = tick_vor2_indicator,
                  .forget = forget_vor2_indicator,
                  .report = report_vor2_indicator},
    InstrumentRow{.code = 108,
                  .lights = LightBus::avionics,
                  .first_tag = 'C',
                  .second_tag = 'A',
                  .set_up = set_up_adf_indicator,
                  .tick = tick_adf_indicator,
                  .forget = forget_adf_indicator,
                  .report = report_adf_indicator},
    InstrumentRow{.code = 109, .set_up = set_up_cessna_clock, .tick = tick_cessna_clock, .forget = forget_cessna_clock},
    InstrumentRow{.code = 110,
                  .lights = LightBus::avionics,
                  .first_tag = 'A',
                  .second_tag = 'S',
                  .set_up = set_up_radio,
                  .tick = tick_radio,
                  .report = report_radio},
    InstrumentRow{.code = 111,
                  .lights = LightBus::avionics,
                  .first_tag = 'A',
                  .second_tag = 'S',
                  .set_up = set_up_radio,
                  .tick = tick_radio,
                  .report = report_radio},
    InstrumentRow{.code = 112,
                  .lights = LightBus::avionics,
                  .first_tag = 'X',
                  .second_tag = 'Y',
                  .set_up = set_up_transponder,
                  .tick = tick_ctl30_transponder,
                  .report = report_ctl30_transponder},
    InstrumentRow{.code = 113,
                  .lights = LightBus::avionics,
                  .first_tag = 'S',
                  .second_tag = 'D',
                  .set_up = set_up_dme,
                  .tick = tick_dme,
                  .report = report_dme},
    InstrumentRow{.code = 114,
                  .lights = LightBus::avionics,
                  .first_tag = 'X',
                  .second_tag = 'Y',
                  .set_up = set_up_transponder,
                  .tick = tick_737_transponder,
                  .report = report_737_transponder},
    InstrumentRow{.code = 120,
                  .lights = LightBus::avionics,
                  .first_tag = 'C',
                  .second_tag = 'S',
                  .set_up = set_up_com_nav_radio,
                  .tick = tick_com_nav_radio,
                  .report = report_com_nav_radio},
    InstrumentRow{.code = 121,
                  .lights = LightBus::avionics,
                  .first_tag = 'A',
                  .second_tag = 'S',
                  .set_up = set_up_radio,
                  .tick = tick_radio,
                  .report = report_radio},
    InstrumentRow{.code = 122,
                  .lights = LightBus::avionics,
                  .first_tag = 'X',
                  .second_tag = 'F',
                  .set_up = set_up_transponder,
                  .tick = tick_bk_transponder,
                  .report = report_bk_transponder},
    InstrumentRow{.code = 123,
                  .lights = LightBus::avionics,
                  .first_tag = 'S',
                  .second_tag = 'D',
                  .set_up = set_up_bk_dme,
                  .tick = tick_bk_dme,
                  .report = report_bk_dme},
    InstrumentRow{.code = 124,
                  .lights = LightBus::avionics,
                  .first_tag = 'A',
                  .second_tag = 'V',
                  .set_up = set_up_autopilot,
                  .start = start_autopilot,
                  .tick = tick_autopilot,
                  .forget = forget_autopilot,
                  .report = report_autopilot},
    InstrumentRow{.code = 125,
                  .lights = LightBus::avionics,
                  .set_up = set_up_audio_panel,
                  .tick = tick_audio_panel,
                  .forget = forget_audio_panel,
                  .report = report_audio_panel},
    InstrumentRow{.code = 130,
                  .lights = LightBus::avionics,
                  .set_up = set_up_radio_magnetic_indicator,
                  .tick = tick_radio_magnetic_indicator,
                  .forget = forget_radio_magnetic_indicator},
    InstrumentRow{.code = 140,
                  .first_tag = 'P',
                  .second_tag = 'T',
                  .set_up = set_up_trim_wheel,
                  .tick = tick_trim_wheel,
                  .forget = forget_trim_wheel,
                  .report = report_trim_wheel},
};

constexpr std::size_t kCodes = 256;
constexpr std::uint8_t kNoRow = 255;

// Row number by type code, so that the tick finds a row without a search.
constexpr std::array<std::uint8_t, kCodes> make_index() {
    std::array<std::uint8_t, kCodes> index{};
    index.fill(kNoRow);
    for (std::size_t row = 0; row < kInstruments.size(); ++row) {
        index[static_cast<std::size_t>(kInstruments[row].code)] = static_cast<std::uint8_t>(row);
    }
    return index;
}
constexpr std::array<std::uint8_t, kCodes> kRowOfCode = make_index();

bool bears_tag(const bus::GaugeReport& report, int byte_number, char tag) {
    return tag == 0 || report.byte(byte_number) == static_cast<std::uint8_t>(tag);
}

}  // namespace

std::span<const InstrumentRow> instrument_rows() {
    return kInstruments;
}

const InstrumentRow* find_instrument(int code) {
    if (code < 0 || static_cast<std::size_t>(code) >= kCodes) {
        return nullptr;
    }
    const std::uint8_t row = kRowOfCode[static_cast<std::size_t>(code)];
    return row == kNoRow ? nullptr : &kInstruments[row];
}

const InstrumentRow* match_report(const bus::GaugeReport& report) {
    const int code = report.GaugeType();
    if (code < kFirstReportingType || code > kLastReportingType) {
        return nullptr;
    }
    const InstrumentRow* const row = find_instrument(code);
    if (row == nullptr || !bears_tag(report, bus::kReportFirstTagByte, row->first_tag) ||
        !bears_tag(report, bus::kReportSecondTagByte, row->second_tag)) {
        return nullptr;
    }
    return row;
}

}  // namespace run
