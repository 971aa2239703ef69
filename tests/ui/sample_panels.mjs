// Panels like the program's own, and one with every kind of control.
import { board, column, control, frame, panel, row, tabs } from "./scripted_program.mjs";

const readout = (name, caption, text, more = {}) => control("text_box", name, { caption, text, editable: false, ...more });
const button = (name, caption, more = {}) => control("command_button", name, { caption, ...more });

export function runPanel(more = {}) {
  return panel(
    "frmStatus",
    "Control Program for FSUIPC based Simulators",
    column(
      row("BoxRun", "BoxCurrentConfig", "LabelVersion"),
      row("cmdRun", "cmdStop", "cmdconfig", "cmdHide", "CmdExit"),
      row("cmdShowPorts", "cmdShowECStatus", "cmdShowIOM"),
      frame("Flight", row("BoxIAS", "boxAltitude", "BoxVS"), row("BoxHea", "boxCompass"), row("boxPitch", "boxBank"),
        row("BoxAirPressHg", "BoxAirPressmBar")),
      frame("Aircraft", row("boxVoltage", "BoxInstrLights", "boxNavLights")),
      frame("Gauge updates", row("SliderXferTimer", "BoxXferProcessTimer"), row("boxGaugePort", "boxNrofOffsets", "frmXferCount")),
    ),
    [
      control("indicator", "BoxRun", { text: "Running", colour: 255 }),
      readout("BoxCurrentConfig", "Configuration", "Default MS-FS.cfg"),
      control("label", "LabelVersion", { text: "Version: 10.1.3" }),
      button("cmdRun", "Run", { enabled: false }),
      button("cmdStop", "Stop"),
      button("cmdconfig", "Configure"),
      button("cmdHide", "Hide"),
      button("CmdExit", "Exit"),
      button("cmdShowPorts", "Ports"),
      button("cmdShowECStatus", "Engine cluster", { visible: false }),
      button("cmdShowIOM", "IO module 1"),
      readout("BoxIAS", "Airspeed (kt)", "104.3", { toolTip: "Indicated airspeed in knots" }),
      readout("boxAltitude", "Altitude (ft)", "2314"),
      readout("BoxVS", "Vertical speed (ft/min)", "-512.0"),
      readout("BoxHea", "Heading (°)", "271.40"),
      readout("boxCompass", "Compass (°)", "268.20"),
      readout("boxPitch", "Pitch (°)", "002.14"),
      readout("boxBank", "Bank (°)", "-017.52"),
      readout("BoxAirPressHg", "Air pressure (inHg)", "29.92"),
      readout("BoxAirPressmBar", "Air pressure (mbar)", "1013"),
      readout("boxVoltage", "Main bus (V)", "27.80"),
      readout("BoxInstrLights", "Instrument lights", "ON"),
      readout("boxNavLights", "Navigation lights", "OFF"),
      control("slider", "SliderXferTimer", { caption: "Process interval", value: 40, minimum: 10, maximum: 200 }),
      readout("BoxXferProcessTimer", "Interval (ms)", "40"),
      readout("boxGaugePort", "Gauge bus", "COM1"),
      readout("boxNrofOffsets", "Simulator ports open", "24"),
      readout("frmXferCount", "Updates per second", "25"),
    ],
    more,
  );
}

export function startPanel() {
  return panel(
    "frmMain",
    "Start",
    column(
      frame("Simulator", "frmMainConnection", row("lblSim", "LabelFSUIPC", "LabelProgramVersion")),
      frame("Configuration", "FileBox", "FileName"),
      row("TextAutostart", "BoxAutoStartTime", "Textseconds"),
      row("butOK", "CmdConfigure", "Exit"),
    ),
    [
      readout("frmMainConnection", "FS link status:", "Connected to  Flight Simulator;   Okay"),
      readout("lblSim", "Connected simulator:", "FSX"),
      readout("LabelFSUIPC", "FSUIPC Version:", "4.974"),
      readout("LabelProgramVersion", "Control Program version:", "10.1.3"),
      control("list_box", "FileBox", { caption: "Configurations:", value: 1, items: ["Cessna 172.cfg", "Default MS-FS.cfg", "Twin.cfg"] }),
      readout("FileName", "Selected Configuration File:", "Default MS-FS.cfg"),
      control("label", "TextAutostart", { text: "Program will autostart with Selected Config in: " }),
      readout("BoxAutoStartTime", "", "7"),
      control("label", "Textseconds", { text: "Seconds" }),
      button("butOK", "Continue"),
      button("CmdConfigure", "Configure"),
      button("Exit", "Exit"),
    ],
  );
}

export function portPanel() {
  const line = (port, owner, id, name) =>
    `${String(port).padStart(3, "0")}         ${owner.padEnd(6)}           ${String(id).padStart(3, "0")}  - 1         ${name}`;
  const items = [];
  for (let port = 1; port <= 60; ++port) {
    items.push(line(port, port < 15 ? "INTRN" : `ID:${String(port).padStart(3, "0")}`, port + 3, port % 2 ? "Airspeed" : "Altitude"));
  }
  return panel(
    "SimCom",
    "Active Offsets",
    column(row("LabelPort", "LabelUsedBy", "LabelFunction", "LabelFunctionName"), "OffsetsList", row("CmdClose")),
    [
      control("label", "LabelPort", { text: "Port#       " }),
      control("label", "LabelUsedBy", { text: "Used by          " }),
      control("label", "LabelFunction", { text: "Func.#           " }),
      control("label", "LabelFunctionName", { text: "Func. Name" }),
      control("list_box", "OffsetsList", { caption: "Active Offsets", value: -1, items }),
      button("CmdClose", "Close"),
    ],
  );
}

// Lamps and levels in boards.
// A linear force curve up to 200 knots, with the aircraft at 90.
export function curvePanel() {
  const points = Array.from({ length: 11 }, (_, k) => `${800 + 1000 * k},${5500 - 500 * k}`);
  return panel("frmForceCurve", "Force curves", column("PictureCurve"), [
    control("picture", "PictureCurve", { widget: "force_curve", text: ["200", "90", "0", ...points].join(" ") }),
  ]);
}

export function ioPanel(more = {}) {
  const label = (number) => "ABCDEF"[Math.floor(number / 8)] + ((number % 8) + 1);
  const all = (count, make) => Array.from({ length: count }, (_, index) => make(index));
  const places = (name, count) => all(count, (index) => ({ kind: "control", control: name, index }));
  const lamps = (name, count, on, off) => all(count, (index) =>
    control("indicator", name, { index, text: label(index), toolTip: `${name} ${label(index)}`, colour: index % 5 === 0 ? on : off }));
  return panel(
    "frmStatusIOM",
    "IO module #1",
    column(
      row("BoxRun", "boxNrOfUpdates", "cmdRun", "cmdStop", "cmdHide"),
      frame("Switches", board(8, ...places("boxSwitchIndicator", 48))),
      frame("LEDs", board(8, ...places("boxLedIndicator", 32))),
      frame("Analogue inputs", board(4, ...places("SLiderAnalogue", 8))),
    ),
    [
      control("indicator", "BoxRun", { text: "Running", colour: 255 }),
      readout("boxNrOfUpdates", "Frames per second", "25"),
      button("cmdRun", "Run", { enabled: false }),
      button("cmdStop", "Stop"),
      button("cmdHide", "Hide"),
      ...lamps("boxSwitchIndicator", 48, 255, 65280),
      ...lamps("boxLedIndicator", 32, 255, 0x808080),
      ...all(8, (index) => control("slider", "SLiderAnalogue", { index, caption: `Input ${index + 1}`, value: index * 146, maximum: 1023, minimum: 0, enabled: false })),
    ],
    more,
  );
}

// Every kind of control, once.
export function everyKind(more = {}) {
  return panel(
    "Sampler",
    "Every kind of control",
    column(
      tabs(
        frame("Fields", row("Text", "Number", "Combo"), row("Check", "OptionA", "OptionB"), "Slide", "Level"),
        frame("More", "Lines", row("Lamp", "Own"), "Push"),
      ),
    ),
    [
      control("text_box", "Text", { caption: "Name", text: "old", editable: true }),
      readout("Number", "Value", "12.5"),
      control("combo_box", "Combo", { caption: "Plate", value: -1, items: ["first", "second"] }),
      control("check_box", "Check", { caption: "Reverse" }),
      control("option_button", "OptionA", { caption: "Left", group: "side", value: 1 }),
      control("option_button", "OptionB", { caption: "Right", group: "side" }),
      control("slider", "Slide", { caption: "Speed", value: 3, minimum: 0, maximum: 10 }),
      control("progress_bar", "Level", { caption: "Saved", value: 4, maximum: 10 }),
      control("list_box", "Lines", { caption: "Lines", value: 0, items: ["a  b", "c", "d"] }),
      control("indicator", "Lamp", { caption: "State", text: "Ready", colour: 49152 }),
      control("indicator", "Own", { caption: "Other", text: "Amber", colour: 0x00a5ff }),
      button("Push", "Push", { colour: 255 }),
    ],
    more,
  );
}
