// What the bench tells its pages: one "layout" message first, then "values" messages that carry what has changed.

export interface LineLayout {
  port: number;
  role: string;
  simulated: boolean;
}

/** At this value the needle stands at this position, 0..1079 from the zero mark. */
export type ScalePoint = [value: number, position: number];

export interface NeedlePrint {
  title: string;
  sequence: number;
  plate: string;
  points: ScalePoint[];
  display?: number; // the display that shows the value in figures
}

/** What is printed on the board of an IO module, by number; empty where nothing is assigned. */
export interface BoardPrint {
  switches: string[];
  leds: string[];
  pots: string[];
}

export interface Instrument {
  key: string;
  port: number;
  id: number; // on the bus; 0 for a unit with a port of its own
  type: number;
  model: number;
  version: number;
  face: string;
  typeName: string;
  needles: NeedlePrint[];
  board?: BoardPrint;
}

export type Values = Record<string, number | string | boolean>;

interface ValueSections {
  lineValues?: Record<string, Values>;
  deviceValues?: Record<string, Values>;
}

export interface LayoutMessage extends ValueSections {
  type: "layout";
  lines: LineLayout[];
  instruments: Instrument[];
}

export interface ValuesMessage extends ValueSections {
  type: "values";
}

/** What the bench says to a command of this page. */
export interface AnswerMessage {
  type: "answer";
  text: string;
}

/** Sent when nothing changes, so that a page knows the bench is there. */
export interface BeatMessage {
  type: "beat";
}

export type Message = LayoutMessage | ValuesMessage | AnswerMessage | BeatMessage;
