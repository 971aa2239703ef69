// Stands in for the bench behind the virtual cockpit: instruments of every face, with the values that a test feeds.
import { bundle } from "../../ui/build.mjs";

export const address = "http://127.0.0.1:8780/";

let files;

// Every face, by the type codes and models that draw it differently.
const units = [
  ["altimeter", 101],
  ["attitude_indicator", 103, 5],
  ["heading_indicator", 105],
  ["vor_indicator", 106],
  ["vor_indicator", 107],
  ["adf_indicator", 108],
  ["rmi", 130],
  ["rmi", 130, 3],
  ["radio", 110],
  ["radio", 111],
  ["com_nav_radio", 120],
  ["adf_radio", 121],
  ["transponder", 112],
  ["transponder", 114],
  ["bk_transponder", 122],
  ["boeing_clock", 104],
  ["cessna_clock", 109],
  ["dme", 113],
  ["bk_dme", 123],
  ["autopilot", 124],
  ["audio_panel", 125],
  ["trim_wheel", 140],
  ["engine_cluster_gauge", 8],
  ["engine_cluster", 0],
  ["io_module", 0, 3],
  ["yoke", 0, 3],
  ["needle_gauge", 2],
];

// Units with a port of their own.
const ownPorts = { engine_cluster: 15, io_module: 9, yoke: 5 };

const noNeedle = { title: "", sequence: 1, plate: "", points: [] };

function printOf(face) {
  if (face !== "io_module") return {};
  const printed = (count, names) => Array.from({ length: count }, (_, number) => names[number] ?? "");
  return {
    board: {
      switches: printed(48, { 0: "NavLights", 1: "GearLever", 3: "COMStandby", 4: "COMStandby", 9: "<Ctrl+G>", 10: "HeadingBug", 11: "Altitude" }),
      leds: printed(32, { 0: "ParkingBrake", 9: "OuterMarker" }),
      pots: printed(8, { 0: "Throttle", 1: "Mixture" }),
    },
  };
}

export const instruments = units.map(([face, type, model = 1], index) => ({
  key: face in ownPorts ? `${ownPorts[face]}.0` : `1.${index + 1}`,
  port: ownPorts[face] ?? 1,
  id: face in ownPorts ? 0 : index + 1,
  type,
  model,
  version: 1,
  face,
  typeName: { io_module: "IO module 1", yoke: "Yoke 1" }[face] ?? face,
  needles: Array.from({ length: face === "engine_cluster" ? 16 : 8 }, () => noNeedle),
  ...printOf(face),
}));

export function keyOf(face, type) {
  return instruments.find((each) => each.face === face && (type === undefined || each.type === type)).key;
}

export class ScriptedBench {
  static async behind(page) {
    files ??= await bundle("bench", "Virtual cockpit");
    const bench = new ScriptedBench(page);
    await page.route(`${address}**`, (route) => {
      const file = files.find((each) => each.path === new URL(route.request().url()).pathname);
      return file ? route.fulfill({ contentType: file.type, body: file.text }) : route.fulfill({ status: 404 });
    });
    await page.routeWebSocket(/127\.0\.0\.1:8780/, (socket) => bench.#opened(socket));
    await page.goto(address);
    await page.locator("[data-instrument]").first().waitFor();
    return bench;
  }

  constructor(page) {
    this.page = page;
    this.heard = []; // command lines of the page
    this.beats = setInterval(() => this.#tell({ type: "beat" }), 500);
    this.beats.unref();
  }

  feed(key, values) {
    this.#tell({ type: "values", deviceValues: { [key]: values } });
  }

  feedAll(values) {
    this.#tell({ type: "values", deviceValues: Object.fromEntries(instruments.map(({ key }) => [key, values])) });
  }

  stop() {
    clearInterval(this.beats);
  }

  #tell(message) {
    this.socket?.send(JSON.stringify(message));
  }

  #opened(socket) {
    this.socket = socket;
    socket.onMessage((text) => this.heard.push(String(text)));
    this.#tell({ type: "layout", lines: [], instruments });
  }
}
