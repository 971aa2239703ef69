#include "tables/configuration_store.h"

#include <gtest/gtest.h>

#include <random>

#include "platform/manual/manual_platform.h"
#include "support/failure.h"
#include "tests/support/configuration_text.h"

namespace {

using tables::ConfigurationStore;
using tables::CoreTables;
using test_support::ConfigurationText;
using test_support::with_replaced;

constexpr const char* kFile = "cockpit.cfg";

class ConfigurationStoreTest : public testing::Test {
  protected:
    ConfigurationStoreTest() {
        tables_.ProgramName = tables::kProgramName;
        tables_.ConfigFileName = kFile;
        machine_.boxes.default_answer.answer = platform::Answer::no;
    }

    void load(const std::string& bytes) {
        machine_.boxes.forget_shown();
        machine_.files.contents[kFile] = bytes;
        store_.LoadConfiguration();
    }

    // The one box that loading has shown; empty when there was none.
    std::string shown() const {
        std::string all;
        for (const std::string& text : machine_.boxes.shown()) {
            all += text;
        }
        return all;
    }

    void expect_failed(const std::string& bytes, const std::string& why) {
        load(bytes);
        EXPECT_EQ(tables_.ConfigError, 1) << why;
        ASSERT_EQ(machine_.boxes.shown().size(), 1U) << why;
        EXPECT_EQ(shown().rfind("Error Configuration file: ", 0), 0U);
        EXPECT_NE(shown().find(why), std::string::npos) << shown();
        EXPECT_NE(shown().find("\nFilename: cockpit.cfg"), std::string::npos);
    }

    platform::manual::ManualPlatform machine_;
    CoreTables tables_;
    ConfigurationStore store_{tables_, machine_.files, machine_.boxes, machine_.wall_clock};
};

TEST_F(ConfigurationStoreTest, a_file_of_any_content_is_written_back_byte_for_byte) {
    for (std::uint32_t seed = 1; seed <= 8; ++seed) {
        const int rows = seed == 1 ? 0 : static_cast<int>(seed) * 4;
        const std::string bytes = ConfigurationText(seed).present({rows, rows});
        load(bytes);
        ASSERT_EQ(shown(), "");
        ASSERT_EQ(tables_.ConfigError, 0);
        ASSERT_EQ(tables_.ConfigFormat, 10);
        ASSERT_EQ(tables_.PlateCount(), rows);
        ASSERT_EQ(tables_.IomRowCount, rows);
        ASSERT_EQ(tables_.iom.size(), static_cast<std::size_t>(rows) + 1);
        store_.SaveConfiguration();
        ASSERT_EQ(machine_.files.contents[kFile], bytes) << "seed " << seed;
    }
}

// Line `line` of section `section` (0 = the line behind its name) of a file, replaced.
std::string with_line(const std::string& bytes, const std::string& section, int line, const std::string& text) {
    std::size_t at = bytes.find("\"" + section + "\"\r\n");
    for (int lines = 0; lines <= line; ++lines) {
        at = bytes.find("\r\n", at) + 2;
    }
    return bytes.substr(0, at) + text + bytes.substr(bytes.find("\r\n", at));
}

// The texts of these tables stay empty, so that lines can be counted.
std::string plain_file() {
    CoreTables plain;
    platform::manual::ManualPlatform machine;
    ConfigurationStore store(plain, machine.files, machine.boxes, machine.wall_clock);
    plain.ProgramName = tables::kProgramName;
    plain.iom.resize(3);
    plain.IomRowCount = 2;
    plain.plates.resize(2);
    for (tables::YokeSettings& yoke : plain.yokes) {
        yoke.YokeCalibration = {0, 1023, 0, 1023};
    }
    store.prepare_header("N/A", "N/A");
    plain.ConfigFileName = kFile;
    store.SaveConfiguration();
    return machine.files.contents[kFile];
}

TEST_F(ConfigurationStoreTest, each_item_lands_in_its_field) {
    std::string bytes = plain_file();
    bytes = with_line(bytes, "General", 1,
                      "\",2,3,4,5,6,7,8,9,10,11,12,13,\"t14\",\"t15\",\"t16\",\"t17\",\"t18\",\"t19\",20");
    bytes = with_line(bytes, "IOM", 2, "1000,2,3,4,5,6,7.5,8.5,9,10,11.25,12,13");
    bytes = with_line(bytes, "Functions", 300,
                      "\"s\",\"f\",3,4,5,-6,7,8,66000,1.5,11,12,13.5,14.5,15.5,16.5,17,18,19,20,21");
    bytes = with_line(bytes, "Gaugetypes", 127, "150,\"Row 127\"");
    bytes = with_line(bytes, "Gauges", 255, "1,2,3,4,5,6,7,8,9,10,11,12");
    bytes = with_line(bytes, "Engine Cluster Settings", 10, "1,2,3");
    bytes = with_line(bytes, "Plates", 3, "\"P\",0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24.5");
    bytes = with_line(bytes, "Plates", 4, "0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,-24");
    for (int item = 0; item < 60; ++item) {
        bytes = with_line(bytes, "GeneralFFB", item, std::to_string(item + 1));
    }
    for (int item = 0; item < 65; ++item) {
        const bool mark = item == 39;
        bytes = with_line(bytes, "Yoke2", item, mark ? "255" : std::to_string(item + 1));
    }
    load(bytes);
    ASSERT_EQ(shown(), "");
    const CoreTables& t = tables_;
    EXPECT_EQ(t.ClusterPort, 2);
    EXPECT_EQ(t.GaugeBusPort1, 3);
    EXPECT_EQ(t.GaugeBusPort4, 6);
    EXPECT_EQ(t.IomPort2, 8);
    EXPECT_EQ(t.ProcessInterval, 9);
    EXPECT_EQ(t.reserved.ConfigReserved2, 11);
    EXPECT_EQ(t.LightMask, 12);
    EXPECT_EQ(t.LightMode, 13);
    EXPECT_EQ(t.reserved.ConfigReservedText1, "t14");
    EXPECT_EQ(t.reserved.ConfigReservedText6, "t19");
    EXPECT_EQ(t.IomPort1, 20);
    EXPECT_EQ(t.iom[1].IomDeviceId, 1000);
    EXPECT_EQ(t.iom[1].IomSeqNr, 6);
    EXPECT_EQ(t.iom[1].IomValueB, 8.5F);
    EXPECT_EQ(t.iom[1].IomLastValue, 11.25);
    EXPECT_EQ(t.iom[1].IomKeyOnOff, 13);
    const tables::FunctionRow& function = t.functions[300];
    EXPECT_EQ(function.FunctionFullName, "f");
    EXPECT_EQ(function.FunctionNumber, 3);
    EXPECT_EQ(function.FunctionClass, 5);
    EXPECT_EQ(function.FunctionOffset1, -6);
    EXPECT_EQ(function.FunctionOffset4, 66000);
    EXPECT_EQ(function.FunctionAdd, 1.5F);
    EXPECT_EQ(function.FunctionDataType, 11);
    EXPECT_EQ(function.FunctionByte5, 12);
    EXPECT_EQ(function.FunctionMultiplier, 13.5F);
    EXPECT_EQ(function.FunctionMaximum, 16.5F);
    EXPECT_EQ(function.FunctionMask, 17);
    EXPECT_EQ(function.FunctionByte4, 21);
    EXPECT_EQ(t.gauge_types[127].GaugeTypeCode, 150);
    const tables::GaugeRow& gauge = t.gauges[255];
    EXPECT_EQ(gauge, (tables::GaugeRow{1, 2, 3, 4, 5, 6, 7, 11, 8, 9, 10, 12}));
    EXPECT_EQ(t.cluster[10], (tables::ClusterRow{1, 2, 3}));
    EXPECT_EQ(t.plates[1].PlateName, "P");
    EXPECT_EQ(t.plates[1].PlateValue[24], 24.5);
    EXPECT_EQ(t.plates[1].PlatePosition[24], -24);
    EXPECT_EQ(t.yoke_common.AutoSwitchTime, 2);
    EXPECT_EQ(t.yoke_common.Yoke2MasterAtStartup, 4);
    EXPECT_EQ(t.yoke_common.AileronForceCurve[0].force, 10.0F);
    EXPECT_EQ(t.yoke_common.ElevatorForceCurve[12].airspeed, 59.0F);
    const tables::YokeSettings& yoke = t.yokes[1];
    EXPECT_EQ(t.YokePort2, 1);
    EXPECT_EQ(yoke.StandbyThreshold, 3);
    EXPECT_EQ(yoke.CenterCorrectionElevator, 11);
    EXPECT_EQ(yoke.ElevatorCorrection, 22);
    EXPECT_EQ(yoke.AutoSwitchFFBAP, 25);
    EXPECT_EQ(yoke.EnableAPOverrule, 34);
    EXPECT_EQ(yoke.SlaveFollowsMaster, 39);
    EXPECT_EQ(yoke.YokeSwitchFunctions[18], 58);
    EXPECT_EQ(yoke.EnableSwitchesAsSlave, 59);
    EXPECT_EQ(yoke.TrimSwitchSpeed, 61);
    EXPECT_EQ(yoke.YokeCalibration[0], 62);
    EXPECT_EQ(yoke.YokeCalibration[3], 65);
    EXPECT_EQ(yoke.elevator_axis.minimum, 62);
    EXPECT_EQ(yoke.aileron_axis.minimum, 64);
    EXPECT_EQ(yoke.aileron_axis.maximum, 1023);
}

TEST_F(ConfigurationStoreTest, a_file_of_format_9_is_read_with_its_own_lines) {
    tables_.GaugeBusPort3 = 33;
    tables_.IomPort2 = 44;
    tables_.YokePort1 = 55;
    tables_.yokes[0].elevator_axis.centre = 66;
    machine_.boxes.default_answer.answer = platform::Answer::yes;
    std::string bytes = ConfigurationText(3).old();
    const std::size_t line = bytes.find("\r\n\"", 20) + 3;
    bytes.replace(line, bytes.find("\"IOM\"\r\n") - line,
                  ",2,3,4,5,6,7,\"t3\",\"t4\",\"t1\",\"t2\",\"t5\",\"t6\",14,15\r\n");
    load(bytes);
    EXPECT_EQ(shown().rfind("The version of selected Configuration file differs from program version.\n", 0), 0U);
    EXPECT_EQ(machine_.boxes.shown().size(), 1U);
    EXPECT_EQ(tables_.ConfigError, 0);
    EXPECT_EQ(tables_.ConfigFormat, 9);
    EXPECT_EQ(tables_.ClusterPort, 2);
    EXPECT_EQ(tables_.GaugeBusPort1, 3);
    EXPECT_EQ(tables_.ProcessInterval, 4);
    EXPECT_EQ(tables_.LightMode, 7);
    EXPECT_EQ(tables_.reserved.ConfigReservedText1, "t1");
    EXPECT_EQ(tables_.reserved.ConfigReservedText4, "t4");
    EXPECT_EQ(tables_.reserved.ConfigReserved2, 14);
    EXPECT_EQ(tables_.IomPort1, 15);
    EXPECT_EQ(tables_.GaugeBusPort3, 33);
    EXPECT_EQ(tables_.IomPort2, 44);
    for (const tables::GaugeRow& gauge : tables_.gauges) {
        ASSERT_EQ(gauge.GaugeBus, 1);
    }
    EXPECT_EQ(tables_.PlateCount(), 5);
    EXPECT_EQ(tables_.YokePort1, 55);
    EXPECT_EQ(tables_.yokes[0].elevator_axis.centre, 66);
}

TEST_F(ConfigurationStoreTest, a_file_cut_short_anywhere_ends_in_the_message) {
    const std::string bytes = plain_file();
    const std::size_t functions = bytes.find("\"Functions\"");
    const std::size_t cluster = bytes.find("\"Engine");
    for (std::size_t length = 0; length < bytes.size() - 2; ++length) {
        // Of the long tables of equal rows, a few rows are enough.
        if (length > functions + 200 && length < cluster - 60) {
            length += 37;
        }
        load(bytes.substr(0, length));
        ASSERT_EQ(tables_.ConfigError, 1) << length;
        ASSERT_EQ(machine_.boxes.shown().size(), 1U) << length;
    }
    load(bytes.substr(0, bytes.size() - 2));
    EXPECT_EQ(tables_.ConfigError, 0);
}

TEST_F(ConfigurationStoreTest, damaged_bytes_never_do_more_than_end_in_the_message) {
    std::mt19937 random(7);
    const std::string good = ConfigurationText(2).present({3, 2});
    machine_.boxes.default_answer.answer = platform::Answer::yes;
    for (int round = 0; round < 150; ++round) {
        std::string bytes = good;
        const std::size_t near = random() % bytes.size();
        for (int damage = 0; damage < 6; ++damage) {
            const std::size_t at = (near + random() % 400) % bytes.size();
            const std::size_t length = random() % 5;
            const std::string_view marks = "\",\r\n-9e";
            bytes.replace(at, std::min(length, bytes.size() - at), 1, marks[random() % marks.size()]);
        }
        load(bytes);
        if (tables_.ConfigError != 0) {
            EXPECT_NE(shown().find("Error Configuration file: "), std::string::npos);
        }
        EXPECT_GT(tables_.iom.size(), static_cast<std::size_t>(tables_.IomRowCount));
    }
}

TEST_F(ConfigurationStoreTest, what_does_not_fit_ends_in_a_message_that_says_where) {
    const std::string good = plain_file();
    expect_failed("", "there is no section \"General\"");
    expect_failed("\"General\"", "Line 1, section \"General\": the file ends too early");
    for (const char* count : {"-1", "32767", "99999", "\"\"", "x"}) {
        expect_failed(with_line(good, "IOM", 0, count), "section \"IOM\"");
        expect_failed(with_line(good, "Plates", 0, count), "section \"Plates\"");
    }
    expect_failed(with_line(good, "Gauges", 7, "256,0,0,0,0,0,0,0,0,0,0,0"), "section \"Gauges\", row 7: the number");
    expect_failed(with_line(good, "Yoke2", 12, "1e9"), "section \"Yoke2\": the number \"1e9\" does not fit");
    // A row too many or too few, and a name that does not fit, have no description.
    for (const std::string& bytes :
         {with_line(good, "IOM", 0, "1"), with_line(good, "Gauges", 1, "0\r\n" + std::string(24, '0')),
          with_replaced(good, "\"Functions\"", "\"functions\""), with_replaced(good, "\"end\"", "\"End\""),
          with_replaced(good, "\"GeneralFFB\"", "\"FFB\"")}) {
        ASSERT_FALSE(bytes.empty());
        load(bytes);
        EXPECT_EQ(tables_.ConfigError, 1);
        EXPECT_EQ(shown().substr(0, 26), "Error Configuration file: ");
    }
    EXPECT_EQ(shown(), "Error Configuration file: \nFilename: cockpit.cfg");
    machine_.files.contents.clear();
    store_.LoadConfiguration();
    EXPECT_NE(shown().find("File not found"), std::string::npos);
    tables_.ConfigFileName = "../cockpit.cfg";
    store_.LoadConfiguration();
    EXPECT_EQ(tables_.ConfigError, 1);
}

TEST_F(ConfigurationStoreTest, what_was_read_up_to_a_failure_stays) {
    tables_.functions[200].FunctionShortName = "before";
    std::string bytes =
        with_line(plain_file(), "Functions", 199, "\"after\",\"\",1,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0");
    load(with_line(bytes, "Functions", 200, "\"half\",\"\",99999"));
    EXPECT_EQ(tables_.ConfigError, 1);
    EXPECT_EQ(tables_.functions[199].FunctionShortName, "after");
    EXPECT_EQ(tables_.functions[200].FunctionShortName, "half");
}

TEST_F(ConfigurationStoreTest, text_in_front_of_the_first_section_is_skipped) {
    load("Saved by hand, \"do not touch\"\r\n\r\n1,2\r\n" + plain_file());
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(tables_.ConfigError, 0);
}

TEST_F(ConfigurationStoreTest, questions_about_the_header_are_asked_and_heeded) {
    const std::string good = plain_file();
    const std::string other_program = with_replaced(good, "FSUIPC based", "XPLANE based");
    const std::string other_version = with_replaced(good, "10.1.3  ", "10.1.4  ");
    const std::string program_question =
        "The selected Configuration file is possibly not compatible with this program.\n"
        "In case a config from a previous version, ignore errors save it again.\nContinue?";
    const std::string version_question =
        "The version of selected Configuration file differs from program version.\n"
        "Possibly the functions differ or are missing. Partially import the functions if needed.\n"
        "Correct and/or check and (re)save the configuration file.\nContinue?";
    const auto marked = [](const std::string& bytes) {
        return with_line(with_line(bytes, "General", 1, "\",0,77,0,0,0,0,0,0,0,0,0,0,\"\",\"\",\"\",\"\",\"\",\"\",0"),
                         "Gauges", 5, "0,5,0,0,0,0,0,0,0,0,0,0");
    };
    load(marked(other_program));
    EXPECT_EQ(shown(), program_question);
    EXPECT_EQ(tables_.ConfigError, 1);
    EXPECT_EQ(tables_.GaugeBusPort1, 77);
    EXPECT_EQ(tables_.gauges[5].GaugeType, 0);

    tables_.GaugeBusPort1 = 0;
    load(marked(other_version));
    EXPECT_EQ(shown(), version_question);
    EXPECT_EQ(tables_.ConfigError, 0);
    EXPECT_EQ(tables_.GaugeBusPort1, 77);
    EXPECT_EQ(tables_.gauges[5].GaugeType, 0);

    machine_.boxes.default_answer.answer = platform::Answer::yes;
    load(marked(with_replaced(other_program, "10.1.3  ", "10.1.4  ")));
    EXPECT_EQ(shown(), program_question + version_question);
    EXPECT_EQ(tables_.ConfigError, 0);
    EXPECT_EQ(tables_.gauges[5].GaugeType, 5);

    // Only 35 characters of the program's name count, and nothing behind the version.
    load(with_replaced(with_replaced(good, "Simulators", "SimulatioX"),
                       "Date/Time saved: ", "Date/Time saved: yesterday"));
    EXPECT_EQ(shown(), "");
    load(with_replaced(good, good.substr(0, good.find("\r\n\"", 20)), "\"General\"\r\n\"short"));
    EXPECT_EQ(shown(), program_question + version_question);
}

TEST_F(ConfigurationStoreTest, a_file_without_plates_loads_and_leaves_none) {
    std::string bytes = ConfigurationText(5).present({1, 3});
    load(bytes);
    ASSERT_EQ(tables_.PlateCount(), 3);
    bytes = ConfigurationText(5).present({1, 0});
    load(bytes);
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(tables_.PlateCount(), 0);
    // From before the yokes, with and without plates.
    tables_.YokePort1 = 5;
    for (const int plates : {0, 2}) {
        bytes = ConfigurationText(6).present({1, plates});
        load(bytes.substr(0, bytes.find("\"GeneralFFB\"")) + "\"end\"");
        EXPECT_EQ(shown(), "");
        EXPECT_EQ(tables_.ConfigError, 0);
        EXPECT_EQ(tables_.PlateCount(), plates);
        EXPECT_EQ(tables_.YokePort1, 5);
    }
}

TEST_F(ConfigurationStoreTest, a_wrong_yoke_name_counts_as_an_error_but_the_yokes_are_read) {
    const std::string bytes = with_line(plain_file(), "Yoke2", 0, "9");
    load(with_replaced(bytes, "\"Yoke1\"", "\"Yoke7\""));
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(tables_.ConfigError, 1);
    EXPECT_EQ(tables_.YokePort2, 9);
    EXPECT_EQ(tables_.yokes[1].aileron_axis.range, 1023);
}

TEST_F(ConfigurationStoreTest, an_old_switch_list_has_ten_bytes) {
    std::string bytes = plain_file();
    const std::size_t yoke2 = bytes.find("\"Yoke2\"");
    const std::string old_list = "3\r\n4\r\n5\r\n6\r\n7\r\n8\r\n9\r\n1\r\n2\r\n10";
    std::string head = bytes.substr(0, yoke2);
    const std::size_t list = head.find("255\r\n" + std::string("0\r\n0\r\n0\r\n"));
    ASSERT_NE(list, std::string::npos);
    head.replace(list, 3 + 18 * 3, old_list);
    tables_.yokes[0].YokeSwitchFunctions.fill(99);
    load(head + bytes.substr(yoke2));
    EXPECT_EQ(shown(), "");
    const auto& switches = tables_.yokes[0].YokeSwitchFunctions;
    EXPECT_EQ(switches[0], 3);
    EXPECT_EQ(switches[9], 10);
    EXPECT_EQ(switches[10], 0);
    EXPECT_EQ(tables_.yokes[1].YokeSwitchFunctions[0], 255);
    store_.SaveConfiguration();
    EXPECT_EQ(switches[0], 255);
    EXPECT_EQ(switches[9], 10);
}

TEST_F(ConfigurationStoreTest, a_small_calibration_maximum_stays_stored_as_it_is) {
    std::string bytes = plain_file();
    const std::size_t yoke2 = bytes.find("\"Yoke2\"");
    const std::string calibration = "0\r\n1023\r\n0\r\n1023\r\n";
    bytes.replace(yoke2 - calibration.size(), calibration.size(), "20\r\n300\r\n0\r\n1023\r\n");
    load(bytes);
    EXPECT_EQ(tables_.yokes[0].elevator_axis.maximum, 1023);
    EXPECT_EQ(tables_.yokes[0].elevator_axis.range, 1003);
    store_.SaveConfiguration();
    EXPECT_EQ(machine_.files.contents[kFile], bytes);
}

TEST_F(ConfigurationStoreTest, names_keep_their_bytes_and_a_double_quote_becomes_a_single_one) {
    tables_.functions[9].FunctionShortName = "5\" \x80\xFF,\r\n'";
    tables_.plates.resize(1);
    tables_.plates[0].PlateName = "\"";
    store_.prepare_header("FSX", "4.974");
    store_.SaveConfiguration();
    store_.LoadConfiguration();
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(tables_.functions[9].FunctionShortName, "5' \x80\xFF,\r\n'");
    EXPECT_EQ(tables_.plates[0].PlateName, "'");
}

TEST_F(ConfigurationStoreTest, the_header_bears_the_places_that_the_format_gives) {
    store_.prepare_header("FSX", "4.974");
    EXPECT_EQ(
        tables_.ConfigHeader,
        "Program Name: Control Program for FSUIPC based Simulators , Version: 10.1.3         ,Connected Sim: FSX, "
        "FSUIPC version: 4.974 ,Date/Time saved: 2024-05-17 14:30:12\r\n");
    EXPECT_EQ(tables_.ConfigHeader.substr(69, 6), "10.1.3");
}

TEST_F(ConfigurationStoreTest, a_refused_save_leaves_the_old_file) {
    machine_.files.contents[kFile] = "old";
    machine_.files.write_protected.insert(kFile);
    EXPECT_THROW(store_.SaveConfiguration(), support::Failure);
    EXPECT_EQ(machine_.files.contents[kFile], "old");
}

TEST_F(ConfigurationStoreTest, the_start_file_names_configuration_and_delay) {
    tables_.AutoStartDelay = 25;
    EXPECT_TRUE(store_.SaveStartFile("My cockpit.cfg"));
    EXPECT_EQ(machine_.files.contents["DefaultStartFileMS.cfn"],
              "\"General\"\r\n\"My cockpit.cfg\"\r\n\"Startdelay\"\r\n25\r\n\"End\"\r\n");
    tables_.AutoStartDelay = 0;
    EXPECT_EQ(store_.LoadStartFile(), "My cockpit.cfg");
    EXPECT_EQ(tables_.AutoStartDelay, 25);
}

TEST_F(ConfigurationStoreTest, a_damaged_start_file_gives_the_defaults) {
    const std::string good = "\"General\"\r\n\"a.cfg\"\r\n\"Startdelay\"\r\n25\r\n\"End\"\r\n";
    const std::string damaged[] = {"",
                                   with_replaced(good, "General", "general"),
                                   with_replaced(good, "Startdelay", "Delay"),
                                   with_replaced(good, "End", "end"),
                                   with_replaced(good, "25", "soon"),
                                   with_replaced(good, "25", "40000"),
                                   with_replaced(good, "\"End\"\r\n", "")};
    for (const std::string& bytes : damaged) {
        machine_.files.contents["DefaultStartFileMS.cfn"] = bytes;
        tables_.AutoStartDelay = 3;
        EXPECT_EQ(store_.LoadStartFile(), "Default MS-FS.cfg") << bytes;
        EXPECT_EQ(tables_.AutoStartDelay, 10) << bytes;
    }
    machine_.files.contents.clear();
    EXPECT_EQ(store_.LoadStartFile(), "Default MS-FS.cfg");
    EXPECT_EQ(shown(), "");
}

TEST_F(ConfigurationStoreTest, a_start_file_that_cannot_be_written_is_told) {
    machine_.files.write_protected.insert("DefaultStartFileMS.cfn");
    EXPECT_FALSE(store_.SaveStartFile("a.cfg"));
    EXPECT_EQ(shown(), "Error writing Default Start file. The file is write-protected");
}

}  // namespace
