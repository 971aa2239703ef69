#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tables/yoke_settings.h"

namespace tables {

inline constexpr int kFunctionRows = 301;
inline constexpr int kStandardFunctionLast = 50;  // rows 1..50 are the standard functions, the rest is configurable
inline constexpr int kGaugeTypeRows = 128;
inline constexpr int kGaugeRows = 256;
inline constexpr int kClusterRows = 11;
inline constexpr int kClassRows = 12;
inline constexpr int kPlateItems = 26;
inline constexpr int kStoredPlateItems = 25;
inline constexpr int kFirstPlatePoint = 4;
inline constexpr int kLastPlatePoint = 24;

// Types of FunctionType and FunctionDataType that the program itself acts on.
inline constexpr std::uint8_t kFunctionTypeMacro = 6;
enum DataType : std::uint8_t {
    kByte = 0,
    kInteger = 1,
    kUnsignedInteger = 2,
    kLong = 3,
    kDouble = 4,
    kBcd = 5,
    kNotUsed = 6,
};

// Where a value lives in the simulator and how to scale it. An empty FunctionShortName marks a free row.
struct FunctionRow {
    std::string FunctionShortName;
    std::string FunctionFullName;
    std::int16_t FunctionNumber = 0;
    std::uint8_t FunctionType = 0;
    std::uint8_t FunctionClass = 0;
    std::int32_t FunctionOffset1 = 0;
    std::int32_t FunctionOffset2 = 0;
    std::int32_t FunctionOffset3 = 0;
    std::int32_t FunctionOffset4 = 0;
    float FunctionAdd = 0;
    std::uint8_t FunctionDataType = 0;
    std::uint8_t FunctionByte5 = 0;
    float FunctionMultiplier = 0;
    float FunctionDivider = 0;
    float FunctionMinimum = 0;
    float FunctionMaximum = 0;
    std::int16_t FunctionMask = 0;
    std::uint8_t FunctionByte1 = 0;
    std::uint8_t FunctionByte2 = 0;
    std::uint8_t FunctionByte3 = 0;
    std::uint8_t FunctionByte4 = 0;

    bool operator==(const FunctionRow&) const = default;
};

struct GaugeTypeRow {
    std::int16_t GaugeTypeCode = 0;
    std::string GaugeTypeName;

    bool operator==(const GaugeTypeRow&) const = default;
};

// No write port: the start value of GaugeWritePort1..4.
inline constexpr std::uint16_t kNoWritePort = 65535;

// Which device on the bus shows which functions through which plates, indexed by gauge id. GaugeType 0 marks a free
// row.
struct GaugeRow {
    std::uint8_t GaugeBus = 0;
    std::uint8_t GaugeType = 0;
    std::uint8_t GaugeModel = 0;
    std::uint8_t GaugeVersion = 0;
    std::uint8_t GaugeClass1 = 0;
    std::int16_t GaugeFunction1 = 0;
    std::uint8_t GaugeSeqNr1 = 0;
    std::int16_t GaugePlate1 = 0;
    std::uint8_t GaugeClass2 = 0;
    std::int16_t GaugeFunction2 = 0;
    std::uint8_t GaugeSeqNr2 = 0;
    std::int16_t GaugePlate2 = 0;

    // Run-time fields, not stored.
    std::uint8_t GaugeState = 0;  // 0 = not asked since the last search, 1 = asked, no reply, 2 = replied
    float GaugeRunIndex = 0;
    std::uint16_t GaugeWritePort1 = 0;
    std::uint16_t GaugeWritePort2 = 0;
    std::uint16_t GaugeWritePort3 = 0;
    std::uint16_t GaugeWritePort4 = 0;

    bool operator==(const GaugeRow&) const = default;
};

// Turns a value into a needle position (0..1079, 3 steps a degree). Items: 0 class, 1 number of points, 2 minimum,
// 3 maximum, 4..24 calibration points in ascending order, 25 not stored.
struct Plate {
    std::string PlateName;
    std::array<double, kPlateItems> PlateValue{};
    std::array<std::int16_t, kPlateItems> PlatePosition{};
};

struct ClusterRow {
    std::int16_t ClusterSetting1 = 0;
    std::int16_t ClusterSetting2 = 0;
    std::int16_t ClusterSetting3 = 0;

    bool operator==(const ClusterRow&) const = default;
};

// One assigned input or output of an IO module. IomDeviceId 0 marks a free row.
struct IomRow {
    std::int16_t IomDeviceId = 0;
    std::int16_t IomSignalType = 0;
    std::int16_t IomSignalNumber = 0;
    std::int16_t IomFunctionClass = 0;
    std::int16_t IomFunction = 0;
    std::uint8_t IomSeqNr = 0;
    float IomValueA = 0;
    float IomValueB = 0;
    std::int16_t IomValueC = 0;
    std::int16_t IomMode = 0;
    double IomLastValue = 0;
    std::int16_t IomKeyOffOn = 0;
    std::int16_t IomKeyOnOff = 0;
    std::int16_t IomSimPort = 0;  // run-time, not stored
};

// Items of the "General" line that have no meaning for the program and are written back as they were read.
struct ConfigReserved {
    std::int16_t ConfigReserved1 = 0;
    std::int16_t ConfigReserved2 = 0;
    std::string ConfigReservedText1;
    std::string ConfigReservedText2;
    std::string ConfigReservedText3;
    std::string ConfigReservedText4;
    std::string ConfigReservedText5;
    std::string ConfigReservedText6;
};

// All that the program knows of a cockpit. Rows are indexed by number and never move; one thread uses them.
struct CoreTables {
    std::array<FunctionRow, kFunctionRows> functions;
    std::array<std::string, kClassRows> classes;  // ComboClass; filled by SetConstants, not stored
    std::array<GaugeTypeRow, kGaugeTypeRows> gauge_types;
    std::array<GaugeRow, kGaugeRows> gauges;
    std::vector<Plate> plates;  // PlateCount rows
    std::array<ClusterRow, kClusterRows> cluster;
    // IomRowCount is the count of the file; the table holds one row more.
    std::int16_t IomRowCount = 0;
    std::vector<IomRow> iom;

    // Port numbers, 0 = none.
    std::int16_t GaugeBusPort1 = 0;
    std::int16_t GaugeBusPort2 = 0;
    std::int16_t GaugeBusPort3 = 0;
    std::int16_t GaugeBusPort4 = 0;
    std::int16_t ClusterPort = 0;
    std::int16_t IomPort1 = 0;
    std::int16_t IomPort2 = 0;
    std::int16_t YokePort1 = 0;
    std::int16_t YokePort2 = 0;

    std::int16_t ProcessInterval = 0;  // ms; 0 means 40
    std::int16_t LightMask = 0;
    std::int16_t LightMode = 0;
    ConfigReserved reserved;

    YokeCommonSettings yoke_common;
    std::array<YokeSettings, 2> yokes;  // 0 = yoke 1, 1 = yoke 2

    // Light state and cycle values, shared by the run; not stored.
    std::int16_t LightSwitches = 0;
    std::int16_t LightsOn = 0;
    std::int16_t LightChange = 0;
    std::int16_t MainBusLightByte = 0;
    std::int16_t AvionicsLightByte = 0;
    float MainBusVoltage = 0;
    float AvionicsBusVoltage = 0;
    float MainBusVoltageSeen = 0;
    float AvionicsBusVoltageSeen = 0;
    std::int16_t MacroValue = 0;
    std::int16_t DimmerSeen = 0;
    float AircraftBank = 0;
    float AircraftPitch = 0;
    float CurrentAltitude = 0;
    float AircraftVS = 0;
    float AircraftIAS = 0;
    float AircraftHeading = 0;
    float AircraftCompass = 0;
    float AirPressureHg = 0;

    // The gauge bus: outgoing bytes, the one pending frame, the query handshake, the last report.
    std::string TxBuffer;
    std::int16_t TxPending = 0;
    std::int16_t ReplyReceived = 0;
    std::int16_t ReplyWait = 0;  // seconds
    std::string LastReply;
    std::int16_t CurrentGaugeID = 0;

    // The configuration in force.
    std::string ConfigFileName;
    std::int16_t ConfigFormat = 10;
    std::int16_t ConfigError = 0;  // 0 good, 1 refused or failed
    std::string ConfigHeader;
    std::int16_t ConfigChanged = 0;
    std::int16_t ConfigureFromRunPanel = 0;  // 1 = the configuration panel was entered from the run panel
    std::int16_t AutoStartDelay = 10;        // seconds
    std::string ProgramName;

    std::int16_t PlateCount() const { return static_cast<std::int16_t>(plates.size()); }
};

// Fills the class list and rows 1..30 of the gauge type table; rows above 30 stay.
void SetConstants(CoreTables& tables);

// The name of a gauge type code, " Unknown " for a code that no row has.
std::string gauge_type_name(const CoreTables& tables, int code);

enum class ShiftDirection { right = 0, left = 1 };

// Left: value times 2^bits, rounded to a whole number (a Failure "Overflow" when it does not fit 32 bits).
// Right: value divided by 2^bits, truncated toward 0.
std::int32_t BitShift(std::int32_t value, int bits, ShiftDirection direction);

// Moves a gauge row, all its fields, to another id and clears the old row. Both ids are 1..255.
void move_gauge_row(CoreTables& tables, int old_id, int new_id);

}  // namespace tables
