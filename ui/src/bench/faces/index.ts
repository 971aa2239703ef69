import { adfIndicatorFace } from "./adf_indicator";
import { adfRadioFace } from "./adf_radio";
import { altimeterFace } from "./altimeter";
import { attitudeIndicatorFace } from "./attitude_indicator";
import { audioPanelFace } from "./audio_panel";
import { autopilotFace } from "./autopilot";
import { bkTransponderFace } from "./bk_transponder";
import { boeingClockFace } from "./boeing_clock";
import { cessnaClockFace } from "./cessna_clock";
import { comNavRadioFace } from "./com_nav_radio";
import { bkDmeFace, dmeFace } from "./dme";
import { engineClusterFace } from "./engine_cluster";
import { engineClusterGaugeFace } from "./engine_cluster_gauge";
import type { Face } from "./face";
import { genericFace } from "./generic";
import { headingIndicatorFace } from "./heading_indicator";
import { ioModuleFace } from "./io_module";
import { needleGaugeFace } from "./needle_gauge";
import { radioFace } from "./radio";
import { rmiFace } from "./rmi";
import { transponderFace } from "./transponder";
import { trimWheelFace } from "./trim_wheel";
import { vorIndicatorFace } from "./vor_indicator";
import { yokeFace } from "./yoke";

/** Where on the panel an instrument stands. */
export type Group = "flight" | "stack" | "engine" | "other" | "yoke" | "io";

interface Row {
  face: Face;
  group: Group;
}

/** One row a family, in the order in which they stand within their group; the names are those of the bench's table. */
const FACES: Record<string, Row> = {
  attitude_indicator: { face: attitudeIndicatorFace, group: "flight" },
  altimeter: { face: altimeterFace, group: "flight" },
  heading_indicator: { face: headingIndicatorFace, group: "flight" },
  vor_indicator: { face: vorIndicatorFace, group: "flight" },
  rmi: { face: rmiFace, group: "flight" },
  adf_indicator: { face: adfIndicatorFace, group: "flight" },
  audio_panel: { face: audioPanelFace, group: "stack" },
  radio: { face: radioFace, group: "stack" },
  com_nav_radio: { face: comNavRadioFace, group: "stack" },
  adf_radio: { face: adfRadioFace, group: "stack" },
  transponder: { face: transponderFace, group: "stack" },
  bk_transponder: { face: bkTransponderFace, group: "stack" },
  dme: { face: dmeFace, group: "stack" },
  bk_dme: { face: bkDmeFace, group: "stack" },
  autopilot: { face: autopilotFace, group: "stack" },
  needle_gauge: { face: needleGaugeFace, group: "engine" },
  engine_cluster_gauge: { face: engineClusterGaugeFace, group: "engine" },
  engine_cluster: { face: engineClusterFace, group: "engine" },
  boeing_clock: { face: boeingClockFace, group: "other" },
  cessna_clock: { face: cessnaClockFace, group: "other" },
  trim_wheel: { face: trimWheelFace, group: "other" },
  yoke: { face: yokeFace, group: "yoke" },
  io_module: { face: ioModuleFace, group: "io" },
};

const ORDER = Object.keys(FACES);

export function faceOf(name: string): Face {
  return FACES[name]?.face ?? genericFace;
}

export function groupOf(name: string): Group {
  return FACES[name]?.group ?? "other";
}

/** Instruments of one family stand together. */
export function placeOf(name: string): number {
  const place = ORDER.indexOf(name);
  return place < 0 ? ORDER.length : place;
}
