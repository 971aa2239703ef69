#include "tables/config_sections.h"

#include <algorithm>
#include <type_traits>

namespace tables {

namespace {

// Each record is described once, by a function that hands its fields to `each` in file order; reading and writing both
// walk it. `Row` is the record, const when it is written.

template <typename General, typename Each>
void general_items(General& general, Each&& each) {
    each(general.ClusterPort);
    each(general.GaugeBusPort1);
    each(general.GaugeBusPort2);
    each(general.GaugeBusPort3);
    each(general.GaugeBusPort4);
    each(general.IomPort1);
    each(general.IomPort2);
    each(general.ProcessInterval);
    each(general.reserved.ConfigReserved1);
    each(general.reserved.ConfigReserved2);
    each(general.LightMask);
    each(general.LightMode);
    each(general.reserved.ConfigReservedText1);
    each(general.reserved.ConfigReservedText2);
    each(general.reserved.ConfigReservedText3);
    each(general.reserved.ConfigReservedText4);
    each(general.reserved.ConfigReservedText5);
    each(general.reserved.ConfigReservedText6);
    each(general.IomPort1);  // stands twice
}

template <typename General, typename Each>
void old_general_items(General& general, Each&& each) {
    each(general.ClusterPort);
    each(general.GaugeBusPort1);
    each(general.ProcessInterval);
    each(general.reserved.ConfigReserved1);
    each(general.LightMask);
    each(general.LightMode);
    each(general.reserved.ConfigReservedText3);
    each(general.reserved.ConfigReservedText4);
    each(general.reserved.ConfigReservedText1);
    each(general.reserved.ConfigReservedText2);
    each(general.reserved.ConfigReservedText5);
    each(general.reserved.ConfigReservedText6);
    each(general.reserved.ConfigReserved2);
    each(general.IomPort1);
}

template <typename Row, typename Each>
void iom_items(Row& row, Each&& each) {
    each(row.IomDeviceId);
    each(row.IomSignalType);
    each(row.IomSignalNumber);
    each(row.IomFunctionClass);
    each(row.IomFunction);
    each(row.IomSeqNr);
    each(row.IomValueA);
    each(row.IomValueB);
    each(row.IomValueC);
    each(row.IomMode);
    each(row.IomLastValue);
    each(row.IomKeyOffOn);
    each(row.IomKeyOnOff);
}

template <typename Row, typename Each>
void function_items(Row& row, Each&& each) {
    each(row.FunctionShortName);
    each(row.FunctionFullName);
    each(row.FunctionNumber);
    each(row.FunctionType);
    each(row.FunctionClass);
    each(row.FunctionOffset1);
    each(row.FunctionOffset2);
    each(row.FunctionOffset3);
    each(row.FunctionOffset4);
    each(row.FunctionAdd);
    each(row.FunctionDataType);
    each(row.FunctionByte5);
    each(row.FunctionMultiplier);
    each(row.FunctionDivider);
    each(row.FunctionMinimum);
    each(row.FunctionMaximum);
    each(row.FunctionMask);
    each(row.FunctionByte1);
    each(row.FunctionByte2);
    each(row.FunctionByte3);
    each(row.FunctionByte4);
}

// Without GaugeBus, which the old format does not have.
template <typename Row, typename Each>
void old_gauge_items(Row& row, Each&& each) {
    each(row.GaugeType);
    each(row.GaugeModel);
    each(row.GaugeVersion);
    each(row.GaugeClass1);
    each(row.GaugeFunction1);
    each(row.GaugeSeqNr1);
    each(row.GaugeClass2);
    each(row.GaugeFunction2);
    each(row.GaugeSeqNr2);
    each(row.GaugePlate1);
    each(row.GaugePlate2);
}

template <typename Row, typename Each>
void gauge_items(Row& row, Each&& each) {
    each(row.GaugeBus);
    old_gauge_items(row, each);
}

template <typename Row, typename Each>
void cluster_items(Row& row, Each&& each) {
    each(row.ClusterSetting1);
    each(row.ClusterSetting2);
    each(row.ClusterSetting3);
}

template <typename Common, typename Each>
void yoke_common_items(Common& common, Each&& each) {
    each(common.AutoSwitchForce);
    each(common.AutoSwitchTime);
    each(common.AutoSwitchEnabled);
    each(common.Yoke2MasterAtStartup);
    each(common.ModeMasterToSlaveY1);
    each(common.ModeSlaveToMasterY1);
    each(common.ModeMasterToSlaveY2);
    each(common.ModeSlaveToMasterY2);
    for (std::size_t point = 0; point < common.AileronForceCurve.size(); ++point) {
        each(common.AileronForceCurve[point].airspeed);
        each(common.AileronForceCurve[point].force);
        each(common.ElevatorForceCurve[point].airspeed);
        each(common.ElevatorForceCurve[point].force);
    }
}

// The items of a yoke between its port number and its switch functions.
template <typename Yoke, typename Each>
void yoke_items(Yoke& yoke, Each&& each) {
    each(yoke.StandbyTime);
    each(yoke.StandbyThreshold);
    each(yoke.ForceThresholdAilerons);
    each(yoke.ForceThresholdElevator);
    each(yoke.DeadbandAilerons);
    each(yoke.DeadbandElevator);
    each(yoke.SensitivityCenterAilerons);
    each(yoke.SensitivityCenterElevator);
    each(yoke.CenterCorrectionAilerons);
    each(yoke.CenterCorrectionElevator);
    each(yoke.MaxForceCenterAilerons);
    each(yoke.MaxForceCenterElevator);
    each(yoke.WheelsShockFrequency);
    each(yoke.WheelsShockForce);
    each(yoke.TurbulenceAilerons);
    each(yoke.TurbulenceElevator);
    each(yoke.FFBEffectAilerons);
    each(yoke.FFBEffectElevator);
    each(yoke.MaxForceFFBAilerons);
    each(yoke.MaxForceFFBElevator);
    each(yoke.ElevatorCorrection);
    each(yoke.ShakerAtOverspeed);
    each(yoke.ShakerAtStall);
    each(yoke.AutoSwitchFFBAP);
    each(yoke.SensitivityFollowAPAilerons);
    each(yoke.SensitivityFollowAPElevator);
    each(yoke.MaxForceFollowAPAilerons);
    each(yoke.MaxForceFollowAPElevator);
    each(yoke.SwingAPAilerons);
    each(yoke.SwingAPElevator);
    each(yoke.APOverruleForce);
    each(yoke.APOverruleTime);
    each(yoke.EnableAPOverrule);
    each(yoke.SensitivityServoAilerons);
    each(yoke.SensitivityServoElevator);
    each(yoke.MaxForceServoAilerons);
    each(yoke.MaxForceServoElevator);
    each(yoke.SlaveFollowsMaster);
}

// The items of a yoke behind its switch functions.
template <typename Yoke, typename Each>
void yoke_closing_items(Yoke& yoke, Each&& each) {
    each(yoke.EnableSwitchesAsSlave);
    each(yoke.carried_byte);
    each(yoke.TrimSwitchSpeed);
    for (auto& value : yoke.YokeCalibration) {
        each(value);
    }
}

auto reading(ItemReader& reader) {
    return [&reader](auto& field) { reader.read(field); };
}

auto writing(ItemWriter& writer) {
    return [&writer](const auto& field) { writer.write(field); };
}

auto writing_lines(ItemWriter& writer) {
    return [&writer](const auto& field) { writer.line(field); };
}

// Every item of a row takes a character and a separator at least; a text may be empty.
constexpr std::size_t kLeastIomBytes = 2 * std::size_t{kIomItems};
constexpr std::size_t kLeastPlateBytes = 2 * (2 * std::size_t{kStoredPlateItems});

void read_yoke(ItemReader& reader, CoreTables& tables, std::string_view name, std::int16_t& port, YokeSettings& yoke) {
    if (reader.text() != name) {
        tables.ConfigError = 1;
    }
    reader.enter_section(name);
    const auto read = reading(reader);
    read(port);
    yoke_items(yoke, read);
    auto& switches = yoke.YokeSwitchFunctions;
    switches.fill(0);
    read(switches[0]);
    const int stored = switches[0] < kYokeSwitchMark ? kOldYokeSwitchBytes : kYokeSwitchBytes;
    for (int item = 1; item < stored; ++item) {
        read(switches[static_cast<std::size_t>(item)]);
    }
    yoke_closing_items(yoke, read);
}

void write_yoke(ItemWriter& writer, std::string_view name, std::int16_t port, const YokeSettings& yoke) {
    writer.line(name);
    const auto write = writing_lines(writer);
    write(port);
    yoke_items(yoke, write);
    for (const std::uint8_t function : yoke.YokeSwitchFunctions) {
        write(function);
    }
    yoke_closing_items(yoke, write);
}

void write_general(ItemWriter& writer, const CoreTables& tables) {
    writer.line(kSectionGeneral);
    writer.write(tables.ConfigHeader);
    general_items(tables, writing(writer));
    writer.end_line();
}

void write_iom(ItemWriter& writer, const CoreTables& tables) {
    writer.line(kSectionIom);
    const std::size_t rows =
        std::min(tables.iom.size(), static_cast<std::size_t>(std::max<int>(tables.IomRowCount, 0)));
    writer.line(static_cast<std::int32_t>(rows));
    for (std::size_t row = 0; row < rows; ++row) {
        iom_items(tables.iom[row], writing(writer));
        writer.end_line();
    }
}

void write_functions(ItemWriter& writer, const CoreTables& tables) {
    writer.line(kSectionFunctions);
    for (const FunctionRow& row : tables.functions) {
        function_items(row, writing(writer));
        writer.end_line();
    }
}

void write_gauges(ItemWriter& writer, const CoreTables& tables) {
    writer.line(kSectionGaugeTypes);
    for (const GaugeTypeRow& row : tables.gauge_types) {
        writer.write(row.GaugeTypeCode);
        writer.write(row.GaugeTypeName);
        writer.end_line();
    }
    writer.line(kSectionGauges);
    for (const GaugeRow& row : tables.gauges) {
        gauge_items(row, writing(writer));
        writer.end_line();
    }
}

void write_cluster(ItemWriter& writer, const CoreTables& tables) {
    writer.line(kSectionCluster);
    for (const ClusterRow& row : tables.cluster) {
        cluster_items(row, writing(writer));
        writer.end_line();
    }
}

void write_plates(ItemWriter& writer, const CoreTables& tables) {
    if (tables.plates.empty()) {
        return;
    }
    writer.line(kSectionPlates);
    writer.line(tables.PlateCount());
    for (const Plate& plate : tables.plates) {
        writer.write(plate.PlateName);
        std::for_each_n(plate.PlateValue.begin(), kStoredPlateItems, writing(writer));
        writer.end_line();
        std::for_each_n(plate.PlatePosition.begin(), kStoredPlateItems, writing(writer));
        writer.end_line();
    }
}

}  // namespace

void require_section(ItemReader& reader, std::string_view name) {
    reader.enter_section(name);
    if (reader.text() != name) {
        throw WrongSection();
    }
}

std::int16_t format_of_header(std::string_view header) {
    constexpr std::size_t kPointOfOneDigitVersion = 70;  // character 71
    return header.size() > kPointOfOneDigitVersion && header[kPointOfOneDigitVersion] == '.' ? kOldFormat
                                                                                             : kPresentFormat;
}

void read_general(ItemReader& reader, CoreTables& tables, std::int16_t format) {
    if (format == kOldFormat) {
        old_general_items(tables, reading(reader));
    } else {
        general_items(tables, reading(reader));
    }
}

void read_iom(ItemReader& reader, CoreTables& tables) {
    const std::int16_t rows = reader.count(kLeastIomBytes);
    tables.IomRowCount = rows;
    tables.iom.assign(static_cast<std::size_t>(rows) + 1, IomRow{});
    for (int row = 0; row < rows; ++row) {
        reader.enter_row(row);
        iom_items(tables.iom[static_cast<std::size_t>(row)], reading(reader));
    }
}

void read_functions(ItemReader& reader, CoreTables& tables, int first_row, int last_row) {
    for (int row = first_row; row <= last_row; ++row) {
        reader.enter_row(row);
        function_items(tables.functions.at(static_cast<std::size_t>(row)), reading(reader));
    }
}

void read_gauge_types(ItemReader& reader, CoreTables& tables) {
    for (int row = 0; row < kGaugeTypeRows; ++row) {
        reader.enter_row(row);
        GaugeTypeRow& type = tables.gauge_types[static_cast<std::size_t>(row)];
        reader.read(type.GaugeTypeCode);
        reader.read(type.GaugeTypeName);
    }
}

void read_gauges(ItemReader& reader, CoreTables& tables, std::int16_t format) {
    for (int row = 0; row < kGaugeRows; ++row) {
        reader.enter_row(row);
        GaugeRow& gauge = tables.gauges[static_cast<std::size_t>(row)];
        if (format == kOldFormat) {
            gauge.GaugeBus = 1;
            old_gauge_items(gauge, reading(reader));
        } else {
            gauge_items(gauge, reading(reader));
        }
    }
}

void read_cluster(ItemReader& reader, CoreTables& tables) {
    for (int row = 0; row < kClusterRows; ++row) {
        reader.enter_row(row);
        cluster_items(tables.cluster[static_cast<std::size_t>(row)], reading(reader));
    }
}

void read_plates(ItemReader& reader, CoreTables& tables) {
    const std::int16_t rows = reader.count(kLeastPlateBytes);
    tables.plates.assign(static_cast<std::size_t>(rows), Plate{});
    for (int row = 0; row < rows; ++row) {
        reader.enter_row(row);
        Plate& plate = tables.plates[static_cast<std::size_t>(row)];
        reader.read(plate.PlateName);
        std::for_each_n(plate.PlateValue.begin(), kStoredPlateItems, reading(reader));
        std::for_each_n(plate.PlatePosition.begin(), kStoredPlateItems, reading(reader));
    }
}

void read_yokes(ItemReader& reader, CoreTables& tables) {
    yoke_common_items(tables.yoke_common, reading(reader));
    read_yoke(reader, tables, kSectionYoke1, tables.YokePort1, tables.yokes[0]);
    read_yoke(reader, tables, kSectionYoke2, tables.YokePort2, tables.yokes[1]);
    reader.text();  // "EOF", not looked at
    if (reader.text() != kMarkEnd) {
        throw WrongSection();
    }
    for (YokeSettings& yoke : tables.yokes) {
        derive_yoke_axes(yoke);
    }
}

void write_configuration(ItemWriter& writer, const CoreTables& tables) {
    write_general(writer, tables);
    write_iom(writer, tables);
    write_functions(writer, tables);
    write_gauges(writer, tables);
    write_cluster(writer, tables);
    write_plates(writer, tables);
    writer.line(kSectionGeneralFfb);
    yoke_common_items(tables.yoke_common, writing_lines(writer));
    write_yoke(writer, kSectionYoke1, tables.YokePort1, tables.yokes[0]);
    write_yoke(writer, kSectionYoke2, tables.YokePort2, tables.yokes[1]);
    writer.line(kMarkEof);
    writer.line(kMarkEnd);
}

}  // namespace tables
